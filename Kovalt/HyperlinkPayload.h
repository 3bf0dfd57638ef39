#pragma once

#include <optional>
#include <string_view>

namespace Kovalt {

/// What a program said of a link (OSC 8): views of the payload.
struct HyperlinkPayload {
    std::string_view parameters; ///< "key=value", ":" between them; may be empty.
    std::string_view uri;        ///< Never empty, never checked.

    /// The value of "id", by which pieces in different places are one link; empty if there is none.
    [[nodiscard]] std::string_view id() const;
};

/// Cuts a payload at its first ";". None if there is no ";" or no URI behind it.
[[nodiscard]] std::optional<HyperlinkPayload> parseHyperlinkPayload(std::string_view payload);

} // namespace Kovalt
