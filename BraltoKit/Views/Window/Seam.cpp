#include "Views/Window/Seam.h"

#include "Views/Kit/Ink.h"
#include "Views/Kit/Shape.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace Bralto {
namespace {

constexpr double KeyStep = 16;
constexpr double LongestLine = 216;

} // namespace

Seam::Seam(Theme& theme, Direction direction, const QString& help, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_direction(direction)
{
    setCursor(direction == Direction::Sideways ? Qt::SplitHCursor : Qt::SplitVCursor);
    setToolTip(help);
    setAccessibleName(help);
    setFocusPolicy(Qt::TabFocus);
}

double Seam::along(const QPointF& point) const
{
    return m_direction == Direction::Sideways ? point.x() : point.y();
}

void Seam::paintEvent(QPaintEvent* /*event*/)
{
    if (!m_hovered && !m_start && !hasFocus())
        return;
    QPainter painter(this);
    const bool sideways = m_direction == Direction::Sideways;
    const double extent = sideways ? height() : width();
    const double length = std::min(extent / 3, LongestLine);
    QRectF line(0, 0, sideways ? Measure::Seam : length, sideways ? length : Measure::Seam);
    line.moveCenter(QRectF(rect()).center());
    Shape::fill(painter, line, 1, Ink::faded(tokens().frame.label, 0.7));
}

void Seam::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_start = along(event->globalPosition());
    emit dragStarted();
}

void Seam::mouseMoveEvent(QMouseEvent* event)
{
    if (m_start)
        emit dragged(along(event->globalPosition()) - *m_start);
}

void Seam::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    if (!m_start)
        return;
    m_start.reset();
    update();
    emit dragEnded();
}

void Seam::mouseDoubleClickEvent(QMouseEvent* /*event*/)
{
    emit doubleClicked();
}

void Seam::keyPressEvent(QKeyEvent* event)
{
    const bool sideways = m_direction == Direction::Sideways;
    const int less = sideways ? Qt::Key_Left : Qt::Key_Up;
    const int more = sideways ? Qt::Key_Right : Qt::Key_Down;
    if (event->key() != less && event->key() != more) {
        ThemedWidget::keyPressEvent(event);
        return;
    }
    emit dragStarted();
    emit dragged(event->key() == less ? -KeyStep : KeyStep);
    emit dragEnded();
}

void Seam::focusInEvent(QFocusEvent* event)
{
    update();
    ThemedWidget::focusInEvent(event);
}

void Seam::focusOutEvent(QFocusEvent* event)
{
    update();
    ThemedWidget::focusOutEvent(event);
}

void Seam::enterEvent(QEnterEvent* event)
{
    m_hovered = true;
    update();
    ThemedWidget::enterEvent(event);
}

void Seam::leaveEvent(QEvent* event)
{
    m_hovered = false;
    update();
    ThemedWidget::leaveEvent(event);
}

} // namespace Bralto
