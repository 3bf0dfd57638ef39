#include "Views/Chat/ToolScene.h"

#include "Chat/ChatRowItems.h"
#include "Chat/LineDiff.h"
#include "Views/Chat/ToolBodyScene.h"

namespace Bralto::ToolScene {

namespace {

constexpr double Row = 28;
constexpr double Head = 34;
constexpr double HeadLeft = 12;
constexpr double HeadRight = 10;
constexpr double Beyond = 8;
constexpr double IconGap = 8;
constexpr double WordGap = 8;
constexpr double ChildIndent = 34;
constexpr double ChildPadding = 4;
constexpr double ArrowGap = 8;

/// What a row says, whoever it belongs to.
struct RowWords {
    QString symbol;
    QString verb;
    QString object;
    bool isCode = false;
    QString detail;
    LineDiff::Stats stats;
    ChatToolStatus status = ChatToolStatus::Done;
};

/// Where a row lies and how it behaves.
struct RowFrame {
    QRectF rect; ///< Of the words: between the paddings.
    QRectF hit;
    QString toggles; ///< Empty for a row that can't be opened.
    bool isOpen = false;
};

RowWords wordsOf(const ChatToolCall& call, const ChatSubagent* agent)
{
    const ToolPresentation shown = ToolPresentation::of(call);
    RowWords words{shown.symbol,
                   shown.verb,
                   shown.object,
                   shown.isCode,
                   ToolDetails::count(call, agent),
                   {},
                   agent != nullptr ? agent->status : call.status};
    if (!call.edits.isEmpty())
        words.stats = LineDiff::stats(LineDiff::lines(call.edits));
    return words;
}

/// The numbers of added and removed lines, right of which `right` is; the new right end.
double drawStats(ChatCanvas& canvas, const LineDiff::Stats& stats, double right, const QRectF& row)
{
    const auto number = [&](const QString& text, const QColor& ink) {
        const double width = canvas.width(TextRole::Secondary, text);
        right -= width;
        canvas.line(TextRole::Secondary, ink, text, {right, row.top(), width, row.height()});
        right -= canvas.u(7);
    };
    if (stats.removed > 0)
        number(u'−' + QString::number(stats.removed), canvas.tokens().failed);
    if (stats.added > 0)
        number(u'+' + QString::number(stats.added), canvas.tokens().done);
    return right;
}

void drawRow(ChatCanvas& canvas, const RowWords& words, const RowFrame& frame)
{
    const Tokens& tokens = canvas.tokens();
    const QRectF& row = frame.rect;
    const auto square = [&](double left, double side) {
        return QRectF(left, row.center().y() - side / 2, side, side);
    };

    double right = row.right() - canvas.u(Measure::TabIcon);
    canvas.mark(square(right, canvas.u(Measure::TabIcon)), words.status);
    right -= canvas.u(ArrowGap);
    if (!frame.toggles.isEmpty()) {
        right -= canvas.u(Measure::TabIcon);
        canvas.symbol(square(right, canvas.u(Measure::TabIcon)),
                      frame.isOpen ? QStringLiteral("chevron.down")
                                   : QStringLiteral("chevron.right"),
                      tokens.ink4);
        right -= canvas.u(ArrowGap);
    }
    right = drawStats(canvas, words.stats, right, row);
    if (!words.detail.isEmpty()) {
        const double width = canvas.width(TextRole::Secondary, words.detail);
        right -= width;
        canvas.line(TextRole::Secondary, tokens.ink3, words.detail,
                    {right, row.top(), width, row.height()});
        right -= canvas.u(WordGap);
    }

    const double icon = canvas.u(Measure::RowIcon);
    canvas.symbol(square(row.left(), icon), words.symbol, tokens.ink2);
    double left = row.left() + icon + canvas.u(IconGap);
    left += canvas.line(TextRole::Body, tokens.ink2, words.verb,
                        {left, row.top(), std::max(0.0, right - left), row.height()});
    left += canvas.u(WordGap);
    if (!words.object.isEmpty() && left < right) {
        canvas.line(words.isCode ? TextRole::CodeCommand : TextRole::Body, tokens.label,
                    words.object, {left, row.top(), right - left, row.height()});
    }
    if (!frame.toggles.isEmpty()) {
        QString name = words.object.isEmpty() ? words.verb : words.verb + u' ' + words.object;
        canvas.hot({frame.hit,
                    {ChatAction::Kind::Toggle, frame.toggles, {}},
                    name + QStringLiteral(", ") + ToolDetails::statusName(words.status),
                    canvas.u(frame.isOpen ? Measure::CardRadius : Measure::PaneRadius),
                    !frame.isOpen});
    }
}

/// A folded row in the column; its height.
double drawFolded(ChatCanvas& canvas, const RowWords& words, const QString& toggles,
                  const QPointF& at, double width)
{
    const QRectF row(at, QSizeF(width, canvas.u(Row)));
    const double beyond = canvas.u(Beyond);
    drawRow(canvas, words, {row, row.adjusted(-beyond, 0, beyond, 0), toggles, false});
    return row.height();
}

/// A card with the row as its head and what `body` draws below it.
template <typename Body>
double drawCard(ChatCanvas& canvas, const RowWords& words, const QString& toggles,
                const QPointF& at, double width, Body body)
{
    const Tokens& tokens = canvas.tokens();
    const QRectF head(at, QSizeF(width, canvas.u(Head)));
    ChatCanvas inner(canvas.style());
    drawRow(inner, words,
            {head.adjusted(canvas.u(HeadLeft), 0, -canvas.u(HeadRight), 0), head, toggles, true});
    const double height = head.height() + body(inner, QPointF(at.x(), head.bottom()));
    const QRectF card(at, QSizeF(width, height));
    canvas.fill(card, canvas.u(Measure::CardRadius), tokens.raised, tokens.separator);
    if (height > head.height())
        canvas.fill({head.left() + 1, head.bottom() - 1, width - 2, 1}, 0, tokens.separatorFaint);
    canvas.add(inner.take(height));
    return height;
}

/// A call inside another card: its row, and its details below it if it is open.
double drawChild(ChatCanvas& canvas, const ChatToolCall& call, const FindAgent& findAgent,
                 const QPointF& at, double width)
{
    const ChatSubagent* agent = findAgent ? findAgent(call.id) : nullptr;
    const bool canOpen = ToolDetails::canOpen(call, agent);
    const bool isOpen = canOpen && canvas.style().isOn(call.id);
    const QRectF row(at.x() + canvas.u(ChildIndent), at.y(),
                     width - canvas.u(ChildIndent + HeadRight), canvas.u(Row));
    const QRectF hit = row.adjusted(-canvas.u(6), 0, canvas.u(6), 0);
    drawRow(canvas, wordsOf(call, agent), {row, hit, canOpen ? call.id : QString(), isOpen});
    if (!isOpen)
        return row.height();
    return row.height() + ToolBodyScene::draw(canvas, call,
                                              {row.left() - canvas.u(14), row.bottom()},
                                              row.width() + canvas.u(14));
}

double drawAgentCalls(ChatCanvas& canvas, const ChatSubagent& agent, const FindAgent& findAgent,
                      const QPointF& at, double width)
{
    double top = canvas.u(ChildPadding);
    for (const ChatToolCall* call : ToolDetails::calls(agent))
        top += drawChild(canvas, *call, findAgent, at + QPointF(0, top), width);
    return top + canvas.u(ChildPadding);
}

} // namespace

double drawCall(ChatCanvas& canvas, const ChatToolCall& call, const FindAgent& findAgent,
                const QPointF& at, double width)
{
    const ChatSubagent* agent = findAgent ? findAgent(call.id) : nullptr;
    const RowWords words = wordsOf(call, agent);
    if (!ToolDetails::canOpen(call, agent))
        return drawFolded(canvas, words, {}, at, width);
    if (!canvas.style().isOn(call.id))
        return drawFolded(canvas, words, call.id, at, width);
    return drawCard(canvas, words, call.id, at, width, [&](ChatCanvas& inner, QPointF below) {
        double height = 0;
        if (agent != nullptr)
            height += drawAgentCalls(inner, *agent, findAgent, below, width);
        return height + ToolBodyScene::draw(inner, call, below + QPointF(0, height), width);
    });
}

double drawGroup(ChatCanvas& canvas, const QString& id, std::span<const ChatBlock> blocks,
                 const FindAgent& findAgent, const QPointF& at, double width)
{
    const auto& first = std::get<ChatToolCall>(blocks.front());
    RowWords words;
    words.symbol = ToolPresentation::of(first).symbol;
    words.verb = ChatRowItems::groupTitle(first.name, qsizetype(blocks.size()));
    words.status = groupStatus(blocks);
    if (!canvas.style().isOn(id))
        return drawFolded(canvas, words, id, at, width);
    return drawCard(canvas, words, id, at, width, [&](ChatCanvas& inner, QPointF below) {
        double top = inner.u(ChildPadding);
        for (const ChatBlock& block : blocks) {
            top += drawChild(inner, std::get<ChatToolCall>(block), findAgent,
                             below + QPointF(0, top), width);
        }
        return top + inner.u(ChildPadding);
    });
}

ChatToolStatus groupStatus(std::span<const ChatBlock> blocks)
{
    ChatToolStatus status = ChatToolStatus::Done;
    for (const ChatBlock& block : blocks) {
        const ChatToolStatus each = std::get<ChatToolCall>(block).status;
        if (each == ChatToolStatus::Running)
            return each;
        if (each == ChatToolStatus::Failed)
            status = each;
    }
    return status;
}

} // namespace Bralto::ToolScene
