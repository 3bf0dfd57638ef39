#include "Tests/Support/ViewHarness.h"
#include "Views/Console/ConsoleCarrier.h"
#include "Views/Console/ConsoleHead.h"
#include "Views/Console/GroupChip.h"
#include "Views/Console/PaneDropArea.h"
#include "Views/Console/PaneHead.h"
#include "Views/Console/PaneView.h"
#include "Views/Console/TerminalPanelView.h"
#include "Views/Kit/IconButton.h"

#include <QDropEvent>
#include <QMimeData>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

using Edge = ConsoleDrag::Edge;
using Kind = ConsoleDrag::Kind;

/// A console with the tabs (a, b) and (c), whose panes are named so, the first one on show.
struct ConsoleDropTest : testing::Test {
    ConsoleDropTest()
        : services(views.openProject())
    {
        addTab({"a", "b"});
        addTab({"c"});
        panel().activateGroup(panel().groups()[0].get());
        panel().show();
        view = std::make_unique<TerminalPanelView>(services, panel(), nullptr);
        view->resize(900, 600);
        view->show();
        view->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
        ViewHarness::settle();
    }

    void addTab(const QStringList& names)
    {
        panel().addGroup(PaneKind::Chat, std::nullopt);
        for (qsizetype at = 1; at < names.size(); ++at)
            panel().addPane(PaneKind::Chat);
        for (qsizetype at = 0; at < names.size(); ++at)
            panel().groups().back()->panes()[std::size_t(at)]->setName(names[at]);
    }
    [[nodiscard]] TerminalPanel& panel() const { return views.workspace->terminal(); }
    [[nodiscard]] ConsoleDrag& drag() const { return view->drag(); }
    [[nodiscard]] ConsolePane* pane(const QString& name) const
    {
        for (const auto& group : panel().groups()) {
            for (const auto& each : group->panes()) {
                if (each->label() == name)
                    return each.get();
            }
        }
        return nullptr;
    }
    [[nodiscard]] GroupChip& chip(const QString& name) const
    {
        const QString id = panel().groupOf(pane(name))->id();
        return **std::ranges::find(view->head().chips(), id, &GroupChip::groupId);
    }
    [[nodiscard]] PaneDropArea& area(const QString& name) const
    {
        return view->paneView(pane(name)->id())->dropArea();
    }
    [[nodiscard]] QString layout() const
    {
        QStringList groups;
        for (const auto& each : panel().groups()) {
            QString names;
            for (const auto& one : each->panes())
                names += one->label();
            groups.append(names);
        }
        return groups.join(' ');
    }

    void dragPane(const QString& name) { start({Kind::Pane, pane(name)->id()}); }
    void dragGroup(const QString& name) { start({Kind::Group, panel().groupOf(pane(name))->id()}); }
    void start(const ConsoleDrag::Item& item)
    {
        data.setData(ConsoleDrag::type(item.kind), item.id.toUtf8());
        drag().start(item);
    }
    /// The pointer comes over a target; whether it may be dropped there.
    bool enter(QWidget& target, Edge edge)
    {
        QDragEnterEvent event(point(target, edge), Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&target, &event);
        return event.isAccepted();
    }
    void leave(QWidget& target)
    {
        QDragLeaveEvent event;
        QApplication::sendEvent(&target, &event);
    }
    void drop(QWidget& target, Edge edge)
    {
        enter(target, edge);
        QDropEvent event(point(target, edge), Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&target, &event);
        ViewHarness::settle();
    }
    static QPoint point(const QWidget& target, Edge edge)
    {
        return {edge == Edge::Leading ? 4 : target.width() - 4, target.height() / 2};
    }

    ViewHarness views;
    ViewServices services;
    std::unique_ptr<TerminalPanelView> view;
    QMimeData data;
};

} // namespace

TEST_F(ConsoleDropTest, PanesTakeDropsOnlyDuringADrag)
{
    EXPECT_FALSE(area("a").isVisible());

    dragPane("b");
    EXPECT_TRUE(area("a").isVisible());
    EXPECT_EQ(area("a").geometry(), view->paneView(pane("a")->id())->rect());
    drag().finish();

    EXPECT_FALSE(area("a").isVisible());
}

TEST_F(ConsoleDropTest, TheHalfUnderThePointerIsLit)
{
    dragPane("b");

    EXPECT_TRUE(enter(area("a"), Edge::Leading));
    EXPECT_EQ(area("a").litEdge(), Edge::Leading);
    EXPECT_TRUE(enter(area("a"), Edge::Trailing));
    EXPECT_EQ(area("a").litEdge(), Edge::Trailing);
    leave(area("a"));

    EXPECT_EQ(area("a").litEdge(), std::nullopt);
}

TEST_F(ConsoleDropTest, TheLitHalfCanBeSeen)
{
    dragPane("b");
    enter(area("a"), Edge::Leading);

    const QImage picture = area("a").grab().toImage();

    const int middle = picture.height() / 2;
    const QColor left = picture.pixelColor(1, middle);
    const QColor right = picture.pixelColor(picture.width() - 2, middle);
    EXPECT_NE(left, right);
}

TEST_F(ConsoleDropTest, APaneIsDroppedBesideAnother)
{
    dragPane("a");

    drop(area("b"), Edge::Trailing);

    EXPECT_EQ(layout(), "ba c");
    EXPECT_EQ(drag().item(), std::nullopt);
    EXPECT_EQ(views.motion.inFlight(), 0);
    EXPECT_LT(view->paneView(pane("b")->id())->x(), view->paneView(pane("a")->id())->x());
}

