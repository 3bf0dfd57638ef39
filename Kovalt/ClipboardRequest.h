#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Kovalt {

/// What a program wants of the clipboard (OSC 52).
struct ClipboardRequest {
    std::string selection;                           ///< ASCII letters or digits, "c" unless told.
    std::optional<std::vector<std::uint8_t>> copied; ///< None asks for what the clipboard holds.

    bool operator==(const ClipboardRequest&) const = default;
};

/// Reads "selection;?" and "selection;base64". A selection that is empty or not ASCII means "c".
/// None without a ";" and for data that doesn't decode.
[[nodiscard]] std::optional<ClipboardRequest> parseClipboardRequest(std::string_view payload);

} // namespace Kovalt
