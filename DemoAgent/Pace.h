#pragma once

#include <QObject>

#include <chrono>
#include <coroutine>

namespace DemoAgent {

/// How fast the agent works: all its pauses, divided by a factor.
class Pace {
public:
    /// 1 is the pace of a person reading along, 20 is twenty times as fast. 0 means no pauses at
    /// all; a pause then still lets the event loop turn, so an interrupt is seen at once.
    explicit Pace(double factor)
        : m_factor(factor)
    {
    }

    /// The factor that a text names: a number of 0 or more, else 1.
    [[nodiscard]] static Pace fromText(const QByteArray& text);

    [[nodiscard]] std::chrono::milliseconds scaled(std::chrono::milliseconds pause) const;

    class Awaiter {
    public:
        explicit Awaiter(std::chrono::milliseconds pause)
            : m_pause(pause)
        {
        }
        // NOLINTBEGIN(readability-identifier-naming): the language names these.
        [[nodiscard]] bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> waiter);
        void await_resume() const noexcept {}
        // NOLINTEND(readability-identifier-naming)

    private:
        std::chrono::milliseconds m_pause;
        QObject m_context;
    };

    /// `co_await pace.pause(20ms)`.
    [[nodiscard]] Awaiter pause(std::chrono::milliseconds time) const
    {
        return Awaiter(scaled(time));
    }

private:
    double m_factor;
};

} // namespace DemoAgent
