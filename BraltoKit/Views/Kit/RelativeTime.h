#pragma once

#include <QDateTime>
#include <QString>

namespace Bralto {

/// How long ago `time` was, in the words of a list: "just now", "2 min ago", "1 hour ago",
/// "Yesterday", "3 days ago", "2 weeks ago", "last month", "5 months ago", "2 years ago". A time
/// to come counts as now.
[[nodiscard]] QString relativeTime(const QDateTime& time, const QDateTime& now);

} // namespace Bralto
