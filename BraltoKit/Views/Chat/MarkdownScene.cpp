#include "Views/Chat/MarkdownScene.h"

#include "Views/Chat/CodeScene.h"
#include "Views/Chat/TableScene.h"

#include <cmath>

namespace Bralto::MarkdownScene {

using namespace MarkdownBlocks;

namespace {

constexpr double BlockGap = 6;
constexpr double ParagraphGap = 9;
constexpr double HeadingGap = 14;
constexpr double UnderHeading = 4;

constexpr double Indent = 20;
constexpr double Bullet = 5;
constexpr double TaskSymbol = 16;
constexpr double TextGap = 10;
constexpr double QuoteBar = 3;
constexpr double QuoteGap = 12;

struct Painter {
    ChatCanvas& canvas;
    QPointF at;
    double width;
    const QString& key;
    QColor ink;

    double u(double units) const { return canvas.u(units); }

    double words(const QString& text, TextRole role, const QColor& color, double left,
                 double top = 0, const QString& separator = QStringLiteral("\n\n")) const
    {
        ChatText styled = canvas.styled(ChatInline::runs(text), role, color);
        styled.separator = separator;
        return canvas.text(styled, at + QPointF(left, top), width - left);
    }

    double operator()(const Paragraph& block) const
    {
        return words(block.text, TextRole::Chat, ink, 0);
    }

    double operator()(const Heading& block) const
    {
        return words(block.text, block.level <= 2 ? TextRole::ChatHeading : TextRole::ChatStrong,
                     ink, 0);
    }

    double operator()(const List& block) const
    {
        double top = 0;
        // Numbers of one list stand in one column, as wide as its widest.
        double markerWidth = u(Bullet);
        for (const ListItem& item : block.items) {
            if (item.checked)
                markerWidth = std::max(markerWidth, u(TaskSymbol));
            else if (item.marker)
                markerWidth = std::max(markerWidth, canvas.width(TextRole::Chat, *item.marker));
        }
        for (const ListItem& item : block.items)
            top += drawItem(item, top, markerWidth);
        return top;
    }

    double drawItem(const ListItem& item, double top, double markerWidth) const
    {
        const double line = canvas.lineHeight(TextRole::Chat);
        const double left = item.depth * u(Indent);
        const QPointF origin = at + QPointF(left, top);
        if (item.checked) {
            const double side = u(TaskSymbol);
            canvas.symbol({origin + QPointF(0, (line - side) / 2), QSizeF(side, side)},
                          *item.checked ? QStringLiteral("checkmark.circle.fill")
                                        : QStringLiteral("circle"),
                          *item.checked ? canvas.tokens().done : canvas.tokens().ink3);
        } else if (item.marker) {
            canvas.line(TextRole::Chat, canvas.tokens().ink3, *item.marker,
                        {origin, QSizeF(markerWidth, line)}, Qt::ElideRight, Qt::AlignRight);
        } else {
            const double side = u(Bullet);
            const QPointF corner((markerWidth - side) / 2, (line - side) / 2);
            canvas.fill({origin + corner, QSizeF(side, side)}, side / 2, canvas.tokens().ink3);
        }
        return words(item.text, TextRole::Chat, ink, left + markerWidth + u(TextGap), top,
                     QStringLiteral("\n"));
    }

    double operator()(const Quote& block) const
    {
        const double height =
            words(block.text, TextRole::Chat, canvas.tokens().ink2, u(QuoteBar + QuoteGap));
        canvas.fill({at, QSizeF(u(QuoteBar), height)}, u(QuoteBar) / 2, canvas.tokens().separator);
        return height;
    }

    double operator()(const Code& block) const
    {
        return CodeScene::draw(canvas, block, at, width, key);
    }

    double operator()(const Table& block) const
    {
        return TableScene::draw(canvas, block, at, width, ink);
    }

    double operator()(const Rule&) const
    {
        const double height = u(17);
        canvas.fill({at + QPointF(0, std::floor(height / 2)), QSizeF(width, 1)}, 0,
                    canvas.tokens().separator);
        return height;
    }
};

} // namespace

double draw(ChatCanvas& canvas, const MarkdownBlock& block, const QPointF& at, double width,
            const QString& key, const QColor& ink)
{
    return std::visit(Painter{canvas, at, width, key, ink}, block);
}

double gap(const MarkdownBlock& above, const MarkdownBlock& below)
{
    if (std::holds_alternative<Heading>(below))
        return HeadingGap;
    if (std::holds_alternative<Heading>(above))
        return UnderHeading;
    const bool arePlain =
        std::holds_alternative<Paragraph>(above) && std::holds_alternative<Paragraph>(below);
    return arePlain ? ParagraphGap : BlockGap;
}

double drawAll(ChatCanvas& canvas, const QString& text, const QPointF& at, double width,
               const QString& key, const QColor& ink)
{
    double top = 0;
    const std::vector<MarkdownBlock> blocks = MarkdownParser::blocks(text);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (i > 0)
            top += canvas.u(gap(blocks[i - 1], blocks[i]));
        top += draw(canvas, blocks[i], at + QPointF(0, top), width, key + u'/' + QString::number(i),
                    ink);
    }
    return top;
}

} // namespace Bralto::MarkdownScene
