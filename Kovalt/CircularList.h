#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <utility>
#include <vector>

namespace Kovalt {

/// A ring of at most `maxLength` values: pushing to a full one lets the oldest go. Storage grows as
/// it is needed, so a high limit costs nothing.
template <typename Value>
class CircularList {
public:
    explicit CircularList(int maxLength)
        : m_maxLength(std::max(0, maxLength))
    {
    }

    [[nodiscard]] int count() const { return m_count; }
    [[nodiscard]] int maxLength() const { return m_maxLength; }
    [[nodiscard]] bool isFull() const { return m_count == m_maxLength; }

    [[nodiscard]] Value& operator[](int index) { return m_array[slot(index)]; }
    [[nodiscard]] const Value& operator[](int index) const { return m_array[slot(index)]; }

    /// The first `min(count, length)` values stay, in order.
    void setMaxLength(int length)
    {
        if (length == m_maxLength)
            return;
        m_maxLength = std::max(0, length);
        straighten();
        m_count = std::min(m_count, m_maxLength);
        m_array.resize(std::size_t(m_count));
    }

    /// Appends; returns what had to go, or an empty value.
    Value push(Value value)
    {
        if (m_maxLength == 0)
            return value;
        if (m_count == m_maxLength)
            return std::exchange(m_array[rotateOne()], std::move(value));
        if (std::size_t(m_count) == m_array.size())
            grow();
        m_array[slot(m_count)] = std::move(value);
        ++m_count;
        return Value();
    }

    /// The oldest value becomes the newest; the ring must be full and hold something.
    Value& recycle() { return m_array[rotateOne()]; }

    /// Takes the last value away.
    Value pop()
    {
        --m_count;
        return std::move(m_array[slot(m_count)]);
    }

    /// Drops the oldest `n` values.
    void trimStart(int n)
    {
        n = std::min(n, m_count);
        for (int i = 0; i < n; ++i)
            m_array[slot(i)] = Value();
        m_start = m_array.empty() ? 0 : slot(n);
        m_count -= n;
    }

    /// Within the `count` values from `start`, the first `by` go behind the rest.
    void rotate(int start, int count, int by)
    {
        const std::size_t first = m_start + std::size_t(start);
        if (first + std::size_t(count) <= m_array.size() || first >= m_array.size()) {
            const auto begin = m_array.begin() + std::ptrdiff_t(slot(start));
            // By one is what every scroll in a region does.
            if (by == 1 && count > 1) {
                Value moved = std::move(*begin);
                std::move(begin + 1, begin + count, begin);
                *(begin + count - 1) = std::move(moved);
            } else {
                std::rotate(begin, begin + by, begin + count);
            }
            return;
        }
        reverse(start, start + by);
        reverse(start + by, start + count);
        reverse(start, start + count);
    }

private:
    [[nodiscard]] std::size_t slot(int index) const
    {
        assert(index >= 0);
        const std::size_t position = m_start + std::size_t(index);
        return position < m_array.size() ? position : position - m_array.size();
    }
    /// Moves the start by one and returns the slot of the newest value.
    std::size_t rotateOne()
    {
        const std::size_t oldest = m_start;
        m_start = m_start + 1 == m_array.size() ? 0 : m_start + 1;
        return oldest;
    }
    void straighten()
    {
        std::rotate(m_array.begin(), m_array.begin() + std::ptrdiff_t(m_start), m_array.end());
        m_start = 0;
    }
    void grow()
    {
        straighten();
        const std::size_t wanted = std::max<std::size_t>(64, m_array.size() * 2);
        m_array.resize(std::min(wanted, std::size_t(m_maxLength)));
    }
    void reverse(int from, int to)
    {
        for (--to; from < to; ++from, --to)
            std::swap((*this)[from], (*this)[to]);
    }

    std::vector<Value> m_array;
    std::size_t m_start = 0;
    int m_count = 0;
    int m_maxLength;
};

} // namespace Kovalt
