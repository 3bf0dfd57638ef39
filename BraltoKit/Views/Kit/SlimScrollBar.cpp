#include "Views/Kit/SlimScrollBar.h"

#include "Views/Kit/ScrollHandle.h"

#include <QAbstractScrollArea>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

namespace Bralto {

SlimScrollBar::SlimScrollBar(Theme& theme, Ground ground, QAbstractScrollArea& area)
    : ThemedWidget(theme, &area)
    , m_area(area)
    , m_ground(ground)
{
    area.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area.installEventFilter(this);
    const QScrollBar* bar = area.verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, qOverload<>(&QWidget::update));
    connect(bar, &QScrollBar::rangeChanged, this, &SlimScrollBar::place);
    place();
}

void SlimScrollBar::place()
{
    const QScrollBar* bar = m_area.verticalScrollBar();
    setVisible(bar->maximum() > bar->minimum());
    setGeometry(m_area.width() - ScrollHandle::Width, 0, ScrollHandle::Width, m_area.height());
    raise();
    update();
}

bool SlimScrollBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show)
        place();
    return ThemedWidget::eventFilter(watched, event);
}

ScrollHandle SlimScrollBar::handle() const
{
    const QScrollBar* bar = m_area.verticalScrollBar();
    return {double(bar->minimum()), double(bar->maximum()), double(bar->pageStep()),
            double(bar->value())};
}

void SlimScrollBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QColor label = m_ground == Ground::Frame ? tokens().frame.label : tokens().label;
    ScrollHandle::paint(painter, handle().rect(size()), label, m_hovered || m_grip >= 0);
}

void SlimScrollBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QRectF shape = handle().rect(size());
    const double y = event->position().y();
    QScrollBar* bar = m_area.verticalScrollBar();
    if (y < shape.top())
        bar->triggerAction(QAbstractSlider::SliderPageStepSub);
    else if (y > shape.bottom())
        bar->triggerAction(QAbstractSlider::SliderPageStepAdd);
    else
        m_grip = y - shape.top();
    update();
}

void SlimScrollBar::mouseMoveEvent(QMouseEvent* event)
{
    if (m_grip < 0)
        return;
    m_area.verticalScrollBar()->setValue(
        qRound(handle().valueAt(size(), event->position().y() - m_grip)));
}

void SlimScrollBar::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    m_grip = -1;
    update();
}

void SlimScrollBar::enterEvent(QEnterEvent* event)
{
    m_hovered = true;
    update();
    ThemedWidget::enterEvent(event);
}

void SlimScrollBar::leaveEvent(QEvent* event)
{
    m_hovered = false;
    update();
    ThemedWidget::leaveEvent(event);
}

} // namespace Bralto
