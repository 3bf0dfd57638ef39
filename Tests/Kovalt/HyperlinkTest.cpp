// Links: those that programs make, and those that text looks like.

#include "Kovalt/TinyAtom.h"
#include "Tests/Kovalt/ReplyForms.h"

using namespace Kovalt;
using namespace Kovalt::Testing;

namespace {

using Ranges = std::vector<LinkMatch::RowRange>;
constexpr auto Both = LinkLookupMode::ExplicitAndImplicit;

std::optional<LinkMatch> linkAt(const TerminalHarness& harness, int col, int row,
                                LinkLookupMode mode = Both)
{
    return harness.terminal.link({LinkLookupLocation::Space::Buffer, {col, row}}, mode);
}

std::string textAt(const TerminalHarness& harness, int col, int row)
{
    const auto link = linkAt(harness, col, row);
    return link ? link->text : "none";
}

} // namespace

namespace Kovalt {

static void PrintTo(const LinkMatch::RowRange& range, std::ostream* out)
{
    *out << "row " << range.row << ", " << range.first << " to " << range.last;
}

} // namespace Kovalt

TEST(Hyperlink, PrintedTextCarriesTheLinkUntilItEnds)
{
    TerminalHarness harness;

    harness.feed("ab" + osc("8;;http://x") + "cde" + osc("8;;") + "f");

    for (const int col : {0, 1, 5, 6})
        EXPECT_EQ(textAt(harness, col, 0), "none") << col;
    const auto link = linkAt(harness, 3, 0);
    ASSERT_TRUE(link);
    EXPECT_EQ(link->text, "http://x");
    EXPECT_TRUE(link->isExplicit);
    EXPECT_EQ(link->range, (LinkMatch::RowRange{0, 2, 5}));
    EXPECT_EQ(link->rowRanges, (Ranges{{0, 2, 5}}));
}

TEST(Hyperlink, NothingIsStoredUntilSomethingIsPrinted)
{
    TerminalHarness harness;
    const auto before = TinyAtom::table().count();

    harness.feed(osc("8;;http://a") + osc("8;;http://b") + osc("8;;"));
    EXPECT_EQ(TinyAtom::table().count(), before);
    harness.feed(osc("8;;http://a") + "x");
    EXPECT_EQ(TinyAtom::table().count(), before + 2); // Of the terminal and of its twin.
}

TEST(Hyperlink, ParametersWithoutAUriAreStoredButLeadNowhere)
{
    TerminalHarness harness;

    harness.feed(osc("8;id=1;") + "a" + osc("8;;") + "b");

    EXPECT_NE(harness.cell(0, 0).payload, 0);
    EXPECT_EQ(harness.cell(1, 0).payload, 0);
    EXPECT_EQ(TinyAtom::target(harness.cell(0, 0).payload), "id=1;");
    EXPECT_EQ(textAt(harness, 0, 0), "none");
}

TEST(Hyperlink, OnlyTheExactPayloadEndsALink)
{
    TerminalHarness harness;

    harness.feed(osc("8;;http://a") + "a" + osc("8;") + "b" + osc("8;;") + "c");

    EXPECT_NE(harness.cell(0, 0).payload, 0);
    EXPECT_NE(harness.cell(1, 0).payload, 0);
    EXPECT_NE(harness.cell(1, 0).payload, harness.cell(0, 0).payload);
    EXPECT_EQ(harness.cell(2, 0).payload, 0);
}

TEST(Hyperlink, TextThatIsNotAsciiEndsTheLinkBefore)
{
    TerminalHarness harness;

    harness.feed(osc("8;;http://a") + "a" + osc("8;;http://ä") + "b");

    EXPECT_EQ(textAt(harness, 0, 0), "http://a");
    EXPECT_EQ(textAt(harness, 1, 0), "none");
}

TEST(Hyperlink, TheSameLinkAgainUsesNoOtherCode)
{
    TerminalHarness harness;

    harness.feed(osc("8;;http://a") + "a" + osc("8;;http://b") + "b" + osc("8;;http://a") + "c");

    EXPECT_EQ(harness.cell(0, 0).payload, harness.cell(2, 0).payload);
    EXPECT_NE(harness.cell(0, 0).payload, harness.cell(1, 0).payload);
}

