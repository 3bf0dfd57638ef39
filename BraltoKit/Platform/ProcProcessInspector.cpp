#include "Platform/ProcProcessInspector.h"

#include "Kovalt/Process/FileDescriptor.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <span>
#include <string_view>

namespace Bralto {

namespace {

using Kovalt::FileDescriptor;

/// "/proc/<pid>/" and what may stand behind it.
using ProcPath = std::array<char, 64>;

ProcPath procPath(pid_t pid, const char* entry)
{
    ProcPath path{};
    std::snprintf(path.data(), path.size(), "/proc/%d/%s", pid, entry);
    return path;
}

ssize_t readSome(int descriptor, std::span<char> buffer)
{
    for (;;) {
        const ssize_t length = ::read(descriptor, buffer.data(), buffer.size());
        if (length >= 0 || errno != EINTR)
            return length;
    }
}

/// The beginning of a small file; empty if it can't be read.
std::string_view contents(const ProcPath& path, std::span<char> buffer)
{
    const FileDescriptor file(::open(path.data(), O_RDONLY | O_CLOEXEC));
    const ssize_t length = file.isOpen() ? readSome(file.get(), buffer) : -1;
    return {buffer.data(), length > 0 ? std::size_t(length) : 0};
}

bool isAlive(pid_t pid)
{
    std::array<char, 512> buffer;
    const std::string_view stat = contents(procPath(pid, "stat"), buffer);
    // The name stands in brackets and may hold anything, brackets and line feeds too.
    const std::size_t state = stat.rfind(')') + 2;
    if (state < 2 || state >= stat.size())
        return false;
    return stat[state] != 'Z' && stat[state] != 'X';
}

/// Adds the numbers that a list of process ids holds, up to the limit.
void appendNumbers(int descriptor, std::vector<pid_t>& pids)
{
    std::array<char, 4096> buffer;
    std::size_t kept = 0;
    while (pids.size() < ProcProcessInspector::MostChildren) {
        const ssize_t length = readSome(descriptor, std::span(buffer).subspan(kept));
        if (length <= 0)
            return;
        std::string_view text(buffer.data(), kept + std::size_t(length));
        // Each number has a blank behind it; one without continues in the next piece.
        for (std::size_t blank; (blank = text.find(' ')) != std::string_view::npos;) {
            pid_t pid = 0;
            std::from_chars(text.data(), text.data() + blank, pid);
            if (pid > 0 && pids.size() < ProcProcessInspector::MostChildren && isAlive(pid))
                pids.push_back(pid);
            text.remove_prefix(blank + 1);
        }
        kept = text.size();
        std::memmove(buffer.data(), text.data(), kept);
    }
}

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

/// Where a folder is gone, the kernel says so behind its former path.
bool isGone(const QString& path, pid_t pid)
{
    if (!path.endsWith(QLatin1String(" (deleted)")))
        return false;
    struct stat named = {};
    struct stat current = {};
    return ::stat(QFile::encodeName(path).constData(), &named) != 0 ||
           ::stat(procPath(pid, "cwd").data(), &current) != 0 || named.st_dev != current.st_dev ||
           named.st_ino != current.st_ino;
}

} // namespace

std::vector<pid_t> ProcProcessInspector::childPids(pid_t pid) const
{
    std::vector<pid_t> pids;
    if (pid < 1)
        return pids;
    const std::unique_ptr<DIR, CloseFolder> threads(::opendir(procPath(pid, "task").data()));
    if (!threads)
        return pids;
    // A child belongs to the thread that started it.
    while (const dirent* thread = ::readdir(threads.get())) {
        if (thread->d_name[0] == '.')
            continue;
        std::array<char, sizeof thread->d_name + sizeof "/children"> entry;
        std::snprintf(entry.data(), entry.size(), "%s/children", thread->d_name);
        const FileDescriptor children(
            ::openat(::dirfd(threads.get()), entry.data(), O_RDONLY | O_CLOEXEC));
        if (children.isOpen())
            appendNumbers(children.get(), pids);
    }
    return pids;
}

QStringList ProcProcessInspector::childNames(pid_t pid) const
{
    QStringList names;
    for (const pid_t child : childPids(pid)) {
        std::array<char, 256> buffer;
        std::string_view name = contents(procPath(child, "comm"), buffer);
        if (name.empty())
            continue;
        // The line feed at the end is the kernel's; another one is the name's own.
        name.remove_suffix(1);
        names.append(QString::fromUtf8(name.data(), qsizetype(name.size())));
    }
    return names;
}

std::optional<QString> ProcProcessInspector::currentDirectory(pid_t pid) const
{
    if (pid < 1)
        return std::nullopt;
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(procPath(pid, "cwd").data(), target.data(), target.size());
    // One outside of what this process can reach has no path; one that fills the buffer is cut off.
    if (length <= 0 || length == ssize_t(target.size()) || target[0] != '/')
        return std::nullopt;
    const QString path = QFile::decodeName(QByteArray(target.data(), length));
    return isGone(path, pid) ? std::nullopt : std::optional(path);
}

void ProcProcessInspector::end(pid_t pid, Ending how)
{
    // Zero and what is below it stand for groups of processes.
    if (pid > 0)
        ::kill(pid, how == Ending::Ask ? SIGTERM : SIGKILL);
}

} // namespace Bralto
