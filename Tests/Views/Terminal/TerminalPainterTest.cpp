#include "Tests/Support/TerminalPicture.h"

#include <gtest/gtest.h>

#include <string>

using namespace Bralto;

namespace {

constexpr QRgb Red = 0xFFFF0000U;
constexpr QRgb Blue = 0xFF0000FFU;
constexpr QRgb Green = 0xFF00FF00U;

/// How many pixels of two pictures differ.
int differences(const QImage& first, const QImage& second)
{
    EXPECT_EQ(first.size(), second.size());
    int result = 0;
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x)
            result += first.pixel(x, y) != second.pixel(x, y);
    }
    return result;
}

/// The rows of a cell in which a colour occurs.
std::vector<int> rowsWith(const QImage& cell, QRgb color)
{
    std::vector<int> rows;
    for (int y = 0; y < cell.height(); ++y) {
        for (int x = 0; x < cell.width(); ++x) {
            if (cell.pixel(x, y) == color) {
                rows.push_back(y);
                break;
            }
        }
    }
    return rows;
}

} // namespace

TEST(TerminalPainter, AnEmptyScreenIsNothingButGround)
{
    TerminalPicture picture(10, 3);

    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 10; ++col)
            EXPECT_EQ(picture.count(col, row, TerminalPicture::Ground), picture.pixelsOfCell());
    }
}

TEST(TerminalPainter, EveryLetterStaysInItsCell)
{
    TerminalPicture picture(3, 1);
    for (char letter = '!'; letter <= '~'; ++letter) {
        SCOPED_TRACE(letter);
        picture.feed(std::string("\033[2J\033[1;2H\033[1;3m") + letter);

        EXPECT_LT(picture.count(1, 0, TerminalPicture::Ground), picture.pixelsOfCell());
        EXPECT_EQ(picture.count(0, 0, TerminalPicture::Ground), picture.pixelsOfCell());
        EXPECT_EQ(picture.count(2, 0, TerminalPicture::Ground), picture.pixelsOfCell());
    }
}

TEST(TerminalPainter, ALetterLooksTheSameInEveryColumn)
{
    TerminalPicture picture(20, 1);
    picture.feed("ggggg     ggggg");

    const QImage first = picture.cell(0, 0);
    for (const int col : {1, 4, 10, 14})
        EXPECT_EQ(differences(first, picture.cell(col, 0)), 0) << col;
}

TEST(TerminalPainter, ColoursOfTextAndGroundAreThoseOfTheProgram)
{
    TerminalPicture picture;
    picture.feed("\033[38;2;255;0;0;48;2;0;0;255m\u2588 x\033[m");

    EXPECT_EQ(picture.count(0, 0, Red), picture.pixelsOfCell());
    EXPECT_EQ(picture.count(1, 0, Blue), picture.pixelsOfCell());
    EXPECT_EQ(picture.corner(2, 0), Blue);
    EXPECT_EQ(picture.corner(3, 0), TerminalPicture::Ground);
}

TEST(TerminalPainter, ErasedCellsKeepTheGroundTheyWereErasedWith)
{
    TerminalPicture picture;
    picture.feed("\033[48;2;0;0;255m\033[K");

    EXPECT_EQ(picture.count(19, 0, Blue), picture.pixelsOfCell());
    EXPECT_EQ(picture.corner(0, 1), TerminalPicture::Ground);
}

TEST(TerminalPainter, BoldAndItalicAreOtherLetters)
{
    TerminalPicture picture;
    picture.feed("a\033[1ma\033[0;3ma\033[1ma");

    EXPECT_GT(differences(picture.cell(0, 0), picture.cell(1, 0)), 0);
    EXPECT_GT(differences(picture.cell(0, 0), picture.cell(2, 0)), 0);
    EXPECT_GT(differences(picture.cell(1, 0), picture.cell(3, 0)), 0);
}

