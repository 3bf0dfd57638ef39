#include "Tests/Support/WorkspaceHarness.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct WorkspaceFilesTest : testing::Test {
    [[nodiscard]] QStringList tree() const
    {
        QStringList names;
        for (const auto& node : workspace->root()->children())
            names.append(node->name());
        return names;
    }

    [[nodiscard]] QStringList openPaths() const
    {
        QStringList paths;
        for (const EditorDocument* document : workspace->documents())
            paths.append(workspace->relativePath(document->path()));
        return paths;
    }

    EditorDocument* open(const QString& name)
    {
        workspace->openFile(desk.path(name));
        return workspace->activeTab()->document();
    }

    [[nodiscard]] Alert onlyAlert() const
    {
        EXPECT_EQ(desk.dialogs.alerts.size(), 1);
        return desk.dialogs.alerts.value(0);
    }

    WorkspaceHarness desk;
    std::unique_ptr<Workspace> workspace = desk.openProject();
};

} // namespace

// --- opening

TEST_F(WorkspaceFilesTest, OpeningTheProjectItselfOpensItsFilesHere)
{
    const QString a = desk.write("a");
    const QString b = desk.write("b");

    workspace->openFolder(desk.project() + "/", {a, b});

    EXPECT_EQ(openPaths(), QStringList({"a", "b"}));
    EXPECT_TRUE(desk.launcher.launches.isEmpty());
}

TEST_F(WorkspaceFilesTest, AFileOpensWithTheCursorWhereItWasAskedFor)
{
    const QString file = desk.write("a", "one\ntwo\n");

    workspace->openFileAt(file, 2, 3);
    const EditorDocument& document = *workspace->activeTab()->document();
    EXPECT_EQ(document.cursorLine(), 2);
    EXPECT_EQ(document.cursorColumn(), 3);

    workspace->openFileAt(file, 1, 0);
    EXPECT_EQ(document.cursorLine(), 1);
    EXPECT_EQ(document.cursorColumn(), 1);
    workspace->openFileAt(file, 0, 0);
    EXPECT_EQ(document.cursorLine(), 1);
    EXPECT_EQ(workspace->tabs().size(), 1U);
}

TEST_F(WorkspaceFilesTest, OpeningAnotherProjectLaunchesItAndLeavesTheTabs)
{
    desk.write("a");
    open("a");
    desk.makeFolder("other");

    workspace->openFolder(desk.home() + "/other/", {"/x"});

    EXPECT_EQ(desk.launcher.launches,
              QList<FakeProjectLauncher::Launch>({{desk.home() + "/other", {"/x"}}}));
    EXPECT_EQ(openPaths(), QStringList("a"));
    EXPECT_EQ(workspace->root()->path(), desk.project());
    EXPECT_EQ(workspace->recentFolders(), QStringList(desk.home() + "/other"));
}

TEST_F(WorkspaceFilesTest, APathIsOpenedAsWhatItIs)
{
    desk.makeFolder("project2");
    QFile outside(desk.home() + "/project2/b");
    ASSERT_TRUE(outside.open(QIODevice::WriteOnly));

    workspace->open(desk.path("gone"));
    EXPECT_TRUE(workspace->tabs().empty());

    workspace->open(desk.write("sub/a"));
    EXPECT_EQ(openPaths(), QStringList("sub/a"));

    workspace->open(outside.fileName());
    workspace->open(desk.home() + "/project2");
    EXPECT_EQ(openPaths(), QStringList("sub/a"));
    EXPECT_EQ(desk.launcher.launches,
              QList<FakeProjectLauncher::Launch>({{desk.home() + "/project2", {outside.fileName()}},
                                                  {desk.home() + "/project2", {}}}));
}

TEST_F(WorkspaceFilesTest, TheOpenPanelOpensWhatWasPicked)
{
    workspace->presentOpenPanel();
    EXPECT_TRUE(workspace->tabs().empty());

    desk.dialogs.paths = {desk.write("a")};
    workspace->presentOpenPanel();
    EXPECT_EQ(openPaths(), QStringList("a"));
}

// --- creating

