#include "Kovalt/BufferLine.h"
#include "Kovalt/GraphemeTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace Kovalt {

namespace {

CharData letter(char code)
{
    CharData cell;
    cell.code = code;
    return cell;
}

CharData withBackground(std::uint8_t color)
{
    Attribute attribute;
    attribute.bg = CellColor::ansi256(color);
    return CharData::null(attribute);
}

/// '.' is an empty cell; an upper-case letter followed by '_' is a wide character.
BufferLine lineOf(std::string_view text)
{
    BufferLine line(int(text.size()));
    CharData* const cells = line.writable(line.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        cells[i].code = text[i] == '.' || text[i] == '_' ? 0 : text[i];
        if (text[i] == '_') {
            cells[i].width = 0;
            cells[i - 1].width = 2;
        }
    }
    return line;
}

std::string shown(const BufferLine& line)
{
    std::string text;
    for (int i = 0; i < line.size(); ++i) {
        const CharData cell = line[i];
        text += cell.width == 0 ? '_' : cell.code == 0 ? '.' : char(cell.code);
    }
    return text;
}

class Picture : public TerminalImage {
public:
    int col() const override { return 0; }
    int columns() const override { return 1; }
    int rows() const override { return 1; }
};

} // namespace

TEST(BufferLine, ANewLineIsEmptyAndStoresNoCell)
{
    const BufferLine line(80);

    EXPECT_EQ(line.size(), 80);
    EXPECT_TRUE(line.live().empty());
    EXPECT_LE(line.memory(), 48u);
    EXPECT_EQ(line[79], CharData{});
    EXPECT_FALSE(line.hasAnyContent());
    EXPECT_EQ(line.getTrimmedLength(), 0);
}

TEST(BufferLine, AFullLineOf80ColumnsStaysWithinItsMemory)
{
    BufferLine line(80);
    for (int i = 0; i < 80; ++i)
        line.set(i, letter('x'));

    // Two blocks from the allocator and the ring's pointer come on top.
    EXPECT_LE(line.memory() + 8 + 2 * 16, 2000u);
}

TEST(BufferLine, AnIndexOutOfRangeIsToldAndTheLastCellUsed)
{
    BufferLine line = lineOf("abc");

    testing::internal::CaptureStderr();
    EXPECT_EQ(line[3].code, 'c');
    EXPECT_EQ(line[-1].code, 'c');
    line.set(99, letter('z'));
    const std::string told = testing::internal::GetCapturedStderr();

    EXPECT_EQ(shown(line), "abz");
    EXPECT_TRUE(told.starts_with("BufferLine: You passed an index out of range, adjusting to "
                                 "prevent crash, but you should debug\n"));
}

TEST(BufferLine, ALineWithoutColumnsHoldsNothingAndTakesNothing)
{
    BufferLine line(0);

    testing::internal::CaptureStderr();
    line.set(0, letter('x'));
    EXPECT_EQ(line[0], CharData{});
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(line.getTrimmedLength(), 0);
}

TEST(BufferLine, EveryChangeRaisesTheGeneration)
{
    BufferLine line = lineOf("abcdef");
    const BufferLine other = lineOf("xyz");
    std::uint64_t last = line.generation();
    const auto rose = [&] { return std::exchange(last, line.generation()) < line.generation(); };

    line.set(0, letter('x'));
    EXPECT_TRUE(rose());
    line.fill(CharData{}, 2, 1);
    EXPECT_TRUE(rose());
    line.insertCells(0, 1, 5, CharData{});
    EXPECT_TRUE(rose());
    line.deleteCells(0, 1, 5, CharData{});
    EXPECT_TRUE(rose());
    line.copyFrom(other, 0, 0, 3);
    EXPECT_TRUE(rose());
    line.copyFrom(other);
    EXPECT_TRUE(rose());
    line.setWrapped(true);
    EXPECT_TRUE(rose());
    line.setRenderMode(RenderLineMode::DoubleWidth);
    EXPECT_TRUE(rose());
    line.setSemanticMark({});
    EXPECT_TRUE(rose());
    line.attach(std::make_shared<Picture>());
    EXPECT_TRUE(rose());
    line.resize(4);
    EXPECT_TRUE(rose());
    (void)line.overwrite(0, 1);
    EXPECT_TRUE(rose());
    line.setWrapped(true);
    EXPECT_FALSE(rose());
}