TEST(TerminalPainter, InvisibleTextShowsNothingNotEvenAPicture)
{
    TerminalPicture picture;
    picture.feed("\033[8;4mx\U0001F600");

    EXPECT_EQ(picture.count(0, 0, TerminalPicture::Ground), picture.pixelsOfCell());
    EXPECT_EQ(picture.count(1, 0, TerminalPicture::Ground), picture.pixelsOfCell());
}

TEST(TerminalPainter, AllKindsOfUnderlineDifferAndTakeTheirColour)
{
    TerminalPicture picture(20, 1, {.size = 24, .lineHeight = 36});
    picture.feed("\033[58;2;255;0;0m\033[4:1m \033[4:2m \033[4:3m \033[4:4m \033[4:5m \033[24m ");

    for (int col = 0; col < 5; ++col) {
        EXPECT_GT(picture.count(col, 0, Red), 0) << col;
        for (int other = 0; other < col; ++other)
            EXPECT_GT(differences(picture.cell(col, 0), picture.cell(other, 0)), 0);
    }
    EXPECT_EQ(picture.count(5, 0, Red), 0);
}

TEST(TerminalPainter, ASingleUnderlineGoesOnFromCellToCell)
{
    TerminalPicture picture;
    picture.feed("\033[4;58;2;255;0;0m   ");
    const int width = picture.painter.fonts().cell().width();

    for (int col = 0; col < 3; ++col)
        EXPECT_EQ(picture.count(col, 0, Red), width * picture.painter.fonts().line());
    EXPECT_EQ(rowsWith(picture.cell(0, 0), Red), rowsWith(picture.cell(1, 0), Red));
}

TEST(TerminalPainter, ACurlyUnderlineBeginsWhereTheOneBeforeEnds)
{
    TerminalPicture picture(4, 1, {.size = 48, .lineHeight = 72});
    picture.feed("\033[4:3;38;2;255;0;0m    ");
    const QImage cells = picture.cell(0, 0, 2);
    const int seam = picture.painter.fonts().cell().width();
    const auto middle = [&](int x) {
        int sum = 0;
        int count = 0;
        for (int y = 0; y < cells.height(); ++y) {
            if (cells.pixel(x, y) == Red) {
                sum += y;
                ++count;
            }
        }
        return count > 0 ? double(sum) / count : -1.0;
    };

    EXPECT_GT(middle(seam), 0);
    EXPECT_NEAR(middle(seam - 1), middle(seam), 2.5);
}

TEST(TerminalPainter, CrossedOutTextHasALineThroughItsMiddle)
{
    TerminalPicture picture;
    picture.feed("\033[9;38;2;255;0;0m ");

    const auto rows = rowsWith(picture.cell(0, 0), Red);
    ASSERT_FALSE(rows.empty());
    EXPECT_GT(rows.front(), picture.painter.fonts().cell().height() / 4);
    EXPECT_LT(rows.back(), picture.painter.fonts().baseline());
}

TEST(TerminalPainter, WideCharactersTakeTwoCells)
{
    TerminalPicture picture;
    picture.feed("\U0001F600x");

    EXPECT_LT(picture.count(0, 0, TerminalPicture::Ground), picture.pixelsOfCell());
    EXPECT_LT(picture.count(1, 0, TerminalPicture::Ground), picture.pixelsOfCell());
    EXPECT_LT(picture.count(2, 0, TerminalPicture::Ground), picture.pixelsOfCell());
    EXPECT_EQ(picture.count(3, 0, TerminalPicture::Ground), picture.pixelsOfCell());
}

TEST(TerminalPainter, EmojiHaveColoursOfTheirOwn)
{
    TerminalPicture picture;
    picture.feed("\U0001F600\u2764\uFE0F");

    for (const int col : {0, 2}) {
        const QImage cells = picture.cell(col, 0, 2);
        int coloured = 0;
        for (int y = 0; y < cells.height(); ++y) {
            for (int x = 0; x < cells.width(); ++x)
                coloured += std::abs(qRed(cells.pixel(x, y)) - qBlue(cells.pixel(x, y))) > 40;
        }
        EXPECT_GT(coloured, 20) << col;
    }
}

