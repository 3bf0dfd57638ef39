#include "Tests/Support/WorkspaceHarness.h"

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

const QUuid Session = QUuid::fromString(QStringLiteral("3f2504e0-4f89-41d3-9a0c-0305e82c3301"));

using Launches = QList<FakeProjectLauncher::Launch>;

/// The home application, with the default projects folder.
struct WorkspaceProjectsTest : testing::Test {
    [[nodiscard]] QString projects() const { return desk.paths.projects(); }

    static QString address(const BraltoLink& link)
    {
        return link.url().toString(QUrl::FullyEncoded);
    }

    WorkspaceHarness desk;
    std::unique_ptr<Workspace> workspace = desk.openHome();
};

} // namespace

// --- making folders

TEST_F(WorkspaceProjectsTest, AProjectFolderIsMadeWithAllAboveIt)
{
    const auto folder = workspace->makeProjectFolder("  My App\n", projects());

    ASSERT_TRUE(folder);
    EXPECT_EQ(*folder, projects() + "/My App");
    EXPECT_TRUE(QFileInfo(*folder).isDir());
}

TEST_F(WorkspaceProjectsTest, ANameThatIsNoneIsRefused)
{
    for (const QString name : {"", "  ", ".hidden", "a/b", "a:b"}) {
        SCOPED_TRACE(name.toStdString());
        const auto folder = workspace->makeProjectFolder(name, projects());
        ASSERT_FALSE(folder);
        EXPECT_EQ(folder.error().kind, ProjectFolderError::Kind::InvalidName);
        EXPECT_EQ(folder.error().title(), "“" + name + "” can’t be a project name");
        EXPECT_EQ(folder.error().text(),
                  "Use a name without “/” or “:” that doesn’t start with a dot.");
    }
    EXPECT_FALSE(QFileInfo::exists(projects()));
}

TEST_F(WorkspaceProjectsTest, ANameThatIsTakenIsRefused)
{
    const auto folder = workspace->makeProjectFolder("project", desk.home());

    ASSERT_FALSE(folder);
    EXPECT_EQ(folder.error(),
              (ProjectFolderError{ProjectFolderError::Kind::Exists, "project", {}}));
    EXPECT_EQ(folder.error().title(), "“project” already exists");
    EXPECT_EQ(folder.error().text(),
              "Pick another name, or open the existing project from the list.");
}

TEST_F(WorkspaceProjectsTest, WhatTheSystemRefusesIsToldInItsWords)
{
    const auto folder = workspace->makeProjectFolder("new", desk.write("file"));

    ASSERT_FALSE(folder);
    EXPECT_EQ(folder.error().title(), "Couldn’t create “new”");
    EXPECT_EQ(folder.error().text(), "Not a directory");
}

// --- new projects

TEST_F(WorkspaceProjectsTest, ANewProjectIsAskedForMadeAndOpened)
{
    desk.dialogs.texts = {"App"};

    const auto folder = workspace->createProject(projects());

    EXPECT_EQ(folder, projects() + "/App");
    EXPECT_EQ(desk.dialogs.prompts.value(0),
              (TextPrompt{"New Project",
                          "Bralto makes a folder with this name in “Claude Projects” and opens it.",
                          {},
                          {}}));
    EXPECT_EQ(desk.launcher.launches, Launches({{projects() + "/App", {}}}));
}

TEST_F(WorkspaceProjectsTest, ACancelledProjectIsNone)
{
    EXPECT_FALSE(workspace->createProject(projects()));
    EXPECT_FALSE(QFileInfo::exists(projects()));
}

TEST_F(WorkspaceProjectsTest, AFailureIsReportedAndOpensNothing)
{
    desk.dialogs.texts = {".hidden"};

    EXPECT_FALSE(workspace->createProject(projects()));

    ASSERT_EQ(desk.dialogs.alerts.size(), 1);
    EXPECT_EQ(desk.dialogs.alerts.first().title, "“.hidden” can’t be a project name");
    EXPECT_EQ(desk.dialogs.alerts.first().buttons, QStringList("OK"));
    EXPECT_TRUE(desk.launcher.launches.isEmpty());
}

