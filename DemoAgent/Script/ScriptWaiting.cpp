#include "DemoAgent/Script/ScriptContext.h"

#include <QJsonDocument>

namespace DemoAgent {

namespace {

QJsonObject objectOf(const QString& json)
{
    return QJsonDocument::fromJson(json.toUtf8()).object();
}

// Waits for ever: the process is about to end.
Task<> endProcess(ScriptContext& context)
{
    context.host.endProcess(0);
    Later<bool> never;
    co_await never;
}

Task<> awaitUser(ScriptContext& context)
{
    const auto line = co_await context.inbox.next(lineOf("user"));
    if (!line) {
        co_await endProcess(context);
        co_return;
    }
    context.prompt = Prompt::fromContent(line->value("message")["content"]);
    context.conversation.notePrompt(context.prompt.text);
    context.values.insert("text", context.prompt.text);
}

Task<> awaitControl(ScriptContext& context, QString subtype)
{
    const auto line = co_await context.inbox.next(lineOf("control_request", subtype));
    if (!line) {
        co_await endProcess(context);
        co_return;
    }
    context.values.insert("request", line->value("request_id").toString());
    const QJsonObject request = line->value("request").toObject();
    for (auto field = request.begin(); field != request.end(); ++field)
        context.values.insert("field:" + field.key(), field.value().toVariant().toString());
}

Task<> awaitAnswer(ScriptContext& context)
{
    const auto line = co_await context.inbox.next(answerTo(context.values.value("ask")));
    if (!line) {
        co_await endProcess(context);
        co_return;
    }
    context.answer = line->value("response").toObject();
    context.values.insert("message", context.answer.value("response")["message"].toString());
}

Task<> await(ScriptContext& context, const ScriptStep& step)
{
    const QString what = step.words.section(u' ', 0, 0);
    if (what == u"user")
        co_await awaitUser(context);
    else if (what == u"control")
        co_await awaitControl(context, step.words.section(u' ', 1));
    else if (what == u"answer")
        co_await awaitAnswer(context);
    else if (what == u"eof")
        co_await context.inbox.end();
}

Task<> sleep(ScriptContext& context, const ScriptStep& step)
{
    co_await context.conversation.pace.pause(std::chrono::milliseconds(step.words.toInt()));
}

Task<> silence(ScriptContext&, const ScriptStep&)
{
    Later<bool> never;
    co_await never;
}

Task<> mute(ScriptContext& context, const ScriptStep& step)
{
    context.muted.insert(step.words);
    co_return;
}

Task<> reply(ScriptContext& context, const ScriptStep& step)
{
    std::optional<QJsonObject> response;
    if (!step.words.isEmpty())
        response = objectOf(context.text(step));
    context.conversation.out.send(Wire::reply(context.values.value("request"), response));
    co_return;
}

Task<> replyError(ScriptContext& context, const ScriptStep& step)
{
    const QString error = context.plainText(step);
    context.conversation.out.send(Wire::replyError(context.values.value("request"), error));
    co_return;
}

Task<> runTurn(ScriptContext& context, const ScriptStep&)
{
    Later<bool> ended;
    context.host.runTurn(context.prompt, ended);
    co_await ended;
}

} // namespace

const ScriptVerbs& waitingVerbs()
{
    static const ScriptVerbs verbs{
        {"await", await},     {"sleep", sleep},
        {"silence", silence}, {"mute", mute},
        {"reply", reply},     {"reply-error", replyError},
        {"turn", runTurn},    {"replay", replayRecording},
    };
    return verbs;
}

} // namespace DemoAgent
