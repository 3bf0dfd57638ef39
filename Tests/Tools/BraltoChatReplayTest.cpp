// bralto-chat --replay as a process: a file of lines in, a transcript out.

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

const QString Fixtures = QStringLiteral(BRALTO_FIXTURES "/Agent/");

struct Outcome {
    int status = -1;
    QByteArray output;
    QByteArray errors;

    [[nodiscard]] QJsonObject transcript() const
    {
        return QJsonDocument::fromJson(output).object();
    }
};

Outcome replay(const QStringList& arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), QStringLiteral("/home/user"));
    process.setProcessEnvironment(environment);
    process.start(BRALTO_BIN "/bralto-chat", QStringList{"--replay"} + arguments);
    EXPECT_TRUE(process.waitForFinished());
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

QByteArray expected(const QString& fixture)
{
    QFile file(Fixtures + fixture + ".expected.json");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

class BraltoChatReplay : public testing::Test {
protected:
    QString write(const QByteArray& bytes)
    {
        const QString path = m_folder.filePath(QStringLiteral("lines.jsonl"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(BraltoChatReplay, AStoredConversationGivesItsTranscript)
{
    const Outcome run = replay({Fixtures + "question.session.jsonl"});

    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, expected(QStringLiteral("question.session.jsonl")));
}

TEST_F(BraltoChatReplay, ARecordingOfTheAgentGivesItsTranscript)
{
    const Outcome run = replay({Fixtures + "subagent_foreground.ndjson"});
    const QJsonObject golden =
        QJsonDocument::fromJson(expected(QStringLiteral("subagent_foreground.ndjson"))).object();

    EXPECT_EQ(run.status, 0);
    // Streamed messages are from now, so the dates differ.
    EXPECT_EQ(run.transcript()["status"], golden["status"]);
    EXPECT_EQ(run.transcript()["subagents"], golden["subagents"]);
    EXPECT_EQ(run.transcript()["messages"].toArray().size(), golden["messages"].toArray().size());
}

TEST_F(BraltoChatReplay, PlainLinesOfTheAgentAreAStream)
{
    const QString path = write(R"({"type":"system","subtype":"init","session_id":"s","model":"m"})"
                               "\nnonsense\n"
                               R"({"type":"user","uuid":"u","message":{"content":"echo"}})");

    const QJsonObject transcript = replay({path}).transcript();

    EXPECT_EQ(transcript["status"]["model"].toString(), QStringLiteral("m"));
    EXPECT_EQ(transcript["messages"][0]["role"].toString(), QStringLiteral("system"));
}

TEST_F(BraltoChatReplay, TheFormCanBeToldOutright)
{
    const QString path = write(R"({"type":"user","uuid":"u","message":{"content":"hello"}})");

    EXPECT_EQ(replay({path}).transcript()["messages"][0]["role"].toString(),
              QStringLiteral("user"));
    EXPECT_EQ(
        replay({path, QStringLiteral("--stored")}).transcript()["messages"][0]["role"].toString(),
        QStringLiteral("user"));
    EXPECT_EQ(
        replay({path, QStringLiteral("--stream")}).transcript()["messages"][0]["role"].toString(),
        QStringLiteral("system"));
}

TEST_F(BraltoChatReplay, AFileThatCantBeReadIsAnError)
{
    const Outcome missing = replay({m_folder.filePath(QStringLiteral("missing"))});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.output.isEmpty());
    EXPECT_TRUE(missing.errors.contains("missing"));

    EXPECT_EQ(replay({m_folder.path()}).status, 1);
    EXPECT_EQ(replay({}).status, 2);
}
