#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <span>
#include <vector>

namespace Kovalt {

class ProcessLog;

/// What is on its way to a process, in order. Writing never blocks: what the process does not take
/// at once waits here until it can be written. Any thread.
class OutgoingData {
public:
    /// More than this is not kept for a process that reads nothing: what comes then is lost.
    static constexpr std::size_t MaximumWaiting = 64U << 20U;

    /// `log` must outlive this object.
    explicit OutgoingData(ProcessLog& log);

    /// Writes at once what the descriptor takes, and keeps the rest. True if something waits.
    bool send(int descriptor, std::span<const std::uint8_t> bytes);
    /// Writes what waits, as far as the descriptor takes it. True if something waits still.
    bool flush(int descriptor);
    [[nodiscard]] bool isWaiting() const;

private:
    struct Message {
        std::uint64_t number = 0;
        std::size_t written = 0;
        std::vector<std::uint8_t> bytes;
    };

    bool writeAll(int descriptor);
    bool writeFirst(int descriptor);

    ProcessLog& m_log;
    mutable std::mutex m_lock;
    std::deque<Message> m_messages;
    std::size_t m_waiting = 0;
};

} // namespace Kovalt
