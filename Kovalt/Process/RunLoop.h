#pragma once

#include <functional>

namespace Kovalt {

/// The host's way back to the thread that owns a terminal: a window system's main loop, or a
/// `PollLoop`.
class RunLoop {
public:
    using Task = std::function<void()>;

    virtual ~RunLoop() = default;
    /// From any thread; returns at once. The tasks run on the loop's thread, one after the other,
    /// in the order in which they were posted, and never inside this call. They throw nothing.
    virtual void post(Task task) = 0;
};

} // namespace Kovalt
