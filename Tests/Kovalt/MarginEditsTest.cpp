// Every edit and every rectangle, with every combination of margins and origin mode.

#include "Tests/Kovalt/Margins.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using namespace Kovalt;
using namespace Kovalt::Testing;

namespace {

using Screen = std::vector<std::string>;
using Rule = std::function<void(const Margins&, Position, Screen&)>;

struct Edit {
    const char* name;
    const char* sequence;
    Rule rule;
};

Screen letters()
{
    Screen screen;
    for (int row = 0; row < Margins::Rows; ++row) {
        screen.emplace_back();
        for (int col = 0; col < Margins::Cols; ++col)
            screen.back() += char('A' + (row * Margins::Cols + col) % 58);
    }
    return screen;
}

std::string printed(const Screen& screen)
{
    std::string text;
    for (int row = 0; row < int(screen.size()); ++row)
        text += goTo({0, row}) + screen[std::size_t(row)];
    return text;
}

char& at(Screen& screen, int col, int row)
{
    return screen[std::size_t(row)][std::size_t(col)];
}

/// Moves what is in the columns and rows by so many; what comes in is blank.
void shift(Screen& screen, Position first, Position last, int cols, int rows)
{
    const Screen before = screen;
    for (int row = first.row; row <= last.row; ++row) {
        for (int col = first.col; col <= last.col; ++col) {
            const int fromRow = row - rows;
            const int fromCol = col - cols;
            const bool isInside = fromRow >= first.row && fromRow <= last.row &&
                                  fromCol >= first.col && fromCol <= last.col;
            at(screen, col, row) =
                isInside ? before[std::size_t(fromRow)][std::size_t(fromCol)] : ' ';
        }
    }
}

void blank(Screen& screen, Position first, Position last)
{
    shift(screen, first, last, Margins::Cols, 0);
}

Position corner(const Margins& m)
{
    return {m.left(), m.top()};
}

Position end(const Margins& m)
{
    return {m.right(), m.bottom()};
}

bool isInside(const Margins& m, Position place)
{
    return m.hasRow(place.row) && m.hasColumn(place.col);
}

constexpr int LastCol = Margins::Cols - 1;
constexpr int LastRow = Margins::Rows - 1;
/// Beyond the screen from everywhere.
constexpr Position Everything{998, 998};

/// In origin mode these begin in the region's nearest row.
Position restricted(const Margins& m, Position place)
{
    if (m.origin)
        place.row = std::clamp(place.row, m.top(), m.bottom());
    return place;
}

std::vector<Edit> lineEdits()
{
    return {
        {"ICH", "\x1B[2@",
         [](const Margins& m, Position p, Screen& s) {
             p = restricted(m, p);
             if (m.hasColumn(p.col))
                 shift(s, p, {m.right(), p.row}, 2, 0);
         }},
        {"DCH", "\x1B[2P",
         [](const Margins& m, Position p, Screen& s) {
             p = restricted(m, p);
             if (m.hasColumn(p.col))
                 shift(s, p, {m.right(), p.row}, -2, 0);
         }},
        {"ECH", "\x1B[3X",
         [](const Margins& m, Position p, Screen& s) {
             p = restricted(m, p);
             blank(s, p, {std::min(p.col + 2, LastCol), p.row});
         }},
        {"EL", "\x1B[K",
         [](const Margins& m, Position p, Screen& s) {
             p = restricted(m, p);
             blank(s, p, {LastCol, p.row});
         }},
        {"EL 1", "\x1B[1K",
         [](const Margins& m, Position p, Screen& s) {
             p = restricted(m, p);
             blank(s, {0, p.row}, p);
         }},
        {"EL 2", "\x1B[2K",
         [](const Margins& m, Position p, Screen& s) {
             p = restricted(m, p);
             blank(s, {0, p.row}, {LastCol, p.row});
         }},
        {"ED", "\x1B[J",
         [](const Margins& m, Position p, Screen& s) {
             p = restricted(m, p);
             blank(s, p, {LastCol, p.row});
             if (p.row < LastRow)
                 blank(s, {0, p.row + 1}, {LastCol, LastRow});
         }},
        {"ED 1", "\x1B[1J",
         [](const Margins& m, Position p, Screen& s) {
             p = restricted(m, p);
             blank(s, {0, p.row}, p);
             if (p.row > 0)
                 blank(s, {0, 0}, {LastCol, p.row - 1});
         }},
        {"ED 2", "\x1B[2J",
         [](const Margins&, Position, Screen& s) {
             blank(s, {0, 0}, {LastCol, LastRow});
         }},
        {"DECALN", "\x1B#8",
         [](const Margins&, Position, Screen& s) {
             s.assign(s.size(), std::string(Margins::Cols, 'E'));
         }},
    };
}

std::vector<Edit> scrolls()
{
    return {
        {"IL", "\x1B[2L",
         [](const Margins& m, Position p, Screen& s) {
             p = restricted(m, p);
             if (isInside(m, p))
                 shift(s, {m.left(), p.row}, end(m), 0, 2);
         }},
        {"DL", "\x1B[2M",
         [](const Margins& m, Position p, Screen& s) {
             p = restricted(m, p);
             if (isInside(m, p))
                 shift(s, {m.left(), p.row}, end(m), 0, -2);
         }},
        {"SU", "\x1B[2S",
         [](const Margins& m, Position, Screen& s) { shift(s, corner(m), end(m), 0, -2); }},
        {"SD", "\x1B[2T",
         [](const Margins& m, Position, Screen& s) { shift(s, corner(m), end(m), 0, 2); }},
        {"SL", "\x1B[2 @",
         [](const Margins& m, Position, Screen& s) { shift(s, corner(m), end(m), -2, 0); }},
        {"SR", "\x1B[2 A",
         [](const Margins& m, Position, Screen& s) { shift(s, corner(m), end(m), 2, 0); }},
        {"DECIC", "\x1B[2'}",
         [](const Margins& m, Position p, Screen& s) {
             if (isInside(m, p))
                 shift(s, {p.col, m.top()}, end(m), 2, 0);
         }},
        {"DECDC", "\x1B[2'~",
         [](const Margins& m, Position p, Screen& s) {
             if (isInside(m, p))
                 shift(s, {p.col, m.top()}, end(m), -2, 0);
         }},
        {"DECBI", "\x1B\x36",
         [](const Margins& m, Position p, Screen& s) {
             if (m.hasRow(p.row) && p.col == m.left())
                 shift(s, corner(m), end(m), 1, 0);
         }},
        {"DECFI", "\x1B\x39",
         [](const Margins& m, Position p, Screen& s) {
             if (m.hasRow(p.row) && p.col == m.right())
                 shift(s, corner(m), end(m), -1, 0);
         }},
        {"LF", "\n",
         [](const Margins& m, Position p, Screen& s) {
             if (p.row == m.bottom() && m.hasColumn(p.col))
                 shift(s, corner(m), end(m), 0, -1);
         }},
        {"RI", "\x1BM",
         [](const Margins& m, Position p, Screen& s) {
             if (restricted(m, p).row == m.top() && m.hasColumn(p.col))
                 shift(s, corner(m), end(m), 0, 1);
         }},
    };
}

/// A rectangle as its sequence means it, on the screen; none if it is empty.
std::optional<std::pair<Position, Position>> area(const Margins& m, Position first, Position last)
{
    const Position offset = m.origin ? corner(m) : Position{0, 0};
    const Position from{first.col + offset.col, first.row + offset.row};
    const Position to{std::min(last.col + offset.col, LastCol),
                      std::min(last.row + offset.row, LastRow)};
    if (from.col > to.col || from.row > to.row)
        return std::nullopt;
    return std::pair{from, to};
}

void fill(const Margins& m, Screen& s, Position first, Position last, char c)
{
    const auto place = area(m, first, last);
    for (int row = place ? place->first.row : 1; row <= (place ? place->second.row : 0); ++row)
        for (int col = place->first.col; col <= place->second.col; ++col)
            at(s, col, row) = c;
}

void copy(const Margins& m, Screen& s, Position first, Position last, Position target)
{
    const Screen before = s;
    const auto from = area(m, first, last);
    const auto to = area(m, target, {LastCol, LastRow});
    if (!from || !to)
        return;
    for (int row = from->first.row; row <= from->second.row; ++row) {
        for (int col = from->first.col; col <= from->second.col; ++col) {
            const int toRow = to->first.row + row - from->first.row;
            const int toCol = to->first.col + col - from->first.col;
            if (toRow <= LastRow && toCol <= LastCol)
                at(s, toCol, toRow) = before[std::size_t(row)][std::size_t(col)];
        }
    }
}

std::vector<Edit> rectangles()
{
    return {
        {"DECFRA", "\x1B[42;2;3;4;7$x",
         [](const Margins& m, Position, Screen& s) {
             fill(m, s, {2, 1}, {6, 3}, '*');
         }},
        {"DECFRA without edges", "\x1B[42$x",
         [](const Margins& m, Position, Screen& s) {
             fill(m, s, {0, 0}, Everything, '*');
         }},
        {"DECFRA too large", "\x1B[42;2;3;999;999$x",
         [](const Margins& m, Position, Screen& s) {
             fill(m, s, {2, 1}, Everything, '*');
         }},
        {"DECFRA upside down", "\x1B[42;4;7;2;3$x", [](const Margins&, Position, Screen&) {}},
        {"DECERA", "\x1B[2;3;4;7$z",
         [](const Margins& m, Position, Screen& s) {
             fill(m, s, {2, 1}, {6, 3}, ' ');
         }},
        {"DECERA without edges", "\x1B[$z",
         [](const Margins& m, Position, Screen& s) {
             fill(m, s, {0, 0}, Everything, ' ');
         }},
        {"DECERA too large", "\x1B[2;3;999;999$z",
         [](const Margins& m, Position, Screen& s) {
             fill(m, s, {2, 1}, Everything, ' ');
         }},
        {"DECERA beyond", "\x1B[99;99;100;100$z", [](const Margins&, Position, Screen&) {}},
        {"DECSERA", "\x1B[2;3;4;7${",
         [](const Margins& m, Position, Screen& s) {
             fill(m, s, {2, 1}, {6, 3}, ' ');
         }},
        {"DECSERA without edges", "\x1B[${",
         [](const Margins& m, Position, Screen& s) {
             fill(m, s, {0, 0}, Everything, ' ');
         }},
        {"DECSERA upside down", "\x1B[4;7;2;3${", [](const Margins&, Position, Screen&) {}},
        {"DECCRA", "\x1B[1;1;2;3;1;4;5;1$v",
         [](const Margins& m, Position, Screen& s) {
             copy(m, s, {0, 0}, {2, 1}, {4, 3});
         }},
        {"DECCRA over itself, right and down", "\x1B[1;1;4;5;1;2;3;1$v",
         [](const Margins& m, Position, Screen& s) {
             copy(m, s, {0, 0}, {4, 3}, {2, 1});
         }},
        {"DECCRA over itself, left and up", "\x1B[2;3;5;7;1;1;1;1$v",
         [](const Margins& m, Position, Screen& s) {
             copy(m, s, {2, 1}, {6, 4}, {0, 0});
         }},
        {"DECCRA over itself in the same rows", "\x1B[2;1;3;6;1;2;3;1$v",
         [](const Margins& m, Position, Screen& s) {
             copy(m, s, {0, 1}, {5, 2}, {2, 1});
         }},
        {"DECCRA half off the screen", "\x1B[1;1;4;6;1;4;8;1$v",
         [](const Margins& m, Position, Screen& s) {
             copy(m, s, {0, 0}, {5, 3}, {7, 3});
         }},
        {"DECCRA without a source", "\x1B[;;;;;3;4;1$v",
         [](const Margins& m, Position, Screen& s) {
             copy(m, s, {0, 0}, Everything, {3, 2});
         }},
        {"DECCRA without a target", "\x1B[3;4;5;6$v",
         [](const Margins& m, Position, Screen& s) {
             copy(m, s, {3, 2}, {5, 4}, {0, 0});
         }},
        {"DECCRA upside down", "\x1B[4;4;2;2;1;5;5;1$v", [](const Margins&, Position, Screen&) {}},
    };
}

void expectEdit(const Edit& edit, const Margins& margins, Position place)
{
    SCOPED_TRACE(std::string(edit.name) + " with " + margins.name() + " at " +
                 testing::PrintToString(place));
    TerminalHarness t(Margins::Cols, Margins::Rows, 0);
    Screen expected = letters();
    t.feed(printed(expected) + margins.sequence() + goTo(place));
    edit.rule(margins, place, expected);

    t.feed(edit.sequence);

    for (int row = 0; row < Margins::Rows; ++row) {
        std::string text = t.row(row);
        text.resize(Margins::Cols, ' ');
        EXPECT_EQ(text, expected[std::size_t(row)]) << row;
    }
}

} // namespace

