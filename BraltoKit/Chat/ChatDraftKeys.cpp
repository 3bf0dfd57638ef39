/// @file
/// Who gets a key that reaches the composer: an open list, a card, the field itself.

#include "Chat/ChatDraft.h"

namespace Bralto {

namespace {

/// The row that up or down leads to, around the ends.
qsizetype stepped(qsizetype index, ChatKey::Kind kind, qsizetype count)
{
    return (index + (kind == ChatKey::Kind::Up ? count - 1 : 1)) % count;
}

bool isMove(const ChatKey& key)
{
    return key.kind == ChatKey::Kind::Up || key.kind == ChatKey::Kind::Down;
}

} // namespace

bool ChatDraft::press(const ChatKey& key)
{
    // In a field with text a digit is a digit, whatever card is open.
    if (key.kind == ChatKey::Kind::Digit)
        return m_text.isEmpty() && pressInCard(key);
    if (isPaletteOpen() && pressInPalette(key))
        return true;
    if (isMentionOpen() && pressInMentions(key))
        return true;
    if (key.kind == ChatKey::Kind::Return && key.shift)
        return false;
    if (pressInCard(key))
        return true;
    if (key.kind == ChatKey::Kind::Return) {
        send();
        return true;
    }
    if (key.kind == ChatKey::Kind::Escape && m_isBusy) {
        emit interruptRequested();
        return true;
    }
    return false;
}

bool ChatDraft::pressInPalette(const ChatKey& key)
{
    if (isMove(key)) {
        m_paletteIndex = stepped(m_paletteIndex, key.kind, m_paletteRows.size());
        emit listsChanged();
        return true;
    }
    if (key.kind == ChatKey::Kind::Escape) {
        closeLists();
        return true;
    }
    const ChatCommand command = m_paletteRows[m_paletteIndex];
    if (key.kind == ChatKey::Kind::Tab) {
        const QString text = u'/' + command.name + u' ';
        replaceText(text, text.size());
        return true;
    }
    takeCommand(command);
    return true;
}

bool ChatDraft::pressInMentions(const ChatKey& key)
{
    if (isMove(key)) {
        m_mentionIndex = stepped(m_mentionIndex, key.kind, m_mentionRows.size());
        emit listsChanged();
    } else if (key.kind == ChatKey::Kind::Escape) {
        closeLists();
    } else {
        insertMention(QString(m_mentionRows[m_mentionIndex]));
    }
    return true;
}

bool ChatDraft::pressInCard(const ChatKey& key)
{
    if (m_permission)
        return pressInPermission(key);
    return m_flow && follow(m_flow->handle(key));
}

bool ChatDraft::pressInPermission(const ChatKey& key)
{
    switch (key.kind) {
    case ChatKey::Kind::Up:
    case ChatKey::Kind::Down:
        m_permissionHighlight = 1 - m_permissionHighlight;
        emit permissionChanged();
        return true;
    case ChatKey::Kind::Return:
        respond(m_permissionHighlight == 0);
        return true;
    case ChatKey::Kind::Escape:
        respond(false);
        return true;
    case ChatKey::Kind::Digit:
        if (key.digit > 2)
            return false;
        respond(key.digit == 1);
        return true;
    case ChatKey::Kind::Tab:
        break;
    }
    return false;
}

} // namespace Bralto
