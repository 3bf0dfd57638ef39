#include "Tests/DemoAgent/RunningAgent.h"

using namespace DemoAgentTests;

namespace {

/// One entry of a recording.
struct Entry {
    QString from;
    QJsonObject line;
    int code = 0;
};

QList<Entry> recorded(const QString& name)
{
    QList<Entry> entries;
    QFile file(QStringLiteral(BRALTO_FIXTURES "/Agent/%1.ndjson").arg(name));
    EXPECT_TRUE(file.open(QFile::ReadOnly));
    while (!file.atEnd()) {
        const QJsonObject entry = QJsonDocument::fromJson(file.readLine()).object();
        entries.append({entry["from"].toString(), entry["line"].toObject(), entry["code"].toInt()});
    }
    return entries;
}

/// The line as it comes in this conversation: with our own ids.
QJsonObject translated(QJsonObject line, const QHash<QString, QString>& ids)
{
    QByteArray text = QJsonDocument(line).toJson(QJsonDocument::Compact);
    for (auto id = ids.begin(); id != ids.end(); ++id)
        text.replace(id.key().toUtf8(), id.value().toUtf8());
    return QJsonDocument::fromJson(text).object();
}

struct DemoReplay : testing::TestWithParam<const char*> {
    RunningAgent agent;
};

} // namespace

TEST_P(DemoReplay, SendsEveryRecordedLineAndWaitsWhereTheAppSpoke)
{
    const QByteArray recording = QByteArray(BRALTO_FIXTURES "/Agent/") + GetParam() + ".ndjson";
    agent.start({"--session-id", "own-session", "--script",
                 agent.write("test.script", "replay " + recording)});

    QHash<QString, QString> ids;
    int status = -1;
    for (const Entry& entry : recorded(GetParam())) {
        if (entry.from == "app") {
            QJsonObject line = entry.line;
            const QString id = line["request_id"].toString();
            if (!id.isEmpty()) {
                ids.insert(id, "own-" + id.left(12) + QString::number(ids.size()));
                line["request_id"] = ids.value(id);
            }
            agent.send(line);
        } else if (entry.from == "agent") {
            const QString session = entry.line["session_id"].toString();
            if (!session.isEmpty())
                ids.insert(session, "own-session");
            ASSERT_EQ(agent.next(), translated(entry.line, ids));
        } else if (entry.from == "exit") {
            status = entry.code;
        }
    }

    EXPECT_EQ(agent.finish(), status);
    EXPECT_FALSE(agent.next());
}

INSTANTIATE_TEST_SUITE_P(Recordings, DemoReplay,
                         testing::Values("text", "think", "permission_allow", "permission_deny",
                                         "question", "plan", "interrupt_stream", "error_400",
                                         "max_turns", "subagent_foreground", "background_bash",
                                         "commands_changed", "attachments"),
                         [](const auto& recording) { return std::string(recording.param); });

TEST_F(DemoReplay, KeysKeepTheirRecordedOrder)
{
    agent.start(
        {"--script", agent.write("test.script", "replay " BRALTO_FIXTURES "/Agent/text.ndjson")});
    agent.sendControl("initialize");
    (void)agent.nextBytes();
    agent.sendTurn("hello there");

    QByteArray result;
    while (!result.contains("\"type\":\"result\""))
        result = agent.nextBytes().value_or("\"type\":\"result\"");

    EXPECT_TRUE(result.startsWith("{\"duration_api_ms\":29,\"stop_reason\":\"end_turn\","));
}

TEST_F(DemoReplay, RequestsThatTheRecordingLacksAreAnsweredAsUsual)
{
    agent.start(
        {"--script", agent.write("test.script", "replay " BRALTO_FIXTURES "/Agent/text.ndjson")});

    EXPECT_EQ(agent.control("get_settings")["subtype"], "success");
    EXPECT_EQ(agent.control("initialize")["response"].toObject()["claude_code_version"], "2.1.329");
}

TEST_F(DemoReplay, TheEndOfTheInputInTheMiddleEndsIt)
{
    agent.start(
        {"--script", agent.write("test.script", "replay " BRALTO_FIXTURES "/Agent/text.ndjson")});
    (void)agent.control("initialize");

    EXPECT_EQ(agent.finish(), 0);
}
