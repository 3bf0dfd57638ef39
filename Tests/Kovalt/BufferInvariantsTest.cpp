// What holds whatever is done to a buffer, over many random histories with fixed seeds.

#include "Tests/Support/KovaltScreen.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace Kovalt {

namespace {

using Testing::Screen;

class Randomly {
public:
    explicit Randomly(unsigned seed)
        : m_engine(seed)
    {
    }
    int below(int limit) { return int(m_engine() % unsigned(limit)); }
    int between(int first, int last) { return first + below(last - first + 1); }
    bool often() { return below(4) != 0; }

    std::string ascii(int length)
    {
        std::string text;
        for (int i = 0; i < length; ++i)
            text += char(between(0x20, 0x7E));
        return text;
    }
    Attribute attribute()
    {
        Attribute attribute;
        if (below(2) == 0)
            attribute.bg = CellColor::ansi256(std::uint8_t(below(4)));
        if (below(4) == 0)
            attribute.style = CharacterStyle::Bold;
        return attribute;
    }

private:
    std::mt19937 m_engine;
};

/// Sets the fields of both screens to the same random values.
void placeCursor(Randomly& random, Screen& one, Screen& other)
{
    Buffer& buffer = one.buffer;
    buffer.x = random.between(0, buffer.cols());
    buffer.y = random.below(buffer.rows());
    buffer.wraparound = random.often();
    buffer.marginMode = random.below(3) == 0;
    buffer.marginLeft = random.below(buffer.cols());
    buffer.marginRight = random.between(buffer.marginLeft, buffer.cols() - 1);
    buffer.scrollTop = random.often() ? 0 : random.below(buffer.rows());
    buffer.scrollBottom =
        random.often() ? buffer.rows() - 1 : random.between(buffer.scrollTop, buffer.rows() - 1);
    other.buffer.x = buffer.x;
    other.buffer.y = buffer.y;
    other.buffer.wraparound = buffer.wraparound;
    other.buffer.marginMode = buffer.marginMode;
    other.buffer.marginLeft = buffer.marginLeft;
    other.buffer.marginRight = buffer.marginRight;
    other.buffer.scrollTop = buffer.scrollTop;
    other.buffer.scrollBottom = buffer.scrollBottom;
    other.attribute = one.attribute;
}

void expectEqual(Screen& one, Screen& other)
{
    ASSERT_EQ(one.buffer.x, other.buffer.x);
    ASSERT_EQ(one.buffer.y, other.buffer.y);
    ASSERT_EQ(one.buffer.standingColumn(), other.buffer.standingColumn());
    ASSERT_EQ(one.buffer.yBase, other.buffer.yBase);
    ASSERT_EQ(one.buffer.lines().count(), other.buffer.lines().count());
    for (int row = 0; row < one.buffer.lines().count(); ++row) {
        const BufferLine& left = one.buffer.lines()[row];
        const BufferLine& right = other.buffer.lines()[row];
        ASSERT_EQ(left.isWrapped(), right.isWrapped()) << row;
        for (int column = 0; column < one.buffer.cols(); ++column)
            ASSERT_EQ(left[column], right[column]) << row << ' ' << column;
    }
}

void expectSound(Buffer& buffer)
{
    ASSERT_EQ(buffer.lines().count(), buffer.yBase + buffer.rows());
    ASSERT_LE(buffer.lines().count(), buffer.lines().maxLength());
    ASSERT_EQ(buffer.lines().maxLength(), buffer.rows() + buffer.scrollback().value_or(0));
    ASSERT_GE(buffer.x, 0);
    ASSERT_LE(buffer.x, buffer.cols());
    ASSERT_GE(buffer.y, 0);
    ASSERT_LT(buffer.y, buffer.rows());
    ASSERT_GE(buffer.yDisp, 0);
    ASSERT_LE(buffer.yDisp, buffer.yBase);
    ASSERT_GE(buffer.savedY, 0);
    ASSERT_LT(buffer.savedY, buffer.rows());
    ASSERT_EQ(int(buffer.tabStops.size()), buffer.cols());
    for (int row = 0; row < buffer.lines().count(); ++row) {
        const BufferLine& line = buffer.lines()[row];
        ASSERT_EQ(line.size(), buffer.cols());
        ASSERT_LE(int(line.live().size()), line.size());
        for (int column = 0; column < line.size(); ++column) {
            const bool isHalf = line.getWidth(column) == 0;
            const bool followsWide = column > 0 && line.getWidth(column - 1) == 2;
            ASSERT_EQ(isHalf, followsWide) << row << ' ' << column << " of " << line.size();
        }
        ASSERT_NE(line.getWidth(line.size() - 1), 2);
        for (const SemanticMark& mark : line.semanticMarks())
            ASSERT_TRUE(mark.column >= 0 && mark.column < line.size());
    }
}

void editRow(Randomly& random, Buffer& buffer)
{
    BufferLine& line = buffer.cursorLine();
    const int column = random.below(buffer.cols());
    const int n = random.between(1, buffer.cols());
    const int margin = random.often() ? buffer.cols() - 1 : random.below(buffer.cols());
    const CharData cell = CharData::null(random.attribute());
    switch (random.below(6)) {
    case 0:
        line.insertCells(column, n, margin, cell);
        break;
    case 1:
        line.deleteCells(column, n, margin, cell);
        break;
    case 2:
        line.fill(cell, column, n);
        break;
    case 3:
        line.copyFrom(buffer.screenLine(random.below(buffer.rows())), column,
                      random.below(buffer.cols()), n);
        break;
    case 4:
        line.setSemanticMark({SemanticMark::Kind::Prompt, {}, column, 1});
        break;
    default:
        line.clear(cell.attribute);
    }
}

void editScreen(Randomly& random, Screen& screen)
{
    Buffer& buffer = screen.buffer;
    const int top = random.below(buffer.rows());
    const int bottom = random.between(top, buffer.rows() - 1);
    const Attribute fill = random.attribute();
    switch (random.below(8)) {
    case 0:
        buffer.shiftRowsUp(top, bottom, random.between(1, 4), fill, {});
        break;
    case 1:
        buffer.shiftRowsDown(top, bottom, random.between(1, 4), fill, {});
        break;
    case 2:
        buffer.clearScrollback();
        break;
    case 3:
        buffer.changeHistorySize(random.between(0, 60));
        break;
    case 4:
        buffer.yDisp = random.between(0, buffer.yBase);
        break;
    case 5:
        buffer.insertMode = !buffer.insertMode;
        break;
    default:
        buffer.resize(random.often() ? random.between(2, 30) : buffer.cols(),
                      random.often() ? buffer.rows() : random.between(1, 9));
    }
}

/// Two screens of the same random size go the same steps, each with its cursor in the same random
/// place, and must show the same after each.
template <typename Step>
void expectEqualAfterEach(Step step)
{
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        Randomly random(seed);
        const int cols = random.between(2, 20);
        const int rows = random.between(1, 6);
        Screen byRun(cols, rows, random.below(8));
        Screen byCharacter(cols, rows, *byRun.buffer.scrollback());
        for (int count = 0; count < 60; ++count) {
            byRun.attribute = random.attribute();
            placeCursor(random, byRun, byCharacter);
            step(random, byRun, byCharacter);
            ASSERT_NO_FATAL_FAILURE(expectEqual(byRun, byCharacter)) << "step " << count;
        }
    }
}

} // namespace

