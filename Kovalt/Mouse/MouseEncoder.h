#pragma once

#include "Kovalt/ControlForm.h"
#include "Kovalt/Mouse/MouseMode.h"

#include <string>

namespace Kovalt {

/// One mouse event in cells from 0 and in pixels of the screen.
struct MouseEvent {
    int buttonFlags = 0; ///< As `MouseEncoder::encodeButton` gives them.
    int x = 0;
    int y = 0;
    int pixelX = 0;
    int pixelY = 0;
};

/// What is held down during a mouse event.
struct MouseModifiers {
    bool shift = false;
    bool meta = false;
    bool control = false;
};

/// Turns mouse events into what the program is sent. Functions over values, any thread.
namespace MouseEncoder {

/// What motion adds to the button flags.
inline constexpr int MotionFlag = 32;

/// The flags of a button: 0 left, 1 middle, 2 right, 4 and 5 the wheel up and down. A release is 3
/// whatever the button.
[[nodiscard]] int encodeButton(MouseMode mode, int button, bool release, MouseModifiers modifiers);

[[nodiscard]] std::string encodeEvent(MouseProtocolEncoding encoding, ControlForm form,
                                      const MouseEvent& event);
[[nodiscard]] std::string encodeMotion(MouseProtocolEncoding encoding, ControlForm form,
                                       MouseEvent event);

/// Appends a value as the UTF-8 encoding of the mouse writes it: 2047 is 0, more is cut to 2047.
void encodeMouseUtf(std::string& bytes, int value);

} // namespace MouseEncoder

} // namespace Kovalt
