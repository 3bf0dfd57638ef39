#include "Benchmarks/ClickProbe.h"

#include "Benchmarks/DisplayPeer.h"

#include <QEvent>
#include <QWidget>

#include <pthread.h>

#include <algorithm>

namespace Bralto {

ClickProbe::ClickProbe(QWidget& target)
{
    ::pthread_getcpuclockid(::pthread_self(), &m_processor);
    target.installEventFilter(this);
    const QWidget& window = *target.window();
    const QPoint at = (target.mapTo(&window, target.rect().center()) * window.devicePixelRatioF());
    m_thread = std::thread([this, id = std::uint32_t(window.winId()), at] { clickOn(id, at); });
}

ClickProbe::~ClickProbe()
{
    (void)finish();
}

ClickProbe::Waits ClickProbe::finish()
{
    m_isEnding = true;
    if (m_thread.joinable())
        m_thread.join();
    const std::lock_guard lock(m_lock);
    while (!m_waiting.empty())
        answer();
    return m_waits;
}

void ClickProbe::answer()
{
    const Click before = m_waiting.front();
    m_waiting.pop_front();
    const Click after = now();
    m_waits.times.push_back(
        std::chrono::duration<double, std::milli>(after.time - before.time).count());
    m_waits.work.push_back(after.work - before.work);
}

bool ClickProbe::eventFilter(QObject* /*watched*/, QEvent* event)
{
    // The second of two quick presses is a double click.
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonDblClick)
        return false;
    const std::lock_guard lock(m_lock);
    if (!m_waiting.empty())
        answer();
    return true;
}

void ClickProbe::clickOn(std::uint32_t window, const QPoint& at)
{
    DisplayPeer peer(window);
    auto next = Clock::now();
    while (!m_isEnding) {
        {
            const std::lock_guard lock(m_lock);
            m_waiting.push_back(now());
        }
        peer.click(at);
        // Clicks that were missed while this thread had no turn aren't made up for.
        next = std::max(next + Pace, Clock::now());
        std::this_thread::sleep_until(next);
    }
}

ClickProbe::Click ClickProbe::now() const
{
    timespec work{};
    ::clock_gettime(m_processor, &work);
    return {Clock::now(), double(work.tv_sec) * 1e3 + double(work.tv_nsec) / 1e6};
}

} // namespace Bralto
