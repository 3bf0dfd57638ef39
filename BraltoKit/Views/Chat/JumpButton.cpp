#include "Views/Chat/JumpButton.h"

#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"

#include <QPainter>

namespace Bralto {

namespace {

constexpr int Disc = 32;

/// Enough of the shadow to lift the disc; the rest of it is too faint to be missed.
constexpr int Margin = 16;

} // namespace

JumpButton::JumpButton(Theme& theme, QWidget* parent)
    : Control(theme, Ground::Sheet, parent)
{
    setTip(tr("Jump to the End"), QStringLiteral("End"));
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus);
    resize(sizeHint());
}

QSize JumpButton::sizeHint() const
{
    return {Disc + 2 * Margin, Disc + 2 * Margin};
}

void JumpButton::standOn(const QPoint& bottom)
{
    move(bottom.x() - width() / 2, bottom.y() - Disc - Margin);
}

QRectF JumpButton::disc() const
{
    return QRectF(rect()).adjusted(Margin, Margin, -Margin, -Margin);
}

bool JumpButton::hitButton(const QPoint& position) const
{
    return disc().contains(position);
}

double JumpButton::focusRadius() const
{
    return Disc / 2.0;
}

void JumpButton::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF circle = disc();
    Float::drawShadow(painter, circle, Disc / 2, tokens());
    Float::drawPanel(painter, circle, Disc / 2, tokens());
    if (hoverAmount() > 0.5 || isDown())
        Shape::fill(painter, circle, Disc / 2.0, isDown() ? tokens().pressed : tokens().hover);
    const double inset = (Disc - Measure::RowIcon) / 2.0;
    Icon::draw(painter, circle.adjusted(inset, inset, -inset, -inset), QStringLiteral("arrow.down"),
               tokens().label);
}

} // namespace Bralto
