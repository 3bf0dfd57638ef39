#include "Platform/QtScheduler.h"
#include "Platform/SystemClock.h"

#include <QTest>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace Bralto {
namespace {

class QtSchedulerCalls : public testing::Test {
protected:
    QtScheduler scheduler;
    QObject context;
    QStringList ran;

    auto note(const QString& name)
    {
        return [this, name] { ran.append(name); };
    }
};

TEST_F(QtSchedulerCalls, NothingRunsInTheTurnThatAskedForIt)
{
    scheduler.after(0ms, &context, note("later"));

    EXPECT_EQ(ran, QStringList());
    EXPECT_TRUE(QTest::qWaitFor([&] { return ran == QStringList{"later"}; }));
}

TEST_F(QtSchedulerCalls, CallsRunInTheOrderOfTheirTimeThenOfTheirRequest)
{
    scheduler.after(30ms, &context, note("third"));
    scheduler.after(0ms, &context, note("first"));
    scheduler.after(0ms, &context, note("second"));

    EXPECT_TRUE(QTest::qWaitFor([&] { return ran.size() == 3; }));
    EXPECT_EQ(ran, (QStringList{"first", "second", "third"}));
}

TEST_F(QtSchedulerCalls, ACallThatIsAskedForInACallWaitsForAnotherTurn)
{
    scheduler.after(0ms, &context, [this] {
        scheduler.after(0ms, &context, note("inner"));
        ran.append("outer");
    });

    EXPECT_TRUE(QTest::qWaitFor([&] { return ran.size() == 2; }));
    EXPECT_EQ(ran, (QStringList{"outer", "inner"}));
}

TEST_F(QtSchedulerCalls, ACancelledCallNeverRuns)
{
    const quint64 cancelled = scheduler.after(0ms, &context, note("cancelled"));
    scheduler.after(0ms, &context, note("kept"));

    scheduler.cancel(cancelled);
    scheduler.cancel(cancelled);
    scheduler.cancel(0);

    EXPECT_TRUE(QTest::qWaitFor([&] { return !ran.isEmpty(); }));
    EXPECT_EQ(ran, QStringList{"kept"});
}

TEST_F(QtSchedulerCalls, ACallDiesWithItsContext)
{
    auto mortal = std::make_unique<QObject>();
    scheduler.after(0ms, mortal.get(), note("dead"));
    scheduler.after(1ms, &context, note("kept"));

    mortal.reset();

    EXPECT_TRUE(QTest::qWaitFor([&] { return !ran.isEmpty(); }));
    EXPECT_EQ(ran, QStringList{"kept"});
}

TEST_F(QtSchedulerCalls, ACallMayEndTheSchedulerThatRanIt)
{
    auto mortal = std::make_unique<QtScheduler>();
    mortal->after(0ms, &context, [&, text = QString("a text of its own")] {
        mortal.reset();
        ran.append(text);
    });

    EXPECT_TRUE(QTest::qWaitFor([&] { return !ran.isEmpty(); }));
    EXPECT_EQ(ran, QStringList{"a text of its own"});
}

TEST_F(QtSchedulerCalls, IdsAreNeverZeroAndNeverTheSame)
{
    const quint64 one = scheduler.after(0ms, &context, [] {});
    const quint64 other = scheduler.after(0ms, &context, [] {});

    EXPECT_NE(one, 0U);
    EXPECT_NE(one, other);
}

TEST(SystemClock, TellsTheTimeInUtc)
{
    const QDateTime before = QDateTime::currentDateTimeUtc();

    const QDateTime now = SystemClock().now();

    EXPECT_EQ(now.timeSpec(), Qt::UTC);
    EXPECT_GE(now, before);
}

} // namespace
} // namespace Bralto
