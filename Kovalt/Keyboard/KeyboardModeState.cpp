#include "Kovalt/Keyboard/KeyboardModeState.h"

#include <algorithm>

namespace Kovalt {

void KeyboardModeState::push(KittyKeyboardFlags flags)
{
    if (m_stack.size() == MaximumStack)
        m_stack.erase(m_stack.begin());
    m_stack.push_back(m_flags);
    m_flags = flags;
}

void KeyboardModeState::pop(std::int32_t count)
{
    const auto entries = static_cast<std::size_t>(std::max(count, 1));
    if (entries > m_stack.size()) {
        reset();
        return;
    }
    const auto first = m_stack.end() - static_cast<std::ptrdiff_t>(entries);
    m_flags = *first;
    m_stack.erase(first, m_stack.end());
}

void KeyboardModeState::set(KittyKeyboardFlags flags, std::int32_t mode)
{
    if (mode == 1)
        m_flags = flags;
    else if (mode == 2)
        m_flags = m_flags | flags;
    else if (mode == 3)
        m_flags = m_flags.without(flags);
}

void KeyboardModeState::reset()
{
    m_flags = {};
    m_stack.clear();
}

std::optional<std::string> handleKittyKeyboardProtocol(KeyboardModeState& state,
                                                       std::uint8_t marker,
                                                       std::span<const std::int32_t> parameters)
{
    const auto parameter = [&](std::size_t index, std::int32_t absent) {
        return index < parameters.size() ? parameters[index] : absent;
    };
    const auto flags = KittyKeyboardFlags::of(static_cast<unsigned>(parameter(0, 0)) &
                                              KittyKeyboardFlags::All.bits());
    switch (marker) {
    case '>':
        state.push(flags);
        break;
    case '<':
        state.pop(parameter(0, 1));
        break;
    case '=':
        state.set(flags, parameter(1, 1));
        break;
    case '?':
        return "?" + std::to_string(state.flags().bits()) + "u";
    default:
        break;
    }
    return std::nullopt;
}

} // namespace Kovalt
