#include "Terminals/ConsoleDrag.h"
#include "Terminals/ConsoleDrop.h"
#include "Tests/Support/FakePanes.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

using Edge = ConsoleDrag::Edge;
using Kind = ConsoleDrag::Kind;
using Target = ConsoleDrag::Target;

/// A panel with the tabs (a, b, c), (d) and (e), whose panes are named so.
struct ConsoleDragTest : testing::Test {
    ConsoleDragTest()
    {
        addTab({"a", "b", "c"});
        addTab({"d"});
        addTab({"e"});
        panel.activateGroup(group("a"));
    }

    void addTab(const QStringList& names)
    {
        panel.addGroup(PaneKind::Chat, std::nullopt);
        for (qsizetype at = 1; at < names.size(); ++at)
            panel.addPane(PaneKind::Chat);
        for (qsizetype at = 0; at < names.size(); ++at)
            panel.groups().back()->panes()[std::size_t(at)]->setName(names[at]);
    }
    [[nodiscard]] ConsolePane* pane(const QString& name) const
    {
        for (const auto& each : panel.groups()) {
            for (const auto& pane : each->panes()) {
                if (pane->label() == name)
                    return pane.get();
            }
        }
        return nullptr;
    }
    /// The tab that holds the pane.
    [[nodiscard]] TerminalGroup* group(const QString& name) const
    {
        return panel.groupOf(pane(name));
    }
    /// The panes of all tabs: "abc d e".
    [[nodiscard]] QString layout() const
    {
        QStringList groups;
        for (const auto& each : panel.groups()) {
            QString names;
            for (const auto& pane : each->panes())
                names += pane->label();
            groups.append(names);
        }
        return groups.join(' ');
    }

    void dragPane(const QString& name) { drag.start({Kind::Pane, pane(name)->id()}); }
    void dragGroup(const QString& name) { drag.start({Kind::Group, group(name)->id()}); }
    /// Over the left or the right half of a target that is a hundred wide.
    [[nodiscard]] ConsoleDropInfo at(Edge edge) const
    {
        return {.formats = {ConsoleDrag::type(drag.item() ? drag.item()->kind : Kind::Pane)},
                .x = edge == Edge::Leading ? 10.0 : 90.0,
                .width = 100};
    }
    [[nodiscard]] PaneDropDelegate onPane(const QString& name)
    {
        return {drag, panel, pane(name)->id()};
    }
    [[nodiscard]] ChipDropDelegate onChip(const QString& name)
    {
        return {drag, panel, group(name)->id()};
    }
    [[nodiscard]] HeaderDropDelegate onHeader() { return {drag, panel}; }

    PaneMaker maker;
    TerminalPanel panel{"/p", std::nullopt, maker.panelServices()};
    bool isPressed = true;
    ConsoleDrag drag{maker.motion, [this] { return isPressed; }};
};

} // namespace

// --- following a drag

TEST_F(ConsoleDragTest, WithoutADragThereIsNeitherItemNorTimerNorHold)
{
    EXPECT_EQ(drag.item(), std::nullopt);
    EXPECT_EQ(drag.target(), std::nullopt);
    EXPECT_FALSE(drag.isWatching());
    EXPECT_EQ(maker.motion.inFlight(), 0);
}

TEST_F(ConsoleDragTest, ADragHoldsTheGridOfTerminals)
{
    dragPane("a");

    EXPECT_TRUE(drag.isWatching());
    EXPECT_EQ(maker.motion.inFlight(), 1);
}

TEST_F(ConsoleDragTest, ADragReleasedOutsideEveryTargetEndsAfterSixTicks)
{
    dragPane("a");
    drag.point({Target::Place::NewTab, {}, {}});
    isPressed = false;

    for (int tick = 0; tick < ConsoleDrag::ReleasedTicks - 1; ++tick)
        drag.tick();
    EXPECT_TRUE(drag.item().has_value());
    drag.tick();

    EXPECT_EQ(drag.item(), std::nullopt);
    EXPECT_EQ(drag.target(), std::nullopt);
    EXPECT_FALSE(drag.isWatching());
    EXPECT_EQ(maker.motion.inFlight(), 0);
}

