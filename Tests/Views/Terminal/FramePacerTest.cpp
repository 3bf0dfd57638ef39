#include "Views/Terminal/FramePacer.h"

#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct FramePacerTest : testing::Test {
    int frames = 0;
    FramePacer pacer{[this] { ++frames; }, nullptr};
};

} // namespace

TEST_F(FramePacerTest, TheFirstChangeIsTakenAtOnceAndLeavesNoTimer)
{
    pacer.request();

    EXPECT_EQ(frames, 1);
    EXPECT_FALSE(pacer.isWaiting());
}

TEST_F(FramePacerTest, ChangesWithinAnIntervalAreOneFrameAtItsEnd)
{
    pacer.request();
    for (int i = 0; i < 100; ++i)
        pacer.request();

    EXPECT_EQ(frames, 1);
    ASSERT_TRUE(pacer.isWaiting());
    ASSERT_TRUE(QTest::qWaitFor([this] { return frames == 2; }));
    EXPECT_FALSE(pacer.isWaiting());
}

TEST_F(FramePacerTest, AFrameThatWasCancelledIsNotTaken)
{
    pacer.request();
    pacer.request();

    pacer.cancel();

    EXPECT_FALSE(pacer.isWaiting());
    EXPECT_EQ(frames, 1);
}

TEST(FramePacer, AStartedMillisecondIsNotWaitedFor)
{
    using namespace std::chrono_literals;

    EXPECT_EQ(FramePacer::wait(16ms, 0us), 16ms);
    EXPECT_EQ(FramePacer::wait(16ms, 1us), 15ms);
    EXPECT_EQ(FramePacer::wait(16ms, 900us), 15ms);
    EXPECT_EQ(FramePacer::wait(16ms, 15'999us), 0ms);
    EXPECT_EQ(FramePacer::wait(16ms, 17ms), 0ms);
}

TEST(FramePacer, CostlyFramesAreFurtherApart)
{
    QElapsedTimer clock;
    std::vector<qint64> begins;
    FramePacer pacer(
        [&] {
            begins.push_back(clock.elapsed());
            const qint64 end = clock.elapsed() + 10;
            while (clock.elapsed() < end) {
            }
        },
        nullptr);
    clock.start();

    pacer.request();
    pacer.request();

    ASSERT_TRUE(QTest::qWaitFor([&] { return begins.size() == 2; }));
    EXPECT_GE(begins[1] - begins[0], 38);
}
