#include "Views/Console/FadingPicture.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace Bralto {

FadingPicture::FadingPicture(Theme& theme, QPixmap picture, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_picture(std::move(picture))
    , m_opacity(theme, Motions::Swap, 1, this)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(&m_opacity, &Animated::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&m_opacity, &Animated::settled, this, &QWidget::hide);
    connect(&m_opacity, &Animated::settled, this, &QObject::deleteLater);
}

void FadingPicture::start(Layer layer)
{
    show();
    if (layer == Layer::Above)
        raise();
    else
        lower();
    m_opacity.moveTo(0);
}

void FadingPicture::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setOpacity(std::clamp(m_opacity.value(), 0.0, 1.0));
    painter.drawPixmap(QPoint(0, 0), m_picture);
}

} // namespace Bralto
