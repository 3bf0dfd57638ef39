#include "Platform/QtRunLoop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QSocketNotifier>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <thread>

using namespace std::chrono_literals;

namespace Bralto {
namespace {

using Clock = std::chrono::steady_clock;

class LoopOnQt : public testing::Test {
protected:
    QtRunLoop loop;
    std::vector<int> ran;

    auto note(int number)
    {
        return [this, number] { ran.push_back(number); };
    }
    static bool waitFor(const std::function<bool()>& holds)
    {
        return QTest::qWaitFor(holds, 60'000);
    }
};

TEST_F(LoopOnQt, TasksRunInOrderAndNeverInThePost)
{
    for (int number = 0; number < 100; ++number)
        loop.post(note(number));

    EXPECT_TRUE(ran.empty());
    ASSERT_TRUE(waitFor([this] { return ran.size() == 100; }));
    EXPECT_TRUE(std::is_sorted(ran.begin(), ran.end()));
}

TEST_F(LoopOnQt, ATaskThatATaskPostsComesBehindThoseThatWait)
{
    loop.post([this] {
        loop.post(note(3));
        ran.push_back(1);
    });
    loop.post(note(2));

    ASSERT_TRUE(waitFor([this] { return ran.size() == 3; }));
    EXPECT_EQ(ran, (std::vector{1, 2, 3}));
}

TEST_F(LoopOnQt, TasksOfManyThreadsRunHereAndInTheOrderOfEach)
{
    constexpr int Threads = 4;
    constexpr int Each = 5000;
    std::array<std::vector<int>, Threads> seen;
    std::array<std::thread, Threads> threads;
    const auto here = std::this_thread::get_id();
    int elsewhere = 0;
    int count = 0;

    for (std::size_t thread = 0; thread < Threads; ++thread) {
        threads[thread] = std::thread([&, thread] {
            for (int number = 0; number < Each; ++number) {
                loop.post([&, thread, number] {
                    seen[thread].push_back(number);
                    elsewhere += std::this_thread::get_id() != here;
                    ++count;
                });
            }
        });
    }
    const bool all = waitFor([&] { return count == Threads * Each; });
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_TRUE(all);
    EXPECT_EQ(elsewhere, 0);
    for (const auto& numbers : seen)
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
}

/// Notes what else the loop gets to do.
class Listener : public QObject {
public:
    int posted = 0;

    bool event(QEvent* event) override
    {
        posted += event->type() == QEvent::User;
        return QObject::event(event);
    }
};

class FloodedLoop : public LoopOnQt {
protected:
    static constexpr auto Slice = 4ms; ///< What a piece of a flood takes.
    static constexpr int Slices = 100; ///< Of all floods together.
    static constexpr int Floods = 8;

    int slices = 0;

    /// As the output of a program that never stops: each piece posts the next one.
    void flood()
    {
        ++slices;
        const auto sliceEnd = Clock::now() + Slice;
        while (Clock::now() < sliceEnd) {
        }
        if (slices < Slices)
            loop.post([this] { flood(); });
    }
    /// Runs the event loop while as many programs as panes flood it.
    void runFloods()
    {
        for (int count = 0; count < Floods; ++count)
            loop.post([this] { flood(); });
        EXPECT_TRUE(waitFor([this] { return slices >= Slices; }));
    }
};

TEST_F(FloodedLoop, TimersPostedEventsAndSocketsComeThroughBetweenTheSlices)
{
    int idle = 0;
    int shortTicks = 0;
    int reads = 0;
    QTimer idleTimer;
    QObject::connect(&idleTimer, &QTimer::timeout, &loop, [&] { ++idle; });
    idleTimer.start(0ms);
    QTimer shortTimer;
    shortTimer.setTimerType(Qt::PreciseTimer);
    Listener listener;
    QObject::connect(&shortTimer, &QTimer::timeout, &loop, [&] {
        ++shortTicks;
        QCoreApplication::postEvent(&listener, new QEvent(QEvent::User), Qt::LowEventPriority);
    });
    shortTimer.start(5ms);
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    QSocketNotifier notifier(ends[0], QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &loop, [&] { ++reads; });

    runFloods();

    // Most rounds have one slice, so about as often as there were slices; half of it shows that
    // nothing waits for the flood's end.
    EXPECT_GT(idle, Slices / 2);
    EXPECT_GT(shortTicks, Slices / 4);
    EXPECT_GT(listener.posted, Slices / 4);
    EXPECT_GT(reads, Slices / 2);
    notifier.setEnabled(false);
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST_F(FloodedLoop, ShortTasksShareARound)
{
    int rounds = 0;
    QTimer idleTimer;
    QObject::connect(&idleTimer, &QTimer::timeout, &loop, [&] { ++rounds; });
    for (int number = 0; number < 1000; ++number)
        loop.post(note(number));
    idleTimer.start(0ms);

    ASSERT_TRUE(waitFor([this] { return ran.size() == 1000; }));

    EXPECT_LT(rounds, 100);
}

TEST_F(LoopOnQt, TasksRunInAnEventLoopThatATaskOpens)
{
    QEventLoop inner;
    loop.post([&] {
        ran.push_back(1);
        inner.exec();
        ran.push_back(3);
    });
    loop.post([&] {
        ran.push_back(2);
        inner.quit();
    });

    ASSERT_TRUE(waitFor([this] { return ran.size() == 3; }));
    EXPECT_EQ(ran, (std::vector{1, 2, 3}));
}

TEST(QtRunLoop, WhatStillWaitsAtItsEndIsDroppedUnrun)
{
    int runs = 0;
    const auto held = std::make_shared<int>(0);
    {
        QtRunLoop loop;
        loop.post([&runs, held] { ++runs; });
    }

    EXPECT_EQ(held.use_count(), 1);
    QCoreApplication::processEvents();
    EXPECT_EQ(runs, 0);
}

/// Posts once more when it is thrown away.
class LastWord {
public:
    explicit LastWord(QtRunLoop& loop)
        : m_loop(loop)
    {
    }
    LastWord(const LastWord&) = delete;
    LastWord& operator=(const LastWord&) = delete;
    ~LastWord()
    {
        m_loop.post([] { ADD_FAILURE() << "a dropped task ran"; });
    }

private:
    QtRunLoop& m_loop;
};

TEST(QtRunLoop, ADroppedTaskMayPost)
{
    {
        QtRunLoop loop;
        loop.post([word = std::make_shared<LastWord>(loop)] {});
    }

    QCoreApplication::processEvents();
}

TEST(QtRunLoop, ATaskMayEndTheLoop)
{
    auto loop = std::make_unique<QtRunLoop>();
    int runs = 0;
    loop->post([&] {
        ++runs;
        loop.reset();
    });
    loop->post([&] { ++runs; });

    EXPECT_TRUE(QTest::qWaitFor([&] { return !loop; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(runs, 1);
}

TEST(QtRunLoop, NothingIsOnItsWayOnceAllIsDone)
{
    QtRunLoop loop;
    int runs = 0;
    for (int count = 0; count < 3; ++count)
        loop.post([&] { ++runs; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return runs == 3; }));
    while (QCoreApplication::eventDispatcher()->processEvents(QEventLoop::AllEvents)) {
    }

    EXPECT_FALSE(QCoreApplication::eventDispatcher()->processEvents(QEventLoop::AllEvents));
}

} // namespace
} // namespace Bralto
