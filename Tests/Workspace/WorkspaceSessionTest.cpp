#include "Terminals/TerminalStore.h"
#include "Tests/Support/WorkspaceHarness.h"
#include "Workspace/SessionStore.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

const QString Chat = "3f2504e0-4f89-41d3-9a0c-0305e82c3301";

/// What one launch saves and the next one finds.
struct WorkspaceSessionTest : testing::Test {
    void keep(const SessionStore::Session& session)
    {
        SessionStore::save(desk.shared, session, desk.project());
    }
    [[nodiscard]] SessionStore::Session kept() const
    {
        return SessionStore::load(desk.shared, desk.project());
    }
    [[nodiscard]] QString token(const QString& name) const { return "file:" + desk.path(name); }

    static QStringList titles(const Workspace& workspace)
    {
        QStringList result;
        for (const WorkspaceTab& tab : workspace.tabs())
            result.append(tab.title());
        return result;
    }

    WorkspaceHarness desk;
};

} // namespace

// --- restoring

TEST_F(WorkspaceSessionTest, AProjectComesBackAsItWasLeft)
{
    desk.write("a");
    {
        const auto workspace = desk.openProject();
        workspace->openFile(desk.path("a"));
        workspace->insertPage(QUrl("http://one.test/a?b=c%20d"));
        workspace->openFile(desk.write("b"));
        workspace->openInSplit(workspace->tabs().front());
    }

    const auto workspace = desk.openProject();

    EXPECT_EQ(titles(*workspace), QStringList({"a", "one.test", "b"}));
    EXPECT_EQ(workspace->activeTab()->title(), "b");
    EXPECT_EQ(workspace->splitTab()->title(), "a");
    EXPECT_EQ(workspace->tabs()[1].browser()->url(), QUrl("http://one.test/a?b=c%20d"));
    EXPECT_EQ(workspace->sidebarSelection(),
              SidebarItem{SidebarItem::Open{workspace->activeTabId()}});
    EXPECT_EQ(desk.git.watched, QStringList({desk.project(), desk.project()}));
    EXPECT_EQ(workspace->terminal().directory(), desk.project());
}

TEST_F(WorkspaceSessionTest, AnActiveFileThatWasDeletedLeavesTheFirstTabActive)
{
    desk.write("a");
    desk.write("b");
    keep({{token("a"), token("gone"), token("b")}, token("gone"), {}});

    const auto workspace = desk.openProject();

    EXPECT_EQ(titles(*workspace), QStringList({"a", "b"}));
    EXPECT_EQ(workspace->activeTab()->title(), "a");
}

TEST_F(WorkspaceSessionTest, TokensThatMakeNoTabAreSkipped)
{
    desk.write("a");
    keep({{"", "file:", "file:a", "web:", "web:no address", "web:relative/path", "telnet:x",
           token("a"), token("a"), "web:http://one.test/"},
          {},
          {}});

    EXPECT_EQ(titles(*desk.openProject()), QStringList({"a", "one.test"}));
}

TEST_F(WorkspaceSessionTest, TheSplitTabIsNeverTheActiveOne)
{
    desk.write("a");
    keep({{token("a")}, token("a"), token("a")});

    EXPECT_TRUE(desk.openProject()->splitTabId().isEmpty());
}

TEST_F(WorkspaceSessionTest, AnOldChatTabBecomesAPaneOnce)
{
    desk.write("a");
    keep({{"chat:" + Chat.toUpper(), token("a"), "chat:" + Chat}, "chat:" + Chat, {}});

    const auto first = desk.openProject();
    ASSERT_EQ(first->terminal().groups().size(), 1U);
    EXPECT_EQ(first->terminal().groups()[0]->panes()[0]->claudeSessionId(), Chat);
    EXPECT_TRUE(first->terminal().isVisible());
    EXPECT_EQ(titles(*first), QStringList("a"));
    EXPECT_EQ(kept().tabs, QStringList(token("a")));

    // Without another save, as after a crash.
    const auto second = desk.openProject();
    EXPECT_EQ(second->terminal().groups().size(), 1U);
}

TEST_F(WorkspaceSessionTest, TheHomeApplicationHasNoProject)
{
    const auto workspace = desk.openHome();

    EXPECT_EQ(workspace->root(), nullptr);
    EXPECT_FALSE(workspace->isRootMissing());
    EXPECT_EQ(workspace->terminal().directory(), desk.home());
    EXPECT_FALSE(workspace->selectedFolder());
    EXPECT_TRUE(desk.git.watched.isEmpty());

    workspace->persistSession();
    workspace->refreshTree();
    workspace->createFile(std::nullopt);
    workspace->createFolder(std::nullopt);
    EXPECT_TRUE(desk.dialogs.prompts.isEmpty());
}

