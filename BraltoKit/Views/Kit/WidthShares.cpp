#include "Views/Kit/WidthShares.h"

#include <algorithm>
#include <numeric>

namespace Bralto {

std::vector<int> widthShares(const std::vector<int>& wanted, int room, int gap, int least)
{
    std::vector<int> widths = wanted;
    if (widths.empty())
        return widths;
    const int count = int(widths.size());
    int excess = std::accumulate(widths.begin(), widths.end(), 0) + gap * (count - 1) - room;
    // The widest are cut to a common width; each turn lowers it to the next narrower one.
    while (excess > 0) {
        const int widest = *std::ranges::max_element(widths);
        if (widest <= least)
            break;
        int next = least;
        int atWidest = 0;
        for (const int width : widths) {
            if (width == widest)
                ++atWidest;
            else
                next = std::max(next, width);
        }
        const int cut = std::min(widest - next, (excess + atWidest - 1) / atWidest);
        for (int& width : widths) {
            if (width == widest)
                width -= cut;
        }
        excess -= cut * atWidest;
    }
    return widths;
}

} // namespace Bralto
