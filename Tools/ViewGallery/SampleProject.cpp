#include "Tools/ViewGallery/SampleProject.h"

#include "Projects/ProjectUse.h"
#include "Tools/ViewGallery/SamplePage.h"
#include "Views/Chat/ChatView.h"
#include "Views/Terminal/TerminalView.h"

#include <QWidget>

#include <utility>

namespace Bralto {
namespace {

constexpr char ShellOutput[] =
    "\x1b[36mtidal-api\x1b[m main % ctest --preset dev -R store\r\n"
    " 1/6 store.level_between ...... \x1b[32mPassed\x1b[m\r\n"
    " 2/6 store.level_outside ...... \x1b[32mPassed\x1b[m\r\n"
    " 3/6 store.first_sample ....... \x1b[33mSkipped\x1b[m\r\n"
    " 4/6 store.last_sample ........ \x1b[32mPassed\x1b[m\r\n"
    "\x1b[1;32m100% passed\x1b[m\x1b[2m, 1 skipped in 0.21 s\x1b[m\r\n\r\n"
    "\x1b[36mtidal-api\x1b[m main % git log --oneline -2\r\n"
    "\x1b[33m3f9c1ab\x1b[m Ask the series for its range\r\n"
    "\x1b[33m91d07e2\x1b[m Answer 404 out of range\r\n\r\n"
    "\x1b[36mtidal-api\x1b[m main % ";

constexpr char Source[] = R"(#include "tidal/tide_store.hpp"

#include <algorithm>
#include <ranges>

namespace tidal {

namespace {

/// The share of the way from one hour to the next.
double fraction(TimePoint from, TimePoint to, TimePoint when)
{
    const auto whole = std::chrono::duration<double>(to - from);
    return std::chrono::duration<double>(when - from) / whole;
}

double half_cosine(double share)
{
    return (1.0 - std::cos(share * std::numbers::pi)) / 2.0;
}

} // namespace

TideStore::TideStore(std::vector<Series> series)
    : series_(std::move(series))
{
    std::ranges::sort(series_, {}, &Series::station);
}

// Predictions are hourly. Between two samples the level follows half a cosine.
std::optional<Level> TideStore::level_at(StationId station, TimePoint when) const
{
    const Series* series = find_series(station);
    if (series == nullptr || !series->covers(when))
        return std::nullopt;

    const auto next = std::ranges::upper_bound(series->samples, when, {}, &Sample::time);
    const auto prev = std::prev(next);
    const double share = fraction(prev->time, next->time, when);
    return Level::blend(prev->height, next->height, half_cosine(share));
}

const Series* TideStore::find_series(StationId station) const
{
    const auto found = std::ranges::lower_bound(series_, station, {}, &Series::station);
    return found != series_.end() && found->station == station ? &*found : nullptr;
}

} // namespace tidal
)";

constexpr char Prose[] = R"(# Stations

Every station keeps an hourly series. Ask for a level at any time the series covers; between two samples it follows half a cosine.

## Errors

- 404 with out_of_range when no sample covers the time
- 404 with unknown_station
- [ ] say which years are covered

> Times are UTC, as in the printed tables.
)";

const QStringList Files = {"include/tidal/tide_store.hpp",
                           "include/tidal/series.hpp",
                           "src/http/server.cpp",
                           "src/clock.cpp",
                           "src/main.cpp",
                           "src/problem.cpp",
                           "src/routes.cpp",
                           "src/series.cpp",
                           "src/tide_store.cpp",
                           "tests/routes_test.cpp",
                           "tests/range_test.cpp",
                           "tests/store_test.cpp",
                           "tools/import.py",
                           "docs/stations.md",
                           "CMakeLists.txt",
                           "CMakePresets.json",
                           "README.md"};

struct Recent {
    const char* name;
    SpaceTheme::Icon icon;
    SpaceColor color;
    int minutes;
};

std::vector<Recent> recents()
{
    constexpr int Day = 24 * 60;
    return {{"tidal-api", SpaceTheme::Symbol{"waveform"}, SpaceColor::Harbour, 2},
            {"nimbus-web", SpaceTheme::Symbol{"cloud"}, SpaceColor::Sky, 65},
            {"ledger-core", SpaceTheme::Monogram{}, SpaceColor::Mint, Day},
            {"atlas-maps", SpaceTheme::Symbol{"map"}, SpaceColor::Tangerine, Day + 90},
            {"field-notes", SpaceTheme::Emoji{"📓"}, SpaceColor::Lemon, 3 * Day},
            {"quartz-engine", SpaceTheme::Mark{}, SpaceColor::Plum, 16 * Day}};
}

} // namespace

SampleProject::SampleProject(const SpaceTheme& look)
{
    m_harness.browser.dress = [this](FakePage& page) {
        m_pages.push_back(std::make_unique<SamplePage>());
        page.shown = m_pages.back().get();
    };
    // Paths show with "~", as they do in a home folder.
    qputenv("HOME", m_harness.home().toUtf8());
    writeFiles();
    writeRecents();
    SpaceStore::save(m_harness.shared, look, folder("tidal-api"));
}

