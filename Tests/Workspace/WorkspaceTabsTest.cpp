#include "Tests/Support/WorkspaceHarness.h"
#include "Workspace/ZoomTarget.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

/// A project that opened without tabs.
struct WorkspaceTabsTest : testing::Test {
    WorkspaceTab document(const QString& name)
    {
        workspace->openFile(desk.write(name));
        return *workspace->activeTab();
    }

    WorkspaceTab page(const QString& address)
    {
        workspace->insertPage(QUrl(address));
        return *workspace->activeTab();
    }

    [[nodiscard]] QStringList titles() const
    {
        QStringList result;
        for (const WorkspaceTab& tab : workspace->tabs())
            result.append(tab.title());
        return result;
    }

    [[nodiscard]] QString activeTitle() const
    {
        const auto tab = workspace->activeTab();
        return tab ? tab->title() : QString();
    }
    [[nodiscard]] QString splitTitle() const
    {
        const auto tab = workspace->splitTab();
        return tab ? tab->title() : QString();
    }

    [[nodiscard]] bool isSelected(const WorkspaceTab& tab) const
    {
        return workspace->sidebarSelection() == SidebarItem{SidebarItem::Open{tab.id()}};
    }

    WorkspaceHarness desk;
    std::unique_ptr<Workspace> workspace = desk.openProject();
};

} // namespace

// --- opening and activating

TEST_F(WorkspaceTabsTest, ANewTabStandsBehindTheActiveOneAndIsActive)
{
    document("a");
    document("b");
    const auto first = workspace->tabs().front();
    workspace->activate(first);

    const WorkspaceTab added = document("c");

    EXPECT_EQ(titles(), QStringList({"a", "c", "b"}));
    EXPECT_EQ(workspace->activeTabId(), added.id());
    EXPECT_TRUE(isSelected(added));
}

TEST_F(WorkspaceTabsTest, AnOpenFileIsActivatedInsteadOfOpenedTwice)
{
    document("a");
    document("b");

    workspace->openFile(desk.project() + "/./a");

    EXPECT_EQ(titles(), QStringList({"a", "b"}));
    EXPECT_EQ(activeTitle(), "a");
}

TEST_F(WorkspaceTabsTest, AFolderIsOpenedByTheDesktop)
{
    desk.makeFolder("project/sub");

    workspace->openFile(desk.path("sub"));

    EXPECT_TRUE(workspace->tabs().empty());
    EXPECT_EQ(desk.desktop.opened, QList<QUrl>{QUrl::fromLocalFile(desk.path("sub"))});
}

TEST_F(WorkspaceTabsTest, LeavingADocumentSavesIt)
{
    const WorkspaceTab a = document("a");
    document("b");
    workspace->activate(a);
    a.document()->setText("edited");

    workspace->selectAdjacentTab(1);

    EXPECT_EQ(desk.read(desk.path("a")), "edited");
}

TEST_F(WorkspaceTabsTest, OpeningAPageSavesTheDocumentThatItCovers)
{
    const WorkspaceTab a = document("a");
    a.document()->setText("edited");

    page("http://one.test/");

    EXPECT_EQ(desk.read(desk.path("a")), "edited");
}

TEST_F(WorkspaceTabsTest, TheSelectionOfAFileInTheTreeStaysWhenItsTabOpens)
{
    const QString file = desk.write("a");
    workspace->setSidebarSelection(SidebarItem{SidebarItem::File{file}});

    workspace->openFile(file);
    EXPECT_EQ(workspace->sidebarSelection(), SidebarItem{SidebarItem::File{file}});

    const WorkspaceTab b = document("b");
    EXPECT_TRUE(isSelected(b));
}

TEST_F(WorkspaceTabsTest, ActivatingTheSplitTabSelectsItAndNoMore)
{
    const WorkspaceTab a = document("a");
    const WorkspaceTab b = document("b");
    workspace->openInSplit(a);

    workspace->activate(a);

    EXPECT_EQ(workspace->activeTabId(), b.id());
    EXPECT_TRUE(isSelected(a));
}

