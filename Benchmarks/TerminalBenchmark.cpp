// The emulator: megabytes a second by kind of output, next to libvterm in the same run; what a row
// of history and an empty terminal weigh; what a new width costs.
#include "Benchmarks/TerminalStreams.h"
#include "Kovalt/Terminal.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include <malloc.h>
#include <vterm.h>

namespace Kovalt {
namespace {

constexpr std::size_t StreamBytes = 20'000'000;
constexpr std::size_t SliceBytes = 65'536;
constexpr int Cols = 80;
constexpr int Rows = 24;
constexpr int History = 10'000;

class Silent final : public TerminalDelegate {
public:
    void send(Terminal& /*source*/, std::span<const std::uint8_t> /*data*/) override {}
    void mouseModeChanged(Terminal& /*source*/) override {}
};

template <typename Take>
void inSlices(std::string_view text, Take take)
{
    for (std::size_t at = 0; at < text.size(); at += SliceBytes)
        take(text.substr(at, SliceBytes));
}

template <typename Work>
double seconds(Work work)
{
    const auto began = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

std::unique_ptr<Terminal> makeTerminal(Silent& silent, int history)
{
    TerminalOptions options;
    options.cols = Cols;
    options.rows = Rows;
    options.scrollback = history;
    auto terminal = std::make_unique<Terminal>(&silent, options);
    terminal->setSilentLog(true);
    return terminal;
}

double feedKovalt(std::string_view text)
{
    Silent silent;
    const auto terminal = makeTerminal(silent, History);
    return seconds([&] { inSlices(text, [&](auto slice) { terminal->feed(slice); }); });
}

/// With its screen layer, which is what a program would use, and without a history, which it leaves
/// to the program.
double feedLibvterm(std::string_view text)
{
    VTerm* const terminal = vterm_new(Rows, Cols);
    vterm_set_utf8(terminal, 1);
    VTermScreen* const screen = vterm_obtain_screen(terminal);
    vterm_screen_set_damage_merge(screen, VTERM_DAMAGE_SCROLL);
    vterm_screen_enable_altscreen(screen, 1);
    vterm_screen_reset(screen, 1);
    const double took = seconds([&] {
        inSlices(text, [&](auto slice) {
            vterm_input_write(terminal, slice.data(), slice.size());
            vterm_screen_flush_damage(screen);
        });
    });
    vterm_free(terminal);
    return took;
}

/// `MB/s` of the fastest pass, and how many times as fast as libvterm it is (`times`).
void feedStream(benchmark::State& state, const TerminalStream& stream)
{
    const std::string text = makeStream(stream, StreamBytes);
    double best = 1e9;
    double other = 1e9;
    for (auto _ : state) {
        const double took = feedKovalt(text);
        state.SetIterationTime(took);
        best = std::min(best, took);
        other = std::min(other, feedLibvterm(text));
    }
    const double megabytes = double(text.size()) / 1e6;
    state.counters["MB/s"] = megabytes / best;
    state.counters["libvterm"] = megabytes / other;
    state.counters["times"] = other / best;
}

std::size_t allocated()
{
    return mallinfo2().uordblks + mallinfo2().hblkhd;
}

std::string fullRows(int count)
{
    std::string text;
    for (int row = 0; row < count; ++row) {
        text += "\x1b[3" + std::to_string(row % 8) + "m";
        text.append(std::size_t(Cols), char('a' + row % 26));
        text += "\r\n";
    }
    return text;
}

/// Bytes of a row of history that is full to its last column.
void rowOfHistory(benchmark::State& state)
{
    constexpr int HistoryRows = 100'000;
    const std::string text = fullRows(HistoryRows);
    Silent silent;
    for (auto _ : state) {
        const std::size_t before = allocated();
        const auto terminal = makeTerminal(silent, HistoryRows);
        terminal->feed(text);
        state.counters["bytes"] = double(allocated() - before) / HistoryRows;
    }
}
BENCHMARK(rowOfHistory)->Iterations(1)->Unit(benchmark::kMillisecond);

/// Bytes of a terminal that has printed nothing.
void emptyTerminal(benchmark::State& state)
{
    Silent silent;
    for (auto _ : state) {
        const std::size_t before = allocated();
        const auto terminal = makeTerminal(silent, History);
        state.counters["bytes"] = double(allocated() - before);
    }
}
BENCHMARK(emptyTerminal)->Iterations(1);

/// The time of one change of width, narrower and wider in turn, of 100,000 rows.
void reflow(benchmark::State& state, std::string (*makeText)())
{
    Silent silent;
    const auto terminal = makeTerminal(silent, 100'000);
    terminal->feed(makeText());
    bool isNarrow = false;
    for (auto _ : state) {
        isNarrow = !isNarrow;
        terminal->resize(isNarrow ? 61 : Cols, Rows);
    }
}

} // namespace
} // namespace Kovalt

int main(int argc, char** argv)
{
    using namespace Kovalt;
    for (const TerminalStream& stream : terminalStreams())
        benchmark::RegisterBenchmark(stream.name, feedStream, stream)
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime()
            ->Iterations(5);
    benchmark::RegisterBenchmark(
        "reflow/fullRows", reflow, +[] { return fullRows(100'000); })
        ->Unit(benchmark::kMillisecond)
        ->Iterations(10);
    benchmark::RegisterBenchmark(
        "reflow/paragraphs", reflow, +[] { return makeStream(terminalStreams()[1], 9'000'000); })
        ->Unit(benchmark::kMillisecond)
        ->Iterations(10);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
