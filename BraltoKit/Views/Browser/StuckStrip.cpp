#include "Views/Browser/StuckStrip.h"

#include "Views/Kit/Label.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextButton.h"

#include <QHBoxLayout>
#include <QPainter>

namespace Bralto {
namespace {

constexpr int Height = 40;

} // namespace

StuckStrip::StuckStrip(Theme& theme, QWidget* parent)
    : ThemedWidget(theme, parent)
{
    setFixedHeight(Height);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Measure::Space3, 0, Measure::Space2, 0);
    row->addWidget(
        new Label(theme, TextRole::Body, &Tokens::label, tr("This page isn’t responding."), this));
    row->addStretch(1);
    auto* stop = new TextButton(theme, TextButton::Kind::Plain, tr("Stop Page"), this);
    stop->setExtent(Measure::SmallButton);
    connect(stop, &TextButton::clicked, this, &StuckStrip::stopRequested);
    row->addWidget(stop);
    hide();
}

void StuckStrip::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), tokens().sheet);
    painter.fillRect(rect(), tokens().waitingGround);
    const double line = Shape::hairline(painter);
    painter.fillRect(QRectF(0, height() - line, width(), line), tokens().separator);
}

} // namespace Bralto
