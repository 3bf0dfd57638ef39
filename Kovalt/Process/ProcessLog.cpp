#include "Kovalt/Process/ProcessLog.h"

#include "Kovalt/Process/FileDescriptor.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace Kovalt {

namespace {

/// 0, or the error that kept the bytes from being written.
int writeFile(const std::string& path, std::span<const std::uint8_t> bytes)
{
    const FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file.isOpen())
        return errno;
    while (!bytes.empty()) {
        const auto count = ::write(file.get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return errno;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return 0;
}

std::string listOf(std::span<const std::uint8_t> bytes)
{
    std::string list = "[";
    for (const auto byte : bytes)
        list += (list.size() > 1 ? ", " : "") + std::to_string(byte);
    return list + "]";
}

} // namespace

ProcessLog::ProcessLog(Printer printer)
    : m_printer(std::move(printer))
{
}

void ProcessLog::setDirectory(std::optional<std::string> directory)
{
    const std::lock_guard lock(m_lock);
    m_directory = std::move(directory);
}

void ProcessLog::received(Bytes bytes)
{
    const std::lock_guard lock(m_lock);
    if (m_debugIO) {
        m_totalRead += bytes.size();
        print("[READ] count=" + std::to_string(bytes.size()) +
              " received from host total=" + std::to_string(m_totalRead));
    }
    if (m_directory && !bytes.empty())
        dump(*m_directory, bytes);
}

void ProcessLog::dump(const std::string& directory, Bytes bytes)
{
    const auto path = directory + "/log-" + std::to_string(m_fileCounter);
    if (const auto error = writeFile(path, bytes); error != 0)
        print("Got error while logging data dump to " + path + ": " + std::strerror(error));
    else
        ++m_fileCounter;
}

std::uint64_t ProcessLog::queued(Bytes bytes)
{
    const auto number = ++m_sendCount;
    if (m_debugIO)
        print("[SEND-" + std::to_string(number) + "] Queuing data to client: " + listOf(bytes));
    return number;
}

void ProcessLog::completed(std::uint64_t number, std::size_t count)
{
    const auto total = m_totalWritten += count;
    if (m_debugIO)
        print("[SEND-" + std::to_string(number) + "] completed bytes=" + std::to_string(total));
}

void ProcessLog::writeFailed(int error) const
{
    print("Error writing data to the child, errno=" + std::to_string(error));
}

void ProcessLog::print(const std::string& line) const
{
    if (m_printer)
        m_printer(line);
    else
        std::puts(line.c_str());
}

} // namespace Kovalt
