#include "Tests/Support/KovaltSearch.h"

#include <gtest/gtest.h>

#include <string>

namespace Kovalt {

using namespace Testing;

TEST(SearchInLongText, AVeryLongLineIsSearchedInParts)
{
    Screen screen(80, 25, 1000);
    std::string text;
    for (int i = 0; text.size() < 40'000; ++i)
        text += "<" + std::to_string(i) + ">";
    screen.printRuns(text);
    SearchService search(screen.buffer, screen.graphemes);

    for (const SearchQuery& query : {regex("<\\d+>"), regex("(?<=>)<\\d{4}>(?=<)")}) {
        search.setQuery(query);
        EXPECT_TRUE(search.step(1));
        search.step(Everything);
        std::size_t expected = 0;
        for (std::size_t at = 0; at < text.size(); ++expected)
            at = text.find('>', at) + 1;
        if (query.text.size() > 6)
            expected -= 1001; // <0> to <999>, and the last.
        EXPECT_EQ(search.count(), expected) << query.text;
    }
    search.setQuery(regex("^<0>|^<\\d+>$|<1>$"));
    search.step(Everything);
    EXPECT_EQ(all(search), (Matches{inRow(0, 0, 3)}));
}

TEST(SearchInLongText, ALineThatIsNotLongIsNotCutWhereverItBegins)
{
    for (int above = 0; above < 26; ++above) {
        SCOPED_TRACE(above);
        Screen screen(80, 60);
        screen.printRuns(std::string(std::size_t(above), '\n') + "<" + std::string(1900, 'a') +
                         ">");
        SearchService search(screen.buffer, screen.graphemes);

        search.setQuery(regex("(?<=^<a{1800})a+>$"));
        search.step(Everything);

        ASSERT_EQ(all(search), (Matches{{{above + 22, 41}, {above + 23, 62}}}));
    }
}

TEST(SearchInLongText, AMatchAcrossPartsIsFoundOnce)
{
    Screen screen(80, 25, 1000);
    screen.printRuns(std::string(4000, 'a') + std::string(4000, 'b'));
    SearchService search(screen.buffer, screen.graphemes);

    search.setQuery(regex("a{1000}b{10}|b{900}"));
    search.step(Everything);

    // 3000 + 1000 letters and 10 of the others, then four times 900 of the 3990 that are left.
    ASSERT_EQ(search.count(), 5u);
    EXPECT_EQ(search.match(0), (TextRange{{37, 40}, {50, 10}}));
    EXPECT_EQ(search.match(1).begin, (TextPosition{50, 10}));
    EXPECT_EQ(search.match(4).end, (TextPosition{95, 10}));
}

TEST(SearchInLongText, AChangeInALongLineSearchesOnlyAPartAgain)
{
    Screen screen(80, 25, 1000);
    screen.printRuns(std::string(80'000, 'a') + "b");
    SearchService search(screen.buffer, screen.graphemes);
    search.setQuery(regex("ab+"));
    search.step(Everything);
    EXPECT_EQ(search.count(), 1u);

    screen.printRuns("b");

    EXPECT_FALSE(search.step(150));
    ASSERT_EQ(search.count(), 1u);
    EXPECT_EQ(search.match(0), (TextRange{{999, 79}, {1000, 2}}));
}

TEST(SearchInLongText, APatternThatTakesTooMuchIsGivenUpLineByLine)
{
    Screen screen(80, 25, 1000);
    screen.printRuns("aab\n" + std::string(2000, 'a') + "\naab\n");
    SearchService search(screen.buffer, screen.graphemes);

    search.setQuery(regex("(a+)+[bc]"));
    search.step(Everything);

    EXPECT_EQ(all(search), (Matches{inRow(0, 0, 3), inRow(26, 0, 3)}));
    EXPECT_EQ(search.givenUpLines(), 1u);
}

TEST(SearchInLongText, AHundredThousandLinesAreSearchedInSlices)
{
    Screen screen(80, 25, 100'000);
    for (int i = 0; i < 100'000; ++i)
        screen.printRuns("line " + std::to_string(i) + " of the log\n");
    SearchService search(screen.buffer, screen.graphemes);
    search.setQuery(literal("777"));

    int slices = 1;
    while (search.step(1000))
        ++slices;

    // All numbers below 100,000 with three sevens in a row, each once; 777777 is not one of them.
    std::size_t expected = 0;
    for (int i = 0; i < 100'000; ++i)
        expected += std::to_string(i).find("777") != std::string::npos ? 1u : 0u;
    EXPECT_EQ(search.count(), expected);
    EXPECT_GE(slices, 100);
    EXPECT_EQ(search.previous(), inRow(99'777, 7, 10));
    screen.printRuns("777\n");
    search.step(200);
    EXPECT_TRUE(search.isComplete());
    EXPECT_EQ(search.next(), inRow(100'000, 0, 3));
}

TEST(SearchInLongText, MatchesBeyondTheLimitPushTheOldestOut)
{
    Screen screen(80, 5, 8000);
    for (int i = 0; i < 7000; ++i)
        screen.printRuns(std::string(79, 'a') + "\n");
    SearchService search(screen.buffer, screen.graphemes);

    search.setQuery(literal("a"));
    search.step(Everything);

    EXPECT_EQ(search.count(), SearchService::MostMatches);
    EXPECT_TRUE(search.isCapped());
    EXPECT_EQ(search.match(search.count() - 1), inRow(6999, 78, 79));
}

} // namespace Kovalt
