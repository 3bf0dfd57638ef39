#include "Chat/ChatLineReader.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Bralto;

namespace {

std::vector<QByteArray> cut(std::string_view stream, std::size_t chunkSize)
{
    ChatLineReader reader;
    std::vector<QByteArray> lines;
    for (std::size_t at = 0; at < stream.size(); at += chunkSize) {
        for (QByteArray& line : reader.feed(stream.substr(at, chunkSize)))
            lines.push_back(std::move(line));
    }
    if (auto rest = reader.finish())
        lines.push_back(std::move(*rest));
    return lines;
}

} // namespace

TEST(ChatLineReader, GivesEveryCompleteLineOfAChunk)
{
    ChatLineReader reader;

    EXPECT_EQ(reader.feed("one\ntwo\nthr"), (std::vector<QByteArray>{"one", "two"}));
    EXPECT_EQ(reader.feed("ee\n"), (std::vector<QByteArray>{"three"}));
}

TEST(ChatLineReader, DropsEmptyLines)
{
    ChatLineReader reader;

    EXPECT_EQ(reader.feed("\n\none\n\n"), (std::vector<QByteArray>{"one"}));
    EXPECT_EQ(reader.finish(), std::nullopt);
}

TEST(ChatLineReader, KeepsCarriageReturnsAndZeroBytes)
{
    ChatLineReader reader;

    EXPECT_EQ(reader.feed(std::string_view("a\r\0b\n", 5)),
              (std::vector<QByteArray>{QByteArray("a\r\0b", 4)}));
}

TEST(ChatLineReader, GivesTheUnendedLineAtTheEndOnce)
{
    ChatLineReader reader;
    std::ignore = reader.feed("one\nrest");

    EXPECT_EQ(reader.finish(), "rest");
    EXPECT_EQ(reader.finish(), std::nullopt);
    EXPECT_EQ(reader.feed("two\n"), (std::vector<QByteArray>{"two"}));
}

TEST(ChatLineReader, AnEmptyChunkChangesNothing)
{
    ChatLineReader reader;

    EXPECT_TRUE(reader.feed("").empty());
    EXPECT_TRUE(reader.feed("a").empty());
    EXPECT_TRUE(reader.feed({}).empty());
    EXPECT_EQ(reader.finish(), "a");
}

TEST(ChatLineReader, CutsTheSameLinesHoweverTheBytesCome)
{
    const std::string stream = "{\"a\":1}\n\nlonger line \xc3\xa9\xe2\x82\xac\n\n\nx\nlast";
    const auto whole = cut(stream, stream.size());

    for (std::size_t size = 1; size < stream.size(); ++size) {
        SCOPED_TRACE(size);
        EXPECT_EQ(cut(stream, size), whole);
    }
}

TEST(ChatLineReader, GivesAVeryLongLineWhole)
{
    constexpr std::size_t LineSize = 64 * 1024 * 1024;
    const std::string chunk(64 * 1024, 'x');
    ChatLineReader reader;

    for (std::size_t fed = 0; fed < LineSize; fed += chunk.size())
        EXPECT_TRUE(reader.feed(chunk).empty());
    const auto lines = reader.feed("\n");

    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(std::size_t(lines.front().size()), LineSize);
}

TEST(ChatLineReader, MayBeFedFromSeveralThreads)
{
    constexpr int LinesPerThread = 1000;
    ChatLineReader reader;
    std::atomic<int> count = 0;
    const auto feed = [&] {
        for (int line = 0; line < LinesPerThread; ++line)
            count += int(reader.feed("line\n").size());
    };

    std::thread first(feed);
    std::thread second(feed);
    first.join();
    second.join();

    EXPECT_EQ(count, 2 * LinesPerThread);
}
