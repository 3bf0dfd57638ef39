#include "App/CommandMenu.h"
#include "Tests/Support/WorkspaceHarness.h"
#include "Views/Window/WindowFocus.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;
using Shortcuts::Command;

namespace {

/// Takes every key, as a terminal does.
class Typed final : public QWidget {
public:
    explicit Typed(QWidget* parent)
        : QWidget(parent)
    {
        setFocusPolicy(Qt::StrongFocus);
    }
    int presses = 0;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_S)
            ++presses;
        event->accept();
    }
};

struct CommandMenuTest : testing::Test {
    CommandMenuTest()
    {
        terminal.setGeometry(0, 0, 50, 50);
        WindowFocus::markTerminal(terminal);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    QAction* action(Command command)
    {
        const QString title = Shortcuts::title(command);
        for (QAction* const top : menu.menu()->actions()) {
            if (!top->menu())
                continue;
            for (QAction* const each : top->menu()->actions()) {
                if (each->text().startsWith(title + '\t'))
                    return each;
            }
        }
        return nullptr;
    }
    /// What the menu says behind a command's title.
    QString shown(Command command)
    {
        emit menu.menu()->aboutToShow();
        const QAction* const found = action(command);
        return found ? found->text().section('\t', 1) : QString();
    }
    bool sidebar() const { return workspace->isSidebarVisible(); }
    static void press(QWidget& widget, Qt::KeyboardModifiers held)
    {
        QTest::keyClick(&widget, Qt::Key_S, held);
    }

    WorkspaceHarness harness;
    Zoom zoom{harness.shared};
    std::unique_ptr<Workspace> workspace = harness.openProject(Pages::Unavailable);
    BraltoCommands commands{
        {*workspace, zoom, [] { return Zoom::Area::Editor; }, [] {}, [](const QString&) {}, [] {}}};
    QWidget window;
    QLineEdit field{&window};
    Typed terminal{&window};
    CommandMenu menu{commands, &window};
};

constexpr auto Ctrl = Qt::ControlModifier;
constexpr auto Shift = Qt::ShiftModifier;

} // namespace

TEST_F(CommandMenuTest, ElsewhereThePlainChordsWork)
{
    field.setFocus();

    press(field, Ctrl);
    EXPECT_FALSE(sidebar());
    press(field, Ctrl | Shift);
    EXPECT_FALSE(sidebar()) << "that chord belongs to no command here";
}

TEST_F(CommandMenuTest, InATerminalThePlainChordsReachTheProcess)
{
    terminal.setFocus();

    press(terminal, Ctrl);
    EXPECT_TRUE(sidebar());
    EXPECT_EQ(terminal.presses, 1);
    press(terminal, Ctrl | Shift);
    EXPECT_FALSE(sidebar());
    EXPECT_EQ(terminal.presses, 1);
}

TEST_F(CommandMenuTest, TheMenuShowsTheChordsThatWorkWhereTheKeyboardIs)
{
    field.setFocus();
    EXPECT_EQ(shown(Command::Close), "Ctrl+W");
    EXPECT_EQ(shown(Command::NextTab), "Ctrl+Tab");

    terminal.setFocus();
    EXPECT_EQ(shown(Command::Close), "Ctrl+Shift+W");
    EXPECT_EQ(shown(Command::CloseFolder), "Ctrl+Alt+Shift+W");
    EXPECT_EQ(shown(Command::NextTab), "Ctrl+Tab");

    field.setFocus();
    EXPECT_EQ(shown(Command::Close), "Ctrl+W");
}

TEST_F(CommandMenuTest, AnotherWindowAndNoWindowLeaveThemAsTheyAre)
{
    terminal.setFocus();
    QWidget other;
    QLineEdit otherField(&other);
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    otherField.setFocus();

    EXPECT_EQ(shown(Command::Close), "Ctrl+Shift+W");
}

TEST_F(CommandMenuTest, SizesHaveOneChordEverywhere)
{
    terminal.setFocus();
    QTest::keyClick(&terminal, Qt::Key_Equal, Ctrl);
    EXPECT_EQ(zoom.level(Zoom::Area::Editor), 1.1);

    field.setFocus();
    QTest::keyClick(&field, Qt::Key_Minus, Ctrl);
    EXPECT_EQ(zoom.level(Zoom::Area::Editor), 1.0);
}
