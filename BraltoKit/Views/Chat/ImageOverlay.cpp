#include "Views/Chat/ImageOverlay.h"

#include "Views/Chat/ImageScene.h"
#include "Views/Kit/Ink.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>

namespace Bralto {

namespace {

constexpr double Veil = 0.94;
constexpr double Side = 24;

} // namespace

ImageOverlay::ImageOverlay(Theme& theme, QWidget& pane)
    : ThemedWidget(theme, &pane)
    , m_pane(pane)
{
    setAccessibleName(tr("Picture"));
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    pane.installEventFilter(this);
    hide();
}

void ImageOverlay::present(const QImage& image)
{
    m_image = image;
    setGeometry(m_pane.rect());
    raise();
    show();
    setFocus();
}

void ImageOverlay::dismiss()
{
    hide();
    m_image = {};
    emit dismissed();
}

bool ImageOverlay::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &m_pane && event->type() == QEvent::Resize)
        setGeometry(m_pane.rect());
    return ThemedWidget::eventFilter(watched, event);
}

void ImageOverlay::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), Ink::faded(tokens().sheet, Veil));
    const QRectF room = QRectF(rect()).adjusted(Side, Side, -Side, -Side);
    const QSizeF size = ImageScene::fitted(QSizeF(m_image.size()), room.size());
    const QPointF corner = room.center() - QPointF(size.width() / 2, size.height() / 2);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(corner, size), m_image);
}

void ImageOverlay::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    dismiss();
}

void ImageOverlay::keyPressEvent(QKeyEvent* event)
{
    const bool closes = event->key() == Qt::Key_Escape || event->key() == Qt::Key_Return ||
                        event->key() == Qt::Key_Space;
    if (closes)
        dismiss();
    else
        ThemedWidget::keyPressEvent(event);
}

} // namespace Bralto
