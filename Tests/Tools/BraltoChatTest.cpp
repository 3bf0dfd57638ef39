// bralto-chat as a process: commands in, reports out, with the demo agent behind it.

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

namespace {

class BraltoChat : public testing::Test {
protected:
    BraltoChat()
    {
        QDir(m_home.path()).mkdir("project");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", m_home.path());
        environment.insert("BRALTO_DEMO_SPEED", "0");
        m_process.setProcessEnvironment(environment);
    }
    ~BraltoChat() override
    {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(30000))
            m_process.kill();
    }

    void start(const QString& script = {}, const QStringList& more = {})
    {
        QString command = BRALTO_BIN "/bralto-demo-agent --permission-mode default";
        if (!script.isEmpty())
            command += " --script '" BRALTO_FIXTURES "/Scripts/" + script + ".script'";
        m_process.start(BRALTO_BIN "/bralto-chat",
                        QStringList{m_home.filePath("project"), "--command", command} + more);
        ASSERT_TRUE(m_process.waitForStarted());
    }
    void type(const QByteArray& line) { m_process.write(line + '\n'); }

    /// Reads on until a report fits; an undefined value if none comes.
    QJsonValue report(const std::function<bool(const QJsonValue&)>& fits)
    {
        for (;;) {
            while (m_process.canReadLine()) {
                const QJsonValue line = QJsonDocument::fromJson(m_process.readLine()).object();
                if (fits(line))
                    return line;
            }
            if (!m_process.waitForReadyRead(30000))
                return QJsonValue::Undefined;
        }
    }
    QJsonValue report(const QString& event)
    {
        return report([&event](const QJsonValue& line) { return line["event"] == event; });
    }
    bool reportsState(const QString& state)
    {
        return !report([&state](const QJsonValue& line) {
                    return line["event"] == "state" && line["state"] == state;
                }).isUndefined();
    }
    /// The reports up to the end of the process.
    QStringList rest()
    {
        EXPECT_TRUE(m_process.waitForFinished(30000));
        return QString::fromUtf8(m_process.readAll()).split('\n', Qt::SkipEmptyParts);
    }

    QTemporaryDir m_home;
    QProcess m_process;
};

TEST_F(BraltoChat, ExplainsItself)
{
    m_process.start(BRALTO_BIN "/bralto-chat", {"--help"});
    ASSERT_TRUE(m_process.waitForFinished(30000));

    const QByteArray text = m_process.readAllStandardOutput();
    EXPECT_EQ(m_process.exitCode(), 0);
    for (const char* verb : {"send", "allow", "deny", "answer", "interrupt", "model", "effort",
                             "mode", "remote", "control", "switch", "stop", "quit"}) {
        SCOPED_TRACE(verb);
        EXPECT_TRUE(text.contains('"' + QByteArray(verb) + '"'));
    }
    for (const QByteArray& line : text.split('\n'))
        EXPECT_LE(line.size(), 100) << line.constData();
}

TEST_F(BraltoChat, RefusesWhatIsNoFolder)
{
    m_process.start(BRALTO_BIN "/bralto-chat", {"/no/such/folder"});
    ASSERT_TRUE(m_process.waitForFinished(30000));
    EXPECT_EQ(m_process.exitCode(), 1);

    m_process.start(BRALTO_BIN "/bralto-chat", {"--nonsense"});
    ASSERT_TRUE(m_process.waitForFinished(30000));
    EXPECT_EQ(m_process.exitCode(), 2);
}

TEST_F(BraltoChat, TakesATurnAndEndsWithItsInput)
{
    start("text");
    type(R"({"do":"send","text":"Hello"})");
    m_process.closeWriteChannel();

    EXPECT_FALSE(report("session")["id"].toString().isEmpty());
    EXPECT_EQ(report("title")["title"], "Hello");
    const QJsonValue answer = report([](const QJsonValue& line) {
        const QJsonArray blocks = line["message"]["blocks"].toArray();
        return line["row"] == 1 && blocks.last()["text"] == "You said: Hello";
    });
    EXPECT_EQ(answer["message"]["role"], "assistant");
    EXPECT_TRUE(reportsState("idle"));
    const auto lines = rest();
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(),
                            [](const auto& line) { return line.contains("turnEnded"); }));
    EXPECT_EQ(m_process.exitCode(), 0);
}