TEST(BufferInvariants, ARunPrintsWhatItsCharactersWouldOneByOne)
{
    expectEqualAfterEach([](Randomly& random, Screen& byRun, Screen& byCharacter) {
        if (random.below(3) == 0) {
            byRun.print("中x文");
            byCharacter.print("中x文");
        }
        const std::string text = random.ascii(random.between(1, 50));
        byRun.printRuns(text);
        byCharacter.print(text);
    });
}

TEST(BufferInvariants, ARunOfAnyScriptPrintsWhatItsCharactersWouldOneByOne)
{
    static constexpr std::array<Buffer::PrintedScalar, 5> Scalars = {
        {{U'x', 1}, {U'é', 1}, {U'中', 2}, {U'ф', 1}, {U'文', 2}}};
    expectEqualAfterEach([](Randomly& random, Screen& byRun, Screen& byCharacter) {
        byRun.buffer.insertMode = byCharacter.buffer.insertMode = random.below(4) == 0;
        std::vector<Buffer::PrintedScalar> run;
        for (int i = random.between(1, 50); i > 0; --i)
            run.push_back(Scalars[std::size_t(random.below(int(Scalars.size())))]);
        byRun.buffer.insertScalarRun(run, byRun.attribute, 0);
        for (const auto& [scalar, width] : run)
            byCharacter.put(scalar);
    });
}

TEST(BufferInvariants, EveryHistoryLeavesASoundBuffer)
{
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        Randomly random(seed);
        const auto scrollback = seed % 5 == 0 ? std::nullopt : std::optional(random.below(40));
        Screen screen(random.between(2, 20), random.between(1, 8), scrollback);
        Screen shadow(2, 1);
        for (int step = 0; step < 200; ++step) {
            screen.attribute = random.attribute();
            if (!screen.buffer.hasScrollback())
                screen.buffer.changeHistorySize(std::nullopt);
            switch (random.below(6)) {
            case 0:
                placeCursor(random, screen, shadow);
                break;
            case 1:
                editRow(random, screen.buffer);
                break;
            case 2:
                editScreen(random, screen);
                break;
            case 3:
                screen.print(random.often() ? "中文字中文字\n" : "e中\n");
                break;
            default:
                screen.printRuns(random.ascii(random.between(1, 60)) +
                                 (random.often() ? "\n" : ""));
            }
            ASSERT_NO_FATAL_FAILURE(expectSound(screen.buffer)) << "step " << step;
        }
    }
}

TEST(BufferInvariants, NoWidthLosesTextWhileTheRingHasRoom)
{
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        Randomly random(seed);
        Screen screen(random.between(2, 40), random.between(1, 10), 5000);
        for (int line = 0; line < 30; ++line) {
            std::string text;
            for (int i = random.between(0, 60); i > 0; --i)
                text +=
                    random.below(4) == 0 ? "中" : std::string(1, char(random.between('a', 'z')));
            screen.print("<" + text + ">\n");
        }
        screen.print("$ typed");
        const auto texts = screen.texts();
        for (int step = 0; step < 20; ++step) {
            // A row that grows is taken back from the history, so only widths and more rows here.
            screen.buffer.resize(random.between(2, 60), screen.buffer.rows() + random.below(2));
            ASSERT_EQ(screen.texts(), texts) << "step " << step;
            ASSERT_NO_FATAL_FAILURE(expectSound(screen.buffer));
            screen.print("!");
            screen.buffer.x -= 1;
            ASSERT_EQ(screen.underCursor(), "!");
            screen.buffer.cursorLine().set(screen.buffer.x, CharData{});
        }
    }
}

} // namespace Kovalt