TEST_F(WorkspaceTabsTest, ATabThatIsNotHereIsNeitherActivatedNorSplit)
{
    const WorkspaceTab a = document("a");
    const WorkspaceTab gone = document("b");
    workspace->close(gone);

    workspace->activate(gone);
    workspace->openInSplit(gone);
    workspace->close(gone);

    EXPECT_EQ(workspace->activeTabId(), a.id());
    EXPECT_TRUE(workspace->splitTabId().isEmpty());
    EXPECT_EQ(titles(), QStringList("a"));
}

TEST_F(WorkspaceTabsTest, FocusIsRequestedATurnLaterAndOnlyForATabThatIsStillHere)
{
    const WorkspaceTab a = document("a");
    const WorkspaceTab b = document("b");
    const QSignalSpy requests(workspace.get(), &Workspace::focusRequested);

    workspace->focus(a);
    workspace->focus(b);
    workspace->close(b);
    EXPECT_EQ(requests.count(), 0);
    desk.scheduler().turn();

    ASSERT_EQ(requests.count(), 1);
    EXPECT_EQ(requests.first().first().toString(), a.id());
}

// --- going round

TEST_F(WorkspaceTabsTest, TheAdjacentTabGoesRoundInBothDirections)
{
    document("a");
    document("b");
    document("c");

    workspace->selectAdjacentTab(1);
    EXPECT_EQ(activeTitle(), "a");
    workspace->selectAdjacentTab(-1);
    EXPECT_EQ(activeTitle(), "c");
    workspace->selectAdjacentTab(-4);
    EXPECT_EQ(activeTitle(), "b");
}

TEST_F(WorkspaceTabsTest, TheAdjacentTabIsNeverTheSplitTab)
{
    const WorkspaceTab a = document("a");
    document("b");
    document("c");
    workspace->openInSplit(a);

    workspace->selectAdjacentTab(1);

    EXPECT_EQ(activeTitle(), "b");
    EXPECT_EQ(splitTitle(), "a");
}

TEST_F(WorkspaceTabsTest, WithOnlyTheActiveAndTheSplitTabThereIsNoAdjacentTab)
{
    const WorkspaceTab a = document("a");
    document("b");
    workspace->openInSplit(a);
    const QSignalSpy requests(workspace.get(), &Workspace::focusRequested);

    workspace->selectAdjacentTab(1);
    desk.scheduler().turn();

    EXPECT_EQ(activeTitle(), "b");
    EXPECT_EQ(requests.count(), 0);
}

// --- closing

TEST_F(WorkspaceTabsTest, ClosingTheActiveTabActivatesTheOneThatMovedIntoItsPlace)
{
    document("a");
    const WorkspaceTab b = document("b");
    const WorkspaceTab c = document("c");
    workspace->activate(b);

    workspace->close(b);
    EXPECT_EQ(activeTitle(), "c");
    EXPECT_TRUE(isSelected(c));

    workspace->close(c);
    EXPECT_EQ(activeTitle(), "a");

    workspace->close(*workspace->activeTab());
    EXPECT_TRUE(workspace->activeTabId().isEmpty());
    EXPECT_FALSE(workspace->sidebarSelection());
}

TEST_F(WorkspaceTabsTest, ClosingAnotherTabKeepsTheActiveOne)
{
    const WorkspaceTab a = document("a");
    const WorkspaceTab b = document("b");

    workspace->close(a);

    EXPECT_EQ(workspace->activeTabId(), b.id());
    EXPECT_TRUE(isSelected(b));
}

