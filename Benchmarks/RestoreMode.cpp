#include "Benchmarks/Measures.h"
#include "Benchmarks/TerminalDesk.h"
#include "Benchmarks/TerminalModes.h"
#include "Benchmarks/TerminalStreams.h"

#include <QGridLayout>
#include <QScreen>

#include <algorithm>
#include <set>
#include <string_view>

namespace Bralto {
namespace {

constexpr int SavedLines = 1'500;
constexpr std::size_t LongestLine = 160;
constexpr int PanesInTab = 3;
constexpr int History = 10'000;
constexpr int PatienceMs = 30'000;
constexpr int SettlingMs = 500;
/// What a window manager puts around a window.
constexpr QSize Frame{40, 60};
/// Its prompt is a title, which is told as soon as it is understood.
constexpr auto Shell = "export PS1='\\[\\e]2;prompt\\a\\]$ '; exec bash --norc --noprofile -i";

/// A panel as a project has it on disk.
QByteArray savedPanel(int panes)
{
    const auto stream = std::ranges::find(Kovalt::terminalStreams(), std::string_view("plain"),
                                          &Kovalt::TerminalStream::name);
    QString lines = QString::fromStdString(Kovalt::makeStream(*stream, SavedLines * LongestLine));
    lines.remove('\r');
    PaneSnapshot pane;
    pane.kind = PaneKind::Shell;
    pane.directory = "/";
    pane.scrollback = lines.section('\n', 0, SavedLines - 1);
    PanelSnapshot panel;
    panel.isVisible = true;
    for (int i = 0; i < panes; ++i) {
        if (i % PanesInTab == 0)
            panel.groups.emplace_back();
        panel.groups.back().panes.push_back(pane);
    }
    return panel.encode();
}

/// Views of all sessions in rows. A panel shows those of one tab: this is the dearest case.
std::vector<std::unique_ptr<TerminalView>> showAll(const std::vector<TerminalSession*>& sessions,
                                                   TerminalDesk& desk, QWidget& parent)
{
    auto* layout = new QGridLayout(&parent);
    std::vector<std::unique_ptr<TerminalView>> views;
    for (TerminalSession* const session : sessions) {
        const int place = int(views.size());
        views.push_back(std::make_unique<TerminalView>(desk.viewServices(), *session, &parent));
        layout->addWidget(views.back().get(), place / PanesInTab, place % PanesInTab);
        views.back()->show();
    }
    return views;
}

} // namespace

QJsonObject measureRestoring(int panes)
{
    const QByteArray saved = savedPanel(panes);
    TerminalDesk desk(Shell, History, true);
    BenchWindow window;
    window.resize(window.screen()->size() - Frame);
    window.show();
    (void)PaneWindow::await([&window] { return window.frames() > 0; }, PatienceMs);

    QJsonObject result;
    ClickProbe clicks(window.strip());
    QElapsedTimer timer;
    timer.start();
    TerminalPanel panel("/", PanelSnapshot::decode(saved), desk.panelServices());
    result.insert("restored", elapsed(timer));
    const std::vector<TerminalSession*> sessions = panel.allSessions();
    std::set<const TerminalSession*> ready;
    for (TerminalSession* const session : sessions) {
        QObject::connect(session, &TerminalSession::titleChanged, &window, [&ready, session] {
            if (session->title() == "prompt")
                ready.insert(session);
        });
    }
    const auto views = showAll(sessions, desk, window.panes());
    result.insert("viewed", elapsed(timer));
    const bool isReady =
        PaneWindow::await([&] { return ready.size() == sessions.size(); }, PatienceMs);
    result.insert("usable", elapsed(timer));
    (void)PaneWindow::await([] { return false; }, SettlingMs);

    result.insert("panes", int(sessions.size()));
    result.insert("ready", isReady);
    addWaits(result, clicks.finish());
    return result;
}

} // namespace Bralto
