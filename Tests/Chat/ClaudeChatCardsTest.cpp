// Permissions, questions and interrupts.

#include "Tests/Support/ChatHarness.h"

#include <QSignalSpy>

namespace Bralto {
namespace {

using ClaudeChatCards = ChatHarness;

ChatState failed(const QString& message)
{
    return {ChatState::Kind::Failed, message};
}

// Permissions

TEST_F(ClaudeChatCards, AllowsSilentlyWhileTheModeIsUnknown)
{
    open().launchIfNeeded(ClaudeChat::Turn::No);
    agent().sayLine(AgentLine::permission("p1"));

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["request_id"], "p1");
    EXPECT_EQ(reply["response"]["behavior"], "allow");
    EXPECT_EQ(reply["response"]["updatedInput"]["command"], "ls");
    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatCards, AllowsSilentlyIfPermissionsAreBypassed)
{
    working();
    agent().sayLine(AgentLine::init("bypassPermissions"));

    agent().sayLine(AgentLine::permission("p1"));

    EXPECT_EQ(agent().count("control_response"), 1);
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

TEST_F(ClaudeChatCards, ShowsACardForATool)
{
    working();

    agent().sayLine(AgentLine::permission("p1"));

    ASSERT_TRUE(chat().pendingPermission());
    EXPECT_EQ(chat().pendingPermission()->id, "p1");
    EXPECT_EQ(chat().pendingPermission()->tool, "Bash");
    EXPECT_EQ(chat().pendingPermission()->summary, "ls");
    EXPECT_EQ(chat().pendingPermission()->input, R"({"command":"ls"})");
    EXPECT_EQ(chat().state().kind, Kind::Waiting);
    EXPECT_EQ(agent().count("control_response"), 0);
}

TEST_F(ClaudeChatCards, TheSameCardIsSignalledOnce)
{
    working();
    const QSignalSpy changed(&chat(), &ClaudeChat::pendingPermissionChanged);

    agent().sayLine(AgentLine::permission("p1"));
    agent().sayLine(AgentLine::permission("p1"));

    EXPECT_EQ(changed.count(), 1);
}

TEST_F(ClaudeChatCards, AllowsWithTheInputThatCame)
{
    working();
    agent().sayLine(AgentLine::permission("p1", "Bash", {{"command", "ls"}, {"answers", 1}}));

    chat().respond("p1", true);

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["response"]["behavior"], "allow");
    EXPECT_EQ(reply["response"]["updatedInput"].toObject(), (QJsonObject{{"command", "ls"}}));
    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

TEST_F(ClaudeChatCards, DeniesInTheUsersName)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    chat().respond("p1", false);

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["response"]["behavior"], "deny");
    EXPECT_EQ(reply["response"]["message"], "The user declined this tool use.");
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

TEST_F(ClaudeChatCards, IgnoresAResponseToAnotherCard)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    chat().respond("p0", true);

    EXPECT_TRUE(chat().pendingPermission());
    EXPECT_EQ(agent().count("control_response"), 0);
}

TEST_F(ClaudeChatCards, AWithdrawnPermissionGoesWithoutAReply)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    agent().sayLine(AgentLine::cancel("p1"));

    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_EQ(chat().state().kind, Kind::Working);
    EXPECT_EQ(agent().count("control_response"), 0);
}

TEST_F(ClaudeChatCards, AWithdrawalOfSomethingElseChangesNothing)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    agent().sayLine(AgentLine::cancel("p0"));

    EXPECT_TRUE(chat().pendingPermission());
    EXPECT_EQ(chat().state().kind, Kind::Waiting);
}

TEST_F(ClaudeChatCards, OneWithdrawnCardOfTwoLeavesItWaiting)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));
    agent().sayLine(AgentLine::question("q1"));

    agent().sayLine(AgentLine::cancel("q1"));

    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(chat().state().kind, Kind::Waiting);
}

TEST_F(ClaudeChatCards, AWithdrawnCardOfAFinishedTurnLeavesItAsItIs)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));
    agent().sayLine(AgentLine::failure("Broken"));

    agent().sayLine(AgentLine::cancel("p1"));

    EXPECT_FALSE(chat().pendingPermission());
    EXPECT_EQ(chat().state(), failed("Broken"));
}

// Questions

TEST_F(ClaudeChatCards, ShowsAQuestionAlsoIfPermissionsAreBypassed)
{
    working();
    agent().sayLine(AgentLine::init("bypassPermissions"));

    agent().sayLine(AgentLine::question("q1", "Which colour?"));

    ASSERT_TRUE(chat().pendingQuestion());
    EXPECT_EQ(chat().pendingQuestion()->items[0].question, "Which colour?");
    EXPECT_EQ(chat().state().kind, Kind::Waiting);
}

