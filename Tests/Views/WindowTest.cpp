#include "Tests/Support/ViewHarness.h"
#include "Views/Console/TerminalPanelView.h"
#include "Views/Editor/CodeText.h"
#include "Views/Editor/EditorPanes.h"
#include "Views/Editor/EditorScreen.h"
#include "Views/Home/ProjectsHome.h"
#include "Views/Home/WelcomeView.h"
#include "Views/Kit/IconButton.h"
#include "Views/Sidebar/SidebarList.h"
#include "Views/Sidebar/SidebarView.h"
#include "Views/Window/DetailView.h"
#include "Views/Window/MissingFolder.h"
#include "Views/Window/RootView.h"
#include "Views/Window/Seam.h"
#include "Views/Window/WindowChrome.h"
#include "Views/Window/WindowFocus.h"

#include <QDragEnterEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;
using WindowLayout::Screen;

namespace {

struct WindowTest : testing::Test {
    void show(const ViewServices& services)
    {
        window = std::make_unique<WindowChrome>(services.theme, services.workspace,
                                                WindowButtonLayout{}, WindowChrome::Frame::Own);
        root = new RootView(services);
        window->setContent(root);
        window->resize(1180, 780);
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->activateWindow();
        ViewHarness::settle();
    }
    void showProject() { show(views.openProject()); }

    [[nodiscard]] Workspace& workspace() const { return *views.workspace; }
    [[nodiscard]] TerminalPanel& panel() const { return workspace().terminal(); }
    [[nodiscard]] DetailView& detail() const { return *root->detail(); }
    [[nodiscard]] IconButton* button(const QString& name) const
    {
        for (IconButton* candidate : window->findChildren<IconButton*>()) {
            if (candidate->accessibleName() == name && candidate->isVisible())
                return candidate;
        }
        return nullptr;
    }

    ViewHarness views;
    std::unique_ptr<WindowChrome> window;
    RootView* root = nullptr;
};

} // namespace

// --- what the window shows

TEST_F(WindowTest, TheHomeApplicationShowsTheProjects)
{
    show(views.openHome());

    EXPECT_EQ(root->screen(), Screen::Home);
    EXPECT_TRUE(root->home()->isVisible());
    EXPECT_EQ(window->windowTitle(), "Bralto");
    EXPECT_EQ(button("Hide Sidebar"), nullptr);
}

TEST_F(WindowTest, AProjectShowsItsSidebarAndItsDetailArea)
{
    showProject();

    EXPECT_EQ(root->screen(), Screen::Project);
    EXPECT_TRUE(root->sidebar()->isVisible());
    EXPECT_TRUE(detail().isVisible());
    EXPECT_EQ(window->windowTitle(), "project");
}

TEST_F(WindowTest, AProjectWhoseFolderHasGoneWelcomes)
{
    show(views.openGone());

    EXPECT_EQ(root->screen(), Screen::Welcome);
    EXPECT_TRUE(root->welcome()->isVisible());
}

TEST_F(WindowTest, AFolderThatVanishesIsSaidAndNothingIsLost)
{
    showProject();
    const WorkspaceTab tab = views.open("a.cpp", "text");
    auto* banner = window->findChild<MissingFolder*>();
    EXPECT_FALSE(banner->isVisible());

    QDir(views.desk.project()).removeRecursively();
    workspace().syncWithDisk();
    ViewHarness::settle();

    EXPECT_TRUE(workspace().isRootMissing());
    EXPECT_TRUE(banner->isVisible());
    EXPECT_TRUE(banner->accessibleName().startsWith("“project” isn’t where it was."));
    EXPECT_NE(detail().panes().screenOf(tab.id()), nullptr);

    views.desk.makeFolder("project");
    workspace().syncWithDisk();
    ViewHarness::settle();
    EXPECT_FALSE(banner->isVisible());
}

TEST_F(WindowTest, TheBarSwitchesTheSidebar)
{
    showProject();
    EXPECT_EQ(button("Hide Sidebar")->toolTip(), "Hide Sidebar (Ctrl+S)");

    QTest::mouseClick(button("Hide Sidebar"), Qt::LeftButton);

    EXPECT_FALSE(root->sidebar()->isVisible());
    EXPECT_EQ(detail().x(), Measure::FrameInset);
    EXPECT_NE(button("Show Sidebar"), nullptr);
}

TEST_F(WindowTest, TheBarSwitchesTheConsole)
{
    showProject();

    QTest::mouseClick(button("Show Terminal"), Qt::LeftButton);

    EXPECT_TRUE(panel().isVisible());
    EXPECT_TRUE(detail().console().isVisible());
    const auto buttons = window->bar().findChildren<IconButton*>();
    EXPECT_TRUE(std::ranges::any_of(buttons, [](const IconButton* each) {
        return each->accessibleName() == "Hide Terminal" && each->isChecked();
    }));
}

