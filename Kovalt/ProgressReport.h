#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace Kovalt {

enum class ProgressReportState : std::uint8_t { Remove, Set, Error, Indeterminate, Pause };

/// How far a program says that it is (OSC 9;4).
struct ProgressReport {
    ProgressReportState state = ProgressReportState::Remove;
    std::optional<std::uint8_t> progress; ///< Per cent, 0 to 100.

    bool operator==(const ProgressReport&) const = default;
};

/// Reads "4;state" or "4;state;percentage". A percentage above 100 is 100, one that is not a number
/// is none. None for any other text.
[[nodiscard]] std::optional<ProgressReport> parseProgressReport(std::string_view payload);

} // namespace Kovalt
