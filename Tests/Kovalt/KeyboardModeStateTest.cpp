#include "Kovalt/Keyboard/KeyboardModeState.h"

#include <gtest/gtest.h>

#include <array>

using namespace Kovalt;
using Flags = KittyKeyboardFlags;

namespace {

std::optional<std::string> carryOut(KeyboardModeState& state, char marker,
                                    std::vector<std::int32_t> parameters)
{
    return handleKittyKeyboardProtocol(state, static_cast<std::uint8_t>(marker), parameters);
}

} // namespace

TEST(KeyboardModeState, APushedStateComesBackWithAPop)
{
    KeyboardModeState state;

    carryOut(state, '>', {5});
    carryOut(state, '>', {31});
    EXPECT_EQ(state.flags(), Flags::All);
    carryOut(state, '<', {1});

    EXPECT_EQ(state.flags(), Flags::of(5));
    EXPECT_EQ(state.stack(), std::vector<Flags>{Flags()});
}

TEST(KeyboardModeState, OnlyTheFiveKnownBitsAreTaken)
{
    KeyboardModeState state;

    carryOut(state, '>', {65535});
    EXPECT_EQ(state.flags(), Flags::All);
    carryOut(state, '=', {32 + 2, 1});
    EXPECT_EQ(state.flags(), Flags::ReportEvents);
}

TEST(KeyboardModeState, ThePushBeyondSixteenDropsTheOldestEntry)
{
    KeyboardModeState state;
    for (int flags = 1; flags <= 16; ++flags)
        carryOut(state, '>', {flags});
    ASSERT_EQ(state.stack().size(), 16U);
    ASSERT_EQ(state.stack().front(), Flags());

    carryOut(state, '>', {17});

    EXPECT_EQ(state.stack().size(), 16U);
    EXPECT_EQ(state.stack().front(), Flags::of(1));
    EXPECT_EQ(state.stack().back(), Flags::of(16));
    EXPECT_EQ(state.flags(), Flags::of(17));
}

TEST(KeyboardModeState, APopOfSeveralRestoresTheOldestOfThem)
{
    KeyboardModeState state;
    for (const int flags : {1, 2, 3})
        carryOut(state, '>', {flags});

    carryOut(state, '<', {2});

    EXPECT_EQ(state.flags(), Flags::of(1));
    EXPECT_EQ(state.stack().size(), 1U);
}

TEST(KeyboardModeState, APopOfMoreThanThereIsLeavesNothing)
{
    KeyboardModeState state;
    carryOut(state, '>', {1});
    carryOut(state, '>', {2});

    carryOut(state, '<', {3});

    EXPECT_EQ(state, KeyboardModeState());
}

TEST(KeyboardModeState, APopWithoutACountTakesOne)
{
    for (const auto& parameters : {std::vector<std::int32_t>{}, std::vector<std::int32_t>{0}}) {
        KeyboardModeState state;
        carryOut(state, '>', {1});
        carryOut(state, '>', {2});
        carryOut(state, '<', parameters);
        EXPECT_EQ(state.flags(), Flags::of(1));
    }
}

TEST(KeyboardModeState, SettingReplacesAddsOrTakesAway)
{
    KeyboardModeState state;

    carryOut(state, '=', {5});
    EXPECT_EQ(state.flags(), Flags::of(5));
    carryOut(state, '=', {2, 2});
    EXPECT_EQ(state.flags(), Flags::of(7));
    carryOut(state, '=', {1, 3});
    EXPECT_EQ(state.flags(), Flags::of(6));
    carryOut(state, '=', {31, 4});
    EXPECT_EQ(state.flags(), Flags::of(6));
    carryOut(state, '=', {8, 1});
    EXPECT_EQ(state.flags(), Flags::of(8));
    carryOut(state, '=', {});
    EXPECT_EQ(state, KeyboardModeState());
}

TEST(KeyboardModeState, OnlyTheQueryIsAnswered)
{
    KeyboardModeState state;

    EXPECT_EQ(carryOut(state, '?', {0}), "?0u");
    EXPECT_EQ(carryOut(state, '>', {13}), std::nullopt);
    EXPECT_EQ(carryOut(state, '?', {0}), "?13u");
    EXPECT_EQ(carryOut(state, '!', {1}), std::nullopt);
    EXPECT_EQ(state.flags(), Flags::of(13));
}
