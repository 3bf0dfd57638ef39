// Printing: the way of nearly every byte that a terminal is fed.

#include "Kovalt/Buffer.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Kovalt {

namespace {

static_assert(sizeof(CharData) == 3 * sizeof(std::uint64_t) && offsetof(CharData, code) == 0 &&
              offsetof(CharData, payload) == 4 && offsetof(CharData, width) == 6 &&
              offsetof(CharData, semantic) == 7 && offsetof(CharData, attribute) == 8);
static_assert(std::endian::native == std::endian::little);

/// One column in the word that holds a cell's width.
constexpr std::uint64_t WidthStep = std::uint64_t(1) << 48;

/// A cell as three words, its code still 0. It is put together in registers: written to memory
/// byte by byte, it could not be read back as words without a stall.
struct CellWords {
    CellWords(const Attribute& attribute, std::uint16_t payload, SemanticCode semantic)
        : first(std::uint64_t(payload) << 32 | WidthStep | std::uint64_t(semantic) << 56)
    {
        std::memcpy(&second, &attribute, sizeof(second));
        std::memcpy(&third, reinterpret_cast<const char*>(&attribute) + sizeof(second),
                    sizeof(third));
    }

    /// Word by word, so that a compiler doesn't put the cell together in memory first.
    void writeTo(CharData* cell, std::uint64_t firstWord) const
    {
        auto* const to = reinterpret_cast<char*>(cell);
        std::memcpy(to, &firstWord, sizeof(firstWord));
        std::memcpy(to + sizeof(first), &second, sizeof(second));
        std::memcpy(to + sizeof(first) + sizeof(second), &third, sizeof(third));
    }

    std::uint64_t first;
    std::uint64_t second;
    std::uint64_t third;
};

void writeCells(CharData* cells, const char* text, std::size_t count, const CellWords& pattern)
{
    for (std::size_t i = 0; i < count; ++i)
        pattern.writeTo(cells + i, pattern.first | static_cast<unsigned char>(text[i]));
}

/// Writes one cell a byte, all alike but for their code.
void writeRun(CharData* cells, const char* text, std::size_t count, const CellWords& pattern)
{
    std::size_t i = 0;
#if defined(__SSE2__)
    // Two cells are three wide stores; a few cells are written before the patterns are made.
    if (count < 4)
        return writeCells(cells, text, count, pattern);
    const auto word = [](std::uint64_t value) { return std::int64_t(value); };
    const __m128i head = _mm_set_epi64x(word(pattern.second), word(pattern.first));
    const __m128i middle = _mm_set_epi64x(word(pattern.first), word(pattern.third));
    const __m128i tail = _mm_set_epi64x(word(pattern.third), word(pattern.second));
    for (; i + 2 <= count; i += 2) {
        const auto left = _mm_cvtsi32_si128(static_cast<unsigned char>(text[i]));
        const auto right = _mm_cvtsi32_si128(static_cast<unsigned char>(text[i + 1]));
        auto* const to = reinterpret_cast<__m128i*>(cells + i);
        _mm_storeu_si128(to, _mm_or_si128(head, left));
        _mm_storeu_si128(to + 1, _mm_or_si128(middle, _mm_slli_si128(right, 8)));
        _mm_storeu_si128(to + 2, tail);
    }
#endif
    writeCells(cells + i, text + i, count - i, pattern);
}

} // namespace

int Buffer::leftLimit() const
{
    return marginMode ? std::clamp(marginLeft, 0, rightLimit()) : 0;
}

void Buffer::wrapLine()
{
    x = leftLimit();
    if (y == scrollBottom) {
        host().scroll(true);
        return;
    }
    if (y >= m_rows - 1)
        return;
    const BufferLine& line = screenLine(y);
    const RenderLineMode mode = line.renderMode();
    const BidiPresentationState bidi = line.bidiState();
    BufferLine& next = screenLine(++y);
    next.setWrapped(true);
    next.setRenderMode(mode);
    next.setBidiState(bidi);
    next.touch();
}

void Buffer::insertCharacter(const CharData& character)
{
    insertCharacter(character, host().resolvePayload());
}

