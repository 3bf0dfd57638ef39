#include "Tests/Support/TerminalPicture.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using namespace Bralto;

namespace {

using Rows = std::vector<int>;

/// The same screen, painted at once.
QImage fresh(TerminalPicture& picture)
{
    const QImage shown = picture.image(); // With the palette of now.
    TerminalRows rows;
    rows.setSize(picture.terminal.cols(), picture.terminal.rows(), picture.painter.fonts().cell());
    (void)rows.refresh(picture.painter, picture.source);
    QImage result(shown.size(), QImage::Format_RGB32);
    QPainter painter(&result);
    rows.draw(painter, {});
    return result;
}

} // namespace

TEST(TerminalRows, OnlyRowsThatChangedArePainted)
{
    TerminalPicture picture(20, 6);
    picture.feed("one\r\ntwo\r\nthree");
    (void)picture.image();

    picture.feed("\033[2;1HTWO");
    (void)picture.image();

    EXPECT_EQ(picture.changed, (Rows{1}));
    EXPECT_EQ(picture.painted.paintedRows(), 1);
}

TEST(TerminalRows, ScrollingPaintsOnlyWhatComesIn)
{
    TerminalPicture picture(20, 6);
    for (int i = 0; i < 20; ++i)
        picture.feed("row " + std::to_string(i) + "\r\n");
    (void)picture.image();

    picture.feed("new\r\n");
    const QImage shown = picture.image();

    // Two rows differ: the one that was written and the blank one below it.
    EXPECT_EQ(picture.painted.paintedRows(), 2);
    EXPECT_EQ(picture.changed.size(), 6U);
    EXPECT_EQ(shown, fresh(picture));
}

TEST(TerminalRows, LookingBackPaintsOnlyWhatWasNotInView)
{
    TerminalPicture picture(20, 6);
    for (int i = 0; i < 40; ++i)
        picture.feed("row " + std::to_string(i) + "\r\n");
    (void)picture.image();

    picture.terminal.buffer().yDisp -= 3;
    const QImage shown = picture.image();

    EXPECT_EQ(picture.painted.paintedRows(), 3);
    EXPECT_EQ(shown, fresh(picture));
}

TEST(TerminalRows, NothingNewPaintsNothing)
{
    TerminalPicture picture(20, 6);
    picture.feed("text");
    (void)picture.image();

    (void)picture.image();

    EXPECT_EQ(picture.painted.paintedRows(), 0);
    EXPECT_TRUE(picture.changed.empty());
}

TEST(TerminalRows, ACursorThatMovesPaintsTheRowsItLeavesAndEnters)
{
    TerminalPicture picture(20, 6);
    picture.source.cursorRow = 1;
    picture.source.cursor = CursorLook{};
    (void)picture.image();

    picture.source.cursorRow = 4;
    (void)picture.image();

    EXPECT_EQ(picture.changed, (Rows{1, 4}));
}

TEST(TerminalRows, AnotherScreenIsPaintedWhole)
{
    TerminalPicture picture(20, 6);
    picture.feed("normal");
    (void)picture.image();

    picture.feed("\033[?1049h");
    const QImage alternate = picture.image();
    EXPECT_EQ(alternate, fresh(picture));

    picture.feed("\033[?1049l");
    EXPECT_EQ(picture.image(), fresh(picture));
}

TEST(TerminalRows, MemoryIsGivenBackUntilTheNextPicture)
{
    TerminalPicture picture(20, 6);
    picture.feed("text");
    const QImage before = picture.image();

    picture.painted.release();

    EXPECT_EQ(picture.image(), before);
    EXPECT_EQ(picture.painted.paintedRows(), 6);
}

TEST(TerminalRows, WhateverAProgramDoesThePictureIsTheOneOfAFreshPainting)
{
    TerminalPicture picture(17, 7, {}, 12);
    Kovalt::SelectionService selection(picture.terminal.buffer(), picture.terminal.graphemes());
    picture.source.selection = &selection;
    picture.painter.setInks({.selection = 0x80FF0000U, .cursor = 0xFF00FF00U});
    std::mt19937 random(7);
    const auto upTo = [&](int limit) { return int(random() % unsigned(limit)); };
    const std::vector<std::string> steps{"text ",
                                         "\r\n",
                                         "\n\n",
                                         "\033[H",
                                         "\033[2J",
                                         "\033[3;5r",
                                         "\033[r",
                                         "\033[M",
                                         "\033M",
                                         "\033[2L",
                                         "\033[2M",
                                         "\033[4@",
                                         "\033[P",
                                         "\033[K",
                                         "\033[1;31;44mcolour\033[m",
                                         "\U0001F600",
                                         "\033[?5h",
                                         "\033[?5l",
                                         "\033[?1049h",
                                         "\033[?1049l",
                                         "\033#6",
                                         "\033#5",
                                         "\033[3J",
                                         "\033]4;1;#ff8800\007",
                                         "\033[4:3mcurl\033[m",
                                         "\033[5S",
                                         "\033[5T"};

    for (int i = 0; i < 1500; ++i) {
        picture.feed(steps[std::size_t(upTo(int(steps.size())))]);
        selection.setBuffer(picture.terminal.buffer());
        selection.sync();
        if (upTo(8) == 0) {
            picture.terminal.buffer().yDisp = upTo(picture.terminal.buffer().yBase + 1);
        } else if (upTo(8) == 0) {
            selection.start(Kovalt::SelectionMode::Character,
                            {{upTo(17), upTo(7)}, Kovalt::CellSide::Left});
            selection.extend({{upTo(17), upTo(7)}, Kovalt::CellSide::Right});
        }
        picture.source.cursorRow = upTo(9) - 1;
        picture.source.cursor = CursorLook{upTo(17), 1, CursorLook::Shape(upTo(4))};
        ASSERT_EQ(picture.image(), fresh(picture)) << "step " << i;
    }
}
