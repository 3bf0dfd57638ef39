#include "Tests/DemoAgent/RunningAgent.h"

using namespace DemoAgentTests;

namespace {

struct DemoPermission : testing::Test {
    QJsonObject askedFor(const QString& text)
    {
        agent.sendTurn(text);
        return agent.untilType("control_request").last();
    }
    static QJsonObject requestOf(const QJsonObject& line) { return line["request"].toObject(); }

    RunningAgent agent;
};

const QString Colour = "Which colour should the button have?";
const QString Parts = "Which parts should be tested?";

} // namespace

TEST_F(DemoPermission, AWriteIsAskedForOnceItsMessageHasEnded)
{
    agent.start();
    agent.sendTurn("write notes.txt high water at noon");

    const Lines asked = agent.untilType("control_request");

    EXPECT_EQ(kinds(asked), QStringList{"system/init"} + toolMessage() + QStringList{"ask/Write"});
    const QJsonObject request = requestOf(asked.last());
    EXPECT_EQ(request["subtype"], "can_use_tool");
    EXPECT_EQ(request["input"].toObject()["file_path"], agent.folder() + "/notes.txt");
    EXPECT_EQ(request["input"].toObject()["content"], "high water at noon\n");
    const QJsonObject call = first(asked, "assistant/tool_use");
    EXPECT_EQ(request["tool_use_id"], call["message"].toObject()["content"][0]["id"]);
    EXPECT_FALSE(request["permission_suggestions"].toArray().isEmpty());
    EXPECT_TRUE(agent.read("notes.txt").isEmpty());
}

TEST_F(DemoPermission, AllowedItWritesTheFileAndSaysSo)
{
    agent.start();
    const QJsonObject request = askedFor("write notes.txt high water at noon");

    agent.allow(request);
    const Lines rest = agent.untilResult();

    EXPECT_EQ(kinds(rest),
              QStringList{"user/tool_result"} + textMessage() + QStringList{"result/success"});
    EXPECT_EQ(agent.read("notes.txt"), "high water at noon\n");
    EXPECT_EQ(rest.first()["tool_use_result"].toObject()["type"], "create");
    EXPECT_EQ(rest.last()["permission_denials"].toArray().size(), 0);
}

TEST_F(DemoPermission, WhatTheUserChangedIsWhatIsWritten)
{
    agent.start();
    const QJsonObject request = askedFor("write notes.txt as it was");
    QJsonObject input = requestOf(request)["input"].toObject();
    input["content"] = "as it became\n";

    agent.allow(request, input);
    (void)agent.untilResult();

    EXPECT_EQ(agent.read("notes.txt"), "as it became\n");
}

TEST_F(DemoPermission, DeniedItWritesNothingAndTheMessageIsTheToolsError)
{
    agent.start();
    const QJsonObject request = askedFor("write notes.txt");

    agent.deny(request, "The user declined this tool use.");
    const Lines rest = agent.untilResult();

    const QJsonValue block = rest.first()["message"].toObject()["content"][0];
    EXPECT_EQ(block["content"], "The user declined this tool use.");
    EXPECT_EQ(block["is_error"], true);
    EXPECT_EQ(rest.first()["tool_use_result"], "Error: The user declined this tool use.");
    EXPECT_FALSE(QFile::exists(agent.folder() + "/notes.txt"));
    EXPECT_EQ(rest.last()["is_error"], false);
    const QJsonArray denials = rest.last()["permission_denials"].toArray();
    ASSERT_EQ(denials.size(), 1);
    EXPECT_EQ(denials.at(0)["tool_name"], "Write");
}

TEST_F(DemoPermission, AnErrorInsteadOfAnAnswerCountsAsADenial)
{
    agent.start();
    const QJsonObject request = askedFor("write notes.txt");

    agent.send({{"type", "control_response"},
                {"response", QJsonObject{{"subtype", "error"},
                                         {"request_id", request["request_id"]},
                                         {"error", "Not supported by Bralto"}}}});

    EXPECT_EQ(textOf(agent.untilResult().first()), "Not supported by Bralto");
    EXPECT_FALSE(QFile::exists(agent.folder() + "/notes.txt"));
}

