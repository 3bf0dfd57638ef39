#pragma once

#include "Kovalt/BufferLine.h"

#include <cstddef>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace Kovalt {

/// Cuts rows anew for another width. Rows that continue each other are one text, which is joined
/// and cut at the new width; wide characters stay whole and marks stay with their text. Rows are
/// worked off from the newest to the oldest and used again in place, so what would not fit in the
/// ring is never made.
class LineReflow {
public:
    using Lines = std::vector<std::unique_ptr<BufferLine>>;

    /// A place that is followed: a row and column of the old lines, afterwards of the new ones.
    struct Place {
        static constexpr int Gone = -1;

        int row = 0; ///< `Gone` if its row was dropped.
        int col = 0; ///< Of a row that is full, the new width for "behind the last column".
    };

    LineReflow(int oldCols, int newCols, int cursorRow);

    /// At most `limit` lines come back, the newest. A null is an empty row and stays one.
    [[nodiscard]] Lines run(Lines lines, std::size_t limit, std::span<Place> places);

private:
    using Extra = BufferLine::Extra;

    /// Where a new row begins in the old text, and how many cells it has.
    struct Cut {
        std::size_t row;
        int col;
        int length;
        int offset; ///< Cells of the text before it.
    };

    void reflowGroup(std::size_t first, std::size_t last);
    void keepGroup(std::size_t first, std::size_t last);
    void cutGroup(std::size_t first, std::size_t last);
    void measure(std::size_t first, std::size_t last);
    [[nodiscard]] int cellWidthAt(std::size_t first, std::size_t row, int col) const;
    void gather(std::size_t first, const Cut& cut);
    void writeRow(BufferLine& line, std::size_t first, std::size_t index);
    [[nodiscard]] std::unique_ptr<BufferLine> takeRow(const BufferLine& like, std::size_t first);
    [[nodiscard]] std::size_t cutOf(int offset) const;
    void followPlaces(std::size_t first, std::size_t last);
    void moveExtras(std::size_t begin, std::size_t count);

    const int m_oldCols;
    const int m_newCols;
    const std::size_t m_cursorRow;

    Lines m_old;
    std::size_t m_oldest = 0; ///< Older ones were used again, since they would be dropped.
    std::size_t m_limit = 0;
    Lines m_new; ///< Newest first.
    std::span<Place> m_places;
    std::vector<int> m_fromEnd; ///< For each place its row, counted from the newest.

    // Of the group that is worked on.
    std::vector<int> m_lengths;
    std::vector<int> m_offsets;
    std::vector<Cut> m_cuts;
    std::vector<CharData> m_row;
    std::vector<std::pair<std::size_t, std::unique_ptr<Extra>>> m_extras;
};

} // namespace Kovalt
