#include "Views/Chat/ChatRows.h"

#include <QHash>

#include <algorithm>
#include <cmath>

namespace Bralto {

namespace {

constexpr double PlainRow = 32;
constexpr double TextLine = 22;
constexpr double LetterWidth = 7;

/// A guess that is good enough to scroll by until the row is laid out.
double estimate(const ChatRow& row, double width)
{
    qsizetype letters = 0;
    qsizetype breaks = 0;
    for (const ChatBlock& block : row.blocks) {
        if (const auto* text = std::get_if<ChatTextBlock>(&block)) {
            letters += text->text.size();
            breaks += text->text.count(u'\n');
        }
    }
    const double lines = double(letters) * LetterWidth / std::max(100.0, width);
    const double height = PlainRow + TextLine * std::max(lines, double(breaks) * 0.8);
    switch (row.kind) {
    case ChatRow::Kind::Turn:
    case ChatRow::Kind::Reply:
    case ChatRow::Kind::Notice:
        return std::ceil(height);
    default:
        return PlainRow;
    }
}

ChatRow::Kind kindOf(const ChatMessage& message, const ChatRowItem& item)
{
    if (item.isGroup())
        return ChatRow::Kind::Group;
    const ChatBlock& block = message.blocks[item.first];
    if (std::holds_alternative<ChatToolCall>(block))
        return ChatRow::Kind::Call;
    if (std::holds_alternative<ChatThinkingBlock>(block))
        return ChatRow::Kind::Thinking;
    return std::holds_alternative<ChatImageBlock>(block) ? ChatRow::Kind::Image
                                                         : ChatRow::Kind::Reply;
}

} // namespace

std::optional<ChatStretch> differenceOf(const ChatRowLayout& before, const ChatRowLayout& after)
{
    const auto isSame = [](const ChatRowLayout::Part& left, const ChatRowLayout::Part& right) {
        return left.scene == right.scene && left.top == right.top;
    };
    const auto [old, now] = std::ranges::mismatch(before.parts, after.parts, isSame);
    std::optional<ChatStretch> stretch;
    const auto add = [&stretch](double top, double bottom) {
        stretch = stretch
                      ? ChatStretch{std::min(stretch->top, top), std::max(stretch->bottom, bottom)}
                      : ChatStretch{top, bottom};
    };
    const auto addParts = [&add](auto part, auto end) {
        for (; part != end; ++part)
            add(part->top, part->top + part->scene->height);
    };
    addParts(old, before.parts.end());
    addParts(now, after.parts.end());
    if (before.height != after.height)
        add(std::min(before.height, after.height), std::max(before.height, after.height));
    if (before.caret != after.caret) {
        for (const QRectF& caret : {before.caret, after.caret}) {
            if (!caret.isEmpty())
                add(caret.top(), caret.bottom());
        }
    }
    return stretch;
}

double ChatRows::height() const
{
    return m_rows.empty() ? 0 : m_rows.back().top + m_rows.back().height;
}

std::vector<ChatRow> ChatRows::rowsOf(const ChatMessage& message, std::size_t index) const
{
    std::vector<ChatRow> rows;
    const auto add = [&](ChatRow::Kind kind, const QString& id, qsizetype first, qsizetype count) {
        ChatRow row;
        row.kind = kind;
        row.id = id;
        row.message = index;
        row.first = first;
        row.count = count;
        row.blocks = message.blocks.mid(first, count);
        row.isStreaming = message.isStreaming && first + count == message.blocks.size();
        rows.push_back(std::move(row));
    };
    if (message.role == ChatRole::User) {
        add(ChatRow::Kind::Turn, message.id, 0, message.blocks.size());
    } else if (message.role == ChatRole::System) {
        add(ChatRow::Kind::Notice, message.id, 0, message.blocks.size());
    } else {
        for (const ChatRowItem& item : ChatRowItems::items(message.blocks))
            add(kindOf(message, item), item.id, item.first, item.count);
    }
    return rows;
}

void ChatRows::reset(const ChatTranscript& transcript, bool hasBanner, double width)
{
    m_rows.clear();
    m_starts.clear();
    m_ids.clear();
    m_hasBanner = false;
    const bool hadWorking = std::exchange(m_hasWorking, false);
    for (std::size_t i = 0; i < transcript.messages.size(); ++i) {
        m_starts.push_back(m_rows.size());
        m_ids.push_back(transcript.messages[i].id);
        for (ChatRow& row : rowsOf(transcript.messages[i], i)) {
            row.height = estimate(row, width);
            m_rows.push_back(std::move(row));
        }
    }
    m_unsettled = 0;
    setBanner(hasBanner);
    setWorking(hadWorking);
}

void ChatRows::setBanner(bool shows)
{
    if (shows == m_hasBanner)
        return;
    m_hasBanner = shows;
    if (shows) {
        ChatRow banner;
        banner.kind = ChatRow::Kind::Banner;
        banner.height = PlainRow;
        m_rows.insert(m_rows.begin(), std::move(banner));
    } else {
        m_rows.erase(m_rows.begin());
    }
    for (std::size_t& start : m_starts)
        start = shows ? start + 1 : start - 1;
    m_unsettled = 0;
}

void ChatRows::setWorking(bool shows)
{
    if (shows == m_hasWorking) {
        if (shows)
            invalidate(m_rows.size() - 1);
        return;
    }
    m_hasWorking = shows;
    if (shows) {
        ChatRow working;
        working.kind = ChatRow::Kind::Working;
        working.height = PlainRow;
        m_rows.push_back(std::move(working));
        m_unsettled = std::min(m_unsettled, m_rows.size() - 1);
    } else {
        m_rows.pop_back();
    }
}

bool ChatRows::apply(const ChatTranscript& transcript, const ChatTranscriptChange& change,
                     double width)
{
    const std::size_t known = m_ids.size();
    if (change.messageList || transcript.messages.size() != known) {
        bool isAppended = transcript.messages.size() >= known;
        for (std::size_t i = 0; isAppended && i < known; ++i)
            isAppended = transcript.messages[i].id == m_ids[i];
        if (!isAppended) {
            std::vector<ChatRow> old = std::move(m_rows);
            reset(transcript, m_hasBanner, width);
            QHash<QString, ChatRow*> byId;
            for (ChatRow& row : old)
                byId.insert(row.id, &row);
            for (ChatRow& row : m_rows) {
                ChatRow* same = row.id.isEmpty() ? nullptr : byId.value(row.id);
                if (same != nullptr && same->blocks == row.blocks) {
                    row.layout = std::move(same->layout);
                    row.height = same->height;
                    row.isMeasured = same->isMeasured;
                }
            }
            return false;
        }
    }
    for (const std::size_t message : change.messages) {
        if (message < known)
            syncMessage(transcript, message, width);
    }
    for (std::size_t i = known; i < transcript.messages.size(); ++i) {
        m_ids.push_back(transcript.messages[i].id);
        m_starts.push_back(m_rows.size() - (m_hasWorking ? 1 : 0));
        syncMessage(transcript, i, width);
    }
    if (change.subagents) {
        for (std::size_t i = 0; i < m_rows.size(); ++i) {
            const auto* call = m_rows[i].kind == ChatRow::Kind::Call
                                   ? std::get_if<ChatToolCall>(&m_rows[i].blocks.front())
                                   : nullptr;
            if (call != nullptr &&
                (call->name == QLatin1String("Task") || call->name == QLatin1String("Agent")))
                invalidate(i);
        }
    }
    return true;
}

void ChatRows::syncMessage(const ChatTranscript& transcript, std::size_t message, double width)
{
    const std::size_t first = m_starts[message];
    const std::size_t last = message + 1 < m_starts.size() ? m_starts[message + 1]
                                                           : m_rows.size() - (m_hasWorking ? 1 : 0);
    std::vector<ChatRow> rows = rowsOf(transcript.messages[message], message);
    for (ChatRow& row : rows) {
        const auto same = std::find_if(
            m_rows.begin() + std::ptrdiff_t(first), m_rows.begin() + std::ptrdiff_t(last),
            [&](const ChatRow& each) { return each.id == row.id && each.kind == row.kind; });
        if (same == m_rows.begin() + std::ptrdiff_t(last)) {
            row.height = estimate(row, width);
            continue;
        }
        row.top = same->top;
        row.height = same->height;
        row.layout = std::move(same->layout);
        row.isMeasured =
            same->isMeasured && same->blocks == row.blocks && same->isStreaming == row.isStreaming;
    }
    replace(first, last, std::move(rows), message);
}

void ChatRows::replace(std::size_t first, std::size_t last, std::vector<ChatRow> rows,
                       std::size_t message)
{
    const auto grown = std::ptrdiff_t(rows.size()) - std::ptrdiff_t(last - first);
    const std::size_t common = std::min(rows.size(), last - first);
    std::move(rows.begin(), rows.begin() + std::ptrdiff_t(common),
              m_rows.begin() + std::ptrdiff_t(first));
    if (grown > 0) {
        m_rows.insert(m_rows.begin() + std::ptrdiff_t(last),
                      std::make_move_iterator(rows.begin() + std::ptrdiff_t(common)),
                      std::make_move_iterator(rows.end()));
    } else if (grown < 0) {
        m_rows.erase(m_rows.begin() + std::ptrdiff_t(first + common),
                     m_rows.begin() + std::ptrdiff_t(last));
    }
    for (std::size_t i = message + 1; i < m_starts.size(); ++i)
        m_starts[i] = std::size_t(std::ptrdiff_t(m_starts[i]) + grown);
    m_unsettled = std::min(m_unsettled, first);
}

void ChatRows::invalidate(std::size_t index)
{
    ChatRow& row = m_rows[index];
    row.isMeasured = false;
    if (!row.layout)
        return;
    // The old layout still tells what has to be painted. What depends on the view's state is made
    // anew.
    for (ChatRowLayout::Part& part : row.layout->parts) {
        if (!part.isPlain)
            part.block.reset();
    }
}

void ChatRows::invalidateAll()
{
    for (ChatRow& row : m_rows) {
        row.isMeasured = false;
        row.layout.reset();
    }
}

void ChatRows::keepLayouts(std::size_t first, std::size_t last)
{
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (i < first || i >= last)
            m_rows[i].layout.reset();
    }
}

void ChatRows::setLayout(std::size_t index, ChatRowLayout layout)
{
    ChatRow& row = m_rows[index];
    if (row.height != layout.height)
        m_unsettled = std::min(m_unsettled, index);
    row.height = layout.height;
    row.isMeasured = true;
    row.layout = std::move(layout);
}

std::optional<double> ChatRows::settle()
{
    std::optional<double> moved;
    double top = m_unsettled == 0 || m_rows.empty()
                     ? 0
                     : m_rows[m_unsettled - 1].top + m_rows[m_unsettled - 1].height;
    for (std::size_t i = m_unsettled; i < m_rows.size(); ++i) {
        if (!moved && m_rows[i].top != top)
            moved = top;
        m_rows[i].top = top;
        top += m_rows[i].height;
    }
    m_unsettled = m_rows.size();
    return moved;
}

std::size_t ChatRows::rowAt(double y) const
{
    const auto behind =
        std::upper_bound(m_rows.begin(), m_rows.end(), y,
                         [](double value, const ChatRow& row) { return value < row.top; });
    return behind == m_rows.begin() ? 0 : std::size_t(behind - m_rows.begin()) - 1;
}

} // namespace Bralto
