#include "Views/Terminal/TerminalPointer.h"

#include "Views/Terminal/TerminalView.h"

#include <QApplication>
#include <QMouseEvent>
#include <QStyleHints>
#include <QWheelEvent>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace Bralto {

namespace {

using Kovalt::MouseMode;

constexpr int DragTick = 50;  ///< Milliseconds between two scrolls of a drag outside the view.
constexpr double Notch = 120; ///< What one click of a wheel's catch turns it by.

bool isCtrl(Qt::KeyboardModifiers held)
{
    return held.testFlag(Qt::ControlModifier);
}

} // namespace

TerminalPointer::TerminalPointer(TerminalView& view)
    : QObject(&view)
    , m_view(view)
    , m_links(view)
{
    m_dragTimer.setInterval(DragTick);
    connect(&m_dragTimer, &QTimer::timeout, this, &TerminalPointer::scrollDrag);
    connect(&m_links, &LinkPointer::marked, this, &TerminalPointer::showShape);
    connect(&view.session(), &TerminalSession::modesChanged, this, &TerminalPointer::showShape);
    showShape();
}

const Kovalt::TerminalModes& TerminalPointer::modes() const
{
    return m_view.session().terminal().modes();
}

void TerminalPointer::showShape()
{
    Qt::CursorShape shape = Qt::IBeamCursor;
    if (m_links.isOnLink())
        shape = Qt::PointingHandCursor;
    else if (modes().mouseMode != MouseMode::Off)
        shape = Qt::ArrowCursor;
    if (m_view.cursor().shape() != shape)
        m_view.setCursor(shape);
}

// --- buttons

void TerminalPointer::press(const QMouseEvent& event)
{
    m_place = event.position();
    m_isInside = true;
    if (!m_view.hasFocus())
        m_view.setFocus(Qt::MouseFocusReason);
    m_links.moveTo(m_view.geometryOfCells().cellAt(m_place), isCtrl(event.modifiers()));

    const bool isLeft = event.button() == Qt::LeftButton;
    // A link wins over the program: who holds Ctrl over one means it.
    m_onLink = isLeft && m_links.isOnLink();
    if (m_onLink)
        return;
    if (TerminalMouse::isReported(modes(), event.modifiers())) {
        reportPress(event);
        return;
    }
    if (isLeft)
        beginSelection(event);
    else if (event.button() == Qt::MiddleButton)
        emit pasteSelectionRequested();
}

void TerminalPointer::countClick(const QMouseEvent& event)
{
    const QStyleHints& hints = *QGuiApplication::styleHints();
    const bool isQuick =
        event.timestamp() - m_lastClick <= quint64(hints.mouseDoubleClickInterval());
    const bool isNear =
        (event.position() - m_clickPlace).manhattanLength() <= hints.mouseDoubleClickDistance();
    m_clicks = m_clicks > 0 && isQuick && isNear ? m_clicks + 1 : 1;
    m_lastClick = event.timestamp();
    m_clickPlace = event.position();
}

void TerminalPointer::doubleClick(const QMouseEvent& event)
{
    // The window system has counted it already, perhaps by another measure.
    m_clicks = std::max(1, m_clicks);
    m_lastClick = event.timestamp();
    m_clickPlace = event.position();
    press(event);
}

void TerminalPointer::beginSelection(const QMouseEvent& event)
{
    countClick(event);
    TerminalSession& session = m_view.session();
    const auto point = TerminalMouse::selectionPoint(m_view.geometryOfCells(), event.position(),
                                                     session.terminal().buffer().yDisp);
    const bool extends = event.modifiers().testFlag(Qt::ShiftModifier) && m_clicks == 1 &&
                         session.selection().selection().has_value();
    if (extends)
        session.selection().shiftExtend(point);
    else
        session.selection().start(
            TerminalMouse::selectionMode(m_clicks, event.modifiers().testFlag(Qt::AltModifier)),
            point);
    m_isSelecting = true;
    m_hasDragged = extends;
    m_view.contentsMoved();
}

void TerminalPointer::move(const QMouseEvent& event)
{
    const QPointF from = m_place;
    m_place = event.position();
    m_isInside = m_view.rect().contains(m_place.toPoint());
    if (m_isSelecting) {
        const int distance = QGuiApplication::styleHints()->startDragDistance() / 2;
        m_hasDragged |= (m_place - m_clickPlace).manhattanLength() >= distance;
        if (m_hasDragged)
            extendSelection(m_place);
        return;
    }
    if (!event.buttons())
        m_links.moveTo(m_view.geometryOfCells().cellAt(m_place), isCtrl(event.modifiers()));
    if (m_onLink || m_place == from)
        return;
    if (m_reported || TerminalMouse::isReported(modes(), event.modifiers()))
        reportMotion(event);
}

void TerminalPointer::extendSelection(QPointF place)
{
    TerminalSession& session = m_view.session();
    const TerminalGeometry& geometry = m_view.geometryOfCells();
    session.selection().extend(
        TerminalMouse::selectionPoint(geometry, place, session.terminal().buffer().yDisp));
    m_view.contentsMoved();
    if (TerminalMouse::dragScroll(geometry, place) == 0)
        m_dragTimer.stop();
    else if (!m_dragTimer.isActive())
        m_dragTimer.start();
}

