#include "Kovalt/Keyboard/KeySequences.h"

#include <string_view>

namespace Kovalt {

namespace {

using Modifiers = KittyKeyboardModifiers;
using Key = KittyFunctionalKey;

/// What follows ESC O in application keypad mode, from the first key of the keypad to the last.
constexpr std::string_view ApplicationLetters = "pqrstuvwxynojmkMXltvxryswqpnu";
static_assert(ApplicationLetters.size() == static_cast<std::size_t>(Key::KeypadBegin) -
                                               static_cast<std::size_t>(Key::Keypad0) + 1);

/// The keypad as a second set of the keys that move the cursor.
std::optional<std::string> navigation(Key key, unsigned modifier)
{
    const auto letter = [modifier](char final) {
        return KeySequences::legacyNavigation(final, modifier, false);
    };
    const auto tilde = [modifier](int number) {
        return KeySequences::legacyTilde(number, modifier);
    };
    switch (key) {
    case Key::KeypadLeft:
        return letter('D');
    case Key::KeypadRight:
        return letter('C');
    case Key::KeypadUp:
        return letter('A');
    case Key::KeypadDown:
        return letter('B');
    case Key::KeypadHome:
        return letter('H');
    case Key::KeypadEnd:
        return letter('F');
    case Key::KeypadPageUp:
        return tilde(5);
    case Key::KeypadPageDown:
        return tilde(6);
    case Key::KeypadInsert:
        return tilde(2);
    case Key::KeypadDelete:
        return tilde(3);
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<std::string> KeySequences::legacyKeypad(Key key, const KittyKeyEvent& event,
                                                      Modifiers modifiers,
                                                      const KeyboardOptions& options)
{
    if (options.applicationKeypad && modifiers.isEmpty()) {
        const auto index = static_cast<std::size_t>(key) - static_cast<std::size_t>(Key::Keypad0);
        return std::string("\x1bO") + ApplicationLetters[index];
    }
    const std::string prefix = modifiers.hasAny(Modifiers::Alt) ? "\x1b" : "";
    if (key == Key::KeypadEnter)
        return prefix + '\r';
    if (event.text && !event.text->empty())
        return prefix + *event.text;
    return navigation(key, modifiers.bits() + 1);
}

} // namespace Kovalt
