/// @file
/// The "@" list and the "/" palette of the composer.

#include "Chat/ChatDraft.h"

namespace Bralto {

namespace ChatComposerCommands {

namespace {

bool worksWithoutPanel(ChatNativeCommand command)
{
    return command == ChatNativeCommand::Clear || command == ChatNativeCommand::Model ||
           command == ChatNativeCommand::Effort || command == ChatNativeCommand::Permissions;
}

} // namespace

QList<ChatCommand> offered(const QList<ChatCommand>& commands)
{
    QList<ChatCommand> offered;
    for (const ChatCommand& command : commands) {
        const auto* native = std::get_if<ChatNativeCommand>(&command.action);
        if (native != nullptr ? worksWithoutPanel(*native)
                              : std::holds_alternative<ChatCommand::Prompt>(command.action))
            offered.append(command);
    }
    return offered;
}

bool waitsForArguments(const ChatCommand& command)
{
    if (const auto* native = std::get_if<ChatNativeCommand>(&command.action))
        return *native != ChatNativeCommand::Clear;
    return command.needsArguments();
}

} // namespace ChatComposerCommands

void ChatDraft::updateLists()
{
    const auto range = ChatMentionRange::in(m_text, m_cursor);
    std::optional<QString> mention;
    std::optional<QString> palette;
    // The two never show together: a mention wins.
    if (range)
        mention = m_text.mid(range->start + 1, range->end - range->start - 1);
    else
        palette = ChatCommands::paletteQuery(m_text, m_cursor);

    if (mention != m_mention || palette != m_palette) {
        m_isListClosed = false;
        m_mentionIndex = 0;
        m_paletteIndex = 0;
    }
    if (mention && !m_mention)
        emit filesRequested();
    m_mention = mention;
    m_palette = palette;

    QStringList mentionRows;
    QList<ChatCommand> paletteRows;
    if (m_mention && !m_isListClosed && m_files)
        mentionRows = m_files->matches(*m_mention, MentionLimit);
    if (m_palette && !m_isListClosed)
        paletteRows = ChatCommands::matches(*m_palette, ChatComposerCommands::offered(m_commands),
                                            PaletteLimit);
    const bool differs = mentionRows != m_mentionRows || paletteRows != m_paletteRows;
    m_mentionRows = std::move(mentionRows);
    m_paletteRows = std::move(paletteRows);
    m_mentionIndex =
        std::clamp<qsizetype>(m_mentionIndex, 0, std::max<qsizetype>(0, m_mentionRows.size() - 1));
    m_paletteIndex =
        std::clamp<qsizetype>(m_paletteIndex, 0, std::max<qsizetype>(0, m_paletteRows.size() - 1));
    if (differs)
        emit listsChanged();
}

void ChatDraft::closeLists()
{
    m_isListClosed = true;
    updateLists();
}

void ChatDraft::setCommands(const QList<ChatCommand>& commands)
{
    m_commands = commands;
    updateLists();
}

void ChatDraft::setFiles(ChatFileIndex::List files)
{
    m_files = std::move(files);
    updateLists();
}

void ChatDraft::insertMention(const QString& path)
{
    const QString mention = u'@' + path + u' ';
    if (const auto range = ChatMentionRange::in(m_text, m_cursor)) {
        QString text = m_text;
        text.replace(range->start, range->end - range->start, mention);
        replaceText(text, range->start + mention.size());
    } else {
        const QString text = m_text + mention;
        replaceText(text, text.size());
    }
}

void ChatDraft::takeCommand(const ChatCommand& command)
{
    if (ChatComposerCommands::waitsForArguments(command)) {
        const QString text = u'/' + command.name + u' ';
        replaceText(text, text.size());
        return;
    }
    const QString text = u'/' + command.name;
    replaceText(text, text.size());
    send();
}

} // namespace Bralto
