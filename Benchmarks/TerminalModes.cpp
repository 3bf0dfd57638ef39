#include "Benchmarks/TerminalModes.h"

#include "Benchmarks/ClickProbe.h"
#include "Benchmarks/DisplayPeer.h"
#include "Benchmarks/TerminalDesk.h"
#include "Benchmarks/TerminalStreams.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGridLayout>
#include <QScreen>

#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <set>
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
constexpr std::uint8_t KeyA = 38;
constexpr int ScrollMs = 10'000;
constexpr int IdleMs = 5'000;
constexpr int SavedLines = 1'500;
constexpr int PanesInTab = 3;

/// Milliseconds of the processor that this process has used.
double processorTime()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto milliseconds = [](const timeval& time) {
        return double(time.tv_sec) * 1e3 + double(time.tv_usec) / 1e3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

/// How often the threads of this process went to sleep by themselves.
qint64 wakeups()
{
    qint64 sum = 0;
    const QDir tasks("/proc/self/task");
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks.filePath(task + "/status"));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith("voluntary_ctxt_switches:"))
                sum += line.mid(line.indexOf(':') + 1).trimmed().toLongLong();
        }
    }
    return sum;
}

/// Median, 99th percentile and the longest, under names that begin with `what`.
void addTimes(QJsonObject& result, const QString& what, std::vector<double> times)
{
    if (times.empty())
        return;
    std::ranges::sort(times);
    const auto at = [&times](double part) {
        return times[std::min(times.size() - 1, std::size_t(part * double(times.size())))];
    };
    result.insert(what + "Median", at(0.5));
    result.insert(what + "P99", at(0.99));
    result.insert(what + "Longest", times.back());
    result.insert(what + "Count", int(times.size()));
}

void addWaits(QJsonObject& result, const ClickProbe::Waits& waits)
{
    addTimes(result, "click", waits.times);
    addTimes(result, "work", waits.work);
}

double elapsed(const QElapsedTimer& timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

void addGrid(QJsonObject& result, TerminalView& view)
{
    result.insert("cols", view.geometryOfCells().cols);
    result.insert("rows", view.geometryOfCells().rows);
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
    QApplication::setCursorFlashTime(0);
    shown.show(grid.width(), grid.height());
    TerminalView& view = shown.view();
    DisplayPeer peer(std::uint32_t(shown.window().winId()));
    peer.focus();
    view.setFocus();
    (void)PaneWindow::await([&view] { return view.hasFocus(); }, KeyPatienceMs);
    desk.open(1);
    (void)PaneWindow::await([] { return false; }, KeyPatienceMs);

    const double ratio = view.devicePixelRatioF();
    std::vector<double> times;
    int lost = 0;
    for (int i = 0; i < Keys; ++i) {
        const Kovalt::Buffer& buffer = view.session().terminal().buffer();
        const QRectF cell = view.geometryOfCells().rect(buffer.standingColumn(), buffer.y);
        const QRect area(
            (QPointF(view.mapTo(&shown.window(), QPoint())) + cell.topLeft()).toPoint() * ratio,
            (cell.size() * ratio).toSize());
        const std::vector<std::uint8_t> before = peer.pixels(area);
        double time = 0;
        QElapsedTimer timer;
        shown.window().painted = [&] {
            if (time == 0 && peer.pixels(area) != before)
                time = elapsed(timer);
        };
        timer.start();
        peer.type(KeyA);
        if (PaneWindow::await([&time] { return time > 0; }, KeyPatienceMs))
            times.push_back(time);
        else
            ++lost;
        shown.window().painted = nullptr;
        (void)PaneWindow::await([] { return false; }, KeyPauseMs + i % 17);
    }
    QJsonObject result;
    addTimes(result, "key", std::move(times));
    addGrid(result, view);
    result.insert("lost", lost);
    return result;
}

QJsonObject measureScrolling(QSize grid)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("history");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    // A mix of words in colours, wide enough for the whole row.
    for (int line = 0; line < LongHistory + grid.height(); ++line) {
        QByteArray row;
        for (int word = 0; row.size() < 240; ++word) {
            row += "\033[" + QByteArray::number(31 + (line + word) % 7) + "mword" +
                   QByteArray::number(line + word) + "\033[m ";
        }
        file.write(row + '\n');
    }
    file.close();

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

    double processorBefore = 0;
    qint64 wakeupsBefore = 0;
    const int framesBefore = shown.window().frames();
    processorBefore = processorTime();
    wakeupsBefore = wakeups();
    (void)PaneWindow::await([] { return false; }, IdleMs);
    const double processor = processorTime() - processorBefore;
    QJsonObject result;
    result.insert("processor", processor);
    result.insert("wakeups", wakeups() - wakeupsBefore); // One is the end of the measurement.
    result.insert("frames", shown.window().frames() - framesBefore);
    result.insert("focused", shown.view().hasFocus());
    return result;
}

