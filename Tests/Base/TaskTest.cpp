#include "Base/Task.h"

#include <gtest/gtest.h>

#include <string>

using namespace Bralto;

namespace {

/// Writes down when it goes.
struct Local {
    std::string& story;
    ~Local() { story += "gone "; }
};

Task<int> doubled(Arrival<int> number)
{
    co_return 2 * co_await number;
}

Task<> tell(Arrival<int> number, std::string& story)
{
    const Local local{story};
    story += "begins ";
    const int value = co_await doubled(number);
    story += std::to_string(value) + " ";
}

} // namespace

TEST(Task, RunsUntilItWaitsAndGoesOnWhenTheValueComes)
{
    std::string story;
    TaskScope scope;
    const Arrival<int> number;
    scope.start(tell(number, story));
    EXPECT_EQ(story, "begins ");
    EXPECT_EQ(scope.running(), 1U);

    number.bring(21);

    EXPECT_EQ(story, "begins 42 gone ");
    EXPECT_EQ(scope.running(), 0U);
}

TEST(Task, AValueThatIsThereAlreadyIsNotWaitedFor)
{
    std::string story;
    TaskScope scope;
    const Arrival<int> number;
    number.bring(1);
    number.bring(2);

    scope.start(tell(number, story));

    EXPECT_EQ(story, "begins 2 gone ");
    EXPECT_EQ(scope.running(), 0U);
}

TEST(Task, WhatStillWaitsGoesWithItsScope)
{
    std::string story;
    const Arrival<int> number;
    {
        TaskScope scope;
        scope.start(tell(number, story));
    }
    EXPECT_EQ(story, "begins gone ");

    number.bring(1);

    EXPECT_EQ(story, "begins gone ");
}

TEST(Task, ATaskThatIsNeverAwaitedNeverBegins)
{
    std::string story;
    {
        const Task<> task = tell({}, story);
    }
    EXPECT_EQ(story, "");
}

TEST(Task, RunsSideBySide)
{
    std::string story;
    TaskScope scope;
    const Arrival<int> first;
    const Arrival<int> second;
    scope.start(tell(first, story));
    scope.start(tell(second, story));

    second.bring(2);
    first.bring(1);

    EXPECT_EQ(story, "begins begins 4 gone 2 gone ");
}
