#include "Kovalt/Process/PollLoop.h"

#include <poll.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace Kovalt {

void PollLoop::post(Task task)
{
    {
        const std::lock_guard lock(m_lock);
        m_posted.push_back(std::move(task));
    }
    m_wake.wake();
}

void PollLoop::stop()
{
    {
        const std::lock_guard lock(m_lock);
        m_stopped = true;
    }
    m_wake.wake();
}

PollLoop::Id PollLoop::watch(int descriptor, short events, DescriptorTask task)
{
    m_watches.emplace(++m_lastId, Watch{descriptor, events, std::move(task)});
    return m_lastId;
}

void PollLoop::unwatch(Id id)
{
    m_watches.erase(id);
}

PollLoop::Id PollLoop::startTimer(std::chrono::milliseconds delay, Task task)
{
    m_timers.emplace(std::pair(Clock::now() + delay, ++m_lastId), std::move(task));
    return m_lastId;
}

void PollLoop::cancelTimer(Id id)
{
    std::erase_if(m_timers, [id](const auto& timer) { return timer.first.second == id; });
}

void PollLoop::run()
{
    const auto isStopped = [this] {
        const std::lock_guard lock(m_lock);
        return std::exchange(m_stopped, false);
    };
    while (!isStopped())
        turn(Clock::time_point::max());
}

bool PollLoop::runUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout)
{
    const auto deadline = Clock::now() + timeout;
    while (!condition()) {
        if (Clock::now() >= deadline)
            return false;
        turn(deadline);
    }
    return true;
}

void PollLoop::turn(Clock::time_point deadline)
{
    waitForEvents(deadline);
    runDueTimers();
    runPosted();
}

/// Only what was there when the turn began: a task that posts the next one leaves room for others.
void PollLoop::runPosted()
{
    std::vector<Task> tasks;
    {
        const std::lock_guard lock(m_lock);
        tasks.swap(m_posted);
    }
    for (auto& task : tasks)
        task();
}

void PollLoop::runDueTimers()
{
    const auto now = Clock::now();
    while (!m_timers.empty() && m_timers.begin()->first.first <= now) {
        auto timer = m_timers.extract(m_timers.begin());
        timer.mapped()();
    }
}

void PollLoop::waitForEvents(Clock::time_point deadline)
{
    std::vector<pollfd> descriptors = {{m_wake.descriptor(), POLLIN, 0}};
    std::vector<Id> ids = {0};
    for (const auto& [id, watch] : m_watches) {
        descriptors.push_back({watch.descriptor, watch.events, 0});
        ids.push_back(id);
    }
    if (::poll(descriptors.data(), descriptors.size(), pollTimeout(deadline)) <= 0)
        return;
    if (descriptors.front().revents != 0)
        m_wake.take();
    for (std::size_t index = 1; index < ids.size(); ++index) {
        const auto found = m_watches.find(ids[index]);
        if (descriptors[index].revents == 0 || found == m_watches.end())
            continue;
        // A copy: the task may take its own watch away.
        const auto task = found->second.task;
        task(descriptors[index].revents);
    }
}

int PollLoop::pollTimeout(Clock::time_point deadline)
{
    {
        const std::lock_guard lock(m_lock);
        if (m_stopped || !m_posted.empty())
            return 0;
    }
    if (!m_timers.empty())
        deadline = std::min(deadline, m_timers.begin()->first.first);
    if (deadline == Clock::time_point::max())
        return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, std::numeric_limits<int>::max()));
}

} // namespace Kovalt
