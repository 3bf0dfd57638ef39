#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <vector>

namespace Kovalt {

/// What was read from a process and waits for the thread that owns the terminal. One thread puts
/// in, one takes out; any may ask for the size.
class PendingData {
public:
    using Chunk = std::vector<std::uint8_t>;

    /// At this size reading stops ...
    static constexpr std::size_t HighWaterBytes = 4194304;
    /// ... and at this one it goes on.
    static constexpr std::size_t LowWaterBytes = 1048576;
    /// Finished chunks are removed this many at a time.
    static constexpr std::size_t FlushThreshold = 32;

    /// True if nobody is about to take and somebody must be told.
    bool enqueue(Chunk chunk);

    struct Taken {
        Chunk chunk;
        bool resumesReading = false; ///< Reading had stopped and goes on with this.
    };
    /// None when nothing is left; the next `enqueue` then schedules a drain again.
    std::optional<Taken> take();

    [[nodiscard]] std::size_t size() const;
    /// From the high mark on until the low one.
    [[nodiscard]] bool isReadSuspended() const;

private:
    mutable std::mutex m_lock;
    std::vector<Chunk> m_chunks;
    std::size_t m_index = 0;
    std::size_t m_bytes = 0;
    bool m_scheduled = false;
    bool m_readSuspended = false;
};

} // namespace Kovalt
