#include "Kovalt/Process/PollLoop.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <array>
#include <string>
#include <thread>

using namespace Kovalt;
using namespace std::chrono_literals;

namespace {

constexpr auto Long = 60s;

struct Pipe {
    FileDescriptor reader;
    FileDescriptor writer;

    Pipe()
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        reader = FileDescriptor(ends[0]);
        writer = FileDescriptor(ends[1]);
    }
    void write() const { EXPECT_EQ(::write(writer.get(), "x", 1), 1); }
    void read() const
    {
        char byte = 0;
        EXPECT_EQ(::read(reader.get(), &byte, 1), 1);
    }
};

} // namespace

TEST(PollLoop, TasksRunInTheOrderOfTheirPosts)
{
    PollLoop loop;
    std::string order;
    for (const char letter : {'a', 'b', 'c'})
        loop.post([&order, letter] { order += letter; });
    EXPECT_EQ(order, "");
    loop.post([&] { loop.stop(); });

    loop.run();

    EXPECT_EQ(order, "abc");
}

TEST(PollLoop, TasksOfOtherThreadsWakeTheLoop)
{
    PollLoop loop;
    int sum = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            for (int count = 0; count < 100; ++count)
                loop.post([&sum] { ++sum; });
        });
    }

    EXPECT_TRUE(loop.runUntil([&] { return sum == 400; }, Long));

    for (auto& thread : threads)
        thread.join();
}

TEST(PollLoop, ATaskThatPostsTheNextLeavesRoomForDescriptorsAndTimers)
{
    PollLoop loop;
    const Pipe pipe;
    bool readable = false;
    bool timed = false;
    std::function<void()> again = [&] { loop.post(again); };
    loop.post(again);
    pipe.write();
    loop.watch(pipe.reader.get(), POLLIN, [&](short) { readable = true; });
    loop.startTimer(1ms, [&] { timed = true; });

    EXPECT_TRUE(loop.runUntil([&] { return readable && timed; }, Long));
}

TEST(PollLoop, AWatchIsToldUntilItIsTakenAway)
{
    PollLoop loop;
    const Pipe pipe;
    int calls = 0;
    PollLoop::Id id = 0;
    id = loop.watch(pipe.reader.get(), POLLIN, [&](short events) {
        EXPECT_NE(events & POLLIN, 0);
        if (++calls == 3)
            loop.unwatch(id);
    });
    pipe.write();

    EXPECT_TRUE(loop.runUntil([&] { return calls == 3; }, Long));
    EXPECT_FALSE(loop.runUntil([&] { return calls > 3; }, 5ms));
}

TEST(PollLoop, AWatchMayTakeAnotherAway)
{
    PollLoop loop;
    const Pipe first;
    const Pipe second;
    int calls = 0;
    std::array<PollLoop::Id, 2> ids{};
    const auto onlyOne = [&](short) {
        ++calls;
        loop.unwatch(ids[0]);
        loop.unwatch(ids[1]);
    };
    ids[0] = loop.watch(first.reader.get(), POLLIN, onlyOne);
    ids[1] = loop.watch(second.reader.get(), POLLIN, onlyOne);
    first.write();
    second.write();

    EXPECT_FALSE(loop.runUntil([&] { return calls > 1; }, 5ms));
    EXPECT_EQ(calls, 1);
}

TEST(PollLoop, TimersComeInTheOrderOfTheirTimesAndOnce)
{
    PollLoop loop;
    std::string order;
    loop.startTimer(3ms, [&] { order += 'c'; });
    loop.startTimer(1ms, [&] { order += 'a'; });
    const auto cancelled = loop.startTimer(2ms, [&] { order += 'x'; });
    loop.startTimer(2ms, [&] { order += 'b'; });
    loop.cancelTimer(cancelled);

    EXPECT_TRUE(loop.runUntil([&] { return order.size() == 3; }, Long));
    EXPECT_FALSE(loop.runUntil([&] { return order.size() > 3; }, 5ms));
    EXPECT_EQ(order, "abc");
}

TEST(PollLoop, ATimerIsNeverEarly)
{
    PollLoop loop;
    const auto start = PollLoop::Clock::now();
    loop.startTimer(10ms, [&] { loop.stop(); });

    loop.run();

    EXPECT_GE(PollLoop::Clock::now() - start, 10ms);
}

TEST(PollLoop, AStopBeforeTheRunEndsItAtOnce)
{
    PollLoop loop;
    loop.stop();

    loop.run();

    std::thread stopper([&] { loop.stop(); });
    loop.run();
    stopper.join();
}
