// The parts that a local process is made of, each by itself.

#include "Kovalt/Process/OutgoingData.h"
#include "Kovalt/Process/PendingData.h"
#include "Kovalt/Process/ProcessLog.h"
#include "Kovalt/Process/PseudoTerminalHelpers.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <array>
#include <string>

using namespace Kovalt;

namespace {

PendingData::Chunk chunkOf(std::size_t size, std::uint8_t value = 0)
{
    return PendingData::Chunk(size, value);
}

struct Pipe {
    FileDescriptor reader;
    FileDescriptor writer;

    Pipe()
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC), 0);
        reader = FileDescriptor(ends[0]);
        writer = FileDescriptor(ends[1]);
    }
    [[nodiscard]] std::string read() const
    {
        std::string all;
        std::array<char, 65536> buffer{};
        for (;;) {
            const auto count = ::read(reader.get(), buffer.data(), buffer.size());
            if (count <= 0)
                return all;
            all.append(buffer.data(), static_cast<std::size_t>(count));
        }
    }
};

std::span<const std::uint8_t> bytesOf(std::string_view text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

} // namespace

TEST(PendingData, OnlyTheFirstChunkSchedulesADrain)
{
    PendingData pending;

    EXPECT_TRUE(pending.enqueue(chunkOf(1)));
    EXPECT_FALSE(pending.enqueue(chunkOf(1)));
    EXPECT_TRUE(pending.take().has_value());
    EXPECT_FALSE(pending.enqueue(chunkOf(1)));
    EXPECT_TRUE(pending.take().has_value());
    EXPECT_TRUE(pending.take().has_value());
    EXPECT_FALSE(pending.take().has_value());
    EXPECT_TRUE(pending.enqueue(chunkOf(1)));
}

TEST(PendingData, ChunksComeOutInOrderAcrossTheRemovals)
{
    PendingData pending;
    std::uint8_t in = 0;
    std::uint8_t out = 0;
    for (int round = 0; round < 50; ++round) {
        for (int count = 0; count < 5 + round % 3; ++count)
            pending.enqueue(chunkOf(1, in++));
        for (int count = 0; count < 5; ++count)
            ASSERT_EQ(pending.take()->chunk, chunkOf(1, out++));
    }
    while (const auto taken = pending.take())
        ASSERT_EQ(taken->chunk, chunkOf(1, out++));
    EXPECT_EQ(in, out);
    EXPECT_EQ(pending.size(), 0U);
}

TEST(PendingData, ReadingIsSuspendedFromTheHighMarkToTheLowOne)
{
    PendingData pending;
    constexpr std::size_t Piece = PendingData::LowWaterBytes / 4;
    for (int count = 0; count < 15; ++count)
        pending.enqueue(chunkOf(Piece));
    EXPECT_FALSE(pending.isReadSuspended());
    pending.enqueue(chunkOf(Piece));
    EXPECT_TRUE(pending.isReadSuspended());
    EXPECT_EQ(pending.size(), PendingData::HighWaterBytes);

    for (int count = 0; count < 11; ++count)
        EXPECT_FALSE(pending.take()->resumesReading);
    EXPECT_TRUE(pending.isReadSuspended());

    EXPECT_TRUE(pending.take()->resumesReading);
    EXPECT_EQ(pending.size(), PendingData::LowWaterBytes);
    EXPECT_FALSE(pending.isReadSuspended());
    EXPECT_FALSE(pending.take()->resumesReading);
}

TEST(OutgoingData, WhatDoesNotFitWaitsAndKeepsItsOrder)
{
    ProcessLog log([](const std::string&) {});
    OutgoingData outgoing(log);
    const Pipe pipe;
    std::string expected;
    bool waits = false;
    for (int number = 0; !waits || expected.size() < 300000; ++number) {
        const auto text = std::string(1000, static_cast<char>('a' + number % 26));
        waits = outgoing.send(pipe.writer.get(), bytesOf(text));
        expected += text;
    }

    std::string received;
    while (outgoing.isWaiting()) {
        received += pipe.read();
        outgoing.flush(pipe.writer.get());
    }
    received += pipe.read();

    EXPECT_TRUE(received == expected);
}

TEST(OutgoingData, AnErrorIsPrintedAndTheNextWriteIsTried)
{
    std::vector<std::string> lines;
    ProcessLog log([&](const std::string& line) { lines.push_back(line); });
    OutgoingData outgoing(log);
    const FileDescriptor full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
    const Pipe pipe;

    EXPECT_FALSE(outgoing.send(full.get(), bytesOf("lost")));
    EXPECT_FALSE(outgoing.send(pipe.writer.get(), bytesOf("kept")));

    EXPECT_EQ(lines, std::vector<std::string>{"Error writing data to the child, errno=28"});
    EXPECT_EQ(pipe.read(), "kept");
}

TEST(OutgoingData, MoreThanAReaderWillEverTakeIsNotKept)
{
    std::vector<std::string> lines;
    ProcessLog log([&](const std::string& line) { lines.push_back(line); });
    OutgoingData outgoing(log);
    const Pipe pipe;
    const std::string large(OutgoingData::MaximumWaiting / 4, 'x');

    for (int count = 0; count < 4; ++count)
        EXPECT_TRUE(outgoing.send(pipe.writer.get(), bytesOf(large)));
    EXPECT_TRUE(lines.empty());
    outgoing.send(pipe.writer.get(), bytesOf("y"));

    EXPECT_EQ(lines, std::vector<std::string>{"Error writing data to the child, errno=105"});
}

TEST(PseudoTerminalHelpers, AvailableBytesAreCounted)
{
    const Pipe pipe;
    EXPECT_EQ(PseudoTerminalHelpers::availableBytes(pipe.reader.get()), 0);
    ASSERT_EQ(::write(pipe.writer.get(), "12345", 5), 5);
    EXPECT_EQ(PseudoTerminalHelpers::availableBytes(pipe.reader.get()), 5);
    EXPECT_EQ(PseudoTerminalHelpers::availableBytes(-1), std::nullopt);
}

TEST(PseudoTerminalHelpers, OnlyATerminalTakesASize)
{
    const Pipe pipe;
    EXPECT_FALSE(PseudoTerminalHelpers::setWinSize(pipe.writer.get(), {25, 80, 0, 0}));
    EXPECT_FALSE(PseudoTerminalHelpers::setWinSize(-1, {25, 80, 0, 0}));
}

TEST(PseudoTerminalHelpers, TheArrayOfStringsEndsWithNull)
{
    const auto array = PseudoTerminalHelpers::allocateCStringArray({"one", "", "three"});

    EXPECT_STREQ(array.data()[0], "one");
    EXPECT_STREQ(array.data()[1], "");
    EXPECT_STREQ(array.data()[2], "three");
    EXPECT_EQ(array.data()[3], nullptr);
    EXPECT_EQ(PseudoTerminalHelpers::allocateCStringArray({}).data()[0], nullptr);
}
