#include "Chat/ChatMarkdown.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>

#include <algorithm>
#include <iterator>

using namespace Bralto;
using namespace Bralto::MarkdownBlocks;

namespace {

std::vector<MarkdownBlock> parse(const char* text)
{
    return MarkdownParser::blocks(QString::fromUtf8(text));
}

template <typename Block>
Block only(const char* text)
{
    const auto blocks = parse(text);
    EXPECT_EQ(blocks.size(), 1u) << text;
    if (blocks.size() != 1 || !std::holds_alternative<Block>(blocks[0])) {
        ADD_FAILURE() << "another block than expected: " << text;
        return {};
    }
    return std::get<Block>(blocks[0]);
}

} // namespace

TEST(ChatMarkdown, NothingGivesNoBlocks)
{
    EXPECT_TRUE(parse("").empty());
    EXPECT_TRUE(parse("\n \n\t\n").empty());
}

TEST(ChatMarkdown, LinesOfAParagraphStayTogetherUntilABlankLine)
{
    const auto blocks = parse("one\n two \n\nthree");

    ASSERT_EQ(blocks.size(), 2u);
    EXPECT_EQ(std::get<Paragraph>(blocks[0]).text, "one\ntwo");
    EXPECT_EQ(std::get<Paragraph>(blocks[1]).text, "three");
}

TEST(ChatMarkdown, AnOpenFenceRunsToTheEnd)
{
    const auto code = only<Code>("```cpp\nint a;\n\n  int b");

    EXPECT_EQ(code.language, "cpp");
    EXPECT_EQ(code.text, "int a;\n\n  int b");
}

TEST(ChatMarkdown, AClosingFenceChangesNothingBeforeIt)
{
    const auto open = parse("before\n```\nx = 1\n");
    const auto closed = parse("before\n```\nx = 1\n```\nafter");

    ASSERT_EQ(open.size(), 2u);
    ASSERT_EQ(closed.size(), 3u);
    EXPECT_EQ(open[0], closed[0]);
    EXPECT_EQ(std::get<Code>(closed[1]).text, "x = 1");
    EXPECT_FALSE(std::get<Code>(closed[1]).language.has_value());
}

TEST(ChatMarkdown, AFenceClosesOnlyWithItsOwnCharacterAndAtLeastItsLength)
{
    EXPECT_EQ(only<Code>("````\n```\n~~~~\n`````").text, "```\n~~~~");
    EXPECT_EQ(only<Code>("~~~\n```\n~~~ x\n~~~").text, "```\n~~~ x");
    EXPECT_FALSE(MarkdownParser::fenceMarker(u"``").has_value());
    EXPECT_FALSE(MarkdownParser::fenceMarker(u"").has_value());
}

TEST(ChatMarkdown, HeadingsHaveOneToSixMarksAndABlank)
{
    EXPECT_EQ(only<Heading>("# One"), (Heading{1, "One"}));
    EXPECT_EQ(only<Heading>("###### Six ## "), (Heading{6, "Six"}));
    EXPECT_EQ(only<Paragraph>("####### seven").text, "####### seven");
    EXPECT_EQ(only<Paragraph>("#nospace").text, "#nospace");
}

TEST(ChatMarkdown, ARuleIsThreeOrMoreOfOneCharacter)
{
    for (const char* line : {"---", "***", "______", "  ---  "}) {
        SCOPED_TRACE(line);
        only<Rule>(line);
    }
    EXPECT_EQ(parse("one\n---\ntwo").size(), 3u);
    EXPECT_EQ(only<List>("- -").items.front().text, "-");
    EXPECT_EQ(only<Paragraph>("--").text, "--");
}

TEST(ChatMarkdown, AQuoteTakesAllItsLines)
{
    EXPECT_EQ(only<Quote>("> one\n>two\n>   three").text, "one\ntwo\n  three");
}

TEST(ChatMarkdown, ATableNeedsItsSeparator)
{
    const auto table = only<Table>("| a | b |\n|---|:-:|\n| 1 | |\n| x | y | z |");
    EXPECT_EQ(table.header, QStringList({"a", "b"}));
    ASSERT_EQ(table.rows.size(), 2u);
    EXPECT_EQ(table.rows[0], QStringList({"1", ""}));
    EXPECT_EQ(table.rows[1], QStringList({"x", "y", "z"}));

    EXPECT_EQ(only<Paragraph>("| a | b |\n| 1 | 2 |").text, "| a | b |\n| 1 | 2 |");
}

TEST(ChatMarkdown, ASeparatorHasDashesAndColumns)
{
    EXPECT_TRUE(MarkdownParser::isTableSeparator(u" | --- | :--: | "));
    EXPECT_TRUE(MarkdownParser::isTableSeparator(u":--"));
    EXPECT_TRUE(MarkdownParser::isTableSeparator(u"--:"));
    EXPECT_FALSE(MarkdownParser::isTableSeparator(u"---"));
    EXPECT_FALSE(MarkdownParser::isTableSeparator(u"| |"));
    EXPECT_FALSE(MarkdownParser::isTableSeparator(u"|-a-|"));
    EXPECT_FALSE(MarkdownParser::isTableSeparator(u""));
}

