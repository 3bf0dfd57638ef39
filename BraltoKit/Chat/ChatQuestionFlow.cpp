#include "Chat/ChatQuestionFlow.h"

#include <algorithm>

namespace Bralto {

ChatQuestionFlow::ChatQuestionFlow(ChatQuestion question)
    : m_question(std::move(question))
{
}

const ChatQuestion::Item* ChatQuestionFlow::item() const
{
    return m_step < m_question.items.size() ? &m_question.items[m_step] : nullptr;
}

std::vector<ChatQuestionFlow::Row> ChatQuestionFlow::rows() const
{
    const ChatQuestion::Item* current = item();
    if (current == nullptr)
        return {};
    std::vector<Row> rows;
    for (qsizetype i = 0; i < current->options.size(); ++i)
        rows.push_back({Row::Kind::Option, i});
    rows.push_back({Row::Kind::Other, 0});
    if (current->multiSelect)
        rows.push_back({Row::Kind::Submit, 0});
    return rows;
}

std::optional<ChatQuestionFlow::Row> ChatQuestionFlow::highlightedRow() const
{
    const std::vector<Row> all = rows();
    if (all.empty())
        return std::nullopt;
    return all[std::min(std::size_t(m_highlight), all.size() - 1)];
}

bool ChatQuestionFlow::canAdvance() const
{
    return !m_picked.isEmpty() || !m_other.trimmed().isEmpty();
}

void ChatQuestionFlow::openOther()
{
    if (const ChatQuestion::Item* current = item()) {
        m_showsOther = true;
        m_highlight = current->options.size();
    }
}

void ChatQuestionFlow::setHighlight(qsizetype row)
{
    const auto count = qsizetype(rows().size());
    m_highlight = count > 0 ? std::clamp<qsizetype>(row, 0, count - 1) : 0;
}

ChatQuestionFlow::Outcome ChatQuestionFlow::choose(const QString& label)
{
    const ChatQuestion::Item* current = item();
    if (current == nullptr || m_isAnswered)
        return Outcome::NotTaken;
    if (!current->multiSelect) {
        m_picked = {label};
        return advance();
    }
    if (!m_picked.remove(label))
        m_picked.insert(label);
    return Outcome::Taken;
}

QString ChatQuestionFlow::answer() const
{
    QStringList parts;
    for (const ChatQuestion::Option& option : item()->options) {
        if (m_picked.contains(option.label))
            parts.append(option.label);
    }
    if (const QString own = m_other.trimmed(); !own.isEmpty())
        parts.append(own);
    return parts.join(QLatin1String(", "));
}

ChatQuestionFlow::Outcome ChatQuestionFlow::advance()
{
    const ChatQuestion::Item* current = item();
    if (current == nullptr || m_isAnswered)
        return Outcome::NotTaken;
    if (const QString text = answer(); !text.isEmpty())
        m_answers.insert(current->question, text);
    if (++m_step >= m_question.items.size()) {
        m_isAnswered = true;
        return Outcome::Finished;
    }
    m_picked.clear();
    m_other.clear();
    m_showsOther = false;
    m_highlight = 0;
    return Outcome::Taken;
}

ChatQuestionFlow::Outcome ChatQuestionFlow::activate(const Row& row)
{
    const ChatQuestion::Item* current = item();
    if (current == nullptr || m_isAnswered)
        return Outcome::NotTaken;
    switch (row.kind) {
    case Row::Kind::Option:
        return row.option < current->options.size() ? choose(current->options[row.option].label)
                                                    : Outcome::NotTaken;
    case Row::Kind::Other:
        if (!m_other.isEmpty() || m_showsOther)
            return advance();
        openOther();
        return Outcome::Taken;
    case Row::Kind::Submit:
        break;
    }
    return advance();
}

ChatQuestionFlow::Outcome ChatQuestionFlow::handle(const ChatKey& key)
{
    const ChatQuestion::Item* current = item();
    if (current == nullptr || m_isAnswered)
        return Outcome::NotTaken;
    const auto count = qsizetype(rows().size());
    switch (key.kind) {
    case ChatKey::Kind::Up:
        m_highlight = (m_highlight + count - 1) % count;
        return Outcome::Taken;
    case ChatKey::Kind::Down:
        m_highlight = (m_highlight + 1) % count;
        return Outcome::Taken;
    case ChatKey::Kind::Return:
        return activate(*highlightedRow());
    case ChatKey::Kind::Escape:
        if (!m_showsOther)
            return Outcome::NotTaken;
        m_showsOther = false;
        setHighlight(m_highlight);
        return Outcome::Taken;
    case ChatKey::Kind::Digit:
        if (key.digit < 1 || key.digit > current->options.size())
            return Outcome::NotTaken;
        m_highlight = key.digit - 1;
        return choose(current->options[m_highlight].label);
    case ChatKey::Kind::Tab:
        break;
    }
    return Outcome::NotTaken;
}

} // namespace Bralto