void Buffer::insertCharacter(const CharData& character, std::uint16_t payload)
{
    const int width = character.width == 2 ? 2 : 1;
    const int limit = rightLimit();
    x = std::clamp(x, 0, m_cols);
    y = std::clamp(y, 0, m_rows - 1);
    if (x + width - 1 > limit) {
        if (width > limit - leftLimit() + 1)
            return;
        if (wraparound) {
            // The gap in front of a wide character that wraps early is empty, so that a reflow
            // can close it.
            if (x == limit)
                screenLine(y).set(x, CharData{});
            wrapLine();
        } else if (width == 2) {
            return;
        } else {
            x = limit;
        }
    }
    BufferLine& line = screenLine(y);
    if (insertMode)
        line.insertCells(x, width, limit, CharData{});
    CharData* const to = line.overwrite(x, width);
    for (int i = 0; i < width; ++i) {
        // As a block: field by field, the compiler takes the cell apart into its bytes.
        std::memcpy(to + i, &character, sizeof(CharData));
        to[i].width = std::int8_t(width);
        to[i].payload = payload;
        to[i].semantic = semantic.content;
    }
    if (width == 2) {
        to[1].code = 0;
        to[1].width = 0;
    }
    x += width;
    waits = x > limit;
}

std::size_t Buffer::insertAsciiRun(std::string_view text, const Attribute& attribute)
{
    return insertAsciiRun(text, attribute, host().resolvePayload());
}

std::size_t Buffer::insertAsciiRun(std::string_view text, const Attribute& attribute,
                                   std::uint16_t payload)
{
    if (insertMode || text.empty())
        return 0;
    const CellWords pattern(attribute, payload, semantic.content);
    x = std::clamp(x, 0, m_cols);
    y = std::clamp(y, 0, m_rows - 1);
    const int limit = rightLimit();
    // Most runs stay in their row.
    if (const auto room = limit - x + 1; room > 0 && text.size() <= std::size_t(room)) {
        const int count = int(text.size());
        writeRun(screenLine(y).overwrite(x, count), text.data(), text.size(), pattern);
        x += count;
        waits = x > limit;
        return text.size();
    }
    for (std::size_t done = 0; done < text.size();) {
        if (x > limit) {
            if (wraparound) {
                wrapLine();
                x = std::min(x, limit);
            } else {
                // Each would overwrite the one before.
                x = limit;
                done = text.size() - 1;
            }
        }
        const auto count = std::min(text.size() - done, std::size_t(limit - x + 1));
        CharData* const cells = screenLine(y).overwrite(x, int(count));
        writeRun(cells, text.data() + done, count, pattern);
        x += int(count);
        done += count;
    }
    waits = x > limit;
    return text.size();
}

void Buffer::insertScalarRun(std::span<const PrintedScalar> run, const Attribute& attribute,
                             std::uint16_t payload)
{
    const CellWords pattern(attribute, payload, semantic.content);
    x = std::clamp(x, 0, m_cols);
    y = std::clamp(y, 0, m_rows - 1);
    const int limit = rightLimit();
    while (!run.empty()) {
        std::size_t fitting = 0;
        int end = x;
        if (!insertMode)
            for (; fitting < run.size() && end + run[fitting].width - 1 <= limit; ++fitting)
                end += run[fitting].width;
        if (fitting == 0) {
            CharData cell;
            cell.code = std::int32_t(run.front().scalar);
            cell.width = run.front().width;
            cell.attribute = attribute;
            insertCharacter(cell, payload);
            run = run.subspan(1);
            continue;
        }
        CharData* to = screenLine(y).overwrite(x, end - x);
        for (const auto [scalar, width] : run.first(fitting)) {
            // Widths 2 and 0 in place of the pattern's 1.
            const std::uint64_t step = width == 2 ? WidthStep : 0;
            pattern.writeTo(to, (pattern.first | scalar) + step);
            if (step != 0)
                pattern.writeTo(to + 1, pattern.first - step);
            to += width;
        }
        x = end;
        waits = x > limit;
        run = run.subspan(fitting);
    }
}

} // namespace Kovalt
