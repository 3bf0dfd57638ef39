#pragma once

#include "Kovalt/Selection/SelectionService.h"
#include "Tests/Support/KovaltScreen.h"

#include <gtest/gtest.h>

#include <string>

namespace Kovalt::Testing {

using enum SelectionMode;

inline SelectionPoint left(int col, int row)
{
    return {{col, row}, CellSide::Left};
}
inline SelectionPoint right(int col, int row)
{
    return {{col, row}, CellSide::Right};
}

class SelectionOfAScreen : public testing::Test {
protected:
    std::string select(SelectionMode mode, SelectionPoint from, SelectionPoint to)
    {
        selection.start(mode, from);
        selection.extend(to);
        return selection.text();
    }
    void shiftUp(int top, int bottom, int n)
    {
        screen.buffer.shiftRowsUp(top, bottom, n, {}, {});
        selection.adjustForInPlaceScroll(screen.buffer, screen.buffer.yBase + top,
                                         screen.buffer.yBase + bottom, -n);
    }
    void shiftDown(int top, int bottom, int n)
    {
        screen.buffer.shiftRowsDown(top, bottom, n, {}, {});
        selection.adjustForInPlaceScroll(screen.buffer, screen.buffer.yBase + top,
                                         screen.buffer.yBase + bottom, n);
    }
    std::string textAfterSync()
    {
        selection.sync();
        return selection.text();
    }

    Screen screen{10, 5, 4};
    SelectionService selection{screen.buffer, screen.graphemes};
};

} // namespace Kovalt::Testing
