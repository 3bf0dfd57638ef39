#include "Chat/ChatHistory.h"

#include "Chat/ChatJson.h"
#include "Tests/Support/ChatLines.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Bralto;

namespace {

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

QByteArray userLine(const char* id, const QByteArray& text)
{
    return R"({"type":"user","uuid":")" + QByteArray(id) +
           R"(","timestamp":"2026-11-21T00:43:11.544Z","message":{"content":")" + text + "\"}}\n";
}

QByteArray assistantLine(const char* id, const QByteArray& block)
{
    return R"({"type":"assistant","timestamp":"2026-11-21T00:43:11.544Z","message":{"id":")" +
           QByteArray(id) + R"(","content":[)" + block + "]}}\n";
}

class ChatHistoryTest : public testing::Test {
protected:
    QString write(const char* name, const QByteArray& bytes)
    {
        QString path = m_folder.filePath(q(name));
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path;
    }

    std::optional<ChatTranscript> load(const QByteArray& bytes,
                                       qint64 pieceBytes = ChatHistory::PieceBytes)
    {
        return ChatHistory::loadTranscript(write("a.jsonl", bytes), ChatLines::Home, ChatLines::Now,
                                           pieceBytes);
    }

    QStringList ids(const QByteArray& bytes, qint64 pieceBytes = ChatHistory::PieceBytes)
    {
        QStringList result;
        const auto transcript = load(bytes, pieceBytes);
        EXPECT_TRUE(transcript);
        if (transcript) {
            for (const ChatMessage& message : transcript->messages)
                result.append(message.id);
        }
        return result;
    }

    QTemporaryDir m_folder;
};

} // namespace

// Where a conversation is stored

TEST_F(ChatHistoryTest, AConversationIsFoundInAnyProject)
{
    const QString path = write("-home-user-b/0a1b.jsonl", "x");
    write("-home-user-a/other.jsonl", "x");
    write("0a1b.jsonl", "x");

    EXPECT_EQ(ChatHistory::transcriptPath(m_folder.path(), q("0a1b")), path);
    EXPECT_EQ(ChatHistory::transcriptPath(m_folder.path(), q("missing")), std::nullopt);
}

TEST_F(ChatHistoryTest, TheFirstProjectByNameWins)
{
    write("b/s.jsonl", "x");
    const QString path = write("a/s.jsonl", "x");
    QDir(m_folder.path()).mkpath(q("0/s.jsonl"));

    EXPECT_EQ(ChatHistory::transcriptPath(m_folder.path(), q("s")), path);
}

TEST_F(ChatHistoryTest, AMissingProjectsFolderHoldsNothing)
{
    EXPECT_EQ(ChatHistory::transcriptPath(m_folder.filePath(q("none")), q("s")), std::nullopt);
}

TEST_F(ChatHistoryTest, ASessionIdIsNoWayToOtherFolders)
{
    write("a/s.jsonl", "x");
    write("outside.jsonl", "x");

    EXPECT_EQ(ChatHistory::transcriptPath(m_folder.path(), q("../outside")), std::nullopt);
    EXPECT_EQ(ChatHistory::transcriptPath(m_folder.path(), QString()), std::nullopt);
    EXPECT_EQ(ChatHistory::transcriptPath(m_folder.path(), q("../a/s")), std::nullopt);
}

// Loading

TEST_F(ChatHistoryTest, AFileThatCantBeReadIsAbsent)
{
    EXPECT_FALSE(ChatHistory::loadTranscript(m_folder.filePath(q("none.jsonl")), ChatLines::Home));
    EXPECT_FALSE(ChatHistory::loadTranscript(m_folder.path(), ChatLines::Home));
    EXPECT_FALSE(ChatHistory::loadTranscript(q("/dev/zero"), ChatLines::Home));

    const QString locked = write("locked.jsonl", userLine("u", "x"));
    QFile::setPermissions(locked, {});
    if (::geteuid() != 0) {
        EXPECT_FALSE(ChatHistory::loadTranscript(locked, ChatLines::Home));
    }
}

TEST_F(ChatHistoryTest, AnEmptyFileIsAnEmptyConversation)
{
    const auto transcript = load("");

    ASSERT_TRUE(transcript);
    EXPECT_TRUE(transcript->messages.empty());
    EXPECT_TRUE(load("\n\n\n")->messages.empty());
}

TEST_F(ChatHistoryTest, LinesThatHoldNoMessageAreLeftOut)
{
    EXPECT_EQ(ids("\n{\"type\":\"summary\"}\n" + userLine("u1", "a") +
                  "{\"type\":\"user\" nonsense\n[\"type\":\"user\"]\n\n" + userLine("u2", "b") +
                  R"({"type":"result","note":{"type":"user"},"total_cost_usd":5})" + "\n"),
              (QStringList{"u1", "u2"}));
}