TEST(ChatMarkdown, BulletsAndNumbersAreItems)
{
    const auto list = only<List>("- a\n* b\n+ c\n1) first\n12. twelfth\n- ");

    ASSERT_EQ(list.items.size(), 6u);
    EXPECT_FALSE(list.items[0].marker.has_value());
    EXPECT_EQ(list.items[3].marker, "1.");
    EXPECT_EQ(list.items[4].marker, "12.");
    EXPECT_EQ(list.items[5].text, "");
}

TEST(ChatMarkdown, TaskBoxesAreReadOff)
{
    const auto list = only<List>("- [x] done\n- [X] too\n- [ ] open\n- [] none\n1. [ ] numbered");

    EXPECT_EQ(list.items[0].checked, true);
    EXPECT_EQ(list.items[0].text, "done");
    EXPECT_EQ(list.items[1].checked, true);
    EXPECT_EQ(list.items[2].checked, false);
    EXPECT_FALSE(list.items[3].checked.has_value());
    EXPECT_EQ(list.items[3].text, "[] none");
    EXPECT_EQ(list.items[4].checked, false);
}

TEST(ChatMarkdown, TheIndentGivesTheDepth)
{
    EXPECT_EQ(MarkdownParser::listItem(u"\t- x")->depth, 2);
    EXPECT_EQ(MarkdownParser::listItem(u"  - x")->depth, 1);
    EXPECT_EQ(MarkdownParser::listItem(u" - x")->depth, 0);
    EXPECT_EQ(MarkdownParser::listItem(u"            - x")->depth, 4);
}

TEST(ChatMarkdown, WhatLooksLikeAnItemButIsNoneStaysText)
{
    for (const char16_t* line : {u"-x", u"-", u"1.x", u"1 x", u"a. x", u"", u"   ", u"1."}) {
        SCOPED_TRACE(QString::fromUtf16(line).toStdString());
        EXPECT_FALSE(MarkdownParser::listItem(line).has_value());
    }
}

TEST(ChatMarkdown, AListEndsTheParagraphBeforeItAndTextEndsTheList)
{
    const auto blocks = parse("intro\n- a\noutro");

    ASSERT_EQ(blocks.size(), 3u);
    EXPECT_TRUE(std::holds_alternative<Paragraph>(blocks[0]));
    EXPECT_TRUE(std::holds_alternative<List>(blocks[1]));
    EXPECT_TRUE(std::holds_alternative<Paragraph>(blocks[2]));
}

TEST(ChatMarkdown, WindowsLineEndsReadTheSame)
{
    EXPECT_EQ(parse("# A\r\n\r\n- b\r\n---\r\n"), parse("# A\n\n- b\n---\n"));
}

TEST(ChatMarkdown, EveryPrefixOfAReplyParses)
{
    const QString reply =
        QStringLiteral("# T\n\ntext **b\n- [x] a\n\t1. b\n> q\n\n|a|b|\n|-|-|\n|1|2|\n"
                       "```swift\nlet x = 1\n```\n---\nend");
    for (qsizetype length = 0; length <= reply.size(); ++length) {
        const auto blocks = MarkdownParser::blocks(reply.first(length));
        EXPECT_EQ(blocks.empty(), reply.first(length).trimmed().isEmpty()) << length;
    }
}

TEST(ChatMarkdown, RandomLinesNeverLoseAWord)
{
    QRandomGenerator random(7);
    const QStringList pieces{"word", "#", " ",   "\n",   "```", "|",
                             "-",    ">", "1. ", "[x] ", "\t",  ":"};
    for (int round = 0; round < 500; ++round) {
        QString text;
        for (int i = 0; i < 30; ++i)
            text += pieces[random.bounded(int(pieces.size()))];
        const auto blocks = MarkdownParser::blocks(text + "\n\nlast");
        EXPECT_FALSE(blocks.empty()) << text.toStdString();
    }
}

TEST(ChatMarkdown, AGrowingTextReadsAsTheWholeDoes)
{
    QRandomGenerator random(11);
    const QStringList pieces{"word",  "# h", " ",    "\n",    "\n\n",  "\r\n", "```\n", "a|b\n",
                             "-|-\n", "> q", "1. i", "- x\n", "---\n", "\t",   "~~~"};
    for (int round = 0; round < 300; ++round) {
        QString text;
        MarkdownParser::Settled settled;
        std::vector<MarkdownBlock> blocks;
        for (int i = 0; i < 40; ++i) {
            text += pieces[random.bounded(int(pieces.size()))];
            blocks.resize(settled.blocks);
            std::ranges::move(MarkdownParser::blocksBehind(settled, text),
                              std::back_inserter(blocks));
            ASSERT_EQ(blocks, MarkdownParser::blocks(text)) << text.toStdString();
            ASSERT_LE(settled.blocks, blocks.size());
        }
    }
}

TEST(ChatMarkdown, OnlyWhatABlankLineEndedIsSettled)
{
    const auto settledOf = [](const QString& text) {
        MarkdownParser::Settled settled;
        std::ignore = MarkdownParser::blocksBehind(settled, text);
        return settled.length;
    };

    EXPECT_EQ(settledOf("one\ntwo"), 0);
    EXPECT_EQ(settledOf("one\n\ntwo"), 5);
    EXPECT_EQ(settledOf("one\n "), 0);
    EXPECT_EQ(settledOf("```\none\n\ntwo"), 0);
    EXPECT_EQ(settledOf("one\n\n```\ntwo\n\nthree"), 5);
}
