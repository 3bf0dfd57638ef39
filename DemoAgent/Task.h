#pragma once

#include <coroutine>
#include <exception>
#include <optional>
#include <utility>

namespace DemoAgent {

// NOLINTBEGIN(readability-identifier-naming): the language names the hooks of a coroutine.

template <typename T>
class Task;

namespace Detail {

struct PromiseBase {
    struct FinalAwaiter {
        [[nodiscard]] bool await_ready() const noexcept { return false; }
        template <typename Promise>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> ended) const noexcept
        {
            return ended.promise().continuation;
        }
        void await_resume() const noexcept {}
    };

    std::suspend_always initial_suspend() const noexcept { return {}; }
    FinalAwaiter final_suspend() const noexcept { return {}; }
    [[noreturn]] void unhandled_exception() const noexcept { std::terminate(); }

    std::coroutine_handle<> continuation = std::noop_coroutine();
};

template <typename T>
struct Promise : PromiseBase {
    Task<T> get_return_object();
    void return_value(T result) { value = std::move(result); }
    T take() { return std::move(*value); }

    std::optional<T> value;
};

template <>
struct Promise<void> : PromiseBase {
    Task<void> get_return_object();
    void return_void() const noexcept {}
    void take() const noexcept {}
};

} // namespace Detail

/// Work in steps on the main thread: what a turn does between two waits. It starts when it is
/// awaited, or with `start()`. Destroying it ends it wherever it waits, with all that it awaits.
template <typename T = void>
class [[nodiscard]] Task {
public:
    using promise_type = Detail::Promise<T>;

    explicit Task(std::coroutine_handle<promise_type> handle)
        : m_handle(handle)
    {
    }
    Task(Task&& other) noexcept
        : m_handle(std::exchange(other.m_handle, nullptr))
    {
    }
    Task& operator=(Task&& other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task()
    {
        if (m_handle)
            m_handle.destroy();
    }

    /// Runs to the first wait. For the outermost task only; call it once.
    void start() { m_handle.resume(); }

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    std::coroutine_handle<> await_suspend(std::coroutine_handle<> waiting) noexcept
    {
        m_handle.promise().continuation = waiting;
        return m_handle;
    }
    T await_resume() { return m_handle.promise().take(); }

private:
    std::coroutine_handle<promise_type> m_handle;
};

namespace Detail {

template <typename T>
Task<T> Promise<T>::get_return_object()
{
    return Task<T>(std::coroutine_handle<Promise<T>>::from_promise(*this));
}

inline Task<void> Promise<void>::get_return_object()
{
    return Task<void>(std::coroutine_handle<Promise<void>>::from_promise(*this));
}

} // namespace Detail

// NOLINTEND(readability-identifier-naming)

} // namespace DemoAgent
