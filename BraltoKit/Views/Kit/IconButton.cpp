#include "Views/Kit/IconButton.h"

#include "Views/Kit/Icon.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/Shape.h"

#include <QPainter>

namespace Bralto {

IconButton::IconButton(Theme& theme, Ground ground, const QString& symbol, QWidget* parent)
    : Control(theme, ground, parent)
    , m_symbol(symbol)
{
    setFixedSize(sizeHint());
}

void IconButton::setExtent(int side, int symbolSize)
{
    m_side = side;
    m_symbolSize = symbolSize;
    setFixedSize(sizeHint());
    update();
}

void IconButton::setSymbol(const QString& symbol)
{
    if (m_symbol == symbol)
        return;
    m_symbol = symbol;
    update();
}

void IconButton::setQuiet(bool quiet)
{
    m_quiet = quiet;
    update();
}

void IconButton::setFilled(bool filled)
{
    m_filled = filled;
    update();
}

void IconButton::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const double radius = std::min<double>(Measure::ControlRadius, m_side / 3.0);
    if (m_filled)
        Shape::fill(painter, rect(), radius, pressedFill());
    if (isEnabled() && (isDown() || isChecked())) {
        Shape::fill(painter, rect(), radius, pressedFill());
    } else if (isEnabled() && hoverAmount() > 0) {
        const QColor fill = hoverFill();
        Shape::fill(painter, rect(), radius,
                    Ink::faded(fill, double(fill.alphaF()) * hoverAmount()));
    }

    QColor ink = labelInk();
    if (!isEnabled())
        ink = disabledInk();
    else if (m_quiet && !isDown() && !isChecked() && hoverAmount() < 0.5)
        ink = secondaryInk();
    const double inset = (m_side - m_symbolSize) / 2.0;
    Icon::draw(painter, QRectF(inset, inset, m_symbolSize, m_symbolSize), m_symbol, ink);
}

} // namespace Bralto