TEST_F(ClaudeChatCards, AnswersAQuestionWithItsInputAndTheChoices)
{
    working();
    agent().sayLine(AgentLine::question("q1", "Which colour?"));

    chat().answer("q1", {{"Which colour?", "Green"}});

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["request_id"], "q1");
    const QJsonObject input = reply["response"]["updatedInput"].toObject();
    EXPECT_EQ(input["answers"]["Which colour?"], "Green");
    EXPECT_EQ(input["questions"][0]["question"], "Which colour?");
    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

TEST_F(ClaudeChatCards, IgnoresAnAnswerToAnotherQuestion)
{
    working();
    agent().sayLine(AgentLine::question("q1"));

    chat().answer("q0", {{"Which?", "A"}});

    EXPECT_TRUE(chat().pendingQuestion());
    EXPECT_EQ(agent().count("control_response"), 0);
}

TEST_F(ClaudeChatCards, TheSameQuestionIsSignalledOnceAndANewOneAgain)
{
    working();
    const QSignalSpy changed(&chat(), &ClaudeChat::pendingQuestionChanged);

    agent().sayLine(AgentLine::question("q1"));
    agent().sayLine(AgentLine::question("q1"));
    EXPECT_EQ(changed.count(), 1);

    agent().sayLine(AgentLine::question("q2"));
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(chat().pendingQuestion()->id, "q2");
}

TEST_F(ClaudeChatCards, AWithdrawnQuestionGoesWithoutAReply)
{
    working();
    agent().sayLine(AgentLine::question("q1"));

    agent().sayLine(AgentLine::cancel("q1"));

    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(chat().state().kind, Kind::Working);
    EXPECT_EQ(agent().count("control_response"), 0);
}

// Interrupting

TEST_F(ClaudeChatCards, DoesNotInterruptWhatDoesNotRun)
{
    open().interrupt();

    EXPECT_TRUE(m_launcher.agents.empty());
}

TEST_F(ClaudeChatCards, AnInterruptedTurnEndsIdle)
{
    working();

    chat().interrupt();
    EXPECT_TRUE(requestId("interrupt").startsWith("interrupt-"));
    agent().sayLine(AgentLine::failure("[ede_diagnostic]"));

    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatCards, OnlyTheInterruptedTurnMayFailSilently)
{
    working();
    chat().interrupt();
    agent().sayLine(AgentLine::failure("[ede_diagnostic]"));

    chat().send("Again");
    agent().sayLine(AgentLine::failure("API Error: 500"));

    EXPECT_EQ(chat().state(), failed("API Error: 500"));
}

TEST_F(ClaudeChatCards, AnInterruptLastsUntilNothingIsQueued)
{
    working();
    chat().interrupt();

    agent().sayLine(
        AgentLine::result({{"is_error", true}, {"result", "a"}, {"queued_turn_count", 1}}));
    EXPECT_EQ(chat().state().kind, Kind::Working);
    agent().sayLine(AgentLine::failure("b"));

    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatCards, AnInterruptThatFoundNothingHidesNoLaterFailure)
{
    working();
    agent().sayLine(AgentLine::result());
    chat().interrupt();

    chat().send("Again");
    agent().sayLine(AgentLine::failure("API Error: 500"));

    EXPECT_EQ(chat().state(), failed("API Error: 500"));
}

TEST_F(ClaudeChatCards, AnInterruptRefusesTheOpenQuestion)
{
    working();
    agent().sayLine(AgentLine::question("q1"));

    chat().interrupt();

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["request_id"], "q1");
    EXPECT_EQ(reply["response"]["behavior"], "deny");
    EXPECT_EQ(reply["response"]["message"], "The user interrupted.");
    EXPECT_FALSE(chat().pendingQuestion());
    EXPECT_EQ(chat().state().kind, Kind::Working);
    EXPECT_EQ(agent().count("control_request", "interrupt"), 1);

    agent().sayLine(AgentLine::failure("[ede_diagnostic]"));
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ClaudeChatCards, AnInterruptRefusesTheOpenPermission)
{
    working();
    agent().sayLine(AgentLine::permission("p1"));

    chat().interrupt();

    const QJsonObject reply = agent().lastWritten("control_response")["response"].toObject();
    EXPECT_EQ(reply["request_id"], "p1");
    EXPECT_EQ(reply["response"]["message"], "The user interrupted.");
    EXPECT_FALSE(chat().pendingPermission());
    agent().sayLine(AgentLine::failure("[ede_diagnostic]"));
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

} // namespace
} // namespace Bralto
