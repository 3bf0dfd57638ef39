#include "App/AppDelegate.h"
#include "Tests/Support/FakeRunningApplications.h"
#include "Tests/Support/WorkspaceHarness.h"

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct AppDelegateTest : testing::Test {
    void open(std::unique_ptr<Workspace> made, const std::optional<QString>& folder)
    {
        workspace = std::move(made);
        LaunchRole role;
        role.folder = folder;
        apps.emplace(role, harness.paths, harness.shared, harness.desktop, harness.dialogs,
                     running);
        delegate =
            std::make_unique<AppDelegate>(AppDelegate::Services{role,
                                                                *workspace,
                                                                {harness.shared, harness.standard},
                                                                harness.desktop,
                                                                harness.scheduler(),
                                                                *apps,
                                                                [this] { ++activations; },
                                                                [this] { return hasWindow; }});
    }
    void openProject() { open(harness.openProject(Pages::Available), harness.project()); }
    void openHome() { open(harness.openHome(), std::nullopt); }

    WorkspaceHarness harness;
    FakeRunningApplications running;
    std::optional<SpaceApps> apps;
    std::unique_ptr<Workspace> workspace;
    std::unique_ptr<AppDelegate> delegate;
    int activations = 0;
    bool hasWindow = true;
};

} // namespace

TEST_F(AppDelegateTest, APendingLaunchOfTheMigrationIsCarriedOutOnce)
{
    harness.makeFolder("old");
    harness.shared.set("migrated.pendingLaunch", harness.home() + "/old");
    openHome();

    delegate->didFinishLaunching();

    ASSERT_EQ(harness.launcher.launches.size(), 1);
    EXPECT_EQ(harness.launcher.launches.first().first, harness.home() + "/old");
    EXPECT_FALSE(harness.shared.contains("migrated.pendingLaunch"));
}

TEST_F(AppDelegateTest, AProjectLeavesThePendingLaunchToTheHomeApplication)
{
    harness.shared.set("migrated.pendingLaunch", harness.home());
    openProject();

    delegate->didFinishLaunching();

    EXPECT_TRUE(harness.shared.contains("migrated.pendingLaunch"));
    EXPECT_EQ(activations, 1);
}

TEST_F(AppDelegateTest, ALinkThatCantBeReadIsDroppedAndTheNextOneCounts)
{
    openHome();
    harness.makeFolder("other");

    delegate->open({"bralto://nonsense", "bralto://open?path=" + harness.home() + "/other"});

    ASSERT_EQ(harness.launcher.launches.size(), 1);
    EXPECT_EQ(harness.launcher.launches.first().first, harness.home() + "/other");
}

TEST_F(AppDelegateTest, AWebAddressOpensATabInAProjectAndTheDefaultBrowserWithoutOne)
{
    openProject();
    delegate->open({"https://example.org/a"});
    ASSERT_EQ(workspace->tabs().size(), 1U);
    EXPECT_EQ(workspace->tabs().front().browser()->url(), QUrl("https://example.org/a"));

    openHome();
    delegate->open({"HTTPS://example.org/b"});
    EXPECT_EQ(harness.desktop.opened.size(), 1);
}

TEST_F(AppDelegateTest, AnAddressThatIsNeitherWebNorFileIsIgnored)
{
    openProject();

    delegate->open({"mailto:someone@example.org"});

    EXPECT_TRUE(workspace->tabs().empty());
    EXPECT_TRUE(harness.launcher.launches.isEmpty());
}

TEST_F(AppDelegateTest, TheSessionIsWrittenBeforeTheQuestionThatCancelsTheQuit)
{
    openProject();
    const QString file = harness.write("folder/a.txt");
    workspace->openFile(file);
    workspace->documents().front()->setText("edited");
    ASSERT_TRUE(QDir(harness.path("folder")).removeRecursively());
    harness.shared.remove("session:" + harness.project());

    EXPECT_FALSE(delegate->shouldTerminate()) << "the first button keeps editing";

    EXPECT_TRUE(harness.shared.contains("session:" + harness.project()));
    EXPECT_EQ(workspace->documents().front()->text(), "edited");
}

TEST_F(AppDelegateTest, AWindowThatIsNotThereAfterHalfASecondIsBroughtBack)
{
    openHome();
    hasWindow = false;
    delegate->didFinishLaunching();
    const int before = activations;

    harness.scheduler().advance(std::chrono::milliseconds{500});

    EXPECT_EQ(activations, before + 1);
}
