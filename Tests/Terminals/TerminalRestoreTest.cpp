#include "Terminals/TerminalPanel.h"
#include "Tests/Support/FakePanes.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

const QString SessionA = "3f2504e0-4f89-41d3-9a0c-0305e82c3301";
const QString SessionB = "3f2504e0-4f89-41d3-9a0c-0305e82c3302";

struct TerminalRestoreTest : testing::Test {
    std::unique_ptr<TerminalPanel> restored(const PanelSnapshot& snapshot)
    {
        return std::make_unique<TerminalPanel>(folder.path(), snapshot, panes.panelServices());
    }

    [[nodiscard]] PaneSnapshot chat(const std::optional<QString>& session) const
    {
        PaneSnapshot pane;
        pane.claudeSessionId = session;
        pane.directory = folder.path();
        return pane;
    }

    const QTemporaryDir folder;
    PaneMaker panes;
    ChatMaker& chats = panes.chats;
};

} // namespace

TEST_F(TerminalRestoreTest, APanelComesBackAsItWasSaved)
{
    PanelSnapshot kept{true, 0.3, 1, {}};
    kept.groups.push_back({{chat(SessionA)}, 0, "One"});
    kept.groups.push_back({{chat(SessionB), chat(SessionA)}, 1, std::nullopt});
    kept.groups[1].panes[0].name = "Left";
    kept.groups[1].panes[1].style = PaneStyle{"ocean", std::nullopt, 15.0};

    const auto panel = restored(kept);

    EXPECT_EQ(panel->snapshot(), kept);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_FALSE(panel->isMaximized());
    EXPECT_EQ(panel->activeGroup(), panel->groups()[1].get());
    EXPECT_EQ(panel->activeGroup()->focusedPane(), panel->groups()[1]->panes()[1].get());
    EXPECT_EQ(panel->groups()[0]->title(), "One");
}

TEST_F(TerminalRestoreTest, APanelWithoutGroupsSavesAndRestoresHidden)
{
    PanelSnapshot kept;
    kept.isVisible = true;

    const auto panel = restored(kept);

    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(panel->snapshot(), PanelSnapshot{});
}

TEST_F(TerminalRestoreTest, ChatsThatNeverBeganAreNotRestored)
{
    PanelSnapshot kept{true, 0.5, 0, {}};
    kept.groups.push_back({{chat(std::nullopt), chat(std::nullopt)}, 1, "Gone"});

    const auto panel = restored(kept);

    EXPECT_FALSE(panel->hasPanes());
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(panel->activeGroup(), nullptr);
}

TEST_F(TerminalRestoreTest, AFocusBeyondThePanesThatAreLeftGoesToTheLast)
{
    PanelSnapshot kept{false, 0.5, 0, {}};
    kept.groups.push_back({{chat(SessionA), chat(SessionB), chat(std::nullopt)}, 2, std::nullopt});
    kept.groups.push_back({{chat(SessionA)}, -7, std::nullopt});

    const auto panel = restored(kept);

    EXPECT_EQ(panel->groups()[0]->focusedPane(), panel->groups()[0]->panes()[1].get());
    EXPECT_EQ(panel->groups()[1]->focusedPane(), panel->groups()[1]->panes()[0].get());
}

TEST_F(TerminalRestoreTest, AnActiveTabOutOfRangeIsTheFirst)
{
    for (const int index : {-1, 2, 2147483647}) {
        PanelSnapshot kept{true, 0.5, index, {}};
        kept.groups.push_back({{chat(SessionA)}, 0, std::nullopt});
        kept.groups.push_back({{chat(SessionB)}, 0, std::nullopt});

        const auto panel = restored(kept);

        EXPECT_EQ(panel->activeGroup(), panel->groups()[0].get()) << index;
    }
}

