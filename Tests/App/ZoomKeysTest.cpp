#include "App/ZoomKeys.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

/// A window whose menu has the same chord.
struct ZoomKeysTest : testing::Test {
    ZoomKeysTest()
    {
        action.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Plus));
        window.addAction(&action);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void press() { QTest::keyClick(&window, Qt::Key_Plus, Qt::ControlModifier); }

    bool hasProject = true;
    QWidget window;
    QAction action;
    ZoomKeys keys{qApp, [this] { return hasProject; }};
    QSignalSpy zoomed{&keys, &ZoomKeys::zoomRequested};
    QSignalSpy triggered{&action, &QAction::triggered};
};

} // namespace

TEST_F(ZoomKeysTest, WithAProjectPlusZoomsOnceAndDoesNotReachTheMenu)
{
    press();

    EXPECT_EQ(zoomed.count(), 1);
    EXPECT_EQ(triggered.count(), 0);
}

TEST_F(ZoomKeysTest, WithoutAProjectPlusPassesThrough)
{
    hasProject = false;

    press();

    EXPECT_EQ(zoomed.count(), 0);
    EXPECT_EQ(triggered.count(), 1);
}

TEST(ZoomKeys, PlusWithControlAloneZoomsInAndTheMinusOfThePadOut)
{
    const auto direction = [](int key, Qt::KeyboardModifiers modifiers) {
        return ZoomKeys::direction(QKeyEvent(QEvent::KeyPress, key, modifiers));
    };

    EXPECT_EQ(direction(Qt::Key_Plus, Qt::ControlModifier), ZoomKeys::Direction::In);
    EXPECT_EQ(direction(Qt::Key_Plus, Qt::ControlModifier | Qt::ShiftModifier),
              ZoomKeys::Direction::In);
    EXPECT_EQ(direction(Qt::Key_Minus, Qt::ControlModifier | Qt::KeypadModifier),
              ZoomKeys::Direction::Out);
    EXPECT_FALSE(direction(Qt::Key_Minus, Qt::ControlModifier)) << "left to the menu";
    EXPECT_FALSE(direction(Qt::Key_Plus, Qt::ControlModifier | Qt::AltModifier));
    EXPECT_FALSE(direction(Qt::Key_Plus, Qt::NoModifier));
}
