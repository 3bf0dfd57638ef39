#include "Base/Zoom.h"

#include <algorithm>

namespace Bralto {

namespace {

/// Levels closer than this to a step count as that step.
constexpr double Tolerance = 0.001;

QString key(Zoom::Area area)
{
    return QStringLiteral("zoom.") + Zoom::name(area);
}

} // namespace

Zoom::Zoom(DefaultsStore& shared, QObject* parent)
    : QObject(parent)
    , m_shared(shared)
{
    for (const Area area : AllAreas) {
        const double stored = m_shared.number(key(area)).value_or(1.0);
        m_levels[std::size_t(area)] = stored > 0 ? stored : 1.0;
    }
}

void Zoom::zoomIn(Area area)
{
    const auto next = std::ranges::upper_bound(Steps, level(area) + Tolerance);
    if (next != Steps.end())
        set(area, *next);
}

void Zoom::zoomOut(Area area)
{
    const auto next = std::ranges::lower_bound(Steps, level(area) - Tolerance);
    if (next != Steps.begin())
        set(area, *std::prev(next));
}

void Zoom::set(Area area, double level)
{
    double& present = m_levels[std::size_t(area)];
    if (present == level)
        return;
    present = level;
    m_shared.set(key(area), level);
    emit changed(area);
}

QString Zoom::name(Area area)
{
    switch (area) {
    case Area::Files:
        return QStringLiteral("files");
    case Area::Editor:
        return QStringLiteral("editor");
    case Area::Browser:
        return QStringLiteral("browser");
    case Area::Terminal:
        return QStringLiteral("terminal");
    }
    Q_UNREACHABLE();
}

} // namespace Bralto
