// Against the files of the Unicode data that the tables were not made of.

#include "Kovalt/GraphemeTable.h"
#include "Kovalt/UnicodeUtil.h"
#include "Kovalt/Utf8.h"
#include "Kovalt/WordSegments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace Kovalt {

namespace {

const std::string Data = "/usr/share/unicode/";

/// A row of a break test: scalars, and before each whether there is a break.
struct BreakCase {
    std::string line;
    std::u32string text;
    std::vector<bool> breaks;
};

std::vector<BreakCase> breakCases(const std::string& name)
{
    std::vector<BreakCase> cases;
    std::ifstream file(Data + "auxiliary/" + name);
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        BreakCase one{line, {}, {}};
        for (std::string word; words >> word;) {
            if (word == "÷" || word == "×")
                one.breaks.push_back(word == "÷");
            else
                one.text.push_back(char32_t(std::stoul(word, nullptr, 16)));
        }
        if (!one.text.empty())
            cases.push_back(one);
    }
    return cases;
}

std::string utf8(std::u32string_view scalars)
{
    std::string text;
    for (const char32_t scalar : scalars)
        Utf8::append(text, scalar);
    return text;
}

} // namespace

TEST(UnicodeUtil, TheTablesAreOfTheDataThatIsInstalled)
{
    std::ifstream file(Data + "auxiliary/GraphemeBreakTest.txt");
    std::string line;
    std::getline(file, line);

    EXPECT_EQ(line, "# GraphemeBreakTest-" + std::string(UnicodeUtil::version()) + ".txt");
}

TEST(UnicodeUtil, GraphemeClustersBreakAsTheStandardsOwnTestSays)
{
    const auto cases = breakCases("GraphemeBreakTest.txt");
    ASSERT_GT(cases.size(), 500u);
    for (const BreakCase& one : cases) {
        SCOPED_TRACE(one.line);
        GraphemeState state;
        std::string cluster;
        for (std::size_t i = 0; i < one.text.size(); ++i) {
            ASSERT_EQ(state.wouldContinue(one.text[i]), !one.breaks[i]);
            if (i > 0) {
                ASSERT_EQ(UnicodeUtil::joins(cluster, one.text[i]), !one.breaks[i]);
            }
            ASSERT_EQ(state.advance(one.text[i]), !one.breaks[i]);
            if (one.breaks[i])
                cluster.clear();
            Utf8::append(cluster, one.text[i]);
        }
    }
}

TEST(UnicodeUtil, WordsBreakAsTheStandardsOwnTestSays)
{
    const auto cases = breakCases("WordBreakTest.txt");
    ASSERT_GT(cases.size(), 1500u);
    for (const BreakCase& one : cases) {
        SCOPED_TRACE(one.line);
        for (std::size_t i = 0; i <= one.text.size(); ++i)
            ASSERT_EQ(WordSegments::isBoundary(one.text, i), one.breaks[i]) << "before " << i;
    }
}

TEST(UnicodeUtil, CategoriesAreThoseOfTheDerivedFile)
{
    const std::vector<std::string> names = {
        "Lu", "Ll", "Lt", "Lm", "Lo", "Mn", "Mc", "Me", "Nd", "Nl", "No", "Pc", "Pd", "Ps", "Pe",
        "Pi", "Pf", "Po", "Sm", "Sc", "Sk", "So", "Zs", "Zl", "Zp", "Cc", "Cf", "Cs", "Co", "Cn"};
    std::ifstream file(Data + "extracted/DerivedGeneralCategory.txt");
    int checked = 0;
    for (std::string line; std::getline(file, line);) {
        std::replace(line.begin(), line.end(), ';', ' ');
        std::istringstream words(line.substr(0, line.find('#')));
        std::string range;
        std::string name;
        if (!(words >> range >> name))
            continue;
        const auto dots = range.find("..");
        const char32_t first = char32_t(std::stoul(range, nullptr, 16));
        const char32_t last = dots == std::string::npos
                                  ? first
                                  : char32_t(std::stoul(range.substr(dots + 2), nullptr, 16));
        for (char32_t scalar = first; scalar <= last; ++scalar) {
            ASSERT_EQ(names[std::size_t(UnicodeUtil::generalCategory(scalar))], name)
                << std::hex << std::uint32_t(scalar);
            ++checked;
        }
    }
    EXPECT_EQ(checked, 0x110000);
}

