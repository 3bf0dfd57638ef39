#include "Tools/ViewGallery/SampleProject.h"

#include "Projects/ProjectUse.h"

#include <QWidget>

namespace Bralto {
namespace {

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
    m_workspace = m_harness.make(project, Pages::Unavailable);
    m_zoom = std::make_unique<Zoom>(m_harness.shared);
    m_theme = std::make_unique<Theme>(system, m_workspace->space());
    return {.workspace = *m_workspace,
            .theme = *m_theme,
            .desktop = m_harness.desktop,
            .defaults = {m_harness.shared, m_harness.standard},
            .clock = m_harness.chats.clock,
            .motion = m_motion,
            .zoom = *m_zoom,
            .role = where == Where::Home ? WindowLayout::Role::HomeApplication
                                         : WindowLayout::Role::FolderApplication,
            .makePane = [](ConsolePane&, Theme&) { return new QWidget; }};
}

void SampleProject::openTabs()
{
    const QString root = folder("tidal-api");
    m_workspace->toggleExpanded(root + "/src");
    m_workspace->toggleExpanded(root + "/tests");
    for (const char* file : {"/README.md", "/src/routes.cpp", "/src/tide_store.cpp"})
        m_workspace->openFile(root + file);
}

void SampleProject::openConsole(int conversations)
{
    m_workspace->terminal().show();
    for (int at = 1; at < conversations; ++at)
        m_workspace->terminal().addPane(PaneKind::Chat);
}

} // namespace Bralto
