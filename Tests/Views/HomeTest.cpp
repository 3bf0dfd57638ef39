#include "Projects/ProjectUse.h"
#include "Tests/Support/ViewHarness.h"
#include "Views/Home/ProjectRow.h"
#include "Views/Home/ProjectsHome.h"
#include "Views/Home/WelcomeView.h"
#include "Views/Kit/Field.h"
#include "Views/Kit/TextButton.h"

#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct HomeTest : testing::Test {
    /// A recent project, the newest of those so far.
    QString recent(const QString& name)
    {
        views.desk.makeFolder(name);
        const QString path = views.desk.home() + '/' + name;
        QVariantList paths = views.desk.shared.value("recentFolders").toList();
        paths.prepend(path);
        views.desk.shared.set("recentFolders", paths);
        return path;
    }
    void show()
    {
        home = std::make_unique<ProjectsHome>(views.openHome(), nullptr);
        home->resize(1180, 700);
        home->show();
        home->activateWindow();
        ViewHarness::settle();
    }
    [[nodiscard]] QStringList names() const
    {
        QStringList texts;
        for (const ProjectRow* row : home->rows())
            texts.append(row->entry().name);
        return texts;
    }
    [[nodiscard]] QStringList words() const
    {
        QStringList texts;
        for (const QLabel* label : home->findChildren<QLabel*>()) {
            if (label->isVisible())
                texts.append(label->text());
        }
        return texts;
    }
    [[nodiscard]] TextButton* button(const QString& text) const
    {
        for (TextButton* candidate : home->findChildren<TextButton*>()) {
            if (candidate->text() == text && candidate->isVisible())
                return candidate;
        }
        return nullptr;
    }

    ViewHarness views;
    std::unique_ptr<ProjectsHome> home;
};

} // namespace

TEST_F(HomeTest, ShowsTheRecentProjectsNewestFirst)
{
    recent("tidal-api");
    recent("nimbus-web");
    show();

    EXPECT_EQ(names(), (QStringList{"nimbus-web", "tidal-api"}));
    EXPECT_TRUE(words().contains("2"));
}

TEST_F(HomeTest, AProjectIsCalledWhatItsSpaceSays)
{
    const QString path = recent("tidal-api");
    SpaceTheme space;
    space.name = "Tides";
    SpaceStore::save(views.desk.shared, space, path);
    ProjectUse::markUsed(views.desk.shared, path, views.desk.chats.clock.now().addSecs(-120));
    show();

    ASSERT_EQ(home->rows().size(), 1U);
    EXPECT_EQ(home->rows()[0]->entry().name, "Tides");
    EXPECT_TRUE(home->rows()[0]->entry().lastUsed.has_value());
}

TEST_F(HomeTest, AClickOpensAProject)
{
    const QString path = recent("tidal-api");
    show();

    QTest::mouseClick(home->rows()[0], Qt::LeftButton, {}, {80, 20});

    ASSERT_EQ(views.desk.launcher.launches.size(), 1);
    EXPECT_EQ(views.desk.launcher.launches.first().first, path);
}

TEST_F(HomeTest, TheKeyboardWalksTheListAndOpens)
{
    recent("tidal-api");
    recent("nimbus-web");
    show();

    QTest::keyClick(home.get(), Qt::Key_Down);
    EXPECT_TRUE(home->rows()[0]->hasFocus());
    QTest::keyClick(home->rows()[0], Qt::Key_Down);
    EXPECT_TRUE(home->rows()[1]->hasFocus());
    QTest::keyClick(home->rows()[1], Qt::Key_Return);

    ASSERT_EQ(views.desk.launcher.launches.size(), 1);
    EXPECT_TRUE(views.desk.launcher.launches.first().first.endsWith("tidal-api"));
}

