#include "Kovalt/TextScan.h"

#include <bit>
#include <cstring>

#ifdef __SSE2__
#include <immintrin.h>
#endif

namespace Kovalt {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t LastControl = 0x1F;
constexpr std::uint8_t Delete = 0x7F;

constexpr std::uint64_t inEachByte(std::uint8_t value)
{
    return 0x0101010101010101U * value;
}

/// Eight bytes, the first one lowest.
std::uint64_t load(const std::uint8_t* bytes)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::big)
        word = __builtin_bswap64(word);
    return word;
}

/// The high bit of each byte that is 0, and no other bit.
constexpr std::uint64_t zeroBytes(std::uint64_t word)
{
    constexpr auto Low = inEachByte(0x7F);
    return ~(((word & Low) + Low) | word | Low);
}

constexpr std::uint64_t controlBytes(std::uint64_t word)
{
    return zeroBytes(word & inEachByte(0xE0));
}

constexpr std::uint64_t deleteAndAbove(std::uint64_t word)
{
    return (word & inEachByte(0x80)) | zeroBytes(word ^ inEachByte(Delete));
}

/// The bits of `mask` in bytes before the lowest set bit of `stop`.
constexpr std::uint64_t before(std::uint64_t mask, std::uint64_t stop)
{
    return mask & ((stop & (~stop + 1)) - 1);
}

std::size_t byteIndex(std::uint64_t mask)
{
    return static_cast<std::size_t>(std::countr_zero(mask)) / 8;
}

/// `run` goes on over what is left of `bytes`.
TextRun goOn(TextRun run, Bytes bytes)
{
    for (; run.length + 8 <= bytes.size(); run.length += 8) {
        const auto word = load(bytes.data() + run.length);
        const auto controls = controlBytes(word);
        if (controls != 0) {
            run.printableAscii &= before(deleteAndAbove(word), controls) == 0;
            run.length += byteIndex(controls);
            return run;
        }
        run.printableAscii &= deleteAndAbove(word) == 0;
    }
    for (; run.length < bytes.size(); ++run.length) {
        const auto byte = bytes[run.length];
        if (byte <= LastControl)
            break;
        run.printableAscii &= byte < Delete;
    }
    return run;
}

std::size_t goOnPrintable(std::size_t length, Bytes bytes)
{
    for (; length + 8 <= bytes.size(); length += 8) {
        const auto word = load(bytes.data() + length);
        const auto others = controlBytes(word) | deleteAndAbove(word);
        if (others != 0)
            return length + byteIndex(others);
    }
    while (length < bytes.size() && bytes[length] > LastControl && bytes[length] < Delete)
        ++length;
    return length;
}

} // namespace

TextRun TextScan::scanTextPortable(Bytes bytes)
{
    return goOn({}, bytes);
}

std::size_t TextScan::printableAsciiLengthPortable(Bytes bytes)
{
    return goOnPrintable(0, bytes);
}

#ifdef __SSE2__

namespace {

struct Masks {
    std::uint32_t controls = 0;
    std::uint32_t deleteAndAbove = 0;
};

Masks masks16(const std::uint8_t* bytes)
{
    const auto block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    const auto control = _mm_cmpeq_epi8(_mm_min_epu8(block, _mm_set1_epi8(LastControl)), block);
    const auto above = _mm_cmpeq_epi8(_mm_max_epu8(block, _mm_set1_epi8(Delete)), block);
    return {static_cast<std::uint32_t>(_mm_movemask_epi8(control)),
            static_cast<std::uint32_t>(_mm_movemask_epi8(above))};
}

__attribute__((target("avx2"))) Masks masks32(const std::uint8_t* bytes)
{
    const auto block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
    const auto control =
        _mm256_cmpeq_epi8(_mm256_min_epu8(block, _mm256_set1_epi8(LastControl)), block);
    const auto above = _mm256_cmpeq_epi8(_mm256_max_epu8(block, _mm256_set1_epi8(Delete)), block);
    return {static_cast<std::uint32_t>(_mm256_movemask_epi8(control)),
            static_cast<std::uint32_t>(_mm256_movemask_epi8(above))};
}

/// Adds a block of `size` bytes to the run. True if the run ends in it.
bool addBlock(TextRun& run, Masks masks, std::size_t size)
{
    if (masks.controls == 0) {
        run.printableAscii &= masks.deleteAndAbove == 0;
        run.length += size;
        return false;
    }
    run.printableAscii &= before(masks.deleteAndAbove, masks.controls) == 0;
    run.length += static_cast<std::size_t>(std::countr_zero(masks.controls));
    return true;
}

} // namespace

TextRun TextScan::scanTextSse2(Bytes bytes)
{
    TextRun run;
    while (run.length + 16 <= bytes.size()) {
        if (addBlock(run, masks16(bytes.data() + run.length), 16))
            return run;
    }
    return goOn(run, bytes);
}

std::size_t TextScan::printableAsciiLengthSse2(Bytes bytes)
{
    std::size_t length = 0;
    for (; length + 16 <= bytes.size(); length += 16) {
        const auto masks = masks16(bytes.data() + length);
        if (const auto others = masks.controls | masks.deleteAndAbove; others != 0)
            return length + static_cast<std::size_t>(std::countr_zero(others));
    }
    return goOnPrintable(length, bytes);
}

bool TextScan::hasAvx2()
{
    static const bool available = __builtin_cpu_supports("avx2") != 0;
    return available;
}

__attribute__((target("avx2"))) TextRun TextScan::scanTextAvx2(Bytes bytes)
{
    TextRun run;
    while (run.length + 32 <= bytes.size()) {
        if (addBlock(run, masks32(bytes.data() + run.length), 32))
            return run;
    }
    return goOn(run, bytes);
}

__attribute__((target("avx2"))) std::size_t TextScan::printableAsciiLengthAvx2(Bytes bytes)
{
    std::size_t length = 0;
    for (; length + 32 <= bytes.size(); length += 32) {
        const auto masks = masks32(bytes.data() + length);
        if (const auto others = masks.controls | masks.deleteAndAbove; others != 0)
            return length + static_cast<std::size_t>(std::countr_zero(others));
    }
    return goOnPrintable(length, bytes);
}

TextRun scanText(Bytes bytes)
{
    // Most runs end within the first block; only the long ones are worth the choice.
    if (bytes.size() >= 16) {
        TextRun run;
        if (addBlock(run, masks16(bytes.data()), 16))
            return run;
        const auto rest = TextScan::hasAvx2() ? TextScan::scanTextAvx2(bytes.subspan(16))
                                              : TextScan::scanTextSse2(bytes.subspan(16));
        return {16 + rest.length, run.printableAscii && rest.printableAscii};
    }
    return goOn({}, bytes);
}

std::size_t printableAsciiLength(Bytes bytes)
{
    return TextScan::hasAvx2() ? TextScan::printableAsciiLengthAvx2(bytes)
                               : TextScan::printableAsciiLengthSse2(bytes);
}

#else

TextRun scanText(Bytes bytes)
{
    return TextScan::scanTextPortable(bytes);
}

std::size_t printableAsciiLength(Bytes bytes)
{
    return TextScan::printableAsciiLengthPortable(bytes);
}

#endif

} // namespace Kovalt