QJsonObject measureRestoring(int panes)
{
    const auto streams = Kovalt::terminalStreams();
    QString lines = QString::fromStdString(Kovalt::makeStream(
        *std::ranges::find(streams, std::string("plain"), &Kovalt::TerminalStream::name),
        std::size_t(SavedLines) * 100));
    lines.remove('\r');
    lines = lines.section('\n', 0, SavedLines - 1);
    PanelSnapshot snapshot;
    snapshot.isVisible = true;
    for (int i = 0; i < panes; ++i) {
        if (i % PanesInTab == 0)
            snapshot.groups.emplace_back();
        PaneSnapshot pane;
        pane.kind = PaneKind::Shell;
        pane.directory = "/";
        pane.scrollback = lines;
        snapshot.groups.back().panes.push_back(pane);
    }
    // Its prompt is a title, which is told as soon as it is understood.
    TerminalDesk desk("export PS1='\\[\\e]2;prompt\\a\\]$ '; exec bash --norc --noprofile -i",
                      History, true);
    BenchWindow window;
    window.resize(window.screen()->size() - QSize(40, 60));
    window.show();
    (void)PaneWindow::await([&window] { return window.frames() > 0; }, RunPatienceMs);

    std::set<const TerminalSession*> ready;
    double fed = 0;
    double viewed = 0;
    double usable = 0;
    ClickProbe clicks(window.strip());
    QElapsedTimer timer;
    timer.start();
    const QByteArray saved = snapshot.encode();
    TerminalPanel panel("/", PanelSnapshot::decode(saved), desk.panelServices());
    fed = elapsed(timer);
    // A tab's panes are beside each other; here all tabs are seen at once.
    QGridLayout layout(&window.panes());
    const std::vector<TerminalSession*> sessions = panel.allSessions();
    std::vector<std::unique_ptr<TerminalView>> views;
    for (std::size_t i = 0; i < sessions.size(); ++i) {
        TerminalSession* const session = sessions[i];
        QObject::connect(session, &TerminalSession::titleChanged, &window, [&, session] {
            if (session->title() == "prompt")
                ready.insert(session);
        });
        views.push_back(
            std::make_unique<TerminalView>(desk.viewServices(), *session, &window.panes()));
        layout.addWidget(views.back().get(), int(i) / PanesInTab, int(i) % PanesInTab);
        views.back()->show();
    }
    viewed = elapsed(timer);
    const bool isReady =
        PaneWindow::await([&] { return ready.size() == sessions.size(); }, RunPatienceMs);
    usable = elapsed(timer);
    (void)PaneWindow::await([] { return false; }, IdleMs / 10);

    QJsonObject result;
    result.insert("panes", int(sessions.size()));
    result.insert("restored", fed);
    result.insert("viewed", viewed);
    result.insert("usable", usable);
    result.insert("ready", isReady);
    addWaits(result, clicks.finish());
    views.clear();
    return result;
}

} // namespace Bralto
