#include "DemoAgent/Startup.h"

#include "DemoAgent/TurnResult.h"

namespace DemoAgent::Startup {

QString sessionId(const Arguments& arguments)
{
    if (arguments.resume)
        return *arguments.resume;
    return arguments.sessionId.value_or(makeUuid());
}

std::optional<QString> open(const Arguments& arguments, Conversation& conversation)
{
    if (!arguments.resume) {
        if (conversation.store.exists())
            return u"Error: Session ID " + conversation.sessionId + u" is already in use.";
        return std::nullopt;
    }
    const auto stored = conversation.store.load();
    if (!stored) {
        const QString error = u"No conversation found with session ID: " + conversation.sessionId;
        TurnResult::send(conversation, {{"subtype", "error_during_execution"},
                                        {"is_error", true},
                                        {"errors", QJsonArray{error}},
                                        {"num_turns", 0}});
        return error;
    }
    conversation.turns = stored->turns;
    conversation.firstPrompt = stored->firstPrompt;
    conversation.lastPrompt = stored->lastPrompt;
    conversation.ledger.hear(stored->characters);
    return std::nullopt;
}

} // namespace DemoAgent::Startup
