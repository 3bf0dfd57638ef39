#include "Views/Terminal/TerminalInput.h"

#include "Kovalt/Keyboard/KittyKeyboardEncoder.h"
#include "Kovalt/ShellMarks.h"
#include "Views/Terminal/TerminalChords.h"
#include "Views/Terminal/TerminalClipboard.h"
#include "Views/Terminal/TerminalFindBar.h"
#include "Views/Terminal/TerminalPaste.h"
#include "Views/Terminal/TerminalPointer.h"
#include "Views/Terminal/TerminalView.h"
#include "Views/ViewServices.h"
#include "Views/Window/WindowFocus.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QFocusEvent>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QWheelEvent>

#include <string>
#include <string_view>

namespace Bralto {

namespace {

using Kovalt::KittyKeyboardFlags;

/// Tells keys apart while they are held, whatever modifiers come and go.
quint64 identity(const TerminalKeyPress& press)
{
    return press.scanCode != 0 ? press.scanCode : quint64(press.key) << 32U;
}

bool isModifierAlone(const Kovalt::KittyKeyEvent& event)
{
    return event.key.kind() == Kovalt::KittyKey::Kind::Functional &&
           Kovalt::isModifierKey(event.key.function());
}

/// What is held once the event is over.
Qt::KeyboardModifiers heldAfter(const QKeyEvent& event)
{
    Qt::KeyboardModifiers held = event.modifiers();
    if (event.key() == Qt::Key_Control)
        held.setFlag(Qt::ControlModifier, event.type() == QEvent::KeyPress);
    return held;
}

std::string_view viewOf(const QByteArray& bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

} // namespace

TerminalInput::TerminalInput(const ViewServices& services, TerminalView& view)
    : QObject(&view)
    , m_view(view)
    , m_layout(services.keyboard)
    , m_pointer(new TerminalPointer(view))
    , m_paste(new TerminalPaste(services.theme, view))
    , m_findBar(new TerminalFindBar(services.theme, view.session(), view))
{
    WindowFocus::markTerminal(view);
    view.setFocusPolicy(Qt::StrongFocus);
    view.setMouseTracking(true);
    view.setAcceptDrops(true);
    view.setAttribute(Qt::WA_InputMethodEnabled);
    view.setInputMethodHints(Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);

    const LinkPointer& links = m_pointer->links();
    connect(&links, &LinkPointer::urlActivated, this, &TerminalInput::urlActivated);
    connect(&links, &LinkPointer::fileActivated, this, &TerminalInput::fileActivated);
    connect(m_pointer, &TerminalPointer::pasteSelectionRequested, this,
            &TerminalInput::pasteSelection);
    connect(m_pointer, &TerminalPointer::selected, this, &TerminalInput::keepSelection);
    connect(m_paste, &TerminalPaste::pasted, this, &TerminalInput::typed);
    connect(m_findBar, &TerminalFindBar::hitsChanged, &view, &TerminalView::contentsMoved);
    connect(m_findBar, &TerminalFindBar::closed, &view,
            [&view] { view.setFocus(Qt::OtherFocusReason); });
    connect(&view.session(), &TerminalSession::clipboardCopied, this,
            [](const QString& text) { TerminalPaste::putOnClipboard(text); });
}

TerminalInput::~TerminalInput() = default;

// --- keys

TerminalKeyPress TerminalInput::read(const QKeyEvent& event) const
{
    return TerminalKeyPress::from(event, m_layout, m_isComposing);
}

bool TerminalInput::takes(Shortcuts::Command command) const
{
    if (!TerminalChords::isOfView(command))
        return false;
    return !TerminalChords::needsHistory(command) ||
           !m_view.session().terminal().isAlternateBufferActive();
}

bool TerminalInput::overridesShortcut(QKeyEvent* event) const
{
    const auto command = TerminalChords::command(read(*event));
    return !command || TerminalChords::isOfView(*command);
}

void TerminalInput::keyPressed(QKeyEvent* event)
{
    event->accept();
    const TerminalKeyPress press = read(*event);
    const auto command = TerminalChords::command(press);
    if (command && takes(*command)) {
        run(*command);
        return;
    }
    if (send(press))
        m_held.insert(identity(press));
    m_pointer->holdModifiers(heldAfter(*event));
}

void TerminalInput::keyReleased(QKeyEvent* event)
{
    event->accept();
    m_pointer->holdModifiers(heldAfter(*event));
    // A key that is held down is told by its presses; and what was no press is no release.
    if (event->isAutoRepeat())
        return;
    const TerminalKeyPress press = read(*event);
    if (m_held.remove(identity(press)))
        send(press);
}

bool TerminalInput::send(const TerminalKeyPress& press)
{
    TerminalSession& session = m_view.session();
    const Kovalt::Terminal& terminal = session.terminal();
    const KittyKeyboardFlags flags = terminal.keyboardMode().flags();
    const auto event = TerminalKeys::event(press, flags);
    if (!event)
        return false;
    const Kovalt::TerminalModes& modes = terminal.modes();
    const auto bytes =
        Kovalt::KittyKeyboardEncoder::encode(flags, *event,
                                             {.applicationCursor = modes.applicationCursor,
                                              .applicationKeypad = modes.applicationKeypad,
                                              .backspaceSendsBackspace = false});
    if (bytes) {
        session.send(*bytes);
        if (!isModifierAlone(*event) && press.type != Kovalt::KittyKeyboardEventType::Release)
            typed();
    }
    return true;
}

void TerminalInput::typed()
{
    TerminalSession& session = m_view.session();
    const Kovalt::Buffer& buffer = session.terminal().buffer();
    session.scrollTo(buffer.yBase);
    if (session.selection().selection()) {
        session.selection().clear();
        m_view.contentsMoved();
    }
    m_view.restartCursorBlink();
}

void TerminalInput::run(Shortcuts::Command command)
{
    using enum Shortcuts::Command;
    switch (command) {
    case Copy:
        return copy();
    case Paste:
        return paste();
    case PasteSelection:
        return pasteSelection();
    case SelectAll:
        return selectAll();
    case Find:
        return find();
    case ScrollPageUp:
        return scrollPages(-1);
    case ScrollPageDown:
        return scrollPages(1);
    case ScrollToTop:
        return scrollToTop();
    case ScrollToBottom:
        return scrollToBottom();
    case PreviousPrompt:
        return jumpToPrompt(-1);
    case NextPrompt:
        return jumpToPrompt(1);
    default:
        return;
    }
}

// --- input methods

void TerminalInput::inputMethod(QInputMethodEvent* event)
{
    const QString preedit = event->preeditString();
    qsizetype cursor = preedit.size();
    for (const QInputMethodEvent::Attribute& attribute : event->attributes()) {
        if (attribute.type == QInputMethodEvent::Cursor)
            cursor = attribute.length != 0 ? attribute.start : -1;
    }
    m_isComposing = !preedit.isEmpty();
    m_view.setPreedit(preedit, int(cursor));
    if (!event->commitString().isEmpty())
        sendText(event->commitString());
    event->accept();
}

void TerminalInput::sendText(const QString& text)
{
    TerminalSession& session = m_view.session();
    const KittyKeyboardFlags flags = session.terminal().keyboardMode().flags();
    const QByteArray utf8 = text.toUtf8();
    std::string bytes(viewOf(utf8));
    // A program that takes text only as part of a key gets it as that of no key.
    constexpr auto TextOfKeys = KittyKeyboardFlags::ReportAllKeys | KittyKeyboardFlags::ReportText;
    if (flags.hasAll(TextOfKeys)) {
        Kovalt::KittyKeyEvent event;
        event.text = bytes;
        bytes = Kovalt::KittyKeyboardEncoder::encode(flags, event, {}).value_or(bytes);
    }
    session.send(bytes);
    typed();
}

QRect TerminalInput::cursorRectangle() const
{
    const Kovalt::Buffer& buffer = m_view.session().terminal().buffer();
    const int row = buffer.y + buffer.yBase - buffer.yDisp;
    return m_view.geometryOfCells().rect(buffer.standingColumn(), row).toAlignedRect();
}

QVariant TerminalInput::inputMethodQuery(Qt::InputMethodQuery query) const
{
    switch (query) {
    case Qt::ImEnabled:
        return true;
    case Qt::ImCursorRectangle:
    case Qt::ImAnchorRectangle:
        return cursorRectangle();
    case Qt::ImCursorPosition:
    case Qt::ImAnchorPosition:
        return 0;
    case Qt::ImSurroundingText:
    case Qt::ImCurrentSelection:
        return QString();
    case Qt::ImHints:
        return int(m_view.inputMethodHints());
    default:
        return {};
    }
}

// --- pointer

void TerminalInput::mousePressed(QMouseEvent* event)
{
    m_pointer->press(*event);
    event->accept();
}

void TerminalInput::mouseMoved(QMouseEvent* event)
{
    m_pointer->move(*event);
    event->accept();
}

void TerminalInput::mouseReleased(QMouseEvent* event)
{
    m_pointer->release(*event);
    event->accept();
}

void TerminalInput::mouseDoubleClicked(QMouseEvent* event)
{
    m_pointer->doubleClick(*event);
    event->accept();
}

void TerminalInput::wheelTurned(QWheelEvent* event)
{
    m_pointer->turnWheel(*event);
    event->accept();
}

void TerminalInput::pointerLeft()
{
    m_pointer->leave();
}

void TerminalInput::focusChanged(QFocusEvent* event)
{
    if (event->gotFocus() && event->reason() == Qt::MouseFocusReason)
        m_pointer->noteFocusByClick();
    if (event->lostFocus()) {
        m_held.clear();
        m_pointer->holdModifiers({});
    }
    // A menu above the pane doesn't take the user elsewhere.
    if (event->reason() != Qt::PopupFocusReason)
        m_view.session().setFocused(event->gotFocus());
}

void TerminalInput::askForMenu(QContextMenuEvent* event)
{
    event->accept();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const QRect cursor = cursorRectangle().intersected(m_view.rect());
        emit contextMenuRequested(m_view.mapToGlobal(cursor.bottomLeft()));
    } else if (!TerminalMouse::isReported(m_view.session().terminal().modes(),
                                          event->modifiers())) {
        emit contextMenuRequested(event->globalPos());
    }
}

bool TerminalInput::dragged(QDropEvent* event)
{
    if (!m_paste->canTake(*event->mimeData()))
        return false;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    return true;
}

void TerminalInput::dropped(QDropEvent* event)
{
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_view.setFocus(Qt::MouseFocusReason);
    m_paste->take(*event->mimeData());
}

// --- clipboard

bool TerminalInput::canCopy() const
{
    return m_view.session().selection().selection().has_value();
}

void TerminalInput::copy()
{
    TerminalSession& session = m_view.session();
    if (auto data = TerminalClipboard::copied(session.terminal(), session.selection()))
        QGuiApplication::clipboard()->setMimeData(data.release());
}

void TerminalInput::paste()
{
    if (const QMimeData* const data = QGuiApplication::clipboard()->mimeData())
        m_paste->take(*data);
}

void TerminalInput::pasteSelection()
{
    QClipboard& clipboard = *QGuiApplication::clipboard();
    const bool hasSelection = clipboard.supportsSelection();
    m_paste->takeText(clipboard.text(hasSelection ? QClipboard::Selection : QClipboard::Clipboard));
}

void TerminalInput::keepSelection()
{
    QClipboard& clipboard = *QGuiApplication::clipboard();
    const QString text = QString::fromStdString(m_view.session().selection().text());
    if (clipboard.supportsSelection() && !text.isEmpty())
        clipboard.setText(text, QClipboard::Selection);
}

void TerminalInput::selectAll()
{
    m_view.session().selection().selectAll();
    keepSelection();
    m_view.contentsMoved();
}

// --- history

void TerminalInput::find()
{
    m_findBar->open(QString::fromStdString(m_view.session().selection().text()));
}

void TerminalInput::scrollPages(int pages)
{
    TerminalSession& session = m_view.session();
    const Kovalt::Terminal& terminal = session.terminal();
    session.scrollTo(terminal.buffer().yDisp + pages * terminal.rows());
}

void TerminalInput::scrollToTop()
{
    m_view.session().scrollTo(0);
}

void TerminalInput::scrollToBottom()
{
    TerminalSession& session = m_view.session();
    session.scrollTo(session.terminal().buffer().yBase);
}

void TerminalInput::jumpToPrompt(int direction)
{
    TerminalSession& session = m_view.session();
    const Kovalt::Buffer& buffer = session.terminal().buffer();
    const auto prompt = direction < 0 ? Kovalt::ShellMarks::previousPrompt(buffer, buffer.yDisp)
                                      : Kovalt::ShellMarks::nextPrompt(buffer, buffer.yDisp);
    if (prompt)
        session.scrollTo(prompt->position.row);
    else if (direction > 0)
        session.scrollTo(buffer.yBase);
}

} // namespace Bralto
