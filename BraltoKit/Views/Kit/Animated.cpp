#include "Views/Kit/Animated.h"

#include "Views/Kit/Theme.h"

namespace Bralto {

Animated::Animated(const Theme& theme, const Motions::Course& course, double value, QObject* parent)
    : QObject(parent)
    , m_theme(theme)
    , m_value(value)
    , m_start(value)
    , m_goal(value)
{
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(std::chrono::duration<double>(course.length).count());
    m_animation.setDuration(int(course.length.count()));
    connect(&m_animation, &QVariantAnimation::valueChanged, this,
            [this, spring = course.spring](const QVariant& seconds) {
                const std::chrono::duration<double> since(seconds.toDouble());
                m_value = m_start + (m_goal - m_start) * spring.progress(since);
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
