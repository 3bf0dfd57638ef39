/// @file
/// Drags panes and tabs with a real pointer on a real X server, where the window system carries
/// them. The program starts itself a second time inside of a server of its own.

#include "Tests/Support/ViewHarness.h"
#include "Views/Console/ConsoleHead.h"
#include "Views/Console/GroupChip.h"
#include "Views/Console/PaneHead.h"
#include "Views/Console/PaneView.h"
#include "Views/Console/TerminalPanelView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTimer>
#include <QWindow>

#include <gtest/gtest.h>

#include <iostream>

using namespace Bralto;

namespace {

constexpr int LongestWaitMs = 20'000;

bool waitFor(const std::function<bool()>& condition)
{
    QElapsedTimer since;
    since.start();
    while (!condition()) {
        if (since.elapsed() > LongestWaitMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
    }
    return true;
}

/// A console with the tabs (a, b) and (c), whose panes are named so, the first one on show.
struct ConsoleDesktopTest : testing::Test {
    ConsoleDesktopTest()
        : services(views.openProject())
    {
        addTab({"a", "b"});
        addTab({"c"});
        panel().activateGroup(panel().groups()[0].get());
        panel().show();
        view = std::make_unique<TerminalPanelView>(services, panel(), nullptr);
        view->setWindowFlag(Qt::BypassWindowManagerHint);
        view->setGeometry(100, 100, 900, 500);
        view->show();
        EXPECT_TRUE(waitFor([this] { return view->windowHandle()->isExposed(); }));
        // Wakes the loop of `waitFor` now and then.
        ticker.start(20);
        followDrag();
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
    [[nodiscard]] PaneView& paneView(std::size_t at) const
    {
        return *view->paneView(panel().groups()[0]->panes()[at]->id());
    }
    [[nodiscard]] GroupChip& chip(std::size_t at) const { return *view->head().chips()[at]; }
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

    /// Drags with the left button from one place on the screen to another; `pause` before the
    /// release.
    static void drag(const QPoint& from, const QPoint& to, const QString& pause = "0.1")
    {
        QStringList steps{"mousemove",
                          QString::number(from.x()),
                          QString::number(from.y()),
                          "mousedown",
                          "1",
                          "sleep",
                          "0.05"};
        constexpr int Moves = 12;
        for (int move = 1; move <= Moves; ++move) {
            const QPoint at = from + (to - from) * move / Moves;
            steps +=
                {"mousemove", QString::number(at.x()), QString::number(at.y()), "sleep", "0.02"};
        }
        steps += {"mousemove",
                  QString::number(to.x() + 1),
                  QString::number(to.y()),
                  "sleep",
                  pause,
                  "mouseup",
                  "1"};
        QProcess::startDetached("xdotool", steps);
    }
    static QPoint at(const QWidget& widget, double x, double y)
    {
        return widget.mapToGlobal(QPointF(widget.width() * x, widget.height() * y).toPoint());
    }
    /// Waits until a drag has begun and is over.
    [[nodiscard]] bool dragIsOver()
    {
        return waitFor([this] { return began && !view->drag().item(); });
    }
    /// A drag runs an event loop of its own, in which nobody but its listeners looks.
    void followDrag()
    {
        ConsoleDrag& followed = view->drag();
        QObject::connect(&followed, &ConsoleDrag::itemChanged, view.get(),
                         [this] { began = true; });
        QObject::connect(&followed, &ConsoleDrag::targetChanged, view.get(), [this, &followed] {
            if (followed.target())
                places.append(followed.target()->place);
        });
    }

    ViewHarness views;
    ViewServices services;
    std::unique_ptr<TerminalPanelView> view;
    QTimer ticker;
    bool began = false;
    QList<ConsoleDrag::Target::Place> places; ///< What the drag pointed at.
};

} // namespace

TEST_F(ConsoleDesktopTest, APaneIsDraggedByItsHeadBesideAnother)
{
    drag(at(paneView(0).head(), 0.5, 0.5), at(paneView(1), 0.8, 0.5));

    ASSERT_TRUE(dragIsOver());
    EXPECT_TRUE(places.contains(ConsoleDrag::Target::Place::Pane));
    EXPECT_TRUE(waitFor([this] { return layout() == "ba c"; })) << layout().toStdString();
    EXPECT_EQ(views.motion.inFlight(), 0);
}

TEST_F(ConsoleDesktopTest, ATabIsDraggedByItsChip)
{
    drag(at(chip(1), 0.5, 0.5), at(chip(0), 0.1, 0.5));

    ASSERT_TRUE(dragIsOver());
    EXPECT_EQ(layout(), "c ab");
}

TEST_F(ConsoleDesktopTest, APaneGoesOverAChipIntoThePanesOfItsTab)
{
    const QPoint from = at(paneView(0).head(), 0.5, 0.5);
    const QPoint over = at(chip(1), 0.5, 0.5);
    const QPoint into = at(*view, 0.8, 0.6);
    QProcess::startDetached("xdotool", {"mousemove",
                                        QString::number(from.x()),
                                        QString::number(from.y()),
                                        "mousedown",
                                        "1",
                                        "mousemove",
                                        QString::number(from.x() + 30),
                                        QString::number(from.y()),
                                        "sleep",
                                        "0.1",
                                        "mousemove",
                                        QString::number(over.x()),
                                        QString::number(over.y()),
                                        "sleep",
                                        "0.2",
                                        "mousemove",
                                        QString::number(into.x() - 9),
                                        QString::number(into.y()),
                                        "sleep",
                                        "0.1",
                                        "mousemove",
                                        QString::number(into.x()),
                                        QString::number(into.y()),
                                        "sleep",
                                        "0.2",
                                        "mouseup",
                                        "1"});

    ASSERT_TRUE(dragIsOver());
    EXPECT_EQ(layout(), "b ca");
}

TEST_F(ConsoleDesktopTest, ADropOutsideEveryTargetLeavesEverythingAsItWas)
{
    drag(at(paneView(0).head(), 0.5, 0.5), QPoint(20, 20));

    ASSERT_TRUE(dragIsOver());
    EXPECT_EQ(layout(), "ab c");
    EXPECT_EQ(view->drag().target(), std::nullopt);
    EXPECT_EQ(views.motion.inFlight(), 0);
}

TEST_F(ConsoleDesktopTest, AClickOnAHeadIsNoDrag)
{
    const QPoint head = at(paneView(1).head(), 0.5, 0.5);
    panel().markFocused(panel().groups()[0]->panes()[0].get());

    QProcess::startDetached("xdotool", {"mousemove", QString::number(head.x()),
                                        QString::number(head.y()), "click", "1"});

    EXPECT_TRUE(waitFor([this] { return panel().activeGroup()->focusedPane()->label() == "b"; }));
    EXPECT_EQ(view->drag().item(), std::nullopt);
}

namespace {

/// Runs this program again in an X server of its own.
int runInServer(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QProcess server;
    server.setProcessChannelMode(QProcess::SeparateChannels);
    server.start("Xvfb", {"-displayfd", "1", "-screen", "0", "1280x860x24", "-nolisten", "tcp"});
    if (!server.waitForStarted() || !server.waitForReadyRead()) {
        std::cerr << "Xvfb doesn't start\n";
        return 1;
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", ':' + QString::fromLatin1(server.readLine()).trimmed());
    environment.insert("QT_QPA_PLATFORM", "xcb");
    environment.insert("BRALTO_IN_SERVER", "1");
    QProcess inside;
    inside.setProcessEnvironment(environment);
    inside.setProcessChannelMode(QProcess::ForwardedChannels);
    inside.start(QCoreApplication::applicationFilePath(), QCoreApplication::arguments().mid(1));
    inside.waitForFinished(-1);
    server.terminate();
    server.waitForFinished();
    return inside.exitStatus() == QProcess::NormalExit ? inside.exitCode() : 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("BRALTO_IN_SERVER"))
        return runInServer(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
