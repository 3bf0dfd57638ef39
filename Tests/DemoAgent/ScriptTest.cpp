#include "Tests/DemoAgent/RunningAgent.h"

#include <csignal>

using namespace DemoAgentTests;

namespace {

struct DemoScript : testing::Test {
    void play(const QString& script)
    {
        agent.start({"--script", agent.write("test.script", script.toUtf8())});
    }
    void playReady(const QString& name)
    {
        agent.start({"--script", QStringLiteral(BRALTO_FIXTURES "/Scripts/%1.script").arg(name)});
    }
    static pid_t spawned(const QByteArray& record)
    {
        for (const QByteArray& line : record.split('\n')) {
            const QJsonObject entry = QJsonDocument::fromJson(line).object();
            if (entry["from"] == "spawn")
                return static_cast<pid_t>(entry["pid"].toInt());
        }
        return 0;
    }

    RunningAgent agent;
};

} // namespace

TEST_F(DemoScript, AMistakeInTheScriptEndsTheProgramBeforeItBegins)
{
    play("await user\nspeak up\n");

    EXPECT_EQ(agent.wait(), 2);
    EXPECT_TRUE(agent.errors().endsWith("test.script: line 2: unknown step \"speak\"\n"));
}

TEST_F(DemoScript, AScriptThatIsMissingIsAnError)
{
    agent.start({"--script", "/nowhere.script"});

    EXPECT_EQ(agent.wait(), 2);
    EXPECT_TRUE(agent.errors().startsWith("/nowhere.script: "));
}

TEST_F(DemoScript, ATurnIsPlayedInTheProtocolsOrder)
{
    playReady("text");

    const Lines lines = agent.turn("hello");

    EXPECT_EQ(kinds(lines),
              (QStringList{"system/init", "system/status", "message_start", "content_block_start",
                           "delta/thinking_delta", "delta/signature_delta", "assistant/thinking",
                           "content_block_stop", "content_block_start", "delta/text_delta",
                           "assistant/text", "content_block_stop", "message_delta", "message_stop",
                           "result/success"}));
    EXPECT_EQ(lines.last()["result"], "You said: hello");
    EXPECT_EQ(agent.turn("again").last()["result"], "You said: again");
    EXPECT_EQ(agent.finish(), 0);
}

TEST_F(DemoScript, UserTurnsWaitUntilTheScriptAsksForThem)
{
    play("await user\nawait control go\nreply {}\ninit\ntext ${text}\nresult\n"
         "await user\ninit\ntext ${text}\nresult\n");
    agent.sendTurn("one");
    agent.sendTurn("two");
    (void)agent.control("get_settings");

    EXPECT_EQ(agent.control("go")["subtype"], "success");

    EXPECT_EQ(agent.untilResult().last()["result"], "one");
    EXPECT_EQ(agent.untilResult().last()["result"], "two");
}

TEST_F(DemoScript, AfterItsLastStepTheOrdinaryBehaviourGoesOn)
{
    play("await user\ninit\ntext scripted\nresult\n");
    agent.sendTurn("count 2");
    agent.sendTurn("count 3");

    EXPECT_EQ(agent.untilResult().last()["result"], "scripted");
    EXPECT_EQ(agent.untilResult().last()["result"], "1, 2, 3.");
    EXPECT_EQ(agent.finish(), 0);
}

TEST_F(DemoScript, TheAnswerToARequestDecidesTheBranch)
{
    for (const bool isAllowed : {true, false}) {
        SCOPED_TRACE(isAllowed);
        RunningAgent other;
        other.start({"--script", BRALTO_FIXTURES "/Scripts/permission.script"});
        other.sendTurn("go");
        const QJsonObject request = other.untilType("control_request").last();

        if (isAllowed)
            other.allow(request);
        else
            other.deny(request, "not today");
        const Lines rest = other.untilResult();

        EXPECT_EQ(textOf(rest.first()), isAllowed ? "made" : "not today");
        EXPECT_EQ(rest.last()["result"], isAllowed ? "It is made." : "I left it.");
    }
}

TEST_F(DemoScript, TwoCallsOfAMessageAreAskedForOneAfterTheOther)
{
    playReady("two-permissions");
    agent.sendTurn("go");

    const Lines one = agent.untilType("control_request");
    agent.allow(one.last());
    const Lines two = agent.untilType("control_request");
    agent.deny(two.last(), "no");
    const Lines rest = agent.untilResult();

    EXPECT_EQ(kind(one.last()), "ask/Bash");
    EXPECT_EQ(kinds(two), (QStringList{"user/tool_result", "ask/Write"}));
    EXPECT_EQ(two.last()["request"].toObject()["input"].toObject()["file_path"],
              agent.folder() + "/two.txt");
    EXPECT_EQ(textOf(rest.first()), "no");
}

