#include "Platform/QtScheduler.h"

#include <QTimer>

namespace Bralto {

quint64 QtScheduler::after(std::chrono::milliseconds delay, QObject* context,
                           std::function<void()> action)
{
    const quint64 call = ++m_lastCall;
    auto* timer = new QTimer(this);
    timer->setSingleShot(true);
    // A coarse timer may fire early, and who waits for a limit must not be called before it.
    timer->setTimerType(Qt::PreciseTimer);
    connect(timer, &QTimer::timeout, this, [this, call, run = std::move(action)] {
        cancel(call);
        run();
    });
    if (context)
        connect(context, &QObject::destroyed, timer, [this, call] { cancel(call); });
    m_waiting.insert(call, timer);
    timer->start(delay);
    return call;
}

void QtScheduler::cancel(quint64 call)
{
    QTimer* timer = m_waiting.take(call);
    if (!timer)
        return;
    timer->stop();
    timer->deleteLater();
}

} // namespace Bralto
