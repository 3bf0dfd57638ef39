#pragma once

/// @file
/// Coroutines on the main thread: work that waits reads from top to bottom.
///
/// A `Task` belongs to whoever awaits it, and in the end to a `TaskScope`. When that goes, what
/// still waits is destroyed where it stands, locals first, and nobody is told.

// Clang before 17 has coroutines, but doesn't say so in the way that libstdc++ asks for.
#if defined(__clang__) && !defined(__cpp_impl_coroutine)
#define __cpp_impl_coroutine 201902L
#endif
#include <coroutine>

#include <exception>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace Bralto {

// The language gives the names that coroutines are called by.
// NOLINTBEGIN(readability-identifier-naming)

template <typename Result>
class Task;

namespace TaskParts {

/// What all promises share: who goes on once the coroutine has ended.
class Promise {
public:
    struct Finish {
        bool await_ready() const noexcept { return false; }
        template <typename Derived>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<Derived> ended) const noexcept
        {
            Promise& promise = ended.promise();
            if (promise.m_waiter)
                return promise.m_waiter;
            // What is called here may destroy the coroutine, and this promise with it.
            if (const auto finished = std::move(promise.m_finished))
                finished();
            return std::noop_coroutine();
        }
        void await_resume() const noexcept {}
    };

    std::suspend_always initial_suspend() const noexcept { return {}; }
    Finish final_suspend() const noexcept { return {}; }
    [[noreturn]] void unhandled_exception() const noexcept { std::terminate(); }

    void setWaiter(std::coroutine_handle<> waiter) { m_waiter = waiter; }
    void setFinished(std::function<void()> finished) { m_finished = std::move(finished); }

private:
    std::coroutine_handle<> m_waiter;
    std::function<void()> m_finished;
};

template <typename Result>
class ValuePromise : public Promise {
public:
    Task<Result> get_return_object();
    template <typename Value>
    void return_value(Value&& value)
    {
        m_value.emplace(std::forward<Value>(value));
    }
    Result take() { return std::move(*m_value); }

private:
    std::optional<Result> m_value;
};

class VoidPromise : public Promise {
public:
    Task<void> get_return_object();
    void return_void() const noexcept {}
    void take() const noexcept {}
};

} // namespace TaskParts

/// A coroutine that begins when it is awaited. No exception may leave it.
template <typename Result = void>
class [[nodiscard]] Task {
public:
    using promise_type = std::conditional_t<std::is_void_v<Result>, TaskParts::VoidPromise,
                                            TaskParts::ValuePromise<Result>>;
    using Handle = std::coroutine_handle<promise_type>;

    explicit Task(Handle handle)
        : m_handle(handle)
    {
    }
    Task(Task&& other) noexcept
        : m_handle(std::exchange(other.m_handle, nullptr))
    {
    }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    Task& operator=(Task&&) = delete;
    ~Task()
    {
        if (m_handle)
            m_handle.destroy();
    }

    bool await_ready() const noexcept { return false; }
    std::coroutine_handle<> await_suspend(std::coroutine_handle<> waiter)
    {
        m_handle.promise().setWaiter(waiter);
        return m_handle;
    }
    Result await_resume() { return m_handle.promise().take(); }

    /// Begins without a waiter. `finished` is called when the coroutine has ended and may destroy
    /// this task.
    void start(std::function<void()> finished)
    {
        m_handle.promise().setFinished(std::move(finished));
        m_handle.resume();
    }

private:
    Handle m_handle;
};

template <typename Result>
Task<Result> TaskParts::ValuePromise<Result>::get_return_object()
{
    return Task<Result>(std::coroutine_handle<ValuePromise>::from_promise(*this));
}

inline Task<void> TaskParts::VoidPromise::get_return_object()
{
    return Task<void>(std::coroutine_handle<VoidPromise>::from_promise(*this));
}

/// Owns the coroutines that run side by side. Must not be destroyed from within one of them.
class TaskScope {
public:
    void start(Task<void> task)
    {
        const auto place = m_running.insert(m_running.end(), std::move(task));
        place->start([this, place] { m_running.erase(place); });
    }

    [[nodiscard]] std::size_t running() const { return m_running.size(); }

private:
    std::list<Task<void>> m_running;
};

/// A value that a callback brings, to be awaited once. Copies stand for the same value.
template <typename Value>
class Arrival {
    struct State {
        std::optional<Value> value = {};
        std::coroutine_handle<> waiter = {};
    };

public:
    /// The first value counts; whoever waits goes on within this call. A later one, or one for a
    /// coroutine that is gone, is dropped.
    void bring(Value value) const
    {
        if (m_state->value)
            return;
        m_state->value.emplace(std::move(value));
        if (const auto waiter = std::exchange(m_state->waiter, nullptr))
            waiter.resume();
    }

    class Awaiter {
    public:
        explicit Awaiter(std::shared_ptr<State> state)
            : m_state(std::move(state))
        {
        }
        Awaiter(const Awaiter&) = delete;
        Awaiter& operator=(const Awaiter&) = delete;
        ~Awaiter() { m_state->waiter = nullptr; }

        bool await_ready() const noexcept { return m_state->value.has_value(); }
        void await_suspend(std::coroutine_handle<> waiter) { m_state->waiter = waiter; }
        Value await_resume() { return std::move(*m_state->value); }

    private:
        std::shared_ptr<State> m_state;
    };
    Awaiter operator co_await() const { return Awaiter(m_state); }

private:
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

// NOLINTEND(readability-identifier-naming)

} // namespace Bralto
