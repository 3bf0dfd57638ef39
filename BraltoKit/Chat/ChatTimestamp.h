#pragma once

#include <QDateTime>

#include <optional>
#include <string_view>

namespace Bralto::ChatTimestamp {

/// The instant that an internet date-time of ISO 8601 spells, in UTC and whole milliseconds:
/// "2026-11-21T00:43:11.513Z" or "2026-11-21T01:43:11+01:00". Anything else is absent, and so is a
/// time without a zone.
[[nodiscard]] std::optional<QDateTime> parse(std::string_view text);

} // namespace Bralto::ChatTimestamp
