#pragma once

#include "Benchmarks/ClickProbe.h"

#include <QElapsedTimer>
#include <QJsonObject>
#include <QString>

#include <vector>

namespace Bralto {

/// Milliseconds of the processor that this process has used.
[[nodiscard]] double processorTime();
/// How often the threads of this process went to sleep by themselves.
[[nodiscard]] qint64 wakeups();
/// Milliseconds.
[[nodiscard]] double elapsed(const QElapsedTimer& timer);
/// Median, 99th percentile, the longest and their count, under names that begin with `what`.
void addTimes(QJsonObject& result, const QString& what, std::vector<double> times);
void addWaits(QJsonObject& result, const ClickProbe::Waits& waits);

} // namespace Bralto
