#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <string>

namespace Kovalt {

/// What a process and its terminal said to each other, for whoever looks for a mistake. Off until
/// asked for; only errors are always printed. Any thread.
class ProcessLog {
public:
    using Bytes = std::span<const std::uint8_t>;
    /// Gets one line without its end, from any thread.
    using Printer = std::function<void(const std::string& line)>;

    /// Without a printer the lines go to standard output.
    explicit ProcessLog(Printer printer);

    void setDebugIO(bool enabled) { m_debugIO = enabled; }
    /// Every piece that is read goes to a file "log-<number>" there. None ends that.
    void setDirectory(std::optional<std::string> directory);

    void received(Bytes bytes);
    /// The number of this write, from 1.
    std::uint64_t queued(Bytes bytes);
    void completed(std::uint64_t number, std::size_t count);
    void writeFailed(int error) const;

private:
    void dump(const std::string& directory, Bytes bytes);
    void print(const std::string& line) const;

    Printer m_printer;
    std::atomic<bool> m_debugIO = false;
    std::atomic<std::uint64_t> m_sendCount = 0;
    std::atomic<std::uint64_t> m_totalWritten = 0;
    std::mutex m_lock; ///< Guards the three that follow.
    std::optional<std::string> m_directory;
    std::uint64_t m_fileCounter = 0;
    std::uint64_t m_totalRead = 0;
};

} // namespace Kovalt
