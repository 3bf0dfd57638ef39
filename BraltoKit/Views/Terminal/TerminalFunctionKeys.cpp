// Keys with a function: first by the symbol of the window system, which tells left from right and
// the keypad from the rest, then by the toolkit's key.

#include "Views/Terminal/TerminalKeys.h"

#include <algorithm>
#include <array>

namespace Bralto {

namespace {

using enum Kovalt::KittyFunctionalKey;
using Kovalt::KittyFunctionalKey;

struct NamedKey {
    quint32 name;
    KittyFunctionalKey function;
};

// Key symbols of X11, which Wayland uses too.
constexpr std::array BySymbol{
    // clang-format off
    NamedKey{0xfe03, IsoLevel3Shift}, NamedKey{0xfe11, IsoLevel5Shift},
    NamedKey{0xff7e, IsoLevel3Shift}, // the old symbol for it
    NamedKey{0xff8d, KeypadEnter},
    NamedKey{0xff95, KeypadHome},     NamedKey{0xff96, KeypadLeft},
    NamedKey{0xff97, KeypadUp},       NamedKey{0xff98, KeypadRight},
    NamedKey{0xff99, KeypadDown},     NamedKey{0xff9a, KeypadPageUp},
    NamedKey{0xff9b, KeypadPageDown}, NamedKey{0xff9c, KeypadEnd},
    NamedKey{0xff9d, KeypadBegin},    NamedKey{0xff9e, KeypadInsert},
    NamedKey{0xff9f, KeypadDelete},   NamedKey{0xffaa, KeypadMultiply},
    NamedKey{0xffab, KeypadAdd},      NamedKey{0xffac, KeypadSeparator},
    NamedKey{0xffad, KeypadSubtract}, NamedKey{0xffae, KeypadDecimal},
    NamedKey{0xffaf, KeypadDivide},
    NamedKey{0xffb0, Keypad0},        NamedKey{0xffb1, Keypad1},
    NamedKey{0xffb2, Keypad2},        NamedKey{0xffb3, Keypad3},
    NamedKey{0xffb4, Keypad4},        NamedKey{0xffb5, Keypad5},
    NamedKey{0xffb6, Keypad6},        NamedKey{0xffb7, Keypad7},
    NamedKey{0xffb8, Keypad8},        NamedKey{0xffb9, Keypad9},
    NamedKey{0xffbd, KeypadEqual},
    NamedKey{0xffe1, LeftShift},      NamedKey{0xffe2, RightShift},
    NamedKey{0xffe3, LeftControl},    NamedKey{0xffe4, RightControl},
    NamedKey{0xffe5, CapsLock},
    NamedKey{0xffe7, LeftMeta},       NamedKey{0xffe8, RightMeta},
    NamedKey{0xffe9, LeftAlt},        NamedKey{0xffea, RightAlt},
    NamedKey{0xffeb, LeftSuper},      NamedKey{0xffec, RightSuper},
    NamedKey{0xffed, LeftHyper},      NamedKey{0xffee, RightHyper},
    // clang-format on
};

constexpr std::array ByKey{
    // clang-format off
    NamedKey{Qt::Key_Escape, Escape},           NamedKey{Qt::Key_Tab, Tab},
    NamedKey{Qt::Key_Backtab, Tab},             NamedKey{Qt::Key_Backspace, Backspace},
    NamedKey{Qt::Key_Return, Enter},            NamedKey{Qt::Key_Enter, Enter},
    NamedKey{Qt::Key_Insert, Insert},           NamedKey{Qt::Key_Delete, Delete},
    NamedKey{Qt::Key_Pause, Pause},             NamedKey{Qt::Key_Print, PrintScreen},
    NamedKey{Qt::Key_SysReq, PrintScreen},      NamedKey{Qt::Key_Home, Home},
    NamedKey{Qt::Key_End, End},                 NamedKey{Qt::Key_Left, Left},
    NamedKey{Qt::Key_Up, Up},                   NamedKey{Qt::Key_Right, Right},
    NamedKey{Qt::Key_Down, Down},               NamedKey{Qt::Key_PageUp, PageUp},
    NamedKey{Qt::Key_PageDown, PageDown},       NamedKey{Qt::Key_Shift, LeftShift},
    NamedKey{Qt::Key_Control, LeftControl},     NamedKey{Qt::Key_Meta, LeftSuper},
    NamedKey{Qt::Key_Alt, LeftAlt},             NamedKey{Qt::Key_CapsLock, CapsLock},
    NamedKey{Qt::Key_NumLock, NumLock},         NamedKey{Qt::Key_ScrollLock, ScrollLock},
    NamedKey{Qt::Key_Super_L, LeftSuper},       NamedKey{Qt::Key_Super_R, RightSuper},
    NamedKey{Qt::Key_Hyper_L, LeftHyper},       NamedKey{Qt::Key_Hyper_R, RightHyper},
    NamedKey{Qt::Key_AltGr, IsoLevel3Shift},    NamedKey{Qt::Key_Menu, Menu},
    NamedKey{Qt::Key_MediaPlay, MediaPlay},     NamedKey{Qt::Key_MediaPause, MediaPause},
    NamedKey{Qt::Key_MediaTogglePlayPause, MediaPlayPause},
    NamedKey{Qt::Key_MediaStop, MediaStop},     NamedKey{Qt::Key_AudioForward, MediaFastForward},
    NamedKey{Qt::Key_AudioRewind, MediaRewind}, NamedKey{Qt::Key_MediaNext, MediaTrackNext},
    NamedKey{Qt::Key_MediaPrevious, MediaTrackPrevious},
    NamedKey{Qt::Key_MediaRecord, MediaRecord}, NamedKey{Qt::Key_VolumeDown, VolumeDown},
    NamedKey{Qt::Key_VolumeUp, VolumeUp},       NamedKey{Qt::Key_VolumeMute, VolumeMute},
    // clang-format on
};

constexpr std::array OnKeypad{
    // clang-format off
    NamedKey{Qt::Key_Enter, KeypadEnter},       NamedKey{Qt::Key_Return, KeypadEnter},
    NamedKey{Qt::Key_Left, KeypadLeft},         NamedKey{Qt::Key_Right, KeypadRight},
    NamedKey{Qt::Key_Up, KeypadUp},             NamedKey{Qt::Key_Down, KeypadDown},
    NamedKey{Qt::Key_PageUp, KeypadPageUp},     NamedKey{Qt::Key_PageDown, KeypadPageDown},
    NamedKey{Qt::Key_Home, KeypadHome},         NamedKey{Qt::Key_End, KeypadEnd},
    NamedKey{Qt::Key_Insert, KeypadInsert},     NamedKey{Qt::Key_Delete, KeypadDelete},
    NamedKey{Qt::Key_Clear, KeypadBegin},       NamedKey{Qt::Key_Period, KeypadDecimal},
    NamedKey{Qt::Key_Comma, KeypadSeparator},   NamedKey{Qt::Key_Slash, KeypadDivide},
    NamedKey{Qt::Key_Asterisk, KeypadMultiply}, NamedKey{Qt::Key_Minus, KeypadSubtract},
    NamedKey{Qt::Key_Plus, KeypadAdd},          NamedKey{Qt::Key_Equal, KeypadEqual},
    NamedKey{Qt::Key_0, Keypad0},               NamedKey{Qt::Key_1, Keypad1},
    NamedKey{Qt::Key_2, Keypad2},               NamedKey{Qt::Key_3, Keypad3},
    NamedKey{Qt::Key_4, Keypad4},               NamedKey{Qt::Key_5, Keypad5},
    NamedKey{Qt::Key_6, Keypad6},               NamedKey{Qt::Key_7, Keypad7},
    NamedKey{Qt::Key_8, Keypad8},               NamedKey{Qt::Key_9, Keypad9},
    // clang-format on
};

template <std::size_t Count>
std::optional<KittyFunctionalKey> find(const std::array<NamedKey, Count>& keys, quint32 name)
{
    const auto found = std::ranges::find(keys, name, &NamedKey::name);
    return found == keys.end() ? std::nullopt : std::optional(found->function);
}

} // namespace

std::optional<KittyFunctionalKey> TerminalKeys::function(const TerminalKeyPress& press)
{
    if (const auto found = find(BySymbol, press.symbol))
        return found;
    const auto key = quint32(press.key);
    if (press.modifiers.testFlag(Qt::KeypadModifier)) {
        if (const auto found = find(OnKeypad, key))
            return found;
    }
    if (key >= Qt::Key_F1 && key <= Qt::Key_F35)
        return KittyFunctionalKey(quint32(F1) + key - Qt::Key_F1);
    return find(ByKey, key);
}

} // namespace Bralto
