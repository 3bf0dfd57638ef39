#include "Views/Terminal/CursorBlink.h"

#include <QGuiApplication>
#include <QStyleHints>
#include <QTimerEvent>

namespace Bralto {
namespace {

constexpr int HalfBlinkMs = 530;
constexpr int MostHalves = 20;

} // namespace

void CursorBlink::setBlinking(bool blinks)
{
    // A desktop may want no blinking at all.
    blinks = blinks && QGuiApplication::styleHints()->cursorFlashTime() > 0;
    if (blinks == m_blinks)
        return;
    m_blinks = blinks;
    m_isShown = true;
    begin();
}

void CursorBlink::restart()
{
    begin();
    setShown(true);
}

void CursorBlink::begin()
{
    m_halves = 0;
    if (m_blinks)
        m_timer.start(HalfBlinkMs, this);
    else
        m_timer.stop();
}

void CursorBlink::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timer.timerId()) {
        QObject::timerEvent(event);
        return;
    }
    ++m_halves;
    if (m_halves >= MostHalves)
        m_timer.stop();
    setShown(m_halves >= MostHalves || !m_isShown);
}

void CursorBlink::setShown(bool shown)
{
    if (shown == m_isShown)
        return;
    m_isShown = shown;
    emit changed();
}

} // namespace Bralto
