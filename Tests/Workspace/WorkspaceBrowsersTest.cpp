#include "Workspace/WorkspaceBrowsers.h"
#include "Tests/Support/WorkspaceHarness.h"

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct WorkspaceBrowsersTest : testing::Test {
    WorkspaceHarness desk;
    std::unique_ptr<Workspace> workspace = desk.openProject();
    WorkspaceBrowsers browsers{*workspace};
};

} // namespace

TEST_F(WorkspaceBrowsersTest, DocumentsAreNoBrowsers)
{
    workspace->openFile(desk.write("a"));
    const auto first = browsers.openBrowser(QUrl("http://one.test/"));
    workspace->openFile(desk.write("b"));

    ASSERT_NE(first, nullptr);
    EXPECT_EQ(browsers.browsers(), std::vector{first});
    EXPECT_EQ(browsers.visibleBrowser(), nullptr);
}

TEST_F(WorkspaceBrowsersTest, ANewTabStandsBesideTheActiveOneAndIsActive)
{
    workspace->openFile(desk.write("a"));
    const auto one = browsers.openBrowser(QUrl("http://one.test/"));
    workspace->activate(workspace->tabs().front());
    const auto two = browsers.openBrowser(QUrl("http://two.test/"));

    EXPECT_EQ(browsers.browsers(), (std::vector{two, one}));
    EXPECT_EQ(browsers.activeTabId(), two->id());
    EXPECT_EQ(browsers.visibleBrowser(), two);
    EXPECT_TRUE(browsers.splitTabId().isEmpty());
}

TEST_F(WorkspaceBrowsersTest, AClosedTabIsGoneForTheOthersAndKeptByItsHolder)
{
    const auto tab = browsers.openBrowser(QUrl("http://one.test/"));

    EXPECT_TRUE(browsers.closeBrowser(tab->id()));
    EXPECT_FALSE(browsers.closeBrowser(tab->id()));

    EXPECT_TRUE(browsers.browsers().empty());
    EXPECT_EQ(tab->url(), QUrl("http://one.test/"));
    EXPECT_EQ(tab->page(), nullptr);
}
