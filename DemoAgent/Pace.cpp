#include "DemoAgent/Pace.h"

#include <QTimer>

#include <cmath>

namespace DemoAgent {

Pace Pace::fromText(const QByteArray& text)
{
    bool isNumber = false;
    const double factor = text.toDouble(&isNumber);
    return Pace(isNumber && std::isfinite(factor) && factor >= 0 ? factor : 1);
}

std::chrono::milliseconds Pace::scaled(std::chrono::milliseconds pause) const
{
    if (m_factor <= 0)
        return std::chrono::milliseconds(0);
    const double scaled = static_cast<double>(pause.count()) / m_factor;
    return std::chrono::milliseconds(std::llround(std::min(scaled, 1e9)));
}

void Pace::Awaiter::await_suspend(std::coroutine_handle<> waiter)
{
    QTimer::singleShot(m_pause, Qt::PreciseTimer, &m_context, [waiter] { waiter.resume(); });
}

} // namespace DemoAgent