void TerminalPointer::scrollDrag()
{
    scrollRows(TerminalMouse::dragScroll(m_view.geometryOfCells(), m_place));
    extendSelection(m_place);
}

void TerminalPointer::release(const QMouseEvent& event)
{
    const bool broughtFocus = std::exchange(m_bringsFocus, false);
    m_place = event.position();
    if (m_reported.testFlag(event.button())) {
        m_reported.setFlag(event.button(), false);
        if (const auto flags = TerminalMouse::releaseFlags(modes().mouseMode, event.modifiers()))
            report(m_place, *flags, false);
        return;
    }
    if (event.button() != Qt::LeftButton)
        return;
    if (std::exchange(m_onLink, false)) {
        m_links.moveTo(m_view.geometryOfCells().cellAt(m_place), isCtrl(event.modifiers()));
        m_links.follow();
        return;
    }
    if (!std::exchange(m_isSelecting, false))
        return;
    m_dragTimer.stop();
    TerminalSession& session = m_view.session();
    if (session.selection().selection()) {
        emit selected();
        return;
    }
    if (m_hasDragged || m_clicks != 1)
        return;
    const Kovalt::Position cell = m_view.geometryOfCells().cellAt(m_place);
    if (isCtrl(event.modifiers())) {
        // The link may not be known yet to lead somewhere.
        m_links.moveTo(cell, true);
        m_links.follow();
    } else if (!broughtFocus && event.modifiers() == Qt::NoModifier) {
        session.terminal().handleSemanticPromptClick(cell, {});
    }
}

void TerminalPointer::leave()
{
    m_isInside = false;
    m_lastReport.reset();
    m_links.leave();
}

void TerminalPointer::holdModifiers(Qt::KeyboardModifiers held)
{
    if (m_isInside && !m_isSelecting && !m_reported)
        m_links.moveTo(m_view.geometryOfCells().cellAt(m_place), isCtrl(held));
}

// --- reports

void TerminalPointer::reportPress(const QMouseEvent& event)
{
    const auto flags =
        TerminalMouse::pressFlags(modes().mouseMode, event.button(), event.modifiers());
    if (!flags)
        return;
    m_reported |= event.button();
    report(event.position(), *flags, false);
}

void TerminalPointer::reportMotion(const QMouseEvent& event)
{
    const auto flags = TerminalMouse::motionFlags(modes().mouseMode, m_reported, event.modifiers());
    if (flags)
        report(event.position(), *flags, true);
}

void TerminalPointer::report(QPointF place, int flags, bool isMotion)
{
    Kovalt::Terminal& terminal = m_view.session().terminal();
    const Kovalt::MouseEvent event =
        TerminalMouse::eventAt(m_view.geometryOfCells(), place, m_view.devicePixelRatioF(), flags);
    const bool tellsPixels = modes().mouseProtocol == Kovalt::MouseProtocolEncoding::SgrPixel;
    const QPoint told = tellsPixels ? QPoint(event.pixelX, event.pixelY) : QPoint(event.x, event.y);
    if (isMotion && m_lastReport == told)
        return;
    m_lastReport = told;
    if (isMotion)
        terminal.sendMotion(event);
    else if (const auto body = TerminalMouse::turnToTheRight(modes().mouseProtocol, event))
        terminal.sendCsi(*body);
    else
        terminal.sendEvent(event);
}

// --- wheel

void TerminalPointer::turnWheel(const QWheelEvent& event)
{
    const QPointF notches = QPointF(event.angleDelta()) / Notch;
    if (TerminalMouse::isReported(modes(), event.modifiers())) {
        reportWheel(event.position(), notches, event.modifiers());
        return;
    }
    // Pixels can be relied on only where gestures are told too.
    const bool isSmooth = event.phase() != Qt::NoScrollPhase && !event.pixelDelta().isNull();
    const double rows = isSmooth ? -event.pixelDelta().y() / m_view.geometryOfCells().cell.height()
                                 : -notches.y() * QGuiApplication::styleHints()->wheelScrollLines();
    const int whole = m_rows.take(rows);
    if (whole != 0)
        scrollRows(whole);
}

void TerminalPointer::reportWheel(QPointF place, QPointF notches, Qt::KeyboardModifiers held)
{
    using TerminalMouse::Turn;
    const auto tell = [&](int steps, Turn back, Turn forth) {
        const int flags =
            TerminalMouse::wheelFlags(modes().mouseMode, steps > 0 ? back : forth, held);
        for (int i = 0; i < std::abs(steps); ++i)
            report(place, flags, false);
    };
    tell(m_notchesUp.take(notches.y()), Turn::Up, Turn::Down);
    tell(m_notchesAside.take(notches.x()), Turn::Left, Turn::Right);
}

void TerminalPointer::scrollRows(int rows)
{
    TerminalSession& session = m_view.session();
    if (session.terminal().isAlternateBufferActive()) {
        if (modes().alternateScrollMode && !m_isSelecting)
            session.send(TerminalMouse::arrows(rows, modes().applicationCursor));
        return;
    }
    session.scrollTo(session.terminal().buffer().yDisp + rows);
}

} // namespace Bralto