TEST_F(DemoScript, ControlRequestsAreHeldRefusedOrMuted)
{
    play("mute get_status\nawait control set_model\nreply-error No such model: ${field:model}\n"
         "await control get_usage\nreply {\"asked\": \"${request}\"}\nsilence\n");
    agent.sendControl("get_status");

    const QJsonObject refused = agent.control("set_model", {{"model", "nobody"}});
    const QJsonObject held = agent.control("get_usage");

    EXPECT_EQ(refused["error"], "No such model: nobody");
    EXPECT_EQ(held["response"].toObject()["asked"], "get_usage-1");
    EXPECT_EQ(agent.control("get_settings")["subtype"], "success") << "the others are answered";
}

TEST_F(DemoScript, ATurnOfTheOrdinaryBehaviourCanBePartOfIt)
{
    play("await user\nturn\nawait user\nturn\nexit 4\n");

    EXPECT_EQ(agent.turn("count 2").last()["result"], "1, 2.");
    agent.sendTurn("count 1000000");
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "delta/text_delta"; });
    agent.sendControl("interrupt");

    EXPECT_EQ(agent.untilResult().last()["terminal_reason"], "aborted_streaming");
    EXPECT_EQ(agent.wait(), 4);
}

TEST_F(DemoScript, AnInterruptedTurnIsPlayedWithItsLines)
{
    playReady("interrupt");
    agent.sendTurn("go");
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "delta/text_delta"; });

    agent.sendControl("interrupt");
    const Lines lines = agent.untilResult();

    EXPECT_EQ(textOf(first(lines, "assistant/text")), "one two three");
    EXPECT_EQ(textOf(first(lines, "user/text")), "[Request interrupted by user]");
    EXPECT_EQ(agent.turn("again").last()["result"], "Still here.");
}

TEST_F(DemoScript, TheEndOfTheInputEndsAScriptThatWaits)
{
    playReady("text");

    EXPECT_EQ(agent.finish(), 0);
}

TEST_F(DemoScript, SilenceEndsOnlyBySignal)
{
    playReady("silent-turn");
    agent.sendTurn("go");
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "system/init"; });
    agent.process().closeWriteChannel();

    EXPECT_FALSE(agent.process().waitForFinished(200));
    agent.process().terminate();
    EXPECT_EQ(agent.wait(), 143);
}

TEST_F(DemoScript, ADeathInTheMiddleOfATurnHasItsStatusAndItsReason)
{
    playReady("crash-mid-turn");
    agent.sendTurn("go");

    const Lines lines = agent.untilResult();

    EXPECT_EQ(kind(lines.last()), "delta/text_delta");
    EXPECT_EQ(agent.wait(), 3);
    EXPECT_EQ(agent.errors(), "fatal: the demo agent fell over\n");
}

TEST_F(DemoScript, ItKillsItselfBySignal)
{
    for (const auto& [name, number] : {std::pair{"SIGKILL", SIGKILL}, std::pair{"SIGSEGV", SIGSEGV},
                                       std::pair{"SIGHUP", SIGHUP}}) {
        SCOPED_TRACE(name);
        RunningAgent other;
        const QByteArray script = QByteArray("await user\ninit\nkill ") + name + "\n";
        other.start({"--script", other.write("test.script", script)});
        other.sendTurn("go");

        EXPECT_EQ(other.wait(), 128 + number);
    }
}

TEST_F(DemoScript, TermCanBeIgnored)
{
    playReady("ignores-sigterm");
    agent.sendTurn("go");
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "system/init"; });

    agent.process().terminate();

    EXPECT_FALSE(agent.process().waitForFinished(200));
    agent.process().kill();
    EXPECT_EQ(agent.wait(), 128 + SIGKILL);
}

TEST_F(DemoScript, GarbageIsSentByteForByte)
{
    play("raw no JSON\\n\nraw \\xff\\x00\\n\nbase64 w6kK\n{\"a\": 1,  \"b\": \"${session}\"}\n"
         "raw the end\nexit 0\n");

    EXPECT_EQ(*agent.nextBytes(), "no JSON");
    EXPECT_EQ(*agent.nextBytes(), QByteArray("\xff\0", 2));
    EXPECT_EQ(*agent.nextBytes(), "é");
    EXPECT_TRUE(agent.nextBytes()->startsWith("{\"a\": 1,  \"b\": \""));
    EXPECT_EQ(*agent.nextBytes(), "the end");
    EXPECT_FALSE(agent.nextBytes());
}

TEST_F(DemoScript, ABigLineIsValidAndAsLongAsItSays)
{
    play("big-line 3\nexit 0\n");

    const auto line = agent.nextBytes();

    ASSERT_TRUE(line);
    EXPECT_GT(line->size(), 3 * 1024 * 1024);
    EXPECT_LT(line->size(), 3 * 1024 * 1024 + 200);
    const QJsonObject object = QJsonDocument::fromJson(*line).object();
    EXPECT_EQ(textOf(object).size(), 3 * 1024 * 1024);
}