TEST_F(WorkspaceFilesTest, ANewFileIsEmptyShownAndOpened)
{
    desk.makeFolder("project/sub");
    desk.dialogs.texts = {"notes.md"};

    workspace->createFile(desk.path("sub"));

    EXPECT_EQ(
        desk.dialogs.prompts.value(0),
        (TextPrompt{"New File", "Name the file. Include an extension, like notes.md.", {}, {}}));
    EXPECT_EQ(desk.read(desk.path("sub/notes.md")), "");
    EXPECT_EQ(openPaths(), QStringList("sub/notes.md"));
}

TEST_F(WorkspaceFilesTest, ANewFileWithoutAFolderStandsInTheProject)
{
    desk.dialogs.texts = {"notes.md", std::nullopt};

    workspace->createFile(std::nullopt);
    workspace->createFile(std::nullopt);

    EXPECT_EQ(tree(), QStringList("notes.md"));
    EXPECT_TRUE(desk.dialogs.alerts.isEmpty());
}

TEST_F(WorkspaceFilesTest, ANameThatIsTakenIsRefused)
{
    desk.write("notes.md", "kept");
    desk.dialogs.texts = {"notes.md"};

    workspace->createFile(std::nullopt);

    EXPECT_EQ(onlyAlert(),
              (Alert{"“notes.md” already exists",
                     "Choose a different name, or open the existing file from the sidebar."}));
    EXPECT_EQ(desk.read(desk.path("notes.md")), "kept");
    EXPECT_TRUE(workspace->tabs().empty());
}

TEST_F(WorkspaceFilesTest, AFileThatCannotBeMadeIsReportedAndNotOpened)
{
    desk.dialogs.texts = {"gone/notes.md"};

    workspace->createFile(std::nullopt);

    EXPECT_EQ(onlyAlert().title, "Couldn’t create “gone/notes.md”");
    EXPECT_TRUE(workspace->tabs().empty());
}

TEST_F(WorkspaceFilesTest, ANewFolderShowsInTheTree)
{
    desk.dialogs.texts = {"a/b"};

    workspace->createFolder(std::nullopt);

    EXPECT_EQ(desk.dialogs.prompts.value(0),
              (TextPrompt{"New Folder", "Name the folder.", {}, {}}));
    EXPECT_EQ(tree(), QStringList("a"));
    EXPECT_TRUE(QFileInfo(desk.path("a/b")).isDir());
}

TEST_F(WorkspaceFilesTest, AFolderThatCannotBeMadeIsReportedInTheSystemsWords)
{
    desk.write("a");
    desk.dialogs.texts = {"a/b"};

    workspace->createFolder(std::nullopt);

    EXPECT_EQ(onlyAlert(), (Alert{"Couldn’t create “a/b”", "Not a directory"}));
}

TEST_F(WorkspaceFilesTest, WhatIsNewDependsOnWhereTheKeyboardIs)
{
    desk.makeFolder("project/sub");
    workspace->setSidebarSelection(SidebarItem{SidebarItem::Folder{desk.path("sub")}});
    desk.focus.area = FocusArea::Sidebar;
    desk.dialogs.texts = {"a"};
    workspace->newInFocusedArea();
    EXPECT_EQ(openPaths(), QStringList("sub/a"));

    desk.focus.area = FocusArea::Terminal;
    workspace->newInFocusedArea();
    EXPECT_TRUE(workspace->terminal().isVisible());
    EXPECT_EQ(workspace->terminal().groups().size(), 1U);

    desk.focus.area = FocusArea::Content;
    workspace->newInFocusedArea();
    ASSERT_TRUE(workspace->activeTab()->browser());

    desk.focus.area = FocusArea::None;
    workspace->newInFocusedArea();
    EXPECT_EQ(workspace->tabs().size(), 3U);
    EXPECT_EQ(desk.dialogs.prompts.size(), 1);
}

TEST_F(WorkspaceFilesTest, WithNeitherFocusNorTabAFileIsNew)
{
    desk.dialogs.texts = {"a"};

    workspace->newInFocusedArea();

    EXPECT_EQ(openPaths(), QStringList("a"));
}

