#include "Base/Motion.h"

#include <cmath>
#include <numbers>
#include <utility>

using namespace std::chrono_literals;

namespace Bralto {

namespace {

/// How long a motion without a timeout is measured at most.
constexpr std::chrono::milliseconds UnlimitedMeasure = 60s;
/// How much longer than its timeout a motion is measured.
constexpr std::chrono::milliseconds MeasureMargin = 1s;

} // namespace

double Spring::progress(std::chrono::duration<double> since) const
{
    if (since.count() <= 0)
        return 0;
    const double frequency = 2 * std::numbers::pi / std::chrono::duration<double>(response).count();
    const double angle = frequency * since.count();
    if (damping >= 1)
        return 1 - std::exp(-angle) * (1 + angle);
    const double swing = std::sqrt(1 - damping * damping);
    return 1 - std::exp(-damping * angle) *
                   (std::cos(swing * angle) + damping / swing * std::sin(swing * angle));
}

std::chrono::milliseconds Spring::settlingTime() const
{
    // The first moment behind which no later one is off by more than a thousandth.
    constexpr double Rest = 0.001;
    constexpr auto Longest = 10s;
    auto settled = 0ms;
    for (auto time = 0ms; time < Longest; time += 1ms) {
        if (std::abs(1 - progress(time)) > Rest)
            settled = time + 1ms;
        else if (time > settled + response)
            break;
    }
    return settled;
}

HeldView::~HeldView()
{
    if (m_motion)
        m_motion->m_held.remove(this);
}

Motion::Motion(Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_scheduler(scheduler)
{
}

Motion::~Motion()
{
    for (auto held = m_held.keyBegin(); held != m_held.keyEnd(); ++held)
        (*held)->m_motion = nullptr;
}

std::optional<Spring> Motion::toggle() const
{
    return m_isReduced ? std::nullopt : std::optional(ToggleSpring);
}

quint64 Motion::begin(const QString& action, std::optional<std::chrono::milliseconds> timeout)
{
    const quint64 token = ++m_lastToken;
    const quint64 call =
        timeout ? m_scheduler.after(*timeout, this, [this, token] { end(token); }) : 0;
    m_running.insert(token, call);
    emit began(token, action, timeout ? *timeout + MeasureMargin : UnlimitedMeasure);
    return token;
}

void Motion::end(quint64 token)
{
    const auto running = m_running.constFind(token);
    if (running == m_running.constEnd())
        return;
    m_scheduler.cancel(*running);
    m_running.erase(running);
    emit ended(token);
    releaseIfAtRest();
}

void Motion::beginLiveResize()
{
    if (m_liveResizes++ > 0)
        return;
    m_liveResizeToken = ++m_lastToken;
    emit began(m_liveResizeToken, QStringLiteral("live resize"), UnlimitedMeasure);
}

void Motion::endLiveResize()
{
    if (m_liveResizes == 0 || --m_liveResizes > 0)
        return;
    emit ended(std::exchange(m_liveResizeToken, 0));
    releaseIfAtRest();
}

bool Motion::holdsResize(HeldView& view, const QSize& size)
{
    if (m_running.isEmpty() && m_liveResizes == 0)
        return false;
    m_held.insert(&view, size);
    view.m_motion = this;
    return true;
}

void Motion::releaseIfAtRest()
{
    // Laying out a view may start a motion, which takes back those that are still here, or end
    // one of the other views, which takes itself out.
    while (m_running.isEmpty() && m_liveResizes == 0 && !m_held.isEmpty()) {
        const auto first = m_held.constBegin();
        HeldView* view = first.key();
        const QSize size = first.value();
        m_held.erase(first);
        view->m_motion = nullptr;
        view->takeSize(size);
    }
}

void ResizeHold::begin(const QString& action)
{
    if (!m_token && m_motion)
        m_token = m_motion->begin(action, std::nullopt);
}

void ResizeHold::end()
{
    const auto token = std::exchange(m_token, std::nullopt);
    if (token && m_motion)
        m_motion->end(*token);
}

} // namespace Bralto
