// How fast a stored conversation comes back, in what memory, and what a streamed word costs.

#include "Base/Json.h"
#include "Chat/ChatHistory.h"
#include "Chat/ChatLineReader.h"
#include "Chat/ChatProtocol.h"
#include "Chat/LineBatches.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>
#include <fstream>
#include <malloc.h>
#include <random>
#include <string>

using namespace Bralto;

namespace {

constexpr qint64 ConversationBytes = 200 * 1024 * 1024;
const QString Home = QStringLiteral("/home/user");
const QDateTime Now = QDateTime::fromMSecsSinceEpoch(1'790'000'000'000, Qt::UTC);

// A conversation as the agent would have stored it

class ConversationWriter {
public:
    explicit ConversationWriter(const QString& path)
        : m_file(path)
    {
        if (!m_file.open(QIODevice::WriteOnly))
            qFatal("%s can't be written", qUtf8Printable(path));
    }

    void write()
    {
        for (int turn = 0; m_file.pos() < ConversationBytes; ++turn) {
            prompt();
            record();
            for (int call = 0; call < 4; ++call)
                answerWithCall();
            if (turn % 8 == 0)
                picture();
        }
    }

private:
    QByteArray next(const char* prefix) { return prefix + QByteArray::number(++m_count); }

    QByteArray words(qsizetype size)
    {
        static const char* const words[] = {"the",       "wire ",     "holds",
                                            "a line\\n", "that",      "\\\"says\\\"",
                                            "what",      "the agent", "does é"};
        QByteArray text;
        while (text.size() < size) {
            text += words[m_random() % std::size(words)];
            text += ' ';
        }
        return text;
    }

    QByteArray base64(qsizetype bytes)
    {
        QByteArray data(bytes, Qt::Uninitialized);
        std::generate(data.begin(), data.end(), [&] { return char(m_random()); });
        return data.toBase64();
    }

    /// A line with everything that the agent writes around a message.
    void line(const char* type, const QByteArray& message, const QByteArray& more = {})
    {
        m_file.write(
            "{\"parentUuid\":\"8897ff4d-a244-47e7-93e4-91453c3e87b6\",\"isSidechain\":false,"
            "\"promptId\":\"ea335974-3469-43c8-a3c0-d0c9811812ae\",\"type\":\"" +
            QByteArray(type) + "\",\"message\":" + message + ",\"uuid\":\"" +
            next("8897ff4d-a244-47e7-93e4-") + "\",\"timestamp\":\"2026-11-21T00:43:11.544Z\"," +
            more +
            "\"userType\":\"external\",\"entrypoint\":\"cli\",\"cwd\":\"/home/user/p\","
            "\"sessionId\":\"586c774f-6741-40ac-a532-3ab5f5ede788\","
            "\"version\":\"2.1.329\",\"gitBranch\":\"master\"}\n");
    }

    void prompt()
    {
        line("user", "{\"role\":\"user\",\"content\":[{\"type\":\"text\",\"text\":\"" + words(400) +
                         "\"}]}");
    }

    /// What the agent writes for itself.
    void record()
    {
        m_file.write("{\"type\":\"attachment\",\"rendered\":\"" + words(4000) + "\"}\n");
    }

    void assistant(const QByteArray& id, const QByteArray& block)
    {
        line("assistant", "{\"id\":\"" + id + "\",\"role\":\"assistant\",\"content\":[" + block +
                              "],\"usage\":{\"input_tokens\":100,\"output_tokens\":13}}");
    }

    /// A result stands in its line twice: as the model got it, and as the tool gave it.
    void result(const QByteArray& call, const QByteArray& content)
    {
        line("user",
             "{\"role\":\"user\",\"content\":[{\"tool_use_id\":\"" + call +
                 "\",\"type\":\"tool_result\",\"content\":" + content + "}]}",
             "\"toolUseResult\":{\"content\":" + content + ",\"interrupted\":false},");
    }

    void answerWithCall()
    {
        const QByteArray id = next("msg_");
        const QByteArray call = next("toolu_");
        assistant(id, "{\"type\":\"text\",\"text\":\"" + words(1500) + "\"}");
        assistant(id, "{\"type\":\"tool_use\",\"id\":\"" + call +
                          "\",\"name\":\"Edit\",\"input\":{\"file_path\":\"/home/user/p/a.cpp\","
                          "\"old_string\":\"" +
                          words(600) + "\",\"new_string\":\"" + words(900) + "\"}}");
        result(call, '"' + words(20000) + '"');
    }