TEST_F(WorkspaceFilesTest, WithoutPagesAFileIsNewInTheirPlace)
{
    workspace = desk.openProject(Pages::Unavailable);
    desk.dialogs.texts = {"a", "b"};

    desk.focus.area = FocusArea::Content;
    workspace->newInFocusedArea();
    desk.focus.area = FocusArea::None;
    workspace->newInFocusedArea();

    EXPECT_EQ(openPaths(), QStringList({"a", "b"}));
}

TEST_F(WorkspaceFilesTest, TheSelectedFolderIsTheFolderOrTheFilesOwnElseTheProject)
{
    EXPECT_EQ(workspace->selectedFolder(), desk.project());
    workspace->setSidebarSelection(SidebarItem{SidebarItem::Folder{desk.path("sub")}});
    EXPECT_EQ(workspace->selectedFolder(), desk.path("sub"));
    workspace->setSidebarSelection(SidebarItem{SidebarItem::File{desk.path("sub/a")}});
    EXPECT_EQ(workspace->selectedFolder(), desk.path("sub"));
    workspace->setSidebarSelection(SidebarItem{SidebarItem::Open{"x"}});
    EXPECT_EQ(workspace->selectedFolder(), desk.project());
}

// --- renaming

TEST_F(WorkspaceFilesTest, RenamingAFolderMovesTheDocumentsInsideItAndNoOthers)
{
    for (const QString name : {"src/a", "src/deep/b", "src2/c", "src.txt"}) {
        desk.write(name);
        open(name);
    }
    desk.dialogs.texts = {"lib"};

    workspace->rename(desk.path("src"));

    EXPECT_EQ(desk.dialogs.prompts.value(0),
              (TextPrompt{"Rename", "Enter a new name for “src”", {}, "src"}));
    EXPECT_EQ(openPaths(), QStringList({"lib/a", "lib/deep/b", "src2/c", "src.txt"}));
    EXPECT_EQ(tree(), QStringList({"lib", "src2", "src.txt"}));
    EXPECT_TRUE(desk.shared.value("session:" + desk.project())
                    .toMap()["tabs"]
                    .toList()
                    .contains("file:" + desk.path("lib/a")));
}

TEST_F(WorkspaceFilesTest, ARenamedDocumentSavesUnderItsNewName)
{
    desk.write("a.txt");
    EditorDocument* document = open("a.txt");
    document->setText("edited");
    desk.dialogs.texts = {"b.txt"};

    workspace->rename(desk.path("a.txt"));
    workspace->saveAll();

    EXPECT_EQ(desk.read(desk.path("b.txt")), "edited");
    EXPECT_FALSE(QFileInfo::exists(desk.path("a.txt")));
}

TEST_F(WorkspaceFilesTest, TheSameNameOrNoneRenamesNothing)
{
    desk.write("a");
    desk.dialogs.texts = {"a", std::nullopt};
    const QSignalSpy trees(workspace.get(), &Workspace::rootChanged);

    workspace->rename(desk.path("a"));
    workspace->rename(desk.path("a"));

    EXPECT_EQ(trees.count(), 0);
    EXPECT_TRUE(desk.dialogs.alerts.isEmpty());
}

TEST_F(WorkspaceFilesTest, ARenameThatFailsIsReportedAndChangesNothing)
{
    desk.write("a", "A");
    desk.write("b", "B");
    open("a");
    desk.dialogs.texts = {"b"};

    workspace->rename(desk.path("a"));

    EXPECT_EQ(onlyAlert(), (Alert{"Couldn’t rename “a”", "File exists"}));
    EXPECT_EQ(openPaths(), QStringList("a"));
    EXPECT_EQ(desk.read(desk.path("b")), "B");
}

// --- trash and copies

