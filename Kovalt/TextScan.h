#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Kovalt {

/// The beginning of some bytes, up to the first control below 0x20.
struct TextRun {
    std::size_t length = 0;
    /// Every byte of it is 0x20 to 0x7E.
    bool printableAscii = true;

    bool operator==(const TextRun&) const = default;
};

/// One pass over the text, with the widest vectors of this machine.
[[nodiscard]] TextRun scanText(std::span<const std::uint8_t> bytes);

/// How many bytes from the first on are 0x20 to 0x7E.
[[nodiscard]] std::size_t printableAsciiLength(std::span<const std::uint8_t> bytes);

/// The forms that the functions above choose from; each gives what the others give.
namespace TextScan {

[[nodiscard]] TextRun scanTextPortable(std::span<const std::uint8_t> bytes);
[[nodiscard]] std::size_t printableAsciiLengthPortable(std::span<const std::uint8_t> bytes);

#ifdef __SSE2__
[[nodiscard]] TextRun scanTextSse2(std::span<const std::uint8_t> bytes);
[[nodiscard]] std::size_t printableAsciiLengthSse2(std::span<const std::uint8_t> bytes);

/// The two that follow may only be called when this is true.
[[nodiscard]] bool hasAvx2();
[[nodiscard]] TextRun scanTextAvx2(std::span<const std::uint8_t> bytes);
[[nodiscard]] std::size_t printableAsciiLengthAvx2(std::span<const std::uint8_t> bytes);
#endif

} // namespace TextScan

} // namespace Kovalt
