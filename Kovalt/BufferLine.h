#pragma once

#include "Kovalt/BidiState.h"
#include "Kovalt/CharData.h"
#include "Kovalt/SemanticMark.h"
#include "Kovalt/TerminalImage.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Kovalt {

class GraphemeTable;

enum class RenderLineMode : std::uint8_t { Single, DoubleWidth, DoubledTop, DoubledDown };

/// One row of cells, always `size()` of them.
///
/// Cells are stored only as far as something was written; those behind it (from `live().size()`
/// on) are all `blank()`. So an empty row has no storage, clearing a row or its end touches no
/// cell, and a short row stays small. Columns out of range are told on standard error and the
/// last cell is used instead. Every change raises `generation()`.
///
/// A wide character is a cell of width 2 and a right half of width 0. A change that covers one
/// half blanks the other, so halves never stand alone.
class BufferLine {
public:
    /// Wider rows are not made.
    static constexpr int MaxSize = std::numeric_limits<std::uint16_t>::max();

    explicit BufferLine(int cols, const CharData& fill = {}, bool isWrapped = false,
                        const BidiPresentationState& bidiState = {});
    BufferLine(const BufferLine& other);
    BufferLine& operator=(const BufferLine&) = delete;
    ~BufferLine();

    [[nodiscard]] int size() const { return m_size; }
    [[nodiscard]] CharData operator[](int column) const;
    void set(int column, const CharData& cell);

    /// The stored cells, from column 0.
    [[nodiscard]] std::span<const CharData> live() const { return {m_cells, m_live}; }
    /// Every cell behind the stored ones.
    [[nodiscard]] CharData blank() const;
    /// The first `count` cells (at most `size()`), stored and ready to be changed. The caller mends
    /// wide characters (`splitWide`).
    [[nodiscard]] CharData* writable(int count);
    /// `count` cells from `column`, all inside the row, which the caller must now write one and
    /// all: what they held before is gone, and wide characters that stood half in them too.
    [[nodiscard]] CharData* overwrite(int column, int count)
    {
        const int end = column + count;
        ++m_generation;
        if (column == m_live && end <= m_capacity) [[likely]] {
            m_live = std::uint16_t(end);
            return m_cells + column;
        }
        splitWide(column);
        splitWide(end);
        if (end > m_live)
            extendLive(column, end);
        return m_cells + column;
    }

    /// This row continues the one above.
    [[nodiscard]] bool isWrapped() const { return m_isWrapped; }
    void setWrapped(bool isWrapped);
    [[nodiscard]] BidiPresentationState bidiState() const;
    void setBidiState(const BidiPresentationState& state)
    {
        const unsigned packed =
            unsigned(state.supportMode) | unsigned(state.autodetectDirection) << 1U |
            unsigned(state.fallbackDirection) << 2U | unsigned(state.boxMirroring) << 3U;
        if (packed == m_bidiState)
            return;
        m_bidiState = packed & 15U;
        ++m_generation;
    }
    [[nodiscard]] RenderLineMode renderMode() const { return m_renderMode; }
    void setRenderMode(RenderLineMode mode);

    /// Rises with every change; the key of a renderer's cache.
    [[nodiscard]] std::uint64_t generation() const { return m_generation; }
    /// Rises whenever the row becomes another one.
    [[nodiscard]] std::uint32_t recycleGeneration() const { return m_recycleGeneration; }
    void touch() { ++m_generation; }

    /// New cells at the end are `fill`; a wide character that is cut in two goes.
    void resize(int cols, const CharData& fill = {});
    /// Makes it an empty row of these looks, another row than before: images go, marks, wrapping
    /// and settings stay.
    void clear(const Attribute& attribute)
    {
        m_generation += 2;
        ++m_recycleGeneration;
        m_live = 0;
        m_continuesEarly = false;
        m_blankBackground = attribute.bg;
        if (!attribute.hasOnlyBackground()) [[unlikely]]
            store(attribute);
        if (m_extra) [[unlikely]]
            removeImages();
    }
    /// Makes it a new row, without anything of the old one, for the ring's newest.
    void recycle(const Attribute& attribute)
    {
        if (m_extra) [[unlikely]]
            m_extra.reset();
        clear(attribute);
        ++m_generation;
        m_isWrapped = false;
        m_renderMode = RenderLineMode::Single;
    }
    void fill(const CharData& cell);
    void fill(const CharData& cell, int column, int length);
    /// Columns `start` up to but without `end`.
    void replaceCells(int start, int end, const CharData& cell);
    /// Moves the cells from `column` to `rightMargin` to the right by `n`; what passes the margin
    /// is lost. Marks move along.
    void insertCells(int column, int n, int rightMargin, const CharData& cell);
    /// Moves them to the left; the gap before `rightMargin` is filled.
    void deleteCells(int column, int n, int rightMargin, const CharData& cell);
    /// All cells, settings and marks of a row of the same or another width. This row's width stays,
    /// and so do its images.
    void copyFrom(const BufferLine& line);
    /// `length` cells; also within one row, where the two places may overlap. A wide character of
    /// which only one half is copied arrives as a blank.
    void copyFrom(const BufferLine& line, int sourceColumn, int column, int length);
    /// Blanks both halves of a wide character that spans the border before this column.
    void splitWide(int column)
    {
        if (column > 0 && column < m_live && m_cells[column].width == 0)
            blankPair(column);
    }

