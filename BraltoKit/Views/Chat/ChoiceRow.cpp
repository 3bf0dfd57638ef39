#include "Views/Chat/ChoiceRow.h"

#include "Views/Kit/Fonts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace Bralto {

namespace {

constexpr int Height = 32;
constexpr int HeightWithDetail = 44;
constexpr int Side = 10;
constexpr int MarkSize = 16;
constexpr int MarkGap = 10;
constexpr int LabelTop = 4;
constexpr double BoxRadius = 5;

} // namespace

ChoiceRow::ChoiceRow(Theme& theme, Content content, QWidget* parent)
    : Control(theme, Ground::Sheet, parent)
    , m_content(std::move(content))
{
    setAccessibleName(m_content.label);
    setAccessibleDescription(m_content.detail);
    setCheckable(false);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setFocusPolicy(Qt::NoFocus);
}

QSize ChoiceRow::sizeHint() const
{
    return {240, m_content.detail.isEmpty() ? Height : HeightWithDetail};
}

/// The column of the words in a row of this width.
QRectF ChoiceRow::words(int width) const
{
    const double left = Side + MarkSize + MarkGap;
    const double cap = m_content.keyCap.isEmpty() ? 0 : Measure::KeyCap + Measure::Space2;
    return {left, 0, std::max(1.0, width - Side - cap - left), 0};
}

/// The height of `text` in lines of its role; nothing is shown of what is longer than a paragraph.
int ChoiceRow::wrapped(TextRole role, const QString& text, int width) const
{
    if (text.isEmpty())
        return 0;
    const QFontMetricsF metrics(Bralto::font(role));
    const QRectF bounds(0, 0, words(width).width(), 1e6);
    const double height =
        metrics.boundingRect(bounds, Qt::TextWordWrap, TextLine::flattened(text)).height();
    return int(std::lround(height / metrics.lineSpacing())) * lineHeight(role);
}

int ChoiceRow::heightForWidth(int width) const
{
    const int label = wrapped(TextRole::Body, m_content.label, width);
    const int detail = wrapped(TextRole::Secondary, m_content.detail, width);
    return std::max(m_content.detail.isEmpty() ? Height : HeightWithDetail,
                    label + detail + 2 * LabelTop);
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

    if (!m_content.keyCap.isEmpty()) {
        const QRectF cap(width() - Side - Measure::KeyCap, (height() - Measure::KeyCap) / 2.0,
                         Measure::KeyCap, Measure::KeyCap);
        Shape::edgeInside(painter, cap, 4, tokens().separator);
        TextLine::draw(painter, cap, TextRole::CaptionMedium, tokens().ink2, m_content.keyCap,
                       Qt::ElideNone, Qt::AlignHCenter);
    }
    const int label = wrapped(TextRole::Body, m_content.label, width());
    const int detail = wrapped(TextRole::Secondary, m_content.detail, width());
    QRectF area = words(width());
    area.moveTop((height() - label - detail) / 2.0);
    const auto draw = [&](TextRole role, const QString& text, const QColor& ink, int tall) {
        area.setHeight(tall);
        painter.setFont(Bralto::font(role));
        painter.setPen(ink);
        painter.drawText(area, Qt::TextWordWrap | Qt::AlignVCenter, TextLine::flattened(text));
        area.moveTop(area.bottom());
    };
    draw(TextRole::Body, m_content.label,
         m_content.mark == Mark::Pencil ? tokens().ink2 : tokens().label, label);
    draw(TextRole::Secondary, m_content.detail, tokens().ink2, detail);
}

} // namespace Bralto
