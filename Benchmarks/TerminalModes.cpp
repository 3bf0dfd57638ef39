#include "Benchmarks/TerminalModes.h"

#include "Benchmarks/ClickProbe.h"
#include "Benchmarks/DisplayPeer.h"
#include "Benchmarks/Measures.h"
#include "Benchmarks/TerminalDesk.h"

#include <QFile>
#include <QTemporaryDir>

#include <optional>
#include <utility>
#include <vector>

namespace Bralto {
namespace {

constexpr int History = 10'000;
constexpr int LongHistory = 100'000;
constexpr int RunPatienceMs = 300'000;
constexpr int Keys = 500;
constexpr int KeyPatienceMs = 500;
constexpr int KeyPauseMs = 23; ///< Not in step with anything that ticks.
constexpr int KeyPauseSpread = 17;
constexpr std::uint8_t KeyA = 38;
constexpr int ScrollMs = 10'000;
constexpr int IdleMs = 5'000;

void addGrid(QJsonObject& result, TerminalView& view)
{
    result.insert("cols", view.geometryOfCells().cols);
    result.insert("rows", view.geometryOfCells().rows);
}

/// Where the next character will be, in device pixels of the window.
QRect cursorArea(PaneWindow& shown)
{
    TerminalView& view = shown.view();
    const double ratio = view.devicePixelRatioF();
    const Kovalt::Buffer& buffer = view.session().terminal().buffer();
    const QRectF cell = view.geometryOfCells().rect(buffer.standingColumn(), buffer.y);
    const QPointF corner = view.mapTo(&shown.window(), QPointF()) + cell.topLeft();
    return {(corner * ratio).toPoint(), (cell.size() * ratio).toSize()};
}

/// From the press of a key to a cell that looks otherwise on the server; none if it never does.
std::optional<double> keyToPixels(PaneWindow& shown, DisplayPeer& peer)
{
    const QRect area = cursorArea(shown);
    const std::vector<std::uint8_t> before = peer.pixels(area);
    std::optional<double> time;
    QElapsedTimer timer;
    shown.window().painted = [&] {
        if (!time && peer.pixels(area) != before)
            time = elapsed(timer);
    };
    timer.start();
    peer.type(KeyA);
    (void)PaneWindow::await([&time] { return time.has_value(); }, KeyPatienceMs);
    shown.window().painted = nullptr;
    return time;
}

/// Lines of words in colours that fill a row; whether they were written.
bool writeHistory(const QString& path, int lines, int cols)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (int line = 0; line < lines; ++line) {
        QByteArray row;
        for (int word = 0, width = 0; width < cols - 12; ++word) {
            const QByteArray text = "word" + QByteArray::number(line + word);
            row += "\033[" + QByteArray::number(31 + (line + word) % 7) + 'm' + text + "\033[m ";
            width += int(text.size()) + 1;
        }
        file.write(row + '\n');
    }
    return true;
}

} // namespace

QJsonObject runCommand(const QString& command, int panes, QSize grid)
{
    TerminalDesk desk("exec " + command, History);
    PaneWindow shown(desk, panes);
    shown.show(grid.width(), grid.height());
    const int framesBefore = shown.window().frames();
    const double processorBefore = processorTime();
    QElapsedTimer timer;
    timer.start();
    ClickProbe clicks(shown.window().strip());
    desk.open(panes);
    const bool ended = PaneWindow::await([&] { return shown.running() == 0; }, RunPatienceMs);

    QJsonObject result;
    const double time = elapsed(timer);
    addWaits(result, clicks.finish());
    addGrid(result, shown.view());
    result.insert("time", time);
    result.insert("processor", processorTime() - processorBefore);
    result.insert("frames", shown.window().frames() - framesBefore);
    result.insert("ended", ended);
    return result;
}

QJsonObject measureLatency(QSize grid)
{
    TerminalDesk desk("stty raw -echo; exec cat", History);
    PaneWindow shown(desk, 1);
    QApplication::setCursorFlashTime(0); // The only other thing that changes a cell.
    shown.show(grid.width(), grid.height());
    TerminalView& view = shown.view();
    DisplayPeer peer(std::uint32_t(shown.window().winId()));
    peer.focus();
    view.setFocus();
    (void)PaneWindow::await([&view] { return view.hasFocus(); }, KeyPatienceMs);
    desk.open(1);
    (void)PaneWindow::await([] { return false; }, KeyPatienceMs);

    std::vector<double> times;
    int lost = 0;
    for (int i = 0; i < Keys; ++i) {
        if (const auto time = keyToPixels(shown, peer))
            times.push_back(*time);
        else
            ++lost;
        (void)PaneWindow::await([] { return false; }, KeyPauseMs + i % KeyPauseSpread);
    }
    QJsonObject result;
    addTimes(result, "key", std::move(times));
    addGrid(result, view);
    result.insert("lost", lost);
    return result;
}

QJsonObject measureScrolling(QSize grid)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("history");
    if (!writeHistory(path, LongHistory + grid.height(), grid.width()))
        return {};
    TerminalDesk desk("cat " + path + "; exec sleep 1000", LongHistory);
    PaneWindow shown(desk, 1);
    shown.show(grid.width(), grid.height());
    desk.open(1);
    TerminalSession& session = shown.view().session();
    const Kovalt::Buffer& buffer = session.terminal().buffer();
    (void)PaneWindow::await([&] { return buffer.yBase >= LongHistory; }, RunPatienceMs);
    (void)PaneWindow::await([] { return false; }, IdleMs / 5);

    std::vector<double> intervals;
    QElapsedTimer sinceFrame;
    shown.window().painted = [&] {
        if (sinceFrame.isValid())
            intervals.push_back(elapsed(sinceFrame));
        sinceFrame.start();
        // The next event, as a wheel that turns on sends it.
        QMetaObject::invokeMethod(
            &session, [&] { session.scrollTo(buffer.yDisp - 1); }, Qt::QueuedConnection);
    };
    const double processorBefore = processorTime();
    const int topBefore = buffer.yDisp;
    QElapsedTimer timer;
    timer.start();
    session.scrollTo(buffer.yDisp - 1);
    (void)PaneWindow::await([] { return false; }, ScrollMs);
    const double time = elapsed(timer);
    shown.window().painted = nullptr;

    QJsonObject result;
    const auto frames = double(intervals.size());
    result.insert("framesASecond", frames / time * 1000);
    result.insert("processorAFrame", (processorTime() - processorBefore) / frames);
    result.insert("lines", topBefore - buffer.yDisp);
    result.insert("history", buffer.yBase);
    addTimes(result, "interval", std::move(intervals));
    addGrid(result, shown.view());
    return result;
}

QJsonObject measureIdling(QSize grid)
{
    TerminalDesk desk("echo a line; exec sleep 1000", History);
    PaneWindow shown(desk, 1);
    shown.window().strip().setFocus();
    shown.show(grid.width(), grid.height());
    shown.window().strip().setFocus();
    desk.open(1);
    (void)PaneWindow::await([] { return false; }, IdleMs / 5);

    const int framesBefore = shown.window().frames();
    const qint64 wakeupsBefore = wakeups();
    const double processorBefore = processorTime();
    (void)PaneWindow::await([] { return false; }, IdleMs);
    const double processor = processorTime() - processorBefore;
    QJsonObject result;
    result.insert("processor", processor);
    result.insert("wakeups", wakeups() - wakeupsBefore); // One is the end of the measurement.
    result.insert("frames", shown.window().frames() - framesBefore);
    result.insert("focused", shown.view().hasFocus());
    return result;
}

} // namespace Bralto
