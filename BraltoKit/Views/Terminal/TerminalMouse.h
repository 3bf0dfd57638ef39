#pragma once

#include "Kovalt/Mouse/MouseEncoder.h"
#include "Kovalt/Selection/Selection.h"
#include "Kovalt/TerminalState.h"
#include "Views/Terminal/TerminalGeometry.h"

#include <QPoint>
#include <QPointF>
#include <Qt>

#include <optional>
#include <string>

namespace Bralto {

/// What the pointer means to a terminal. Functions over values.
namespace TerminalMouse {

/// Whether the program, and not the user's selection, gets the pointer. Shift keeps it for the
/// user unless the program asked for shift too.
[[nodiscard]] bool isReported(const Kovalt::TerminalModes& modes, Qt::KeyboardModifiers held);

[[nodiscard]] Kovalt::MouseModifiers modifiers(Qt::KeyboardModifiers held);

/// The flags of a button's press; none for a button that no protocol knows.
[[nodiscard]] std::optional<int> pressFlags(Kovalt::MouseMode mode, Qt::MouseButton button,
                                            Qt::KeyboardModifiers held);
/// The flags of any button's release; none if the program doesn't want to know.
[[nodiscard]] std::optional<int> releaseFlags(Kovalt::MouseMode mode, Qt::KeyboardModifiers held);
/// The flags of a motion while these buttons are held, without the motion's own; none if the
/// program doesn't want to know.
[[nodiscard]] std::optional<int> motionFlags(Kovalt::MouseMode mode, Qt::MouseButtons buttons,
                                             Qt::KeyboardModifiers held);

enum class Turn { Up, Down, Left, Right };
/// The flags of one step of a wheel.
[[nodiscard]] int wheelFlags(Kovalt::MouseMode mode, Turn turn, Qt::KeyboardModifiers held);

/// The body of the control sequence for a turn to the right, in the protocols where its flags read
/// as those of a release; none in the others.
[[nodiscard]] std::optional<std::string> turnToTheRight(Kovalt::MouseProtocolEncoding protocol,
                                                        const Kovalt::MouseEvent& event);

/// An event at a place of the view, which the nearest cell stands for. Pixels are those of the
/// device, from the corner of the screen.
[[nodiscard]] Kovalt::MouseEvent eventAt(const TerminalGeometry& geometry, QPointF place,
                                         double pixelRatio, int flags);

/// What the arrow keys send for steps of the wheel, up if negative, on a screen without history.
[[nodiscard]] std::string arrows(int steps, bool applicationCursor);

/// Where a selection has its end when the pointer is there. Above and below the view it is the
/// first or last row.
[[nodiscard]] Kovalt::SelectionPoint selectionPoint(const TerminalGeometry& geometry, QPointF place,
                                                    int topRow);
/// What a click selects by: the count of quick clicks, from 1, and whether alt is held.
[[nodiscard]] Kovalt::SelectionMode selectionMode(int clicks, bool block);

/// Rows to scroll at each tick while a selection is dragged above or below the view; the further,
/// the more. 0 inside.
[[nodiscard]] int dragScroll(const TerminalGeometry& geometry, QPointF place);

} // namespace TerminalMouse

/// Collects turns of a wheel until they make whole steps. A turn the other way begins anew.
class WheelSteps {
public:
    /// Whole steps so far.
    [[nodiscard]] int take(double steps);
    void reset() { m_rest = 0; }

private:
    double m_rest = 0;
};

} // namespace Bralto
