// A program that writes far more than anybody reads at once.

#include "Kovalt/Terminal.h"
#include "Tests/Support/CountedMemory.h"
#include "Tests/Support/ProcessHarness.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>

using namespace Kovalt;
using namespace Kovalt::Testing;

namespace {

constexpr std::size_t MiB = 1U << 20U;

/// Processor time of this thread, which other programs can't use up.
std::chrono::nanoseconds ownTime()
{
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

/// Holds bytes against the numbers from 1 on, a line each.
class Numbers {
public:
    void expect(std::span<const std::uint8_t> bytes)
    {
        m_bytes += bytes.size();
        while (!bytes.empty() && m_isRight) {
            const auto count = std::min(bytes.size(), m_size - m_at);
            m_isRight = std::memcmp(bytes.data(), m_line.data() + m_start + m_at, count) == 0;
            bytes = bytes.subspan(count);
            m_at += count;
            if (m_at == m_size)
                next();
        }
    }
    [[nodiscard]] bool isRight() const { return m_isRight; }
    [[nodiscard]] std::size_t bytes() const { return m_bytes; }
    /// How many lines were whole.
    [[nodiscard]] std::size_t count() const { return m_count; }

private:
    static constexpr std::size_t Digits = 12;

    void next()
    {
        ++m_count;
        m_at = 0;
        auto digit = Digits - 1;
        for (; m_line[digit] == '9'; --digit)
            m_line[digit] = '0';
        ++m_line[digit];
        if (digit < m_start) {
            m_start = digit;
            m_size = Digits - digit + 1;
        }
    }

    std::string m_line = std::string(Digits - 1, '0') + "1\n";
    std::size_t m_start = Digits - 1;
    std::size_t m_size = 2;
    std::size_t m_at = 0;
    std::size_t m_bytes = 0;
    std::size_t m_count = 0;
    bool m_isRight = true;
};

} // namespace

TEST(LocalProcessFlood, AGigabyteStaysNearTheHighMarkInOrderAndHoldsTheLoopForASlice)
{
    constexpr std::size_t Lines = 112'000'000; // 1,000,000,000 bytes and a little more.
    constexpr std::size_t Part = 100'000'000;
    ProcessHarness harness;
    const auto isSuspended = [&] { return harness.process->isReadSuspended(); };
    Numbers numbers;
    std::size_t largestBacklog = 0;
    int dams = 0;
    std::size_t pieces = 0;
    std::size_t latePieces = 0;
    std::chrono::nanoseconds turnBegan = ownTime();
    const std::function<void()> turn = [&] {
        turnBegan = ownTime();
        harness.loop.post(turn);
    };
    harness.received = [&](std::span<const std::uint8_t> slice) {
        // A piece that begins within the slice of time may end behind it; none begins behind it.
        ++pieces;
        latePieces += ownTime() - turnBegan > std::chrono::milliseconds(5) ? 1 : 0;
        largestBacklog = std::max(largestBacklog, harness.process->pendingBytes());
        EXPECT_LE(slice.size(), 131072U);
        const bool isNextPart = (numbers.bytes() + slice.size()) / Part != numbers.bytes() / Part;
        numbers.expect(slice);
        // Now and then the loop stands still until the flood is dammed.
        if (isNextPart && numbers.bytes() < 9 * Part)
            dams += ProcessHarness::waitUntil(isSuspended) ? 1 : 0;
    };
    harness.loop.post(turn);
    CountedMemory::beginAgain();
    const auto before = CountedMemory::heldBytes.load();

    harness.start("stty -opost; exec seq 1 " + std::to_string(Lines));

    ASSERT_TRUE(
        harness.loop.runUntil([&] { return !harness.statuses.empty(); }, std::chrono::minutes(10)));
    EXPECT_EQ(harness.statuses.back(), 0);
    EXPECT_TRUE(numbers.isRight()) << "line " << numbers.count() + 1;
    EXPECT_EQ(numbers.count(), Lines);
    EXPECT_GE(numbers.bytes(), 1'000'000'000U);
    EXPECT_EQ(dams, 8);
    EXPECT_GE(largestBacklog, PendingData::HighWaterBytes - 131072);
    EXPECT_LT(largestBacklog, PendingData::HighWaterBytes + 131072);
    EXPECT_LT(CountedMemory::mostBytes - before, 8 * MiB);
    // But for those that waited for the machine to give memory back.
    EXPECT_LT(latePieces, pieces / 20);
}

TEST(LocalProcessFlood, AnAnswerArrivesWhileThePieceWithItsQuestionIsStillFed)
{
    class Answers final : public TerminalDelegate {
    public:
        explicit Answers(ProcessHarness& harness)
            : m_harness(harness)
        {
        }
        void send(Terminal&, std::span<const std::uint8_t> data) override
        {
            ++count;
            m_harness.process->send(data);
        }
        void mouseModeChanged(Terminal&) override {}
        int count = 0;

    private:
        ProcessHarness& m_harness;
    };
    ProcessHarness harness;
    Answers answers(harness);
    Terminal terminal(&answers);
    const auto reply =
        std::filesystem::temp_directory_path() / ("kovalt-answer-" + std::to_string(::getpid()));
    const auto hasArrived = [&] {
        std::ifstream file(reply, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {}) == "\x1b[0n";
    };
    int arrived = 0;
    harness.received = [&](std::span<const std::uint8_t> slice) {
        const int before = answers.count;
        terminal.feed(slice);
        // The loop has no turn before the program has its answer.
        if (answers.count != before)
            arrived += ProcessHarness::waitUntil(hasArrived) ? 1 : 0;
    };

    harness.start("stty raw -echo; yes | head -c 6000000; printf '\\033[5n'; yes & head -c 4 > " +
                  reply.string() + "; kill -9 $!; exit 7");

    ASSERT_TRUE(harness.runUntilTerminated());
    std::filesystem::remove(reply);
    EXPECT_EQ(harness.statuses.back(), 7 << 8);
    EXPECT_EQ(answers.count, 1);
    EXPECT_EQ(arrived, 1);
}
