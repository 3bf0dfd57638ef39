#include "Views/Terminal/TerminalMouse.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Bralto {

namespace {

using Kovalt::MouseMode;

// Buttons beyond the first three come in groups of four, each with a bit of its own.
constexpr int SecondGroup = 64; ///< The wheel.
constexpr int ThirdGroup = 128; ///< Back and forward.

constexpr int MostScrolledRows = 8;

int modifierFlags(MouseMode mode, Qt::KeyboardModifiers held)
{
    return Kovalt::MouseEncoder::encodeButton(mode, 0, false, TerminalMouse::modifiers(held));
}

} // namespace

bool TerminalMouse::isReported(const Kovalt::TerminalModes& modes, Qt::KeyboardModifiers held)
{
    if (modes.mouseMode == MouseMode::Off)
        return false;
    return modes.mouseShiftCapture || !held.testFlag(Qt::ShiftModifier);
}

Kovalt::MouseModifiers TerminalMouse::modifiers(Qt::KeyboardModifiers held)
{
    return {.shift = held.testFlag(Qt::ShiftModifier),
            .meta = held.testFlag(Qt::AltModifier),
            .control = held.testFlag(Qt::ControlModifier)};
}

std::optional<int> TerminalMouse::pressFlags(MouseMode mode, Qt::MouseButton button,
                                             Qt::KeyboardModifiers held)
{
    const int rest = modifierFlags(mode, held);
    switch (button) {
    case Qt::LeftButton:
        return rest;
    case Qt::MiddleButton:
        return rest + 1;
    case Qt::RightButton:
        return rest + 2;
    case Qt::BackButton:
        return rest + ThirdGroup;
    case Qt::ForwardButton:
        return rest + ThirdGroup + 1;
    default:
        return std::nullopt;
    }
}

std::optional<int> TerminalMouse::releaseFlags(MouseMode mode, Qt::KeyboardModifiers held)
{
    if (mode == MouseMode::Off || mode == MouseMode::X10)
        return std::nullopt;
    return Kovalt::MouseEncoder::encodeButton(mode, 0, true, modifiers(held));
}

std::optional<int> TerminalMouse::motionFlags(MouseMode mode, Qt::MouseButtons buttons,
                                              Qt::KeyboardModifiers held)
{
    const bool wantsDrags = mode == MouseMode::ButtonEventTracking || mode == MouseMode::AnyEvent;
    for (const auto button : {Qt::LeftButton, Qt::MiddleButton, Qt::RightButton}) {
        if (buttons.testFlag(button))
            return wantsDrags ? pressFlags(mode, button, held) : std::nullopt;
    }
    return Kovalt::sendsMotionEvent(mode) ? releaseFlags(mode, held) : std::nullopt;
}

int TerminalMouse::wheelFlags(MouseMode mode, Turn turn, Qt::KeyboardModifiers held)
{
    return modifierFlags(mode, held) + SecondGroup + int(turn);
}

std::optional<std::string> TerminalMouse::turnToTheRight(Kovalt::MouseProtocolEncoding protocol,
                                                         const Kovalt::MouseEvent& event)
{
    using enum Kovalt::MouseProtocolEncoding;
    const int right = SecondGroup + int(Turn::Right);
    if ((protocol != Sgr && protocol != SgrPixel) || (event.buttonFlags & right) != right)
        return std::nullopt;
    const bool tellsPixels = protocol == SgrPixel;
    const int x = tellsPixels ? event.pixelX : event.x + 1;
    const int y = tellsPixels ? event.pixelY : event.y + 1;
    return '<' + std::to_string(event.buttonFlags) + ';' + std::to_string(x) + ';' +
           std::to_string(y) + 'M';
}

Kovalt::MouseEvent TerminalMouse::eventAt(const TerminalGeometry& geometry, QPointF place,
                                          double pixelRatio, int flags)
{
    const Kovalt::Position cell = geometry.cellAt(place);
    const auto pixel = [pixelRatio](double distance, double extent) {
        const int last = std::max(0, int(std::lround(extent * pixelRatio)) - 1);
        return std::clamp(int(std::floor(distance * pixelRatio)), 0, last);
    };
    return {.buttonFlags = flags,
            .x = cell.col,
            .y = cell.row,
            .pixelX = pixel(place.x() - geometry.origin.x(), geometry.cell.width() * geometry.cols),
            .pixelY =
                pixel(place.y() - geometry.origin.y(), geometry.cell.height() * geometry.rows)};
}

std::string TerminalMouse::arrows(int steps, bool applicationCursor)
{
    const std::string key =
        std::string(applicationCursor ? "\x1bO" : "\x1b[") + (steps < 0 ? 'A' : 'B');
    std::string keys;
    for (int i = 0; i < std::abs(steps); ++i)
        keys += key;
    return keys;
}

Kovalt::SelectionPoint TerminalMouse::selectionPoint(const TerminalGeometry& geometry,
                                                     QPointF place, int topRow)
{
    Kovalt::Position cell = geometry.cellAt(place);
    const QRectF area = geometry.rect(cell.col, cell.row);
    cell.row += topRow;
    return {cell, place.x() < area.center().x() ? Kovalt::CellSide::Left : Kovalt::CellSide::Right};
}

Kovalt::SelectionMode TerminalMouse::selectionMode(int clicks, bool block)
{
    switch ((clicks - 1) % 3) {
    case 1:
        return Kovalt::SelectionMode::Word;
    case 2:
        return Kovalt::SelectionMode::Line;
    default:
        return block ? Kovalt::SelectionMode::Block : Kovalt::SelectionMode::Character;
    }
}

int TerminalMouse::dragScroll(const TerminalGeometry& geometry, QPointF place)
{
    const double top = geometry.origin.y();
    const double bottom = top + geometry.rows * geometry.cell.height();
    const double beyond = place.y() < top       ? place.y() - top
                          : place.y() >= bottom ? place.y() - bottom + 1
                                                : 0;
    const double rows = beyond / geometry.cell.height();
    const int whole = rows < 0 ? int(std::floor(rows)) : int(std::ceil(rows));
    return std::clamp(whole, -MostScrolledRows, MostScrolledRows);
}

int WheelSteps::take(double steps)
{
    if (m_rest * steps < 0)
        m_rest = 0;
    m_rest += steps;
    const double whole = std::trunc(m_rest);
    m_rest -= whole;
    return int(whole);
}

} // namespace Bralto
