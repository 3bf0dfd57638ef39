#include "App/BraltoCommands.h"
#include "Tests/Support/WorkspaceHarness.h"

#include <gtest/gtest.h>

using namespace Bralto;
using Shortcuts::Command;

namespace {

struct BraltoCommandsTest : testing::Test {
    void openProject(Pages pages = Pages::Unavailable)
    {
        workspace = harness.openProject(pages);
        commands.emplace(BraltoCommands::Services{
            *workspace, zoom, [] { return Zoom::Area::Editor; }, [this] { ++homesOpened; },
            [](const QString&) {}, [] {}, [this] { ++clearings; }});
    }

    void openHome()
    {
        workspace = harness.openHome();
        commands.emplace(BraltoCommands::Services{*workspace, zoom,
                                                  [] { return Zoom::Area::Files; }, nullptr,
                                                  [](const QString&) {}, [] {}});
    }

    static std::optional<MenuItem> find(const std::vector<MenuItem>& items, Command command)
    {
        for (const MenuItem& item : items) {
            if (item.command == command)
                return item;
            if (auto inside = find(item.items, command))
                return inside;
        }
        return std::nullopt;
    }

    std::optional<MenuItem> find(Command command) const
    {
        for (const Menu& menu : commands->menus()) {
            if (auto item = find(menu.items, command))
                return item;
        }
        return std::nullopt;
    }

    void run(Command command) const { find(command)->run(); }

    WorkspaceHarness harness;
    Zoom zoom{harness.shared};
    std::unique_ptr<Workspace> workspace;
    std::optional<BraltoCommands> commands;
    int homesOpened = 0;
    int clearings = 0;
};

} // namespace

TEST_F(BraltoCommandsTest, WithoutAProjectItsCommandsAreDisabled)
{
    openHome();

    for (const Command command :
         {Command::NewFile, Command::NewFolder, Command::CloseFolder, Command::ToggleSidebar,
          Command::ToggleTerminalSize, Command::ToggleSplit, Command::ZoomIn, Command::ZoomOut,
          Command::ActualSize, Command::NewClaudeChat})
        EXPECT_FALSE(find(command)->isEnabled) << Shortcuts::title(command).toStdString();
    EXPECT_TRUE(find(Command::New)->isEnabled);
    EXPECT_TRUE(find(Command::Open)->isEnabled);
}

TEST_F(BraltoCommandsTest, AllProjectsIsThereInAProjectOnly)
{
    openHome();
    EXPECT_FALSE(find(Command::AllProjects));

    openProject();
    run(Command::AllProjects);
    EXPECT_EQ(homesOpened, 1);
}

TEST_F(BraltoCommandsTest, WhatIsNotThereIsAbsent)
{
    openProject();

    for (const Command command : {Command::CheckForUpdates, Command::NotificationHooks,
                                  Command::NewBrowserTab, Command::EditSpace, Command::OpenLocation,
                                  Command::ReloadPage, Command::ClearBrowsingData})
        EXPECT_FALSE(find(command)) << Shortcuts::title(command).toStdString();
}

TEST_F(BraltoCommandsTest, ThePageInSightIsLedToAnAddressAndReloadedOrStopped)
{
    openProject(Pages::Available);
    EXPECT_FALSE(find(Command::OpenLocation)->isEnabled);
    EXPECT_FALSE(find(Command::ReloadPage)->isEnabled);

    run(Command::NewBrowserTab);
    BrowserTab* tab = workspace->visibleBrowser();
    ASSERT_NE(tab, nullptr);
    const int requests = tab->addressFocusRequest();
    run(Command::OpenLocation);
    EXPECT_EQ(tab->addressFocusRequest(), requests + 1);

    tab->load(QUrl("http://one.test/"));
    FakePage& page = *harness.browser.alive.back();
    run(Command::ReloadPage);
    EXPECT_EQ(page.told, QStringList{"stop"});
    page.finish();
    run(Command::ReloadPage);
    EXPECT_EQ(page.told, (QStringList{"stop", "reload"}));
}

TEST_F(BraltoCommandsTest, WhatPagesKeptCanBeForgotten)
{
    openProject(Pages::Available);
    run(Command::ClearBrowsingData);
    EXPECT_EQ(clearings, 1);
}

