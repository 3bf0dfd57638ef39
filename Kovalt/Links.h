#pragma once

#include "Kovalt/Buffer.h"
#include "Kovalt/GraphemeTable.h"
#include "Kovalt/Position.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Kovalt {

/// A link on the screen or in the history.
struct LinkMatch {
    /// Columns `first` up to but without `last` of a row of the ring.
    struct RowRange {
        int row = 0;
        int first = 0;
        int last = 0;

        bool operator==(const RowRange&) const = default;
    };

    std::string text;                ///< Where it leads: as the program said, or as it is written.
    RowRange range;                  ///< Its part in the row that was asked for.
    bool isExplicit = false;         ///< The program said that it is a link.
    std::vector<RowRange> rowRanges; ///< All parts, from top to bottom.

    bool operator==(const LinkMatch&) const = default;
};

/// A cell that a link is asked for.
struct LinkLookupLocation {
    enum class Space : std::uint8_t {
        Buffer, ///< The row is one of the ring.
        Screen, ///< The row is one of the view.
    };

    Space space = Space::Buffer;
    Position position;
};

enum class LinkLookupMode : std::uint8_t { ExplicitOnly, ExplicitAndImplicit };

/// Finds links in a buffer. Rows of positions are those of the ring; outside of it there is none.
namespace Links {

/// The code of the link that a cell carries, 0 for none.
[[nodiscard]] std::uint16_t payloadCode(const Buffer& buffer, Position position);
/// The link that a program put there. It goes on to the left and right as far as cells have the
/// same code, also from row to row where text wraps.
[[nodiscard]] std::optional<LinkMatch> explicitLinkMatch(const Buffer& buffer, Position position);
/// What looks like a link in the text there, also where it wraps. Of a very long line the part
/// around the cell is searched.
[[nodiscard]] std::optional<LinkMatch>
implicitLinkMatch(const Buffer& buffer, const GraphemeTable& graphemes, Position position);

} // namespace Links

} // namespace Kovalt