TEST_F(ConsoleDragTest, ABriefReleaseDoesntEndADrag)
{
    dragPane("a");

    for (int round = 0; round < 4; ++round) {
        isPressed = false;
        for (int tick = 0; tick < ConsoleDrag::ReleasedTicks - 1; ++tick)
            drag.tick();
        isPressed = true;
        drag.tick();
    }

    EXPECT_TRUE(drag.item().has_value());
}

TEST_F(ConsoleDragTest, ASecondDragCountsItsTicksAnew)
{
    dragPane("a");
    isPressed = false;
    for (int tick = 0; tick < ConsoleDrag::ReleasedTicks - 1; ++tick)
        drag.tick();
    drag.finish();

    dragPane("b");
    drag.tick();

    EXPECT_TRUE(drag.item().has_value());
}

TEST_F(ConsoleDragTest, FinishingTellsOnlyWhatChanges)
{
    const QSignalSpy items(&drag, &ConsoleDrag::itemChanged);
    const QSignalSpy targets(&drag, &ConsoleDrag::targetChanged);

    drag.finish();
    EXPECT_EQ(items.size(), 0);
    dragPane("a");
    drag.finish();

    EXPECT_EQ(items.size(), 2);
    EXPECT_EQ(targets.size(), 0);
}

TEST_F(ConsoleDragTest, PointingAtTheSameTargetTwiceTellsOnce)
{
    dragPane("a");
    const QSignalSpy targets(&drag, &ConsoleDrag::targetChanged);

    drag.point({Target::Place::Pane, "x", Edge::Leading});
    drag.point({Target::Place::Pane, "x", Edge::Leading});
    drag.point({Target::Place::Pane, "x", Edge::Trailing});

    EXPECT_EQ(targets.size(), 2);
}

TEST_F(ConsoleDragTest, LeavingATargetKeepsTheNextOne)
{
    dragPane("a");
    onPane("b").dropUpdated(at(Edge::Leading));
    onPane("c").dropUpdated(at(Edge::Leading));

    onPane("b").dropExited();
    EXPECT_EQ(drag.target(), (Target{Target::Place::Pane, pane("c")->id(), Edge::Leading}));
    onPane("c").dropExited();

    EXPECT_EQ(drag.target(), std::nullopt);
}

TEST_F(ConsoleDragTest, TheMiddleOfATargetBelongsToItsTrailingHalf)
{
    EXPECT_EQ(ConsoleDrag::edge(0, 100), Edge::Leading);
    EXPECT_EQ(ConsoleDrag::edge(49.9, 100), Edge::Leading);
    EXPECT_EQ(ConsoleDrag::edge(50, 100), Edge::Trailing);
    EXPECT_EQ(ConsoleDrag::edge(0, 0), Edge::Trailing);
}

// --- what is dragged

TEST_F(ConsoleDragTest, TheTypesArePrivate)
{
    EXPECT_EQ(ConsoleDrag::types(),
              QStringList({"com.tolvane.bralto.console-pane", "com.tolvane.bralto.console-group"}));
}

TEST_F(ConsoleDragTest, TheItemAndNotTheDataDecides)
{
    dragPane("a");

    EXPECT_EQ(drag.draggedPane(panel, {ConsoleDrag::type(Kind::Pane)}), pane("a"));
    EXPECT_EQ(drag.draggedGroup(panel, {ConsoleDrag::type(Kind::Group)}), nullptr);
    EXPECT_EQ(drag.draggedPane(panel, {"text/plain"}), nullptr);
    drag.finish();
    EXPECT_EQ(drag.draggedPane(panel, {ConsoleDrag::type(Kind::Pane)}), nullptr);
}