TEST_F(WindowTest, SplittingNeedsASecondTab)
{
    showProject();
    EXPECT_FALSE(button("Split View")->isEnabled());

    views.open("a.cpp");
    views.open("b.cpp");
    ASSERT_TRUE(button("Split View")->isEnabled());
    QTest::mouseClick(button("Split View"), Qt::LeftButton);

    EXPECT_FALSE(workspace().splitTabId().isEmpty());
    EXPECT_EQ(button("Close Split View")->toolTip(), "Close Split View (Ctrl+Alt+\\)");
    EXPECT_EQ(button("Close Split View")->symbol(), "rectangle.split.2x1.fill");
}

TEST_F(WindowTest, ANarrowWindowKeepsOnlyItsCloseButton)
{
    showProject();
    EXPECT_NE(button("Minimize"), nullptr);

    window->resize(640, 420);
    ViewHarness::settle();

    EXPECT_EQ(button("Minimize"), nullptr);
    EXPECT_EQ(button("Maximize"), nullptr);
    EXPECT_NE(button("Close Window"), nullptr);
}

TEST_F(WindowTest, WithTheWindowManagersFrameTheBarHasNoButtonsOfItsOwn)
{
    const ViewServices services = views.openProject();
    WindowChrome framed(services.theme, services.workspace, {}, WindowChrome::Frame::WindowManager);
    framed.show();

    EXPECT_FALSE(framed.windowFlags() & Qt::FramelessWindowHint);
    for (const IconButton* candidate : framed.findChildren<IconButton*>())
        EXPECT_NE(candidate->accessibleName(), "Close Window");
}

// --- shares

TEST_F(WindowTest, TheConsoleSharesWithATabAndFillsTheAreaWithoutOne)
{
    showProject();
    const WorkspaceTab tab = views.open("a.cpp");
    panel().show();
    EXPECT_EQ(detail().layoutInForce(), EditorLayout::Shared);
    EXPECT_TRUE(detail().panes().isVisible());

    workspace().close(tab);

    EXPECT_EQ(detail().layoutInForce(), EditorLayout::Hidden);
    EXPECT_FALSE(detail().panes().isVisible());
    EXPECT_EQ(detail().console().height(), detail().height());
}

TEST_F(WindowTest, AMaximizedConsoleThatHidesGivesTheEditorEverything)
{
    showProject();
    views.open("a.cpp");
    panel().show();
    panel().toggleMaximized();
    EXPECT_EQ(detail().layoutInForce(), EditorLayout::Hidden);

    panel().hide();

    EXPECT_EQ(detail().layoutInForce(), EditorLayout::Full);
    EXPECT_EQ(detail().panes().height(), detail().height());
    EXPECT_FALSE(detail().console().isVisible());
}

TEST_F(WindowTest, TheEditorsShareIsThePanels)
{
    showProject();
    views.open("a.cpp");
    panel().show();

    panel().setEditorFraction(0.25);

    const int shared = detail().height() - Measure::FrameInset;
    EXPECT_NEAR(detail().panes().height(), shared * 0.25, 1);
    EXPECT_EQ(detail().console().y(), detail().panes().height() + Measure::FrameInset);
    EXPECT_EQ(detail().console().geometry().bottom(), detail().rect().bottom());
}

TEST_F(WindowTest, DraggingTheSidebarsSeamIsKeptOnceItIsOver)
{
    showProject();
    Seam* seam = nullptr;
    for (Seam* candidate : root->findChildren<Seam*>(QString(), Qt::FindDirectChildrenOnly))
        seam = candidate;
    ASSERT_NE(seam, nullptr);

    emit seam->dragStarted();
    emit seam->dragged(-500);
    EXPECT_EQ(root->sidebarWidth(), 190);
    EXPECT_EQ(views.motion.inFlight(), 1);
    emit seam->dragEnded();

    EXPECT_EQ(views.desk.standard.number("sidebarWidth"), 190);
    EXPECT_EQ(views.motion.inFlight(), 0);
}

TEST_F(WindowTest, SeamsAreReachedByTheKeyboard)
{
    showProject();
    auto* seam = root->findChildren<Seam*>(QString(), Qt::FindDirectChildrenOnly).first();
    seam->setFocus();

    QTest::keyClick(seam, Qt::Key_Right);

    EXPECT_EQ(root->sidebarWidth(), 260);
}

TEST_F(WindowTest, AStoredSidebarWidthComesBack)
{
    views.desk.standard.set("sidebarWidth", 300.0);
    showProject();

    EXPECT_EQ(root->sidebar()->width(), 300);
}

// --- dropping

