#include "Kovalt/ProgressReport.h"

#include "Kovalt/Ascii.h"
#include "Kovalt/EscapeSequenceParser.h"

#include <algorithm>

namespace Kovalt {

std::optional<ProgressReport> parseProgressReport(std::string_view payload)
{
    constexpr std::int64_t Most = 100;
    if (!Ascii::isAscii(payload) || Ascii::takeField(payload, ';') != "4")
        return std::nullopt;
    const auto state = Ascii::takeField(payload, ';');
    if (state.size() != 1 || state[0] < '0' || state[0] > '4')
        return std::nullopt;
    ProgressReport report;
    report.state = static_cast<ProgressReportState>(state[0] - '0');
    const auto percentage = Ascii::takeField(payload, ';');
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (const auto value = parseDecimal(Ascii::bytes(percentage)))
        report.progress = std::uint8_t(std::min(*value, Most));
    else if (!percentage.empty() && std::all_of(percentage.begin(), percentage.end(), isDigit))
        report.progress = std::uint8_t(Most);
    return report;
}

} // namespace Kovalt