TEST_F(WorkspaceProjectsTest, AProjectThatStartsClaudeGetsItsOwnLink)
{
    const auto folder = workspace->createProject("A & B", projects(), Workspace::StartClaude::Yes);

    ASSERT_TRUE(folder);
    EXPECT_EQ(desk.launcher.launches,
              Launches({{*folder, {address({BraltoLink::Open{*folder}})}}}));
}

TEST_F(WorkspaceProjectsTest, WithoutAProjectWhatIsNewIsAProject)
{
    desk.makeFolder("chosen");
    desk.shared.set("projectsRoot", desk.home() + "/chosen");
    desk.dialogs.texts = {"App"};

    workspace->newInFocusedArea();

    EXPECT_EQ(desk.launcher.launches, Launches({{desk.home() + "/chosen/App", {}}}));
}

// --- links

TEST_F(WorkspaceProjectsTest, ALinkToAnotherProjectOpensIt)
{
    workspace->perform({BraltoLink::Open{desk.project() + "/"}});

    EXPECT_EQ(desk.launcher.launches, Launches({{desk.project(), {}}}));
}

TEST_F(WorkspaceProjectsTest, ALinkToThisProjectOpensAConsoleThatIsNew)
{
    workspace = desk.openProject();

    workspace->perform({BraltoLink::Open{desk.project()}});
    EXPECT_TRUE(workspace->terminal().isVisible());
    ASSERT_EQ(workspace->terminal().groups().size(), 1U);

    workspace->terminal().hide();
    workspace->perform({BraltoLink::Open{desk.project()}});
    EXPECT_FALSE(workspace->terminal().isVisible());
    EXPECT_TRUE(desk.launcher.launches.isEmpty());
}

TEST_F(WorkspaceProjectsTest, ALinkToWhatIsNoFolderDoesNothing)
{
    workspace = desk.openProject();
    for (const QString& path :
         {QString("relative"), QString(), desk.home() + "/gone", desk.write("file")}) {
        SCOPED_TRACE(path.toStdString());
        workspace->perform({BraltoLink::Open{path}});
        workspace->perform({BraltoLink::Reveal{"pane", path}});
        workspace->perform({BraltoLink::Resume{path, Session}});
    }

    EXPECT_TRUE(desk.launcher.launches.isEmpty());
    EXPECT_FALSE(workspace->terminal().hasPanes());
}

TEST_F(WorkspaceProjectsTest, ALinkForANewProjectMakesItWithAConsole)
{
    workspace->perform({BraltoLink::New{"App"}});

    const QString folder = projects() + "/App";
    EXPECT_EQ(desk.launcher.launches, Launches({{folder, {address({BraltoLink::Open{folder}})}}}));
}

TEST_F(WorkspaceProjectsTest, ALinkToAConversationIsHandedToItsProject)
{
    const BraltoLink link{BraltoLink::Resume{desk.project(), Session}};
    workspace->perform(link);
    EXPECT_EQ(desk.launcher.launches, Launches({{desk.project(), {address(link)}}}));

    workspace = desk.openProject();
    workspace->perform(link);
    ASSERT_EQ(workspace->terminal().groups().size(), 1U);
    EXPECT_EQ(workspace->terminal().groups()[0]->panes()[0]->claudeSessionId(),
              Session.toString(QUuid::WithoutBraces));
    EXPECT_TRUE(workspace->terminal().isVisible());
}

TEST_F(WorkspaceProjectsTest, ALinkToAPaneOpensItsProject)
{
    workspace->perform({BraltoLink::Reveal{"pane", desk.project()}});

    EXPECT_EQ(desk.launcher.launches, Launches({{desk.project(), {}}}));
}