TEST_F(WindowTest, DroppedFilesOpenHereOrInTheirOwnProject)
{
    showProject();
    const QString inside = views.desk.write("a.cpp");
    views.desk.makeFolder("elsewhere");
    const QString outside = views.desk.home() + "/elsewhere/b.txt";
    QFile file(outside);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    QMimeData data;
    data.setUrls(
        {QUrl::fromLocalFile(inside), QUrl::fromLocalFile(outside), QUrl("https://example.org")});

    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    EXPECT_TRUE(window->isDropTargeted());
    QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(window.get(), &drop);

    EXPECT_FALSE(window->isDropTargeted());
    EXPECT_EQ(workspace().tabs().size(), 1U);
    ASSERT_EQ(views.desk.launcher.launches.size(), 1);
    EXPECT_EQ(views.desk.launcher.launches.first().first, views.desk.home() + "/elsewhere");
}

TEST_F(WindowTest, WhatIsNoFileIsNotTaken)
{
    showProject();
    QMimeData data;
    data.setText("words");

    QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(window.get(), &enter);

    EXPECT_FALSE(window->isDropTargeted());
}

// --- the keyboard

TEST_F(WindowTest, NothingHasTheKeyboardAtFirst)
{
    showProject();

    EXPECT_EQ(WindowFocus().current(), FocusArea::None);
}

TEST_F(WindowTest, TheKeyboardOfAClosedTabGoesToTheNextOne)
{
    showProject();
    const WorkspaceTab first = views.open("a.cpp");
    const WorkspaceTab second = views.open("b.cpp");
    detail().panes().focusTab(second.id());

    workspace().close(second);
    EXPECT_EQ(WindowFocus().focusedTabId(), first.id());

    workspace().close(first);
    EXPECT_TRUE(window->hasFocus());
}

TEST_F(WindowTest, TheKeyboardOfAHiddenSidebarGoesToTheText)
{
    showProject();
    const WorkspaceTab tab = views.open("a.cpp");
    root->sidebar()->list().setFocus();

    workspace().toggleSidebar();

    EXPECT_EQ(WindowFocus().focusedTabId(), tab.id());
}

TEST_F(WindowTest, TheKeyboardOfAHiddenConsoleGoesToTheText)
{
    showProject();
    const WorkspaceTab tab = views.open("a.cpp");
    panel().show();
    ViewHarness::settle();
    EXPECT_EQ(WindowFocus().current(), FocusArea::Terminal);

    panel().hide();

    EXPECT_EQ(WindowFocus().focusedTabId(), tab.id());
}

TEST_F(WindowTest, TheFocusTellsItsArea)
{
    showProject();
    const WorkspaceTab tab = views.open("a.cpp");
    ViewHarness::settle();
    const WindowFocus focus;

    root->sidebar()->list().setFocus();
    EXPECT_EQ(focus.current(), FocusArea::Sidebar);
    EXPECT_TRUE(focus.focusedTabId().isEmpty());

    detail().panes().focusTab(tab.id());
    EXPECT_EQ(focus.current(), FocusArea::Content);
    EXPECT_EQ(focus.focusedTabId(), tab.id());
}

TEST_F(WindowTest, AFieldCountsAsContent)
{
    QLineEdit field;
    EXPECT_EQ(WindowFocus::areaOf(&field), FocusArea::Content);
    EXPECT_EQ(WindowFocus::areaOf(nullptr), FocusArea::None);
    const QWidget plain;
    EXPECT_EQ(WindowFocus::areaOf(&plain), FocusArea::None);
}

TEST_F(WindowTest, AnOpenedTabGetsTheKeyboardWhenItIsAskedFor)
{
    showProject();
    const WorkspaceTab tab = views.open("a.cpp");

    workspace().focus(tab);
    views.desk.scheduler().turn();

    auto* screen = dynamic_cast<EditorScreen*>(detail().panes().screenOf(tab.id()));
    ASSERT_NE(screen, nullptr);
    EXPECT_TRUE(screen->code()->hasFocus());
}

TEST_F(WindowTest, TheLookOfTheProjectIsTheLookOfTheWindow)
{
    showProject();
    SpaceTheme space = workspace().space();
    space.color = SpaceColor::Lemon;
    space.name = "Tides";

    workspace().setSpace(space);

    EXPECT_EQ(views.theme.space(), space);
    EXPECT_EQ(window->windowTitle(), "Tides");
}

TEST_F(WindowTest, EveryButtonHasANameAndATip)
{
    showProject();
    views.open("a.cpp");
    panel().show();

    for (const QAbstractButton* candidate : window->findChildren<QAbstractButton*>()) {
        if (!candidate->isVisible())
            continue;
        EXPECT_FALSE(candidate->accessibleName().isEmpty());
        if (dynamic_cast<const IconButton*>(candidate)) {
            EXPECT_FALSE(candidate->toolTip().isEmpty());
        }
    }
}
