#include "Views/Sidebar/SidebarDelegate.h"

#include "Views/Kit/Icon.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"
#include "Views/Sidebar/SidebarModel.h"

#include <QPainter>

namespace Bralto {
namespace {

using Kind = SidebarRow::Kind;

constexpr int Gap = 8;
constexpr int ArrowGap = 6;
constexpr int NameGap = 7;
constexpr int CloseSide = 20;
constexpr int SectionTop = 6;
constexpr int SectionGap = 4;
constexpr int TreeLeft = 8;

QRectF square(double left, const QRectF& row, double side)
{
    return {left, row.center().y() - side / 2, side, side};
}

} // namespace

struct SidebarDelegate::Paint {
    QPainter& painter;
    const SidebarRow& row;
    const Tokens& tokens;
    QRectF rect;
    bool isHovered;
};

SidebarDelegate::SidebarDelegate(Theme& theme, const SidebarModel& model, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_theme(theme)
    , m_model(model)
{
}

int SidebarDelegate::rowHeight(const QModelIndex& index) const
{
    const SidebarRow* row = m_model.row(index);
    if (!row)
        return 0;
    switch (row->kind) {
    case Kind::Section:
        return Measure::SectionHead + (index.row() > 0 ? SectionGap : 0);
    case Kind::OpenTab:
    case Kind::EmptyTitle:
        return Measure::SidebarRow;
    case Kind::Folder:
    case Kind::File:
        return Measure::TreeRow;
    case Kind::EmptyText:
        return 2 * Measure::Space4;
    }
    return 0;
}

QSize SidebarDelegate::sizeHint(const QStyleOptionViewItem& /*option*/,
                                const QModelIndex& index) const
{
    return {0, qRound(rowHeight(index) * m_zoom)};
}

QRect SidebarDelegate::closeButton(const QRect& row) const
{
    const int side = qRound(CloseSide * m_zoom);
    return {row.right() + 3 - qRound(Measure::RowRight * m_zoom) - side,
            row.center().y() - side / 2 + 1, side, side};
}

void SidebarDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const
{
    const SidebarRow* row = m_model.row(index);
    if (!row)
        return;
    const Tokens& tokens = m_theme.tokens();
    painter->save();
    // Everything below is laid out at zoom 1; the painter does the rest.
    painter->translate(option.rect.topLeft());
    painter->scale(m_zoom, m_zoom);
    const Paint paint{*painter, *row, tokens,
                      QRectF(QPointF(), QSizeF(option.rect.size()) / m_zoom),
                      bool(option.state & QStyle::State_MouseOver)};
    if (row->isAction()) {
        if (row->isSelected)
            Shape::fill(*painter, paint.rect, Measure::ControlRadius, tokens.frame.selected);
        else if (paint.isHovered)
            Shape::fill(*painter, paint.rect, Measure::ControlRadius, tokens.frame.hover);
        if (m_isFocusShown && (option.state & QStyle::State_HasFocus))
            Shape::ring(*painter, paint.rect, Measure::ControlRadius, Measure::FocusRing,
                        tokens.frame.label);
    }
    switch (row->kind) {
    case Kind::Section:
    case Kind::EmptyTitle:
    case Kind::EmptyText:
        paintWords(paint);
        break;
    case Kind::OpenTab:
        paintOpenTab(paint);
        break;
    case Kind::Folder:
    case Kind::File:
        paintNode(paint);
        break;
    }
    painter->restore();
}

void SidebarDelegate::paintWords(const Paint& paint) const
{
    const Tokens::Frame& frame = paint.tokens.frame;
    QRectF words = paint.rect.adjusted(Measure::RowLeft, 0, -Measure::RowRight, 0);
    TextRole role = TextRole::Secondary;
    QColor ink = frame.ink2;
    if (paint.row.kind == Kind::Section) {
        role = TextRole::CaptionStrong;
        words.setTop(words.bottom() - Measure::SectionHead + SectionTop);
    } else if (paint.row.kind == Kind::EmptyTitle) {
        role = TextRole::BodyMedium;
        ink = frame.label;
    } else {
        words.translate(0, -Gap);
    }
    TextLine::draw(paint.painter, words, role, ink, paint.row.text);
}

void SidebarDelegate::paintOpenTab(const Paint& paint) const
{
    const Tokens::Frame& frame = paint.tokens.frame;
    double x = paint.rect.left() + Measure::RowLeft;
    Icon::draw(paint.painter, square(x, paint.rect, Measure::RowIcon), paint.row.symbol,
               paint.row.isSelected ? frame.label : frame.ink2);
    x += Measure::RowIcon + Gap;

    const QRectF close(paint.rect.right() + 2 - Measure::RowRight - CloseSide,
                       paint.rect.center().y() - CloseSide / 2.0, CloseSide, CloseSide);
    const bool hasMark = paint.isHovered || paint.row.isUnsaved;
    const double right = hasMark ? close.left() : paint.rect.right() - Measure::RowRight;
    TextLine::draw(paint.painter, QRectF(x, paint.rect.top(), right - x, paint.rect.height()),
                   TextRole::Body, frame.label, paint.row.text);
    if (paint.isHovered) {
        QRectF icon(0, 0, Measure::TabIcon, Measure::TabIcon);
        icon.moveCenter(close.center());
        Icon::draw(paint.painter, icon, QStringLiteral("xmark"), frame.label);
    } else if (paint.row.isUnsaved) {
        Shape::disc(paint.painter, close.center(), Measure::UnsavedDot, frame.label);
    }
}

void SidebarDelegate::paintNode(const Paint& paint) const
{
    const Tokens::Frame& frame = paint.tokens.frame;
    double x = paint.rect.left() + TreeLeft + paint.row.depth * Measure::TreeIndent;
    if (paint.row.kind == Kind::Folder)
        Icon::draw(paint.painter, square(x, paint.rect, Measure::TreeArrow),
                   paint.row.isExpanded ? QStringLiteral("chevron.down")
                                        : QStringLiteral("chevron.right"),
                   frame.marks);
    x += Measure::TreeArrow + ArrowGap;
    Icon::draw(paint.painter, square(x, paint.rect, Measure::RowIcon), paint.row.symbol,
               paint.row.isSelected ? frame.label : frame.ink2);
    x += Measure::RowIcon + NameGap;
    const double right = paint.rect.right() - Measure::RowRight;
    TextLine::draw(paint.painter, QRectF(x, paint.rect.top(), right - x, paint.rect.height()),
                   TextRole::Body, frame.label, paint.row.text, Qt::ElideMiddle);
}

} // namespace Bralto
