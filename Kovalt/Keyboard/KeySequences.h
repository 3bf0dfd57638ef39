#pragma once

#include "Kovalt/Keyboard/KittyKeyEvent.h"
#include "Kovalt/Keyboard/KittyKeyboardEncoder.h"

#include <optional>
#include <string>

/// The forms that a key event can take on the wire, and the choice among them.
namespace Kovalt::KeySequences {

// The forms of the protocol

/// What is told beside the key.
struct CsiContent {
    KittyKeyboardModifiers modifiers; ///< As they are told: with the locks or without.
    bool eventType = false;           ///< Repeats and releases are told apart from presses.
    bool alternates = false;
    bool text = false;
};

/// CSI code : shifted : base ; modifiers : type ; text u
[[nodiscard]] std::string encodeCsiU(char32_t code, const KittyKeyEvent& event,
                                     const CsiContent& content);
/// CSI number ; modifiers : type letter, for keys with a letter or a tilde. The number 1 of a
/// letter is left out when nothing follows it.
[[nodiscard]] std::string encodeCsiWithModifier(const KittyKeyForm& form,
                                                KittyKeyboardEventType eventType,
                                                const CsiContent& content);

// The forms from before the protocol. None when such a terminal sends nothing.

/// A key with a character.
[[nodiscard]] std::optional<std::string> legacyText(const KittyKeyEvent& event);
/// A key with a function, the keypad included.
[[nodiscard]] std::optional<std::string> legacyFunctional(KittyFunctionalKey key,
                                                          const KittyKeyEvent& event,
                                                          const KeyboardOptions& options);
/// Escape, enter, tab and backspace.
[[nodiscard]] std::optional<std::string>
legacySpecial(KittyFunctionalKey key, const KittyKeyEvent& event, const KeyboardOptions& options);
/// The keypad; `modifiers` without the locks.
[[nodiscard]] std::optional<std::string> legacyKeypad(KittyFunctionalKey key,
                                                      const KittyKeyEvent& event,
                                                      KittyKeyboardModifiers modifiers,
                                                      const KeyboardOptions& options);
[[nodiscard]] std::string legacyTilde(int number, unsigned modifier);
[[nodiscard]] std::string legacyNavigation(char letter, unsigned modifier, bool application);

} // namespace Kovalt::KeySequences
