/// @file
/// The wires between a draft and its conversation.

#include "Chat/ChatDraft.h"

namespace Bralto {

ChatDraft& ChatDraft::of(ClaudeChat& chat)
{
    if (auto* known = chat.findChild<ChatDraft*>({}, Qt::FindDirectChildrenOnly))
        return *known;
    auto* draft = new ChatDraft(&chat);

    connect(draft, &ChatDraft::sendRequested, &chat, &ClaudeChat::send);
    connect(draft, &ChatDraft::modelRequested, &chat, &ClaudeChat::setModel);
    connect(draft, &ChatDraft::effortRequested, &chat, &ClaudeChat::setEffort);
    connect(draft, &ChatDraft::permissionModeRequested, &chat, &ClaudeChat::setPermissionMode);
    connect(draft, &ChatDraft::newConversationRequested, &chat,
            [&chat] { chat.switchSession(std::nullopt); });
    connect(draft, &ChatDraft::respondRequested, &chat, &ClaudeChat::respond);
    connect(draft, &ChatDraft::answerRequested, &chat, &ClaudeChat::answer);
    connect(draft, &ChatDraft::interruptRequested, &chat, &ClaudeChat::interrupt);

    const auto showState = [&chat, draft] {
        const ChatState::Kind kind = chat.state().kind;
        draft->setBusy(kind == ChatState::Kind::Starting || kind == ChatState::Kind::Working ||
                       kind == ChatState::Kind::Waiting);
    };
    const auto showCommands = [&chat, draft] { draft->setCommands(chat.commands()); };
    const auto showPermission = [&chat, draft] { draft->setPermission(chat.pendingPermission()); };
    const auto showQuestion = [&chat, draft] { draft->setQuestion(chat.pendingQuestion()); };
    connect(&chat, &ClaudeChat::stateChanged, draft, showState);
    connect(&chat, &ClaudeChat::commandsChanged, draft, showCommands);
    connect(&chat, &ClaudeChat::pendingPermissionChanged, draft, showPermission);
    connect(&chat, &ClaudeChat::pendingQuestionChanged, draft, showQuestion);
    showState();
    showCommands();
    showPermission();
    showQuestion();
    return *draft;
}

} // namespace Bralto
