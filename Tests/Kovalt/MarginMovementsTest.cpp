// Every movement from every place, with every combination of margins and origin mode.

#include "Tests/Kovalt/Margins.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using namespace Kovalt;
using namespace Kovalt::Testing;

namespace {

using Rule = std::function<void(const Margins&, Position&)>;

struct Movement {
    const char* name;
    const char* sequence;
    Rule rule;
};

void restrict(const Margins& m, Position& at)
{
    at.col = std::clamp(at.col, 0, Margins::Cols - 1);
    at.row = m.origin ? std::clamp(at.row, m.top(), m.bottom())
                      : std::clamp(at.row, 0, Margins::Rows - 1);
}

void up(const Margins& m, Position& at, int n)
{
    at.row = std::max(at.row - n, at.row >= m.top() ? m.top() : 0);
}

void down(const Margins& m, Position& at, int n)
{
    at.row = std::min(at.row + n, at.row <= m.bottom() ? m.bottom() : Margins::Rows - 1);
}

void forward(const Margins& m, Position& at, int n)
{
    at.col = std::min(at.col + n, at.col <= m.right() ? m.right() : Margins::Cols - 1);
}

void backward(const Margins& m, Position& at, int n)
{
    at.col = std::max(at.col - n, at.col >= m.left() ? m.left() : 0);
}

void absolute(const Margins& m, Position& at, Position place)
{
    at.col = place.col + (m.origin ? m.left() : 0);
    at.row = place.row + (m.origin ? m.top() : 0);
    restrict(m, at);
}

void lineFeed(const Margins& m, Position& at)
{
    if (at.row != m.bottom())
        at.row = std::min(at.row + 1, Margins::Rows - 1);
}

/// Stops stand at columns 0 and 8.
void tab(const Margins& m, Position& at)
{
    const int end = at.col <= m.right() ? m.right() : Margins::Cols - 1;
    at.col = at.col < 8 && 8 < end ? 8 : end;
}

std::vector<Movement> movements()
{
    return {
        {"CUU", "\x1B[A", [](const Margins& m, Position& at) { up(m, at, 1); }},
        {"CUU 0", "\x1B[0A", [](const Margins& m, Position& at) { up(m, at, 1); }},
        {"CUU 9", "\x1B[9A", [](const Margins& m, Position& at) { up(m, at, 9); }},
        {"CUD", "\x1B[B", [](const Margins& m, Position& at) { down(m, at, 1); }},
        {"CUD 9", "\x1B[9B", [](const Margins& m, Position& at) { down(m, at, 9); }},
        {"CUF", "\x1B[C", [](const Margins& m, Position& at) { forward(m, at, 1); }},
        {"CUF 99", "\x1B[99C", [](const Margins& m, Position& at) { forward(m, at, 99); }},
        {"CUB", "\x1B[D", [](const Margins& m, Position& at) { backward(m, at, 1); }},
        {"CUB 99", "\x1B[99D", [](const Margins& m, Position& at) { backward(m, at, 99); }},
        {"CNL", "\x1B[2E",
         [](const Margins& m, Position& at) {
             down(m, at, 2);
             at.col = m.left();
         }},
        {"CPL", "\x1B[2F",
         [](const Margins& m, Position& at) {
             up(m, at, 2);
             at.col = m.left();
         }},
        {"CHA", "\x1B[3G",
         [](const Margins& m, Position& at) {
             at.col = 2 + (m.origin ? m.left() : 0);
             restrict(m, at);
         }},
        {"CHA 99", "\x1B[99G",
         [](const Margins& m, Position& at) {
             at.col = 99;
             restrict(m, at);
         }},
        {"HPA", "\x1B[3`",
         [](const Margins& m, Position& at) {
             at.col = 2;
             restrict(m, at);
         }},
        {"HPR", "\x1B[4a",
         [](const Margins& m, Position& at) {
             at.col += 4;
             restrict(m, at);
         }},
        {"VPA", "\x1B[2d", [](const Margins&, Position& at) { at.row = 1; }},
        {"VPR", "\x1B[9e", [](const Margins&, Position& at) { at.row = Margins::Rows - 1; }},
        {"CUP", "\x1B[H",
         [](const Margins& m, Position& at) {
             absolute(m, at, {0, 0});
         }},
        {"CUP 3;4", "\x1B[3;4H",
         [](const Margins& m, Position& at) {
             absolute(m, at, {3, 2});
         }},
        {"CUP ;4", "\x1B[;4H",
         [](const Margins& m, Position& at) {
             absolute(m, at, {3, 0});
         }},
        {"CUP 3", "\x1B[3H",
         [](const Margins& m, Position& at) {
             absolute(m, at, {0, 2});
         }},
        {"CUP 99;99", "\x1B[99;99H",
         [](const Margins& m, Position& at) {
             absolute(m, at, {98, 98});
         }},
        {"HVP", "\x1B[2;2f",
         [](const Margins& m, Position& at) {
             absolute(m, at, {1, 1});
         }},
        {"CR", "\r", [](const Margins& m, Position& at) { at.col = m.left(); }},
        {"BS", "\b",
         [](const Margins& m, Position& at) {
             restrict(m, at);
             backward(m, at, 1);
         }},
        {"HT", "\t", tab},
        {"CHT", "\x1B[2I",
         [](const Margins& m, Position& at) {
             tab(m, at);
             tab(m, at);
         }},
        {"CBT", "\x1B[Z", [](const Margins&, Position& at) { at.col = at.col > 8 ? 8 : 0; }},
        {"LF", "\n", lineFeed},
        {"VT", "\v", lineFeed},
        {"FF", "\f", lineFeed},
        {"IND", "\x1B\x44",
         [](const Margins& m, Position& at) {
             restrict(m, at);
             lineFeed(m, at);
         }},
        {"NEL", "\x1B\x45",
         [](const Margins& m, Position& at) {
             at.col = m.origin ? m.left() : 0;
             restrict(m, at);
             lineFeed(m, at);
         }},
        {"RI", "\x1BM",
         [](const Margins& m, Position& at) {
             restrict(m, at);
             if (at.row != m.top())
                 at.row = std::max(at.row - 1, 0);
         }},
        {"DECBI", "\x1B\x36",
         [](const Margins& m, Position& at) {
             if (at.col != m.left())
                 at.col = std::max(at.col - 1, 0);
         }},
        {"DECFI", "\x1B\x39",
         [](const Margins& m, Position& at) {
             if (at.col != m.right())
                 at.col = std::min(at.col + 1, Margins::Cols - 1);
         }},
        {"DECSC and DECRC", "\x1B\x37\x1B[H\x1B\x38", [](const Margins&, Position&) {}},
        {"DECSTR", "\x1B[!p", [](const Margins&, Position&) {}},
        {"DECALN", "\x1B#8",
         [](const Margins&, Position& at) {
             at = {0, 0};
         }},
        {"DECOM on", "\x1B[?6h",
         [](const Margins& m, Position& at) {
             at = {m.left(), m.top()};
         }},
        {"DECOM off", "\x1B[?6l",
         [](const Margins&, Position& at) {
             at = {0, 0};
         }},
    };
}

} // namespace

