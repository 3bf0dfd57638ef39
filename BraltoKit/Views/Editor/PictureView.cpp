#include "Views/Editor/PictureView.h"

#include "Views/Kit/Shape.h"

#include <QImageReader>
#include <QPainter>

namespace Bralto {
namespace {

constexpr qint64 MostPixels = 120'000'000;

} // namespace

PictureView::PictureView(Theme& theme, const QString& path, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_path(path)
    , m_whole(QImageReader(path).size())
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(path);
}

bool PictureView::canShow(const QString& path)
{
    QImageReader reader(path);
    const QSize size = reader.size();
    return reader.canRead() && size.isValid() && !size.isEmpty() &&
           qint64(size.width()) * size.height() <= MostPixels;
}

void PictureView::read(const QSize& wanted)
{
    if (m_image.size() == wanted)
        return;
    QImageReader reader(m_path);
    reader.setScaledSize(wanted);
    m_image = reader.read();
}

void PictureView::paintEvent(QPaintEvent* /*event*/)
{
    const double ratio = devicePixelRatioF();
    const QSize room =
        rect()
            .adjusted(Measure::Space6, Measure::Space6, -Measure::Space6, -Measure::Space6)
            .size() *
        ratio;
    if (room.isEmpty())
        return;
    QSize size = m_whole;
    if (size.width() > room.width() || size.height() > room.height())
        size.scale(room, Qt::KeepAspectRatio);
    read(size.expandedTo({1, 1}));
    QRectF target(QPointF(), QSizeF(size) / ratio);
    target.moveCenter(QRectF(rect()).center());
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, m_image);
    Shape::edgeOutside(painter, target, 0, tokens().separator);
}

} // namespace Bralto
