#include "Kovalt/Mouse/MouseEncoder.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Kovalt;
using Encoding = MouseProtocolEncoding;

namespace {

std::string encoded(Encoding encoding, const MouseEvent& event)
{
    return MouseEncoder::encodeEvent(encoding, ControlForm::SevenBit, event);
}

std::string utf(int value)
{
    std::string bytes;
    MouseEncoder::encodeMouseUtf(bytes, value);
    return bytes;
}

} // namespace

TEST(MouseEncoder, ButtonsHaveTheirNumbers)
{
    struct Row {
        int button;
        int flags;
    };
    for (const auto& [button, flags] :
         std::vector<Row>{{0, 0}, {1, 1}, {2, 2}, {3, 0}, {4, 64}, {5, 65}, {6, 0}, {-1, 0}}) {
        EXPECT_EQ(MouseEncoder::encodeButton(MouseMode::Vt200, button, false, {}), flags) << button;
        EXPECT_EQ(MouseEncoder::encodeButton(MouseMode::Vt200, button, true, {}), 3) << button;
    }
}

TEST(MouseEncoder, ModifiersAreToldInTheModesThatKnowThem)
{
    const MouseModifiers all{true, true, true};
    for (const auto mode :
         {MouseMode::Vt200, MouseMode::ButtonEventTracking, MouseMode::AnyEvent}) {
        EXPECT_EQ(MouseEncoder::encodeButton(mode, 1, false, all), 1 + 4 + 8 + 16);
        EXPECT_EQ(MouseEncoder::encodeButton(mode, 4, false, {.shift = true}), 68);
        EXPECT_EQ(MouseEncoder::encodeButton(mode, 0, true, {.meta = true}), 11);
        EXPECT_EQ(MouseEncoder::encodeButton(mode, 2, false, {.control = true}), 18);
    }
    for (const auto mode : {MouseMode::Off, MouseMode::X10})
        EXPECT_EQ(MouseEncoder::encodeButton(mode, 1, false, all), 1);
}

TEST(MouseEncoder, OnlyAnyEventTracksMotionWithoutAButton)
{
    EXPECT_TRUE(sendsMotionEvent(MouseMode::AnyEvent));
    for (const auto mode :
         {MouseMode::Off, MouseMode::X10, MouseMode::Vt200, MouseMode::ButtonEventTracking})
        EXPECT_FALSE(sendsMotionEvent(mode));
}

TEST(MouseEncoder, EveryEncodingWritesAPress)
{
    const MouseEvent press{4, 9, 19, 81, 321};

    EXPECT_EQ(encoded(Encoding::X10, press), "\x1b[M$*4");
    EXPECT_EQ(encoded(Encoding::Utf8, press), "\x1b[M$*4");
    EXPECT_EQ(encoded(Encoding::Sgr, press), "\x1b[<4;10;20M");
    EXPECT_EQ(encoded(Encoding::Urxvt, press), "\x1b[36;10;20M");
    EXPECT_EQ(encoded(Encoding::SgrPixel, press), "\x1b[<4;81;321M");
}

TEST(MouseEncoder, TheIntroducerHasAFormOfOneByte)
{
    EXPECT_EQ(MouseEncoder::encodeEvent(Encoding::Sgr, ControlForm::EightBit, {}), "\x9b<0;1;1M");
    EXPECT_EQ(MouseEncoder::encodeEvent(Encoding::X10, ControlForm::EightBit, {}), "\x9bM !!");
}

TEST(MouseEncoder, AnSgrReleaseOfAnyButtonIsButtonZeroWithASmallLetter)
{
    for (const int button : {0, 1, 2, 4, 5}) {
        const auto flags =
            MouseEncoder::encodeButton(MouseMode::Vt200, button, true, {.control = true});
        EXPECT_EQ(encoded(Encoding::Sgr, {flags, 0, 0, 0, 0}), "\x1b[<16;1;1m");
        EXPECT_EQ(encoded(Encoding::SgrPixel, {flags, 0, 0, 5, 6}), "\x1b[<16;5;6m");
    }
    EXPECT_EQ(encoded(Encoding::Urxvt, {3, 0, 0, 0, 0}), "\x1b[35;1;1M");
}

TEST(MouseEncoder, MotionIsNoRelease)
{
    EXPECT_EQ(MouseEncoder::encodeMotion(Encoding::Sgr, ControlForm::SevenBit, {3, 4, 5, 0, 0}),
              "\x1b[<35;5;6M");
    EXPECT_EQ(MouseEncoder::encodeMotion(Encoding::X10, ControlForm::SevenBit, {0, 0, 0, 0, 0}),
              "\x1b[M@!!");
}

TEST(MouseEncoder, X10CoordinatesStopAtTheLargestByte)
{
    for (const int cell : {222, 223, 300, 100000}) {
        EXPECT_EQ(encoded(Encoding::X10, {0, cell, 0, 0, 0}), "\x1b[M \xff!");
        EXPECT_EQ(encoded(Encoding::X10, {0, 0, cell, 0, 0}), "\x1b[M !\xff");
    }
    EXPECT_EQ(encoded(Encoding::X10, {0, 221, 0, 0, 0}), "\x1b[M \xfe!");
    EXPECT_EQ(encoded(Encoding::X10, {0, -50, 0, 0, 0}), std::string("\x1b[M \0!", 6));
}

TEST(MouseEncoder, UtfValuesTakeOneByteOrTwo)
{
    EXPECT_EQ(utf(32), " ");
    EXPECT_EQ(utf(126), "~");
    EXPECT_EQ(utf(127), "\xc1\xbf");
    EXPECT_EQ(utf(128), "\xc2\x80");
    EXPECT_EQ(utf(2046), "\xdf\xbe");
    EXPECT_EQ(utf(2047), std::string(1, '\0'));
    EXPECT_EQ(utf(2048), "\xdf\xbf");
    EXPECT_EQ(utf(100000), "\xdf\xbf");
}

TEST(MouseEncoder, EveryUtfValueInReachIsDecodedBack)
{
    for (int value = 128; value < 2047; ++value) {
        const auto bytes = utf(value);
        ASSERT_EQ(bytes.size(), 2U);
        const auto high = static_cast<unsigned char>(bytes[0]) & 0x1FU;
        const auto low = static_cast<unsigned char>(bytes[1]) & 0x3FU;
        ASSERT_EQ(static_cast<int>(high << 6U | low), value);
    }
}
