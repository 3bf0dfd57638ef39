#include "Views/Kit/SlimScrollBar.h"

#include "Views/Kit/Ink.h"
#include "Views/Kit/Shape.h"

#include <QAbstractScrollArea>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace Bralto {
namespace {

constexpr int Width = 12;
constexpr int Inset = 3;
constexpr double LeastHandle = 28;

} // namespace

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
    setGeometry(m_area.width() - Width, 0, Width, m_area.height());
    raise();
    update();
}

bool SlimScrollBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show)
        place();
    return ThemedWidget::eventFilter(watched, event);
}

QRectF SlimScrollBar::handle() const
{
    const QScrollBar* bar = m_area.verticalScrollBar();
    const double range = bar->maximum() - bar->minimum();
    const double whole = range + bar->pageStep();
    const double track = height() - 2.0 * Inset;
    if (range <= 0 || whole <= 0 || track <= 0)
        return {};
    const double length =
        std::clamp(track * bar->pageStep() / whole, std::min(LeastHandle, track), track);
    const double top = Inset + (track - length) * (bar->value() - bar->minimum()) / range;
    return {double(Inset), top, double(Width - 2 * Inset), length};
}

void SlimScrollBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QColor label = m_ground == Ground::Frame ? tokens().frame.label : tokens().label;
    const bool strong = m_hovered || m_grip >= 0;
    QRectF shape = handle();
    if (!strong)
        shape.setLeft(shape.left() + 2);
    Shape::fill(painter, shape, Width, Ink::faded(label, strong ? 0.42 : 0.22));
}

void SlimScrollBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QRectF shape = handle();
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
    QScrollBar* bar = m_area.verticalScrollBar();
    const double free = height() - 2.0 * Inset - handle().height();
    if (free <= 0)
        return;
    const double share = (event->position().y() - m_grip - Inset) / free;
    bar->setValue(bar->minimum() +
                  qRound(std::clamp(share, 0.0, 1.0) * (bar->maximum() - bar->minimum())));
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