TEST_F(ConsoleDropTest, APaneKeepsItsViewWhereverItGoes)
{
    const PaneView* before = view->paneView(pane("a")->id());
    dragPane("a");

    drop(chip("c"), Edge::Leading);

    EXPECT_EQ(layout(), "b ca");
    EXPECT_EQ(view->paneView(pane("a")->id()), before);
}

TEST_F(ConsoleDropTest, APaneIsRefusedByItself)
{
    dragPane("a");

    EXPECT_FALSE(enter(area("a"), Edge::Leading));
    EXPECT_EQ(area("a").litEdge(), std::nullopt);
}

TEST_F(ConsoleDropTest, OverTheChipOfAnotherTabAPaneFindsThatTabsPanes)
{
    dragPane("a");

    EXPECT_TRUE(enter(chip("c"), Edge::Leading));
    leave(chip("c"));
    EXPECT_TRUE(area("c").isVisible());
    drop(area("c"), Edge::Leading);

    EXPECT_EQ(layout(), "b ac");
}

TEST_F(ConsoleDropTest, ALineShowsWhereATabGoes)
{
    dragGroup("c");
    EXPECT_EQ(view->head().dropLine(), std::nullopt);

    enter(chip("a"), Edge::Leading);
    ASSERT_TRUE(view->head().dropLine().has_value());
    EXPECT_LT(view->head().dropLine()->left(), chip("a").x());
    enter(chip("a"), Edge::Trailing);
    EXPECT_GT(view->head().dropLine()->left(), chip("a").x());
    drop(chip("a"), Edge::Leading);

    EXPECT_EQ(layout(), "c ab");
    EXPECT_EQ(view->head().dropLine(), std::nullopt);
    EXPECT_LT(chip("c").x(), chip("a").x());
}

TEST_F(ConsoleDropTest, APaneOnTheHeadGetsATab)
{
    dragPane("a");

    drop(view->head(), Edge::Trailing);

    EXPECT_EQ(layout(), "b c a");
    EXPECT_EQ(view->head().chips().size(), 3U);
}

TEST_F(ConsoleDropTest, ATabIsMergedIntoAnother)
{
    dragGroup("c");

    drop(area("a"), Edge::Trailing);

    EXPECT_EQ(layout(), "acb");
    EXPECT_EQ(view->head().chips().size(), 1U);
}

TEST_F(ConsoleDropTest, DataFromElsewhereIsRefused)
{
    data.setData(ConsoleDrag::type(Kind::Pane), pane("a")->id().toUtf8());

    EXPECT_FALSE(enter(chip("c"), Edge::Leading));
    EXPECT_FALSE(enter(view->head(), Edge::Leading));
    EXPECT_EQ(panel().activeGroup(), panel().groups()[0].get());
}

TEST_F(ConsoleDropTest, APaneThatEndsDuringItsDragCantBeDropped)
{
    dragPane("a");
    panel().close(pane("a"));
    ViewHarness::settle();

    EXPECT_FALSE(enter(chip("c"), Edge::Leading));
    EXPECT_FALSE(enter(area("b"), Edge::Leading));
    EXPECT_FALSE(enter(view->head(), Edge::Leading));
    // The system tells no target of such a release.
    for (int tick = 0; tick < ConsoleDrag::ReleasedTicks; ++tick)
        drag().tick();

    EXPECT_EQ(layout(), "b c");
    EXPECT_EQ(drag().item(), std::nullopt);
}

TEST_F(ConsoleDropTest, AConsoleThatGoesDuringADragLeavesNoHold)
{
    dragPane("a");
    ASSERT_EQ(views.motion.inFlight(), 1);

    view.reset();

    EXPECT_EQ(views.motion.inFlight(), 0);
}

TEST_F(ConsoleDropTest, ThePictureOfADragIsBoundedAndKeepsItsGrip)
{
    QPoint grip(view->width() / 2, 10);

    const QPixmap picture = ConsoleCarrier::picture(*view, 8, views.theme, grip);

    EXPECT_LE(picture.deviceIndependentSize().width(), 400);
    EXPECT_TRUE(QRectF(QPointF(), picture.deviceIndependentSize()).contains(grip));
    EXPECT_NEAR(grip.x(), picture.deviceIndependentSize().width() / 2, 2);
}

TEST_F(ConsoleDropTest, WhereNothingIsSeeThroughThePictureHasNoMarginAndNoHole)
{
    const Theme plain({.dark = true, .reducedMotion = true, .composited = false});
    QPoint grip(0, 0);

    const QImage picture = ConsoleCarrier::picture(*view, 8, plain, grip).toImage();

    EXPECT_EQ(grip, QPoint(0, 0));
    EXPECT_EQ(picture.pixelColor(0, 0).alpha(), 255);
    EXPECT_EQ(picture.pixelColor(picture.width() - 1, picture.height() - 1).alpha(), 255);
}

TEST_F(ConsoleDropTest, AShortWayWithThePointerIsNoDrag)
{
    PaneHead& head = view->paneView(pane("a")->id())->head();
    int requests = 0;
    QObject::connect(&head, &PaneHead::dragRequested, &head, [&requests] { ++requests; });

    QTest::mousePress(&head, Qt::LeftButton, {}, QPoint(60, 10));
    QMouseEvent little(QEvent::MouseMove, QPointF(62, 10), head.mapToGlobal(QPointF(62, 10)),
                       Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(&head, &little);
    EXPECT_EQ(requests, 0);
    QMouseEvent far(QEvent::MouseMove, QPointF(120, 14), head.mapToGlobal(QPointF(120, 14)),
                    Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(&head, &far);

    EXPECT_EQ(requests, 1);
}
