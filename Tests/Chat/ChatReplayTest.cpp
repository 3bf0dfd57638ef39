// Recorded conversations and the transcripts that they must give. BRALTO_REBASELINE=1 writes the
// expected files anew.

#include "Base/Json.h"
#include "Chat/ChatHistory.h"
#include "Chat/ChatJson.h"
#include "Chat/ChatLineReader.h"
#include "Chat/ChatProtocol.h"
#include "Tests/Support/ChatLines.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

const QString Folder = QStringLiteral(BRALTO_FIXTURES "/Agent/");

QByteArray read(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

/// What the agent wrote to its standard output in a recording of its pipes.
QByteArray agentOutput(const QString& path)
{
    QByteArray output;
    JsonReader reader;
    for (const QByteArray& entry : read(path).split('\n')) {
        const auto object = reader.object(entry);
        if (!object || object->view("from") != "agent")
            continue;
        const auto line = object->object("line");
        EXPECT_TRUE(line) << entry.constData();
        output += line->compact() + '\n';
    }
    return output;
}

/// The transcript of a stream that arrives in chunks of one size.
ChatTranscript streamed(const QByteArray& output, std::size_t chunkSize)
{
    ChatTranscript transcript;
    ChatLineReader lines;
    JsonReader reader;
    const std::string_view bytes(output.constData(), std::size_t(output.size()));
    for (std::size_t at = 0; at < bytes.size(); at += chunkSize) {
        for (const QByteArray& line : lines.feed(bytes.substr(at, chunkSize))) {
            const auto object = reader.object(line);
            EXPECT_TRUE(object) << line.constData();
            if (!object)
                continue;
            for (const ChatEvent& event : ChatProtocol::events(*object, ChatProtocol::Source::Live,
                                                               ChatLines::Now, ChatLines::Home))
                transcript.apply(event);
        }
    }
    EXPECT_EQ(lines.finish(), std::nullopt);
    return transcript;
}

void expectGolden(const QString& path, const ChatTranscript& transcript)
{
    const QByteArray json = ChatJson::encode(transcript);
    if (qEnvironmentVariableIsSet("BRALTO_REBASELINE")) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(json);
        return;
    }
    EXPECT_EQ(json, read(path));
}

std::vector<std::string> fixtures(const char* filter)
{
    std::vector<std::string> names;
    for (const QString& name : QDir(Folder).entryList({QString::fromLatin1(filter)}, QDir::Files))
        names.push_back(name.toStdString());
    return names;
}

std::string testName(const testing::TestParamInfo<std::string>& info)
{
    std::string name = info.param.substr(0, info.param.find_last_of('.'));
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(c); }, '_');
    return name;
}

class LiveReplay : public testing::TestWithParam<std::string> {
protected:
    const QString m_path = Folder + QString::fromStdString(GetParam());
};

class StoredReplay : public testing::TestWithParam<std::string> {
protected:
    const QString m_path = Folder + QString::fromStdString(GetParam());
};

} // namespace

TEST_P(LiveReplay, GivesTheExpectedTranscript)
{
    expectGolden(m_path + ".expected.json", streamed(agentOutput(m_path), 64 * 1024));
}

TEST_P(LiveReplay, GivesTheSameHoweverItsBytesAreCut)
{
    const QByteArray output = agentOutput(m_path);
    const QByteArray whole = ChatJson::encode(streamed(output, std::size_t(output.size())));

    for (std::size_t size = 1; size < 4096; size = size < 64 ? size + 2 : size * 3 + 2) {
        SCOPED_TRACE(size);
        EXPECT_EQ(ChatJson::encode(streamed(output, size)), whole);
    }
}

TEST_P(StoredReplay, GivesTheExpectedTranscript)
{
    const auto transcript = ChatHistory::loadTranscript(m_path, ChatLines::Home, ChatLines::Now);

    ASSERT_TRUE(transcript);
    expectGolden(m_path + ".expected.json", *transcript);
}

TEST_P(StoredReplay, GivesTheSameHoweverTheFileIsDivided)
{
    const auto whole = ChatHistory::loadTranscript(m_path, ChatLines::Home, ChatLines::Now);
    ASSERT_TRUE(whole);

    for (qint64 size = 1; size < 20'000; size = size < 16 ? size + 2 : size * 3 + 2) {
        SCOPED_TRACE(size);
        const auto divided =
            ChatHistory::loadTranscript(m_path, ChatLines::Home, ChatLines::Now, size);
        ASSERT_TRUE(divided);
        EXPECT_EQ(ChatJson::encode(*divided), ChatJson::encode(*whole));
    }
}

INSTANTIATE_TEST_SUITE_P(Agent, LiveReplay, testing::ValuesIn(fixtures("*.ndjson")), testName);
INSTANTIATE_TEST_SUITE_P(Agent, StoredReplay, testing::ValuesIn(fixtures("*.jsonl")), testName);
