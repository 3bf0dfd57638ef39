#include "Views/Kit/Control.h"

#include "Views/Kit/Animated.h"
#include "Views/Kit/FocusRing.h"
#include "Views/Kit/Ink.h"

#include <QKeyEvent>

namespace Bralto {

Control::Control(Theme& theme, Ground ground, QWidget* parent)
    : QAbstractButton(parent)
    , m_theme(theme)
    , m_ground(ground)
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    m_hover.setDuration(int(Motions::Hover.count()));
    m_hover.setStartValue(0.0);
    m_hover.setEndValue(1.0);
    connect(&m_hover, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&theme, &Theme::changed, this, qOverload<>(&QWidget::update));
}

Control::~Control()
{
    delete m_ring;
}

void Control::setTip(const QString& text, const QString& shortcut)
{
    setAccessibleName(text);
    setToolTip(shortcut.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, shortcut));
}

QColor Control::labelInk() const
{
    return m_ground == Ground::Frame ? tokens().frame.label : tokens().label;
}

QColor Control::secondaryInk() const
{
    return m_ground == Ground::Frame ? tokens().frame.ink2 : tokens().ink2;
}

QColor Control::disabledInk() const
{
    return m_ground == Ground::Frame ? Ink::faded(tokens().frame.label, 0.3) : tokens().ink4;
}

QColor Control::hoverFill() const
{
    return m_ground == Ground::Frame ? tokens().frame.hover : tokens().hover;
}

QColor Control::pressedFill() const
{
    return m_ground == Ground::Frame ? tokens().frame.pressed : tokens().pressed;
}

void Control::fadeHover(double goal)
{
    if (m_theme.reducedMotion()) {
        m_hover.setDirection(goal > 0 ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
        m_hover.stop();
        m_hover.setCurrentTime(goal > 0 ? m_hover.duration() : 0);
        update();
        return;
    }
    m_hover.setDirection(goal > 0 ? QAbstractAnimation::Forward : QAbstractAnimation::Backward);
    if (m_hover.state() != QAbstractAnimation::Running)
        m_hover.start();
}

void Control::enterEvent(QEnterEvent* event)
{
    fadeHover(1);
    QAbstractButton::enterEvent(event);
}

void Control::leaveEvent(QEvent* event)
{
    fadeHover(0);
    QAbstractButton::leaveEvent(event);
}

void Control::focusInEvent(QFocusEvent* event)
{
    const QColor ink = m_ground == Ground::Frame ? tokens().frame.label : tokens().accentInk;
    if (parentWidget() && event->reason() != Qt::MouseFocusReason)
        m_ring = new FocusRing(m_theme, *this, focusRadius(), ink);
    QAbstractButton::focusInEvent(event);
}

void Control::focusOutEvent(QFocusEvent* event)
{
    delete m_ring;
    QAbstractButton::focusOutEvent(event);
}

void Control::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat())
            click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

} // namespace Bralto
