#pragma once

#include "Kovalt/EscapeSequenceParser.h"

namespace Kovalt {

/// The data of one call of `EscapeSequenceParser::parse` and the runs that are open in it.
struct EscapeSequenceParser::Run {
    std::span<const std::uint8_t> data;
    std::size_t at = 0;
    std::ptrdiff_t print = -1; ///< Where the open run of text starts; -1 without one.
    std::ptrdiff_t dcs = -1; ///< Where the open run of device-control data starts; -1 without one.
    TextKind textKind = TextKind::Mixed;
    bool aborted = false;

    [[nodiscard]] std::uint8_t code() const { return data[at]; }
    [[nodiscard]] std::ptrdiff_t index() const { return static_cast<std::ptrdiff_t>(at); }
    [[nodiscard]] std::span<const std::uint8_t> rest() const { return data.subspan(at); }
    [[nodiscard]] std::span<const std::uint8_t> since(std::ptrdiff_t start) const
    {
        const auto first = static_cast<std::size_t>(start);
        return data.subspan(first, at - first);
    }
    void close()
    {
        print = -1;
        dcs = -1;
    }
};

} // namespace Kovalt
