#pragma once

#include "Base/KeyboardLayout.h"
#include "Kovalt/Keyboard/KittyKeyEvent.h"
#include "Kovalt/Keyboard/KittyKeyboardFlags.h"

#include <QString>
#include <Qt>

#include <optional>

class QKeyEvent;

namespace Bralto {

/// A key event as the window system told it.
struct TerminalKeyPress {
    int key = 0; ///< A `Qt::Key`.
    quint32 scanCode = 0;
    quint32 symbol = 0; ///< The key symbol with the modifiers of the moment, 0 if unknown.
    Qt::KeyboardModifiers modifiers;
    QString text;
    Kovalt::KittyKeyboardEventType type = Kovalt::KittyKeyboardEventType::Press;
    KeyboardLayout::Symbols symbols; ///< All 0 if nothing is known of the layout.
    KeyboardLayout::Locks locks;
    bool composing = false; ///< An input method is in the middle of a character.

    /// `layout` may be null.
    [[nodiscard]] static TerminalKeyPress from(const QKeyEvent& event, const KeyboardLayout* layout,
                                               bool composing = false);
};

/// From the window system's keys to the emulator's. Functions over values.
namespace TerminalKeys {

/// What a program with these keyboard flags is told about; none for a key that nobody can name.
///
/// Alt is a modifier and types nothing; a character of the third level is text, also if the key
/// that chooses the level is a kind of Alt. Where a program knows only control characters, a
/// layout without Latin letters gives those of the standard layout, and shift or the third level
/// are used up by the sign that they choose: Ctrl+Shift+2 is Ctrl+@ on a US keyboard.
[[nodiscard]] std::optional<Kovalt::KittyKeyEvent> event(const TerminalKeyPress& press,
                                                         Kovalt::KittyKeyboardFlags flags);

/// The key with a function, if it is one.
[[nodiscard]] std::optional<Kovalt::KittyFunctionalKey> function(const TerminalKeyPress& press);

} // namespace TerminalKeys

} // namespace Bralto
