#include "DemoAgent/Script/ScriptContext.h"
#include "DemoAgent/TurnResult.h"

#include <QJsonDocument>

namespace DemoAgent {

using namespace std::chrono_literals;

namespace {

constexpr qsizetype PieceSize = 16;
constexpr auto PiecePause = 25ms;

// The first word, and the JSON object behind it (empty if there is none).
std::pair<QString, QJsonObject> wordAndObject(const QString& words)
{
    const QString json = words.section(u' ', 1);
    return {words.section(u' ', 0, 0), QJsonDocument::fromJson(json.toUtf8()).object()};
}

Task<> line(ScriptContext& context, const ScriptStep& step)
{
    context.conversation.out.sendBytes(context.text(step).toUtf8() + '\n');
    co_return;
}

Task<> init(ScriptContext& context, const ScriptStep&)
{
    context.beginTurn().sendInit();
    co_return;
}

Task<> bare(ScriptContext& context, const ScriptStep&)
{
    context.beginTurn();
    co_return;
}

Task<> status(ScriptContext& context, const ScriptStep& step)
{
    context.conversation.out.send(Wire::status(context.text(step)));
    co_return;
}

Task<> mode(ScriptContext& context, const ScriptStep& step)
{
    context.conversation.settings.permissionMode = context.text(step);
    context.conversation.out.send(Wire::modeStatus(context.text(step)));
    co_return;
}

Task<> text(ScriptContext& context, const ScriptStep& step)
{
    co_await context.ensureTurn().say(context.plainText(step));
}

Task<> textBegin(ScriptContext& context, const ScriptStep& step)
{
    Turn& turn = context.ensureTurn();
    co_await turn.openText();
    for (const QString& piece : pieces(context.plainText(step), PieceSize))
        co_await turn.addText(piece, PiecePause);
}

Task<> textEnd(ScriptContext& context, const ScriptStep&)
{
    context.ensureTurn().endText();
    co_return;
}

Task<> thinking(ScriptContext& context, const ScriptStep& step)
{
    co_await context.ensureTurn().think(context.plainText(step));
}

Task<> tool(ScriptContext& context, const ScriptStep& step)
{
    const auto [name, input] = wordAndObject(context.text(step));
    context.tool = makeToolUse(name, input);
    context.tools.push_back(context.tool);
    context.values.insert("tool", context.tool.id);
    co_await context.ensureTurn().streamTool(context.tool, Permission::Never, {});
}

Task<> about(ScriptContext& context, const ScriptStep& step)
{
    const size_t number = step.words.toUInt();
    if (number >= 1 && number <= context.tools.size()) {
        context.tool = context.tools.at(number - 1);
        context.values.insert("tool", context.tool.id);
    }
    co_return;
}

Task<> messageEnd(ScriptContext& context, const ScriptStep&)
{
    context.ensureTurn().endMessageForTools();
    co_return;
}

Task<> ask(ScriptContext& context, const ScriptStep& step)
{
    const QString id = makeUuid();
    context.asked.insert(id);
    context.values.insert("ask", id);
    QJsonObject input = context.tool.input;
    if (!step.words.isEmpty())
        input = QJsonDocument::fromJson(context.text(step).toUtf8()).object();
    context.conversation.out.send(Wire::canUseTool(id, context.tool, input));
    co_return;
}

Task<> cancel(ScriptContext& context, const ScriptStep&)
{
    context.conversation.out.send(Wire::cancelRequest(context.values.value("ask")));
    co_return;
}

Task<> toolResult(ScriptContext& context, const ScriptStep& step)
{
    const ToolResult result{.content = context.plainText(step), .isError = false, .details = {}};
    context.ensureTurn().toolResult(context.tool, result);
    co_return;
}

Task<> toolError(ScriptContext& context, const ScriptStep& step)
{
    const QString why = context.plainText(step);
    const ToolResult result{.content = why, .isError = true, .details = QString("Error: " + why)};
    context.ensureTurn().toolResult(context.tool, result);
    co_return;
}

Task<> notice(ScriptContext& context, const ScriptStep& step)
{
    const QJsonArray content{Wire::textBlock(context.plainText(step))};
    context.conversation.out.send(Wire::user(content));
    co_return;
}

Task<> interrupted(ScriptContext& context, const ScriptStep&)
{
    context.ensureTurn().abort();
    context.turn.reset();
    co_return;
}

Task<> result(ScriptContext& context, const ScriptStep&)
{
    context.ensureTurn().finish();
    context.turn.reset();
    co_return;
}

Task<> error(ScriptContext& context, const ScriptStep& step)
{
    TurnResult::send(context.conversation, {{"subtype", "error_during_execution"},
                                            {"is_error", true},
                                            {"errors", QJsonArray{context.plainText(step)}},
                                            {"num_turns", 1}});
    context.turn.reset();
    co_return;
}

Task<> apiError(ScriptContext& context, const ScriptStep& step)
{
    const QString words = context.plainText(step);
    const int number = words.section(u' ', 0, 0).toInt();
    const QString message = words.section(u' ', 1);
    Turn& turn = context.ensureTurn();
    turn.answerSynthetically(message);
    TurnResult::send(context.conversation, TurnResult::apiError(message, number));
    context.turn.reset();
    co_return;
}

} // namespace

const ScriptVerbs& speakingVerbs()
{
    static const ScriptVerbs verbs{
        {"line", line},
        {"init", init},
        {"bare", bare},
        {"status", status},
        {"mode", mode},
        {"text", text},
        {"text-begin", textBegin},
        {"text-end", textEnd},
        {"thinking", thinking},
        {"tool", tool},
        {"about", about},
        {"message-end", messageEnd},
        {"ask", ask},
        {"cancel", cancel},
        {"tool-result", toolResult},
        {"tool-error", toolError},
        {"notice", notice},
        {"interrupted", interrupted},
        {"result", result},
        {"error", error},
        {"api-error", apiError},
    };
    return verbs;
}

} // namespace DemoAgent
