#include "Views/Kit/Motion.h"

#include "Views/Kit/Theme.h"

#include <cmath>
#include <numbers>

namespace Bralto {

double Spring::value(double seconds) const
{
    const double frequency = 2 * std::numbers::pi / response;
    const double decay = damping * frequency;
    if (damping >= 1)
        return 1 - std::exp(-frequency * seconds) * (1 + frequency * seconds);
    const double swing = frequency * std::sqrt(1 - damping * damping);
    return 1 - std::exp(-decay * seconds) *
                   (std::cos(swing * seconds) + decay / swing * std::sin(swing * seconds));
}

double Spring::duration() const
{
    constexpr double NearlyThere = 7.6; // minus the logarithm of what is left of the way
    return NearlyThere / (damping * 2 * std::numbers::pi / response);
}

Animated::Animated(const Theme& theme, Spring spring, double value, QObject* parent)
    : QObject(parent)
    , m_theme(theme)
    , m_spring(spring)
    , m_value(value)
    , m_start(value)
    , m_goal(value)
{
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(spring.duration());
    m_animation.setDuration(int(spring.duration() * 1000));
    connect(&m_animation, &QVariantAnimation::valueChanged, this, [this](const QVariant& seconds) {
        m_value = m_start + (m_goal - m_start) * m_spring.value(seconds.toDouble());
        emit valueChanged(m_value);
    });
    connect(&m_animation, &QVariantAnimation::finished, this, [this] { jumpTo(m_goal); });
}

void Animated::moveTo(double goal)
{
    if (goal == m_goal)
        return;
    if (m_theme.reducedMotion()) {
        jumpTo(goal);
        return;
    }
    m_animation.stop();
    m_start = m_value;
    m_goal = goal;
    m_animation.start();
}

void Animated::jumpTo(double value)
{
    m_animation.stop();
    m_goal = value;
    if (m_value != value) {
        m_value = value;
        emit valueChanged(m_value);
    }
    emit settled();
}

} // namespace Bralto
