#pragma once

#include <QString>
#include <QStringList>

#include <sys/types.h>

#include <optional>
#include <vector>

namespace Bralto {

/// Looks at the process table, and asks processes to end. Main thread; nothing here waits.
class ProcessInspector {
public:
    enum class Ending { Ask, Force };

    virtual ~ProcessInspector() = default;

    /// The direct children, at most 256; none if the process has gone.
    [[nodiscard]] virtual std::vector<pid_t> childPids(pid_t pid) const = 0;
    /// The names of the direct children; one that can't be read is left out.
    [[nodiscard]] virtual QStringList childNames(pid_t pid) const = 0;
    /// Absent if the process has gone or belongs to somebody else.
    [[nodiscard]] virtual std::optional<QString> currentDirectory(pid_t pid) const = 0;
    /// Sends the signal for that ending; a process that has gone is ignored.
    virtual void end(pid_t pid, Ending how) = 0;
};

} // namespace Bralto
