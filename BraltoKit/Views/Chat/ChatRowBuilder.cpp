#include "Views/Chat/ChatRowBuilder.h"

#include "Views/Chat/ImageScene.h"
#include "Views/Chat/MarkdownScene.h"
#include "Views/Chat/RowScene.h"
#include "Views/Chat/ToolScene.h"

#include <algorithm>
#include <cmath>

namespace Bralto {

namespace {

/// Half of the room between rows.
constexpr double RowGap = 2;

/// The room that a row of a kind has above and below it beyond that.
double margin(const ChatRow& row, bool isCard)
{
    switch (row.kind) {
    case ChatRow::Kind::Turn:
        return 8;
    case ChatRow::Kind::Reply:
        return 6;
    case ChatRow::Kind::Banner:
    case ChatRow::Kind::Image:
        return 4;
    default:
        return isCard ? 3 : 0;
    }
}

/// Whether what is settled in an old layout of a reply holds for the new text too.
bool canKeep(const ChatRowLayout& old, const QString& text)
{
    return text.startsWith(QStringView(old.text).left(old.settled.length)) &&
           std::all_of(old.parts.begin(), old.parts.begin() + std::ptrdiff_t(old.settled.blocks),
                       [](const ChatRowLayout::Part& part) { return part.block.has_value(); });
}

/// Whether a part looks the same whatever the view's state: no buttons, no file that may appear.
bool isPlain(const MarkdownBlock& block)
{
    return !std::holds_alternative<MarkdownBlocks::Code>(block);
}

} // namespace

const ChatSubagent* ChatRowBuilder::findAgent(const QString& callId) const
{
    for (const ChatSubagent& agent : m_content.transcript.subagents) {
        if (agent.id == callId)
            return &agent;
    }
    return nullptr;
}

double ChatRowBuilder::draw(ChatCanvas& canvas, const ChatRow& row, const QPointF& at) const
{
    const auto agents = [this](const QString& id) { return findAgent(id); };
    switch (row.kind) {
    case ChatRow::Kind::Banner:
        return RowScene::drawBanner(canvas, m_content.banner, at, m_width);
    case ChatRow::Kind::Turn:
        return RowScene::drawUserTurn(canvas, m_content.transcript.messages[row.message], at,
                                      m_width);
    case ChatRow::Kind::Notice:
        return RowScene::drawNotice(canvas, m_content.transcript.messages[row.message], at,
                                    m_width);
    case ChatRow::Kind::Thinking: {
        const auto& block = std::get<ChatThinkingBlock>(row.blocks.front());
        const QString title =
            ChatThinkingTimes::title(row.isStreaming, m_content.thinking.seconds(block.id));
        return RowScene::drawThinking(canvas, block, title, row.isStreaming, at, m_width);
    }
    case ChatRow::Kind::Image: {
        const auto& block = std::get<ChatImageBlock>(row.blocks.front());
        return ImageScene::draw(canvas, block.image, block.id, at, m_width);
    }
    case ChatRow::Kind::Call:
        return ToolScene::drawCall(canvas, std::get<ChatToolCall>(row.blocks.front()), agents, at,
                                   m_width);
    case ChatRow::Kind::Group:
        return ToolScene::drawGroup(
            canvas, row.id, std::span(row.blocks.constData(), std::size_t(row.blocks.size())),
            agents, at, m_width);
    case ChatRow::Kind::Working:
        return m_content.working ? RowScene::drawWorking(canvas, *m_content.working, at, m_width)
                                 : 0;
    case ChatRow::Kind::Reply:
        break;
    }
    return 0;
}

ChatRowLayout ChatRowBuilder::build(const ChatRow& row) const
{
    if (row.kind == ChatRow::Kind::Reply)
        return buildReply(row);
    bool waitsForImages = false;
    ChatCanvasStyle style = m_style;
    style.findImage = [this, &waitsForImages](const QString& key, const ChatImage& image) {
        ChatPicture picture = m_style.findImage ? m_style.findImage(key, image) : ChatPicture{};
        waitsForImages |= picture.state == ChatPicture::State::Loading;
        return picture;
    };
    ChatCanvas canvas(style);
    const double height = draw(canvas, row, {});
    auto scene = std::make_shared<ChatScene>(canvas.take(height));

    ChatRowLayout layout;
    const bool isCard =
        std::any_of(scene->fills.begin(), scene->fills.end(),
                    [](const ChatScene::Fill& fill) { return fill.edge.isValid(); });
    const double room = std::round(canvas.u(RowGap + margin(row, isCard)));
    layout.hasSpinner = std::any_of(scene->marks.begin(), scene->marks.end(), [](const auto& mark) {
        return mark.status == ChatToolStatus::Running;
    });
    layout.waitsForImages = waitsForImages;
    layout.parts.push_back({room, std::move(scene), std::nullopt, false});
    layout.height = std::ceil(height + 2 * room);
    return layout;
}

/// A reply grows by a word at a time and can be a book, so only what may have changed since the
/// old layout is read again, and only what did change is laid out.
ChatRowLayout ChatRowBuilder::buildReply(const ChatRow& row) const
{
    const auto& text = std::get<ChatTextBlock>(row.blocks.front());
    ChatCanvas canvas(m_style);
    const double room = std::round(canvas.u(RowGap + margin(row, false)));
    static const std::vector<ChatRowLayout::Part> none;
    const std::vector<ChatRowLayout::Part>& old = row.layout ? row.layout->parts : none;

    ChatRowLayout layout;
    if (row.layout && canKeep(*row.layout, text.text)) {
        layout.settled = row.layout->settled;
        layout.parts.assign(old.begin(), old.begin() + std::ptrdiff_t(layout.settled.blocks));
    }
    std::vector<MarkdownBlock> blocks = MarkdownParser::blocksBehind(layout.settled, text.text);
    layout.text = text.text;
    for (MarkdownBlock& block : blocks) {
        const std::size_t index = layout.parts.size();
        double top = room;
        if (index > 0) {
            const ChatRowLayout::Part& above = layout.parts.back();
            top = std::round(above.top + above.scene->height +
                             canvas.u(MarkdownScene::gap(*above.block, block)));
        }
        std::shared_ptr<const ChatScene> scene;
        if (index < old.size() && old[index].block == block) {
            scene = old[index].scene;
        } else {
            const double height =
                MarkdownScene::draw(canvas, block, {}, m_width,
                                    text.id + u'/' + QString::number(index), m_style.tokens.label);
            scene = std::make_shared<const ChatScene>(canvas.take(height));
        }
        const bool plain = isPlain(block);
        layout.parts.push_back({top, std::move(scene), std::move(block), plain});
    }
    const double bottom =
        layout.parts.empty() ? room : layout.parts.back().top + layout.parts.back().scene->height;
    if (row.isStreaming && !layout.parts.empty()) {
        const ChatRowLayout::Part& last = layout.parts.back();
        layout.caret = last.scene->caretAfterLastText(m_style.zoom).translated(0, last.top);
    }
    layout.height = std::ceil(bottom + room);
    return layout;
}

} // namespace Bralto