TEST_F(WorkspaceFilesTest, TrashingAFolderClosesItsDocumentsWithoutAQuestionAndForGood)
{
    for (const QString name : {"src/a", "src2/b"}) {
        desk.write(name);
        open(name)->setText("edited");
    }
    workspace->documents().front()->scheduleAutosave();
    // The desktop of this test leaves the files to it.
    ASSERT_TRUE(QDir(desk.path("src")).removeRecursively());

    workspace->moveToTrash(desk.path("src"));
    desk.scheduler().advance(std::chrono::seconds(2));

    EXPECT_EQ(desk.desktop.trashed, QStringList(desk.path("src")));
    EXPECT_EQ(openPaths(), QStringList("src2/b"));
    EXPECT_TRUE(desk.dialogs.alerts.isEmpty());
    EXPECT_FALSE(QFileInfo::exists(desk.path("src")));
    EXPECT_EQ(tree(), QStringList("src2"));
}

TEST_F(WorkspaceFilesTest, ATrashThatFailsIsReportedAndClosesNothing)
{
    desk.write("a");
    open("a")->setText("edited");
    desk.desktop.trashFailure = "The trash is full.";

    workspace->moveToTrash(desk.path("a"));

    EXPECT_EQ(onlyAlert(), (Alert{"Couldn’t move “a” to the Trash", "The trash is full."}));
    EXPECT_EQ(openPaths(), QStringList("a"));
    EXPECT_EQ(workspace->documents().front()->text(), "edited");
}

TEST_F(WorkspaceFilesTest, CopiesAppearInTheTreeOneAfterTheOther)
{
    desk.write("a.tar.gz", "A");
    QSignalSpy trees(workspace.get(), &Workspace::rootChanged);

    workspace->duplicate(desk.path("a.tar.gz"));
    workspace->duplicate(desk.path("a.tar.gz"));
    while (trees.count() < 2)
        ASSERT_TRUE(trees.wait());

    EXPECT_EQ(tree(), QStringList({"a.tar copy 2.gz", "a.tar copy.gz", "a.tar.gz"}));
    EXPECT_EQ(desk.read(desk.path("a.tar copy 2.gz")), "A");
}

TEST_F(WorkspaceFilesTest, ACopyThatFailsIsReported)
{
    workspace->duplicate(desk.path("gone"));
    // The destructor waits for the copy; the report comes with the next turn.
    while (desk.dialogs.alerts.isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);

    EXPECT_EQ(onlyAlert(), (Alert{"Couldn’t duplicate “gone”", "No such file or directory"}));
}

TEST_F(WorkspaceFilesTest, AWorkspaceThatEndsFinishesItsCopies)
{
    desk.write("a", QByteArray(1 << 20, 'x'));

    workspace->duplicate(desk.path("a"));
    workspace.reset();
    QCoreApplication::processEvents();

    EXPECT_EQ(QFileInfo(desk.path("a copy")).size(), 1 << 20);
}

// --- using

TEST_F(WorkspaceFilesTest, TheConsoleOpensInTheFolderOrInTheFilesOwn)
{
    desk.write("sub/a");

    workspace->openInTerminal(desk.path("sub"));
    workspace->openInTerminal(desk.path("sub/a"));
    workspace->openInTerminal(desk.project());

    const auto& groups = workspace->terminal().groups();
    ASSERT_EQ(groups.size(), 3U);
    EXPECT_EQ(groups[0]->panes()[0]->terminal()->startDirectory(), desk.path("sub"));
    EXPECT_EQ(groups[1]->panes()[0]->terminal()->startDirectory(), desk.path("sub"));
    EXPECT_EQ(groups[2]->panes()[0]->terminal()->startDirectory(), desk.project());
}

TEST_F(WorkspaceFilesTest, APathIsRelativeToTheProjectOnlyBelowIt)
{
    EXPECT_EQ(workspace->relativePath(desk.path("sub/a")), "sub/a");
    EXPECT_EQ(workspace->relativePath(desk.project() + "/"), ".");
    EXPECT_EQ(workspace->relativePath(desk.project() + "2/a"), desk.project() + "2/a");
    EXPECT_EQ(desk.openHome()->relativePath("/x/y"), "/x/y");

    workspace->copyRelativePath(desk.path("sub/a"));
    EXPECT_EQ(desk.desktop.clipboard, "sub/a");
}

// --- the tree

