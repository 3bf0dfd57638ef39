#include "Views/Kit/Icon.h"

#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <cmath>

/// Registers the pictures that are compiled into this library; a static one does not by itself.
/// Outside every namespace, since the macro declares a function.
static void loadResources()
{
    static const bool loaded = [] {
        Q_INIT_RESOURCE(Icons);
        return true;
    }();
    Q_UNUSED(loaded)
}

namespace Bralto::Icon {
namespace {

QString resource(const QString& name)
{
    loadResources();
    return QStringLiteral(":/icons/") + name;
}

QPixmap render(const QString& name, int pixels, const QColor& ink)
{
    QSvgRenderer renderer(resource(exists(name) ? name : QStringLiteral("doc")));
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(0, 0, pixels, pixels));
    // The drawing is black where it has ink; only its coverage counts.
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), ink);
    painter.end();
    return QPixmap::fromImage(std::move(image));
}

} // namespace

bool exists(const QString& name)
{
    return !name.isEmpty() && QFile::exists(resource(name));
}

QPixmap pixmap(const QString& name, double size, const QColor& ink, double ratio)
{
    const int pixels = std::max(1, int(std::lround(size * ratio)));
    const QString key =
        QStringLiteral("bralto.icon/%1/%2/%3").arg(name).arg(pixels).arg(ink.rgba(), 0, 16);
    QPixmap result;
    if (!QPixmapCache::find(key, &result)) {
        result = render(name, pixels, ink);
        QPixmapCache::insert(key, result);
    }
    result.setDevicePixelRatio(ratio);
    return result;
}

void draw(QPainter& painter, const QRectF& rect, const QString& name, const QColor& ink)
{
    const double scale = painter.device()->devicePixelRatioF() * painter.transform().m11();
    const QPixmap picture = pixmap(name, rect.width(), ink, scale > 0 ? scale : 1);
    painter.drawPixmap(rect, picture, QRectF(picture.rect()));
}

} // namespace Bralto::Icon
