#include "Views/Window/SpaceBackdrop.h"

#include <QHash>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Bralto {
namespace {

constexpr int TileSide = 256;

QImage makeTile(int scale)
{
    const int side = TileSide * scale;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    quint64 state = 684321;
    const auto next = [&state] {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return state >> 33U;
    };
    for (int y = 0; y < side; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < side; ++x) {
            const quint64 chance = next() % 1000;
            int value = 0;
            if (chance >= 550)
                value = chance < 960 ? int(next() % 30) + 10 : int(next() % 90) + 60;
            line[x] = qRgba(value, value, value, value);
        }
    }
    image.setDevicePixelRatio(scale);
    return image;
}

} // namespace

const QImage& Grain::tile(double scale)
{
    static QHash<int, QImage> cache;
    const int whole = std::max(1, int(std::lround(scale)));
    const auto known = cache.constFind(whole);
    return known != cache.constEnd() ? *known : *cache.insert(whole, makeTile(whole));
}

SpaceBackdrop::SpaceBackdrop(QWidget& window)
    : QObject(&window)
    , m_window(window)
{
}

const QPixmap& SpaceBackdrop::picture(const Tokens::Frame& frame)
{
    const Key key{m_window.size(), m_window.devicePixelRatioF(), frame.stops, frame.grain};
    if (key == m_key && !m_picture.isNull())
        return m_picture;
    m_key = key;
    QImage image(m_window.size() * key.ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(key.ratio);
    QPainter painter(&image);
    QLinearGradient gradient(0, 0, 0, m_window.height());
    gradient.setColorAt(0, frame.stops[0]);
    gradient.setColorAt(0.5, frame.stops[1]);
    gradient.setColorAt(1, frame.stops[2]);
    painter.fillRect(m_window.rect(), gradient);

    const QImage& tile = Grain::tile(key.ratio);
    painter.setOpacity(frame.grain);
    for (int y = 0; y < m_window.height(); y += TileSide) {
        for (int x = 0; x < m_window.width(); x += TileSide)
            painter.drawImage(QPoint(x, y), tile);
    }
    painter.end();
    m_picture = QPixmap::fromImage(std::move(image));
    return m_picture;
}

void SpaceBackdrop::paintBehind(QPainter& painter, const QWidget& widget, const QRect& area,
                                const Tokens::Frame& frame)
{
    QWidget* window = widget.window();
    auto* backdrop = window->findChild<SpaceBackdrop*>(QString(), Qt::FindDirectChildrenOnly);
    if (!backdrop)
        return;
    const QPixmap& picture = backdrop->picture(frame);
    const QPoint corner = widget.mapTo(window, area.topLeft());
    const double ratio = picture.devicePixelRatio();
    painter.drawPixmap(QRectF(area), picture,
                       QRectF(QPointF(corner) * ratio, QSizeF(area.size()) * ratio));
}

} // namespace Bralto
