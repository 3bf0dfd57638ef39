#include "Terminals/TerminalPanel.h"
#include "Tests/Support/FakePanes.h"

#include <QCoreApplication>
#include <QSet>

#include <random>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

constexpr int Operations = 100'000;
constexpr std::size_t MostPanes = 24;

/// A user without a plan: every operation of the panel in any order, on what is there and on what
/// is not.
class AimlessUser {
public:
    explicit AimlessUser(unsigned seed)
        : m_random(seed)
    {
        panes.host.rows = 0;
        panel = std::make_unique<TerminalPanel>("/p", std::nullopt, panes.panelServices());
    }

    void act()
    {
        switch (upTo(20)) {
        case 0:
        case 1:
            if (paneCount() < MostPanes)
                panel->addPane(PaneKind(upTo(3)));
            break;
        case 2:
            if (paneCount() < MostPanes)
                panel->newTab(std::nullopt);
            break;
        case 3:
        case 4:
            panel->move(anyPane(), anyGroup(), upTo(6));
            break;
        case 5:
            panel->merge(anyGroup(), anyGroup(), upTo(6));
            break;
        case 6:
        case 7:
            panel->moveToNewGroup(anyPane(),
                                  upTo(2) ? std::optional(std::size_t(upTo(6))) : std::nullopt);
            break;
        case 8:
            panel->moveGroup(anyGroup(), upTo(6));
            break;
        case 9:
            panel->close(anyPane());
            break;
        case 10:
            if (upTo(4) == 0)
                panel->close(anyGroup());
            break;
        case 11:
            panel->toggleView(anyPane());
            break;
        case 12:
            panel->isVisible() ? panel->hide() : panel->show();
            break;
        case 13:
            panel->toggleMaximized();
            break;
        case 14:
            panel->cycle(upTo(2) == 0);
            break;
        case 15:
            panel->markFocused(anyPane());
            break;
        case 16:
            panes.chats.scheduler.advance(std::chrono::milliseconds(upTo(400)));
            break;
        case 17:
            endAnyShell();
            break;
        case 18:
            panel->resumeClaude(QUuid::createUuidV5(QUuid(), QByteArray::number(upTo(8))));
            break;
        default:
            if (upTo(50) == 0)
                startAgain();
            break;
        }
        if (upTo(7) == 0)
            QCoreApplication::processEvents();
    }

    void expectOrder() const
    {
        QSet<QString> ids;
        for (const auto& group : panel->groups()) {
            ASSERT_FALSE(group->panes().empty());
            ASSERT_TRUE(group->focusedPane());
            ASSERT_EQ(group->focusedPane()->id(), group->focusedPaneId());
            ids.insert(group->id());
            for (const auto& pane : group->panes()) {
                ASSERT_FALSE(ids.contains(pane->id()));
                ids.insert(pane->id());
                ASSERT_EQ(panel->groupOf(pane.get()), group.get());
                ASSERT_NE(pane->terminal() == nullptr, pane->chat() == nullptr);
            }
        }
        ASSERT_EQ(panel->activeGroup() == nullptr, panel->groups().empty());
        ASSERT_FALSE(panel->isVisible() && panel->isParked());
        ASSERT_FALSE(panel->isVisible() && panel->groups().empty());
    }

    void expectASnapshotThatCanBeRead() const
    {
        const PanelSnapshot snapshot = panel->snapshot();
        ASSERT_EQ(PanelSnapshot::decode(snapshot.encode()), snapshot);
    }

    PaneMaker panes;
    std::unique_ptr<TerminalPanel> panel;

private:
    [[nodiscard]] unsigned upTo(unsigned end)
    {
        return std::uniform_int_distribution<unsigned>(0, end - 1)(m_random);
    }
    [[nodiscard]] std::size_t paneCount() const
    {
        std::size_t count = 0;
        for (const auto& group : panel->groups())
            count += group->panes().size();
        return count;
    }
    /// Now and then one that is not there.
    [[nodiscard]] const TerminalGroup* anyGroup()
    {
        const auto index = upTo(unsigned(panel->groups().size()) + 1);
        return index < panel->groups().size() ? panel->groups()[index].get() : nullptr;
    }
    [[nodiscard]] const ConsolePane* anyPane()
    {
        const TerminalGroup* group = anyGroup();
        return group ? group->panes()[upTo(unsigned(group->panes().size()))].get() : nullptr;
    }
    void endAnyShell()
    {
        const auto sessions = panel->allSessions();
        if (sessions.empty())
            return;
        const TerminalSession* ending = sessions[upTo(unsigned(sessions.size()))];
        if (ending->isRunning())
            panes.processOf(*ending).end();
    }
    void startAgain()
    {
        const PanelSnapshot kept = panel->snapshot();
        panel = std::make_unique<TerminalPanel>("/p", kept, panes.panelServices());
    }

    std::mt19937 m_random;
};

} // namespace

TEST(PanelOperations, ThePanelStaysInOrderWhateverIsDoneToIt)
{
    AimlessUser user(20261121);
    for (int operation = 0; operation < Operations; ++operation) {
        user.act();
        user.expectOrder();
        if (operation % 64 == 0)
            user.expectASnapshotThatCanBeRead();
        if (testing::Test::HasFatalFailure())
            FAIL() << "after operation " << operation;
    }
}
