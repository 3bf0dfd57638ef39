#pragma once

#include "Base/Shortcuts.h"
#include "Views/Terminal/TerminalKeys.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QVariant>

class QContextMenuEvent;
class QDropEvent;
class QFocusEvent;
class QInputMethodEvent;
class QKeyEvent;
class QMouseEvent;
class QWheelEvent;

namespace Bralto {

class KeyboardLayout;
class TerminalFindBar;
class TerminalPaste;
class TerminalPointer;
class TerminalView;
struct ViewServices;

/// What the user does to a terminal's view: keys, pointer, input method, clipboard. The view hands
/// its events on and is told what to show of them; drops and menus it takes from there itself.
class TerminalInput final : public QObject {
    Q_OBJECT

public:
    /// Belongs to `view`.
    TerminalInput(const ViewServices& services, TerminalView& view);
    ~TerminalInput() override;

    void keyPressed(QKeyEvent* event);
    void keyReleased(QKeyEvent* event);
    /// Whether the terminal gets this chord although it may be a shortcut elsewhere.
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
    void askForMenu(QContextMenuEvent* event);
    /// Whether what is dragged over the view can be dropped there.
    [[nodiscard]] bool dragged(QDropEvent* event);
    void dropped(QDropEvent* event);

    // Commands of menus and shortcuts.

    [[nodiscard]] bool canCopy() const;
    void copy();
    void paste();
    void pasteSelection();
    void selectAll();
    void find();
    void scrollPages(int pages); ///< Negative is up.
    void scrollToTop();
    void scrollToBottom();
    void jumpToPrompt(int direction); ///< -1 up, 1 down.

signals:
    /// The user asked for the pane's menu at a place on the screen.
    void contextMenuRequested(const QPoint& globalPosition);
    /// A link was followed: an address, or a file with a line and column from 1, 0 if there is
    /// none.
    void urlActivated(const QString& url);
    void fileActivated(const QString& path, int line, int column);

private:
    [[nodiscard]] TerminalKeyPress read(const QKeyEvent& event) const;
    /// Whether the view carries the command out now.
    [[nodiscard]] bool takes(Shortcuts::Command command) const;
    void run(Shortcuts::Command command);
    bool send(const TerminalKeyPress& press);
    void sendText(const QString& text);
    void typed();
    void keepSelection();
    [[nodiscard]] QRect cursorRectangle() const;

    TerminalView& m_view;
    const KeyboardLayout* m_layout;
    TerminalPointer* m_pointer; ///< Children of the view.
    TerminalPaste* m_paste;
    TerminalFindBar* m_findBar;
    QSet<quint64> m_held; ///< Keys whose press the program was sent.
    bool m_isComposing = false;
};

} // namespace Bralto