TEST(Hyperlink, ACodeThatWasReleasedIsNotUsedAgain)
{
    TerminalHarness harness;
    harness.feed(osc("8;;http://a") + "a" + osc("8;;"));
    const auto released = harness.cell(0, 0).payload;

    harness.feed("\x1b[2J\x1b[H");
    harness.onBoth([](Terminal& terminal) { terminal.garbageCollectPayload(); });
    harness.feed(osc("8;;http://a") + "a");

    EXPECT_EQ(TinyAtom::target(released), std::nullopt);
    EXPECT_NE(harness.cell(0, 0).payload, released);
    EXPECT_EQ(textAt(harness, 0, 0), "http://a");
}

TEST(Hyperlink, ItGoesOnWhereTheTextWraps)
{
    TerminalHarness harness(5, 4);

    harness.feed("ab" + osc("8;;http://x") + "cdefghijk" + osc("8;;") + "l");

    for (const auto& [col, row] : {std::pair(2, 0), std::pair(3, 1), std::pair(0, 2)}) {
        const auto link = linkAt(harness, col, row);
        ASSERT_TRUE(link);
        EXPECT_EQ(link->rowRanges, (Ranges{{0, 2, 5}, {1, 0, 5}, {2, 0, 1}}));
        EXPECT_EQ(link->range, link->rowRanges[std::size_t(row)]);
    }
    EXPECT_EQ(textAt(harness, 1, 2), "none");
}

TEST(Hyperlink, ItGoesOnOverTheGapBeforeAWideCharacter)
{
    TerminalHarness harness(5, 4);

    harness.feed(osc("8;;http://x") + "abcd漢e");

    const auto link = linkAt(harness, 0, 0);
    ASSERT_TRUE(link);
    EXPECT_EQ(link->rowRanges, (Ranges{{0, 0, 5}, {1, 0, 3}}));
    EXPECT_EQ(linkAt(harness, 1, 1)->rowRanges, link->rowRanges);
}

TEST(Hyperlink, ItDoesNotGoOnIntoAnotherLine)
{
    TerminalHarness harness(5, 4);

    harness.feed(osc("8;;http://x") + "abcde\r\nfg");

    EXPECT_EQ(linkAt(harness, 0, 0)->rowRanges, (Ranges{{0, 0, 5}}));
    EXPECT_EQ(linkAt(harness, 0, 1)->rowRanges, (Ranges{{1, 0, 2}}));
}

TEST(Hyperlink, APlaceInTheViewFollowsTheScrolling)
{
    TerminalHarness harness(10, 2);
    harness.feed(osc("8;;http://x") + "a" + osc("8;;") + "\r\nb\r\nc\r\nd");

    const LinkLookupLocation top{LinkLookupLocation::Space::Screen, {0, 0}};
    EXPECT_FALSE(harness.terminal.link(top, Both));
    harness.terminal.buffer().yDisp = 0;
    ASSERT_TRUE(harness.terminal.link(top, Both));
    EXPECT_EQ(harness.terminal.link(top, Both)->range.row, 0);
}

TEST(Hyperlink, ResetsCloseTheOpenLink)
{
    for (const char* const reset : {"\x1b[!p", "\x1b"
                                               "c"}) {
        TerminalHarness harness;

        harness.feed(osc("8;;http://x") + reset + "a");

        EXPECT_EQ(harness.cell(0, 0).payload, 0);
    }
}