TEST(MarginEdits, EditsOfALineKeepToTheMarginsThatConcernThem)
{
    for (const Edit& edit : lineEdits())
        for (const Margins& margins : Margins::all())
            for (const Position place : Margins::places())
                expectEdit(edit, margins, place);
}

TEST(MarginEdits, RowsAndColumnsMoveBetweenTheMargins)
{
    for (const Edit& edit : scrolls())
        for (const Margins& margins : Margins::all())
            for (const Position place : Margins::places())
                expectEdit(edit, margins, place);
}

TEST(MarginEdits, RectanglesKnowMarginsInOriginModeOnlyAndLeaveTheCursor)
{
    for (const Edit& edit : rectangles()) {
        for (const Margins& margins : Margins::all()) {
            expectEdit(edit, margins, {6, 4});
            TerminalHarness t(Margins::Cols, Margins::Rows, 0);
            t.feed(margins.sequence() + goTo({6, 4}) + edit.sequence);
            EXPECT_EQ(t.cursor(), (Position{6, 4})) << edit.name;
        }
    }
}

TEST(MarginEdits, AChecksumIsThatOfTheRectangle)
{
    for (const Margins& margins : Margins::all()) {
        TerminalHarness t(Margins::Cols, Margins::Rows, 0);
        const Screen screen = letters();
        t.feed(printed(screen) + margins.sequence());
        for (int row = 0; row < Margins::Rows; ++row) {
            for (int col = 0; col < Margins::Cols; ++col) {
                const auto place = area(margins, {col, row}, {col, row});
                const int sum =
                    place ? screen[std::size_t(place->first.row)][std::size_t(place->first.col)]
                          : 0;
                char digits[8];
                std::snprintf(digits, sizeof digits, "%04x", unsigned(sum));
                const auto edges = std::to_string(row + 1) + ';' + std::to_string(col + 1);

                EXPECT_EQ(t.replyTo("\x1B[9;1;" + edges + ';' + edges + "*y"),
                          std::string("\x1BP9!~") + digits + "\x1B\\")
                    << margins.name() << edges;
            }
        }
    }
}
