#include "DemoAgent/Script/ScriptContext.h"

namespace DemoAgent {

QString ScriptContext::text(const ScriptStep& step)
{
    values.insert("uuid", makeUuid());
    values.insert("session", conversation.sessionId);
    values.insert("folder", conversation.folder);
    return ScriptText::filled(step.words, values);
}

QString ScriptContext::plainText(const ScriptStep& step)
{
    return QString::fromUtf8(ScriptText::unescaped(text(step)));
}

Turn& ScriptContext::beginTurn()
{
    turn = std::make_unique<Turn>(conversation);
    const bool hasPrompt = !prompt.content.isNull();
    turn->begin(hasPrompt ? std::vector<Prompt>{std::exchange(prompt, {})} : std::vector<Prompt>());
    return *turn;
}

Turn& ScriptContext::ensureTurn()
{
    if (!turn)
        beginTurn().sendInit();
    return *turn;
}

} // namespace DemoAgent
