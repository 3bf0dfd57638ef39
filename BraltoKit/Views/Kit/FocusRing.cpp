#include "Views/Kit/FocusRing.h"

#include "Views/Kit/Shape.h"
#include "Views/Kit/Theme.h"

#include <QPainter>
#include <QProxyStyle>

namespace Bralto {
namespace {

constexpr int Gap = 2;
constexpr int Margin = Gap + Measure::FocusRing;

/// Tells the frame how far outside the control it lies.
class RingStyle final : public QProxyStyle {
public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        if (metric == PM_FocusFrameHMargin || metric == PM_FocusFrameVMargin)
            return Margin;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override
    {
        if (hint == SH_FocusFrame_Mask)
            return 0;
        return QProxyStyle::styleHint(hint, option, widget, result);
    }
};

RingStyle* ringStyle()
{
    static RingStyle style;
    return &style;
}

} // namespace

FocusRing::FocusRing(Theme& theme, QWidget& control, double radius, const QColor& ink)
    : QFocusFrame(control.parentWidget())
    , m_radius(radius)
    , m_ink(ink)
{
    setStyle(ringStyle());
    setWidget(&control);
    connect(&theme, &Theme::changed, this, qOverload<>(&QWidget::update));
}

void FocusRing::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    Shape::ring(painter, rect(), m_radius + Margin, Measure::FocusRing, m_ink);
}

} // namespace Bralto
