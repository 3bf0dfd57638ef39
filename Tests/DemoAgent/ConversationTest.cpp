#include "Tests/DemoAgent/RunningAgent.h"

#include <QDirIterator>

using namespace DemoAgentTests;

namespace {

const QString Session = "586c774f-6741-40ac-a532-3ab5f5ede788";

struct DemoConversation : testing::Test {
    [[nodiscard]] QString path() const
    {
        QString name = agent.folder();
        for (QChar& character : name) {
            const bool stays = character.unicode() < 128 && character.isLetterOrNumber();
            character = stays ? character : u'-';
        }
        return agent.home() + "/.claude/projects/" + name + '/' + Session + ".jsonl";
    }
    [[nodiscard]] Lines stored() const
    {
        Lines lines;
        QFile file(path());
        if (!file.open(QFile::ReadOnly))
            return lines;
        while (!file.atEnd())
            lines.append(QJsonDocument::fromJson(file.readLine()).object());
        return lines;
    }
    [[nodiscard]] Lines messages() const
    {
        Lines lines;
        for (const QJsonObject& line : stored()) {
            if (line["type"] == "user" || line["type"] == "assistant")
                lines.append(line);
        }
        return lines;
    }
    void startAnew(const QStringList& arguments)
    {
        EXPECT_EQ(agent.finish(), 0);
        agent.process().close();
        agent.start(arguments);
    }

    RunningAgent agent;
};

} // namespace

TEST_F(DemoConversation, TheFileIsMadeByTheFirstTurnForItsOwnerOnly)
{
    agent.start({"--session-id", Session});
    (void)agent.control("initialize");
    EXPECT_FALSE(QFile::exists(path()));

    (void)agent.turn("count 2");

    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(path()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_TRUE(QFileInfo(path()).dir().dirName().endsWith("-my-project-1"));
}

TEST_F(DemoConversation, EveryMessageIsAChainedLine)
{
    (void)agent.write("README.md", "x\n");
    agent.start({"--session-id", Session});

    (void)agent.turn("read README.md");

    QStringList stored;
    QJsonValue parent = QJsonValue::Null;
    for (const QJsonObject& line : messages()) {
        stored.append(kind(line));
        EXPECT_EQ(line["parentUuid"], parent);
        EXPECT_EQ(line["sessionId"], Session);
        EXPECT_EQ(line["cwd"], agent.folder());
        EXPECT_EQ(line["isSidechain"], false);
        EXPECT_TRUE(
            QDateTime::fromString(line["timestamp"].toString(), Qt::ISODateWithMs).isValid());
        parent = line["uuid"];
    }
    const QStringList expected{"user/text", "assistant/text", "assistant/tool_use",
                               "user/tool_result", "assistant/text"};
    EXPECT_EQ(stored, expected);
    EXPECT_TRUE(messages().at(3)["toolUseResult"].isObject());
}

TEST_F(DemoConversation, ResumingGoesOnInTheSameFileAndRemembers)
{
    agent.start({"--session-id", Session});
    (void)agent.turn("count 2");
    (void)agent.turn("count 3");
    startAnew({"--resume", Session});

    const Lines lines = agent.turn("remember");

    const QString text = lines.last()["result"].toString();
    EXPECT_TRUE(text.contains("turn 3"));
    EXPECT_TRUE(text.contains("It began with \"count 2\""));
    EXPECT_TRUE(text.contains("before this you wrote \"count 3\""));
    EXPECT_EQ(kind(lines.first()), "system/init") << "nothing of the past is sent again";
    EXPECT_EQ(lines.first()["session_id"], Session);
    QJsonValue parent = QJsonValue::Null;
    for (const QJsonObject& line : messages()) {
        EXPECT_EQ(line["parentUuid"], parent);
        parent = line["uuid"];
    }
    EXPECT_EQ(messages().size(), 6);
}

TEST_F(DemoConversation, ADamagedLineIsSkippedWhenResuming)
{
    agent.start({"--session-id", Session});
    (void)agent.turn("count 2");
    EXPECT_EQ(agent.finish(), 0);
    QFile file(path());
    ASSERT_TRUE(file.open(QFile::Append));
    file.write("{\"type\":\"user\",\"mess\n\xff\xfe\n[]\n\n");
    file.close();
    agent.process().close();

    agent.start({"--resume", Session});

    EXPECT_TRUE(agent.turn("remember").last()["result"].toString().contains("turn 2"));
}

TEST_F(DemoConversation, ResumingAnUnknownOneFailsWithAResultLine)
{
    agent.start({"--resume", Session});
    agent.sendControl("initialize");

    const QJsonObject line = *agent.next();

    const QString error = "No conversation found with session ID: " + Session;
    EXPECT_EQ(kind(line), "result/error_during_execution");
    EXPECT_EQ(line["errors"], QJsonArray{error});
    EXPECT_EQ(agent.wait(), 1);
    EXPECT_EQ(agent.errors(), error.toUtf8() + '\n');
    EXPECT_FALSE(agent.next());
}

TEST_F(DemoConversation, AnIdThatIsInUseIsRefused)
{
    agent.start({"--session-id", Session});
    (void)agent.turn("count 2");
    EXPECT_EQ(agent.finish(), 0);
    agent.process().close();

    agent.start({"--session-id", Session});

    EXPECT_EQ(agent.wait(), 1);
    EXPECT_EQ(agent.errors(), "Error: Session ID " + Session.toUtf8() + " is already in use.\n");
    EXPECT_FALSE(agent.next());
}

TEST_F(DemoConversation, AProcessWithoutATurnLeavesItsIdFree)
{
    agent.start({"--session-id", Session});
    (void)agent.control("initialize");
    startAnew({"--session-id", Session});

    EXPECT_EQ(agent.turn("count 2").last()["subtype"], "success");
}

TEST_F(DemoConversation, AnInterruptedTurnIsStoredWithItsNotice)
{
    agent.start({"--session-id", Session});
    agent.sendTurn("count 1000000");
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "delta/text_delta"; });
    agent.sendControl("interrupt");
    (void)agent.untilResult();

    const Lines lines = messages();

    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines.at(1)["isAbortedMidStream"], true);
    EXPECT_TRUE(textOf(lines.at(1)).startsWith("1, "));
    EXPECT_EQ(textOf(lines.at(2)), "[Request interrupted by user]");
}

TEST_F(DemoConversation, ANoticeOrACommandIsNotCountedAsATurn)
{
    agent.start({"--session-id", Session});
    agent.sendTurn("count 1000000");
    (void)agent.until([](const QJsonObject& line) { return kind(line) == "delta/text_delta"; });
    agent.sendControl("interrupt");
    (void)agent.untilResult();
    (void)agent.turn("/compact");
    startAnew({"--resume", Session});

    const QString text = agent.turn("remember").last()["result"].toString();

    EXPECT_TRUE(text.contains("turn 3")) << text.toStdString();
}

TEST_F(DemoConversation, ASubagentHasItsOwnFile)
{
    agent.start({"--session-id", Session});
    (void)agent.turn("agents");

    QDirIterator files(path().chopped(6) + "/subagents", {"agent-*.jsonl"});
    ASSERT_TRUE(files.hasNext());
    QFile file(files.next());
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    int lines = 0;
    while (!file.atEnd()) {
        EXPECT_EQ(QJsonDocument::fromJson(file.readLine()).object()["isSidechain"], true);
        ++lines;
    }
    EXPECT_GT(lines, 3);
    for (const QJsonObject& line : messages())
        EXPECT_EQ(line["isSidechain"], false);
}
