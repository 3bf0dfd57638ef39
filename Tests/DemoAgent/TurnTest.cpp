#include "Tests/DemoAgent/RunningAgent.h"

using namespace DemoAgentTests;

namespace {

struct DemoTurn : testing::Test {
    RunningAgent agent;
};

} // namespace

TEST_F(DemoTurn, ATextTurnComesInTheProtocolsOrder)
{
    agent.start();

    const Lines lines = agent.turn("hello");

    EXPECT_EQ(kinds(lines),
              QStringList{"system/init"} + textMessage() + QStringList{"result/success"});
    EXPECT_EQ(agent.finish(), 0);
}

TEST_F(DemoTurn, TheDeltasTogetherAreTheAssistantsText)
{
    agent.start();

    const Lines lines = agent.turn("hello");

    QString streamed;
    int deltas = 0;
    for (const QJsonObject& line : lines) {
        const QJsonObject delta = line["event"].toObject()["delta"].toObject();
        if (delta["type"] == "text_delta") {
            streamed += delta["text"].toString();
            ++deltas;
        }
    }
    EXPECT_GT(deltas, 5);
    EXPECT_EQ(streamed, textOf(first(lines, "assistant/text")));
    EXPECT_EQ(streamed, lines.last()["result"].toString());
}

TEST_F(DemoTurn, TheGreetingDescribesTheFolderInEveryShapeOfMarkdown)
{
    (void)agent.write("tide-tables.csv", "high,low\n");
    agent.start();

    const QString text = agent.turn("hello").last()["result"].toString();

    EXPECT_TRUE(text.contains("demo agent"));
    EXPECT_TRUE(text.contains("\n## ")) << "heading";
    EXPECT_TRUE(text.contains("- `tide-tables.csv`")) << "list and inline code";
    EXPECT_TRUE(text.contains("| `tide-tables.csv` |")) << "table";
    EXPECT_TRUE(text.contains("```")) << "code fence";
    EXPECT_TRUE(text.contains("ask me")) << "what to try";
}

TEST_F(DemoTurn, EveryLineButControlLinesNamesItselfAndTheSession)
{
    agent.start({"--session-id", "586c774f-6741-40ac-a532-3ab5f5ede788"});
    agent.sendTurn("ask me");

    const Lines lines = agent.untilType("control_request");

    QSet<QString> uuids;
    for (const QJsonObject& line : lines.first(lines.size() - 1)) {
        EXPECT_EQ(line["session_id"], "586c774f-6741-40ac-a532-3ab5f5ede788");
        uuids.insert(line["uuid"].toString());
    }
    EXPECT_EQ(uuids.size(), lines.size() - 1);
    EXPECT_FALSE(lines.last().contains("uuid"));
    EXPECT_FALSE(uuids.contains(QString()));
}

TEST_F(DemoTurn, EachTurnBeginsWithItsOwnInit)
{
    agent.start({"--permission-mode", "plan", "--model", "sonnet"});

    const QJsonObject init = first(agent.turn("hello"), "system/init");
    const Lines second = agent.turn("hello");

    EXPECT_EQ(init["cwd"], agent.folder());
    EXPECT_EQ(init["permissionMode"], "plan");
    EXPECT_EQ(init["model"], "claude-sonnet-5-5");
    EXPECT_FALSE(init["claude_code_version"].toString().isEmpty());
    EXPECT_EQ(kind(second.first()), "system/init");
}

TEST_F(DemoTurn, WithoutPartialMessagesOnlyWholeLinesCome)
{
    agent.startWith({"-p", "--input-format", "stream-json", "--output-format", "stream-json"});

    const Lines lines = agent.turn("hello");

    const QStringList expected{"system/init", "system/status", "assistant/text", "result/success"};
    EXPECT_EQ(kinds(lines), expected);
}

TEST_F(DemoTurn, ThinkingIsStreamedBeforeTheTextInTheSameMessage)
{
    agent.start();

    const Lines lines = agent.turn("think about colours");

    const QStringList expected{
        "system/init",         "system/status",        "message_start",
        "content_block_start", "delta/thinking_delta", "delta/signature_delta",
        "assistant/thinking",  "content_block_stop",   "content_block_start",
        "delta/text_delta",    "assistant/text",       "content_block_stop",
        "message_delta",       "message_stop",         "result/success"};
    EXPECT_EQ(kinds(lines), expected);
    EXPECT_EQ(first(lines, "assistant/thinking")["message"].toObject()["id"],
              first(lines, "assistant/text")["message"].toObject()["id"]);
    EXPECT_TRUE(lines.last()["result"].toString().contains("about colours"));
}

