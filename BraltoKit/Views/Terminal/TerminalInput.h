#pragma once

#include <QObject>
#include <QVariant>

class QContextMenuEvent;
class QDragEnterEvent;
class QDropEvent;
class QFocusEvent;
class QInputMethodEvent;
class QKeyEvent;
class QMouseEvent;
class QWheelEvent;

namespace Bralto {

class TerminalView;
struct ViewServices;

/// What the user does to a terminal's view: keys, pointer, input method, clipboard. The view hands
/// its events on and is told what to show of them.
class TerminalInput final : public QObject {
    Q_OBJECT

public:
    /// Belongs to `view`.
    TerminalInput(const ViewServices& services, TerminalView& view);
    ~TerminalInput() override;

    void keyPressed(QKeyEvent* event);
    void keyReleased(QKeyEvent* event);
    /// Whether the program keeps this chord for itself although it is a shortcut elsewhere.
    [[nodiscard]] bool overridesShortcut(QKeyEvent* event) const;
    void inputMethod(QInputMethodEvent* event);
    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const;
    void mousePressed(QMouseEvent* event);
    void mouseMoved(QMouseEvent* event);
    void mouseReleased(QMouseEvent* event);
    void mouseDoubleClicked(QMouseEvent* event);
    void wheelTurned(QWheelEvent* event);
    void pointerLeft();
    void focusChanged(QFocusEvent* event);

    // Commands of menus and shortcuts.

    [[nodiscard]] bool canCopy() const;
    void copy();
    void paste();
    void pasteSelection();
    void selectAll();
    void find();
    void scrollPages(int pages); ///< Negative is up.
    void jumpToPrompt(int direction); ///< -1 up, 1 down.

signals:
    /// The user asked for the pane's menu at a place on the screen.
    void contextMenuRequested(const QPoint& globalPosition);
    /// A link was followed: an address, or a file with a line and column from 1, 0 if there is none.
    void urlActivated(const QString& url);
    void fileActivated(const QString& path, int line, int column);

private:
    TerminalView& m_view;
};

} // namespace Bralto
