#include "Chat/LineDiff.h"

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

std::string shown(const QString& before, const QString& after)
{
    std::string out;
    for (const LineDiff::Line& line : LineDiff::lines(before, after)) {
        out += line.kind == LineDiff::Kind::Same    ? ' '
               : line.kind == LineDiff::Kind::Added ? '+'
                                                    : '-';
        out += line.text.toStdString() + '\n';
    }
    return out;
}

QString numbered(int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines.append(QString::number(i));
    return lines.join('\n');
}

bool hasSame(const std::vector<LineDiff::Line>& lines)
{
    return std::any_of(lines.begin(), lines.end(),
                       [](const auto& line) { return line.kind == LineDiff::Kind::Same; });
}

} // namespace

TEST(LineDiff, AChangedLineShowsItsNewFormAboveItsOldOne)
{
    EXPECT_EQ(shown("a\nb\nc", "a\nB\nc"), " a\n+B\n-b\n c\n");
}

TEST(LineDiff, LinesComeAndGo)
{
    EXPECT_EQ(shown("a\nc", "a\nb\nc"), " a\n+b\n c\n");
    EXPECT_EQ(shown("a\nb\nc", "a\nc"), " a\n-b\n c\n");
    EXPECT_EQ(shown("same\n", "same\n"), " same\n \n");
}

TEST(LineDiff, AnEmptyTextIsOneEmptyLine)
{
    EXPECT_EQ(shown("", "new"), "+new\n-\n");
    EXPECT_EQ(shown("", ""), " \n");
}

TEST(LineDiff, MoreThanAQuarterMillionCellsAreNotCompared)
{
    const auto lines = LineDiff::lines(numbered(501), numbered(500));

    EXPECT_EQ(lines.size(), 1001u);
    EXPECT_FALSE(hasSame(lines));
    EXPECT_EQ(lines.front().kind, LineDiff::Kind::Removed);
    EXPECT_EQ(lines.back().kind, LineDiff::Kind::Added);
}

TEST(LineDiff, ExactlyAQuarterMillionCellsAreCompared)
{
    EXPECT_EQ(LineDiff::stats(LineDiff::lines(numbered(500), numbered(500))), LineDiff::Stats{});
}

TEST(LineDiff, StatsSumOverAllEdits)
{
    const QList<ChatEdit> edits{{"a", "a\nb"}, {"x\ny", "x"}, {"p", "q"}};

    EXPECT_EQ(LineDiff::stats(LineDiff::lines(edits)), (LineDiff::Stats{2, 2}));
    EXPECT_TRUE(LineDiff::lines(QList<ChatEdit>{}).empty());
}

TEST(LineDiff, AFileThatIsWrittenWholeOnlyAdds)
{
    EXPECT_EQ(LineDiff::stats(LineDiff::lines({{"", "a\nb"}})), (LineDiff::Stats{2, 0}));
}

TEST(LineDiff, FortyLinesAreShownWholeAndOfMoreTheFirstForty)
{
    EXPECT_EQ(LineDiff::shownLines(40, false), 40);
    EXPECT_FALSE(LineDiff::canShowAll(40));
    EXPECT_EQ(LineDiff::shownLines(41, false), 40);
    EXPECT_EQ(LineDiff::shownLines(41, true), 41);
    EXPECT_TRUE(LineDiff::canShowAll(41));
}