TEST_F(DemoScript, OutputIsCutIntoPieces)
{
    play("cut 7 5\nraw 12345678901234567890\\n\ncut 0\nexit 0\n");

    agent.process().waitForReadyRead(30000);
    EXPECT_EQ(agent.process().peek(1000).size(), 7);
    EXPECT_EQ(*agent.nextBytes(), "12345678901234567890");
}

TEST_F(DemoScript, AFloodOnStderrHasTheSizeThatWasAskedFor)
{
    play("stderr-flood 2\nraw done\\n\nexit 0\n");

    EXPECT_EQ(*agent.nextBytes(), "done");
    EXPECT_EQ(agent.wait(), 0);
    EXPECT_EQ(agent.errors().size(), 2 * 1024 * 1024);
}

TEST_F(DemoScript, AChildOutlivesItAndHoldsItsPipesUnlessItIsQuiet)
{
    for (const bool isQuiet : {false, true}) {
        SCOPED_TRACE(isQuiet);
        RunningAgent other;
        const QString words = isQuiet ? "spawn 600 setsid quiet" : "spawn 600 setsid";
        other.start({"--script",
                     other.write("test.script", "record log\n" + words.toUtf8() + "\nexit 0\n")});
        other.process().waitForReadyRead(isQuiet ? 30000 : 300);

        const pid_t child = spawned(other.read("log"));
        ASSERT_GT(child, 0);
        EXPECT_EQ(::kill(child, 0), 0);
        EXPECT_EQ(::getsid(child), child);
        const QString output = QFile::symLinkTarget(QString("/proc/%1/fd/1").arg(child));
        EXPECT_EQ(output == "/dev/null", isQuiet);
        ::kill(child, SIGKILL);
    }
}

TEST_F(DemoScript, ItsPipesCanBeClosed)
{
    const QString script = agent.write("test.script", "raw last words\\n\nclose-stdout\n"
                                                      "await eof\n");
    agent.startProgram("/bin/sh", {"-c", "'" + Program + "' -p --script '" + script +
                                             "' | { cat; echo closed; }"});

    EXPECT_EQ(*agent.nextBytes(), "last words");
    EXPECT_EQ(*agent.nextBytes(), "closed");
    EXPECT_EQ(agent.process().state(), QProcess::Running) << "it waits for its input";
    EXPECT_EQ(agent.finish(), 0);
}

TEST_F(DemoScript, ARepeatedBlockCounts)
{
    play("repeat 3\nraw ${n}\nend\nraw \\n\nexit 0\n");

    EXPECT_EQ(*agent.nextBytes(), "123");
}

TEST_F(DemoScript, StepsThatDontFitHarmNobody)
{
    play("text-end\nmessage-end\nabout 7\ntool-result none\ncancel\nreply\nresult\nabout x\n"
         "repeat nothing\nend\nsleep x\nthinking\ntext\nturn\nexit 5\n");

    EXPECT_GT(agent.untilResult().size(), 3);
    agent.process().closeWriteChannel();
    EXPECT_EQ(agent.wait(), 5);
}

TEST_F(DemoScript, WhatTheAppSentIsRecorded)
{
    const QString log = agent.folder() + "/log.ndjson";
    agent.start({"--record", log});
    (void)agent.turn("count 2");
    agent.sendBytes("\nno JSON\n");
    EXPECT_EQ(agent.wait(), 1);

    QList<QJsonObject> entries;
    for (const QByteArray& line : agent.read("log.ndjson").split('\n')) {
        if (!line.isEmpty())
            entries.append(QJsonDocument::fromJson(line).object());
    }
    ASSERT_EQ(entries.size(), 3);
    EXPECT_EQ(entries.at(0)["from"], "start");
    EXPECT_EQ(entries.at(0)["cwd"], agent.folder());
    EXPECT_EQ(entries.at(0)["args"].toArray().first(), "-p");
    EXPECT_EQ(entries.at(0)["env"].toObject()["HOME"], agent.home());
    const QJsonValue sent = entries.at(1)["line"];
    EXPECT_EQ(sent["message"]["content"][0]["text"], "count 2");
    EXPECT_EQ(entries.at(2)["text"], "no JSON");
}

TEST_F(DemoScript, ProcessesThatShareARecordAppendToIt)
{
    const QString log = agent.folder() + "/log.ndjson";
    for (int time = 0; time < 2; ++time) {
        agent.start({"--record", log});
        EXPECT_EQ(agent.finish(), 0);
        agent.process().close();
    }

    EXPECT_EQ(agent.read("log.ndjson").count("\"from\":\"start\""), 2);
    EXPECT_EQ(agent.read("log.ndjson").count("\"from\":\"eof\""), 2);
}