TEST_F(HomeTest, SearchingKeepsWhatMatches)
{
    recent("tidal-api");
    recent("nimbus-web");
    show();

    home->search().setText(" TIDAL ");
    EXPECT_EQ(names(), QStringList{"tidal-api"});

    home->search().setText("nothing");
    EXPECT_TRUE(names().isEmpty());
    EXPECT_TRUE(words().contains("Nothing matches “nothing”"));

    QTest::keyClick(home.get(), Qt::Key_Escape);
    EXPECT_EQ(names().size(), 2);
}

TEST_F(HomeTest, ReturnInTheSearchOpensTheFirstMatch)
{
    recent("tidal-api");
    recent("nimbus-web");
    show();
    home->search().setFocus();
    home->search().setText("tidal");

    QTest::keyClick(&home->search(), Qt::Key_Return);

    ASSERT_EQ(views.desk.launcher.launches.size(), 1);
    EXPECT_TRUE(views.desk.launcher.launches.first().first.endsWith("tidal-api"));
}

TEST_F(HomeTest, ItHasTheKeyboardFromTheStart)
{
    show();
    EXPECT_TRUE(home->hasFocus());
}

TEST_F(HomeTest, TheFindChordLeadsToTheSearch)
{
    recent("tidal-api");
    show();

    QTest::keyClick(home.get(), Qt::Key_F, Qt::ControlModifier);

    EXPECT_TRUE(home->search().hasFocus());
}

TEST_F(HomeTest, WithoutProjectsItSaysWhatOneIs)
{
    show();

    EXPECT_TRUE(words().contains("No projects yet"));
    EXPECT_NE(button("New Project"), nullptr);
    EXPECT_NE(button("Open Folder"), nullptr);
    EXPECT_FALSE(home->search().isVisible());
}

TEST_F(HomeTest, ANewProjectIsMadeAndOpened)
{
    views.desk.dialogs.texts = {QString("sprout")};
    show();

    QTest::mouseClick(button("New Project"), Qt::LeftButton);

    ASSERT_EQ(views.desk.launcher.launches.size(), 1);
    EXPECT_TRUE(views.desk.launcher.launches.first().first.endsWith("/Claude Projects/sprout"));
}

TEST_F(HomeTest, OpenFolderAsksWhich)
{
    show();
    QTest::mouseClick(button("Open Folder"), Qt::LeftButton);
    EXPECT_EQ(views.desk.dialogs.openPanels, 1);
}

TEST_F(HomeTest, TheRecentsCanBeCleared)
{
    recent("tidal-api");
    show();

    const auto menu = home->makeMenu();
    ASSERT_EQ(menu->actions().first()->text(), "Clear Recents");
    menu->actions().first()->trigger();

    EXPECT_TRUE(names().isEmpty());
}

TEST_F(HomeTest, ARowsMenuRevealsAndCopies)
{
    const QString path = recent("tidal-api");
    show();

    const auto menu = home->rows()[0]->makeMenu();
    for (QAction* action : menu->actions()) {
        if (action->text() != "Open")
            action->trigger();
    }
    ViewHarness::settle();

    EXPECT_EQ(views.desk.desktop.revealed, QStringList{path});
    EXPECT_EQ(views.desk.desktop.clipboard, path);
}

TEST_F(HomeTest, TheWelcomeOffersTheRecentProjects)
{
    recent("tidal-api");
    WelcomeView welcome(views.openGone(), nullptr);
    welcome.resize(900, 600);
    welcome.show();

    QStringList texts;
    for (const QLabel* label : welcome.findChildren<QLabel*>())
        texts.append(label->text());
    EXPECT_TRUE(texts.contains("Open a folder to start writing."));
    EXPECT_TRUE(texts.contains("You can also drop a folder anywhere on this window."));
    ASSERT_EQ(welcome.rows().size(), 1U);
    QTest::mouseClick(welcome.rows()[0], Qt::LeftButton);
    EXPECT_EQ(views.desk.launcher.launches.size(), 1);
}