TEST_F(ConsoleDragTest, ADragOfAnotherProjectCantBeDroppedHere)
{
    TerminalPanel other("/q", std::nullopt, maker.panelServices());
    other.addGroup(PaneKind::Chat, std::nullopt);
    drag.start({Kind::Pane, other.groups()[0]->panes()[0]->id()});

    EXPECT_EQ(onPane("a").dropUpdated(at(Edge::Leading)), DropProposal::Forbidden);
    EXPECT_EQ(onChip("a").dropUpdated(at(Edge::Leading)), DropProposal::Forbidden);
    EXPECT_EQ(onHeader().dropUpdated(at(Edge::Leading)), DropProposal::Forbidden);
    EXPECT_FALSE(onPane("a").performDrop(at(Edge::Leading)));

    EXPECT_EQ(layout(), "abc d e");
    EXPECT_EQ(drag.item(), std::nullopt);
}

TEST_F(ConsoleDragTest, ThePaneThatIsDraggedMayEndMeanwhile)
{
    dragPane("d");
    const QString id = group("a")->id();
    panel.close(pane("d"));

    EXPECT_FALSE(ChipDropDelegate(drag, panel, id).performDrop(at(Edge::Leading)));

    EXPECT_EQ(layout(), "abc e");
    EXPECT_EQ(maker.motion.inFlight(), 0);
}

// --- onto a pane

TEST_F(ConsoleDragTest, APaneGoesToEitherSideOfAnother)
{
    dragPane("d");
    EXPECT_TRUE(onPane("b").performDrop(at(Edge::Leading)));
    EXPECT_EQ(layout(), "adbc e");

    dragPane("e");
    EXPECT_TRUE(onPane("c").performDrop(at(Edge::Trailing)));

    EXPECT_EQ(layout(), "adbce");
    EXPECT_EQ(panel.activeGroup()->focusedPane(), pane("e"));
}

TEST_F(ConsoleDragTest, APaneMovesWithinItsTab)
{
    dragPane("a");
    onPane("c").performDrop(at(Edge::Trailing));
    EXPECT_EQ(layout(), "bca d e");

    dragPane("a");
    onPane("b").performDrop(at(Edge::Leading));

    EXPECT_EQ(layout(), "abc d e");
}

TEST_F(ConsoleDragTest, TheGapsBesideAPaneLeaveItWhereItIs)
{
    dragPane("b");
    EXPECT_TRUE(onPane("a").performDrop(at(Edge::Trailing)));
    dragPane("b");
    EXPECT_TRUE(onPane("c").performDrop(at(Edge::Leading)));

    EXPECT_EQ(layout(), "abc d e");
    EXPECT_EQ(panel.activeGroup()->focusedPane(), pane("b"));
}

TEST_F(ConsoleDragTest, APaneCantBeDroppedOnItself)
{
    dragPane("b");

    EXPECT_FALSE(onPane("b").validateDrop(at(Edge::Leading)));
    EXPECT_EQ(onPane("b").dropUpdated(at(Edge::Leading)), DropProposal::Forbidden);
    EXPECT_EQ(drag.target(), std::nullopt);
    EXPECT_FALSE(onPane("b").performDrop(at(Edge::Leading)));

    EXPECT_EQ(layout(), "abc d e");
    EXPECT_EQ(drag.item(), std::nullopt);
}

TEST_F(ConsoleDragTest, ATabGoesIntoAnotherBesideAPane)
{
    dragGroup("a");
    EXPECT_EQ(onPane("d").dropUpdated(at(Edge::Trailing)), DropProposal::Move);
    EXPECT_EQ(drag.target(), (Target{Target::Place::Pane, pane("d")->id(), Edge::Trailing}));

    EXPECT_TRUE(onPane("d").performDrop(at(Edge::Trailing)));

    EXPECT_EQ(layout(), "dabc e");
}

TEST_F(ConsoleDragTest, ATabCantGoIntoItself)
{
    dragGroup("a");

    EXPECT_EQ(onPane("b").dropUpdated(at(Edge::Trailing)), DropProposal::Forbidden);
}

// --- onto a chip

TEST_F(ConsoleDragTest, EnteringAChipWithAPaneOfAnotherTabOpensThatTab)
{
    dragPane("a");

    onChip("e").dropEntered(at(Edge::Leading));

    EXPECT_EQ(panel.activeGroup(), group("e"));
}

