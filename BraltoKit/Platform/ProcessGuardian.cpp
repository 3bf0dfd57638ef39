#include "Platform/ProcessGuardian.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <string_view>

// Everything here but `start` runs in a process that was forked from one with many threads: only
// system calls and memory on the stack, no allocation, no lock.

namespace Bralto::ProcessGuardian {

namespace {

constexpr int GraceMs = 1000; ///< From the polite signal to the forceful one.
constexpr int SweepMs = 50;   ///< Between two looks for children that are left.
constexpr int CannotStart = 127;

std::int64_t nowMs()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::int64_t(time.tv_sec) * 1000 + time.tv_nsec / 1'000'000;
}

void send(int control, Report::Kind kind, int value)
{
    const Report report{kind, value};
    (void)::send(control, &report, sizeof report, MSG_NOSIGNAL);
}

int exitStatus(int waitStatus)
{
    return WIFSIGNALED(waitStatus) ? 128 + WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

/// Closes every descriptor that isn't in `kept`.
void closeAllBut(std::array<int, 4> kept)
{
    std::sort(kept.begin(), kept.end());
    unsigned int next = 0;
    for (const int descriptor : kept) {
        const auto number = static_cast<unsigned int>(descriptor);
        if (number > next)
            close_range(next, number - 1, 0);
        next = number + 1;
    }
    close_range(next, ~0U, 0);
    // What is opened from here on must not get the number of a standard stream.
    int null = -1;
    do {
        null = open("/dev/null", O_RDWR | O_CLOEXEC);
    } while (null >= 0 && null < 2);
    if (null > 2)
        ::close(null);
}

void resetSignals()
{
    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    for (int signal = 1; signal < NSIG; ++signal)
        sigaction(signal, &standard, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Puts the three pipes in the places of the standard streams, whatever numbers they have.
bool placeStreams(const Plan& plan)
{
    std::array<int, 3> ends{plan.input, plan.output, plan.errors};
    for (int& end : ends) {
        end = fcntl(end, F_DUPFD_CLOEXEC, 3);
        if (end < 0)
            return false;
    }
    for (int place = 0; place < 3; ++place) {
        if (dup2(ends[std::size_t(place)], place) < 0)
            return false;
    }
    return true;
}

[[noreturn]] void becomeChild(const Plan& plan, int failure, pid_t guardian)
{
    setsid();
    // The guardian can be killed too; then at least the child itself goes with it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != guardian)
        _exit(CannotStart);
    if (placeStreams(plan) && chdir(plan.folder) == 0) {
        resetSignals();
        execve(plan.program, plan.arguments, plan.environment);
    }
    const int reason = errno;
    (void)!write(failure, &reason, sizeof reason);
    _exit(CannotStart);
}

/// The parent of the process whose folder in /proc is `name`; 0 if there is no telling.
pid_t parentOf(int proc, const char* name)
{
    const int folder = openat(proc, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return 0;
    const int file = openat(folder, "stat", O_RDONLY | O_CLOEXEC);
    ::close(folder);
    if (file < 0)
        return 0;
    std::array<char, 512> text{};
    const ssize_t length = read(file, text.data(), text.size());
    ::close(file);
    if (length <= 0)
        return 0;
    // "pid (name) state parent": the name may hold anything, so the last parenthesis counts.
    const std::string_view line(text.data(), std::size_t(length));
    const std::size_t end = line.rfind(')');
    if (end == std::string_view::npos || end + 4 >= line.size())
        return 0;
    pid_t parent = 0;
    for (const char digit : line.substr(end + 4)) {
        if (digit < '0' || digit > '9')
            break;
        parent = parent * 10 + (digit - '0');
    }
    return parent;
}

pid_t processNumber(const char* name)
{
    pid_t number = 0;
    for (; *name != '\0'; ++name) {
        if (*name < '0' || *name > '9')
            return 0;
        number = number * 10 + (*name - '0');
    }
    return number;
}

/// Kills every child of this process. Theirs come to it when they are gone.
void killChildren()
{
    const int proc = open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (proc < 0)
        return;
    const pid_t self = getpid();
    alignas(dirent64) std::array<char, 8192> entries;
    for (;;) {
        const long length = syscall(SYS_getdents64, proc, entries.data(), entries.size());
        if (length <= 0)
            break;
        for (long at = 0; at < length;) {
            const auto* entry = reinterpret_cast<const dirent64*>(entries.data() + at);
            at += entry->d_reclen;
            const pid_t process = processNumber(entry->d_name);
            if (process > 0 && parentOf(proc, entry->d_name) == self)
                kill(process, SIGKILL);
        }
    }
    ::close(proc);
}

/// Reads a hexadecimal number up to the first other character.
std::uintptr_t addressAt(std::string_view text)
{
    std::uintptr_t address = 0;
    for (const char digit : text) {
        if (digit >= '0' && digit <= '9')
            address = address * 16 + std::uintptr_t(digit - '0');
        else if (digit >= 'a' && digit <= 'f')
            address = address * 16 + std::uintptr_t(digit - 'a' + 10);
        else
            break;
    }
    return address;
}

/// Gives the copy of the program's heap back: the guardian never looks at it, and it would hold on
/// to every page that the program changes or frees.
void releaseHeap()
{
    const int file = open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return;
    std::array<char, 4096> text{}; // The heap stands right behind the program, at the top.
    const ssize_t length = read(file, text.data(), text.size());
    ::close(file);
    const std::string_view maps(text.data(), length > 0 ? std::size_t(length) : 0);
    const std::size_t name = maps.find("[heap]");
    if (name == std::string_view::npos)
        return;
    const std::string_view line = maps.substr(maps.rfind('\n', name) + 1); // npos + 1 is 0.
    const std::uintptr_t start = addressAt(line);
    const std::uintptr_t end = addressAt(line.substr(line.find('-') + 1));
    if (start < end)
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the kernel tells the address as a number.
        madvise(reinterpret_cast<void*>(start), end - start, MADV_DONTNEED);
}

/// The guardian's life after the child has started.
class Watch {
public:
    Watch(int control, int childSignals, pid_t child)
        : m_control(control)
        , m_childSignals(childSignals)
        , m_child(child)
    {
    }

    void run()
    {
        while (reap()) {
            if (m_child == 0 || (m_deadline && nowMs() >= m_deadline))
                sweep();
            wait();
        }
    }

private:
    /// Collects what has ended; whether any child is left.
    bool reap()
    {
        for (;;) {
            int status = 0;
            const pid_t process = waitpid(-1, &status, WNOHANG);
            if (process == 0)
                return true;
            if (process < 0)
                return errno == EINTR;
            if (process == m_child) {
                m_child = 0;
                send(m_control, Report::Kind::Exited, exitStatus(status));
            }
        }
    }

    void sweep()
    {
        if (m_child > 0)
            kill(-m_child, SIGKILL);
        killChildren();
        m_sweeping = true;
    }

    void wait()
    {
        std::array<pollfd, 2> sources{{{m_childSignals, POLLIN, 0}, {m_control, POLLIN, 0}}};
        const nfds_t count = m_deadline ? 1 : 2;
        int timeout = -1;
        if (m_sweeping)
            timeout = SweepMs;
        else if (m_deadline)
            timeout = int(std::max<std::int64_t>(0, m_deadline - nowMs()));
        if (poll(sources.data(), count, timeout) <= 0)
            return;
        if (sources[0].revents) {
            signalfd_siginfo ignored{};
            (void)!read(m_childSignals, &ignored, sizeof ignored);
        }
        if (count == 2 && sources[1].revents)
            obey();
    }

    void obey()
    {
        char order = 0;
        const ssize_t length = recv(m_control, &order, 1, MSG_DONTWAIT);
        if (length < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        if (length <= 0) {
            m_deadline = nowMs() + GraceMs;
            order = char(Order::Terminate);
        }
        if (m_child == 0)
            return;
        switch (Order(order)) {
        case Order::Interrupt:
            kill(m_child, SIGINT);
            break;
        case Order::Terminate:
            kill(m_child, SIGTERM);
            break;
        case Order::Kill:
            kill(-m_child, SIGKILL);
            break;
        }
    }

    int m_control;
    int m_childSignals;
    pid_t m_child;               ///< 0 once it has been collected.
    std::int64_t m_deadline = 0; ///< When force is used; 0 while the program is there.
    bool m_sweeping = false;
};

[[noreturn]] void guard(const Plan& plan)
{
    setsid();
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    prctl(PR_SET_NAME, "agent-guardian");
    closeAllBut({plan.input, plan.output, plan.errors, plan.control});

    struct sigaction standard {};
    standard.sa_handler = SIG_DFL;
    sigaction(SIGCHLD, &standard, nullptr); // An ignored SIGCHLD would collect the children itself.
    sigset_t childEnded;
    sigemptyset(&childEnded);
    sigaddset(&childEnded, SIGCHLD);
    const int childSignals = signalfd(-1, &childEnded, SFD_CLOEXEC | SFD_NONBLOCK);
    std::array<int, 2> failure{-1, -1};
    if (childSignals < 0 || pipe2(failure.data(), O_CLOEXEC) != 0) {
        send(plan.control, Report::Kind::Failed, errno);
        _exit(0);
    }

    const pid_t guardian = getpid();
    // The child shares this memory until it has become another program, which spares the copy.
    // NOLINTNEXTLINE(clang-analyzer-security.insecureAPI.vfork): the sharing is wanted.
    const pid_t child = vfork();
    if (child == 0)
        // NOLINTNEXTLINE(clang-analyzer-unix.Vfork): it makes system calls only and never returns.
        becomeChild(plan, failure[1], guardian);
    int reason = child < 0 ? errno : 0;
    ::close(failure[1]);
    ::close(plan.input);
    ::close(plan.output);
    ::close(plan.errors);
    // End of file without a reason is the exec that closed the pipe.
    if (child > 0)
        while (read(failure[0], &reason, sizeof reason) < 0 && errno == EINTR) {
        }
    ::close(failure[0]);
    if (reason != 0) {
        send(plan.control, Report::Kind::Failed, reason);
        if (child > 0)
            waitpid(child, nullptr, 0);
        _exit(0);
    }
    (void)!chdir("/");
    releaseHeap();
    send(plan.control, Report::Kind::Started, child);
    Watch(plan.control, childSignals, child).run();
    _exit(0);
}

} // namespace

pid_t start(const Plan& plan)
{
    // No handler of the program may run in the copy, so all signals are held back across the fork.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t guardian = fork();
    if (guardian == 0)
        guard(plan);
    const int reason = errno;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = reason;
    return guardian;
}

} // namespace Bralto::ProcessGuardian
