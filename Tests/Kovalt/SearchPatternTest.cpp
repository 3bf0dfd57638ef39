#include "Kovalt/Search/SearchPattern.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace Kovalt {

namespace {

using Texts = std::vector<std::string>;
using Outcome = SearchPattern::Outcome;

enum Option : unsigned { None = 0, Regex = 1, Case = 2, Words = 4 };

SearchQuery query(const std::string& text, unsigned options)
{
    return {text, (options & Regex) != 0, (options & Case) != 0, (options & Words) != 0};
}

Texts matches(const std::string& pattern, const std::string& text, unsigned options = None,
              SearchPattern::Ends ends = {})
{
    SearchError error;
    const auto compiled = SearchPattern::compile(query(pattern, options), error);
    if (!compiled)
        return {"error: " + error.message};
    Texts found;
    for (std::size_t from = 0;;) {
        const auto result = compiled->find(text, from, ends);
        if (result.outcome == Outcome::GaveUp)
            found.push_back("gave up");
        if (result.outcome != Outcome::Found)
            return found;
        found.push_back(text.substr(result.begin, result.end - result.begin));
        from = result.end;
    }
}

} // namespace

TEST(SearchPattern, ALiteralTextMeansOnlyItself)
{
    EXPECT_EQ(matches("a.c", "abc a.c"), Texts{"a.c"});
    EXPECT_EQ(matches("(*[\\d", "x (*[\\d y"), Texts{"(*[\\d"});
    EXPECT_EQ(matches("a\\Eb\\Q.", "a\\Eb\\Q. a\\Eb\\Qx"), Texts{"a\\Eb\\Q."});
    EXPECT_EQ(matches("\\E", "\\E"), Texts{"\\E"});
    EXPECT_EQ(matches("a\\", "a\\ ab"), Texts{"a\\"});
}

TEST(SearchPattern, CaseCountsOnlyIfItShall)
{
    EXPECT_EQ(matches("Stra\u00dfe", "STRA\u1e9eE stra\u00dfe"),
              (Texts{"STRA\u1e9eE", "stra\u00dfe"}));
    EXPECT_EQ(matches("Ab", "ab Ab AB"), (Texts{"ab", "Ab", "AB"}));
    EXPECT_EQ(matches("Ab", "ab Ab AB", Case), Texts{"Ab"});
    EXPECT_EQ(matches("A.", "ab Ab", Regex | Case), Texts{"Ab"});
}

TEST(SearchPattern, AWholeWordIsNoPartOfALongerOne)
{
    EXPECT_EQ(matches("foo", "foo foobar barfoo (foo) foo_", Words), (Texts{"foo", "foo"}));
    EXPECT_EQ(matches("caf", "caf\u00e9 caf", Words), Texts{"caf"});
    EXPECT_EQ(matches("-v", "a-v -v --v -vv", Words), (Texts{"-v", "-v", "-v"}));
    EXPECT_EQ(matches("foo|foobar", "foobar", Regex | Words), Texts{"foobar"});
    EXPECT_EQ(matches("f.*?", "foo x", Regex | Words), Texts{"foo"});
    EXPECT_EQ(matches("(?x)foo # a comment", "foo foobar", Regex | Words), Texts{"foo"});
}

TEST(SearchPattern, ARegularExpressionKnowsUnicode)
{
    EXPECT_EQ(matches("\\w+", "caf\u00e9 \u4e2d\u6587", Regex),
              (Texts{"caf\u00e9", "\u4e2d\u6587"}));
    EXPECT_EQ(matches("^.", "\u4e2dx", Regex), Texts{"\u4e2d"});
}

TEST(SearchPattern, AnEmptyMatchIsNone)
{
    EXPECT_EQ(matches("x*", "axxb", Regex), Texts{"xx"});
    EXPECT_EQ(matches("^", "abc", Regex), Texts{});
    EXPECT_EQ(matches("\\b", "abc", Regex), Texts{});
    EXPECT_EQ(matches("a\\K", "aa", Regex), Texts{});
    EXPECT_EQ(matches("x*", "", Regex), Texts{});
}

TEST(SearchPattern, AnEndThatIsNotTheLinesEndIsNone)
{
    EXPECT_EQ(matches("^ab|bc$", "abc", Regex), Texts{"ab"});
    EXPECT_EQ(matches("^ab|bc$", "abc", Regex, {false, true}), Texts{"bc"});
    EXPECT_EQ(matches("^ab|bc$", "abc", Regex, {false, false}), Texts{});
}

