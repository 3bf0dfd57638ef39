#pragma once

#include <QtGlobal>

#include <chrono>
#include <functional>

class QObject;

namespace Bralto {

/// A delayed call on the main thread that a test can bring about by hand.
class Scheduler {
public:
    virtual ~Scheduler() = default;

    /// Runs `action` once after `delay`, unless `context` was destroyed or `cancel` was called
    /// with the result. A delay of 0 means the next turn of the event loop, never this one.
    virtual quint64 after(std::chrono::milliseconds delay, QObject* context,
                          std::function<void()> action) = 0;

    /// Withdraws a call; one that ran or never was is ignored. 0 is never a call.
    virtual void cancel(quint64 call) = 0;
};

} // namespace Bralto