TEST(BufferLine, ClearingMakesAnotherRowOfIt)
{
    BufferLine line = lineOf("abc");
    line.attach(std::make_shared<Picture>());
    const auto generation = line.generation();
    Attribute attribute;
    attribute.bg = CellColor::ansi256(4);
    attribute.style = CharacterStyle::Bold;

    line.clear(attribute);

    EXPECT_GE(line.generation(), generation + 2);
    EXPECT_EQ(line.recycleGeneration(), 1u);
    EXPECT_EQ(line[2], CharData::null(attribute));
    EXPECT_FALSE(line.hasImages());
}

TEST(BufferLine, ErasingToTheEndKeepsOnlyTheCellsBefore)
{
    BufferLine line = lineOf("abcdef");

    line.fill(withBackground(1), 2, 4);
    line.fill(withBackground(2), 5, 1);

    EXPECT_EQ(shown(line), "ab....");
    EXPECT_EQ(line[4], withBackground(1));
    EXPECT_EQ(line[5], withBackground(2));
    EXPECT_TRUE(line.hasContent(5));
    EXPECT_TRUE(line.hasAnyContent());
    EXPECT_EQ(line.getTrimmedLength(), 2);
}

TEST(BufferLine, WritingBehindTheStoredCellsKeepsTheirBackgroundBetween)
{
    BufferLine line(6, withBackground(3));

    line.set(4, letter('x'));

    EXPECT_EQ(line[3], withBackground(3));
    EXPECT_EQ(line[4], letter('x'));
    EXPECT_EQ(line[5], withBackground(3));
}

