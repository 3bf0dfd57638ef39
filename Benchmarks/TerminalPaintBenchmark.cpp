/// @file
/// What painting a terminal costs the interface thread, in milliseconds a frame. Without a screen:
/// the rows are painted and shown in memory, the way to the display isn't measured. The argument
/// is how many device pixels a unit has.

#include "Benchmarks/BenchApplication.h"
#include "Kovalt/Terminal.h"
#include "Views/Terminal/TerminalRows.h"

#include <QImage>
#include <QPainter>
#include <QRegion>

#include <benchmark/benchmark.h>

#include <string>

using namespace Bralto;

namespace {

/// A terminal and everything that shows it, as a view has it.
class Screen {
public:
    Screen(int cols, int rows, int history, double ratio)
        : m_terminal(nullptr, options(cols, rows, history))
        , m_painter(TerminalFonts::shared({{}, 12 * ratio, 18 * ratio, false}))
    {
        m_terminal.setSilentLog(true);
        m_terminal.installPalette(Kovalt::Colors::xtermColors());
        m_painter.setPalette({m_terminal.colors(), false});
        const QSize cell = m_painter.fonts().cell();
        m_rows.setSize(cols, rows, cell);
        // What a window's own picture is like.
        m_window =
            QImage(cols * cell.width(), rows * cell.height(), QImage::Format_ARGB32_Premultiplied);
    }

    [[nodiscard]] Kovalt::Terminal& terminal() { return m_terminal; }
    [[nodiscard]] TerminalRows& rows() { return m_rows; }

    /// One frame: what differs is painted, and what was painted is shown.
    void frame()
    {
        const auto& changed = m_rows.refresh(m_painter, {.terminal = m_terminal});
        QPainter painter(&m_window);
        if (int(changed.size()) < m_terminal.rows()) {
            QRegion region;
            const QSize cell = m_painter.fonts().cell();
            for (const int row : changed)
                region += QRect(0, row * cell.height(), m_window.width(), cell.height());
            painter.setClipRegion(region);
        }
        m_rows.draw(painter, {});
    }

private:
    static Kovalt::TerminalOptions options(int cols, int rows, int history)
    {
        Kovalt::TerminalOptions result;
        result.cols = cols;
        result.rows = rows;
        result.scrollback = history;
        return result;
    }

    Kovalt::Terminal m_terminal;
    TerminalPainter m_painter;
    TerminalRows m_rows;
    QImage m_window;
};

/// A row full of words in eight runs of colour, two of them on grounds of their own.
std::string colouredRow(int cols, int number)
{
    std::string row;
    for (int run = 0; run < 8; ++run) {
        row += "\033[0;" + std::to_string(31 + (run + number) % 7) + "m";
        if (run % 4 == 3)
            row += "\033[4" + std::to_string(number % 8) + "m";
        for (int i = 0; i < cols / 8; ++i)
            row += i % 7 == 6 ? ' ' : char('!' + (i * 7 + run * 13 + number) % 90);
    }
    return row + "\033[m";
}

void fill(Screen& screen, int cols, int rows)
{
    for (int row = 0; row < rows; ++row)
        screen.terminal().feed(colouredRow(cols, row) + (row + 1 < rows ? "\r\n" : ""));
}

void repaintTerminal(benchmark::State& state)
{
    benchApplication();
    Screen screen(200, 50, 0, double(state.range(0)));
    fill(screen, 200, 50);
    screen.frame();
    for (auto _ : state) {
        screen.rows().forget();
        screen.frame();
    }
}

void repaintTerminalRow(benchmark::State& state)
{
    benchApplication();
    Screen screen(200, 50, 0, double(state.range(0)));
    fill(screen, 200, 50);
    screen.frame();
    int number = 0;
    for (auto _ : state) {
        screen.terminal().feed("\033[25;1H" + colouredRow(200, ++number));
        screen.frame();
    }
}

/// By three rows a frame, as a wheel does, through all of it.
void scrollTerminal(benchmark::State& state)
{
    benchApplication();
    constexpr int History = 100'000;
    Screen screen(200, 60, History, double(state.range(0)));
    fill(screen, 200, History);
    int top = 0;
    for (auto _ : state) {
        screen.terminal().buffer().yDisp = top;
        screen.frame();
        top = (top + 3) % (History - 60);
    }
}

/// A page a frame: nothing of one is in the next, as in a flood.
void pageTerminal(benchmark::State& state)
{
    benchApplication();
    constexpr int History = 100'000;
    Screen screen(200, 60, History, double(state.range(0)));
    fill(screen, 200, History);
    int top = 0;
    for (auto _ : state) {
        screen.terminal().buffer().yDisp = top;
        screen.frame();
        top = (top + 60) % (History - 60);
    }
}

/// Each cell in a colour of its own, as pictures made of blocks have it.
void repaintTrueColours(benchmark::State& state)
{
    benchApplication();
    Screen screen(200, 50, 0, double(state.range(0)));
    std::string text;
    for (int i = 0; i < 200 * 50; ++i)
        text += "\033[38;2;" + std::to_string(i % 256) + ";" + std::to_string(i / 40) +
                ";90;48;2;" + std::to_string(i / 50) + ";80;" + std::to_string(i % 250) + "m\u2580";
    screen.terminal().feed(text);
    screen.frame();
    for (auto _ : state) {
        screen.rows().forget();
        screen.frame();
    }
}

BENCHMARK(repaintTerminal)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(repaintTerminalRow)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(scrollTerminal)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(pageTerminal)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(repaintTrueColours)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

} // namespace
