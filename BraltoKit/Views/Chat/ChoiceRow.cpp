#include "Views/Chat/ChoiceRow.h"

#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QPainter>

namespace Bralto {

namespace {

constexpr int Height = 32;
constexpr int HeightWithDetail = 44;
constexpr int Side = 10;
constexpr int MarkSize = 16;
constexpr int MarkGap = 10;
constexpr int LabelTop = 4;
constexpr int LabelLine = 20;
constexpr int DetailLine = 16;
constexpr double BoxRadius = 5;

} // namespace

ChoiceRow::ChoiceRow(Theme& theme, Content content, QWidget* parent)
    : Control(theme, Ground::Sheet, parent)
    , m_content(std::move(content))
{
    setAccessibleName(m_content.label);
    setAccessibleDescription(m_content.detail);
    setCheckable(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::NoFocus);
}

QSize ChoiceRow::sizeHint() const
{
    return {240, m_content.detail.isEmpty() ? Height : HeightWithDetail};
}

void ChoiceRow::paintMark(QPainter& painter, const QRectF& rect) const
{
    if (m_content.mark == Mark::Pencil) {
        Icon::draw(painter, rect, QStringLiteral("pencil"), secondaryInk());
        return;
    }
    const double radius = m_content.mark == Mark::One ? rect.height() / 2 : BoxRadius;
    if (m_content.isPicked) {
        Shape::fill(painter, rect, radius, tokens().accent);
        Icon::draw(painter, rect.adjusted(2, 2, -2, -2), QStringLiteral("checkmark"),
                   tokens().onAccent);
    } else {
        Shape::ring(painter, rect, radius, 1.5, tokens().ink4);
    }
}

void ChoiceRow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_content.isHighlighted)
        Shape::fill(painter, rect(), Measure::ControlRadius, tokens().selection);
    else if (hoverAmount() > 0)
        Shape::fill(painter, rect(), Measure::ControlRadius, hoverFill());

    const QRectF mark(Side, (height() - MarkSize) / 2.0, MarkSize, MarkSize);
    paintMark(painter, mark);

    double right = width() - Side;
    if (!m_content.keyCap.isEmpty()) {
        const QRectF cap(right - Measure::KeyCap, (height() - Measure::KeyCap) / 2.0,
                         Measure::KeyCap, Measure::KeyCap);
        Shape::edgeInside(painter, cap, 4, tokens().separator);
        TextLine::draw(painter, cap, TextRole::CaptionMedium, tokens().ink2, m_content.keyCap,
                       Qt::ElideNone, Qt::AlignHCenter);
        right = cap.left() - Measure::Space2;
    }
    const double left = mark.right() + MarkGap;
    const QColor ink = m_content.mark == Mark::Pencil ? tokens().ink2 : tokens().label;
    if (m_content.detail.isEmpty()) {
        TextLine::draw(painter, QRectF(left, 0, right - left, height()), TextRole::Body, ink,
                       m_content.label);
        return;
    }
    TextLine::draw(painter, QRectF(left, LabelTop, right - left, LabelLine), TextRole::Body, ink,
                   m_content.label);
    TextLine::draw(painter, QRectF(left, LabelTop + LabelLine, right - left, DetailLine),
                   TextRole::Secondary, tokens().ink2, m_content.detail);
}

} // namespace Bralto
