#pragma once

#include <chrono>
#include <functional>

namespace Kovalt {

/// One timer of the host's loop, which calls back on the thread that drives the terminal.
class TerminalTimer {
public:
    /// Replaces what was pending.
    virtual void start(std::chrono::milliseconds delay, std::function<void()> elapsed) = 0;
    virtual void cancel() = 0;

protected:
    ~TerminalTimer() = default;
};

} // namespace Kovalt