TEST_F(WorkspaceTabsTest, ClosingTheActiveTabOfASplitKeepsTheOtherPane)
{
    const WorkspaceTab a = document("a");
    document("b");
    const WorkspaceTab c = document("c");
    workspace->openInSplit(a);

    workspace->close(c);

    EXPECT_EQ(workspace->activeTabId(), a.id());
    EXPECT_TRUE(workspace->splitTabId().isEmpty());
    EXPECT_TRUE(isSelected(a));
    EXPECT_EQ(titles(), QStringList({"a", "b"}));
}

TEST_F(WorkspaceTabsTest, ClosingTheSplitTabEndsTheSplit)
{
    const WorkspaceTab a = document("a");
    const WorkspaceTab b = document("b");
    workspace->openInSplit(a);

    workspace->close(a);

    EXPECT_EQ(workspace->activeTabId(), b.id());
    EXPECT_TRUE(workspace->splitTabId().isEmpty());
}

TEST_F(WorkspaceTabsTest, AClosedTabReleasesItsPage)
{
    const WorkspaceTab tab = page("http://one.test/");
    ASSERT_EQ(desk.browser.alive.size(), 1);

    workspace->close(tab);

    EXPECT_TRUE(desk.browser.alive.empty());
    EXPECT_EQ(tab.browser()->page(), nullptr) << "whoever still holds the tab makes no other";
}

TEST_F(WorkspaceTabsTest, ClosingSavesTheText)
{
    const WorkspaceTab a = document("a");
    a.document()->setText("edited");

    workspace->close(a);

    EXPECT_EQ(desk.read(desk.path("a")), "edited");
    EXPECT_TRUE(desk.dialogs.alerts.isEmpty());
}

TEST_F(WorkspaceTabsTest, ATextThatCannotBeSavedIsAskedAboutBeforeItCloses)
{
    const WorkspaceTab tab = document("sub/a");
    ASSERT_TRUE(QDir(desk.path("sub")).removeRecursively());
    tab.document()->setText("edited");

    desk.dialogs.choices = {0};
    workspace->close(tab);
    ASSERT_EQ(desk.dialogs.alerts.size(), 1);
    const Alert& alert = desk.dialogs.alerts.first();
    EXPECT_EQ(alert.title, "Couldn’t save a");
    EXPECT_EQ(alert.text, *tab.document()->saveError());
    EXPECT_EQ(alert.buttons, QStringList({"Keep Editing", "Discard Changes"}));
    EXPECT_TRUE(alert.lastIsDestructive);
    EXPECT_EQ(titles(), QStringList("a"));

    desk.dialogs.choices = {1};
    workspace->close(tab);
    EXPECT_TRUE(workspace->tabs().empty());
}

TEST_F(WorkspaceTabsTest, SeveralTextsThatCannotBeSavedAreNamedTogether)
{
    const WorkspaceTab a = document("sub/a");
    const WorkspaceTab b = document("sub/b");
    const WorkspaceTab c = document("c");
    ASSERT_TRUE(QDir(desk.path("sub")).removeRecursively());
    for (const WorkspaceTab& tab : {a, b, c})
        tab.document()->setText("edited");

    EXPECT_FALSE(workspace->confirmDiscardingChanges(workspace->documents()));

    ASSERT_EQ(desk.dialogs.alerts.size(), 1);
    EXPECT_EQ(desk.dialogs.alerts.first().title, "Couldn’t save a, b");
    EXPECT_EQ(desk.read(desk.path("c")), "edited");
}

TEST_F(WorkspaceTabsTest, ClosingTheOthersAsksForEachAndActivatesTheKept)
{
    document("sub/a");
    document("sub/b");
    const WorkspaceTab c = document("c");
    document("d");
    ASSERT_TRUE(QDir(desk.path("sub")).removeRecursively());
    for (EditorDocument* each : workspace->documents())
        each->setText("edited");

    desk.dialogs.choices = {0, 1};
    workspace->closeOthers(c);

    EXPECT_EQ(desk.dialogs.alerts.size(), 2);
    EXPECT_EQ(titles(), QStringList({"a", "c"}));
    EXPECT_EQ(workspace->activeTabId(), c.id());
}

