#include "Views/Window/Sheet.h"

#include "Views/Kit/Shape.h"
#include "Views/Window/SpaceBackdrop.h"

#include <QPainter>
#include <QPainterPath>

namespace Bralto {
namespace {

/// One corner of the frame over the content of a sheet, with the piece of the edge that is there.
class Corner final : public QWidget {
public:
    explicit Corner(Sheet& sheet)
        : QWidget(&sheet)
        , m_sheet(sheet)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFocusPolicy(Qt::NoFocus);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        const Tokens& tokens = m_sheet.tokens();
        const QRectF ground = QRectF(m_sheet.sheetRect()).translated(-pos());
        QPainterPath outside;
        outside.setFillRule(Qt::OddEvenFill);
        outside.addRect(rect());
        QPainterPath sheet;
        sheet.addRoundedRect(ground, m_sheet.radius(), m_sheet.radius());
        outside = outside.subtracted(sheet);

        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setClipPath(outside);
        SpaceBackdrop::paintBehind(painter, *this, rect(), tokens.frame);
        if (m_sheet.on() == Sheet::On::Well)
            painter.fillRect(rect(), tokens.frame.well);
        Shape::edgeOutside(painter, ground, m_sheet.radius(), tokens.sheetEdge);
    }

private:
    Sheet& m_sheet;
};

} // namespace

Sheet::Sheet(Theme& theme, On on, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_on(on)
{
    for (QWidget*& corner : m_corners)
        corner = new Corner(*this);
}

int Sheet::radius() const
{
    return m_on == On::Well ? Measure::PaneRadius : Measure::SheetRadius;
}

void Sheet::setContent(QWidget* content)
{
    m_content = content;
    content->setParent(this);
    content->setGeometry(sheetRect());
    content->show();
    for (QWidget* corner : m_corners)
        corner->raise();
}

void Sheet::setSheetGeometry(const QRect& rect)
{
    setGeometry(rect.adjusted(-Edge, -Edge, Edge, Edge));
    // A hidden sheet hears of its size only when it shows, and what lies on it is placed before.
    place();
}

void Sheet::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    Shape::fill(painter, sheetRect(), radius(), tokens().sheet);
    Shape::edgeOutside(painter, sheetRect(), radius(), tokens().sheetEdge);
}

void Sheet::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

void Sheet::place()
{
    const QRect sheet = sheetRect();
    if (m_content)
        m_content->setGeometry(sheet);
    // A quarter of the radius is all that a round corner leaves uncovered, but its ends are flat.
    const int side = radius();
    m_corners[0]->setGeometry(sheet.left(), sheet.top(), side, side);
    m_corners[1]->setGeometry(sheet.right() + 1 - side, sheet.top(), side, side);
    m_corners[2]->setGeometry(sheet.left(), sheet.bottom() + 1 - side, side, side);
    m_corners[3]->setGeometry(sheet.right() + 1 - side, sheet.bottom() + 1 - side, side, side);
}

} // namespace Bralto