TEST_F(BraltoChat, AnswersCards)
{
    start("permission");
    type(R"({"do":"send","text":"Hello"})");
    const QJsonValue card = report("permission");
    EXPECT_EQ(card["tool"], "Bash");
    EXPECT_EQ(card["input"]["command"], "touch made.txt");
    ASSERT_TRUE(reportsState("waiting"));

    type(R"({"do":"allow"})");

    EXPECT_TRUE(report("permission")["id"].isUndefined());
    EXPECT_TRUE(reportsState("idle"));
}

TEST_F(BraltoChat, AnswersQuestions)
{
    start("question");
    type(R"({"do":"send","text":"Hello"})");
    EXPECT_EQ(report("question")["items"][0]["options"][0]["label"], "Left");
    ASSERT_TRUE(reportsState("waiting"));

    type(R"({"do":"answer","answers":{"Which way?":"Left"}})");

    EXPECT_FALSE(report([](const QJsonValue& line) {
                     return line["message"]["blocks"].toArray().last()["text"] == "Then that way.";
                 }).isUndefined());
}

TEST_F(BraltoChat, TellsTheReplyToARequest)
{
    start("mcp");
    type(R"({"do":"control","subtype":"mcp_status","fields":{"any":1}})");

    const QJsonValue reply = report("reply");

    EXPECT_EQ(reply["subtype"], "mcp_status");
    EXPECT_EQ(reply["payload"]["mcpServers"][0]["name"], "broken");
}

TEST_F(BraltoChat, TellsWhatIsWrongWithALine)
{
    start();
    struct Row {
        const char* line;
        const char* error;
    };
    for (const Row& row : {Row{"junk", "not a JSON object"}, Row{"[]", "not a JSON object"},
                           Row{"{}", "do is missing"}, Row{R"({"do":1})", "do is missing"},
                           Row{R"({"do":"dance"})", "unknown command: dance"},
                           Row{R"({"do":"send"})", "text is missing"},
                           Row{R"({"do":"answer","answers":{"Q":1}})", "an answer is no string"},
                           Row{R"({"do":"remote","on":"yes"})", "on is missing"},
                           Row{R"({"do":"allow"})", "no permission is asked for"},
                           Row{R"({"do":"answer","answers":{}})", "no question is open"}}) {
        SCOPED_TRACE(row.line);
        type(row.line);

        EXPECT_EQ(
            report([](const QJsonValue& line) { return !line["error"].isUndefined(); })["error"],
            row.error);
    }
}

TEST_F(BraltoChat, SwitchesToAnotherConversationAndBack)
{
    start("text");
    const QString first = report("session")["id"].toString();
    type(R"({"do":"send","text":"Hello"})");
    ASSERT_FALSE(report("turnEnded").isUndefined());

    type(R"({"do":"switch"})");
    EXPECT_NE(report("session")["id"], first);
    type(R"({"do":"switch","session":")" + first.toUtf8() + R"("})");

    EXPECT_EQ(report("session")["id"], first);
    const QJsonValue message = report("message");
    EXPECT_EQ(message["row"], 0);
    EXPECT_EQ(message["message"]["blocks"][0]["text"], "Hello");
}

TEST_F(BraltoChat, GoesOnWithAStoredConversation)
{
    start("text");
    const QString session = report("session")["id"].toString();
    type(R"({"do":"send","text":"Hello"})");
    ASSERT_FALSE(report("turnEnded").isUndefined());
    type(R"({"do":"quit"})");
    ASSERT_TRUE(m_process.waitForFinished(30000));

    start("text", {"--session", session});

    EXPECT_EQ(report("session")["id"], session);
    EXPECT_EQ(report("title")["title"], "Hello");
}

TEST_F(BraltoChat, StopsAndGoesOn)
{
    start("silent-turn");
    type(R"({"do":"send","text":"Hello"})");
    ASSERT_TRUE(reportsState("working"));

    type(R"({"do":"stop"})");
    EXPECT_TRUE(reportsState("idle"));

    type(R"({"do":"send","text":"Again"})");
    EXPECT_TRUE(reportsState("starting"));
    type(R"({"do":"quit"})");
    EXPECT_TRUE(m_process.waitForFinished(30000));
    EXPECT_EQ(m_process.exitCode(), 0);
}

TEST_F(BraltoChat, ACardThatNobodyCanAnswerIsNotWaitedFor)
{
    start("permission");
    type(R"({"do":"send","text":"Hello"})");
    ASSERT_TRUE(reportsState("waiting"));

    m_process.closeWriteChannel();

    EXPECT_TRUE(m_process.waitForFinished(30000));
    EXPECT_EQ(m_process.exitCode(), 0);
}

} // namespace