TEST_F(WorkspaceTabsTest, ATabOfTheListItselfCanBeClosed)
{
    document("a");
    document("b");

    workspace->close(workspace->tabs().front());
    workspace->closeOthers(workspace->tabs().front());
    workspace->activate(workspace->tabs().front());

    EXPECT_EQ(titles(), QStringList("b"));
}

TEST_F(WorkspaceTabsTest, AListenerSeesAWholeState)
{
    const WorkspaceTab a = document("a");
    const WorkspaceTab b = document("b");
    workspace->openInSplit(a);
    bool isWhole = true;
    const auto look = [&] {
        isWhole = isWhole && workspace->activeTab() &&
                  (workspace->splitTabId().isEmpty() || workspace->splitTab()) &&
                  workspace->splitTabId() != workspace->activeTabId();
    };
    QObject::connect(workspace.get(), &Workspace::tabsChanged, look);
    QObject::connect(workspace.get(), &Workspace::splitTabChanged, look);
    QObject::connect(workspace.get(), &Workspace::activeTabChanged, look);

    workspace->close(b);

    EXPECT_TRUE(isWhole);
}

// --- the split

TEST_F(WorkspaceTabsTest, ThePartnerOfADocumentIsTheLatestPageBeforeAnyDocument)
{
    const WorkspaceTab one = page("http://one.test/");
    const WorkspaceTab two = page("http://two.test/");
    const WorkspaceTab a = document("a");
    const WorkspaceTab b = document("b");
    workspace->activate(one);
    workspace->activate(a);
    workspace->activate(b);

    EXPECT_EQ(workspace->splitPartner(b)->id(), one.id());
    EXPECT_EQ(workspace->splitPartner(one)->id(), b.id());
    EXPECT_EQ(workspace->splitPartner(two)->id(), b.id());
}

TEST_F(WorkspaceTabsTest, WithoutTheOtherKindThePartnerIsTheLatestUsed)
{
    const WorkspaceTab a = document("a");
    const WorkspaceTab b = document("b");
    const WorkspaceTab c = document("c");
    workspace->activate(a);

    EXPECT_EQ(workspace->splitPartner(a)->id(), c.id());
    EXPECT_EQ(workspace->splitPartner(b)->id(), a.id());

    workspace->close(b);
    workspace->close(c);
    EXPECT_FALSE(workspace->splitPartner(a));
}

TEST_F(WorkspaceTabsTest, TogglingTheSplitShowsThePartnerAndHidesItAgain)
{
    const WorkspaceTab a = document("a");
    document("b");

    workspace->toggleSplit();
    EXPECT_EQ(workspace->splitTabId(), a.id());
    EXPECT_EQ(activeTitle(), "b");

    workspace->toggleSplit();
    EXPECT_TRUE(workspace->splitTabId().isEmpty());
    EXPECT_EQ(titles(), QStringList({"a", "b"}));
}

TEST_F(WorkspaceTabsTest, TogglingTheSplitOfASingleTabMakesABlankPageBehindIt)
{
    document("a");

    workspace->toggleSplit();

    EXPECT_EQ(titles(), QStringList({"a", "New Tab"}));
    EXPECT_EQ(activeTitle(), "a");
    EXPECT_EQ(splitTitle(), "New Tab");
}

TEST_F(WorkspaceTabsTest, TogglingTheSplitWithoutATabMakesABlankPage)
{
    workspace->toggleSplit();

    EXPECT_EQ(titles(), QStringList("New Tab"));
    EXPECT_EQ(activeTitle(), "New Tab");
    EXPECT_TRUE(workspace->splitTabId().isEmpty());
}

