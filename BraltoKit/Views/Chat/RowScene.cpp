#include "Views/Chat/RowScene.h"

#include "Chat/ChatNotice.h"
#include "Chat/ClippedText.h"
#include "Views/Chat/ImageScene.h"
#include "Views/Kit/Icon.h"

#include <cmath>

namespace Bralto::RowScene {

namespace {

constexpr double Row = 28;
constexpr double Head = 34;
constexpr double TurnShare = 0.78;
constexpr double TurnSide = 12;
constexpr double TurnTop = 7;
constexpr double IconGap = 8;
constexpr qsizetype TurnLines = 40;

QRectF square(const QRectF& row, double left, double side)
{
    return {left, row.center().y() - side / 2, side, side};
}

double drawMore(ChatCanvas& canvas, const QString& words, const QString& key, const QPointF& at)
{
    const QRectF rect(at, QSizeF(canvas.width(TextRole::SecondaryMedium, words), canvas.u(24)));
    canvas.line(TextRole::SecondaryMedium, canvas.tokens().accentInk, words, rect);
    canvas.hot({rect.adjusted(-canvas.u(6), canvas.u(1), canvas.u(6), -canvas.u(1)),
                {ChatAction::Kind::Toggle, key, {}},
                words,
                double(Measure::ControlRadius)});
    return rect.height();
}

/// All texts of a message, parted by an empty line.
QString wordsOf(const ChatMessage& message)
{
    QStringList texts;
    for (const ChatBlock& block : message.blocks) {
        if (const auto* text = std::get_if<ChatTextBlock>(&block))
            texts.append(text->text);
    }
    return texts.join(QStringLiteral("\n\n"));
}

double drawTurnText(ChatCanvas& canvas, const ChatMessage& message, const QPointF& at, double width)
{
    const Tokens& tokens = canvas.tokens();
    const QString key = message.id + QStringLiteral("/turn");
    const ClippedText clipped =
        ClippedText::of(wordsOf(message), TurnLines, canvas.style().isOn(key));
    ChatText text;
    text.text = clipped.shown;
    text.role = TextRole::ChatUser;
    text.ink = tokens.label;
    text.separator = QStringLiteral("\n\n");
    const double side = canvas.u(TurnSide);
    const double most = std::floor(width * TurnShare) - 2 * side;
    const double words = std::min(most, canvas.naturalWidth(text));
    const QPointF corner(at.x() + width - words - side, at.y() + canvas.u(TurnTop));

    ChatCanvas inner(canvas.style());
    double height = inner.text(text, corner, words + 0.5);
    if (!clipped.button.isEmpty())
        height += drawMore(inner, clipped.button, key, corner + QPointF(0, height));
    const QRectF card(corner.x() - side, at.y(), words + 2 * side, height + 2 * canvas.u(TurnTop));
    canvas.fill(card, canvas.u(Measure::CardRadius), tokens.tint);
    canvas.add(inner.take(height));
    return card.height();
}

} // namespace

double drawBanner(ChatCanvas& canvas, const QStringList& parts, const QPointF& at, double width)
{
    const double height = canvas.u(Row);
    const QString words = parts.join(QStringLiteral("  ·  "));
    const double icon = canvas.u(Measure::CaptionIcon);
    const double gap = canvas.u(IconGap);
    const double text = std::min(canvas.width(TextRole::Caption, words), width - icon - gap);
    const double left = at.x() + std::round((width - text - icon - gap) / 2);
    const QRectF row(at, QSizeF(width, height));
    canvas.symbol(square(row, left, icon), QString::fromLatin1(Icon::Mark), canvas.tokens().ink3);
    canvas.line(TextRole::Caption, canvas.tokens().ink3, words,
                {left + icon + gap, at.y(), text + 1, height});
    return height;
}

double drawUserTurn(ChatCanvas& canvas, const ChatMessage& message, const QPointF& at, double width)
{
    double top = 0;
    if (!wordsOf(message).isEmpty())
        top += drawTurnText(canvas, message, at, width);
    for (const ChatBlock& block : message.blocks) {
        const auto* image = std::get_if<ChatImageBlock>(&block);
        if (image == nullptr)
            continue;
        top += top > 0 ? canvas.u(6) : 0;
        // Drawn at the left first: its width is known only then.
        ChatCanvas inner(canvas.style());
        const double height = ImageScene::draw(inner, image->image, image->id, {0, 0}, width);
        ChatScene scene = inner.take(height);
        const double reach = scene.fills.empty() ? 0 : scene.fills.front().rect.width();
        canvas.add(std::move(scene), {at.x() + width - reach, at.y() + top});
        top += height;
    }
    return top;
}

double drawNotice(ChatCanvas& canvas, const ChatMessage& message, const QPointF& at, double width)
{
    const Tokens& tokens = canvas.tokens();
    const QString key = message.id + QStringLiteral("/notice");
    const bool isWhole = canvas.style().isOn(key);
    const QString words = wordsOf(message);
    const ChatNotice::Shown shown =
        ChatNotice::shown(words, isWhole ? ChatNotice::Extent::Whole : ChatNotice::Extent::Folded);
    const bool canFold = isWhole ? ChatNotice::shown(words).foldedLines > 0 : shown.foldedLines > 0;
    const double icon = canvas.u(Measure::TabIcon);
    const double line = canvas.lineHeight(TextRole::Secondary);
    const double padding = canvas.u(4);
    canvas.symbol({at.x() + 1, at.y() + padding + (line - icon) / 2, icon, icon},
                  QStringLiteral("info.circle"), tokens.ink3);
    ChatText text;
    text.text = shown.text;
    text.role = TextRole::Secondary;
    text.ink = tokens.ink2;
    text.separator = QStringLiteral("\n\n");
    const double left = canvas.u(Measure::RowIcon + IconGap);
    double top = padding;
    top += canvas.text(text, at + QPointF(left, top), width - left);
    if (canFold) {
        const qsizetype lines = shown.text.count(u'\n') + 1 + shown.foldedLines;
        top += drawMore(canvas,
                        isWhole ? QStringLiteral("Show less")
                                : QStringLiteral("Show more (%1 lines)").arg(lines),
                        key, at + QPointF(left, top));
    }
    return top + padding;
}

double drawThinking(ChatCanvas& canvas, const ChatThinkingBlock& block, const QString& title,
                    bool isThinking, const QPointF& at, double width)
{
    const Tokens& tokens = canvas.tokens();
    const bool canOpen = !block.text.trimmed().isEmpty();
    const bool isOpen = canOpen && canvas.style().isOn(block.id);
    const double icon = canvas.u(Measure::RowIcon);
    const double arrow = canvas.u(Measure::TabIcon);
    const double inset = isOpen ? canvas.u(TurnSide) : 0;
    const QRectF frame(at, QSizeF(width, canvas.u(isOpen ? Head : Row)));
    const QRectF row = frame.adjusted(inset, 0, isOpen ? -canvas.u(10) : 0, 0);

    ChatCanvas inner(canvas.style());
    if (isThinking)
        inner.mark(square(row, row.left() + 1, arrow), ChatToolStatus::Running);
    else
        inner.symbol(square(row, row.left(), icon), QStringLiteral("brain"), tokens.ink2);
    const double left = row.left() + icon + canvas.u(IconGap);
    inner.line(TextRole::Body, tokens.ink2, title,
               {left, row.top(), row.right() - left - arrow, row.height()});
    double height = frame.height();
    if (canOpen) {
        inner.symbol(square(row, row.right() - arrow, arrow),
                     isOpen ? QStringLiteral("chevron.down") : QStringLiteral("chevron.right"),
                     tokens.ink4);
        const double beyond = isOpen ? 0 : canvas.u(8);
        inner.hot({frame.adjusted(-beyond, 0, beyond, 0),
                   {ChatAction::Kind::Toggle, block.id, {}},
                   title,
                   canvas.u(isOpen ? Measure::CardRadius : Measure::PaneRadius),
                   !isOpen});
    }
    if (isOpen) {
        ChatText text =
            inner.styled(ChatInline::runs(block.text.trimmed()), TextRole::Body, tokens.ink2);
        text.separator = QStringLiteral("\n\n");
        const double side = canvas.u(14);
        height += canvas.u(8);
        height += inner.text(text, at + QPointF(side, height), width - 2 * side);
        height += canvas.u(10);
        canvas.fill({at, QSizeF(width, height)}, canvas.u(Measure::CardRadius), tokens.raised,
                    tokens.separator);
        canvas.fill({at.x() + 1, frame.bottom() - 1, width - 2, 1}, 0, tokens.separatorFaint);
    }
    canvas.add(inner.take(height));
    return height;
}

double drawWorking(ChatCanvas& canvas, const ChatWorkingRow& row, const QPointF& at, double width)
{
    const Tokens& tokens = canvas.tokens();
    if (row.kind == ChatWorkingRow::Kind::Busy) {
        const QRectF frame(at, QSizeF(width, canvas.u(Row)));
        const double mark = canvas.u(Measure::TabIcon);
        canvas.mark(square(frame, frame.left() + 1, mark), ChatToolStatus::Running);
        canvas.line(TextRole::Body, tokens.ink2, row.text,
                    frame.adjusted(canvas.u(Measure::RowIcon + IconGap), 0, 0, 0));
        return frame.height();
    }
    const double side = canvas.u(TurnSide);
    const double icon = canvas.u(Measure::RowIcon);
    const double left = side + icon + canvas.u(9);
    ChatText text;
    text.text = row.text;
    text.role = TextRole::Body;
    text.ink = tokens.label;
    ChatCanvas inner(canvas.style());
    const double padding = canvas.u(6);
    const double words = inner.text(text, at + QPointF(left, padding), width - left - side);
    const double line = canvas.lineHeight(TextRole::Body);
    inner.symbol({at.x() + side, at.y() + padding + (line - icon) / 2, icon, icon},
                 QStringLiteral("exclamationmark.triangle.fill"), tokens.failed);
    const QRectF card(at, QSizeF(width, words + 2 * padding));
    canvas.fill(card, canvas.u(Measure::CardRadius), tokens.raised, tokens.separator);
    canvas.add(inner.take(card.height()));
    return card.height();
}

} // namespace Bralto::RowScene