QString SampleProject::folder(const QString& name) const
{
    return m_harness.home() + "/Documents/Claude Projects/" + name;
}

void SampleProject::writeFiles()
{
    for (const QString& file : Files) {
        const QString path = folder("tidal-api") + '/' + file;
        QDir().mkpath(QFileInfo(path).path());
        QFile out(path);
        if (!out.open(QIODevice::WriteOnly))
            continue;
        if (file.endsWith(".md"))
            out.write(Prose);
        else if (file.endsWith(".cpp"))
            out.write(Source);
        else
            out.write("\n");
    }
}

void SampleProject::writeRecents()
{
    QVariantList paths;
    const QDateTime now = m_harness.chats.clock.now();
    for (const Recent& recent : recents()) {
        const QString path = folder(recent.name);
        QDir().mkpath(path);
        paths.append(path);
        SpaceTheme look;
        look.icon = recent.icon;
        look.color = recent.color;
        SpaceStore::save(m_harness.shared, look, path);
        ProjectUse::markUsed(m_harness.shared, path, now.addSecs(-60 * recent.minutes));
    }
    m_harness.shared.set("recentFolders", paths);
}

ViewServices SampleProject::open(Where where, Theme::System system)
{
    m_workspace.reset();
    std::optional<QString> project;
    if (where == Where::Project)
        project = folder("tidal-api");
    else if (where == Where::VanishedProject)
        project = folder("gone");
    m_workspace = m_harness.make(project, Pages::Available);
    m_zoom = std::make_unique<Zoom>(m_harness.shared);
    m_theme = std::make_unique<Theme>(system, m_workspace->space());
    m_where = where;
    return services(where);
}

ViewServices SampleProject::services(Where where)
{
    return {.workspace = *m_workspace,
            .theme = *m_theme,
            .desktop = m_harness.desktop,
            .defaults = {m_harness.shared, m_harness.standard},
            .clock = m_harness.chats.clock,
            .motion = m_motion,
            .zoom = *m_zoom,
            .role = where == Where::Home ? WindowLayout::Role::HomeApplication
                                         : WindowLayout::Role::FolderApplication,
            .makePane = [this](ConsolePane& pane, Theme& look) { return makePane(pane, look); },
            .servers = &m_servers};
}

void SampleProject::openTabs()
{
    const QString root = folder("tidal-api");
    m_workspace->toggleExpanded(root + "/src");
    m_workspace->toggleExpanded(root + "/tests");
    for (const char* file : {"/README.md", "/src/routes.cpp", "/src/tide_store.cpp"})
        m_workspace->openFile(root + file);
}

FakePage& SampleProject::openPage()
{
    m_workspace->insertPage(QUrl("http://localhost:8080/stations"));
    FakePage& page = *m_harness.browser.alive.back();
    page.name = "Tidal API – Stations";
    page.back = true;
    page.loaded = 0.68;
    page.delegate.pageChanged();
    return page;
}

void SampleProject::openBlankTab(std::vector<LocalServer> servers)
{
    m_servers.found = std::move(servers);
    m_workspace->insertPage({});
}

QWidget* SampleProject::makePane(ConsolePane& pane, Theme& look)
{
    if (ClaudeChat* chat = pane.chat())
        return new ChatView(*chat, look, m_harness.chats.clock, m_files);
    auto* view = new TerminalView(services(m_where), *pane.terminal());
    const auto applyStyle = [view, &pane] { view->setStyle(pane.style()); };
    QObject::connect(&pane, &ConsolePane::styleChanged, view, applyStyle);
    applyStyle();
    return view;
}

void SampleProject::writeShell()
{
    m_harness.panes.process().write(ShellOutput);
}

void SampleProject::openConsole()
{
    TerminalPanel& panel = m_workspace->terminal();
    panel.addGroup(PaneKind::Chat, std::nullopt);
    panel.groups().back()->panes().front()->setName("Level out of range");
    panel.addPane(PaneKind::Shell);
    panel.groups().back()->panes().back()->setName("zsh");
    writeShell();
    panel.addGroup(PaneKind::Shell, std::nullopt);
    panel.groups().back()->setName("server");
    panel.activateGroup(panel.groups().front().get());
    panel.markFocused(panel.groups().front()->panes().front().get());
    panel.show();
}

void SampleProject::openThemes(std::span<const PaneTheme> themes)
{
    TerminalPanel& panel = m_workspace->terminal();
    for (const PaneTheme& theme : themes) {
        panel.addPane(PaneKind::Shell);
        writeShell();
        ConsolePane& pane = *panel.activeGroup()->focusedPane();
        pane.setName(theme.name);
        PaneStyle style;
        style.theme = theme.id;
        pane.setStyle(style);
    }
    panel.show();
}

} // namespace Bralto