TEST_F(DemoPermission, AnAnswerToAnUnknownRequestIsIgnored)
{
    agent.start();
    const QJsonObject request = askedFor("write notes.txt");

    agent.deny({{"request_id", "nobody"}}, "no");
    agent.allow(request);

    EXPECT_EQ(agent.untilResult().first()["tool_use_result"].toObject()["type"], "create");
}

TEST_F(DemoPermission, TheModesDecideWhatIsAskedFor)
{
    struct Row {
        QStringList arguments;
        bool asksForEdits;
        bool asksForCommands;
    };
    const std::vector<Row> rows{
        {{"--permission-mode", "default"}, true, true},
        {{"--permission-mode", "acceptEdits"}, false, true},
        {{"--dangerously-skip-permissions"}, false, false},
        {{"--permission-mode", "bypassPermissions"}, false, false},
        {{"--dangerously-skip-permissions", "--permission-mode", "default"}, true, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.arguments.join(' ').toStdString());
        RunningAgent other;
        other.start(row.arguments);
        const auto asks = [&](const QString& text) {
            other.sendTurn(text);
            for (;;) {
                const auto line = other.next();
                if (!line || (*line)["type"] == "result")
                    return false;
                if ((*line)["type"] == "control_request") {
                    other.deny(*line, "no");
                    (void)other.untilResult();
                    return true;
                }
            }
        };

        EXPECT_EQ(asks("write notes.txt"), row.asksForEdits);
        EXPECT_EQ(asks("run true"), row.asksForCommands);
    }
}

TEST_F(DemoPermission, NothingIsEverWrittenOutsideTheFolder)
{
    QFile::link(agent.home(), agent.folder() + "/way-out");
    agent.start({"--dangerously-skip-permissions"});
    for (const char* name : {"../home/out.txt", "way-out/out.txt"}) {
        SCOPED_TRACE(name);

        const Lines lines = agent.turn(QString("write %1").arg(name));

        const QJsonObject result = first(lines, "user/tool_result");
        EXPECT_TRUE(result["message"].toObject()["content"][0]["is_error"].toBool());
        EXPECT_FALSE(QFile::exists(agent.home() + "/out.txt"));
    }
}

TEST_F(DemoPermission, AnEditReplacesTheFirstLine)
{
    (void)agent.write("notes.txt", "one\ntwo\n");
    agent.start();
    const QJsonObject request = askedFor("edit notes.txt eins");
    EXPECT_EQ(requestOf(request)["tool_name"], "Edit");
    EXPECT_EQ(requestOf(request)["input"].toObject()["old_string"], "one");

    agent.allow(request);
    (void)agent.untilResult();

    EXPECT_EQ(agent.read("notes.txt"), "eins\ntwo\n");
}

TEST_F(DemoPermission, ACommandRunsInTheFolderOnceItIsAllowed)
{
    agent.start();
    const QJsonObject request = askedFor("run pwd; echo oops >&2");
    EXPECT_EQ(requestOf(request)["tool_name"], "Bash");
    EXPECT_EQ(requestOf(request)["input"].toObject()["command"], "pwd; echo oops >&2");

    agent.allow(request);
    const QJsonObject result = agent.untilResult().first();

    EXPECT_EQ(textOf(result), agent.folder() + "\noops");
    EXPECT_EQ(result["tool_use_result"].toObject()["stderr"], "oops\n");
}

TEST_F(DemoPermission, ACommandThatFailsSaysItsExitCode)
{
    agent.start({"--dangerously-skip-permissions"});

    const QJsonObject result = first(agent.turn("run echo no; exit 3"), "user/tool_result");

    EXPECT_EQ(textOf(result), "Exit code 3\nno");
    EXPECT_TRUE(result["message"].toObject()["content"][0]["is_error"].toBool());
}

TEST_F(DemoPermission, AnInterruptEndsTheCommandAndItsChildren)
{
    const PidPipe pipe(agent);
    agent.start({"--dangerously-skip-permissions"});
    agent.sendTurn("run sleep 600 & echo $! > pid; wait");
    const pid_t child = pipe.read();

    agent.sendControl("interrupt");
    (void)agent.untilResult();

    EXPECT_TRUE(waitForEnd(child));
    EXPECT_EQ(agent.finish(), 1) << "the last result was an error";
}

