#pragma once

#include "Browser/LocalServers.h"
#include "Chat/ChatFileIndex.h"
#include "Tests/Support/WorkspaceHarness.h"
#include "Views/ViewServices.h"

#include <span>
#include <vector>

namespace Bralto {

/// A project with files in it, a home with a few projects, and the services that views are made
/// with. Everything lies in a folder of its own that goes with this object.
class SampleProject {
public:
    explicit SampleProject(const SpaceTheme& look);

    /// A project's window or the home application's, and who plays it.
    enum class Where { Project, Home, VanishedProject };

    /// Builds the workspace and the theme anew.
    ViewServices open(Where where, Theme::System system);
    [[nodiscard]] Workspace& workspace() const { return *m_workspace; }
    [[nodiscard]] Theme& theme() const { return *m_theme; }
    /// Opens the tabs of the sample, the second file active.
    void openTabs();
    /// A tab with a page that has come half of its way; the page itself.
    FakePage& openPage();
    /// A blank tab, and servers that run.
    void openBlankTab(std::vector<LocalServer> servers);
    /// A conversation and a shell side by side, and a tab with another shell.
    void openConsole();
    /// A tab with a shell for each of the themes, which shows what a terminal of it looks like.
    void openThemes(std::span<const PaneTheme> themes);

private:
    [[nodiscard]] ViewServices services(Where where);
    [[nodiscard]] QWidget* makePane(ConsolePane& pane, Theme& look);
    /// The newest shell has written a build's last lines.
    void writeShell();
    void writeFiles();
    void writeRecents();
    [[nodiscard]] QString folder(const QString& name) const;

    class SampleServers final : public LocalServers {
    public:
        void scan(std::function<void(const std::vector<LocalServer>&)> done) override
        {
            done(found);
        }
        std::vector<LocalServer> found;
    };

    WorkspaceHarness m_harness;
    SampleServers m_servers;
    std::vector<std::unique_ptr<QWidget>> m_pages; ///< What the pages show.
    ChatFileIndex m_files;
    Motion m_motion{m_harness.scheduler()};
    std::unique_ptr<Zoom> m_zoom;
    std::unique_ptr<Theme> m_theme;
    std::unique_ptr<Workspace> m_workspace;
    Where m_where = Where::Project;
};

} // namespace Bralto
