#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

#include <QHash>

namespace Bralto {

class ConsoleHead;
class PaneView;

/// The console: a tray in the frame with the chips of its groups, and below them the panes of the
/// active one side by side, each a small sheet. The view of a pane lives as long as the pane.
class TerminalPanelView final : public ThemedWidget {
    Q_OBJECT

public:
    /// Shows `panel`, which outlives the view.
    TerminalPanelView(const ViewServices& services, TerminalPanel& panel, QWidget* parent);

    [[nodiscard]] ConsoleHead& head() const { return *m_head; }
    [[nodiscard]] TerminalPanel& panel() const { return m_panel; }
    /// The view of a pane that is on show, else null.
    [[nodiscard]] PaneView* paneView(const QString& paneId) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void followGroups();
    void refresh();
    void place();
    void dropClosed();
    void focusPane(const ConsolePane* pane);

    ViewServices m_services;
    TerminalPanel& m_panel;
    ConsoleHead* m_head;
    QHash<QString, PaneView*> m_views; ///< By pane id.
};

} // namespace Bralto
