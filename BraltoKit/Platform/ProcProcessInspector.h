#pragma once

#include "Terminals/ProcessInspector.h"

namespace Bralto {

/// The process table as the kernel writes it in /proc. A process that has ended and is only kept
/// for its parent to ask about counts as gone.
class ProcProcessInspector final : public ProcessInspector {
public:
    static constexpr std::size_t MostChildren = 256;

    [[nodiscard]] std::vector<pid_t> childPids(pid_t pid) const override;
    [[nodiscard]] QStringList childNames(pid_t pid) const override;
    [[nodiscard]] std::optional<QString> currentDirectory(pid_t pid) const override;
    void end(pid_t pid, Ending how) override;
};

} // namespace Bralto
