#pragma once

#include "Tests/Kovalt/TerminalHarness.h"

#include <string>
#include <vector>

namespace Kovalt::Testing {

/// The margins of a small screen, origin mode, and how a program sets them.
struct Margins {
    static constexpr int Cols = 12;
    static constexpr int Rows = 8;

    bool hasRows = false;
    bool hasColumns = false;
    bool origin = false;

    [[nodiscard]] int top() const { return hasRows ? 2 : 0; }
    [[nodiscard]] int bottom() const { return hasRows ? 5 : Rows - 1; }
    [[nodiscard]] int left() const { return hasColumns ? 3 : 0; }
    [[nodiscard]] int right() const { return hasColumns ? 8 : Cols - 1; }
    [[nodiscard]] bool hasRow(int row) const { return row >= top() && row <= bottom(); }
    [[nodiscard]] bool hasColumn(int col) const { return col >= left() && col <= right(); }

    [[nodiscard]] std::string sequence() const
    {
        return std::string(hasRows ? "\x1B[3;6r" : "") + (hasColumns ? "\x1B[?69h\x1B[4;9s" : "") +
               (origin ? "\x1B[?6h" : "");
    }
    [[nodiscard]] std::string name() const
    {
        return std::string(hasRows ? "rows " : "") + (hasColumns ? "columns " : "") +
               (origin ? "origin" : "");
    }

    static std::vector<Margins> all()
    {
        std::vector<Margins> all;
        for (int bits = 0; bits < 8; ++bits)
            all.push_back({(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0});
        return all;
    }
    /// Inside all margins, at their edges, and outside on every side.
    static std::vector<Position> places()
    {
        std::vector<Position> places;
        for (const int row : {0, 2, 4, 5, 7})
            for (const int col : {0, 3, 6, 8, 11})
                places.push_back({col, row});
        return places;
    }
};

/// Puts the cursor anywhere: these two count from the screen's corner in every mode.
inline std::string goTo(Position place)
{
    return "\x1B[" + std::to_string(place.col + 1) + "`\x1B[" + std::to_string(place.row + 1) + 'd';
}

} // namespace Kovalt::Testing
