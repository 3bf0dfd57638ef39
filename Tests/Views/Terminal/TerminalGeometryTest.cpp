#include "Views/Terminal/TerminalGeometry.h"

#include <gtest/gtest.h>

using namespace Bralto;

TEST(TerminalGeometry, OnlyWholeCellsFitBetweenThePadding)
{
    const auto geometry = TerminalGeometry::fitting({24 + 80 * 7 + 6, 10 + 25 * 18 + 17}, {7, 18});

    EXPECT_EQ(geometry.cols, 80);
    EXPECT_EQ(geometry.rows, 25);
    EXPECT_EQ(geometry.origin, QPointF(12, 0));
}

TEST(TerminalGeometry, ACellThatFitsExactlyIsThere)
{
    // Nine device pixels at a ratio of 1.25 are no whole number of units.
    const QSizeF cell(9 / 1.25, 23 / 1.25);
    const auto geometry =
        TerminalGeometry::fitting({24 + 100 * cell.width(), 10 + 30 * cell.height()}, cell);

    EXPECT_EQ(geometry.cols, 100);
    EXPECT_EQ(geometry.rows, 30);
}

TEST(TerminalGeometry, ThereIsAlwaysAScreen)
{
    const auto geometry = TerminalGeometry::fitting({0, 0}, {7, 18});

    EXPECT_EQ(geometry.cols, TerminalGeometry::LeastCols);
    EXPECT_EQ(geometry.rows, TerminalGeometry::LeastRows);
}

TEST(TerminalGeometry, APointOutsideBelongsToTheNearestCell)
{
    const auto geometry = TerminalGeometry::fitting({24 + 70, 10 + 36}, {7, 18});

    EXPECT_EQ(geometry.cellAt({-5, -5}), (Kovalt::Position{0, 0}));
    EXPECT_EQ(geometry.cellAt({12 + 7 * 3.5, 18 * 1.5}), (Kovalt::Position{3, 1}));
    EXPECT_EQ(geometry.cellAt({1000, 1000}), (Kovalt::Position{9, 1}));
}

TEST(TerminalGeometry, ACellIsFoundAtItsOwnRectangle)
{
    const auto geometry = TerminalGeometry::fitting({300, 200}, {7, 18});

    for (int row = 0; row < geometry.rows; ++row) {
        for (int col = 0; col < geometry.cols; ++col)
            EXPECT_EQ(geometry.cellAt(geometry.rect(col, row).center()),
                      (Kovalt::Position{col, row}));
    }
    EXPECT_EQ(geometry.rect(2, 1, 3), QRectF(12 + 14, 18, 21, 18));
}
