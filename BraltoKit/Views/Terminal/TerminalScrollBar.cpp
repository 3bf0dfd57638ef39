#include "Views/Terminal/TerminalScrollBar.h"

#include "Views/Kit/Ink.h"

#include <QMouseEvent>
#include <QPainter>

#include <cmath>
#include <utility>

namespace Bralto {
namespace {

constexpr double MarkHeight = 2;
constexpr double PromptInk = 0.35;

} // namespace

TerminalScrollBar::TerminalScrollBar(Theme& theme,
                                     std::function<std::vector<ScrollMark>(int track)> marks,
                                     QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_marks(std::move(marks))
    , m_ink(tokens().label)
{
    setCursor(Qt::ArrowCursor);
    setVisible(false);
}

void TerminalScrollBar::setRange(int history, int page, int top)
{
    if (m_handle.maximum == history && m_handle.page == page && m_handle.value == top)
        return;
    const QRectF shown = m_handle.rect(size());
    m_handle = {0, double(history), double(page), double(top)};
    setVisible(history > 0);
    // A longer history moves the handle by less than can be seen most of the time.
    const QRectF next = m_handle.rect(size());
    if (std::abs(next.top() - shown.top()) >= 0.5 ||
        std::abs(next.height() - shown.height()) >= 0.5)
        update();
}

void TerminalScrollBar::setInk(const QColor& ink)
{
    if (ink == m_ink)
        return;
    m_ink = ink;
    update();
}

void TerminalScrollBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    ScrollHandle::paint(painter, m_handle.rect(size()), m_ink, isInUse());
    paintMarks(painter);
}

void TerminalScrollBar::paintMarks(QPainter& painter)
{
    const double track = height() - 2.0 * ScrollHandle::Inset;
    for (const ScrollMark& mark : m_marks(int(track))) {
        const bool isPrompt = mark.kind == ScrollMark::Kind::Prompt;
        if (isPrompt && !isInUse())
            continue;
        QColor ink = Ink::faded(m_ink, PromptInk);
        if (mark.kind == ScrollMark::Kind::Hit)
            ink = tokens().waiting;
        else if (mark.kind == ScrollMark::Kind::CurrentHit)
            ink = m_ink;
        const double left = isPrompt ? width() / 2.0 : double(ScrollHandle::Inset);
        const double top = ScrollHandle::Inset + mark.place * (track - MarkHeight);
        painter.fillRect(QRectF(left, top, width() - ScrollHandle::Inset - left, MarkHeight), ink);
    }
}

void TerminalScrollBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QRectF shape = m_handle.rect(size());
    const double y = event->position().y();
    if (y < shape.top())
        emit moved(int(m_handle.value - m_handle.page));
    else if (y > shape.bottom())
        emit moved(int(m_handle.value + m_handle.page));
    else
        m_grip = y - shape.top();
    update();
}

void TerminalScrollBar::mouseMoveEvent(QMouseEvent* event)
{
    if (m_grip >= 0)
        emit moved(qRound(m_handle.valueAt(size(), event->position().y() - m_grip)));
}

void TerminalScrollBar::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    m_grip = -1;
    update();
}

void TerminalScrollBar::enterEvent(QEnterEvent* event)
{
    m_isHovered = true;
    update();
    ThemedWidget::enterEvent(event);
}

void TerminalScrollBar::leaveEvent(QEvent* event)
{
    m_isHovered = false;
    update();
    ThemedWidget::leaveEvent(event);
}

} // namespace Bralto
