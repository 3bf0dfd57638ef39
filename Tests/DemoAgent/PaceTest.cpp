#include "DemoAgent/Pace.h"

#include <gtest/gtest.h>

using namespace DemoAgent;
using namespace std::chrono_literals;

TEST(Pace, AFactorDividesEveryPause)
{
    EXPECT_EQ(Pace::fromText("20").scaled(200ms), 10ms);
    EXPECT_EQ(Pace::fromText("0.5").scaled(200ms), 400ms);
    EXPECT_EQ(Pace::fromText("0").scaled(200ms), 0ms);
}

TEST(Pace, WhatIsNoFactorIsTheUsualPace)
{
    for (const char* text : {"", "fast", "-2", "nan", "inf", "1"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Pace::fromText(text).scaled(200ms), 200ms);
    }
}

TEST(Pace, AVerySmallFactorDoesntOverflow)
{
    EXPECT_EQ(Pace::fromText("1e-300").scaled(200ms), 1000000000ms);
}