TEST(SearchPattern, WhatStandsBeforeIsSeenButNotMatched)
{
    SearchError error;
    const auto pattern = SearchPattern::compile(query("(?<=a)b|a", Regex), error);
    ASSERT_TRUE(pattern);

    const auto result = pattern->find("ab", 1, {});

    EXPECT_EQ(result.outcome, Outcome::Found);
    EXPECT_EQ(result.begin, 1u);
    EXPECT_EQ(result.end, 2u);
}

TEST(SearchPattern, AnInvalidPatternSaysWhyAndWhere)
{
    struct Row {
        std::string text;
        std::string message;
        std::size_t offset;
    };
    for (const Row& row : {Row{"a(b", "missing closing parenthesis", 3},
                           Row{"a)(b", "unmatched closing parenthesis", 1},
                           Row{"[a", "missing terminating ] for character class", 2},
                           Row{"a**b|*", "quantifier does not follow a repeatable item", 2}}) {
        for (const unsigned options : {unsigned(Regex), unsigned(Regex | Words)}) {
            SCOPED_TRACE(row.text);
            SearchError error;
            EXPECT_FALSE(SearchPattern::compile(query(row.text, options), error));
            EXPECT_EQ(error.message, row.message);
            EXPECT_EQ(error.offset, row.offset);
        }
    }
}

TEST(SearchPattern, WhatIsNotUtf8OrTooLongIsAnError)
{
    SearchError error;
    EXPECT_FALSE(SearchPattern::compile(query("a\xff", None), error));
    EXPECT_TRUE(error.message.starts_with("UTF-8 error")) << error.message;
    EXPECT_FALSE(SearchPattern::compile(query(std::string(100'000, 'a'), None), error));
    EXPECT_EQ(error.message, "the text to search for is too long");
    EXPECT_FALSE(SearchPattern::compile(query("a\\C", Regex), error));
}

TEST(SearchPattern, AnyBytesMayBeSearched)
{
    EXPECT_EQ(matches("b", "a\xff\xfe\xe4\xb8"
                           "b"),
              Texts{"b"});
}

TEST(SearchPattern, APatternThatWasMadeToBeSlowGivesUp)
{
    const std::string text(3000, 'a');
    for (const std::string pattern : {"(a+)+b?c", "(a|aa)+$c", "(?:a*)*(?:a*)*[xc]\\1?", "(.*)*x|c",
                                      "^(a?){30}a{30}(a+)+c", "(?R)?a+c|(?:a(?R)?)+c"}) {
        SCOPED_TRACE(pattern);
        const auto before = std::chrono::steady_clock::now();

        matches(pattern, text + "b", Regex);

        // Generous, for a sanitized build on a busy machine; without limits it were years.
        EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(5));
    }
    EXPECT_EQ(matches("(a+)+[bc]{2}", text + "b", Regex), Texts{"gave up"});
}

TEST(SearchPattern, InALongTextThePatternGivesUpWhenItsTimeIsOver)
{
    SearchError error;
    const auto pattern = SearchPattern::compile(query("b", None), error);
    ASSERT_TRUE(pattern);
    const auto find = [&pattern](const std::string& text) {
        SearchBudget none(std::chrono::nanoseconds(0));
        return pattern->find(text, 0, {}, &none).outcome;
    };

    EXPECT_EQ(find(std::string(80, 'a')), Outcome::Nothing);
    EXPECT_EQ(find(std::string(4000, 'a')), Outcome::GaveUp);
    EXPECT_EQ(find("ab" + std::string(4000, 'a')), Outcome::Found);
    EXPECT_EQ(pattern->find(std::string(4000, 'a'), 0, {}).outcome, Outcome::Nothing);
}

TEST(SearchPattern, AMatchIsFoundWhereverItBeginsInALongText)
{
    for (const std::string filler : {"x", "\u00e9", "\u4e2d", "\U0001F468"}) {
        std::string text;
        for (int i = 0; i < 700; ++i) {
            SCOPED_TRACE(i);
            ASSERT_EQ(matches("(?<!\\d)12.*", text + "12" + text, Regex), Texts{"12" + text});
            ASSERT_EQ(matches("1" + filler, text + "1" + filler), Texts{"1" + filler});
            text += filler;
        }
    }
}

} // namespace Kovalt
