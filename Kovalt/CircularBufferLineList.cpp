#include "Kovalt/CircularBufferLineList.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace Kovalt {

namespace {

bool hasImages(const std::unique_ptr<BufferLine>& line)
{
    return line && line->hasImages();
}

[[noreturn]] void fail(const char* reason, int start, int count, int offset)
{
    std::fprintf(stderr, "%s\nAssertion at start=%d count=%d offset=%d\n", reason, start, count,
                 offset);
    std::abort();
}

} // namespace

CircularBufferLineList::CircularBufferLineList(int maxLength, Owner& owner)
    : m_lines(maxLength)
    , m_owner(owner)
{
}

BufferLine& CircularBufferLineList::untouchedLine(int index) const
{
    if (index < 0)
        fail("start < 0", index, count(), 0);
    if (index >= count())
        fail("start >= self.count", index, count(), 0);
    auto& slot = m_lines[index];
    slot = m_owner.makeEmpty();
    return *slot;
}

void CircularBufferLineList::setMaxLength(int length)
{
    for (int i = std::max(0, length); i < count(); ++i)
        m_owner.lineRecycled(hasImages(m_lines[i]));
    m_lines.setMaxLength(length);
}

void CircularBufferLineList::push(std::unique_ptr<BufferLine> line)
{
    const bool bringsImages = hasImages(line);
    const auto evicted = m_lines.push(std::move(line));
    m_owner.linePushed(bringsImages);
    if (evicted)
        m_owner.lineRecycled(evicted->hasImages());
}

BufferLine& CircularBufferLineList::recycle(const Attribute& clearAttribute)
{
    if (!isFull())
        fail("count < maxLength", 0, count(), 0);
    auto& slot = m_lines.recycle();
    if (!slot)
        slot = m_owner.makeEmpty();
    // The rows that come next have not been looked at for a whole history: have the cells of one
    // fetched, and the head of another so that its cells can be later.
    constexpr int CellsAhead = 4;
    constexpr int HeadsAhead = 8;
    if (count() > HeadsAhead) {
        if (const BufferLine* const soon = m_lines[CellsAhead].get())
            soon->prefetch();
        __builtin_prefetch(m_lines[HeadsAhead].get(), 1);
    }
    const bool hadImages = slot->hasImages();
    slot->recycle(clearAttribute);
    if (hadImages) [[unlikely]]
        m_owner.lineRecycled(true);
    return *slot;
}

void CircularBufferLineList::pop()
{
    if (const auto gone = m_lines.pop())
        m_owner.lineRecycled(gone->hasImages());
}

void CircularBufferLineList::trimStart(int n)
{
    n = std::min(n, count());
    for (int i = 0; i < n; ++i)
        m_owner.lineRecycled(hasImages(m_lines[i]));
    m_lines.trimStart(n);
}

void CircularBufferLineList::shiftElements(int start, int count, int offset)
{
    if (count < 0)
        fail("count < 0", start, count, offset);
    if (start < 0)
        fail("start < 0", start, count, offset);
    if (start >= this->count() || count > this->count() - start)
        fail("start >= self.count", start, count, offset);
    if (start + offset < 0)
        fail("start+offset <= 0", start, count, offset);
    if (offset == 0)
        return;
    for (int missing = start + count + offset - this->count(); missing > 0; --missing) {
        const bool dropsOldest = isFull();
        push(nullptr);
        if (dropsOldest && --start < 0) {
            start = 0;
            --count;
        }
    }
    if (count <= 0)
        return;
    // The rows that are overwritten change places with those that move, and end as empty ones.
    const int from = offset > 0 ? start : start + offset;
    const int by = offset > 0 ? count : -offset;
    const int vacated = offset > 0 ? start : start + count + offset;
    rotate(from, count + std::abs(offset), by);
    for (int i = vacated; i < vacated + std::abs(offset); ++i) {
        m_owner.lineRecycled(hasImages(m_lines[i]));
        m_lines[i].reset();
    }
}

void CircularBufferLineList::splice(int start, int deleteCount,
                                    std::vector<std::unique_ptr<BufferLine>> items)
{
    if (start < 0)
        fail("start < 0", start, deleteCount, 0);
    if (deleteCount < 0)
        fail("count < 0", start, deleteCount, 0);
    if (start > count() || deleteCount > count() - start)
        fail("start >= self.count", start, deleteCount, 0);
    for (int i = start; i < start + deleteCount; ++i)
        m_owner.lineRecycled(hasImages(m_lines[i]));
    for (const auto& item : items)
        m_owner.linePushed(hasImages(item));
    std::vector<std::unique_ptr<BufferLine>> lines = takeAll();
    const auto first = lines.begin() + start;
    const auto at = lines.erase(first, first + deleteCount);
    lines.insert(at, std::make_move_iterator(items.begin()), std::make_move_iterator(items.end()));
    assign(std::move(lines));
}

void CircularBufferLineList::rotate(int start, int count, int by)
{
    if (start < 0)
        fail("start < 0", start, count, by);
    if (count < 0 || by < 0 || by > count)
        fail("count < 0", start, count, by);
    if (count > this->count() - start)
        fail("start >= self.count", start, count, by);
    m_lines.rotate(start, count, by);
}

std::vector<std::unique_ptr<BufferLine>> CircularBufferLineList::takeAll()
{
    std::vector<std::unique_ptr<BufferLine>> lines;
    lines.reserve(std::size_t(count()));
    for (int i = 0; i < count(); ++i)
        lines.push_back(std::move(m_lines[i]));
    m_lines.trimStart(count());
    return lines;
}

void CircularBufferLineList::assign(std::vector<std::unique_ptr<BufferLine>> lines)
{
    for (auto& line : lines) {
        if (const auto evicted = m_lines.push(std::move(line)))
            m_owner.lineRecycled(evicted->hasImages());
    }
}

} // namespace Kovalt
