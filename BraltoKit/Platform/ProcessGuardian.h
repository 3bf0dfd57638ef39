#pragma once

/// @file
/// The small process between the program and a child of it. It exists because only a process that
/// outlives the program can clean up after a program that was killed:
///
///     program ── control socket ── guardian (subreaper) ── child ── whatever the child starts
///
/// The program's death closes the socket, and the guardian then ends the child. Orphans of the
/// child, also those in sessions of their own, become the guardian's children, so that it can end
/// them all: when the child has ended, nothing that it started is left.

#include <sys/types.h>

#include <cstdint>

namespace Bralto::ProcessGuardian {

/// What the guardian is to start, prepared before the fork: afterwards nothing may be allocated.
struct Plan {
    const char* program = nullptr;
    char* const* arguments = nullptr;   ///< With the program's name, ended by null.
    char* const* environment = nullptr; ///< Ended by null.
    const char* folder = nullptr;
    int input = -1; ///< The child's ends of the pipes.
    int output = -1;
    int errors = -1;
    int control = -1; ///< The guardian's end of a SOCK_SEQPACKET pair.
};

/// One message of the guardian.
struct Report {
    enum class Kind : std::int32_t {
        Started, ///< `value` is the child's process id.
        Failed,  ///< `value` is the `errno` that kept the child from starting; the last message.
        Exited   ///< `value` is the child's exit code, or 128 and a signal.
    };
    Kind kind = Kind::Failed;
    std::int32_t value = 0;
};

/// One message to the guardian, a byte each. End of file ends the child: politely first, after a
/// second by force.
enum class Order : char { Interrupt = 'I', Terminate = 'T', Kill = 'K' };

/// Forks the guardian. Its process id, or -1 with `errno` set. The caller closes the plan's
/// descriptors afterwards and waits for the process in the end.
[[nodiscard]] pid_t start(const Plan& plan);

} // namespace Bralto::ProcessGuardian
