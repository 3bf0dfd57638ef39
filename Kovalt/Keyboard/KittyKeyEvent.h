#pragma once

#include "Kovalt/Keyboard/KittyKey.h"
#include "Kovalt/Keyboard/OptionBits.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Kovalt {

/// What was held down, and the two locks. On the wire the sum of the bits plus one.
class KittyKeyboardModifiers : public OptionBits<KittyKeyboardModifiers> {
public:
    static const KittyKeyboardModifiers Shift;
    static const KittyKeyboardModifiers Alt;
    static const KittyKeyboardModifiers Ctrl;
    static const KittyKeyboardModifiers Super;
    static const KittyKeyboardModifiers Hyper;
    static const KittyKeyboardModifiers Meta;
    static const KittyKeyboardModifiers CapsLock;
    static const KittyKeyboardModifiers NumLock;
    static const KittyKeyboardModifiers Locks;
};
inline constexpr KittyKeyboardModifiers KittyKeyboardModifiers::Shift =
    KittyKeyboardModifiers::of(1);
inline constexpr KittyKeyboardModifiers KittyKeyboardModifiers::Alt = KittyKeyboardModifiers::of(2);
inline constexpr KittyKeyboardModifiers KittyKeyboardModifiers::Ctrl =
    KittyKeyboardModifiers::of(4);
inline constexpr KittyKeyboardModifiers KittyKeyboardModifiers::Super =
    KittyKeyboardModifiers::of(8);
inline constexpr KittyKeyboardModifiers KittyKeyboardModifiers::Hyper =
    KittyKeyboardModifiers::of(16);
inline constexpr KittyKeyboardModifiers KittyKeyboardModifiers::Meta =
    KittyKeyboardModifiers::of(32);
inline constexpr KittyKeyboardModifiers KittyKeyboardModifiers::CapsLock =
    KittyKeyboardModifiers::of(64);
inline constexpr KittyKeyboardModifiers KittyKeyboardModifiers::NumLock =
    KittyKeyboardModifiers::of(128);
inline constexpr KittyKeyboardModifiers KittyKeyboardModifiers::Locks =
    KittyKeyboardModifiers::of(64 | 128);

/// On the wire the ordinal plus one.
enum class KittyKeyboardEventType : std::uint8_t { Press, RepeatPress, Release };

/// One key event as the view saw it.
struct KittyKeyEvent {
    KittyKey key;
    KittyKeyboardModifiers modifiers;
    KittyKeyboardEventType eventType = KittyKeyboardEventType::Press;
    /// What the key types, UTF-8.
    std::optional<std::string> text;
    /// The key's character with shift held.
    std::optional<char32_t> shiftedKey;
    /// The character of the key at this place on the standard layout.
    std::optional<char32_t> baseLayoutKey;
    /// An input method is in the middle of a character.
    bool composing = false;
};

} // namespace Kovalt