    void picture()
    {
        const QByteArray call = next("toolu_");
        assistant(next("msg_"), "{\"type\":\"tool_use\",\"id\":\"" + call +
                                    "\",\"name\":\"mcp__bralto__screenshot\",\"input\":{}}");
        result(call, "[{\"type\":\"image\",\"source\":{\"type\":\"base64\",\"media_type\":"
                     "\"image/png\",\"data\":\"" +
                         base64(768 * 1024) + "\"}}]");
    }

    QFile m_file;
    std::mt19937 m_random{42};
    int m_count = 0;
};

const QString& conversation()
{
    static const QTemporaryDir folder;
    static const QString path = [] {
        QString file = folder.filePath(QStringLiteral("conversation.jsonl"));
        ConversationWriter(file).write();
        return file;
    }();
    return path;
}

/// The lines of the conversation that have to be parsed, each ready to be parsed where it lies.
const std::vector<QByteArray>& wantedLines()
{
    static const std::vector<QByteArray> lines = [] {
        QFile file(conversation());
        std::vector<QByteArray> wanted;
        if (!file.open(QIODevice::ReadOnly))
            qFatal("The conversation can't be read");
        while (!file.atEnd()) {
            QByteArray line = file.readLine();
            if (!ChatHistory::mayHoldMessage({line.constData(), std::size_t(line.size())}))
                continue;
            line.reserve(line.size() + qsizetype(JsonReader::Padding));
            wanted.push_back(std::move(line));
        }
        return wanted;
    }();
    return lines;
}

// Memory

/// "VmHWM" or "VmRSS" of this process, in bytes.
qint64 memory(std::string_view name)
{
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(name))
            return std::stoll(line.substr(name.size() + 1)) * 1024;
    }
    return 0;
}

/// Gives back what is free, and lets the peak begin here.
void forgetPeak()
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

qint64 bytesOf(const QString& text)
{
    return text.toUtf8().size();
}

/// What the user could read or see of a block, text counted in UTF-8.
struct BlockBytes {
    qint64 operator()(const ChatTextBlock& block) const { return bytesOf(block.text); }
    qint64 operator()(const ChatThinkingBlock& block) const { return bytesOf(block.text); }
    qint64 operator()(const ChatImageBlock& block) const
    {
        return block.image.data ? block.image.data->size() : 0;
    }
    qint64 operator()(const ChatToolCall& call) const
    {
        qint64 bytes = bytesOf(call.inputJSON) + bytesOf(call.summary);
        bytes += call.resultText ? bytesOf(*call.resultText) : 0;
        for (const ChatEdit& edit : call.edits)
            bytes += bytesOf(edit.before) + bytesOf(edit.after);
        for (const ChatImage& image : call.resultImages)
            bytes += image.data ? image.data->size() : 0;
        return bytes;
    }
};

qint64 bytesOf(const ChatTranscript& transcript)
{
    qint64 bytes = 0;
    for (const ChatMessage& message : transcript.messages) {
        for (const ChatBlock& block : message.blocks)
            bytes += std::visit(BlockBytes(), block);
    }
    return bytes;
}

// Benchmarks

double seconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// The one thing that loading can't do without: every wanted line parsed once, one after the other,
/// by one parser that keeps its memory. Nothing is read, split, filtered or copied in this time.
double parseSeconds()
{
    simdjson::dom::parser parser;
    return seconds([&] {
        for (const QByteArray& line : wantedLines()) {
            auto element = parser.parse(line.constData(), std::size_t(line.size()), false);
            benchmark::DoNotOptimize(element);
        }
    });
}

/// The same with the file still to be read and its lines still to be chosen, as it is for loading.
double readAndParseSeconds()
{
    simdjson::dom::parser parser;
    return seconds([&] {
        LineBatches batches(conversation(), ChatHistory::PieceBytes);
        for (ByteBuffer batch; batches.next(batch);) {
            for (std::string_view rest = batch.view(); !rest.empty();) {
                const std::string_view line = rest.substr(0, rest.find('\n'));
                rest.remove_prefix(std::min(line.size() + 1, rest.size()));
                if (!ChatHistory::mayHoldMessage(line))
                    continue;
                auto element = parser.parse(line.data(), line.size(), false);
                benchmark::DoNotOptimize(element);
            }
        }
    });
}

