#pragma once

#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/FakeDialogs.h"
#include "Tests/Support/FakePages.h"
#include "Tests/Support/FakePanes.h"
#include "Tests/Support/MemoryDefaultsStore.h"
#include "Workspace/Workspace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <utility>

namespace Bralto {

/// A keyboard that is where the test says.
class FakeFocusReader final : public FocusReader {
public:
    [[nodiscard]] FocusArea current() const override { return area; }
    [[nodiscard]] QString focusedTabId() const override { return tabId; }

    FocusArea area = FocusArea::None;
    QString tabId;
};

/// Writes down which projects it is told to open.
class FakeProjectLauncher final : public ProjectLauncher {
public:
    using Launch = std::pair<QString, QStringList>;

    void launch(const QString& folder, const QStringList& files) override
    {
        launches.append({folder, files});
    }
    void refresh(const QString& folder) override { refreshed.append(folder); }
    void terminate() override { ++terminations; }

    QList<Launch> launches;
    QStringList refreshed;
    int terminations = 0;
};

class FakeGitWatcher final : public GitWatcher {
public:
    void watch(const QString& folder) override { watched.append(folder); }
    void refresh() override { ++refreshes; }

    QStringList watched;
    int refreshes = 0;
};

/// Whether tabs can show pages.
enum class Pages { Unavailable, Available };

/// A home folder with one real project in it, and all that a workspace needs around it.
class WorkspaceHarness {
public:
    WorkspaceHarness() { makeFolder("project"); }

    /// The workspace of the project's own process, as a launch makes it.
    [[nodiscard]] std::unique_ptr<Workspace> openProject(Pages pages = Pages::Available)
    {
        return make(project(), pages);
    }
    /// The workspace of the home application.
    [[nodiscard]] std::unique_ptr<Workspace> openHome() { return make(std::nullopt); }

    [[nodiscard]] std::unique_ptr<Workspace> make(const std::optional<QString>& folder,
                                                  Pages pages = Pages::Available)
    {
        return std::make_unique<Workspace>(services(folder, pages), Workspace::RestoreSession::Yes);
    }

    [[nodiscard]] Workspace::Services services(const std::optional<QString>& folder, Pages pages)
    {
        return {.defaults = {shared, standard},
                .legacy = legacy,
                .paths = paths,
                .scheduler = scheduler(),
                .clock = chats.clock,
                .dialogs = dialogs,
                .desktop = desktop,
                .launcher = launcher,
                .git = git,
                .focus = focus,
                .panel = panes.panelServices(shared),
                .folder = folder,
                .browser = {.pages = pages == Pages::Available ? &browser : nullptr,
                            .clock = &chats.clock,
                            .desktop = &desktop}};
    }

    [[nodiscard]] ManualScheduler& scheduler() { return chats.scheduler; }
    [[nodiscard]] QString home() const { return homeFolder.path(); }
    [[nodiscard]] QString project() const { return home() + "/project"; }
    /// The path of something in the project.
    [[nodiscard]] QString path(const QString& name) const { return project() + '/' + name; }

    void makeFolder(const QString& inHome) const { QDir(home()).mkpath(inHome); }

    /// A file of the project with its folders; its path.
    QString write(const QString& name, const QByteArray& bytes = "text") const
    {
        QDir().mkpath(QFileInfo(path(name)).path());
        QFile file(path(name));
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
        return path(name);
    }

    [[nodiscard]] static QByteArray read(const QString& file)
    {
        QFile opened(file);
        opened.open(QIODevice::ReadOnly);
        return opened.readAll();
    }

    QTemporaryDir homeFolder;
    AppPaths paths{homeFolder.path()};
    MemoryDefaultsStore shared;
    MemoryDefaultsStore standard;
    MemoryDefaultsStore legacy;
    FakePages browser;
    PaneMaker panes;
    ChatMaker& chats = panes.chats;
    FakeDialogs dialogs;
    FakeDesktop desktop;
    FakeProjectLauncher launcher;
    FakeGitWatcher git;
    FakeFocusReader focus;
};

} // namespace Bralto
