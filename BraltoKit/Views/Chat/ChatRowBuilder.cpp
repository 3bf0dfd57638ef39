#include "Views/Chat/ChatRowBuilder.h"

#include "Views/Chat/ImageScene.h"
#include "Views/Chat/MarkdownScene.h"
#include "Views/Chat/RowScene.h"
#include "Views/Chat/ToolScene.h"

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

ChatRowLayout ChatRowBuilder::buildReply(const ChatRow& row) const
{
    const auto& text = std::get<ChatTextBlock>(row.blocks.front());
    const std::vector<MarkdownBlock> blocks = MarkdownParser::blocks(text.text);
    ChatCanvas canvas(m_style);
    const double room = std::round(canvas.u(RowGap + margin(row, false)));

    ChatRowLayout layout;
    double top = room;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (i > 0)
            top += canvas.u(MarkdownScene::gap(blocks[i - 1], blocks[i]));
        top = std::round(top);
        std::shared_ptr<const ChatScene> scene;
        if (row.layout && i < row.layout->parts.size()) {
            const ChatRowLayout::Part& old = row.layout->parts[i];
            if (old.isPlain && old.block == blocks[i])
                scene = old.scene;
        }
        if (!scene) {
            const double height =
                MarkdownScene::draw(canvas, blocks[i], {}, m_width,
                                    text.id + u'/' + QString::number(i), m_style.tokens.label);
            scene = std::make_shared<const ChatScene>(canvas.take(height));
        }
        const double height = scene->height;
        layout.parts.push_back({top, std::move(scene), blocks[i], isPlain(blocks[i])});
        top += height;
    }
    if (row.isStreaming && !layout.parts.empty()) {
        const ChatRowLayout::Part& last = layout.parts.back();
        layout.caret = last.scene->caretAfterLastText(m_style.zoom).translated(0, last.top);
    }
    layout.height = std::ceil(top + room);
    return layout;
}

} // namespace Bralto
