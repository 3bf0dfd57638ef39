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

void FramePacer::request()
{
    if (m_timer.isActive())
        return;
    const std::chrono::milliseconds since(m_sinceLast.isValid() ? m_sinceLast.elapsed()
                                                                : Longest.count());
    if (since >= m_interval)
        take();
    else
        m_timer.start(int((m_interval - since).count()), Qt::PreciseTimer, this);
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