TEST_F(WorkspaceSessionTest, AProjectWhoseFolderHasGoneOpensWithoutARoot)
{
    keep({{"web:http://one.test/"}, {}, {}});
    ASSERT_TRUE(QDir(desk.project()).removeRecursively());

    const auto workspace = desk.openProject();

    EXPECT_EQ(workspace->root(), nullptr);
    EXPECT_TRUE(workspace->tabs().empty());
}

TEST_F(WorkspaceSessionTest, WithoutRestoringNothingIsRead)
{
    desk.write("a");
    keep({{token("a")}, {}, {}});

    const Workspace workspace(desk.services(desk.project(), Pages::Available),
                              Workspace::RestoreSession::No);

    EXPECT_EQ(workspace.root(), nullptr);
    EXPECT_TRUE(workspace.tabs().empty());
    EXPECT_EQ(workspace.terminal().directory(), desk.home());
}

TEST_F(WorkspaceSessionTest, OnlyTheRootAndNoFolderOfTheProjectIsListedOrRead)
{
    desk.makeFolder("project/deep/deeper");

    const auto workspace = desk.openProject();

    EXPECT_FALSE(workspace->root()->isListed());
    EXPECT_EQ(workspace->root()->children().size(), 1U);
    EXPECT_FALSE(workspace->root()->children().front()->isListed());
}

// --- keeping

TEST_F(WorkspaceSessionTest, TheSessionFollowsEveryChange)
{
    desk.write("a");
    desk.write("b");
    const auto workspace = desk.openProject();

    workspace->openFile(desk.path("a"));
    workspace->openFile(desk.path("b"));
    EXPECT_EQ(kept(), (SessionStore::Session{{token("a"), token("b")}, token("b"), {}}));

    workspace->toggleSplit();
    EXPECT_EQ(kept().split, token("a"));

    workspace->toggleSplit();
    EXPECT_EQ(kept().split, std::nullopt);

    workspace->close(*workspace->activeTab());
    EXPECT_EQ(kept(), (SessionStore::Session{{token("a")}, token("a"), {}}));
}

TEST_F(WorkspaceSessionTest, ABlankPageIsNotKept)
{
    {
        const auto workspace = desk.openProject();
        workspace->insertPage({});
        workspace->insertPage({});
        workspace->persistSession();
    }

    EXPECT_EQ(kept(), SessionStore::Session{});
    EXPECT_EQ(desk.shared.value("session:" + desk.project()).toMap().keys(), QStringList("tabs"));
    EXPECT_TRUE(desk.openProject()->tabs().empty());
}

TEST_F(WorkspaceSessionTest, EveryPanelThatWasOpenedIsKept)
{
    {
        const auto workspace = desk.openProject();
        workspace->terminal().show();
        workspace->panel(std::nullopt).newTab(std::nullopt);
        workspace->persistTerminals();
    }

    EXPECT_EQ(TerminalStore::load(desk.paths, desk.project())->groups.size(), 1U);
    EXPECT_EQ(TerminalStore::load(desk.paths, desk.home())->groups.size(), 1U);
    EXPECT_TRUE(desk.openProject()->terminal().isVisible());
}

TEST_F(WorkspaceSessionTest, APanelIsMadeOncePerFolder)
{
    const auto workspace = desk.openProject();

    EXPECT_EQ(&workspace->panel(desk.project() + "/"), &workspace->terminal());
    EXPECT_EQ(&workspace->panel(std::nullopt), &workspace->panel(desk.home()));
    EXPECT_NE(&workspace->panel(std::nullopt), &workspace->terminal());
}

