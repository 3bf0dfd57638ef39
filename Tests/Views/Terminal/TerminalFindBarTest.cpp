#include "Views/Terminal/TerminalFindBar.h"
#include "Tests/Support/TerminalInputHarness.h"
#include "Views/Kit/Control.h"
#include "Views/Kit/Field.h"
#include "Views/Kit/Label.h"

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct TerminalFindBarTest : testing::Test, TerminalInputHarness {
    TerminalFindBar& bar() const { return *view->findChild<TerminalFindBar*>(); }
    Field& field() const { return *bar().findChild<Field*>(); }
    QString status() const { return bar().findChild<Label*>()->text(); }
    void find(const QString& text)
    {
        input().find();
        field().setText(text);
        finish();
    }
    void finish()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return session.search().isComplete(); }));
        settle();
    }
    void type(int typed, Qt::KeyboardModifiers held = {})
    {
        QTest::keyClick(&field(), Qt::Key(typed), held);
    }
    void toggle(const QString& tip)
    {
        for (Control* const each : bar().findChildren<Control*>()) {
            if (each->accessibleName() == tip)
                each->click();
        }
        finish();
    }
    int currentRow() { return int(session.search().current()->begin.row); }
};

} // namespace

TEST_F(TerminalFindBarTest, OpensWithTheKeyboardAndGivesItBack)
{
    key(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(bar().isVisible());
    EXPECT_TRUE(field().hasFocus());
    EXPECT_EQ(bar().geometry().right(), view->width() - 1 - Measure::Space4);

    type(Qt::Key_Escape);
    EXPECT_FALSE(bar().isVisible());
    EXPECT_TRUE(view->hasFocus());
    EXPECT_EQ(sent(), "");
}

TEST_F(TerminalFindBarTest, TheNewestMatchComesFirstAndReturnGoesRound)
{
    writeLines(50);

    find("4");

    EXPECT_EQ(session.search().count(), 15U);
    EXPECT_EQ(status(), "15 of 15");
    EXPECT_EQ(currentRow(), 48);
    type(Qt::Key_Return);
    EXPECT_EQ(status(), "1 of 15");
    EXPECT_EQ(currentRow(), 3);
    type(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(status(), "15 of 15");
}

TEST_F(TerminalFindBarTest, AMatchThatIsOutOfSightIsScrolledTo)
{
    writeLines(50);

    find("7");
    EXPECT_EQ(currentRow(), 46);
    EXPECT_EQ(buffer().yDisp, buffer().yBase) << "it is in sight";

    type(Qt::Key_Return);
    EXPECT_EQ(currentRow(), 6);
    EXPECT_EQ(buffer().yDisp, 1);
}

TEST_F(TerminalFindBarTest, EachSwitchNarrowsOrWidensTheSearch)
{
    write("Tide tide tides t1de");
    find("tide");
    EXPECT_EQ(session.search().count(), 3U);

    toggle("Match Case");
    EXPECT_EQ(session.search().count(), 2U);
    toggle("Whole Words");
    EXPECT_EQ(session.search().count(), 1U);

    toggle("Match Case");
    toggle("Whole Words");
    toggle("Regular Expression");
    field().setText("t.de");
    finish();
    EXPECT_EQ(session.search().count(), 4U);
}

TEST_F(TerminalFindBarTest, TellsWhyNothingIsFound)
{
    write("text");
    find("nothing");
    EXPECT_EQ(status(), "No results");

    toggle("Regular Expression");
    field().setText("(");
    EXPECT_EQ(status(), "Not valid");
    EXPECT_NE(bar().findChild<Label*>()->toolTip(), "");

    field().setText("");
    EXPECT_EQ(status(), "");
}

TEST_F(TerminalFindBarTest, OutputIsSearchedAsItComes)
{
    write("error\r\n");
    find("error");
    EXPECT_EQ(status(), "1 of 1");

    write("error\r\n");
    finish();

    EXPECT_EQ(status(), "1 of 2");
}

TEST_F(TerminalFindBarTest, ALongHistoryIsSearchedInSlices)
{
    writeLines(9000);
    input().find();

    field().setText("99");
    EXPECT_FALSE(session.search().isComplete());
    EXPECT_TRUE(bar().isSearching());

    finish();
    EXPECT_FALSE(bar().isSearching()) << "nothing runs once all is searched";
    std::size_t matches = 0;
    for (int i = 1; i <= 9000; ++i) {
        const std::string line = std::to_string(i);
        for (auto at = line.find("99"); at != std::string::npos; at = line.find("99", at + 2))
            ++matches;
    }
    EXPECT_EQ(session.search().count(), matches);
}

TEST_F(TerminalFindBarTest, ClosingForgetsTheMatches)
{
    writeLines(20);
    find("1");
    ASSERT_GT(session.search().count(), 0U);

    bar().close();
    EXPECT_EQ(session.search().count(), 0U);
    write("1");
    EXPECT_FALSE(bar().isSearching());

    input().find();
    EXPECT_EQ(field().text(), "1") << "what was looked for last";
    finish();
    EXPECT_GT(session.search().count(), 0U);
}

TEST_F(TerminalFindBarTest, ASelectedWordIsLookedFor)
{
    write("some word");
    session.selection().start(Kovalt::SelectionMode::Word, {{6, 0}, Kovalt::CellSide::Left});

    input().find();

    EXPECT_EQ(field().text(), "word");
    EXPECT_EQ(field().selectedText(), "word");
}

TEST_F(TerminalFindBarTest, FitsInANarrowPane)
{
    view->resize(300, 200);
    input().find();

    EXPECT_GE(bar().x(), 0);
    EXPECT_LE(bar().geometry().right(), view->width());
    view->resize(1000, 200);
    EXPECT_EQ(field().width(), 320);
}

TEST(TerminalFindBar, ARowInSightLeavesTheViewWhereItIs)
{
    EXPECT_EQ(TerminalFindBar::topRowShowing(12, 10, 5), 10);
    EXPECT_EQ(TerminalFindBar::topRowShowing(14, 10, 5), 10);
    EXPECT_EQ(TerminalFindBar::topRowShowing(15, 10, 5), 13);
    EXPECT_EQ(TerminalFindBar::topRowShowing(3, 10, 5), 1);
}
