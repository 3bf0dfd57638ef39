#include "Tests/Support/ViewHarness.h"
#include "Views/Sidebar/SidebarList.h"
#include "Views/Sidebar/SidebarModel.h"
#include "Views/Sidebar/SidebarView.h"
#include "Views/Sidebar/TitleRow.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct SidebarTest : testing::Test {
    SidebarTest()
    {
        desk().write("src/main.cpp");
        desk().write("src/http/server.cpp");
        desk().write("README.md");
        services.emplace(views.openProject());
        workspace().setShowHiddenFiles(false);
    }

    void show()
    {
        sidebar = std::make_unique<SidebarView>(*services, nullptr);
        sidebar->resize(244, 600);
        sidebar->show();
        ViewHarness::settle();
    }

    [[nodiscard]] WorkspaceHarness& desk() { return views.desk; }
    [[nodiscard]] Workspace& workspace() const { return *views.workspace; }
    [[nodiscard]] SidebarList& list() const { return sidebar->list(); }

    /// The rows from top to bottom, indented by two blanks a level.
    [[nodiscard]] QStringList rows() const
    {
        QStringList texts;
        for (const SidebarRow& row : SidebarRows::of(workspace()))
            texts.append(QString(2 * row.depth, ' ') + row.text);
        return texts;
    }
    [[nodiscard]] QModelIndex index(const QString& text) const
    {
        const QAbstractItemModel* model = list().model();
        for (int row = model->rowCount() - 1; row >= 0; --row) {
            if (model->index(row, 0).data().toString() == text)
                return model->index(row, 0);
        }
        return {};
    }
    void click(const QString& text, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(list().viewport(), button, {},
                          list().visualRect(index(text)).center() - QPoint(40, 0));
    }
    void press(Qt::Key key) { QTest::keyClick(&list(), key); }

    [[nodiscard]] static QStringList titles(const QMenu& menu)
    {
        QStringList texts;
        for (const QAction* action : menu.actions()) {
            if (!action->isSeparator())
                texts.append(action->text());
        }
        return texts;
    }
    static void choose(const QMenu& menu, const QString& title)
    {
        for (QAction* action : menu.actions()) {
            if (action->text() == title)
                action->trigger();
        }
        ViewHarness::settle();
    }

    ViewHarness views;
    std::optional<ViewServices> services;
    std::unique_ptr<SidebarView> sidebar;
};

} // namespace

TEST_F(SidebarTest, ShowsTheFilesWithFoldersFirst)
{
    EXPECT_EQ(rows(), (QStringList{"Files", "src", "README.md"}));
}

TEST_F(SidebarTest, OnlyExpandedFoldersAreListed)
{
    workspace().toggleExpanded(desk().path("src"));

    EXPECT_EQ(rows(), (QStringList{"Files", "src", "  http", "  main.cpp", "README.md"}));
    EXPECT_FALSE(workspace().root()->children()[0]->children()[0]->isListed());
}

TEST_F(SidebarTest, OpenTabsStandAboveTheFiles)
{
    workspace().openFile(desk().path("README.md"));

    EXPECT_EQ(rows(), (QStringList{"Open", "README.md", "Files", "src", "README.md"}));
}

TEST_F(SidebarTest, AnEmptyFolderSaysHowToBegin)
{
    QDir(desk().path("src")).removeRecursively();
    QFile::remove(desk().path("README.md"));
    workspace().refreshTree();

    EXPECT_EQ(rows(),
              (QStringList{"Files", "Empty Folder", "Press Ctrl+N to create your first file."}));
}

TEST_F(SidebarTest, AClickOnAFolderOpensAndClosesIt)
{
    show();

    click("src");
    EXPECT_TRUE(workspace().expandedFolders().contains(desk().path("src")));
    EXPECT_EQ(workspace().sidebarSelection(),
              (SidebarItem{SidebarItem::Folder{desk().path("src")}}));

    click("src");
    EXPECT_TRUE(workspace().expandedFolders().isEmpty());
}

TEST_F(SidebarTest, AClickOnAFileOpensIt)
{
    show();

    click("README.md");

    ASSERT_EQ(workspace().tabs().size(), 1U);
    EXPECT_EQ(workspace().activeTab()->title(), "README.md");
}

TEST_F(SidebarTest, AClickOnAnOpenRowActivatesItsTab)
{
    const WorkspaceTab first = views.open("a.txt");
    views.open("b.txt");
    show();

    const QModelIndex row = list().model()->index(1, 0);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {}, list().visualRect(row).center());

    EXPECT_EQ(workspace().activeTabId(), first.id());
    EXPECT_EQ(workspace().sidebarSelection(), (SidebarItem{SidebarItem::Open{first.id()}}));
}

TEST_F(SidebarTest, TheCloseButtonOfAnOpenRowClosesItsTab)
{
    views.open("a.txt");
    show();

    const QRect row = list().visualRect(list().model()->index(1, 0));
    QTest::mouseClick(list().viewport(), Qt::LeftButton, {},
                      QPoint(row.right() - 14, row.center().y()));

    EXPECT_TRUE(workspace().tabs().empty());
}

TEST_F(SidebarTest, AMiddleClickClosesAnOpenRowAndNothingElse)
{
    views.open("a.txt");
    show();

    click("README.md", Qt::MiddleButton);
    EXPECT_EQ(workspace().tabs().size(), 1U);
    QTest::mouseClick(list().viewport(), Qt::MiddleButton, {},
                      list().visualRect(list().model()->index(1, 0)).center());

    EXPECT_TRUE(workspace().tabs().empty());
}