TEST_F(ConsoleDragTest, EnteringAChipWithATabLeavesTheTabsAsTheyAre)
{
    dragGroup("a");

    onChip("e").dropEntered(at(Edge::Leading));

    EXPECT_EQ(panel.activeGroup(), group("a"));
}

TEST_F(ConsoleDragTest, APaneOnAChipGoesToTheEndOfThatTab)
{
    dragPane("a");
    EXPECT_EQ(onChip("e").dropUpdated(at(Edge::Leading)), DropProposal::Move);
    EXPECT_EQ(drag.target(), (Target{Target::Place::Chip, group("e")->id(), std::nullopt}));

    EXPECT_TRUE(onChip("e").performDrop(at(Edge::Leading)));

    EXPECT_EQ(layout(), "bc d ea");
}

TEST_F(ConsoleDragTest, APaneOnItsOwnTabsChipGoesToItsEnd)
{
    dragPane("a");

    EXPECT_TRUE(onChip("a").performDrop(at(Edge::Leading)));

    EXPECT_EQ(layout(), "bca d e");
}

TEST_F(ConsoleDragTest, ATabGoesToEitherSideOfAChip)
{
    struct Case {
        QString dragged;
        QString target;
        Edge edge;
        QString expected;
    };
    const std::vector<Case> cases{
        {"a", "e", Edge::Leading, "d abc e"},  {"a", "e", Edge::Trailing, "d e abc"},
        {"e", "a", Edge::Leading, "e abc d"},  {"e", "a", Edge::Trailing, "abc e d"},
        {"d", "d", Edge::Leading, "abc d e"},  {"d", "d", Edge::Trailing, "abc d e"},
        {"d", "a", Edge::Trailing, "abc d e"}, {"d", "e", Edge::Leading, "abc d e"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.dragged.toStdString() + " onto " + each.target.toStdString());
        dragGroup(each.dragged);
        EXPECT_EQ(onChip(each.target).dropUpdated(at(each.edge)), DropProposal::Move);
        EXPECT_EQ(drag.target(),
                  (Target{Target::Place::Chip, group(each.target)->id(), each.edge}));

        EXPECT_TRUE(onChip(each.target).performDrop(at(each.edge)));

        EXPECT_EQ(layout(), each.expected);
        EXPECT_EQ(drag.item(), std::nullopt);
        // As it was.
        panel.moveGroup(group("a"), 0);
        panel.moveGroup(group("e"), 2);
    }
}

// --- onto the head

TEST_F(ConsoleDragTest, APaneOnTheHeadGetsATabOfItsOwnAtTheEnd)
{
    dragPane("b");
    EXPECT_EQ(onHeader().dropUpdated(at(Edge::Leading)), DropProposal::Move);
    EXPECT_EQ(drag.target(), (Target{Target::Place::NewTab, {}, {}}));

    EXPECT_TRUE(onHeader().performDrop(at(Edge::Leading)));

    EXPECT_EQ(layout(), "ac d e b");
    EXPECT_EQ(panel.activeGroup(), group("b"));
}

TEST_F(ConsoleDragTest, ATabsOnlyPaneOnTheHeadTakesItsTabAlong)
{
    const QString id = group("d")->id();
    group("d")->setName("database");
    dragPane("d");

    EXPECT_TRUE(onHeader().performDrop(at(Edge::Leading)));

    EXPECT_EQ(layout(), "abc e d");
    EXPECT_EQ(panel.groups().back()->id(), id);
    EXPECT_EQ(panel.groups().back()->name(), "database");
}

TEST_F(ConsoleDragTest, ATabOnTheHeadGoesToTheEnd)
{
    dragGroup("a");

    EXPECT_TRUE(onHeader().performDrop(at(Edge::Leading)));

    EXPECT_EQ(layout(), "d e abc");
}

TEST_F(ConsoleDragTest, LeavingTheHeadClearsItsTarget)
{
    dragPane("a");
    onHeader().dropUpdated(at(Edge::Leading));

    onHeader().dropExited();

    EXPECT_EQ(drag.target(), std::nullopt);
}
