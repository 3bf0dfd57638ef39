#pragma once

#include "Kovalt/Process/FileDescriptor.h"

#include <sys/ioctl.h>
#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

/// The calls that make a child on a pseudo-terminal.
namespace Kovalt::PseudoTerminalHelpers {

struct ForkedChild {
    pid_t pid = 0;
    FileDescriptor master; ///< Closed in every program that is executed.
};

/// Runs `executable` as the leader of a session whose terminal has this size. The child begins with
/// default signals, none of them blocked, and with no descriptor but the terminal. A directory that
/// can't be entered is ignored; a program that can't be executed exits with 127. None on any other
/// failure, and then nothing was started.
[[nodiscard]] std::optional<ForkedChild> fork(const std::string& executable,
                                              const std::vector<std::string>& arguments,
                                              const std::vector<std::string>& environment,
                                              const std::optional<std::string>& currentDirectory,
                                              const winsize& desiredWindowSize);

/// False if the descriptor is no terminal.
bool setWinSize(int masterPtyDescriptor, const winsize& windowSize);

/// How many bytes can be read at once, or none if that can't be told.
[[nodiscard]] std::optional<int> availableBytes(int descriptor);

/// An array of C strings with a null behind the last, as exec wants it.
class CStringArray {
public:
    explicit CStringArray(const std::vector<std::string>& strings);
    CStringArray(const CStringArray&) = delete;
    CStringArray& operator=(const CStringArray&) = delete;
    [[nodiscard]] char* const* data() const { return m_pointers.data(); }

private:
    std::vector<std::string> m_strings;
    std::vector<char*> m_pointers;
};

/// The strings are copies. A string ends at its first 0.
[[nodiscard]] CStringArray allocateCStringArray(const std::vector<std::string>& strings);

} // namespace Kovalt::PseudoTerminalHelpers
