#include "DemoAgent/Behaviours/Behaviours.h"
#include "DemoAgent/Behaviours/Subagent.h"

namespace DemoAgent::Behaviours {

namespace {

ToolUse helper(const QString& words, bool inBackground)
{
    return makeToolUse("Agent",
                       {{"description", "Look around"},
                        {"prompt", words.isEmpty() ? QString("See what is in the folder.") : words},
                        {"subagent_type", "general-purpose"},
                        {"run_in_background", inBackground}});
}

// Tells that the helper was stopped, unless it came to its end before.
class StopNotice {
public:
    explicit StopNotice(const Subagent& agent)
        : m_agent(agent)
    {
    }
    ~StopNotice()
    {
        if (!m_hasEnded)
            m_agent.ended("stopped", "Look around");
    }
    StopNotice(const StopNotice&) = delete;
    StopNotice& operator=(const StopNotice&) = delete;
    void hasEnded() { m_hasEnded = true; }

private:
    const Subagent& m_agent;
    bool m_hasEnded = false;
};

Task<> workInBackground(Conversation& conversation, std::shared_ptr<Subagent> agent)
{
    StopNotice notice(*agent);
    co_await agent->work();
    notice.hasEnded();
    agent->ended("completed", agent->report());
    conversation.announcements.append(agent->report());
}

} // namespace

Task<> runForegroundAgent(Turn& turn, QString words)
{
    const ToolUse use = helper(words, false);
    co_await turn.say("I send a helper.");
    co_await turn.call(use, Permission::Never);
    Subagent agent(turn.conversation(), use, Subagent::Place::Foreground);
    agent.started();
    {
        StopNotice notice(agent);
        co_await agent.work();
        notice.hasEnded();
    }
    agent.ended("completed", agent.report());
    turn.toolResult(use, agent.result());
    QString answer = u"My helper is back: " + agent.report();
    co_await turn.say(answer);
}

Task<> runBackgroundAgent(Turn& turn, QString words)
{
    const ToolUse use = helper(words, true);
    co_await turn.say("I send a helper, and don't wait for it.");
    co_await turn.call(use, Permission::Never);
    const auto agent =
        std::make_shared<Subagent>(turn.conversation(), use, Subagent::Place::Background);
    agent->started();
    turn.toolResult(use, agent->launched());
    turn.conversation().comingJobs.push_back(
        {agent->taskId(), workInBackground(turn.conversation(), agent)});
    co_await turn.say("It works in the background; I'll tell you what it finds.");
}

} // namespace DemoAgent::Behaviours
