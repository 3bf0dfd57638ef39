#include "Base/Motion.h"
#include "Tests/Support/ManualScheduler.h"

#include <gtest/gtest.h>

#include <functional>

using namespace std::chrono_literals;

namespace Bralto {
namespace {

class Pane final : public HeldView {
public:
    void takeSize(const QSize& size) override
    {
        taken.append(size);
        if (afterwards)
            afterwards();
    }

    QList<QSize> taken;
    std::function<void()> afterwards;
};

class MotionOfViews : public testing::Test {
protected:
    ManualScheduler scheduler;
    Motion motion{scheduler};
    Pane pane;
};

TEST_F(MotionOfViews, AtRestAViewTakesEverySizeAtOnce)
{
    EXPECT_FALSE(motion.holdsResize(pane, {10, 10}));
    EXPECT_EQ(pane.taken, QList<QSize>());
}

TEST_F(MotionOfViews, AHeldViewTakesTheLastSizeOnceAfterTheLastMotion)
{
    const quint64 first = motion.begin("split", std::nullopt);
    const quint64 second = motion.begin("sidebar", std::nullopt);
    EXPECT_TRUE(motion.holdsResize(pane, {10, 10}));
    EXPECT_TRUE(motion.holdsResize(pane, {20, 10}));

    motion.end(first);
    EXPECT_EQ(pane.taken, QList<QSize>());
    motion.end(second);

    EXPECT_EQ(pane.taken, (QList<QSize>{{20, 10}}));
    EXPECT_FALSE(motion.holdsResize(pane, {30, 10}));
}

TEST_F(MotionOfViews, AMotionThatNeverCompletesEndsAfterItsTimeout)
{
    motion.begin("toggle", 300ms);
    EXPECT_TRUE(motion.holdsResize(pane, {5, 5}));

    scheduler.advance(299ms);
    EXPECT_EQ(motion.inFlight(), 1);
    scheduler.advance(1ms);

    EXPECT_EQ(motion.inFlight(), 0);
    EXPECT_EQ(pane.taken, (QList<QSize>{{5, 5}}));
}

TEST_F(MotionOfViews, ATokenEndsOnce)
{
    const quint64 ending = motion.begin("toggle", 300ms);
    motion.begin("drag", std::nullopt);

    motion.end(ending);
    motion.end(ending);
    motion.end(0);
    scheduler.advance(1s);

    EXPECT_EQ(motion.inFlight(), 1);
    EXPECT_EQ(scheduler.waiting(), 0);
}

TEST_F(MotionOfViews, ALiveResizeHoldsViewsToo)
{
    motion.beginLiveResize();
    EXPECT_TRUE(motion.holdsResize(pane, {10, 10}));
    const quint64 token = motion.begin("toggle", std::nullopt);

    motion.end(token);
    EXPECT_EQ(pane.taken, QList<QSize>());
    motion.endLiveResize();

    EXPECT_EQ(pane.taken, (QList<QSize>{{10, 10}}));
    EXPECT_EQ(motion.liveResizes(), 0);
}

TEST_F(MotionOfViews, NestedLiveResizesEndWithTheOuterOne)
{
    motion.beginLiveResize();
    motion.beginLiveResize();
    EXPECT_TRUE(motion.holdsResize(pane, {10, 10}));

    motion.endLiveResize();
    EXPECT_EQ(pane.taken, QList<QSize>());
    motion.endLiveResize();
    motion.endLiveResize();

    EXPECT_EQ(pane.taken.size(), 1);
    EXPECT_EQ(motion.liveResizes(), 0);
}

TEST_F(MotionOfViews, AViewThatGoesAwayWhileItIsHeldIsForgotten)
{
    const quint64 token = motion.begin("toggle", std::nullopt);
    {
        Pane mortal;
        EXPECT_TRUE(motion.holdsResize(mortal, {1, 1}));
    }

    motion.end(token);

    EXPECT_EQ(motion.inFlight(), 0);
}

TEST_F(MotionOfViews, AHeldViewMayOutliveTheMotion)
{
    Pane survivor;
    {
        Motion mortal(scheduler);
        mortal.begin("toggle", std::nullopt);
        EXPECT_TRUE(mortal.holdsResize(survivor, {1, 1}));
    }

    EXPECT_EQ(survivor.taken, QList<QSize>());
}

TEST_F(MotionOfViews, ALayoutThatStartsAMotionHoldsTheOthersAgain)
{
    Pane other;
    quint64 next = 0;
    const auto startMotion = [&] {
        if (next == 0)
            next = motion.begin("follow-up", std::nullopt);
    };
    pane.afterwards = startMotion;
    other.afterwards = startMotion;
    const quint64 token = motion.begin("toggle", std::nullopt);
    EXPECT_TRUE(motion.holdsResize(pane, {1, 1}));
    EXPECT_TRUE(motion.holdsResize(other, {2, 2}));

    motion.end(token);
    EXPECT_EQ(pane.taken.size() + other.taken.size(), 1);
    motion.end(next);

    EXPECT_EQ(pane.taken.size(), 1);
    EXPECT_EQ(other.taken.size(), 1);
}

TEST_F(MotionOfViews, AMeterHearsOfEachMotionWithItsLimit)
{
    QStringList told;
    QObject::connect(&motion, &Motion::began, &motion,
                     [&](quint64, const QString& action, std::chrono::milliseconds limit) {
                         told.append(action + ' ' + QString::number(limit.count()));
                     });
    QObject::connect(&motion, &Motion::ended, &motion, [&](quint64) { told.append("end"); });

    motion.end(motion.begin("toggle", 300ms));
    motion.end(motion.begin("drag", std::nullopt));
    motion.beginLiveResize();
    motion.endLiveResize();

    EXPECT_EQ(told,
              (QStringList{"toggle 1300", "end", "drag 60000", "end", "live resize 60000", "end"}));
}

TEST_F(MotionOfViews, ReducedMotionLeavesNoAnimation)
{
    EXPECT_TRUE(motion.toggle());

    motion.setReduced(true);

    EXPECT_FALSE(motion.toggle());
}

TEST_F(MotionOfViews, AHoldIsOneClaimHoweverOftenItBegins)
{
    ResizeHold hold(motion);
    hold.begin("drag");
    hold.begin("drag");
    EXPECT_EQ(motion.inFlight(), 1);

    hold.end();
    hold.end();

    EXPECT_EQ(motion.inFlight(), 0);
}

TEST_F(MotionOfViews, AHoldThatIsDestroyedDuringADragLeavesNothingBehind)
{
    {
        ResizeHold hold(motion);
        hold.begin("drag");
        EXPECT_EQ(motion.inFlight(), 1);
    }

    EXPECT_EQ(motion.inFlight(), 0);
}

TEST_F(MotionOfViews, AHoldMayOutliveTheMotion)
{
    auto mortal = std::make_unique<Motion>(scheduler);
    ResizeHold hold(*mortal);
    hold.begin("drag");

    mortal.reset();
    hold.end();
}

TEST(Spring, GoesFromNothingToItsGoal)
{
    const Spring spring = Motion::ToggleSpring;

    EXPECT_EQ(spring.progress(0s), 0);
    EXPECT_GT(spring.progress(0.06s), 0.2);
    EXPECT_LT(spring.progress(0.06s), 0.8);
    EXPECT_NEAR(spring.progress(spring.settlingTime()), 1, 0.001);
    EXPECT_NEAR(spring.progress(5s), 1, 1e-9);
}

TEST(Spring, OnlyAnUnderdampedOneSwingsOver)
{
    const Spring calm{350ms, 1.0};
    const Spring lively{350ms, 0.4};
    double highestCalm = 0;
    double highestLively = 0;
    for (auto time = 0ms; time < 2s; time += 5ms) {
        highestCalm = std::max(highestCalm, calm.progress(time));
        highestLively = std::max(highestLively, lively.progress(time));
    }

    EXPECT_LE(highestCalm, 1.0);
    EXPECT_GT(highestLively, 1.1);
}

TEST(Spring, SettlesSoonAfterItsResponse)
{
    EXPECT_GT(Motion::ToggleSpring.settlingTime(), 240ms);
    EXPECT_LT(Motion::ToggleSpring.settlingTime(), 600ms);
}

} // namespace
} // namespace Bralto
