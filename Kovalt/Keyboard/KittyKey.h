#pragma once

#include <cstddef>
#include <cstdint>

namespace Kovalt {

/// Keys that make no text of their own. The order is the one of the wire numbers within each group.
enum class KittyFunctionalKey : std::uint8_t {
    Escape,
    Enter,
    Tab,
    Backspace,
    Insert,
    Delete,
    Up,
    Down,
    Left,
    Right,
    Home,
    End,
    PageUp,
    PageDown,
    F1,
    F2,
    F3,
    F4,
    F5,
    F6,
    F7,
    F8,
    F9,
    F10,
    F11,
    F12,
    F13,
    F14,
    F15,
    F16,
    F17,
    F18,
    F19,
    F20,
    F21,
    F22,
    F23,
    F24,
    F25,
    F26,
    F27,
    F28,
    F29,
    F30,
    F31,
    F32,
    F33,
    F34,
    F35,
    Menu,
    CapsLock,
    ScrollLock,
    NumLock,
    PrintScreen,
    Pause,
    Keypad0,
    Keypad1,
    Keypad2,
    Keypad3,
    Keypad4,
    Keypad5,
    Keypad6,
    Keypad7,
    Keypad8,
    Keypad9,
    KeypadDecimal,
    KeypadDivide,
    KeypadMultiply,
    KeypadSubtract,
    KeypadAdd,
    KeypadEnter,
    KeypadEqual,
    KeypadSeparator,
    KeypadLeft,
    KeypadRight,
    KeypadUp,
    KeypadDown,
    KeypadPageUp,
    KeypadPageDown,
    KeypadHome,
    KeypadEnd,
    KeypadInsert,
    KeypadDelete,
    KeypadBegin,
    MediaPlay,
    MediaPause,
    MediaPlayPause,
    MediaReverse,
    MediaStop,
    MediaFastForward,
    MediaRewind,
    MediaTrackNext,
    MediaTrackPrevious,
    MediaRecord,
    VolumeDown,
    VolumeUp,
    VolumeMute,
    LeftShift,
    LeftControl,
    LeftAlt,
    LeftSuper,
    LeftHyper,
    LeftMeta,
    RightShift,
    RightControl,
    RightAlt,
    RightSuper,
    RightHyper,
    RightMeta,
    IsoLevel3Shift,
    IsoLevel5Shift,
};

inline constexpr std::size_t KittyFunctionalKeyCount = 111;
static_assert(static_cast<std::size_t>(KittyFunctionalKey::IsoLevel5Shift) + 1 ==
              KittyFunctionalKeyCount);

/// Shift, control and their like, which change other keys.
[[nodiscard]] constexpr bool isModifierKey(KittyFunctionalKey key)
{
    return key >= KittyFunctionalKey::LeftShift;
}

/// A key of the keyboard: one with a character, one with a function, or none (text that came from
/// elsewhere).
class KittyKey {
public:
    enum class Kind : std::uint8_t { None, Unicode, Functional };

    constexpr KittyKey() = default;
    /// The key's character without any modifier. Any 32-bit value is allowed.
    [[nodiscard]] static constexpr KittyKey unicode(char32_t code)
    {
        KittyKey key;
        key.m_kind = Kind::Unicode;
        key.m_code = code;
        return key;
    }
    [[nodiscard]] static constexpr KittyKey functional(KittyFunctionalKey function)
    {
        KittyKey key;
        key.m_kind = Kind::Functional;
        key.m_function = function;
        return key;
    }

    [[nodiscard]] constexpr Kind kind() const { return m_kind; }
    /// Of a `Unicode` key.
    [[nodiscard]] constexpr char32_t code() const { return m_code; }
    /// Of a `Functional` key.
    [[nodiscard]] constexpr KittyFunctionalKey function() const { return m_function; }
    [[nodiscard]] constexpr bool is(KittyFunctionalKey function) const
    {
        return m_kind == Kind::Functional && m_function == function;
    }

    bool operator==(const KittyKey&) const = default;

private:
    Kind m_kind = Kind::None;
    KittyFunctionalKey m_function = KittyFunctionalKey::Escape;
    char32_t m_code = 0;
};

/// How a functional key is told to a program.
struct KittyKeyForm {
    enum class Kind : std::uint8_t {
        Code,   ///< CSI number u
        Letter, ///< CSI letter
        Tilde,  ///< CSI number ~
    };

    Kind kind = Kind::Code;
    char letter = 'u';        ///< The final byte.
    std::uint16_t number = 0; ///< 1 for the letters.
};

[[nodiscard]] KittyKeyForm formOf(KittyFunctionalKey key);

} // namespace Kovalt
