#include "Chat/ChatDraft.h"

namespace Bralto {

std::optional<ChatMentionRange> ChatMentionRange::in(const QString& text, qsizetype cursor)
{
    if (cursor < 0 || cursor > text.size())
        return std::nullopt;
    qsizetype start = cursor;
    while (start > 0 && !text[start - 1].isSpace())
        --start;
    if (start == cursor || text[start] != u'@')
        return std::nullopt;
    return ChatMentionRange{start, cursor};
}

ChatDraft::ChatDraft(QObject* parent)
    : QObject(parent)
{
}

bool ChatDraft::canSend() const
{
    return !m_text.trimmed().isEmpty() || !m_attachments.isEmpty();
}

void ChatDraft::signalCanSend(bool before)
{
    if (canSend() != before)
        emit canSendChanged(!before);
}

void ChatDraft::setText(const QString& text, qsizetype cursor)
{
    if (text == m_text && cursor == m_cursor)
        return;
    const bool couldSend = canSend();
    m_text = text;
    m_cursor = cursor;
    updateLists();
    signalCanSend(couldSend);
}

void ChatDraft::replaceText(const QString& text, qsizetype cursor)
{
    setText(text, cursor);
    emit textReplaced(m_text, m_cursor);
}

void ChatDraft::clear()
{
    const bool couldSend = canSend();
    const bool hadAttachments = !m_attachments.isEmpty();
    m_attachments.clear();
    m_text.clear();
    m_cursor = 0;
    updateLists();
    emit textReplaced(m_text, m_cursor);
    if (hadAttachments)
        emit attachmentsChanged();
    signalCanSend(couldSend);
}

void ChatDraft::append(const QString& text)
{
    const QString words = text.trimmed();
    if (words.isEmpty())
        return;
    const bool needsBlank = !m_text.isEmpty() && !m_text.endsWith(u' ') && !m_text.endsWith(u'\n');
    const QString whole = m_text + (needsBlank ? QStringLiteral(" ") : QString()) + words;
    replaceText(whole, whole.size());
}

void ChatDraft::attach(const QList<ChatAttachment>& attachments)
{
    if (attachments.isEmpty())
        return;
    const bool couldSend = canSend();
    m_attachments.append(attachments);
    emit attachmentsChanged();
    signalCanSend(couldSend);
}

void ChatDraft::removeAttachment(const QString& id)
{
    const bool couldSend = canSend();
    if (m_attachments.removeIf([&](const ChatAttachment& each) { return each.id == id; }) == 0)
        return;
    emit attachmentsChanged();
    signalCanSend(couldSend);
}

void ChatDraft::send()
{
    if (!canSend())
        return;
    const QString text = m_text.trimmed();
    if (m_attachments.isEmpty()) {
        const auto route = ChatCommands::route(text, ChatComposerCommands::offered(m_commands));
        if (route && std::holds_alternative<ChatNativeCommand>(route->command.action)) {
            if (runNative(*route))
                clear();
            return;
        }
    }
    const QList<ChatAttachment> attachments = m_attachments;
    clear();
    emit sendRequested(text, attachments);
}

/// Whether the command was carried out; one without its argument waits for it in the field.
bool ChatDraft::runNative(const ChatCommandRoute& route)
{
    const QString& argument = route.arguments;
    const auto command = std::get<ChatNativeCommand>(route.command.action);
    if (command == ChatNativeCommand::Clear) {
        emit newConversationRequested();
        return true;
    }
    if (argument.isEmpty()) {
        const QString text = u'/' + route.command.name + u' ';
        replaceText(text, text.size());
        return false;
    }
    if (command == ChatNativeCommand::Model) {
        emit modelRequested(argument);
    } else if (command == ChatNativeCommand::Effort) {
        emit effortRequested(argument);
    } else if (command == ChatNativeCommand::Permissions) {
        const auto& modes = ChatCommands::permissionModes();
        if (std::any_of(modes.begin(), modes.end(),
                        [&](const PermissionMode& each) { return each.mode == argument; }))
            emit permissionModeRequested(argument);
    }
    return true;
}

void ChatDraft::interrupt()
{
    if (m_isBusy)
        emit interruptRequested();
}

void ChatDraft::respond(bool allow)
{
    if (m_permission)
        emit respondRequested(m_permission->id, allow);
}

void ChatDraft::choose(const ChatQuestionFlow::Row& row)
{
    if (m_flow)
        follow(m_flow->activate(row));
}

bool ChatDraft::follow(ChatQuestionFlow::Outcome outcome)
{
    if (outcome == ChatQuestionFlow::Outcome::NotTaken)
        return false;
    emit questionChanged();
    if (outcome == ChatQuestionFlow::Outcome::Finished)
        emit answerRequested(m_flow->question().id, m_flow->answers());
    return true;
}

void ChatDraft::setOtherAnswer(const QString& text)
{
    if (!m_flow || m_flow->other() == text)
        return;
    m_flow->setOther(text);
    emit questionChanged();
}

void ChatDraft::highlightQuestionRow(qsizetype row)
{
    if (!m_flow)
        return;
    m_flow->setHighlight(row);
    emit questionChanged();
}

void ChatDraft::setPermission(const std::optional<ChatPermission>& permission)
{
    if (permission == m_permission)
        return;
    // The highlight belongs to one request.
    if (!permission || !m_permission || permission->id != m_permission->id)
        m_permissionHighlight = 0;
    m_permission = permission;
    emit permissionChanged();
}

void ChatDraft::setQuestion(const std::optional<ChatQuestion>& question)
{
    if (!question) {
        if (!m_flow)
            return;
        m_flow.reset();
    } else if (!m_flow || m_flow->question().id != question->id) {
        m_flow.emplace(*question);
    } else {
        return;
    }
    emit questionChanged();
}

void ChatDraft::setBusy(bool busy)
{
    m_isBusy = busy;
}

} // namespace Bralto
