#include "Views/Terminal/FramePacer.h"

#include <QTimerEvent>

#include <algorithm>
#include <utility>

namespace Bralto {

FramePacer::FramePacer(std::function<void()> frame, QObject* parent)
    : QObject(parent)
    , m_frame(std::move(frame))
{
}

std::chrono::milliseconds FramePacer::wait(std::chrono::milliseconds interval,
                                           std::chrono::nanoseconds since)
{
    return std::max(std::chrono::floor<std::chrono::milliseconds>(interval - since),
                    std::chrono::milliseconds(0));
}

void FramePacer::request()
{
    if (m_timer.isActive())
        return;
    const std::chrono::nanoseconds since =
        m_sinceLast.isValid() ? std::chrono::nanoseconds(m_sinceLast.nsecsElapsed()) : Longest;
    if (since >= m_interval)
        take();
    else
        m_timer.start(int(wait(m_interval, since).count()), Qt::PreciseTimer, this);
}

void FramePacer::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    m_timer.stop();
    take();
}

void FramePacer::take()
{
    m_sinceLast.start();
    m_frame();
    const std::chrono::milliseconds cost(m_sinceLast.elapsed());
    m_interval = std::clamp(cost * 4, Shortest, Longest);
}

} // namespace Bralto