TEST(TerminalPainter, MarksStandOnTheirLetter)
{
    TerminalPicture picture;
    picture.feed("ee\u0301");

    EXPECT_GT(differences(picture.cell(0, 0), picture.cell(1, 0)), 0);
    EXPECT_EQ(picture.count(2, 0, TerminalPicture::Ground), picture.pixelsOfCell());
}

TEST(TerminalPainter, RowsOfDoubleWidthAndHeightShowTheirHalves)
{
    TerminalPicture picture(10, 3);
    picture.feed("\033#6\u2588\r\n\033#3\u2580\r\n\033#4\u2580");

    EXPECT_EQ(picture.count(0, 0, TerminalPicture::Text), picture.pixelsOfCell());
    EXPECT_EQ(picture.count(1, 0, TerminalPicture::Text), picture.pixelsOfCell());
    EXPECT_EQ(picture.count(2, 0, TerminalPicture::Text), 0);
    // An upper half block at twice the height fills the upper row and leaves the lower one empty.
    EXPECT_EQ(picture.count(1, 1, TerminalPicture::Text), picture.pixelsOfCell());
    EXPECT_EQ(picture.count(1, 2, TerminalPicture::Text), 0);
}

TEST(TerminalPainter, LettersOfDoubleHeightAreThoseOfTwoRowsTogether)
{
    TerminalPicture picture(10, 2);
    picture.feed("\033#3g\r\n\033#4g");

    EXPECT_LT(picture.count(0, 0, TerminalPicture::Ground), picture.pixelsOfCell());
    EXPECT_LT(picture.count(0, 1, TerminalPicture::Ground), picture.pixelsOfCell());
    EXPECT_GT(differences(picture.cell(0, 0, 2), picture.cell(0, 1, 2)), 0);
}

TEST(TerminalPainter, ABlockCursorSwapsItsColoursAndIsAsWideAsItsCharacter)
{
    TerminalPicture picture;
    picture.painter.setInks({.cursor = Green, .onCursor = Blue, .outline = Red});
    picture.feed("\U0001F600");
    picture.source.cursorRow = 0;
    picture.source.cursor = CursorLook{0, 2, CursorLook::Shape::Block};

    EXPECT_EQ(picture.corner(0, 0), Green);
    EXPECT_GT(picture.count(1, 0, Green), 0);
    EXPECT_EQ(picture.corner(2, 0), TerminalPicture::Ground);
}

TEST(TerminalPainter, EachShapeOfTheCursorLeavesTheOthersPixelsAlone)
{
    TerminalPicture picture;
    picture.painter.setInks({.cursor = Green, .onCursor = Blue, .outline = Red});
    const QSize cell = picture.painter.fonts().cell();
    const int line = picture.painter.fonts().line();
    picture.source.cursorRow = 0;

    picture.source.cursor = CursorLook{3, 1, CursorLook::Shape::Underline};
    EXPECT_EQ(picture.count(3, 0, Green), cell.width() * 2 * line);
    picture.source.cursor = CursorLook{3, 1, CursorLook::Shape::Bar};
    EXPECT_EQ(picture.count(3, 0, Green), cell.height() * 2 * line);
    picture.source.cursor = CursorLook{3, 1, CursorLook::Shape::Outline};
    EXPECT_EQ(picture.count(3, 0, Red), 2 * line * (cell.width() + cell.height() - 2 * line));
    EXPECT_EQ(picture.cell(3, 0).pixel(cell.width() / 2, cell.height() / 2),
              TerminalPicture::Ground);
    picture.source.cursor = std::nullopt;
    EXPECT_EQ(picture.count(3, 0, TerminalPicture::Ground), picture.pixelsOfCell());
}

