#include "DemoAgent/Behaviours/Behaviours.h"
#include "DemoAgent/Behaviours/ShellCommand.h"

namespace DemoAgent::Behaviours {

namespace {

ToolResult resultOf(const ShellCommand::Outcome& outcome)
{
    QString text = outcome.output;
    if (!outcome.errors.isEmpty())
        text += (text.isEmpty() || text.endsWith(u'\n') ? u"" : u"\n") + outcome.errors;
    while (text.endsWith(u'\n'))
        text.chop(1);
    if (outcome.timedOut)
        text = u"The command was ended after 10 seconds.\n" + text;
    else if (outcome.exitCode != 0)
        text = QString("Exit code %1\n").arg(outcome.exitCode) + text;
    const QJsonObject details{
        {"stdout", outcome.output},
        {"stderr", outcome.errors},
        {"interrupted", outcome.timedOut},
        {"isImage", false},
    };
    return {
        .content = text, .isError = outcome.timedOut || outcome.exitCode != 0, .details = details};
}

} // namespace

Task<> runCommand(Turn& turn, QString words)
{
    const QString command = words.isEmpty() ? QString("ls") : words;
    const QJsonObject input{{"command", command}, {"description", "Run the user's command"}};
    const ToolUse use = makeToolUse("Bash", input, "Run the user's command");
    co_await turn.say("Let me run that.");
    const Decision decision = co_await turn.call(use, Permission::Command);
    if (!decision.isAllowed) {
        turn.toolRefused(use, decision);
        QString refused = u"Then I don't run it. You said: " + decision.message;
        co_await turn.say(refused);
        co_return;
    }
    ShellCommand shell(decision.input.value("command").toString(), turn.conversation().folder);
    const ShellCommand::Outcome outcome = co_await shell.outcome();
    const ToolResult result = resultOf(outcome);
    turn.toolResult(use, result);
    QString answer = result.isError ? "The command failed; its output stands above."
                                    : "The command ran; its output stands above.";
    co_await turn.say(answer);
}

} // namespace DemoAgent::Behaviours
