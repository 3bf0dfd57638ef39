#pragma once

#include "Kovalt/Keyboard/KittyKeyEvent.h"
#include "Kovalt/Keyboard/KittyKeyboardFlags.h"

#include <optional>
#include <string>

namespace Kovalt {

/// The terminal's modes that change what a key sends.
struct KeyboardOptions {
    bool applicationCursor = false;
    bool applicationKeypad = false;
    bool backspaceSendsBackspace = false; ///< 0x08 instead of 0x7F.
};

/// Turns a key event into what the program is sent. Functions over values, any thread.
namespace KittyKeyboardEncoder {

/// None when nothing is sent.
[[nodiscard]] std::optional<std::string>
encode(KittyKeyboardFlags flags, const KittyKeyEvent& event, const KeyboardOptions& options);

} // namespace KittyKeyboardEncoder

} // namespace Kovalt
