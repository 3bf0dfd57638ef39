#pragma once

#include <optional>

#include <sys/resource.h>

/// How many files this process may have open: each pane, watched folder and connection is one.
namespace Bralto::ProcessLimits {

/// What stands in for the system's own limit where that can't be read.
inline constexpr rlim_t DefaultPerProcess = 10240;

/// The soft limit to set: the smaller of the hard limit and what one process may have, or nothing
/// if the present limit is enough.
[[nodiscard]] std::optional<rlim_t> raised(const rlimit& present, std::optional<rlim_t> perProcess);

/// The number in the text of `/proc/sys/fs/nr_open`, or nothing.
[[nodiscard]] std::optional<rlim_t> perProcess(const char* path = "/proc/sys/fs/nr_open");

/// Failures are ignored: the process goes on with what it has.
void raiseOpenFileLimit();

} // namespace Bralto::ProcessLimits
