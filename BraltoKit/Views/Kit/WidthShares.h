#pragma once

#include <vector>

namespace Bralto {

/// Widths of things that want `wanted` and stand in `room` with `gap` between them: as wanted if
/// they fit, else the widest give way first, none below `least`.
[[nodiscard]] std::vector<int> widthShares(const std::vector<int>& wanted, int room, int gap,
                                           int least);

} // namespace Bralto
