#pragma once

#include "Kovalt/Keyboard/OptionBits.h"

namespace Kovalt {

/// What a program asked to be told of the keyboard. Without any flag it hears the legacy codes.
class KittyKeyboardFlags : public OptionBits<KittyKeyboardFlags> {
public:
    static const KittyKeyboardFlags Disambiguate;
    static const KittyKeyboardFlags ReportEvents;
    static const KittyKeyboardFlags ReportAlternates;
    static const KittyKeyboardFlags ReportAllKeys;
    static const KittyKeyboardFlags ReportText;
    static const KittyKeyboardFlags All;
};
inline constexpr KittyKeyboardFlags KittyKeyboardFlags::Disambiguate = KittyKeyboardFlags::of(1);
inline constexpr KittyKeyboardFlags KittyKeyboardFlags::ReportEvents = KittyKeyboardFlags::of(2);
inline constexpr KittyKeyboardFlags KittyKeyboardFlags::ReportAlternates =
    KittyKeyboardFlags::of(4);
inline constexpr KittyKeyboardFlags KittyKeyboardFlags::ReportAllKeys = KittyKeyboardFlags::of(8);
inline constexpr KittyKeyboardFlags KittyKeyboardFlags::ReportText = KittyKeyboardFlags::of(16);
inline constexpr KittyKeyboardFlags KittyKeyboardFlags::All = KittyKeyboardFlags::of(31);

} // namespace Kovalt
