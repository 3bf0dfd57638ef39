#pragma once

#include <QtGlobal>

namespace Bralto {

/// What the keys of the user's keyboard mean now. Main thread.
class KeyboardLayout {
public:
    /// The characters of one key; 0 where it has none.
    struct Symbols {
        char32_t plain = 0;   ///< Without any modifier, in the layout that is chosen.
        char32_t shifted = 0; ///< With shift held.
        char32_t base = 0;    ///< The key at this place of a US keyboard.
        char32_t typed = 0;   ///< What the symbol of the event stands for.

        bool operator==(const Symbols&) const = default;
    };
    struct Locks {
        bool caps = false;
        bool num = false;

        bool operator==(const Locks&) const = default;
    };

    virtual ~KeyboardLayout() = default;

    /// Of a key by its scan code, and of the symbol that it gave with the modifiers of the moment,
    /// both as the window system numbers them.
    [[nodiscard]] virtual Symbols symbols(quint32 scanCode, quint32 symbol) const = 0;
    [[nodiscard]] virtual Locks locks() const = 0;
};

} // namespace Bralto
