#pragma once

#include "Terminals/ConsoleDrag.h"
#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

#include <QHash>

namespace Bralto {

class ConsoleHead;
class Glide;
class GroupChip;
class PaneView;

/// The console: a tray in the frame with the chips of its groups, and below them the panes of the
/// active one side by side, each a small sheet. The view of a pane lives as long as the pane. While
/// panes come, go and change places, terminals keep their grid.
class TerminalPanelView final : public ThemedWidget {
    Q_OBJECT

public:
    /// Shows `panel`, which outlives the view.
    TerminalPanelView(const ViewServices& services, TerminalPanel& panel, QWidget* parent);
    ~TerminalPanelView() override;

    [[nodiscard]] ConsoleHead& head() const { return *m_head; }
    [[nodiscard]] TerminalPanel& panel() const { return m_panel; }
    /// The drag of one of the panel's panes or tabs, while there is one.
    [[nodiscard]] ConsoleDrag& drag() { return m_drag; }
    /// The view of a pane that is on show, else null.
    [[nodiscard]] PaneView* paneView(const QString& paneId) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    enum class Step { AtOnce, Animated };

    void followGroups();
    void refresh();
    void place(Step step);
    void makeMissing();
    void dropClosed();
    void leaveBehind(PaneView& gone);
    void focusPane(const ConsolePane* pane);
    void followKeyboard(const QWidget* focus);
    void settle();
    void dragPane(PaneView& view, const QPoint& grip);
    void dragGroup(GroupChip& chip, const QPoint& grip);
    void startDrag(const ConsoleDrag::Item& item, QWidget& dragged, int radius, QPoint grip);
    [[nodiscard]] QRect area() const;

    ViewServices m_services;
    TerminalPanel& m_panel;
    ConsoleDrag m_drag;
    ConsoleHead* m_head;
    Glide* m_glide;
    quint64 m_motion = 0;              ///< The hold while panes move; 0 if they don't.
    QHash<QString, PaneView*> m_views; ///< By pane id.
    QString m_placedGroup;             ///< Whose panes were placed last.
};

} // namespace Bralto