TEST(TerminalPainter, ASelectionTintsTheGroundOfWhatIsSelected)
{
    TerminalPicture picture;
    picture.painter.setInks({.selection = 0x800000FFU});
    picture.feed("abc");
    Kovalt::SelectionService selection(picture.terminal.buffer(), picture.terminal.graphemes());
    picture.source.selection = &selection;
    selection.start(Kovalt::SelectionMode::Character, {{1, 0}, Kovalt::CellSide::Left});
    selection.extend({{1, 0}, Kovalt::CellSide::Right});

    EXPECT_EQ(picture.corner(0, 0), TerminalPicture::Ground);
    EXPECT_EQ(picture.corner(1, 0), Pixels::over(0x800000FFU, TerminalPicture::Ground));
    EXPECT_EQ(picture.corner(2, 0), TerminalPicture::Ground);
}

TEST(TerminalPainter, HitsOfASearchAreMarkedAndTheCurrentOneStandsOut)
{
    TerminalPicture picture;
    picture.painter.setInks({.hit = 0x80FF0000U, .currentHit = Green, .onCurrentHit = Blue});
    picture.feed("ab ab");
    Kovalt::SearchService search(picture.terminal.buffer(), picture.terminal.graphemes());
    search.setQuery({.text = "ab"});
    while (search.step(100)) {
    }
    (void)search.next();
    picture.source.search = &search;

    EXPECT_EQ(picture.corner(0, 0), Green);
    EXPECT_EQ(picture.corner(2, 0), TerminalPicture::Ground);
    EXPECT_EQ(picture.corner(3, 0), Pixels::over(0x80FF0000U, TerminalPicture::Ground));
}

TEST(TerminalPainter, TheLinkUnderThePointerIsUnderlinedInAllItsRows)
{
    TerminalPicture picture(4, 3);
    picture.feed("\033]8;;https://a.test\033\\abcdef\033]8;;\033\\");
    const auto link = picture.terminal.link({Kovalt::LinkLookupLocation::Space::Screen, {1, 0}},
                                            Kovalt::LinkLookupMode::ExplicitOnly);
    ASSERT_TRUE(link);
    const QImage before = picture.image();
    picture.source.link = &*link;
    const QImage after = picture.image();

    EXPECT_EQ(picture.changed, (std::vector<int>{0, 1}));
    EXPECT_GT(differences(before, after), 0);
}

TEST(TerminalPainter, UnfinishedTextStandsAtTheCursorUnderlined)
{
    TerminalPicture picture;
    picture.feed("abc");
    picture.source.cursorRow = 0;
    picture.source.cursor = CursorLook{3, 1, CursorLook::Shape::Block};
    picture.source.preedit = PreeditLook{3, QStringLiteral("ni"), 2};
    picture.painter.setInks({.cursor = Green});

    EXPECT_GT(picture.count(3, 0, TerminalPicture::Text), 0);
    EXPECT_GT(picture.count(4, 0, TerminalPicture::Text), 0);
    EXPECT_GT(picture.count(5, 0, Green), 0);
}

TEST(TerminalPainter, UnfinishedTextThatReachesTheEdgeBeginsEarlier)
{
    TerminalPicture picture(6, 1);
    picture.source.cursorRow = 0;
    picture.source.cursor = CursorLook{5, 1, CursorLook::Shape::Block};
    picture.source.preedit = PreeditLook{5, QStringLiteral("abc"), 3};
    picture.painter.setInks({.cursor = Green});

    EXPECT_GT(picture.count(2, 0, TerminalPicture::Text), 0);
    EXPECT_GT(picture.count(5, 0, Green), 0);
}

TEST(TerminalPainter, AReversedScreenIsReversedEverywhere)
{
    TerminalPicture picture;
    picture.feed("\033[?5h");

    EXPECT_EQ(picture.count(7, 2, TerminalPicture::Text), picture.pixelsOfCell());
}

TEST(TerminalPainter, ALetterThatNoFontHasIsABoxOrBlankNotACrash)
{
    TerminalPicture picture;
    picture.feed("\U000F0000\U0010FFFDx\uFFFD");

    EXPECT_LT(picture.count(2, 0, TerminalPicture::Ground), picture.pixelsOfCell());
}