TEST(Hyperlink, APayloadBeyondTheLimitIsNoLink)
{
    TerminalHarness harness;

    harness.feed(osc("8;;http://" + std::string(100'000, 'x')) + "a");

    EXPECT_EQ(harness.cell(0, 0).payload, 0);
}

TEST(ImplicitLink, TextThatLooksLikeALinkIsOne)
{
    TerminalHarness harness(40, 4);

    harness.feed("see https://a.example/x, or ./run.sh");

    const auto link = linkAt(harness, 10, 0);
    ASSERT_TRUE(link);
    EXPECT_EQ(link->text, "https://a.example/x");
    EXPECT_FALSE(link->isExplicit);
    EXPECT_EQ(link->range, (LinkMatch::RowRange{0, 4, 23}));
    EXPECT_EQ(textAt(harness, 23, 0), "none");
    EXPECT_EQ(textAt(harness, 0, 0), "none");
    EXPECT_EQ(textAt(harness, 30, 0), "./run.sh");
}

TEST(ImplicitLink, ItIsOnlyLookedForWhenItIsAskedFor)
{
    TerminalHarness harness(40, 4);
    harness.feed("https://a.example/x");

    EXPECT_FALSE(linkAt(harness, 3, 0, LinkLookupMode::ExplicitOnly));
    EXPECT_TRUE(linkAt(harness, 3, 0, Both));
}

TEST(ImplicitLink, AnExplicitLinkWins)
{
    TerminalHarness harness(40, 4);

    harness.feed(osc("8;;http://real") + "https://shown" + osc("8;;"));

    EXPECT_EQ(textAt(harness, 3, 0), "http://real");
    EXPECT_TRUE(linkAt(harness, 3, 0, LinkLookupMode::ExplicitOnly));
}

TEST(ImplicitLink, ItIsFoundAcrossWrappedRows)
{
    TerminalHarness harness(10, 4);

    harness.feed("see https://example.org/path ok");

    for (int row = 0; row < 3; ++row) {
        const auto link = linkAt(harness, 5, row);
        ASSERT_TRUE(link) << row;
        EXPECT_EQ(link->text, "https://example.org/path");
        EXPECT_EQ(link->rowRanges, (Ranges{{0, 4, 10}, {1, 0, 10}, {2, 0, 8}}));
        EXPECT_EQ(link->range.row, row);
    }
    EXPECT_EQ(textAt(harness, 9, 2), "none");
}

TEST(ImplicitLink, WideAndCombinedCharactersKeepTheirColumns)
{
    TerminalHarness harness(40, 4);

    harness.feed("漢e\xcc\x81 https://a.b/漢x y");

    const auto link = linkAt(harness, 17, 0);
    ASSERT_TRUE(link);
    EXPECT_EQ(link->text, "https://a.b/漢x");
    EXPECT_EQ(link->range, (LinkMatch::RowRange{0, 4, 19}));
    EXPECT_EQ(linkAt(harness, 16, 0)->range, link->range);
    EXPECT_EQ(textAt(harness, 19, 0), "none");
}

TEST(ImplicitLink, TheGapBeforeAWideCharacterThatWrappedIsNoPartOfOne)
{
    TerminalHarness harness(4, 4);

    harness.feed("/a\"xyyy漢");

    EXPECT_EQ(textAt(harness, 0, 0), "/a");
    EXPECT_EQ(textAt(harness, 3, 1), "none");
}

TEST(ImplicitLink, OfAVeryLongLineThePartAroundTheCellIsSearched)
{
    TerminalHarness harness(80, 4, 500);
    std::string filling;
    for (int i = 0; i < 8000; ++i)
        filling += "( ";

    harness.terminal.feed(filling + "https://a.b/c " + filling);

    const auto link = linkAt(harness, 5, 16000 / 80);
    ASSERT_TRUE(link);
    EXPECT_EQ(link->text, "https://a.b/c");
}

TEST(ImplicitLink, OutsideTheBufferThereIsNone)
{
    TerminalHarness harness;

    for (const auto& [col, row] :
         {std::pair(-1, 0), std::pair(0, -1), std::pair(20, 0), std::pair(0, 1000)})
        EXPECT_FALSE(linkAt(harness, col, row));
}

/// The table is full by size, so that room can be made again.
TEST(HyperlinkTable, AnOpenLinkThatFoundTheTableFullIsNotTriedAgain)
{
    TerminalHarness harness;
    const std::string payload = ";http://" + std::string(2000, 'x');
    std::vector<std::uint16_t> codes;
    for (std::size_t size = 1U << 20U; size >= 1024; size /= 2)
        while (const auto code = TinyAtom::lookup(std::string(size, 'x')))
            codes.push_back(*code);

    harness.feed(osc("8;" + payload) + "a");
    TinyAtom::release(codes);
    harness.feed("b" + osc("8;" + payload) + "c");

    EXPECT_EQ(harness.row(0), "abc");
    EXPECT_EQ(harness.cell(0, 0).payload, 0);
    EXPECT_EQ(harness.cell(1, 0).payload, 0);
    EXPECT_NE(harness.cell(2, 0).payload, 0);
}

/// Last, since it leaves the process without codes.
TEST(HyperlinkTable, AFullTableLeavesLaterTextWithoutALink)
{
    TerminalHarness harness;
    while (const auto code = TinyAtom::lookup("x")) {
        const std::uint16_t codes[] = {*code};
        TinyAtom::release(codes);
    }

    harness.feed(osc("8;;http://x") + "ab" + osc("8;;") + "c");

    EXPECT_EQ(harness.row(0), "abc");
    EXPECT_EQ(harness.cell(0, 0).payload, 0);
    EXPECT_EQ(harness.cell(1, 0).payload, 0);
}
