#include "Views/Chat/ToolBodyScene.h"

#include "Chat/ClippedText.h"
#include "Chat/LineDiff.h"
#include "Chat/ToolPresentation.h"
#include "Views/Chat/ImageScene.h"

namespace Bralto::ToolBodyScene {

namespace {

constexpr double Side = 14;
constexpr double Top = 8;
constexpr double Bottom = 10;
constexpr double SectionGap = 8;
constexpr double LabelGap = 2;
constexpr double SignColumn = 30;
constexpr double DiffPadding = 5;
constexpr double MoreHeight = 24;
constexpr double PictureHeight = 160;
constexpr qsizetype ResultLines = 12;
constexpr qsizetype InputLines = 12;

/// "Show more" and its like; its height.
double drawMore(ChatCanvas& canvas, const QString& words, const QString& key, const QPointF& at)
{
    const double width = canvas.width(TextRole::SecondaryMedium, words);
    const QRectF rect(at, QSizeF(width, canvas.u(MoreHeight)));
    canvas.line(TextRole::SecondaryMedium, canvas.tokens().accentInk, words, rect);
    const double reach = canvas.u(6);
    canvas.hot({rect.adjusted(-reach, canvas.u(1), reach, -canvas.u(1)),
                {ChatAction::Kind::Toggle, key, {}},
                words,
                double(Measure::ControlRadius)});
    return rect.height();
}

double drawDifference(ChatCanvas& canvas, const ChatToolCall& call, const QPointF& at, double width)
{
    const Tokens& tokens = canvas.tokens();
    const QString key = call.id + QStringLiteral("/diff");
    const std::vector<LineDiff::Line> lines = LineDiff::lines(call.edits);
    const auto count = qsizetype(lines.size());
    const bool showsAll = canvas.style().isOn(key);
    const qsizetype shown = LineDiff::shownLines(count, showsAll);
    const double sign = canvas.u(SignColumn);
    const double left = at.x() + 1;
    const double right = at.x() + width - 1;

    double top = at.y() + canvas.u(DiffPadding);
    for (qsizetype i = 0; i < shown; ++i) {
        const LineDiff::Line& line = lines[std::size_t(i)];
        ChatText text;
        text.text = line.text;
        text.role = TextRole::CodeDifference;
        text.ink = tokens.label;
        text.breaksAnywhere = true;
        ChatCanvas inner(canvas.style());
        const double height = inner.text(text, {at.x() + sign, top}, width - sign - canvas.u(12));
        if (line.kind != LineDiff::Kind::Same) {
            const bool isAdded = line.kind == LineDiff::Kind::Added;
            canvas.fill({left, top, right - left, height}, 0,
                        isAdded ? tokens.addedLine : tokens.removedLine);
            canvas.line(TextRole::CodeDifference, isAdded ? tokens.done : tokens.failed,
                        isAdded ? QStringLiteral("+") : QStringLiteral("-"),
                        {at.x(), top, sign * 0.9, canvas.lineHeight(TextRole::CodeDifference)},
                        Qt::ElideRight, Qt::AlignHCenter);
        }
        canvas.add(inner.take(height));
        top += height;
    }
    if (LineDiff::canShowAll(count)) {
        top += canvas.u(2);
        top += drawMore(canvas,
                        showsAll ? QStringLiteral("Show less")
                                 : QStringLiteral("Show all %1 lines").arg(count),
                        key, {at.x() + canvas.u(Side), top});
    }
    return top + canvas.u(DiffPadding) - at.y();
}

double drawClipped(ChatCanvas& canvas, const QString& label, const QColor& labelInk,
                   const QString& text, const QColor& ink, qsizetype limit, const QString& key,
                   const QPointF& at, double width)
{
    const ClippedText clipped = ClippedText::of(text, limit, canvas.style().isOn(key));
    double top = 0;
    const double labelHeight = canvas.lineHeight(TextRole::CaptionStrong);
    canvas.line(TextRole::CaptionStrong, labelInk, label, {at, QSizeF(width, labelHeight)});
    top += labelHeight + canvas.u(LabelGap);
    ChatText body;
    body.text = clipped.shown;
    body.role = TextRole::CodeCommand;
    body.ink = ink;
    body.breaksAnywhere = true;
    body.separator = QStringLiteral("\n\n");
    top += canvas.text(body, at + QPointF(0, top), width);
    if (!clipped.button.isEmpty()) {
        top += canvas.u(2);
        top += drawMore(canvas, clipped.button, key, at + QPointF(0, top));
    }
    return top;
}

/// The input and the outcome, one below the other.
double drawTexts(ChatCanvas& canvas, const ChatToolCall& call, const QPointF& at, double width)
{
    const Tokens& tokens = canvas.tokens();
    const double inner = width - 2 * canvas.u(Side);
    const QPointF left = at + QPointF(canvas.u(Side), 0);
    double top = canvas.u(Top);
    bool isFirst = true;
    const auto section = [&](const QString& label, const QColor& labelInk, const QString& text,
                             const QColor& ink, qsizetype limit, const QString& part) {
        if (text.isEmpty())
            return;
        if (!isFirst)
            top += canvas.u(SectionGap);
        isFirst = false;
        top += drawClipped(canvas, label, labelInk, text, ink, limit, call.id + part,
                           left + QPointF(0, top), inner);
    };
    section(QStringLiteral("Input"), tokens.ink2, ToolDetails::input(call), tokens.label,
            InputLines, QStringLiteral("/input"));
    const bool hasFailed = call.status == ChatToolStatus::Failed;
    section(hasFailed ? QStringLiteral("Error") : QStringLiteral("Result"),
            hasFailed ? tokens.failed : tokens.ink2, call.resultText.value_or(QString()),
            tokens.ink2, ResultLines, QStringLiteral("/result"));
    return isFirst ? 0 : top + canvas.u(Bottom);
}

} // namespace

double draw(ChatCanvas& canvas, const ChatToolCall& call, const QPointF& at, double width)
{
    double top = 0;
    const bool showsDifference = !call.edits.isEmpty();
    if (showsDifference)
        top += drawDifference(canvas, call, at, width);
    if (!showsDifference || call.status == ChatToolStatus::Failed)
        top += drawTexts(canvas, call, at + QPointF(0, top), width);
    for (qsizetype i = 0; i < call.resultImages.size(); ++i) {
        top += canvas.u(Top);
        top += ImageScene::draw(
            canvas, call.resultImages[i], call.id + QStringLiteral("/image-") + QString::number(i),
            at + QPointF(canvas.u(Side), top), width - 2 * canvas.u(Side), PictureHeight);
    }
    return call.resultImages.isEmpty() ? top : top + canvas.u(Bottom);
}

} // namespace Bralto::ToolBodyScene
