#include "Views/Editor/TextRows.h"
#include "Views/Editor/RowPieces.h"

#include <gtest/gtest.h>

using namespace Bralto;
using Place = TextRows::Place;

namespace {

TextRows rowsOf(const QString& text, int columns)
{
    TextRows rows(text);
    rows.wrap(columns);
    return rows;
}

/// Every row on a line of its own, as it shows.
QString shown(const TextRows& rows)
{
    QStringList lines;
    for (int row = 0; row < rows.rowCount(); ++row)
        lines.append(rows.row(row).text.toString());
    return lines.join('|');
}

} // namespace

TEST(TextRows, AnEmptyTextIsOneEmptyRow)
{
    const TextRows rows = rowsOf("", 10);
    EXPECT_EQ(rows.lineCount(), 1);
    EXPECT_EQ(shown(rows), "");
}

TEST(TextRows, TheLineBreakAtTheEndOpensALastLine)
{
    EXPECT_EQ(shown(rowsOf("a\nb\n", 10)), "a|b|");
}

TEST(TextRows, ACarriageReturnBeforeTheLineBreakDoesNotShow)
{
    EXPECT_EQ(shown(rowsOf("a\r\nb", 10)), "a|b");
}

TEST(TextRows, ALongLineBreaksBehindABlank)
{
    EXPECT_EQ(shown(rowsOf("alpha beta gamma", 11)), "alpha beta |gamma");
}

TEST(TextRows, ABlankThatDoesNotFitHangsOverTheEnd)
{
    EXPECT_EQ(shown(rowsOf("alpha beta", 5)), "alpha |beta");
}

TEST(TextRows, AWordThatFillsTheRowIsCut)
{
    EXPECT_EQ(shown(rowsOf("abcdefghij kl", 4)), "abcd|efgh|ij |kl");
}

TEST(TextRows, WideCharactersTakeTwoColumns)
{
    EXPECT_EQ(shown(rowsOf("日本語テキスト", 6)), "日本語|テキス|ト");
}

TEST(TextRows, ATabGoesToTheNextStop)
{
    const TextRows rows = rowsOf("a\tb", 20);
    EXPECT_EQ(rows.columnOf({0, 2}), 4);
    EXPECT_EQ(rows.placeAt(0, 4), (Place{0, 2}));
}

TEST(TextRows, APlaceIsFoundAgainOnItsRow)
{
    const TextRows rows = rowsOf("one\nalpha beta gamma\nlast", 11);
    EXPECT_EQ(rows.rowOf({1, 12}), 2);
    EXPECT_EQ(rows.columnOf({1, 12}), 1);
    EXPECT_EQ(rows.placeAt(2, 1), (Place{1, 12}));
    EXPECT_EQ(rows.lineOfRow(3), 2);
}

TEST(TextRows, AColumnBeyondTheRowIsItsEnd)
{
    const TextRows rows = rowsOf("ab\ncd", 10);
    EXPECT_EQ(rows.placeAt(0, 99), (Place{0, 2}));
    EXPECT_EQ(rows.placeAt(99, 0), (Place{1, 0}));
    EXPECT_EQ(rows.placeAt(-5, 0), (Place{0, 0}));
}

TEST(TextRows, AStretchReachesOverLines)
{
    const TextRows rows = rowsOf("first\nsecond", 10);
    EXPECT_EQ(rows.between({0, 2}, {1, 3}), "rst\nsec");
    EXPECT_EQ(rows.between({1, 3}, {0, 2}), "rst\nsec");
}

TEST(TextRows, ALineOfAbsurdLengthIsCutWhereTheColumnsEnd)
{
    const TextRows rows = rowsOf(QString(1'000'003, 'x'), 100);
    EXPECT_EQ(rows.rowCount(), 10'001);
    EXPECT_EQ(rows.row(10'000).text, QString("xxx"));
    EXPECT_EQ(rows.rowOf({0, 1'000'001}), 10'000);
    EXPECT_EQ(rows.columnOf({0, 1'000'001}), 1);
}

TEST(RowPieces, PlainTextIsOnePiece)
{
    const std::vector<RowPiece> pieces = rowPieces(u"return 0;");
    ASSERT_EQ(pieces.size(), 1U);
    EXPECT_TRUE(pieces[0].isSimple);
    EXPECT_EQ(columnAt(pieces, 6), 6);
}

TEST(RowPieces, WhatFollowsAWideCharacterStandsTwoColumnsOn)
{
    const QString row = "a日b";
    const std::vector<RowPiece> pieces = rowPieces(row);
    ASSERT_EQ(pieces.size(), 3U);
    EXPECT_EQ(pieces[2].column, 3);
    EXPECT_EQ(columnAt(pieces, 3), 4);
}

TEST(RowPieces, ATabHasWidthAndNothingToDraw)
{
    const QString row = "a\tb";
    const std::vector<RowPiece> pieces = rowPieces(row);
    ASSERT_EQ(pieces.size(), 3U);
    EXPECT_FALSE(pieces[1].isVisible);
    EXPECT_EQ(pieces[2].column, 4);
}

TEST(RowPieces, AMarkIsDrawnWithItsLetter)
{
    const QString row = QString("ae") + QChar(0x301) + "o";
    const std::vector<RowPiece> pieces = rowPieces(row);
    ASSERT_EQ(pieces.size(), 3U);
    EXPECT_EQ(pieces[1].text.size(), 2);
    EXPECT_EQ(pieces[2].column, 2);
}
