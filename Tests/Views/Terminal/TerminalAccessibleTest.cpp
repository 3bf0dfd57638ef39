#include "Views/Terminal/TerminalAccessible.h"
#include "Tests/Support/TerminalViewHarness.h"

#include <QAccessible>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct TerminalAccessibleTest : testing::Test, TerminalViewHarness {
    [[nodiscard]] QAccessibleInterface& interface() const
    {
        return *QAccessible::queryAccessibleInterface(view.get());
    }
    [[nodiscard]] QAccessibleTextInterface& text() const { return *interface().textInterface(); }
};

} // namespace

TEST_F(TerminalAccessibleTest, AViewIsATerminalWithTheTextOfItsScreen)
{
    show();
    write("one\r\n\U0001F600 two");

    EXPECT_EQ(interface().role(), QAccessible::Terminal);
    ASSERT_NE(interface().textInterface(), nullptr);
    EXPECT_EQ(text().text(0, 3), "one");
    EXPECT_EQ(text().text(4, 10), QString::fromUtf8("\U0001F600 two"));
    EXPECT_EQ(text().characterCount(), text().text(0, -1).size());
    EXPECT_EQ(text().text(0, -1).count('\n'), session.terminal().rows());
}

TEST_F(TerminalAccessibleTest, TheCursorIsAPlaceInTheText)
{
    show();
    write("one\r\n\U0001F600 two\033[2;4H");

    EXPECT_EQ(text().text(text().cursorPosition(), text().cursorPosition() + 3), "two");
}

TEST_F(TerminalAccessibleTest, CharactersAreFoundByPlaceAndPlacesByCharacter)
{
    show();
    write("one\r\ntwo");

    const QRect second = text().characterRect(5);
    EXPECT_EQ(text().offsetAtPoint(second.center()), 5);
    const QRectF cell = view->geometryOfCells().rect(1, 1);
    EXPECT_EQ(second, QRect(view->mapToGlobal(cell.toAlignedRect().topLeft()),
                            cell.toAlignedRect().size()));
    EXPECT_TRUE(text().characterRect(-1).isEmpty());
    EXPECT_TRUE(text().characterRect(1'000'000).isEmpty());
}

TEST_F(TerminalAccessibleTest, TheSelectionIsToldAndCanBeSet)
{
    show();
    write("one two");
    EXPECT_EQ(text().selectionCount(), 0);

    text().addSelection(4, 7);

    EXPECT_EQ(text().selectionCount(), 1);
    int start = 0;
    int end = 0;
    text().selection(0, &start, &end);
    EXPECT_EQ(text().text(start, end), "two");
    EXPECT_EQ(session.selection().text(), "two");
    text().removeSelection(0);
    EXPECT_EQ(text().selectionCount(), 0);
}

TEST_F(TerminalAccessibleTest, OnlyWhatIsInViewIsTold)
{
    show();
    for (int i = 0; i < 50; ++i)
        write("line " + std::to_string(i) + "\r\n");
    session.scrollTo(0);

    EXPECT_EQ(text().text(0, 6), "line 0");
}
