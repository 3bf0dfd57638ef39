#include "Kovalt/Process/PseudoTerminalHelpers.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <termios.h>
#include <utmp.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <limits>

namespace Kovalt {

namespace {

constexpr int ExecutionFailed = 127;

struct Terminal {
    FileDescriptor master;
    FileDescriptor slave;
};

/// Both ends are closed on exec from the start, so that no other thread's child gets them.
std::optional<Terminal> openTerminal(const winsize& size)
{
    Terminal terminal;
    terminal.master = FileDescriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    std::array<char, 128> name{};
    const auto master = terminal.master.get();
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0 ||
        ::ptsname_r(master, name.data(), name.size()) != 0)
        return std::nullopt;
    terminal.slave = FileDescriptor(::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!terminal.slave.isOpen())
        return std::nullopt;
    // The kernel's own line editing erases whole characters.
    termios settings{};
    if (::tcgetattr(terminal.slave.get(), &settings) == 0) {
        settings.c_iflag |= IUTF8;
        ::tcsetattr(terminal.slave.get(), TCSANOW, &settings);
    }
    PseudoTerminalHelpers::setWinSize(master, size);
    return terminal;
}

void resetSignals()
{
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    for (int number = 1; number < NSIG; ++number)
        ::sigaction(number, &standard, nullptr);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// In the child between fork and exec, where only calls are allowed that a signal handler may make.
[[noreturn]] void execute(int slave, const char* executable, char* const* arguments,
                          char* const* environment, const char* directory)
{
    // login_tty closes the descriptor that it is given; the other three stay.
    if (::login_tty(slave) != 0)
        ::_exit(ExecutionFailed);
    ::syscall(SYS_close_range, 3U, std::numeric_limits<unsigned>::max(), 0U);
    resetSignals();
    if (directory != nullptr) {
        [[maybe_unused]] const auto result = ::chdir(directory);
    }
    ::execve(executable, arguments, environment);
    ::_exit(ExecutionFailed);
}

} // namespace

std::optional<PseudoTerminalHelpers::ForkedChild> PseudoTerminalHelpers::fork(
    const std::string& executable, const std::vector<std::string>& arguments,
    const std::vector<std::string>& environment, const std::optional<std::string>& currentDirectory,
    const winsize& desiredWindowSize)
{
    // Everything that takes memory happens before the fork.
    const auto argv = allocateCStringArray(arguments);
    const auto envp = allocateCStringArray(environment);
    const auto* directory = currentDirectory ? currentDirectory->c_str() : nullptr;
    auto terminal = openTerminal(desiredWindowSize);
    if (!terminal)
        return std::nullopt;
    const auto pid = ::fork();
    if (pid < 0)
        return std::nullopt;
    if (pid == 0)
        execute(terminal->slave.get(), executable.c_str(), argv.data(), envp.data(), directory);
    return ForkedChild{pid, std::move(terminal->master)};
}

bool PseudoTerminalHelpers::setWinSize(int masterPtyDescriptor, const winsize& windowSize)
{
    return ::ioctl(masterPtyDescriptor, TIOCSWINSZ, &windowSize) == 0;
}

std::optional<int> PseudoTerminalHelpers::availableBytes(int descriptor)
{
    int count = 0;
    if (::ioctl(descriptor, FIONREAD, &count) != 0)
        return std::nullopt;
    return count;
}

PseudoTerminalHelpers::CStringArray::CStringArray(const std::vector<std::string>& strings)
    : m_strings(strings)
{
    for (auto& string : m_strings)
        m_pointers.push_back(string.data());
    m_pointers.push_back(nullptr);
}

PseudoTerminalHelpers::CStringArray
PseudoTerminalHelpers::allocateCStringArray(const std::vector<std::string>& strings)
{
    return CStringArray(strings);
}

} // namespace Kovalt
