#include "Views/Kit/Glide.h"

#include "Views/Kit/Theme.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Bralto {
namespace {

int between(int from, int to, double fraction)
{
    return from + int(std::lround((to - from) * fraction));
}

/// Edge by edge, so that neighbours who share one stay together.
QRect between(const QRect& from, const QRect& to, double fraction)
{
    const int left = between(from.left(), to.left(), fraction);
    const int top = between(from.top(), to.top(), fraction);
    const int right = between(from.left() + from.width(), to.left() + to.width(), fraction);
    const int bottom = between(from.top() + from.height(), to.top() + to.height(), fraction);
    return {left, top, std::max(0, right - left), std::max(0, bottom - top)};
}

} // namespace

Glide::Glide(const Theme& theme, QObject* parent)
    : QObject(parent)
    , m_theme(theme)
{
    connect(&m_animation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& seconds) { advance(seconds.toDouble()); });
    connect(&m_animation, &QVariantAnimation::finished, this, &Glide::arrive);
}

bool Glide::goesWhereItWent(const std::vector<Way>& ways) const
{
    return std::ranges::equal(ways, m_ways, [](const Way& one, const Way& other) {
        return one.widget == other.widget && one.goal == other.goal;
    });
}

void Glide::moveTo(std::vector<Way> ways, const Motions::Course& course)
{
    if (isMoving() && goesWhereItWent(ways))
        return;
    for (Way& way : ways) {
        if (!way.start)
            way.start = way.widget->geometry();
    }
    const bool isThere =
        std::ranges::all_of(ways, [](const Way& way) { return way.start == way.goal; });
    if (isThere || m_theme.reducedMotion()) {
        jumpTo(ways);
        return;
    }
    const bool wasMoving = isMoving();
    m_animation.stop();
    m_ways = std::move(ways);
    m_spring = course.spring;
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(std::chrono::duration<double>(course.length).count());
    m_animation.setDuration(int(course.length.count()));
    if (!wasMoving)
        emit started();
    m_animation.start();
}

void Glide::jumpTo(const std::vector<Way>& ways)
{
    const bool wasMoving = isMoving();
    m_animation.stop();
    m_ways.clear();
    for (const Way& way : ways)
        way.widget->setGeometry(way.goal);
    if (wasMoving)
        emit settled();
}

void Glide::advance(double seconds)
{
    const double fraction = m_spring.progress(std::chrono::duration<double>(seconds));
    for (const Way& way : m_ways) {
        if (way.widget)
            way.widget->setGeometry(between(*way.start, way.goal, fraction));
    }
}

void Glide::arrive()
{
    for (const Way& way : std::exchange(m_ways, {})) {
        if (way.widget)
            way.widget->setGeometry(way.goal);
    }
    emit settled();
}

} // namespace Bralto