TEST_F(WorkspaceTabsTest, WithoutPagesASplitWithoutAPartnerStaysClosed)
{
    workspace = desk.openProject(Pages::Unavailable);
    workspace->toggleSplit();
    EXPECT_TRUE(workspace->tabs().empty());

    document("a");
    workspace->toggleSplit();
    EXPECT_EQ(titles(), QStringList("a"));
    EXPECT_TRUE(workspace->splitTabId().isEmpty());

    document("b");
    workspace->toggleSplit();
    EXPECT_EQ(splitTitle(), "a");
}

TEST_F(WorkspaceTabsTest, OpeningTheActiveTabInASplitOpensItsPartner)
{
    const WorkspaceTab a = document("a");
    const WorkspaceTab b = document("b");

    workspace->openInSplit(b);
    EXPECT_EQ(workspace->splitTabId(), a.id());

    workspace->openInSplit(b);
    EXPECT_EQ(workspace->splitTabId(), a.id());
    EXPECT_EQ(workspace->activeTabId(), b.id());
}

TEST_F(WorkspaceTabsTest, AnotherTabTakesTheSplitOver)
{
    const WorkspaceTab a = document("a");
    const WorkspaceTab b = document("b");
    document("c");
    workspace->openInSplit(a);
    const QSignalSpy changes(workspace.get(), &Workspace::splitTabChanged);

    workspace->openInSplit(b);
    workspace->openInSplit(b);

    EXPECT_EQ(workspace->splitTabId(), b.id());
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(WorkspaceTabsTest, TheFocusedTabIsTheSplitTabOnlyWhileItHasTheKeyboard)
{
    const WorkspaceTab a = document("a");
    const WorkspaceTab b = document("b");
    workspace->openInSplit(a);
    EXPECT_EQ(workspace->focusedTab()->id(), b.id());

    desk.focus.tabId = a.id();
    EXPECT_EQ(workspace->focusedTab()->id(), a.id());

    workspace->toggleSplit();
    EXPECT_EQ(workspace->focusedTab()->id(), b.id());
}

TEST_F(WorkspaceTabsTest, TheVisiblePageIsTheFocusedElseTheActiveElseTheSplitOne)
{
    EXPECT_EQ(workspace->visibleBrowser(), nullptr);
    const WorkspaceTab one = page("http://one.test/");
    const WorkspaceTab two = page("http://two.test/");
    const WorkspaceTab a = document("a");
    EXPECT_EQ(workspace->visibleBrowser(), nullptr);

    workspace->openInSplit(one);
    EXPECT_EQ(workspace->visibleBrowser(), one.browser());

    workspace->activate(two);
    EXPECT_EQ(workspace->visibleBrowser(), two.browser());

    desk.focus.tabId = one.id();
    EXPECT_EQ(workspace->visibleBrowser(), one.browser());

    desk.focus.tabId.clear();
    workspace->activate(a);
    EXPECT_EQ(workspace->visibleBrowser(), one.browser());
}

// --- zoom

TEST_F(WorkspaceTabsTest, AZoomActsOnWhatHasTheKeyboardElseOnWhatShows)
{
    EXPECT_EQ(ZoomTarget::area(*workspace), Zoom::Area::Files);
    workspace->terminal().show();
    EXPECT_EQ(ZoomTarget::area(*workspace), Zoom::Area::Terminal);

    document("a");
    EXPECT_EQ(ZoomTarget::area(*workspace), Zoom::Area::Editor);
    page("http://one.test/");
    EXPECT_EQ(ZoomTarget::area(*workspace), Zoom::Area::Browser);

    desk.focus.area = FocusArea::Content;
    EXPECT_EQ(ZoomTarget::area(*workspace), Zoom::Area::Browser);
    desk.focus.area = FocusArea::Sidebar;
    EXPECT_EQ(ZoomTarget::area(*workspace), Zoom::Area::Files);
    desk.focus.area = FocusArea::Terminal;
    EXPECT_EQ(ZoomTarget::area(*workspace), Zoom::Area::Terminal);
}