TEST(UnicodeUtil, WidthsAreMinusOneForControlsNoneForMarksAndTwoForIdeographs)
{
    struct Row {
        const char* name;
        char32_t scalar;
        int width;
    };
    for (const Row& row : {Row{"null", 0, -1},
                           {"escape", 0x1B, -1},
                           {"space", 0x20, 1},
                           {"tilde", 0x7E, 1},
                           {"delete", 0x7F, -1},
                           {"C1", 0x9B, -1},
                           {"no-break space", 0xA0, 1},
                           {"soft hyphen", 0xAD, 1},
                           {"e acute", 0xE9, 1},
                           {"combining acute", 0x301, 0},
                           {"enclosing circle", 0x20DD, 0},
                           {"Arabic number sign", 0x600, 1},
                           {"Devanagari vowel sign aa", 0x93E, 1},
                           {"Devanagari vowel sign u", 0x941, 0},
                           {"Hangul initial", 0x1100, 2},
                           {"Hangul vowel", 0x1161, 0},
                           {"Hangul final", 0x11A8, 0},
                           {"Hangul extended vowel", 0xD7B0, 0},
                           {"zero width space", 0x200B, 0},
                           {"zero width joiner", 0x200D, 0},
                           {"line separator", 0x2028, 0},
                           {"heavy heart", 0x2764, 1},
                           {"watch", 0x231A, 2},
                           {"ideographic space", 0x3000, 2},
                           {"hiragana", 0x3042, 2},
                           {"ideograph", 0x4E2D, 2},
                           {"Hangul syllable", 0xAC00, 2},
                           {"private use", 0xE000, 1},
                           {"variation selector 16", 0xFE0F, 0},
                           {"full width circumflex", 0xFF3E, 2},
                           {"half width katakana", 0xFF71, 1},
                           {"replacement", 0xFFFD, 1},
                           {"regional indicator", 0x1F1E9, 2},
                           {"thumbs up", 0x1F44D, 2},
                           {"skin tone alone", 0x1F3FD, 2},
                           {"unassigned ideograph", 0x2FFFD, 2},
                           {"tag", 0xE0067, 0},
                           {"last scalar", 0x10FFFF, 1},
                           {"no scalar", 0x110000, 1}}) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(UnicodeUtil::computeColumnWidth(row.scalar), row.width);
    }
}

TEST(UnicodeUtil, EveryEmojiOfTheTestFileIsOneCluster)
{
    std::ifstream file(Data + "emoji/emoji-test.txt");
    int checked = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.find("; fully-qualified") == std::string::npos)
            continue;
        SCOPED_TRACE(line);
        std::istringstream words(line.substr(0, line.find(';')));
        std::u32string text;
        for (std::string word; words >> word;)
            text.push_back(char32_t(std::stoul(word, nullptr, 16)));
        GraphemeState state;
        for (std::size_t i = 0; i < text.size(); ++i)
            ASSERT_EQ(state.advance(text[i]), i > 0);
        if (UnicodeUtil::computeColumnWidth(text[0]) == 2) {
            ASSERT_EQ(UnicodeUtil::columnWidth(utf8(text)), 2);
        }
        if (text.size() == 2 && text[1] == 0xFE0F) {
            ASSERT_TRUE(UnicodeUtil::isEmojiPresentationBase(text[0]));
        }
        ++checked;
    }
    EXPECT_GT(checked, 3000);
}

TEST(UnicodeUtil, OnlyBasesOfVariationSequencesHaveTwoPresentations)
{
    EXPECT_TRUE(UnicodeUtil::isEmojiPresentationBase(0x2764));
    EXPECT_TRUE(UnicodeUtil::isEmojiPresentationBase(U'#'));
    EXPECT_FALSE(UnicodeUtil::isEmojiPresentationBase(U'a'));
    EXPECT_FALSE(UnicodeUtil::isEmojiPresentationBase(0x1F9D1));
}

TEST(UnicodeUtil, AClustersWidthIsThatOfItsWidestPart)
{
    EXPECT_EQ(UnicodeUtil::columnWidth(""), 0);
    EXPECT_EQ(UnicodeUtil::columnWidth("a"), 1);
    EXPECT_EQ(UnicodeUtil::columnWidth("e\u0301"), 1);
    EXPECT_EQ(UnicodeUtil::columnWidth("\u0915\u093E"), 1);
    EXPECT_EQ(UnicodeUtil::columnWidth("\U0001F44D\U0001F3FD"), 2);
    EXPECT_EQ(UnicodeUtil::columnWidth("\U0001F1E9\U0001F1EA"), 2);
    EXPECT_EQ(UnicodeUtil::columnWidth("\uAC00\u11A8"), 2);
}

TEST(Utf8, EveryScalarSurvivesAndSurrogatesDoNot)
{
    for (char32_t scalar = 0; scalar <= 0x10FFFF; scalar += scalar < 0x3000 ? 1 : 61) {
        const bool isSurrogate = scalar >= 0xD800 && scalar <= 0xDFFF;
        const std::string text = Utf8::encode(scalar);
        std::size_t position = 0;
        ASSERT_EQ(Utf8::next(text, position), isSurrogate ? Utf8::Replacement : scalar);
        ASSERT_EQ(position, text.size());
    }
    EXPECT_EQ(Utf8::encode(0x110000), "\uFFFD");
}

