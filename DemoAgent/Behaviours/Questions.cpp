#include "DemoAgent/Behaviours/Behaviours.h"

namespace DemoAgent::Behaviours {

namespace {

QJsonObject option(const char* label, const char* description)
{
    return {{"label", label}, {"description", description}};
}

QJsonArray questions()
{
    const QJsonObject colour{
        {"question", "Which colour should the button have?"},
        {"header", "Colour"},
        {"multiSelect", false},
        {"options", QJsonArray{option("Blue", "Calm, and what everyone expects"),
                               option("Green", "Fresh"), option("Red", "Loud")}},
    };
    const QJsonObject parts{
        {"question", "Which parts should be tested?"},
        {"header", "Parts"},
        {"multiSelect", true},
        {"options", QJsonArray{option("Parser", "The line reader"), option("Painter", "The view"),
                               option("Store", "Files on disk")}},
    };
    return {colour, parts};
}

QString joined(const QJsonObject& answers)
{
    QStringList pairs;
    for (const QJsonValue question : questions()) {
        const QString text = question["question"].toString();
        if (answers.contains(text))
            pairs.append(u'"' + text + u"\"=\"" + answers.value(text).toString() + u'"');
    }
    return pairs.join(u", ");
}

} // namespace

Task<> askQuestions(Turn& turn, QString)
{
    const QJsonArray asked = questions();
    const ToolUse use = makeToolUse("AskUserQuestion", {{"questions", asked}});
    co_await turn.say("Two things I'd like to know.");
    const Decision decision = co_await turn.call(use, Permission::Interactive);
    if (!decision.isAllowed) {
        turn.toolRefused(use, decision);
        QString refused = u"Then I ask no further. You said: " + decision.message;
        co_await turn.say(refused);
        co_return;
    }
    const QJsonObject answers = decision.input.value("answers").toObject();
    const QString pairs = joined(answers);
    const QString result = u"Your questions have been answered: " + pairs + u'.';
    turn.toolResult(use, {.content = result, .isError = false, .details = decision.input});
    QString echo = "Thank you. You answered:\n\n";
    for (auto answer = answers.begin(); answer != answers.end(); ++answer)
        echo += u"- " + answer.key() + u" **" + answer.value().toString() + u"**\n";
    co_await turn.say(echo);
}

} // namespace DemoAgent::Behaviours