TEST(BufferLine, FillingClampsItsRangeToTheLine)
{
    BufferLine line = lineOf("abcd");

    line.fill(letter('x'), -3, 4);
    EXPECT_EQ(shown(line), "xbcd");
    line.fill(letter('y'), 3, 2'000'000'000);
    EXPECT_EQ(shown(line), "xbcy");
    line.fill(letter('z'), 9, 1);
    line.replaceCells(3, 1, letter('z'));
    EXPECT_EQ(shown(line), "xbcy");
    line.replaceCells(1, 3, letter('z'));
    EXPECT_EQ(shown(line), "xzzy");
}

TEST(BufferLine, FillingWithAWideCharacterWritesWholeOnes)
{
    BufferLine line = lineOf("abcdef");
    CharData wide = letter('W');
    wide.width = 2;

    line.fill(wide, 0, 5);

    EXPECT_EQ(shown(line), "W_W_.f");
}

TEST(BufferLine, CoveringOneHalfOfAWideCharacterBlanksTheOther)
{
    struct Row {
        const char* name;
        void (*change)(BufferLine&);
        const char* expected;
    };
    for (const Row& row : {
             Row{"set left", [](BufferLine& l) { l.set(2, letter('x')); }, "abx.de"},
             Row{"set right", [](BufferLine& l) { l.set(3, letter('x')); }, "ab.xde"},
             Row{"fill to left", [](BufferLine& l) { l.fill({}, 0, 3); }, "....de"},
             Row{"fill from right", [](BufferLine& l) { l.fill({}, 3, 3); }, "ab...."},
             Row{"insert between", [](BufferLine& l) { l.insertCells(3, 1, 5, letter('x')); },
                 "ab.x.d"},
             Row{"push over the edge", [](BufferLine& l) { l.insertCells(0, 3, 5, letter('x')); },
                 "xxxab."},
             Row{"push over the margin", [](BufferLine& l) { l.insertCells(0, 1, 3, letter('x')); },
                 "xab.de"},
             Row{"margin inside", [](BufferLine& l) { l.insertCells(0, 1, 2, letter('x')); },
                 "xab.de"},
             Row{"delete left", [](BufferLine& l) { l.deleteCells(2, 1, 5, {}); }, "ab.de."},
             Row{"delete right", [](BufferLine& l) { l.deleteCells(3, 1, 5, {}); }, "ab.de."},
             Row{"delete with margin inside",
                 [](BufferLine& l) { l.deleteCells(0, 1, 2, letter('x')); }, "b.x.de"},
             Row{"copy over left", [](BufferLine& l) { l.copyFrom(lineOf("xyz"), 0, 0, 3); },
                 "xyz.de"},
             Row{"cut", [](BufferLine& l) { l.resize(3); }, "ab."},
         }) {
        SCOPED_TRACE(row.name);
        BufferLine line = lineOf("abW_de");
        row.change(line);
        EXPECT_EQ(shown(line), row.expected);
    }
}

TEST(BufferLine, WideCharactersMoveWhole)
{
    BufferLine line = lineOf("abW_de");

    line.insertCells(0, 2, 5, letter('x'));
    EXPECT_EQ(shown(line), "xxabW_");
    line.deleteCells(0, 3, 5, letter('y'));
    EXPECT_EQ(shown(line), "bW_yyy");
}

TEST(BufferLine, InsertedAndDeletedCellsStayWithinTheRightMargin)
{
    BufferLine line = lineOf("abcdef");

    line.insertCells(1, 2, 3, letter('x'));
    EXPECT_EQ(shown(line), "axxbef");
    line.deleteCells(1, 2, 3, letter('y'));
    EXPECT_EQ(shown(line), "abyyef");
    line.insertCells(1, 99, 99, letter('z'));
    EXPECT_EQ(shown(line), "azzzzz");
    line.deleteCells(4, 99, 4, letter('y'));
    EXPECT_EQ(shown(line), "azzzyz");
    line.insertCells(5, 1, 4, letter('w'));
    line.deleteCells(0, 0, 5, letter('w'));
    EXPECT_EQ(shown(line), "azzzyz");
}

TEST(BufferLine, InsertingAndDeletingInAnEmptyEndKeepsItEmpty)
{
    BufferLine line(10);
    line.set(0, letter('a'));
    line.set(1, letter('b'));

    line.insertCells(1, 3, 9, CharData{});
    EXPECT_EQ(shown(line), "a...b.....");
    line.deleteCells(1, 3, 9, CharData{});
    EXPECT_EQ(shown(line), "ab........");
    line.deleteCells(5, 2, 9, CharData{});
    line.insertCells(5, 2, 9, CharData{});
    EXPECT_EQ(shown(line), "ab........");
    line.deleteCells(1, 9, 9, withBackground(1));
    EXPECT_EQ(line[9], withBackground(1));
    EXPECT_EQ(line[1], withBackground(1));
}

TEST(BufferLine, CopyingWithinOneLineMayOverlap)
{
    BufferLine line = lineOf("abcdef");

    line.copyFrom(line, 0, 2, 4);
    EXPECT_EQ(shown(line), "ababcd");
    line.copyFrom(line, 1, 0, 5);
    EXPECT_EQ(shown(line), "babcdd");

    BufferLine wide = lineOf(".abcW_");
    wide.copyFrom(wide, 1, 0, 5);
    EXPECT_EQ(shown(wide), "abcW_.");
    wide.copyFrom(lineOf("aW_bcd"));
    wide.copyFrom(wide, 1, 0, 4);
    EXPECT_EQ(shown(wide), "W_bccd");
}

TEST(BufferLine, OneHalfOfAWideCharacterIsCopiedAsABlank)
{
    BufferLine line = lineOf("......");

    line.copyFrom(lineOf("W_abX_"), 1, 0, 4);

    EXPECT_EQ(shown(line), ".ab...");
}

TEST(BufferLine, CopyingClampsToBothLines)
{
    BufferLine line = lineOf("abcd");

    line.copyFrom(lineOf("xyz"), 1, 3, 99);
    EXPECT_EQ(shown(line), "abcy");
    line.copyFrom(lineOf("xyz"), 5, 0, 1);
    line.copyFrom(lineOf("xyz"), -1, 0, 1);
    line.copyFrom(lineOf("xyz"), 0, 4, 1);
    EXPECT_EQ(shown(line), "abcy");
}

TEST(BufferLine, CopyingALineTakesSettingsAndMarksAndKeepsTheWidth)
{
    BufferLine source = lineOf("abcdef");
    source.setWrapped(true);
    source.setRenderMode(RenderLineMode::DoubledTop);
    source.setBidiState({BidiPresentationState::SupportMode::Explicit, false,
                         BidiPresentationState::Direction::RightToLeft, true});
    source.setSemanticMark({SemanticMark::Kind::Input, SemanticPromptKind::Initial, 5, 7});
    BufferLine line = lineOf("xyz");

    line.copyFrom(source);

    EXPECT_EQ(shown(line), "abc");
    EXPECT_TRUE(line.isWrapped());
    EXPECT_EQ(line.renderMode(), RenderLineMode::DoubledTop);
    EXPECT_EQ(line.bidiState(), source.bidiState());
    ASSERT_EQ(line.semanticMarks().size(), 1u);
    EXPECT_EQ(line.semanticMarks()[0].column, 2);
    const BufferLine copy(source);
    EXPECT_EQ(shown(copy), "abcdef");
    EXPECT_EQ(copy.semanticMarks()[0].column, 5);
}

TEST(BufferLine, NewColumnsAreFilledAndCutOnesAreGone)
{
    BufferLine line = lineOf("abc");

    line.resize(5);
    EXPECT_EQ(shown(line), "abc..");
    line.resize(2);
    line.resize(4, withBackground(2));

    EXPECT_EQ(shown(line), "ab..");
    EXPECT_EQ(line[3], withBackground(2));
    EXPECT_FALSE(line.hasContent(2) && line[2] == CharData{});
    line.resize(6, letter('x'));
    EXPECT_EQ(shown(line), "ab..xx");
}

TEST(BufferLine, TheTrimmedLengthCountsBothColumnsOfAWideCharacter)
{
    EXPECT_EQ(lineOf("ab..").getTrimmedLength(), 2);
    EXPECT_EQ(lineOf("abW_").getTrimmedLength(), 4);
    EXPECT_EQ(lineOf("abW_..").getTrimmedLength(), 4);
    EXPECT_EQ(lineOf("....").getTrimmedLength(), 0);
}

TEST(BufferLine, TextHasBlanksForEmptyCellsAndNoneForRightHalves)
{
    const GraphemeTable graphemes;
    const BufferLine line = lineOf("a.W_b..");

    EXPECT_EQ(line.translateToString(graphemes), "a Wb  ");
    EXPECT_EQ(line.translateToString(graphemes, {0, -1, true, true}), "a Wb");
    EXPECT_EQ(line.translateToString(graphemes, {0, -1, true, false}), "a W b");
    EXPECT_EQ(line.translateToString(graphemes, {2, 5, false, true}), "Wb");
    EXPECT_EQ(line.translateToString(graphemes, {-4, 99, false, true}), "a Wb  ");
    EXPECT_EQ(line.translateToString(graphemes, {6, 2, false, true}), "");
}

TEST(BufferLine, MarksMoveWithTheirCells)
{
    BufferLine line = lineOf("abcdef");
    const auto mark = [](int column) {
        return SemanticMark{SemanticMark::Kind::Prompt, SemanticPromptKind::Initial, column, 1};
    };
    line.setSemanticMark(mark(1));
    line.setSemanticMark(mark(4));
    line.setSemanticMark(mark(4));

    line.insertCells(0, 1, 4, CharData{});
    ASSERT_EQ(line.semanticMarks().size(), 1u);
    EXPECT_EQ(line.semanticMarks()[0].column, 2);
    line.deleteCells(1, 1, 5, CharData{});
    EXPECT_EQ(line.semanticMarks()[0].column, 1);
    line.marksShift(0, 4, 5);
    line.marksClampTo(3);
    EXPECT_EQ(line.semanticMarks()[0].column, 2);
    line.deleteCells(2, 1, 5, CharData{});
    EXPECT_TRUE(line.semanticMarks().empty());
}

TEST(BufferLine, DestroyingTheSemanticStateFreesIt)
{
    BufferLine line(10);
    const auto before = line.memory();
    line.setSemanticMark({});
    line.setSemanticHardContinuationGroup(4);
    EXPECT_EQ(line.semanticHardContinuationGroup(), 4u);

    line.destroySemanticState();

    EXPECT_TRUE(line.semanticMarks().empty());
    EXPECT_EQ(line.semanticHardContinuationGroup(), std::nullopt);
    EXPECT_EQ(line.memory(), before);
}

} // namespace Kovalt
