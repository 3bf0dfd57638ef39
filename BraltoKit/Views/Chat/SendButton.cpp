#include "Views/Chat/SendButton.h"

#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"

#include <QPainter>

namespace Bralto {

namespace {

constexpr int Side = 26;
constexpr double Radius = 8;
constexpr double StopSide = 12;
constexpr double StopRadius = 2;
constexpr double ArrowSide = 16;

QRectF centred(const QRectF& around, double side)
{
    return {around.center().x() - side / 2, around.center().y() - side / 2, side, side};
}

} // namespace

SendButton::SendButton(Theme& theme, QWidget* parent)
    : Control(theme, Ground::Sheet, parent)
{
    setFace(Face::Off);
    setTip(tr("Send"), QStringLiteral("Return"));
}

QSize SendButton::sizeHint() const
{
    return {Side, Side};
}

void SendButton::setFace(Face face)
{
    m_face = face;
    if (face == Face::Stop)
        setTip(tr("Stop"), QStringLiteral("Esc"));
    else
        setTip(tr("Send"), QStringLiteral("Return"));
    setEnabled(face != Face::Off);
    update();
}

void SendButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isOff = m_face == Face::Off;
    Shape::fill(painter, rect(), Radius, isOff ? tokens().pressed : tokens().accent);
    const QColor ink = isOff ? tokens().ink4 : tokens().onAccent;
    if (m_face == Face::Stop)
        Shape::fill(painter, centred(rect(), StopSide), StopRadius, ink);
    else
        Icon::draw(painter, centred(rect(), ArrowSide), QStringLiteral("arrow.up"), ink);
}

} // namespace Bralto
