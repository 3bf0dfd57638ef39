#include "Views/Editor/PictureView.h"

#include "Base/Background.h"
#include "Views/Kit/Shape.h"

#include <QImageReader>
#include <QPainter>

namespace Bralto {
namespace {

constexpr qint64 MostPixels = 120'000'000;

QImage readImage(const QString& path, const QSize& size)
{
    QImageReader reader(path);
    reader.setScaledSize(size);
    return reader.read();
}

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
    const QImageReader reader(path);
    const QSize size = reader.size();
    return reader.canRead() && size.isValid() && !size.isEmpty() &&
           qint64(size.width()) * size.height() <= MostPixels;
}

QSize PictureView::shownSize() const
{
    const QSize room =
        rect()
            .adjusted(Measure::Space6, Measure::Space6, -Measure::Space6, -Measure::Space6)
            .size() *
        devicePixelRatioF();
    if (room.isEmpty())
        return {};
    QSize size = m_whole;
    if (size.width() > room.width() || size.height() > room.height())
        size.scale(room, Qt::KeepAspectRatio);
    return size.expandedTo({1, 1});
}

void PictureView::read()
{
    const QSize wanted = shownSize();
    if (wanted.isEmpty() || wanted == m_wanted)
        return;
    m_wanted = wanted;
    inBackground(
        this, [path = m_path, wanted] { return readImage(path, wanted); },
        [this, wanted](const QImage& image) {
            // The window was resized meanwhile: another one is on its way.
            if (wanted != m_wanted)
                return;
            m_image = image;
            update();
            emit imageRead();
        });
}

void PictureView::resizeEvent(QResizeEvent* /*event*/)
{
    read();
}

void PictureView::paintEvent(QPaintEvent* /*event*/)
{
    if (m_image.isNull())
        return;
    QRectF target(QPointF(), QSizeF(shownSize()) / devicePixelRatioF());
    target.moveCenter(QRectF(rect()).center());
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, m_image);
    Shape::edgeOutside(painter, target, 0, tokens().separator);
}

} // namespace Bralto
