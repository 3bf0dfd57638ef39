#include "DemoAgent/Behaviours/Behaviours.h"

namespace DemoAgent::Behaviours {

Task<> think(Turn& turn, QString words)
{
    const QString subject = words.isEmpty() ? QString("the folder") : words;
    QString thoughts = u"The user wants me to think about " + subject +
                       u". First I look at it from one side. Then from the other. Both sides "
                       u"agree, so I can say it.";
    co_await turn.think(thoughts);
    QString answer = u"I have thought about " + subject + u", and I am for it.";
    co_await turn.say(answer);
}

Task<> plan(Turn& turn, QString words)
{
    const QString goal = words.isEmpty() ? QString("Tidy up the folder") : words;
    const QString text =
        u"# " + goal + u"\n\n1. Look at what is there\n2. Change one line\n3. Run the tests\n";
    const ToolUse use = makeToolUse("ExitPlanMode", {{"plan", text}});
    co_await turn.say("Here is what I would do.");
    // The plan stands in the tool call; the request itself comes without it.
    co_await turn.streamTool(use, Permission::Interactive, {});
    turn.endMessageForTools();
    const Decision decision = co_await turn.decide(use, Permission::Interactive);
    if (!decision.isAllowed) {
        turn.toolRefused(use, decision);
        QString refused = u"I keep planning. You said: " + decision.message;
        co_await turn.say(refused);
        co_return;
    }
    Conversation& conversation = turn.conversation();
    if (conversation.settings.permissionMode == u"plan") {
        conversation.settings.permissionMode = "default";
        conversation.out.send(Wire::modeStatus("default"));
    }
    turn.toolResult(use, {.content = "The user has approved the plan.",
                          .isError = false,
                          .details = QJsonObject{{"plan", text}}});
    co_await turn.say("Thank you. That was the plan; a demo agent leaves it at that.");
}

} // namespace DemoAgent::Behaviours
