#include "Views/Browser/LinkPill.h"

#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/TextLine.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Bralto {
namespace {

constexpr int Padding = 11;
constexpr double LargestShare = 0.7; ///< Of the page's width.

} // namespace

LinkPill::LinkPill(Theme& theme, QWidget* parent)
    : ThemedWidget(theme, parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void LinkPill::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    placeIn(m_area);
    setVisible(!text.isEmpty());
    raise();
    update();
}

void LinkPill::placeIn(const QRect& area)
{
    m_area = area;
    const int words = int(std::ceil(TextLine::width(TextRole::Caption, m_text))) + 2 * Padding + 3;
    const int wide = std::min(words, int(area.width() * LargestShare));
    const int high = Measure::Pill + 2; // The edge lies outside.
    setGeometry(area.left() + Measure::Space2, area.bottom() + 1 - Measure::Space2 - high, wide,
                high);
}

void LinkPill::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF pill = QRectF(rect()).adjusted(1, 1, -1, -1);
    Float::drawPanel(painter, pill, Measure::Pill / 2, tokens());
    TextLine::draw(painter, pill.adjusted(Padding, 0, -Padding, 0), TextRole::Caption,
                   tokens().ink2, m_text, Qt::ElideMiddle);
}

} // namespace Bralto
