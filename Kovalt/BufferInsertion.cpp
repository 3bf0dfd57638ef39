// Printing: the way of nearly every byte that a terminal is fed.

#include "Kovalt/Buffer.h"

#include <algorithm>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Kovalt {

namespace {

/// Writes one cell a byte, all alike but for their code. Cells are 24 bytes, so two of them are
/// three wide stores.
void writeRun(CharData* cells, const char* text, std::size_t count, const CharData& pattern)
{
    std::size_t i = 0;
#if defined(__SSE2__)
    static_assert(offsetof(CharData, code) == 0);
    std::uint64_t words[3];
    std::memcpy(words, &pattern, sizeof(words));
    const auto high = std::int64_t(words[0] & 0xFFFFFFFF00000000u);
    const __m128i first = _mm_set_epi64x(std::int64_t(words[1]), high);
    const __m128i middle = _mm_set_epi64x(high, std::int64_t(words[2]));
    const __m128i last = _mm_set_epi64x(std::int64_t(words[2]), std::int64_t(words[1]));
    for (; i + 2 <= count; i += 2) {
        const auto left = _mm_cvtsi32_si128(static_cast<unsigned char>(text[i]));
        const auto right = _mm_cvtsi32_si128(static_cast<unsigned char>(text[i + 1]));
        auto* const to = reinterpret_cast<__m128i*>(cells + i);
        _mm_storeu_si128(to, _mm_or_si128(first, left));
        _mm_storeu_si128(to + 1, _mm_or_si128(middle, _mm_slli_si128(right, 8)));
        _mm_storeu_si128(to + 2, last);
    }
#endif
    for (; i < count; ++i) {
        CharData cell = pattern;
        cell.code = static_cast<unsigned char>(text[i]);
        cells[i] = cell;
    }
}

} // namespace

BufferLine& Buffer::screenLine(int row)
{
    if (m_lines.count() < yBase + m_rows || yBase < 0) [[unlikely]]
        ensureScreen();
    return m_lines[yBase + std::clamp(row, 0, m_rows - 1)];
}

int Buffer::rightLimit() const
{
    return marginMode ? std::clamp(marginRight, 0, m_cols - 1) : m_cols - 1;
}

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
    CharData cell = character;
    cell.width = std::int8_t(width);
    cell.payload = host().resolvePayload();
    cell.semantic = semantic.content;
    CharData* const to = line.overwrite(x, width);
    to[0] = cell;
    if (width == 2) {
        cell.code = 0;
        cell.width = 0;
        to[1] = cell;
    }
    x += width;
}

std::size_t Buffer::insertAsciiRun(std::string_view text, const Attribute& attribute)
{
    if (insertMode || text.empty())
        return 0;
    CharData pattern;
    pattern.payload = host().resolvePayload();
    pattern.semantic = semantic.content;
    pattern.attribute = attribute;
    x = std::clamp(x, 0, m_cols);
    y = std::clamp(y, 0, m_rows - 1);
    const int limit = rightLimit();
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
    return text.size();
}

} // namespace Kovalt
