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
constexpr int SectionBottom = 6;

QRectF square(double left, const QRectF& row, double side)
{
    return {left, row.center().y() - side / 2, side, side};
}

} // namespace

struct SidebarDelegate::Paint {
    QPainter& painter;
    const QStyleOptionViewItem& option;
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

QSize SidebarDelegate::sizeHint(const QStyleOptionViewItem& /*option*/,
                                const QModelIndex& index) const
{
    const SidebarRow* row = m_model.row(index);
    if (!row)
        return {};
    switch (row->kind) {
    case Kind::Section:
        return {0, Measure::SectionHead + (index.row() > 0 ? Gap : 0)};
    case Kind::OpenTab:
        return {0, Measure::SidebarRow};
    case Kind::Folder:
    case Kind::File:
        return {0, Measure::TreeRow};
    case Kind::EmptyTitle:
        return {0, Measure::SidebarRow};
    case Kind::EmptyText:
        return {0, 2 * Measure::Space4};
    }
    return {};
}

QRect SidebarDelegate::closeButton(const QRect& row)
{
    return {row.right() + 1 - Measure::RowRight - CloseSide + 2,
            row.center().y() - CloseSide / 2 + 1, CloseSide, CloseSide};
}

void SidebarDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const
{
    const SidebarRow* row = m_model.row(index);
    if (!row)
        return;
    const Tokens& tokens = m_theme.tokens();
    const Paint paint{*painter,
                      option,
                      *row,
                      tokens,
                      QRectF(option.rect),
                      bool(option.state & QStyle::State_MouseOver)};
    if (row->isAction()) {
        if (row->isSelected)
            Shape::fill(*painter, paint.rect, Measure::ControlRadius, tokens.frame.selected);
        else if (paint.isHovered)
            Shape::fill(*painter, paint.rect, Measure::ControlRadius, tokens.frame.hover);
        if (option.state & QStyle::State_HasFocus)
            Shape::ring(*painter, paint.rect, Measure::ControlRadius, Measure::FocusRing,
                        tokens.frame.label);
    }

    const QRectF words = paint.rect.adjusted(Measure::RowLeft, 0, -Measure::RowRight, 0);
    switch (row->kind) {
    case Kind::Section: {
        QRectF line = words;
        line.setTop(line.bottom() - SectionBottom - Measure::Space4);
        line.setHeight(Measure::Space4);
        TextLine::draw(*painter, line, TextRole::CaptionStrong, tokens.frame.ink2, row->text);
        break;
    }
    case Kind::EmptyTitle:
        TextLine::draw(*painter, words, TextRole::BodyMedium, tokens.frame.label, row->text);
        break;
    case Kind::EmptyText:
        TextLine::draw(*painter, words.adjusted(0, -Gap, 0, -Gap), TextRole::Secondary,
                       tokens.frame.ink2, row->text);
        break;
    case Kind::OpenTab:
        paintOpenTab(paint);
        break;
    case Kind::Folder:
    case Kind::File:
        paintNode(paint);
        break;
    }
}

void SidebarDelegate::paintOpenTab(const Paint& paint) const
{
    const Tokens::Frame& frame = paint.tokens.frame;
    double x = paint.rect.left() + Measure::RowLeft;
    Icon::draw(paint.painter, square(x, paint.rect, Measure::RowIcon), paint.row.symbol,
               paint.row.isSelected ? frame.label : frame.ink2);
    x += Measure::RowIcon + Gap;

    const QRectF close = closeButton(paint.option.rect);
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
    double x = paint.rect.left() + Measure::RowLeft + paint.row.depth * Measure::TreeIndent;
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