void BM_ParseWantedLines(benchmark::State& state)
{
    std::ignore = wantedLines();
    for (auto _ : state)
        state.SetIterationTime(parseSeconds());
    qint64 bytes = 0;
    for (const QByteArray& line : wantedLines())
        bytes += line.size();
    state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(BM_ParseWantedLines)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

/// Loads the conversation again and again, and compares that to what a parser alone would take:
/// 0.5 is half as fast. `speed` is over the mere parsing of lines that lie ready in memory,
/// `speedFromFile` over reading, choosing and parsing them. Both baselines have one thread, as the
/// parser is made, and run in the same turns as the loading.
void BM_LoadTranscript(benchmark::State& state)
{
    std::ignore = wantedLines();
    double loading = 0;
    double parsing = 0;
    double readingAndParsing = 0;
    for (auto _ : state) {
        parsing += parseSeconds();
        readingAndParsing += readAndParseSeconds();
        std::optional<ChatTranscript> transcript;
        const double elapsed =
            seconds([&] { transcript = ChatHistory::loadTranscript(conversation(), Home, Now); });
        loading += elapsed;
        state.SetIterationTime(elapsed);
    }
    state.SetBytesProcessed(state.iterations() * QFileInfo(conversation()).size());
    state.counters["speed"] = parsing / loading;
    state.counters["speedFromFile"] = readingAndParsing / loading;
}
BENCHMARK(BM_LoadTranscript)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(8);

/// Loads it into memory that the process never had before. `memory` is the peak meanwhile, over
/// what the user can read or see of the transcript.
void BM_LoadTranscriptAfresh(benchmark::State& state)
{
    std::ignore = conversation();
    double mostMemory = 0;
    for (auto _ : state) {
        forgetPeak();
        const qint64 before = memory("VmRSS:");
        std::optional<ChatTranscript> transcript;
        state.SetIterationTime(
            seconds([&] { transcript = ChatHistory::loadTranscript(conversation(), Home, Now); }));
        const qint64 peak = memory("VmHWM:") - before;
        mostMemory = std::max(mostMemory, double(peak) / double(bytesOf(*transcript)));
    }
    state.SetBytesProcessed(state.iterations() * QFileInfo(conversation()).size());
    state.counters["memory"] = mostMemory;
}
BENCHMARK(BM_LoadTranscriptAfresh)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

ChatTranscript streamingTranscript(qint64 messages)
{
    ChatTranscript transcript;
    for (qint64 row = 0; row < messages; ++row) {
        ChatMessage message;
        message.id = QString::number(row);
        message.blocks = {ChatTextBlock{message.id + "-0", QString(2000, u'x')}};
        transcript.append(std::move(message));
    }
    transcript.apply(ChatEvents::StreamStart{QStringLiteral("streaming"), Now});
    transcript.apply(ChatEvents::StreamBlock{0, ChatTextBlock{}});
    return transcript;
}

/// What one word costs that is streamed into a transcript of so many messages.
void BM_StreamDelta(benchmark::State& state)
{
    ChatTranscript transcript = streamingTranscript(state.range(0));
    const ChatEvent delta = ChatEvents::StreamDelta{0, QStringLiteral("word ")};
    for (auto _ : state) {
        auto change = transcript.apply(delta);
        benchmark::DoNotOptimize(change);
    }
}
BENCHMARK(BM_StreamDelta)->Arg(50)->Arg(500)->Arg(5000);

/// The same word, and the line that it came in.
void BM_StreamDeltaLine(benchmark::State& state)
{
    ChatTranscript transcript = streamingTranscript(state.range(0));
    const QByteArray line =
        R"({"type":"stream_event","event":{"type":"content_block_delta","index":0,)"
        R"("delta":{"type":"text_delta","text":"word "}},"session_id":"586c774f-6741-40ac-a532",)"
        R"("parent_tool_use_id":null,"uuid":"5e2eb32c-c4a6-4b6c-ae68-c983a0143802"})";
    JsonReader reader;
    for (auto _ : state) {
        const auto object = reader.object(line);
        for (const ChatEvent& event :
             ChatProtocol::events(*object, ChatProtocol::Source::Live, Now, Home)) {
            auto change = transcript.apply(event);
            benchmark::DoNotOptimize(change);
        }
    }
}
BENCHMARK(BM_StreamDeltaLine)->Arg(50)->Arg(500)->Arg(5000);

/// A line of 64 MB that comes in pieces of 64 KB.
void BM_LongLine(benchmark::State& state)
{
    const std::string piece(64 * 1024, 'x');
    constexpr int Pieces = 1024;
    for (auto _ : state) {
        ChatLineReader reader;
        for (int count = 0; count < Pieces; ++count)
            benchmark::DoNotOptimize(reader.feed(piece));
        benchmark::DoNotOptimize(reader.feed("\n"));
    }
    state.SetBytesProcessed(state.iterations() * Pieces * qint64(piece.size()));
}
BENCHMARK(BM_LongLine)->Unit(benchmark::kMillisecond);

} // namespace
