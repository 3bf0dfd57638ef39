#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

#include <QMenu>
#include <QPointer>

#include <memory>

namespace Bralto {

class ConsoleDrag;
class ConsolePane;
class PaneDropArea;
class PaneHead;
class PaneStyleEditor;
class Sheet;
class TerminalPanel;

/// One pane of the console: a small sheet with a head that names it, and what it holds, all in the
/// look that the user gave the pane.
class PaneView final : public ThemedWidget {
    Q_OBJECT

public:
    /// Whether the pane's head shows; a low console with a single pane leaves it out.
    enum class Head { Hidden, Shown };

    /// The view goes with its pane.
    PaneView(const ViewServices& services, TerminalPanel& panel, ConsoleDrag& drag,
             ConsolePane& pane, QWidget* parent);
    ~PaneView() override;

    [[nodiscard]] const QString& paneId() const { return m_paneId; }
    [[nodiscard]] QWidget* content() const { return m_content; }
    [[nodiscard]] PaneHead& head() const { return *m_head; }
    [[nodiscard]] PaneDropArea& dropArea() const { return *m_dropArea; }
    /// Null unless the pane's look is being changed.
    [[nodiscard]] PaneStyleEditor* styleEditor() const;
    /// The look of what is in the pane.
    [[nodiscard]] Theme& look() { return m_look; }
    void setHead(Head head);
    /// Whether it is the pane that has, or would get, the keyboard.
    void setFocusedPane(bool focused);
    /// What is in the pane is laid out for at least this width, while the pane grows to it.
    void setLeastWidth(int width);
    [[nodiscard]] std::unique_ptr<QMenu> makeMenu();

signals:
    /// The user drags the pane by its head, from a place in this view.
    void dragRequested(const QPoint& grip);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void place();
    void dress();
    void setContent(QWidget* content);
    void swapContent();
    void showMenu(const QPoint& globalPosition);
    void followEditing(bool editing);
    void markFocused(const QWidget* focus);

    ViewServices m_services;
    TerminalPanel& m_panel;
    ConsolePane& m_pane;
    QString m_paneId;
    Theme m_look;
    Sheet* m_sheet;
    QWidget* m_body;
    PaneHead* m_head;
    QWidget* m_content = nullptr;
    PaneDropArea* m_dropArea;
    QPointer<PaneStyleEditor> m_editor;
    int m_leastWidth = 0;
};

} // namespace Bralto
