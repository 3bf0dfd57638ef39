#include "Tools/ViewGallery/SamplePage.h"

#include "Views/Kit/Fonts.h"

#include <QPainter>
#include <QPainterPath>

#include <array>
#include <cmath>

namespace Bralto {
namespace {

constexpr int Margin = 24;
constexpr int Top = 90;
constexpr int CardHeight = 112;
constexpr int Gap = 12;

struct Station {
    const char* name;
    const char* level;
};

constexpr std::array Stations{Station{"North Pier", "8443970 · 1.82 m rising"},
                              Station{"Mill Creek", "8447435 · 0.44 m falling"},
                              Station{"Outer Bar", "8454000 · 2.10 m high"},
                              Station{"Ferry Landing", "8461490 · 0.97 m rising"}};

} // namespace

void SamplePage::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(0xf7f8fa));
    painter.setFont(Bralto::font(TextRole::Heading));
    painter.setPen(QColor(0x11181f));
    painter.drawText(Margin, Margin + 20, "Stations");
    painter.setFont(Bralto::font(TextRole::Body));
    painter.setPen(QColor(0x5b6672));
    painter.drawText(Margin, Margin + 44, "214 stations, 1.9 million samples");

    const int wide = (width() - 3 * Margin) / 2;
    for (std::size_t at = 0; at < Stations.size(); ++at) {
        const int column = int(at) % 2;
        const int row = int(at) / 2;
        const QRectF card(Margin + column * (wide + Margin), Top + row * (CardHeight + Gap), wide,
                          CardHeight);
        painter.setPen(QColor(0xe2e6ea));
        painter.setBrush(Qt::white);
        painter.drawRoundedRect(card, 8, 8);
        painter.setFont(Bralto::font(TextRole::BodyStrong));
        painter.setPen(QColor(0x11181f));
        painter.drawText(card.topLeft() + QPointF(14, 26), Stations[at].name);
        painter.setFont(Bralto::font(TextRole::Body));
        painter.setPen(QColor(0x5b6672));
        painter.drawText(card.topLeft() + QPointF(14, 46), Stations[at].level);
        QPainterPath wave(card.topLeft() + QPointF(14, 78 + 16 * std::sin(double(at))));
        for (int x = 1; x < wide - 28; ++x)
            wave.lineTo(card.left() + 14 + x,
                        card.top() + 78 + 16 * std::sin(x / 26.0 + double(at)));
        painter.setPen(QPen(QColor(0x0b7285), 1.6));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(wave);
    }
}

} // namespace Bralto
