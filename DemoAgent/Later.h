#pragma once

#include <QObject>
#include <QTimer>

#include <coroutine>
#include <optional>
#include <utility>

namespace DemoAgent {

/// A value that comes later, for one waiter. The waiter goes on in a later turn of the event loop,
/// so who brings the value never runs the waiter's code; destroyed before that, nothing happens.
template <typename T>
class Later {
public:
    Later() = default;
    Later(const Later&) = delete;
    Later& operator=(const Later&) = delete;

    /// The first value counts; further ones are dropped.
    void bring(T value)
    {
        if (m_value)
            return;
        m_value = std::move(value);
        if (m_waiter)
            wake();
    }

    [[nodiscard]] bool hasValue() const { return m_value.has_value(); }

    class Awaiter {
    public:
        explicit Awaiter(Later& later)
            : m_later(later)
        {
        }
        // NOLINTBEGIN(readability-identifier-naming): the language names these.
        [[nodiscard]] bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> waiter)
        {
            m_later.m_waiter = waiter;
            if (m_later.m_value)
                m_later.wake();
        }
        T await_resume() { return std::move(*m_later.m_value); }
        // NOLINTEND(readability-identifier-naming)

    private:
        Later& m_later;
    };
    Awaiter operator co_await() { return Awaiter(*this); }

private:
    void wake()
    {
        QTimer::singleShot(0, &m_context, [waiter = m_waiter] { waiter.resume(); });
    }

    std::optional<T> m_value;
    std::coroutine_handle<> m_waiter;
    QObject m_context;
};

} // namespace DemoAgent
