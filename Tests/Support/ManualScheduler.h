#pragma once

#include "Base/Scheduler.h"

#include <QPointer>

#include <algorithm>
#include <optional>
#include <vector>

namespace Bralto {

/// A scheduler whose time passes only when a test says so.
class ManualScheduler final : public Scheduler {
public:
    quint64 after(std::chrono::milliseconds delay, QObject* context,
                  std::function<void()> action) override
    {
        m_waiting.push_back({++m_lastCall, m_now + std::max(delay, std::chrono::milliseconds(0)),
                             context, context != nullptr, std::move(action)});
        return m_lastCall;
    }

    void cancel(quint64 call) override
    {
        std::erase_if(m_waiting, [call](const Call& waiting) { return waiting.id == call; });
    }

    /// Lets time pass: runs what falls due, in the order of its time, then of its request, also
    /// what those calls ask for in turn.
    void advance(std::chrono::milliseconds by)
    {
        const auto end = m_now + by;
        while (const auto call = takeNext(end, m_lastCall)) {
            m_now = std::max(m_now, call->due);
            run(*call);
        }
        m_now = end;
    }

    /// One turn of the event loop: runs what is due now and was asked for before this turn.
    void turn()
    {
        const quint64 last = m_lastCall;
        while (const auto call = takeNext(m_now, last))
            run(*call);
    }

    /// Calls that would still run.
    [[nodiscard]] qsizetype waiting() const
    {
        return qsizetype(std::ranges::count_if(m_waiting, &ManualScheduler::isAlive));
    }

    /// The time until the next call, or nothing.
    [[nodiscard]] std::optional<std::chrono::milliseconds> untilNext() const
    {
        std::optional<std::chrono::milliseconds> next;
        for (const Call& call : m_waiting) {
            if (isAlive(call) && (!next || call.due - m_now < *next))
                next = call.due - m_now;
        }
        return next;
    }

private:
    struct Call {
        quint64 id;
        std::chrono::milliseconds due;
        QPointer<QObject> context;
        bool hasContext;
        std::function<void()> action;
    };

    static bool isAlive(const Call& call) { return !call.hasContext || call.context; }

    static void run(const Call& call)
    {
        if (isAlive(call))
            call.action();
    }

    /// Of the calls up to the one with the id `last`, the first that is due at `end`.
    std::optional<Call> takeNext(std::chrono::milliseconds end, quint64 last)
    {
        auto next = m_waiting.end();
        for (auto call = m_waiting.begin(); call != m_waiting.end(); ++call) {
            if (call->id <= last && call->due <= end &&
                (next == m_waiting.end() || call->due < next->due))
                next = call;
        }
        if (next == m_waiting.end())
            return std::nullopt;
        std::optional<Call> taken = std::move(*next);
        m_waiting.erase(next);
        return taken;
    }

    std::vector<Call> m_waiting;
    std::chrono::milliseconds m_now{0};
    quint64 m_lastCall = 0;
};

} // namespace Bralto