TEST_F(WorkspaceFilesTest, ShowingHiddenFilesIsKeptAndListsTheTreeAgain)
{
    desk.write(".hidden");
    EXPECT_TRUE(tree().isEmpty());

    workspace->setShowHiddenFiles(true);

    EXPECT_EQ(tree(), QStringList(".hidden"));
    EXPECT_EQ(desk.shared.boolean("showHiddenFiles"), true);
    EXPECT_TRUE(desk.openProject()->showHiddenFiles());
}

TEST_F(WorkspaceFilesTest, TheOldTreeLivesWhileItsListenersLook)
{
    desk.write("a");
    const FileNode* old = workspace->root();
    const FileNode* child = old->children().front().get();
    QString seen;
    QObject::connect(workspace.get(), &Workspace::rootChanged, [&] { seen = child->name(); });

    workspace->refreshTree();

    EXPECT_EQ(seen, "a");
    EXPECT_NE(workspace->root(), old);
}

TEST_F(WorkspaceFilesTest, OpenFoldersOfTheTreeAreRememberedUntilTheProcessEnds)
{
    workspace->toggleExpanded(desk.path("a"));
    workspace->toggleExpanded(desk.path("b"));
    workspace->toggleExpanded(desk.path("a"));

    EXPECT_EQ(workspace->expandedFolders(), QSet<QString>{desk.path("b")});
    EXPECT_TRUE(desk.openProject()->expandedFolders().isEmpty());
}

TEST_F(WorkspaceFilesTest, ComingBackReadsDocumentsTreeAndVersionControlAgain)
{
    desk.write("a", "one");
    EditorDocument* document = open("a");
    QFile file(desk.path("a"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("two");
    file.flush();
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(10),
                                 QFileDevice::FileModificationTime));
    desk.write("b");

    workspace->syncWithDisk();

    EXPECT_EQ(document->text(), "two");
    EXPECT_EQ(tree(), QStringList({"a", "b"}));
    EXPECT_EQ(desk.git.refreshes, 1);
}

// --- a folder that vanishes

TEST_F(WorkspaceFilesTest, AProjectWhoseFolderVanishesSaysSoAndLosesNoText)
{
    desk.write("a", "one");
    EditorDocument* document = open("a");
    document->setText("two");
    QSignalSpy missing(workspace.get(), &Workspace::rootMissingChanged);

    ASSERT_TRUE(QDir(desk.project()).removeRecursively());
    ASSERT_TRUE(missing.wait());

    EXPECT_TRUE(workspace->isRootMissing());
    EXPECT_TRUE(tree().isEmpty());
    workspace->syncWithDisk();
    workspace->saveAll();
    EXPECT_EQ(document->text(), "two");
    EXPECT_TRUE(document->saveError());
    EXPECT_EQ(openPaths(), QStringList("a"));
    EXPECT_EQ(workspace->root()->path(), desk.project());
}

TEST_F(WorkspaceFilesTest, AFolderThatComesBackGoesOnAsBefore)
{
    desk.write("a", "one");
    EditorDocument* document = open("a");
    document->setText("two");
    ASSERT_TRUE(QDir(desk.project()).removeRecursively());
    workspace->refreshTree();
    ASSERT_TRUE(workspace->isRootMissing());
    QSignalSpy missing(workspace.get(), &Workspace::rootMissingChanged);

    desk.makeFolder("project");
    ASSERT_TRUE(missing.wait());
    workspace->saveAll();
    workspace->refreshTree();

    EXPECT_FALSE(workspace->isRootMissing());
    EXPECT_FALSE(document->saveError());
    EXPECT_EQ(desk.read(desk.path("a")), "two");
    EXPECT_EQ(tree(), QStringList("a"));
}

TEST_F(WorkspaceFilesTest, ALookAtAVanishedFolderAnnouncesOneNewTree)
{
    ASSERT_TRUE(QDir(desk.project()).removeRecursively());
    const QSignalSpy trees(workspace.get(), &Workspace::rootChanged);
    const QSignalSpy missing(workspace.get(), &Workspace::rootMissingChanged);

    workspace->refreshTree();

    EXPECT_EQ(trees.count(), 1);
    EXPECT_EQ(missing.count(), 1);
}
