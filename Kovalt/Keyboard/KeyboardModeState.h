#pragma once

#include "Kovalt/Keyboard/KittyKeyboardFlags.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Kovalt {

/// The keyboard flags of one screen, and those that wait beneath them.
class KeyboardModeState {
public:
    /// A push onto a stack of this size loses its oldest entry.
    static constexpr std::size_t MaximumStack = 16;

    [[nodiscard]] KittyKeyboardFlags flags() const { return m_flags; }
    /// The newest entry last.
    [[nodiscard]] const std::vector<KittyKeyboardFlags>& stack() const { return m_stack; }

    /// The flags in force go on the stack and `flags` take their place.
    void push(KittyKeyboardFlags flags);
    /// At least one entry goes. When the stack holds fewer than `count`, it empties and no flag
    /// stays.
    void pop(std::int32_t count);
    /// `mode` 1 sets the flags, 2 adds to them, 3 takes from them; any other changes nothing.
    void set(KittyKeyboardFlags flags, std::int32_t mode);
    void reset();

    bool operator==(const KeyboardModeState&) const = default;

private:
    KittyKeyboardFlags m_flags;
    std::vector<KittyKeyboardFlags> m_stack;
};

/// Carries out CSI `marker` `parameters` u. The result of "?" is the reply without its CSI; there
/// is none otherwise, and an unknown marker does nothing.
std::optional<std::string> handleKittyKeyboardProtocol(KeyboardModeState& state,
                                                       std::uint8_t marker,
                                                       std::span<const std::int32_t> parameters);

} // namespace Kovalt
