#include "DemoAgent/Behaviours/Behaviours.h"
#include "DemoAgent/Reports.h"

#include <QDateTime>

namespace DemoAgent::Behaviours {

using namespace std::chrono_literals;

namespace {

Task<> compact(Turn& turn)
{
    Conversation& conversation = turn.conversation();
    conversation.out.send(Wire::status("compacting"));
    co_await conversation.pace.pause(1s);
    conversation.out.send({{"type", "system"},
                           {"subtype", "status"},
                           {"status", QJsonValue::Null},
                           {"compact_result", "success"}});
    conversation.out.send({{"type", "system"}, {"subtype", "compact_boundary"}});
    const QString summary = QString("This conversation had %1 turns. It began with: %2")
                                .arg(conversation.turns)
                                .arg(conversation.firstPrompt.left(200));
    conversation.store.appendUser(Wire::userMessage(summary), {{"isCompactSummary", true}});
    conversation.out.send(Wire::user(summary));
    const QString done = "<local-command-stdout>Compacted </local-command-stdout>";
    conversation.store.appendUser(Wire::userMessage(done));
    conversation.out.send(Wire::user(done));
}

} // namespace

Task<> slashCommand(Turn& turn, QString name)
{
    if (name == u"/compact") {
        co_await compact(turn);
        turn.answerSynthetically("Compacted.");
    } else if (name == u"/context") {
        turn.answerSynthetically(Reports::contextText(turn.conversation()));
    } else if (name == u"/help") {
        turn.answerSynthetically("/help isn't available in this environment.");
    } else {
        turn.answerSynthetically(Reports::costText(turn.conversation()));
    }
}

Task<> tellLimits(Turn& turn, QString)
{
    constexpr qint64 ThreeHours = 10800;
    constexpr qint64 FourDays = 345600;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    const QJsonObject hours{
        {"utilization", 0.37}, {"resetsAt", now + ThreeHours}, {"status", "allowed"}};
    const QJsonObject days{
        {"utilization", 0.12}, {"resetsAt", now + FourDays}, {"status", "allowed"}};
    const QJsonObject info{
        {"status", "allowed"},
        {"resetsAt", now + ThreeHours},
        {"rateLimitType", "five_hour"},
        {"isUsingOverage", false},
        {"unifiedWindows", QJsonObject{{"five_hour", hours}, {"seven_day", days}}},
    };
    turn.conversation().out.send({{"type", "rate_limit_event"}, {"rate_limit_info", info}});
    co_await turn.say("I have made up some limits: 37 % of the session and 12 % of the week.");
}

Task<> remember(Turn& turn, QString)
{
    const Conversation& conversation = turn.conversation();
    QString text = QString("This is turn %1 of our conversation.").arg(conversation.turns);
    if (conversation.turns > 1) {
        text += u" It began with \"" + conversation.firstPrompt.left(80) +
                u"\", and before this you wrote \"" + conversation.previousPrompt.left(80) + u"\".";
    }
    co_await turn.say(text);
}

} // namespace DemoAgent::Behaviours