TEST_F(BraltoCommandsTest, PanesAreOpenedSwappedAndStyledFromTheMenu)
{
    openProject();
    const TerminalPanel& panel = workspace->terminal();
    EXPECT_FALSE(find(Command::ToggleChatView)->isEnabled);
    EXPECT_FALSE(find(Command::StylePane)->isEnabled);
    EXPECT_FALSE(find(Command::KillTerminal)->isEnabled);

    run(Command::NewShellBeside);
    EXPECT_EQ(panel.activeGroup()->focusedPane()->kind(), PaneKind::Shell);
    EXPECT_FALSE(find(Command::ToggleChatView)->isEnabled);
    run(Command::NewClaudeBeside);
    EXPECT_EQ(panel.activeGroup()->panes().size(), 2U);
    EXPECT_TRUE(find(Command::ToggleChatView)->isEnabled);
    EXPECT_EQ(find(Command::ToggleChatView)->title, "Show as Chat");
    run(Command::NewTerminalTab);
    EXPECT_EQ(panel.groups().size(), 2U);

    run(Command::StylePane);
    EXPECT_TRUE(panel.activeGroup()->focusedPane()->isEditingStyle());
    run(Command::StylePane);
    EXPECT_FALSE(panel.activeGroup()->focusedPane()->isEditingStyle());

    run(Command::NewClaudeChat);
    EXPECT_EQ(find(Command::ToggleChatView)->title, "Show as Terminal");
    run(Command::KillTerminal);
    EXPECT_EQ(panel.activeGroup()->panes().size(), 1U);
}

TEST_F(BraltoCommandsTest, ATitleFollowsWhatItSwitches)
{
    openProject();
    EXPECT_EQ(find(Command::ToggleSidebar)->title, "Hide Sidebar");
    EXPECT_EQ(find(Command::ToggleTerminal)->title, "Show Terminal");

    run(Command::ToggleSidebar);
    run(Command::ToggleTerminal);

    EXPECT_EQ(find(Command::ToggleSidebar)->title, "Show Sidebar");
    EXPECT_EQ(find(Command::ToggleTerminal)->title, "Hide Terminal");
}

TEST_F(BraltoCommandsTest, SaveNeedsADocument)
{
    openProject();
    EXPECT_FALSE(find(Command::Save)->isEnabled);
    EXPECT_FALSE(find(Command::SaveAll)->isEnabled);
    EXPECT_FALSE(find(Command::RevealInFinder)->isEnabled);

    workspace->openFile(harness.write("a.txt"));

    EXPECT_TRUE(find(Command::Save)->isEnabled);
    EXPECT_TRUE(find(Command::SaveAll)->isEnabled);
    EXPECT_TRUE(find(Command::RevealInFinder)->isEnabled);
}

TEST_F(BraltoCommandsTest, RecentFoldersStandInTheirMenuUntilItIsCleared)
{
    openProject();
    EXPECT_FALSE(find(Command::OpenRecent)->isEnabled);
    harness.makeFolder("other");
    workspace->rememberRecent(harness.home() + "/other");

    const MenuItem recent = *find(Command::OpenRecent);
    ASSERT_EQ(recent.items.size(), 3U);
    EXPECT_EQ(recent.items[0].title, "other");
    EXPECT_TRUE(recent.items[1].isSeparator());
    recent.items[0].run();
    ASSERT_EQ(harness.launcher.launches.size(), 1);
    EXPECT_EQ(harness.launcher.launches.first().first, harness.home() + "/other");

    run(Command::ClearMenu);
    EXPECT_TRUE(workspace->recentFolders().isEmpty());
    EXPECT_FALSE(harness.shared.contains("recentFolders"));
}

TEST_F(BraltoCommandsTest, CloseClosesThePaneThatHasTheKeyboardElseTheTab)
{
    openProject();
    workspace->openFile(harness.write("a.txt"));
    workspace->terminal().addPane(PaneKind::Chat);
    harness.focus.area = FocusArea::Terminal;
    run(Command::Close);
    EXPECT_FALSE(workspace->terminal().hasPanes());
    EXPECT_EQ(workspace->tabs().size(), 1U);

    harness.focus.area = FocusArea::Content;
    run(Command::Close);
    EXPECT_TRUE(workspace->tabs().empty());
}

TEST_F(BraltoCommandsTest, ZoomActsOnTheFocusedArea)
{
    openProject();

    run(Command::ZoomIn);
    EXPECT_EQ(zoom.level(Zoom::Area::Editor), 1.1);
    run(Command::ActualSize);
    EXPECT_EQ(zoom.level(Zoom::Area::Editor), 1.0);
}