TEST_F(WorkspaceSessionTest, ADamagedPanelFileGivesAFreshPanel)
{
    ASSERT_TRUE(QDir().mkpath(desk.paths.terminals()));
    QFile file(TerminalStore::file(desk.paths, desk.project()));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{");
    file.close();

    EXPECT_FALSE(desk.openProject()->terminal().hasPanes());
}

TEST_F(WorkspaceSessionTest, LeavingAProjectKeepsEverythingAndEndsItsProcess)
{
    desk.write("a");
    const auto workspace = desk.openProject();
    workspace->openFile(desk.path("a"));
    workspace->activeTab()->document()->setText("edited");
    workspace->terminal().show();

    workspace->closeFolder();

    EXPECT_EQ(desk.read(desk.path("a")), "edited");
    EXPECT_EQ(kept().tabs, QStringList(token("a")));
    EXPECT_TRUE(TerminalStore::load(desk.paths, desk.project()));
    EXPECT_EQ(desk.launcher.terminations, 1);
    EXPECT_EQ(workspace->tabs().size(), 1U);
}

TEST_F(WorkspaceSessionTest, ATextThatCannotBeSavedKeepsTheProjectOpen)
{
    desk.write("sub/a");
    const auto workspace = desk.openProject();
    workspace->openFile(desk.path("sub/a"));
    workspace->activeTab()->document()->setText("edited");
    ASSERT_TRUE(QDir(desk.path("sub")).removeRecursively());

    workspace->closeFolder();

    EXPECT_EQ(desk.launcher.terminations, 0);
    EXPECT_EQ(desk.dialogs.alerts.size(), 1);
}

TEST_F(WorkspaceSessionTest, TheHomeApplicationIsEmptiedInstead)
{
    const auto workspace = desk.openHome();
    workspace->openFile(desk.write("a"));
    workspace->insertPage(QUrl("http://one.test/"));
    workspace->toggleSplit();

    workspace->closeFolder();

    EXPECT_TRUE(workspace->tabs().empty());
    EXPECT_TRUE(workspace->activeTabId().isEmpty());
    EXPECT_TRUE(workspace->splitTabId().isEmpty());
    EXPECT_FALSE(workspace->sidebarSelection());
    EXPECT_EQ(desk.launcher.terminations, 0);
}

// --- settings

TEST_F(WorkspaceSessionTest, TheSplitIsClampedOnEveryWriteAndRead)
{
    const auto workspace = desk.openProject();
    EXPECT_EQ(workspace->splitFraction(), 0.5);

    workspace->setSplitFraction(0.95);
    EXPECT_EQ(workspace->splitFraction(), 0.8);
    EXPECT_EQ(desk.standard.value("splitFraction"), QVariant(0.8));
    workspace->setSplitFraction(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(workspace->splitFraction(), 0.8);
    workspace->setSplitFraction(0);
    EXPECT_EQ(workspace->splitFraction(), 0.2);

    desk.standard.set("splitFraction", 7.0);
    EXPECT_EQ(desk.openProject()->splitFraction(), 0.8);
    desk.standard.set("splitFraction", "wide");
    EXPECT_EQ(desk.openProject()->splitFraction(), 0.5);
}

TEST_F(WorkspaceSessionTest, TheSidebarsStateIsTheProjectsOwn)
{
    const auto workspace = desk.openProject();
    EXPECT_TRUE(workspace->isSidebarVisible());

    workspace->toggleSidebar();

    EXPECT_FALSE(workspace->isSidebarVisible());
    EXPECT_EQ(desk.standard.boolean("sidebarVisible"), false);
    EXPECT_FALSE(desk.shared.contains("sidebarVisible"));
    EXPECT_FALSE(desk.openProject()->isSidebarVisible());
    desk.standard.set("sidebarVisible", 0LL);
    EXPECT_TRUE(desk.openProject()->isSidebarVisible());
}

TEST_F(WorkspaceSessionTest, AutosaveIsKeptAndAskedAtEachEdit)
{
    const auto workspace = desk.openProject();
    workspace->openFile(desk.write("a"));
    EditorDocument* document = workspace->activeTab()->document();
    EXPECT_TRUE(workspace->autosaveEnabled());

    workspace->setAutosaveEnabled(false);
    document->setText("edited");
    document->scheduleAutosave();
    EXPECT_EQ(desk.scheduler().waiting(), 0);

    workspace->setAutosaveEnabled(true);
    document->scheduleAutosave();
    EXPECT_EQ(desk.scheduler().waiting(), 1);
    EXPECT_EQ(desk.shared.boolean("autosave"), true);
}

TEST_F(WorkspaceSessionTest, ANewLookIsKeptForTheProjectAndItsBundle)
{
    const auto workspace = desk.openProject();
    EXPECT_EQ(workspace->space(), SpaceTheme::automatic(desk.project()));
    const QSignalSpy changes(workspace.get(), &Workspace::spaceChanged);
    SpaceTheme look = workspace->space();
    workspace->setSpace(look);
    EXPECT_TRUE(desk.launcher.refreshed.isEmpty());

    look.grain = 1;
    workspace->setSpace(look);

    EXPECT_EQ(desk.launcher.refreshed, QStringList(desk.project()));
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(desk.openProject()->space(), look);
}

TEST_F(WorkspaceSessionTest, OpeningAProjectWritesNoLook)
{
    (void)desk.openProject();

    EXPECT_FALSE(desk.shared.contains("spaces"));
    EXPECT_TRUE(desk.launcher.refreshed.isEmpty());
}

TEST_F(WorkspaceSessionTest, WithoutASharedDomainItsKeysLandInTheProcesssOwn)
{
    Workspace::Services services = desk.services(desk.project(), Pages::Available);
    Workspace workspace({.defaults = {desk.standard, desk.standard},
                         .legacy = services.legacy,
                         .paths = services.paths,
                         .scheduler = services.scheduler,
                         .clock = services.clock,
                         .dialogs = services.dialogs,
                         .desktop = services.desktop,
                         .launcher = services.launcher,
                         .git = services.git,
                         .focus = services.focus,
                         .panel = services.panel,
                         .folder = services.folder,
                         .browser = services.browser},
                        Workspace::RestoreSession::Yes);

    workspace.setShowHiddenFiles(true);
    workspace.openFile(desk.write("a"));
    workspace.rememberRecent(desk.home());

    EXPECT_TRUE(desk.shared.keys().isEmpty());
    for (const QString& key :
         {QString("showHiddenFiles"), "session:" + desk.project(), QString("recentFolders"),
          QString("projectLastUsed"), QString("migrated.v1")})
        EXPECT_TRUE(desk.standard.contains(key)) << key.toStdString();
}

// --- the panel

TEST_F(WorkspaceSessionTest, ThePaneOfAConversationIsBroughtToTheFront)
{
    const auto workspace = desk.openProject();
    TerminalPanel& panel = workspace->terminal();
    panel.addPane(PaneKind::Claude);
    const QString session = panel.activeGroup()->focusedPane()->claudeSessionId();
    panel.newTab(std::nullopt);
    panel.hide();

    EXPECT_FALSE(workspace->revealClaudePane("no such conversation"));
    EXPECT_FALSE(panel.isVisible());

    EXPECT_TRUE(workspace->revealClaudePane(session.toUpper()));
    EXPECT_TRUE(panel.isVisible());
    EXPECT_EQ(panel.activeGroup()->focusedPane()->claudeSessionId(), session);
}

// --- recent folders

TEST_F(WorkspaceSessionTest, TheSeventhFolderPushesTheOldestOut)
{
    const auto workspace = desk.openHome();
    QStringList folders;
    for (int index = 0; index < 7; ++index) {
        desk.makeFolder(QString::number(index));
        folders.prepend(desk.home() + '/' + QString::number(index));
        workspace->openFolder(folders.first(), {});
    }

    EXPECT_EQ(workspace->recentFolders(), folders.first(6));
    EXPECT_EQ(desk.shared.strings("recentFolders"), folders.first(6));

    workspace->openFolder(folders[3] + "/", {});
    EXPECT_EQ(workspace->recentFolders().first(), folders[3]);
    EXPECT_EQ(workspace->recentFolders().size(), 6);
}

TEST_F(WorkspaceSessionTest, FoldersThatHaveGoneAreForgottenAtTheNextLaunch)
{
    desk.makeFolder("there");
    desk.shared.setStrings("recentFolders", {desk.home() + "/gone", desk.home() + "/there"});

    EXPECT_EQ(desk.openHome()->recentFolders(), QStringList(desk.home() + "/there"));
}

TEST_F(WorkspaceSessionTest, WhatAnotherProcessOpenedIsNotOverwritten)
{
    desk.makeFolder("a");
    desk.makeFolder("b");
    const auto one = desk.openHome();
    const auto other = desk.openProject();
    const QSignalSpy changes(one.get(), &Workspace::recentFoldersChanged);

    other->openFolder(desk.home() + "/a", {});
    EXPECT_EQ(changes.count(), 1);
    one->openFolder(desk.home() + "/b", {});

    EXPECT_EQ(desk.shared.strings("recentFolders"),
              QStringList({desk.home() + "/b", desk.home() + "/a"}));
    EXPECT_EQ(other->recentFolders(), one->recentFolders());
}

TEST_F(WorkspaceSessionTest, TheListCanBeCleared)
{
    const auto workspace = desk.openHome();
    workspace->rememberRecent(desk.project());

    workspace->clearRecents();

    EXPECT_TRUE(workspace->recentFolders().isEmpty());
    EXPECT_FALSE(desk.shared.contains("recentFolders"));
}

TEST_F(WorkspaceSessionTest, UseIsMarkedForTheProjectAndForWhatIsOpened)
{
    desk.makeFolder("other");
    const auto workspace = desk.openProject();
    workspace->markUsed();
    desk.chats.clock.advance(std::chrono::hours(1));
    workspace->openFolder(desk.home() + "/other", {});

    const QVariantMap used = desk.shared.dictionary("projectLastUsed").value_or(QVariantMap());
    EXPECT_EQ(used[desk.project()].toDateTime().addSecs(3600), desk.chats.clock.now());
    EXPECT_EQ(used[desk.home() + "/other"].toDateTime(), desk.chats.clock.now());

    desk.openHome()->markUsed();
    EXPECT_EQ(desk.shared.dictionary("projectLastUsed"), used);
}