TEST_F(DemoTurn, ReadingAFileAsksNobodyAndGivesItsText)
{
    (void)agent.write("README.md", "first line\nsecond line\n");
    agent.start();

    const Lines lines = agent.turn("read README.md");

    EXPECT_EQ(kinds(lines), QStringList{"system/init"} + toolMessage() +
                                QStringList{"user/tool_result"} + textMessage() +
                                QStringList{"result/success"});
    EXPECT_TRUE(textOf(first(lines, "user/tool_result")).contains("second line"));
    EXPECT_TRUE(lines.last()["result"].toString().contains("2 lines"));
    EXPECT_EQ(lines.last()["num_turns"], 2);
}

TEST_F(DemoTurn, AToolCallIsStreamedWithAnEmptyPieceFirst)
{
    (void)agent.write("README.md", "x\n");
    agent.start();

    const Lines lines = agent.turn("read README.md");

    QStringList pieces;
    for (const QJsonObject& line : lines) {
        const QJsonObject delta = line["event"].toObject()["delta"].toObject();
        if (delta["type"] == "input_json_delta")
            pieces.append(delta["partial_json"].toString());
    }
    ASSERT_GT(pieces.size(), 1);
    EXPECT_EQ(pieces.first(), QString());
    const QJsonObject input = QJsonDocument::fromJson(pieces.join("").toUtf8()).object();
    EXPECT_EQ(input["file_path"], agent.folder() + "/README.md");
}

TEST_F(DemoTurn, AFileThatIsMissingOrOutsideTheFolderIsAnErrorOfTheTool)
{
    QDir(agent.folder()).mkdir("sub");
    QFile::link("/etc", agent.folder() + "/link");
    agent.start();
    for (const char* name : {"missing.txt", "../home", "/etc/hostname", "link/hostname", "sub"}) {
        SCOPED_TRACE(name);

        const Lines lines = agent.turn(QString("read ") + name);

        const QJsonObject line = first(lines, "user/tool_result");
        EXPECT_TRUE(line["message"].toObject()["content"][0]["is_error"].toBool());
        EXPECT_TRUE(line["tool_use_result"].toString().startsWith("Error: "));
        EXPECT_EQ(lines.last()["is_error"], false);
    }
}

TEST_F(DemoTurn, SeveralToolsOfOneMessageAreStreamedBeforeTheirResults)
{
    (void)agent.write("poem.txt", "the sea\nand the sky\n");
    agent.start();

    const Lines lines = agent.turn("search the");

    QStringList names;
    QStringList calls;
    QStringList results;
    for (const QJsonObject& line : lines) {
        const QJsonValue block = line["message"].toObject()["content"][0];
        if (kind(line) == "assistant/tool_use") {
            EXPECT_TRUE(results.isEmpty());
            names.append(block["name"].toString());
            calls.append(block["id"].toString());
        }
        if (kind(line) == "user/tool_result")
            results.append(block["tool_use_id"].toString());
    }
    EXPECT_EQ(names, (QStringList{"Grep", "Glob", "WebFetch"}));
    EXPECT_EQ(calls, results);
    EXPECT_TRUE(textOf(first(lines, "user/tool_result")).contains("poem.txt:2:and the sky"));
}

TEST_F(DemoTurn, TodosMoveOnWithEachCall)
{
    agent.start();

    QStringList statuses;
    for (const QJsonObject& line : agent.turn("todo")) {
        const QJsonValue block = line["message"].toObject()["content"][0];
        if (kind(line) == "assistant/tool_use")
            statuses.append(block["input"]["todos"][0]["status"].toString());
    }

    EXPECT_EQ(statuses, (QStringList{"in_progress", "completed", "completed", "completed"}));
}

TEST_F(DemoTurn, AnImageIsAToolResultWithAPng)
{
    agent.start();

    const QJsonObject line = first(agent.turn("image"), "user/tool_result");

    const QJsonValue source = line["message"].toObject()["content"][0]["content"][0]["source"];
    EXPECT_EQ(source["media_type"].toString(), "image/png");
    const QByteArray png = QByteArray::fromBase64(source["data"].toString().toLatin1());
    EXPECT_TRUE(png.startsWith("\x89PNG\r\n\x1a\n"));
    EXPECT_TRUE(png.contains("IEND"));
}

