#pragma once

#include "Kovalt/Process/RunLoop.h"
#include "Kovalt/Process/WakeSignal.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

namespace Kovalt {

/// A loop over poll(2) for programs without one. It belongs to the thread that runs it; `post` and
/// `stop` may be called from any thread, everything else from its own only.
class PollLoop : public RunLoop {
public:
    using Clock = std::chrono::steady_clock;
    using Id = std::uint64_t; ///< Of a watch or a timer, never 0.
    /// Gets the events that poll(2) reported.
    using DescriptorTask = std::function<void(short events)>;

    PollLoop() = default;
    PollLoop(const PollLoop&) = delete;
    PollLoop& operator=(const PollLoop&) = delete;

    void post(Task task) override;

    /// `descriptor` must stay open until `unwatch`. The task may unwatch, also itself.
    Id watch(int descriptor, short events, DescriptorTask task);
    void unwatch(Id id);

    /// Calls the task once, no sooner than `delay` from now.
    Id startTimer(std::chrono::milliseconds delay, Task task);
    void cancelTimer(Id id);

    /// Until `stop`.
    void run();
    /// Until `condition` holds, which is asked after each turn, or the time is over. True if it
    /// holds.
    bool runUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout);
    void stop();

private:
    struct Watch {
        int descriptor;
        short events;
        DescriptorTask task;
    };

    void turn(Clock::time_point deadline);
    void runPosted();
    void runDueTimers();
    void waitForEvents(Clock::time_point deadline);
    [[nodiscard]] int pollTimeout(Clock::time_point deadline);

    WakeSignal m_wake;
    std::mutex m_lock; ///< Guards the two that follow.
    std::vector<Task> m_posted;
    bool m_stopped = false;

    Id m_lastId = 0;
    std::map<Id, Watch> m_watches;
    std::map<std::pair<Clock::time_point, Id>, Task> m_timers;
};

} // namespace Kovalt
