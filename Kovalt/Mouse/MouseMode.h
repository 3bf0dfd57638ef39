#pragma once

#include <cstdint>

namespace Kovalt {

/// Which mouse events a program asked for.
enum class MouseMode : std::uint8_t {
    Off,
    X10,                 ///< Presses only.
    Vt200,               ///< Presses and releases.
    ButtonEventTracking, ///< And motion while a button is down.
    AnyEvent,            ///< And any other motion.
};

/// Motion without a button is sent.
[[nodiscard]] constexpr bool sendsMotionEvent(MouseMode mode)
{
    return mode == MouseMode::AnyEvent;
}

/// Shift, meta and control are told with a button.
[[nodiscard]] constexpr bool sendsModifiers(MouseMode mode)
{
    return mode >= MouseMode::Vt200;
}

/// How a mouse event is written.
enum class MouseProtocolEncoding : std::uint8_t { X10, Utf8, Sgr, Urxvt, SgrPixel };

} // namespace Kovalt
