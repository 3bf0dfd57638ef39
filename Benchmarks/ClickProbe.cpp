#include "Benchmarks/ClickProbe.h"

#include "Benchmarks/DisplayPeer.h"

#include <QEvent>
#include <QWidget>

namespace Bralto {

ClickProbe::ClickProbe(QWidget& target)
{
    target.installEventFilter(this);
    const QWidget& window = *target.window();
    const QPoint at = (target.mapTo(&window, target.rect().center()) * window.devicePixelRatioF());
    m_thread = std::thread([this, id = std::uint32_t(window.winId()), at] { clickOn(id, at); });
}

ClickProbe::~ClickProbe()
{
    (void)finish();
}

std::vector<double> ClickProbe::finish()
{
    m_isEnding = true;
    if (m_thread.joinable())
        m_thread.join();
    const std::lock_guard lock(m_lock);
    for (const Clock::time_point time : m_waiting)
        m_times.push_back(since(time));
    m_waiting.clear();
    return m_times;
}

bool ClickProbe::eventFilter(QObject* /*watched*/, QEvent* event)
{
    // The second of two quick presses is a double click.
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonDblClick)
        return false;
    const std::lock_guard lock(m_lock);
    if (!m_waiting.empty()) {
        m_times.push_back(since(m_waiting.front()));
        m_waiting.pop_front();
    }
    return true;
}

void ClickProbe::clickOn(std::uint32_t window, const QPoint& at)
{
    DisplayPeer peer(window);
    auto next = Clock::now();
    while (!m_isEnding) {
        {
            const std::lock_guard lock(m_lock);
            m_waiting.push_back(Clock::now());
        }
        peer.click(at);
        // Clicks that were missed while this thread had no turn aren't made up for.
        next = std::max(next + Pace, Clock::now());
        std::this_thread::sleep_until(next);
    }
}

double ClickProbe::since(Clock::time_point time)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - time).count();
}

} // namespace Bralto
