// Looks: every parameter, colours with semicolons and with colons.

#include "Tests/Kovalt/TerminalHarness.h"

#include <gtest/gtest.h>

namespace Kovalt {

namespace {

using Testing::TerminalHarness;

Attribute looksAfter(const std::string& text)
{
    TerminalHarness t;
    t.feed(text);
    return t.terminal.currentAttribute();
}

Attribute withStyle(std::uint8_t style, UnderlineStyle underline = UnderlineStyle::None)
{
    Attribute attribute;
    attribute.style = style;
    attribute.underlineStyle = underline;
    return attribute;
}

TEST(TerminalRendition, EachParameterHasItsStyle)
{
    constexpr auto Underline = CharacterStyle::Underline;
    const std::pair<const char*, Attribute> cases[] = {
        {"1", withStyle(CharacterStyle::Bold)},
        {"2", withStyle(CharacterStyle::Dim)},
        {"3", withStyle(CharacterStyle::Italic)},
        {"4", withStyle(Underline, UnderlineStyle::Single)},
        {"4:0", {}},
        {"4:1", withStyle(Underline, UnderlineStyle::Single)},
        {"4:2", withStyle(Underline, UnderlineStyle::Double)},
        {"4:3", withStyle(Underline, UnderlineStyle::Curly)},
        {"4:4", withStyle(Underline, UnderlineStyle::Dotted)},
        {"4:5", withStyle(Underline, UnderlineStyle::Dashed)},
        {"4:9", withStyle(Underline, UnderlineStyle::Single)},
        {"5", withStyle(CharacterStyle::Blink)},
        {"7", withStyle(CharacterStyle::Inverse)},
        {"8", withStyle(CharacterStyle::Invisible)},
        {"9", withStyle(CharacterStyle::CrossedOut)},
        {"21", withStyle(Underline, UnderlineStyle::Double)},
        {"1;3;9",
         withStyle(CharacterStyle::Bold | CharacterStyle::Italic | CharacterStyle::CrossedOut)},
        {"6;1", withStyle(CharacterStyle::Bold)},
        {"1;;3", withStyle(CharacterStyle::Italic)},
        {"1:5", withStyle(CharacterStyle::Bold)},
    };
    for (const auto& [parameters, expected] : cases) {
        SCOPED_TRACE(parameters);
        EXPECT_EQ(looksAfter("\x1B[" + std::string(parameters) + "m"), expected);
    }
}

TEST(TerminalRendition, EachStyleIsTakenBackAlone)
{
    const std::pair<const char*, std::uint8_t> cases[] = {
        {"22", CharacterStyle::Bold | CharacterStyle::Dim},
        {"23", CharacterStyle::Italic},
        {"24", CharacterStyle::Underline},
        {"25", CharacterStyle::Blink},
        {"27", CharacterStyle::Inverse},
        {"28", CharacterStyle::Invisible},
        {"29", CharacterStyle::CrossedOut},
    };
    for (const auto& [parameter, bits] : cases) {
        SCOPED_TRACE(parameter);
        const Attribute looks =
            looksAfter("\x1B[1;2;3;4:3;5;7;8;9m\x1B[" + std::string(parameter) + "m");
        EXPECT_EQ(looks.style, std::uint8_t(~bits));
        EXPECT_EQ(looks.underlineStyle,
                  bits == CharacterStyle::Underline ? UnderlineStyle::None : UnderlineStyle::Curly);
    }
}

TEST(TerminalRendition, TheSixteenColorsHaveTheirParameters)
{
    for (int i = 0; i < 16; ++i) {
        SCOPED_TRACE(i);
        const int base = i < 8 ? 30 : 82;
        Attribute expected;
        expected.fg = CellColor::ansi256(std::uint8_t(i));
        EXPECT_EQ(looksAfter("\x1B[" + std::to_string(base + i) + "m"), expected);
        std::swap(expected.fg, expected.bg);
        EXPECT_EQ(looksAfter("\x1B[" + std::to_string(base + 10 + i) + "m"), expected);
    }
    EXPECT_EQ(looksAfter("\x1B[31;42m\x1B[39;49m"), Attribute{});
}

TEST(TerminalRendition, ExtendedColorsAreReadInBothForms)
{
    struct Case {
        const char* parameters;
        CellColor fg;
        std::uint8_t style = 0;
    };
    const Case cases[] = {
        {"38;5;200", CellColor::ansi256(200)},
        {"38;5;999", CellColor::ansi256(255)},
        {"38:5:200", CellColor::ansi256(200)},
        {"38:5:200:7", CellColor::ansi256(200)},
        {"38;2;1;2;3", CellColor::trueColor(1, 2, 3)},
        {"38:2:1:2:3", CellColor::trueColor(1, 2, 3)},
        {"38:2::1:2:3", CellColor::trueColor(1, 2, 3)},
        {"38:2:7:1:2:3:0:0", CellColor::trueColor(1, 2, 3)},
        {"38;2;300;2;3", CellColor::trueColor(255, 2, 3)},
        {"38:5:1;1", CellColor::ansi256(1), CharacterStyle::Bold},
        {"38:2:1:2:3;1", CellColor::trueColor(1, 2, 3), CharacterStyle::Bold},
        {"38;5;1;1", CellColor::ansi256(1), CharacterStyle::Bold},
        {"38:2:1:2;1", {}, CharacterStyle::Bold},
        {"38:5;1", {}, CharacterStyle::Bold},
        {"38:9:1;1", {}, CharacterStyle::Bold},
        // Of a colour that is not whole, only the kind is consumed.
        {"38;5", {}},
        {"38;2;1", {}, CharacterStyle::Bold},
        {"38;2;3;1", {}, CharacterStyle::Italic | CharacterStyle::Bold},
        {"38;9;1", {}, CharacterStyle::Bold},
        {"38;9:3;1", {}, CharacterStyle::Bold},
        {"38;;1", {}, CharacterStyle::Bold},
        {"1;38", {}, CharacterStyle::Bold},
        {"38", {}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.parameters);
        Attribute expected;
        expected.fg = each.fg;
        expected.style = each.style;
        EXPECT_EQ(looksAfter("\x1B[" + std::string(each.parameters) + "m"), expected);
    }
}

TEST(TerminalRendition, BackgroundAndUnderlineTakeExtendedColorsToo)
{
    Attribute expected;
    expected.bg = CellColor::trueColor(1, 2, 3);
    expected.underlineColor = CellColor::ansi256(9);

    EXPECT_EQ(looksAfter("\x1B[48;2;1;2;3;58:5:9m"), expected);
    EXPECT_EQ(looksAfter("\x1B[48;2;1;2;3;58;5;9m\x1B[49;59m"), Attribute{});
}

TEST(TerminalRendition, ResetTakesEverythingBack)
{
    const std::string everything = "\x1B[1;2;3;4;5;7;8;9;31;42m\x1B[58;5;1m";
    EXPECT_EQ(looksAfter(everything + "\x1B[m"), Attribute{});
    EXPECT_EQ(looksAfter(everything + "\x1B[0m"), Attribute{});
    EXPECT_EQ(looksAfter(everything + "\x1B[3;0m"), Attribute{});
}

TEST(TerminalRendition, MarkedSequencesAreNotLooks)
{
    EXPECT_EQ(looksAfter("\x1B[>4;1m\x1B[?1m\x1B[1$m"), Attribute{});
}

} // namespace

} // namespace Kovalt