TEST_F(ChatHistoryTest, ALineCutInTheMiddleIsLeftOut)
{
    const QByteArray line = userLine("u2", "second");
    for (qsizetype size = 0; size < line.size() - 1; ++size) {
        SCOPED_TRACE(size);
        EXPECT_EQ(ids(userLine("u1", "a") + line.first(size)), (QStringList{"u1"}));
    }
    EXPECT_EQ(ids(userLine("u1", "a") + line.first(line.size() - 1)), (QStringList{"u1", "u2"}));
}

TEST_F(ChatHistoryTest, ATurnThatWasNeverEndedIsFinished)
{
    const auto transcript =
        load(assistantLine("m", R"({"type":"text","text":"a"})") +
             assistantLine("m", R"({"type":"tool_use","id":"t","name":"Bash","input":{}})"));

    ASSERT_TRUE(transcript);
    ASSERT_EQ(transcript->messages.size(), 1u);
    EXPECT_EQ(transcript->messages[0].blocks.size(), 2);
    EXPECT_FALSE(transcript->messages[0].isStreaming);
}

TEST_F(ChatHistoryTest, AReplayHasNoCostAndNoSession)
{
    const auto transcript =
        load(R"({"type":"result","subtype":"success","total_cost_usd":5,"x":"\"type\":\"user\""})"
             "\n"
             R"({"type":"system","subtype":"init","model":"m"})"
             "\n" +
             userLine("u", "x"));

    EXPECT_EQ(transcript->status, ChatSessionInfo());
    EXPECT_EQ(transcript->runCost, 0);
}

TEST_F(ChatHistoryTest, EveryPieceSizeGivesTheSameConversation)
{
    QByteArray bytes = "\n" + userLine("u0", "first") + "\n\n";
    for (int line = 1; line < 40; ++line)
        bytes += userLine(QByteArray("u" + QByteArray::number(line)).constData(),
                          QByteArray(line * 7 % 90, 'x'));
    bytes += "{\"cut\":\"" + QByteArray(300, 'y');
    const QStringList whole = ids(bytes);
    ASSERT_EQ(whole.size(), 40);

    for (qint64 size = 1; size < 400; ++size) {
        SCOPED_TRACE(size);
        EXPECT_EQ(ids(bytes, size), whole);
    }
}

TEST_F(ChatHistoryTest, ALineMayBeLongerThanManyPieces)
{
    const QByteArray bytes = userLine("u1", "a") + userLine("u2", QByteArray(100'000, 'x')) +
                             userLine("u3", QByteArray(200'000, 'y'));

    for (const qint64 size : {1000, 4096, 99'999}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(ids(bytes, size), (QStringList{"u1", "u2", "u3"}));
    }
}

TEST_F(ChatHistoryTest, OnlyLinesOfUserOrAssistantAreParsed)
{
    EXPECT_TRUE(ChatHistory::mayHoldMessage(R"({"a":{"type":"text"},"type":"user"})"));
    EXPECT_TRUE(ChatHistory::mayHoldMessage(R"({"type":"assistant"})"));
    EXPECT_FALSE(ChatHistory::mayHoldMessage(R"({"type":"attachment","x":"user"})"));
    EXPECT_FALSE(ChatHistory::mayHoldMessage(R"({"type": "user"})"));
    EXPECT_FALSE(ChatHistory::mayHoldMessage(R"({"type":"user)"));
    EXPECT_FALSE(ChatHistory::mayHoldMessage(""));
    EXPECT_FALSE(ChatHistory::mayHoldMessage(R"({"text":"\"type\":\"user\""})"));
}

// As JSON

TEST_F(ChatHistoryTest, ATranscriptIsWrittenAsJson)
{
    auto transcript =
        load(userLine("u", "hi") +
             assistantLine("m", R"({"type":"tool_use","id":"t","name":"Write","input":)"
                                R"({"file_path":"/a","content":"x"}})") +
             R"({"type":"user","uuid":"r","message":{"content":[{"type":"tool_result",)"
             R"("tool_use_id":"t","content":[{"type":"image","source":{"type":"base64",)"
             R"("media_type":"image/png","data":"AQI="}}]}]}})"
             "\n");

    EXPECT_EQ(ChatJson::encode(*transcript), R"({
  "messages": [
    {
      "id": "u",
      "role": "user",
      "date": "2026-11-21T00:43:11.544Z",
      "blocks": [
        {
          "kind": "text",
          "id": "u-text",
          "text": "hi"
        }
      ]
    },
    {
      "id": "m",
      "role": "assistant",
      "date": "2026-11-21T00:43:11.544Z",
      "blocks": [
        {
          "kind": "tool",
          "id": "t",
          "name": "Write",
          "summary": "/a",
          "input": "{\n  \"content\": \"x\",\n  \"file_path\": \"/a\"\n}",
          "filePath": "/a",
          "edits": [
            {
              "before": "",
              "after": "x"
            }
          ],
          "status": "done",
          "resultImages": [
            {
              "mediaType": "image/png",
              "bytes": 2,
              "sha256": "a12871fee210fb8619291eaea194581cbd2531e4b23759d225f6806923f63222"
            }
          ]
        }
      ]
    }
  ],
  "subagents": [],
  "status": {
    "totalTokens": 0
  }
}
)");
}
