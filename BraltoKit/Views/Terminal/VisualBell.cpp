#include "Views/Terminal/VisualBell.h"

#include "Views/Kit/Theme.h"

#include <QTimerEvent>

namespace Bralto {
namespace {

constexpr int HoldMs = 90;
constexpr int ReducedHoldMs = 200;
constexpr Motions::Course Fade{{std::chrono::milliseconds(220), 1.0},
                               std::chrono::milliseconds(300)};

} // namespace

VisualBell::VisualBell(const Theme& theme, QObject* parent)
    : QObject(parent)
    , m_theme(theme)
    , m_strength(theme, Fade, 0, this)
{
    connect(&m_strength, &Animated::valueChanged, this, &VisualBell::changed);
}

void VisualBell::ring()
{
    // A program that never stops ringing lights it once.
    if (m_hold.isActive())
        return;
    m_strength.jumpTo(1);
    m_hold.start(m_theme.reducedMotion() ? ReducedHoldMs : HoldMs, this);
}

void VisualBell::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_hold.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    m_hold.stop();
    m_strength.moveTo(0);
}

} // namespace Bralto