TEST_F(SidebarTest, ArrowsWalkAndOpenTheTree)
{
    show();
    list().setFocus();
    list().setCurrentIndex(index("src"));

    press(Qt::Key_Right);
    EXPECT_TRUE(index("main.cpp").isValid());
    press(Qt::Key_Right);
    EXPECT_EQ(list().currentIndex().data().toString(), "http");
    press(Qt::Key_Left);
    EXPECT_EQ(list().currentIndex().data().toString(), "src");
    press(Qt::Key_Left);
    EXPECT_FALSE(index("main.cpp").isValid());
}

TEST_F(SidebarTest, ReturnOpensWhatIsMarked)
{
    show();
    list().setFocus();
    list().setCurrentIndex(index("README.md"));

    press(Qt::Key_Return);

    EXPECT_EQ(workspace().activeTab()->title(), "README.md");
}

TEST_F(SidebarTest, TheKeyboardMarksAndDoesNotOpen)
{
    show();
    list().activateWindow();
    list().setFocus();
    list().setCurrentIndex(index("src"));

    press(Qt::Key_Down);

    EXPECT_EQ(list().currentIndex().data().toString(), "README.md");
    EXPECT_TRUE(workspace().tabs().empty());
}

TEST_F(SidebarTest, F2RenamesAndDeleteMovesToTheTrash)
{
    show();
    list().setFocus();
    list().setCurrentIndex(index("README.md"));

    press(Qt::Key_F2);
    ASSERT_EQ(desk().dialogs.prompts.size(), 1);
    EXPECT_EQ(desk().dialogs.prompts.first().initial, "README.md");

    press(Qt::Key_Delete);
    EXPECT_EQ(desk().desktop.trashed, QStringList{desk().path("README.md")});
}

TEST_F(SidebarTest, AFoldersMenuOffersWhatCanBeDoneWithIt)
{
    show();

    EXPECT_EQ(
        titles(*list().menuFor(index("src"))),
        (QStringList{"New File", "New Folder", "Open in Integrated Terminal", "Reveal in Finder",
                     "Copy Relative Path", "Rename", "Duplicate", "Move to Trash"}));
}

TEST_F(SidebarTest, TheRootCanNotBeRenamedOrTrashed)
{
    show();

    EXPECT_EQ(titles(*list().menuFor({})),
              (QStringList{"New File", "New Folder", "Open in Integrated Terminal",
                           "Reveal in Finder", "Copy Relative Path"}));
}

TEST_F(SidebarTest, AFilesMenuOffersWhatCanBeDoneWithIt)
{
    show();

    const auto menu = list().menuFor(index("README.md"));
    EXPECT_EQ(titles(*menu),
              (QStringList{"Open with Default App", "Reveal in Finder", "Copy Relative Path",
                           "Open in Integrated Terminal", "Rename", "Duplicate", "Move to Trash"}));
    choose(*menu, "Open with Default App");
    EXPECT_EQ(desk().desktop.opened, QList{QUrl::fromLocalFile(desk().path("README.md"))});
    choose(*menu, "Copy Relative Path");
    EXPECT_EQ(desk().desktop.clipboard, "README.md");
}

TEST_F(SidebarTest, AFoldersNewFileIsMadeInIt)
{
    show();
    desk().dialogs.texts = {QString("note.md")};

    choose(*list().menuFor(index("src")), "New File");

    EXPECT_TRUE(QFile::exists(desk().path("src/note.md")));
}

TEST_F(SidebarTest, TheProjectsMenuShowsAndLeavesTheFolder)
{
    show();
    auto* title = sidebar->findChild<TitleRow*>();
    ASSERT_NE(title, nullptr);

    const auto menu = title->makeMenu();
    EXPECT_EQ(titles(*menu),
              (QStringList{"Reveal in Finder", "Copy Path", "Open Folder", "Close Folder"}));
    choose(*menu, "Copy Path");
    EXPECT_EQ(desk().desktop.clipboard, desk().project());
    EXPECT_EQ(title->accessibleName(), "project");
}

TEST_F(SidebarTest, ANewFileShowsOnceTheTreeIsReadAgain)
{
    show();
    QSignalSpy inserted(list().model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(list().model(), &QAbstractItemModel::rowsRemoved);

    desk().write("notes.md");
    workspace().refreshTree();

    EXPECT_TRUE(index("notes.md").isValid());
    ASSERT_EQ(inserted.count(), 1);
    EXPECT_EQ(inserted.first().at(1), inserted.first().at(2));
    EXPECT_EQ(removed.count(), 0);
}

TEST_F(SidebarTest, UnsavedTextIsToldToThoseWhoDoNotSeeTheDot)
{
    const WorkspaceTab tab = views.open("a.txt", "one");
    show();

    tab.document()->setText("two");

    EXPECT_EQ(list().model()->index(1, 0).data(Qt::AccessibleTextRole).toString(),
              "a.txt, unsaved changes");
}

TEST_F(SidebarTest, RowsGrowWithTheZoomOfTheFiles)
{
    show();
    const int before = list().visualRect(index("src")).height();

    views.zoom.set(Zoom::Area::Files, 2.0);
    ViewHarness::settle();

    EXPECT_EQ(list().visualRect(index("src")).height(), 2 * before);
}