TEST_F(DemoTurn, CostsAndTokensGrowAndAreTheSameInEveryRun)
{
    const auto numbers = [] {
        RunningAgent other;
        other.start();
        QList<double> result;
        for (const char* text : {"think", "count 20", "limits"}) {
            const QJsonObject line = other.turn(text).last();
            result.append(line["total_cost_usd"].toDouble());
            const QJsonObject usage = line["usage"].toObject();
            result.append(usage["cache_read_input_tokens"].toDouble());
        }
        return result;
    };

    const QList<double> once = numbers();

    EXPECT_EQ(once, numbers());
    EXPECT_GT(once.at(0), 0);
    EXPECT_GT(once.at(2), once.at(0)) << "the cost adds up";
    EXPECT_GT(once.at(5), once.at(3)) << "the context grows";
}

TEST_F(DemoTurn, TheResultNamesTheContextWindowOfTheModel)
{
    agent.start({"--model", "haiku"});

    const QJsonObject result = agent.turn("hello").last();

    const QJsonObject model = result["modelUsage"].toObject()["claude-haiku-5-5"].toObject();
    EXPECT_EQ(model["contextWindow"], 100000);
    EXPECT_EQ(result["queued_turn_count"], 0);
    EXPECT_EQ(result["result_index"], 0);
}

TEST_F(DemoTurn, PicturesOfATurnAreNoticed)
{
    agent.start();
    const QJsonObject source{{"type", "base64"}, {"media_type", "image/png"}, {"data", "AAAA"}};
    const QJsonObject image{{"type", "image"}, {"source", source}};
    const QJsonObject text{{"type", "text"}, {"text", "look"}};

    agent.send(
        {{"type", "user"},
         {"message", QJsonObject{{"role", "user"}, {"content", QJsonArray{text, image, image}}}}});

    EXPECT_TRUE(agent.untilResult().last()["result"].toString().contains("2 pictures"));
}

TEST_F(DemoTurn, AMentionBeforeTheTextDoesNotHideTheCommand)
{
    agent.start();

    const Lines lines = agent.turn("@README.md \"@other file\"\n\nCount 3");

    EXPECT_EQ(lines.last()["result"], "1, 2, 3.");
}

TEST_F(DemoTurn, ASlashCommandIsAnsweredWithoutAModel)
{
    agent.start();

    const Lines lines = agent.turn("/context");

    EXPECT_EQ(kinds(lines), (QStringList{"system/init", "assistant/text", "result/success"}));
    EXPECT_EQ(lines.at(1)["message"].toObject()["model"], "<synthetic>");
    EXPECT_EQ(lines.last()["num_turns"], 0);
    EXPECT_EQ(lines.last()["result"].toString(), textOf(lines.at(1)));
}

TEST_F(DemoTurn, CompactingSendsItsSummaryAsAUserLine)
{
    agent.start();
    (void)agent.turn("count 3");

    const Lines lines = agent.turn("/compact");

    const QStringList expected{"system/init", "system/status",  "system/compact_boundary",
                               "user/string", "assistant/text", "result/success"};
    EXPECT_EQ(kinds(lines), expected);
    EXPECT_TRUE(first(lines, "user/string")["message"].toObject()["content"].toString().contains(
        "count 3"));
}

TEST_F(DemoTurn, LimitsComeAsTheirOwnLine)
{
    agent.start();

    const Lines lines = agent.turn("limits");

    const QJsonObject info = first(lines, "rate_limit_event")["rate_limit_info"].toObject();
    EXPECT_EQ(info["unifiedWindows"]["five_hour"]["utilization"], 0.37);
    EXPECT_EQ(info["rateLimitType"], "five_hour");
}

TEST_F(DemoTurn, TextWithCharactersBeyondTheBasicPlaneIsNeverCutInTwo)
{
    agent.start();
    const QString emoji = QString::fromUtf8("👩‍💻🌊").repeated(20);

    const Lines lines = agent.turn("think " + emoji);

    for (const QJsonObject& line : lines)
        EXPECT_FALSE(QJsonDocument(line).toJson().contains("\xef\xbf\xbd")) << "replacement";
    EXPECT_TRUE(lines.last()["result"].toString().contains(emoji));
}
