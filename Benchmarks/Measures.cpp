#include "Benchmarks/Measures.h"

#include <QDir>
#include <QFile>

#include <sys/resource.h>

#include <algorithm>

namespace Bralto {

double processorTime()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto milliseconds = [](const timeval& time) {
        return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

qint64 wakeups()
{
    qint64 sum = 0;
    const QDir tasks("/proc/self/task");
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks.filePath(task + "/status"));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith("voluntary_ctxt_switches:"))
                sum += line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
        }
    }
    return sum;
}

void addTimes(QJsonObject& result, const QString& what, std::vector<double> times)
{
    if (times.empty())
        return;
    std::ranges::sort(times);
    const auto at = [&times](double part) {
        return times[std::min(times.size() - 1, std::size_t(part * double(times.size())))];
    };
    result.insert(what + "Median", at(0.5));
    result.insert(what + "P99", at(0.99));
    result.insert(what + "Longest", times.back());
    result.insert(what + "Count", int(times.size()));
}

void addWaits(QJsonObject& result, const ClickProbe::Waits& waits)
{
    addTimes(result, "click", waits.times);
    addTimes(result, "work", waits.work);
}

double elapsed(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

} // namespace Bralto