TEST(MarginMovements, EachKeepsToTheMarginsThatConcernIt)
{
    for (const Movement& movement : movements()) {
        for (const Margins& margins : Margins::all()) {
            for (const Position place : Margins::places()) {
                SCOPED_TRACE(std::string(movement.name) + " with " + margins.name() + " from " +
                             testing::PrintToString(place));
                TerminalHarness t(Margins::Cols, Margins::Rows, 0);
                t.feed(margins.sequence() + goTo(place));
                ASSERT_EQ(t.cursor(), place);
                Position expected = place;
                movement.rule(margins, expected);

                t.feed(movement.sequence);

                EXPECT_EQ(t.cursor(), expected);
            }
        }
    }
}

TEST(MarginMovements, ThePlaceIsReportedFromTheMarginsInOriginMode)
{
    for (const Margins& margins : Margins::all()) {
        for (const Position place : Margins::places()) {
            SCOPED_TRACE(margins.name() + " at " + testing::PrintToString(place));
            TerminalHarness t(Margins::Cols, Margins::Rows, 0);
            t.feed(margins.sequence() + goTo(place));
            const int row = std::max(place.row - (margins.origin ? margins.top() : 0) + 1, 1);
            const int col = std::max(place.col - (margins.origin ? margins.left() : 0) + 1, 1);
            const auto body = std::to_string(row) + ';' + std::to_string(col);

            EXPECT_EQ(t.replyTo("\x1B[6n"), "\x1B[" + body + 'R');
            EXPECT_EQ(t.replyTo("\x1B[?6n"), "\x1B[?" + body + ";1R");
            EXPECT_EQ(t.replyTo("\x1B G\x1B[6n"), "\x9B" + body + 'R');
        }
    }
}
