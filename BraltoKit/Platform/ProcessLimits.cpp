#include "Platform/ProcessLimits.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>

namespace Bralto::ProcessLimits {

std::optional<rlim_t> raised(const rlimit& present, std::optional<rlim_t> perProcess)
{
    const rlim_t target = std::min(present.rlim_max, perProcess.value_or(DefaultPerProcess));
    return present.rlim_cur < target ? std::optional(target) : std::nullopt;
}

std::optional<rlim_t> perProcess(const char* path)
{
    QFile file(QString::fromLocal8Bit(path));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    bool isNumber = false;
    const rlim_t number = file.readAll().trimmed().toULong(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

void raiseOpenFileLimit()
{
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return;
    const auto target = raised(limit, perProcess());
    if (!target)
        return;
    limit.rlim_cur = *target;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace Bralto::ProcessLimits