    /// The column behind the last cell that shows something, 0 if none does.
    [[nodiscard]] int getTrimmedLength() const;
    /// Whether the cell is more than an erased one of default looks.
    [[nodiscard]] bool hasContent(int column) const { return !(*this)[column].isNull(); }
    [[nodiscard]] bool hasAnyContent() const;
    [[nodiscard]] int getWidth(int column) const { return (*this)[column].width; }

    struct TextRange {
        int startColumn = 0;
        int endColumn = -1;                     ///< Without this column; -1 means the end.
        bool trimRight = false;                 ///< Without the empty cells at the end of the row.
        bool skipNullCellsFollowingWide = true; ///< A right half gives no blank.
    };
    /// The text in UTF-8, a blank for each empty cell.
    [[nodiscard]] std::string translateToString(const GraphemeTable& graphemes,
                                                const TextRange& range) const;
    [[nodiscard]] std::string translateToString(const GraphemeTable& graphemes) const;

    [[nodiscard]] std::span<const SemanticMark> semanticMarks() const;
    /// Adds the mark, in place of one of its kind in its column.
    void setSemanticMark(const SemanticMark& mark);
    void removeSemanticMarks();
    /// The group whose prompt goes on here although the row is not wrapped.
    [[nodiscard]] std::optional<std::uint64_t> semanticHardContinuationGroup() const;
    void setSemanticHardContinuationGroup(std::optional<std::uint64_t> group);
    /// Forgets marks and continuation.
    void destroySemanticState();
    /// Moves the marks between `column` and `rightMargin` by so many columns; those that leave the
    /// range go.
    void marksShift(int column, int by, int rightMargin);
    /// Marks behind the width move to its last column.
    void marksClampTo(int width);

    [[nodiscard]] std::span<const std::shared_ptr<TerminalImage>> images() const;
    [[nodiscard]] bool hasImages() const { return m_extra && !m_extra->images.empty(); }
    /// Use `Buffer::attachImage`, which counts.
    void attach(std::shared_ptr<TerminalImage> image);
    void removeImages();

    /// Has the processor fetch the first cells, for a row that is written soon.
    void prefetch() const { __builtin_prefetch(m_cells, 1); }
    /// Bytes of memory, this object included.
    [[nodiscard]] std::size_t memory() const;

private:
    friend class LineReflow;

    /// What few rows have.
    struct Extra {
        std::vector<SemanticMark> marks;
        std::optional<std::uint64_t> hardContinuationGroup;
        std::vector<std::shared_ptr<TerminalImage>> images;
    };

    [[nodiscard]] int clamped(int column) const;
    [[nodiscard]] Extra& extra();
    void dropEmptyExtra();
    void reserve(int count);
    /// Stores empty cells with these looks.
    void store(const Attribute& attribute);
    void materialize(int count);
    void extendLive(int column, int end);
    void blankPair(int column);
    void setBlanks(int column, const CharData& cell);

    CharData* m_cells = nullptr;
    std::unique_ptr<Extra> m_extra;
    std::uint64_t m_generation = 0;
    std::uint32_t m_recycleGeneration = 0;
    CellColor m_blankBackground;
    std::uint16_t m_size;
    std::uint16_t m_live = 0;
    std::uint16_t m_capacity = 0;
    std::uint8_t m_bidiState : 4;
    RenderLineMode m_renderMode : 3;
    bool m_isWrapped : 1;
    /// The next row continues this one behind its last character, not behind its last column:
    /// the row became wider without being joined.
    bool m_continuesEarly : 1;
};
static_assert(sizeof(BufferLine) == 40);

} // namespace Kovalt