TEST(Utf8, MalformedBytesReadAsReplacementsOneEach)
{
    EXPECT_EQ(Utf8::decode("\xC3"), U"\uFFFD");
    EXPECT_EQ(Utf8::decode("\x80z"), U"\uFFFDz");
    EXPECT_EQ(Utf8::decode("\xC0\xAF"), U"\uFFFD\uFFFD");
    EXPECT_EQ(Utf8::decode("\xE2\x82z"), U"\uFFFD\uFFFDz");
    EXPECT_EQ(Utf8::decode("\xED\xA0\x80"), U"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(Utf8::decode("\xF5\x80"), U"\uFFFD\uFFFD");
}

TEST(GraphemeTable, ASingleScalarIsItsOwnCode)
{
    GraphemeTable table;

    EXPECT_EQ(table.codeFor("a"), 'a');
    EXPECT_EQ(table.codeFor("\uFFFF"), 0xFFFF);
    EXPECT_EQ(table.codeFor("\U0001F600"), 0x1F600);
    EXPECT_EQ(table.codeFor(""), 0);
    EXPECT_EQ(table.count(), 0u);
}

TEST(GraphemeTable, CarriageReturnAndLineFeedTogetherAreTen)
{
    GraphemeTable table;

    EXPECT_EQ(table.codeFor("\r\n"), 10);
}

TEST(GraphemeTable, AClusterHasOneCodeAboveAllScalars)
{
    GraphemeTable table;

    const std::int32_t first = table.codeFor("e\u0301");
    const std::int32_t second = table.codeFor("a\u0301");

    EXPECT_EQ(first, 0x400001);
    EXPECT_EQ(second, 0x400002);
    EXPECT_EQ(table.codeFor("e\u0301"), first);
    EXPECT_EQ(table.extended('e', 0x301), first);
    EXPECT_EQ(table.textFor(first), "e\u0301");
    EXPECT_EQ(table.firstScalar(first), U'e');
    EXPECT_EQ(table.lastScalar(first), 0x301u);
}

TEST(GraphemeTable, WhatShowsNothingReadsAsABlank)
{
    GraphemeTable table;

    EXPECT_EQ(table.textFor(0), " ");
    EXPECT_EQ(table.textFor(-5), " ");
    EXPECT_EQ(table.textFor(0x110000), " ");
    EXPECT_EQ(table.textFor(0x400001), " ");
    EXPECT_EQ(table.lastScalar(0), 0u);
}

TEST(GraphemeTable, AFamilyGrowsScalarByScalar)
{
    GraphemeTable table;
    std::int32_t code = 0x1F468;
    for (const char32_t scalar : {0x200Du, 0x1F469u, 0x200Du, 0x1F467u}) {
        ASSERT_TRUE(table.joins(code, scalar));
        code = table.extended(code, scalar).value();
    }

    EXPECT_EQ(table.textFor(code), "\U0001F468\u200D\U0001F469\u200D\U0001F467");
    EXPECT_FALSE(table.joins(code, 0x1F467));
    EXPECT_FALSE(table.joins('a', 'b'));
    EXPECT_TRUE(table.joins(0, 0x301));
    EXPECT_TRUE(table.joins(0x1F1E9, 0x1F1EA));
    EXPECT_FALSE(table.joins(table.codeFor("\U0001F1E9\U0001F1EA"), 0x1F1EB));
}

TEST(GraphemeTable, EndlessMarksOnOneLetterStopAtTheLongestCluster)
{
    GraphemeTable table;
    std::int32_t code = 'e';
    std::optional<std::int32_t> next = code;
    int marks = 0;
    while ((next = table.extended(code, 0x301))) {
        code = *next;
        ++marks;
    }

    EXPECT_EQ(marks, (int(GraphemeTable::LongestGrapheme) - 1) / 2);
    EXPECT_EQ(table.extended('a', 0x301).has_value(), true);
}

TEST(GraphemeTable, PastItsBudgetNewClustersFallBackToTheirBase)
{
    GraphemeTable table(4000);
    const std::int32_t known = table.codeFor("e\u0301");
    char32_t mark = 0x300;
    while (table.extended('x', mark))
        ++mark;

    EXPECT_LT(table.count(), 30u);
    EXPECT_EQ(table.codeFor("y\u0301"), 'y');
    EXPECT_EQ(table.intern("y\u0301"), std::nullopt);
    EXPECT_EQ(table.codeFor("e\u0301"), known);
}

} // namespace Kovalt
