#pragma once

#include "Kovalt/BufferLine.h"
#include "Kovalt/CircularList.h"

#include <memory>
#include <vector>

namespace Kovalt {

/// The ring of a buffer's rows, oldest first. A slot stays empty until it is read, then the owner
/// makes its row. An impossible operation is an error of the program: it prints and aborts.
class CircularBufferLineList {
public:
    /// Whose rows these are; must outlive the ring.
    class Owner {
    public:
        [[nodiscard]] virtual std::unique_ptr<BufferLine> makeEmpty() = 0;
        /// A row has come in.
        virtual void linePushed(bool hasImages) = 0;
        /// A row has gone, or begins again as an empty one.
        virtual void lineRecycled(bool hadImages) = 0;

    protected:
        ~Owner() = default;
    };

    CircularBufferLineList(int maxLength, Owner& owner);

    [[nodiscard]] int count() const { return m_lines.count(); }
    [[nodiscard]] int maxLength() const { return m_lines.maxLength(); }
    [[nodiscard]] bool isFull() const { return m_lines.isFull(); }
    /// The first `min(count, length)` rows stay.
    void setMaxLength(int length);

    /// An index out of range prints and aborts.
    [[nodiscard]] BufferLine& operator[](int index) { return line(index); }
    [[nodiscard]] const BufferLine& operator[](int index) const { return line(index); }
    /// The row, or null if nothing has touched it yet: then it is empty.
    [[nodiscard]] const BufferLine* peek(int index) const { return m_lines[index].get(); }

    /// Appends; the oldest row of a full ring is lost. Null is a row that is made when read.
    void push(std::unique_ptr<BufferLine> line);
    /// Of a full ring: the oldest row becomes the newest, empty and not wrapped. Allocates nothing.
    BufferLine& recycle(const Attribute& clearAttribute);
    /// Drops the newest row.
    void pop();
    /// Drops the oldest `n` rows.
    void trimStart(int n);
    /// Moves `count` rows from `start` by `offset`; what was there is overwritten and the places
    /// left behind become empty rows. Past the end the ring grows, or its oldest rows go.
    void shiftElements(int start, int count, int offset);
    /// Deletes rows and puts others in their place.
    void splice(int start, int deleteCount, std::vector<std::unique_ptr<BufferLine>> items);
    /// Within the `count` rows from `start`, the first `by` go behind the rest. Allocates nothing.
    void rotate(int start, int count, int by);

    /// All rows out of the ring, oldest first (an untouched one is null), and a new set into it.
    [[nodiscard]] std::vector<std::unique_ptr<BufferLine>> takeAll();
    void assign(std::vector<std::unique_ptr<BufferLine>> lines);

private:
    [[nodiscard]] BufferLine& line(int index) const
    {
        if (unsigned(index) < unsigned(m_lines.count())) {
            if (BufferLine* const known = m_lines[index].get())
                return *known;
        }
        return untouchedLine(index);
    }
    [[nodiscard]] BufferLine& untouchedLine(int index) const;

    mutable CircularList<std::unique_ptr<BufferLine>> m_lines;
    Owner& m_owner;
};

} // namespace Kovalt
