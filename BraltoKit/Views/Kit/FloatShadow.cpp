#include "Views/Kit/FloatShadow.h"

#include "Views/Kit/Shape.h"

#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>

#include <algorithm>
#include <vector>

namespace Bralto::Float {
namespace {

std::size_t indexOf(int x, int y, int width)
{
    return std::size_t(y) * std::size_t(width) + std::size_t(x);
}

/// One pass of a box blur along rows; three of them are close to a Gauss curve.
void blurRows(std::vector<float>& values, int width, int height, int radius)
{
    std::vector<float> row(std::size_t(width), 0);
    const float share = 1.0F / float(2 * radius + 1);
    for (int y = 0; y < height; ++y) {
        float* line = values.data() + std::ptrdiff_t(y) * width;
        float sum = 0;
        for (int x = -radius; x < width; ++x) {
            if (x + radius < width)
                sum += line[x + radius];
            if (x - radius - 1 >= 0)
                sum -= line[x - radius - 1];
            if (x >= 0)
                row[std::size_t(x)] = sum * share;
        }
        std::copy(row.begin(), row.end(), line);
    }
}

/// A blurred rounded square. It is the same across its diagonal, so that rows of the turned
/// picture are columns of this one.
std::vector<float> blurredSquare(int side, int margin, int radius, int blur)
{
    QImage shape(side, side, QImage::Format_Alpha8);
    shape.fill(0);
    QPainter painter(&shape);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(QRectF(shape.rect()).adjusted(margin, margin, -margin, -margin), radius,
                            radius);
    painter.end();

    std::vector<float> values(std::size_t(side) * std::size_t(side));
    for (int y = 0; y < side; ++y)
        std::copy_n(shape.constScanLine(y), side, values.data() + std::ptrdiff_t(y) * side);
    for (int pass = 0; pass < 6; ++pass) {
        blurRows(values, side, side, std::max(1, blur / 2));
        std::vector<float> turned(values.size());
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x)
                turned[indexOf(y, x, side)] = values[indexOf(x, y, side)];
        }
        values = std::move(turned);
    }
    return values;
}

QPixmap shadowPicture(int radius, double ratio, const QColor& ink)
{
    const int margin = qRound(Measure::ShadowBlur * ratio);
    const int corner = qRound((radius + Measure::ShadowBlur) * ratio);
    const int side = 2 * (margin + corner) + 1;
    const std::vector<float> values =
        blurredSquare(side, margin, qRound(radius * ratio), qRound(Measure::ShadowBlur * ratio));
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < side; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < side; ++x) {
            const float alpha = values[indexOf(x, y, side)] * ink.alphaF();
            line[x] = qPremultiply(qRgba(ink.red(), ink.green(), ink.blue(), qRound(alpha)));
        }
    }
    return QPixmap::fromImage(std::move(image));
}

} // namespace

void drawShadow(QPainter& painter, const QRectF& rect, int radius, const Tokens& tokens)
{
    const double ratio = painter.device()->devicePixelRatioF();
    const QString key = QStringLiteral("bralto.shadow/%1/%2/%3")
                            .arg(radius)
                            .arg(ratio)
                            .arg(tokens.shadow.rgba(), 0, 16);
    QPixmap picture;
    if (!QPixmapCache::find(key, &picture)) {
        picture = shadowPicture(radius, ratio, tokens.shadow);
        QPixmapCache::insert(key, picture);
    }

    const QRectF outer = rect.translated(0, Measure::ShadowDrop)
                             .adjusted(-Measure::ShadowBlur, -Measure::ShadowBlur,
                                       Measure::ShadowBlur, Measure::ShadowBlur);
    const double part = (picture.width() - 1) / 2.0;
    const double cut = std::min({part / ratio, outer.width() / 2, outer.height() / 2});
    const std::array<double, 4> xs{outer.left(), outer.left() + cut, outer.right() - cut,
                                   outer.right()};
    const std::array<double, 4> ys{outer.top(), outer.top() + cut, outer.bottom() - cut,
                                   outer.bottom()};
    const std::array<double, 4> source{0, part, part + 1, 2 * part + 1};
    for (std::size_t y = 0; y < 3; ++y) {
        for (std::size_t x = 0; x < 3; ++x) {
            painter.drawPixmap(
                QRectF(QPointF(xs[x], ys[y]), QPointF(xs[x + 1], ys[y + 1])), picture,
                QRectF(QPointF(source[x], source[y]), QPointF(source[x + 1], source[y + 1])));
        }
    }
}

void drawPanel(QPainter& painter, const QRectF& rect, int radius, const Tokens& tokens)
{
    Shape::fill(painter, rect, radius, tokens.floating);
    Shape::edgeOutside(painter, rect, radius, tokens.floatEdge);
}

} // namespace Bralto::Float
