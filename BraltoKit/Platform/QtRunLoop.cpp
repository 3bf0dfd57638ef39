#include "Platform/QtRunLoop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include <chrono>
#include <utility>

namespace Bralto {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

/// Panes that flood all at once would otherwise sum up to more than a frame.
constexpr auto Round = 4ms;

QEvent::Type wakeEvent()
{
    static const auto type = QEvent::Type(QEvent::registerEventType());
    return type;
}

} // namespace

QtRunLoop::~QtRunLoop()
{
    std::deque<Task> dropped;
    const std::lock_guard lock(m_lock);
    m_isEnding = true;
    dropped.swap(m_tasks);
}

void QtRunLoop::post(Task task)
{
    const std::lock_guard lock(m_lock);
    if (m_isEnding)
        return;
    m_tasks.push_back(std::move(task));
    wake();
}

bool QtRunLoop::event(QEvent* event)
{
    if (event->type() != wakeEvent())
        return QObject::event(event);
    runTasks();
    return true;
}

void QtRunLoop::runTasks()
{
    {
        const std::lock_guard lock(m_lock);
        m_isAwake = false;
    }
    const QPointer<QtRunLoop> self(this);
    const auto end = Clock::now() + Round;
    do {
        const Task task = takeTask();
        if (!task)
            return;
        task();
    } while (self && Clock::now() < end);
}

/// The next task; empty if there is none.
QtRunLoop::Task QtRunLoop::takeTask()
{
    const std::lock_guard lock(m_lock);
    if (m_tasks.empty())
        return {};
    Task task = std::move(m_tasks.front());
    m_tasks.pop_front();
    // The others must not wait for this one's end: it may run an event loop of its own.
    if (!m_tasks.empty())
        wake();
    return task;
}

/// Qt sends what is posted during a round of events in the next one, after it looked at its timers,
/// its sockets and the window system.
void QtRunLoop::wake()
{
    if (!std::exchange(m_isAwake, true))
        QCoreApplication::postEvent(this, new QEvent(wakeEvent()));
}

} // namespace Bralto
