#include "Tests/DemoAgent/RunningAgent.h"

#include <csignal>

using namespace DemoAgentTests;

namespace {

struct DemoProcess : testing::Test {
    void signal(int number) { ::kill(static_cast<pid_t>(agent.process().processId()), number); }

    RunningAgent agent;
};

} // namespace

TEST_F(DemoProcess, ItTellsItsVersionAndItsFlags)
{
    agent.startWith({"--version"});
    EXPECT_EQ(agent.finish(), 0);
    EXPECT_TRUE(agent.process().readAll().endsWith("(Bralto demo agent)\n"));
    agent.process().close();

    agent.startWith({"--help"});
    EXPECT_EQ(agent.finish(), 0);
    EXPECT_TRUE(agent.process().readAll().contains("--script FILE"));
}

TEST_F(DemoProcess, WithoutPipesItSaysHowItIsStarted)
{
    agent.startWith({});

    EXPECT_EQ(agent.finish(), 1);
    EXPECT_TRUE(agent.errors().contains("-p --input-format stream-json"));
}

TEST_F(DemoProcess, UnknownFlagsAreIgnored)
{
    agent.start({"--chrome", "--settings", "{}", "--no-such-flag", "value", "--other=1"});

    EXPECT_EQ(agent.turn("count 2").last()["result"], "1, 2.");
    EXPECT_EQ(agent.finish(), 0);
}

TEST_F(DemoProcess, AFlagMayCarryItsValueBehindAnEqualsSign)
{
    agent.start({"--model=haiku", "--permission-mode=plan"});

    const QJsonObject init = first(agent.turn("count 2"), "system/init");

    EXPECT_EQ(init["model"], "claude-haiku-5-5");
    EXPECT_EQ(init["permissionMode"], "plan");
}

TEST_F(DemoProcess, WithNoInputItEndsAtOnce)
{
    agent.start();

    EXPECT_EQ(agent.finish(), 0);
    EXPECT_TRUE(agent.process().readAll().isEmpty());
}

TEST_F(DemoProcess, TheRunningTurnIsFinishedAfterTheEndOfTheInput)
{
    agent.setSpeed("50");
    agent.start();
    agent.sendTurn("count 20");
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "system/init"; });

    agent.process().closeWriteChannel();
    const Lines rest = agent.untilResult();

    EXPECT_TRUE(rest.last()["result"].toString().endsWith("19, 20."));
    EXPECT_EQ(agent.wait(), 0);
}

TEST_F(DemoProcess, ALastLineWithoutALineFeedIsTaken)
{
    agent.start();
    agent.sendBytes(R"({"type":"user","message":{"role":"user","content":"count 2"}})");

    agent.process().closeWriteChannel();

    EXPECT_EQ(agent.untilResult().last()["result"], "1, 2.");
    EXPECT_EQ(agent.wait(), 0);
}

TEST_F(DemoProcess, AnOpenPermissionCountsAsDeniedWhenNobodyIsThereToAnswer)
{
    agent.start();
    agent.sendTurn("write notes.txt");
    (void)agent.untilType("control_request");

    agent.process().closeWriteChannel();

    EXPECT_EQ(agent.untilResult().last()["permission_denials"].toArray().size(), 1);
    EXPECT_EQ(agent.wait(), 0);
    EXPECT_FALSE(QFile::exists(agent.folder() + "/notes.txt"));
}

TEST_F(DemoProcess, ALineThatIsNoJsonEndsIt)
{
    agent.start();
    agent.sendBytes("this is no JSON\n");

    EXPECT_EQ(agent.wait(), 1);
    EXPECT_TRUE(agent.errors().contains("Error parsing streaming input line"));
}

TEST_F(DemoProcess, EmptyAndUnknownLinesAreIgnored)
{
    agent.start();
    agent.sendBytes("\n  \n{}\n[]\n{\"type\":\"of_the_future\"}\n{\"type\":7}\n"
                    "{\"type\":\"control_response\"}\n{\"type\":\"user\"}\n");

    const QString first = agent.untilResult().last()["result"].toString();

    EXPECT_TRUE(first.contains("demo agent")) << "a user line without content is a turn too";
    EXPECT_EQ(agent.turn("count 2").last()["result"], "1, 2.");
}

TEST_F(DemoProcess, LinesMayArriveInAnyPieces)
{
    agent.start();
    const QByteArray line = R"({"type":"user","message":{"role":"user","content":"think Größe"}})";
    for (const char byte : line + '\n') {
        agent.sendBytes(QByteArray(1, byte));
        agent.process().waitForBytesWritten();
    }

    EXPECT_TRUE(
        agent.untilResult().last()["result"].toString().contains(QString::fromUtf8("Größe")));
}

TEST_F(DemoProcess, ALineOfMegabytesIsATurn)
{
    agent.start();
    const QJsonObject source{
        {"type", "base64"}, {"media_type", "image/png"}, {"data", QString(20 * 1024 * 1024, u'A')}};
    const QJsonObject image{{"type", "image"}, {"source", source}};
    agent.send({{"type", "user"}, {"message", QJsonObject{{"content", QJsonArray{image}}}}});

    EXPECT_TRUE(agent.untilResult().last()["result"].toString().contains("the picture"));
}

TEST_F(DemoProcess, TermEndsItAtOnceWith143)
{
    agent.start();
    agent.sendTurn("count 1000000");
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "delta/text_delta"; });

    signal(SIGTERM);

    EXPECT_EQ(agent.wait(), 143);
}

TEST_F(DemoProcess, InterruptSignalEndsItWith0)
{
    agent.start();
    (void)agent.control("initialize");

    signal(SIGINT);

    EXPECT_EQ(agent.wait(), 0);
}

TEST_F(DemoProcess, ARunningCommandEndsWithIt)
{
    const PidPipe pipe(agent);
    agent.start({"--dangerously-skip-permissions"});
    agent.sendTurn("run echo $$ > pid; exec sleep 600");
    const pid_t child = pipe.read();

    signal(SIGTERM);

    EXPECT_EQ(agent.wait(), 143);
    EXPECT_TRUE(waitForEnd(child));
}

TEST_F(DemoProcess, AReaderThatHasGoneEndsIt)
{
    agent.startProgram("/bin/sh", {"-c", "('" + Program +
                                             "' -p --include-partial-messages; "
                                             "echo status $? >&2) | head -n 3"});
    agent.sendTurn("count 1000000");

    EXPECT_EQ(agent.wait(), 0);
    EXPECT_EQ(agent.errors(), "status 1\n");
}