TEST_F(TerminalRestoreTest, AConversationInATerminalGoesOnThereAndAShellBelowItsOldText)
{
    PaneSnapshot claude = chat(SessionA);
    claude.kind = PaneKind::Claude;
    PaneSnapshot unknown = chat(std::nullopt);
    unknown.kind = PaneKind::Claude;
    PaneSnapshot shell = chat(std::nullopt);
    shell.kind = PaneKind::Shell;
    shell.scrollback = "make\nok";
    PanelSnapshot kept{true, 0.5, 0, {{{shell, claude, unknown}, 0, std::nullopt}}};

    const auto panel = restored(kept);

    ASSERT_EQ(panel->groups().size(), 1U);
    const auto& made = panel->groups()[0]->panes();
    ASSERT_EQ(made.size(), 3U);
    EXPECT_EQ(made[0]->kind(), PaneKind::Shell);
    EXPECT_EQ(made[0]->terminal()->scrollbackText(), "make\nok");
    EXPECT_EQ(made[1]->kind(), PaneKind::Claude);
    EXPECT_EQ(made[1]->claudeSessionId(), SessionA);
    EXPECT_EQ(made[2]->kind(), PaneKind::Claude);
    EXPECT_TRUE(QUuid::fromString(made[2]->claudeSessionId()).isNull() == false);
}

TEST_F(TerminalRestoreTest, AStyleThatNamesAThemeOfAnotherTimeIsKept)
{
    PaneSnapshot pane = chat(SessionA);
    pane.style = PaneStyle{"sunset", std::nullopt, std::nullopt};
    PanelSnapshot kept{true, 0.5, 0, {{{pane}, 0, std::nullopt}}};

    const auto panel = restored(kept);

    EXPECT_EQ(panel->groups()[0]->panes()[0]->style().theme, "sunset");
    EXPECT_EQ(panel->snapshot(), kept);
    EXPECT_STREQ(PaneTheme::named("sunset").id, "default");
}

TEST_F(TerminalRestoreTest, AShellThatCannotStartTakesItsPaneAlong)
{
    panes.shellsStart = false;
    PaneSnapshot shell = chat(std::nullopt);
    shell.kind = PaneKind::Shell;
    PanelSnapshot kept{true, 0.5, 0, {{{shell, chat(SessionA)}, 0, std::nullopt}}};

    const auto panel = restored(kept);
    QCoreApplication::processEvents();

    ASSERT_EQ(panel->groups().size(), 1U);
    ASSERT_EQ(panel->groups()[0]->panes().size(), 1U);
    EXPECT_EQ(panel->groups()[0]->panes()[0]->kind(), PaneKind::Chat);
}

TEST_F(TerminalRestoreTest, TenThousandPanesComeBackAndCanAllBeClosed)
{
    PanelSnapshot kept{true, 0.5, 0, {}};
    PaneSnapshot shell = chat(std::nullopt);
    shell.kind = PaneKind::Shell;
    for (int group = 0; group < 100; ++group)
        kept.groups.push_back({std::vector<PaneSnapshot>(100, shell), 99, std::nullopt});
    panes.host.rows = 0;

    const auto panel = restored(kept);
    ASSERT_EQ(panel->allSessions().size(), 10'000U);

    while (panel->hasPanes())
        panel->close(panel->groups().front().get());
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(TerminalRestoreTest, AChatWhoseFolderHasGoneStandsInTheProject)
{
    PaneSnapshot gone = chat(SessionA);
    gone.directory = folder.filePath("gone");
    PanelSnapshot kept{true, 0.5, 0, {{{gone}, 0, std::nullopt}}};

    const auto panel = restored(kept);

    EXPECT_EQ(panel->groups()[0]->panes()[0]->chat()->folder(), folder.path());
}

TEST_F(TerminalRestoreTest, AShareOutOfRangeIsHeldWithinTheLimits)
{
    PanelSnapshot kept;
    kept.editorFraction = 1e300;
    EXPECT_EQ(restored(kept)->editorFraction(), TerminalPanel::LargestFraction);
    kept.editorFraction = -1;
    EXPECT_EQ(restored(kept)->editorFraction(), TerminalPanel::SmallestFraction);
}

TEST_F(TerminalRestoreTest, ASessionThatIsNoUuidIsNotSaved)
{
    TerminalPanel::Services services = panes.panelServices();
    services.makeChat = [this](const QString& in, const std::optional<QString>&) {
        return chats.factory()(in, QStringLiteral("imported"));
    };
    TerminalPanel panel(folder.path(), std::nullopt, services);
    panel.addPane(PaneKind::Chat);

    EXPECT_FALSE(panel.snapshot().groups.at(0).panes.at(0).claudeSessionId);
}