TEST_F(DemoPermission, AQuestionIsAskedWhileItsBlockIsStillOpen)
{
    agent.start();
    agent.sendTurn("ask me");

    const Lines asked =
        agent.until([](const QJsonObject& line) { return kind(line) == "message_stop"; });

    const QStringList expected{
        "system/init",         "system/status",       "message_start",
        "content_block_start", "delta/text_delta",    "assistant/text",
        "content_block_stop",  "content_block_start", "delta/input_json_delta",
        "assistant/tool_use",  "ask/AskUserQuestion", "content_block_stop",
        "message_delta",       "message_stop"};
    EXPECT_EQ(kinds(asked), expected);
    const QJsonObject request = requestOf(first(asked, "ask/AskUserQuestion"));
    EXPECT_EQ(request["requires_user_interaction"], true);
    const QJsonArray questions = request["input"].toObject()["questions"].toArray();
    ASSERT_EQ(questions.size(), 2);
    EXPECT_EQ(questions.at(0)["multiSelect"], false);
    EXPECT_FALSE(questions.at(0)["options"][0]["description"].toString().isEmpty());
    EXPECT_EQ(questions.at(1)["multiSelect"], true);
}

TEST_F(DemoPermission, TheAnswersAreSaidBack)
{
    agent.start();
    const QJsonObject request = askedFor("ask");
    QJsonObject input = requestOf(request)["input"].toObject();
    input["answers"] = QJsonObject{{Colour, "My own: teal"}, {Parts, "Parser, Store"}};

    agent.allow(request, input);
    const Lines rest = agent.untilResult();

    const QJsonObject result = first(rest, "user/tool_result");
    EXPECT_EQ(textOf(result), "Your questions have been answered: \"" + Colour +
                                  "\"=\"My own: teal\", \"" + Parts + "\"=\"Parser, Store\".");
    EXPECT_TRUE(rest.last()["result"].toString().contains("**My own: teal**"));
}

TEST_F(DemoPermission, AQuestionIsAskedEvenWhenPermissionsAreSkipped)
{
    agent.start({"--dangerously-skip-permissions"});

    EXPECT_EQ(requestOf(askedFor("ask"))["tool_name"], "AskUserQuestion");
}

TEST_F(DemoPermission, ARefusedQuestionIsAnErrorOfTheTool)
{
    agent.start();

    agent.deny(askedFor("ask"), "The user interrupted.");
    const Lines rest = agent.untilResult();

    EXPECT_EQ(textOf(first(rest, "user/tool_result")), "The user interrupted.");
    EXPECT_EQ(rest.last()["subtype"], "success");
}

TEST_F(DemoPermission, APlanStandsInTheCallAndNotInTheRequest)
{
    agent.start({"--permission-mode", "plan"});
    agent.sendTurn("plan Build a boat");
    const Lines asked = agent.untilType("control_request");

    const QJsonObject call = first(asked, "assistant/tool_use");
    EXPECT_TRUE(call["message"].toObject()["content"][0]["input"]["plan"].toString().contains(
        "Build a boat"));
    EXPECT_EQ(requestOf(asked.last())["tool_name"], "ExitPlanMode");
    EXPECT_EQ(requestOf(asked.last())["input"].toObject(), QJsonObject());

    agent.allow(asked.last());
    const Lines rest = agent.untilResult();

    const QJsonObject status = first(rest, "system/status");
    EXPECT_EQ(status["permissionMode"], "default") << "an approved plan ends the plan mode";
    EXPECT_EQ(status["status"], QJsonValue::Null);
}

TEST_F(DemoPermission, ARefusedPlanKeepsThePlanMode)
{
    agent.start({"--permission-mode", "plan"});

    agent.deny(askedFor("plan"), "Not yet");
    (void)agent.untilResult();

    EXPECT_EQ(first(agent.turn("hello"), "system/init")["permissionMode"], "plan");
}
