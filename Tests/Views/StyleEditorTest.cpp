#include "Tests/Support/ViewHarness.h"
#include "Views/Console/FontPicker.h"
#include "Views/Console/PaneFonts.h"
#include "Views/Console/PaneHead.h"
#include "Views/Console/PaneStyleEditor.h"
#include "Views/Console/PaneView.h"
#include "Views/Console/StylePreview.h"
#include "Views/Console/TerminalPanelView.h"
#include "Views/Console/ThemeSwatch.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/TextButton.h"

#include <QFontDatabase>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

/// The editor of a console's only pane, open.
struct StyleEditorTest : testing::Test {
    StyleEditorTest()
        : services(views.openProject())
    {
        panel().addGroup(PaneKind::Shell, std::nullopt);
        panel().show();
        view = std::make_unique<TerminalPanelView>(services, panel(), nullptr);
        view->resize(900, 600);
        view->show();
        view->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
        open();
    }

    void open()
    {
        pane().setEditingStyle(true);
        ViewHarness::settle();
    }
    [[nodiscard]] TerminalPanel& panel() const { return views.workspace->terminal(); }
    [[nodiscard]] ConsolePane& pane() const { return *panel().activeGroup()->panes()[0]; }
    [[nodiscard]] PaneStyleEditor* editor() const
    {
        return view->paneView(pane().id())->styleEditor();
    }
    [[nodiscard]] ThemeSwatch& swatch(const QString& name) const
    {
        return **std::ranges::find_if(editor()->swatches(), [&name](const ThemeSwatch* each) {
            return each->text() == name;
        });
    }

    ViewHarness views;
    ViewServices services;
    std::unique_ptr<TerminalPanelView> view;
};

} // namespace

TEST_F(StyleEditorTest, IsOpenAsLongAsThePaneSaysSo)
{
    ASSERT_NE(editor(), nullptr);
    EXPECT_TRUE(editor()->isVisible());

    pane().setEditingStyle(false);
    ViewHarness::settle();

    EXPECT_EQ(editor(), nullptr);
}

TEST_F(StyleEditorTest, EscapeClosesItAndThePaneKnows)
{
    QTest::keyClick(editor(), Qt::Key_Escape);
    ViewHarness::settle();

    EXPECT_FALSE(pane().isEditingStyle());
    EXPECT_EQ(editor(), nullptr);
    open();
    EXPECT_NE(editor(), nullptr);
}

TEST_F(StyleEditorTest, AClickOutsideClosesIt)
{
    // The window of the popover is larger than its card by the room for the shadow.
    QTest::mouseClick(editor(), Qt::LeftButton, {}, QPoint(2, 2));
    ViewHarness::settle();

    EXPECT_FALSE(pane().isEditingStyle());
}

TEST_F(StyleEditorTest, HidingTheConsoleClosesIt)
{
    view->hide();
    ViewHarness::settle();

    EXPECT_FALSE(pane().isEditingStyle());
    EXPECT_EQ(editor(), nullptr);
}

TEST_F(StyleEditorTest, GoesWithItsPane)
{
    const QPointer<PaneStyleEditor> open(editor());

    panel().close(&pane());
    ViewHarness::settle();

    EXPECT_TRUE(open.isNull());
}

TEST_F(StyleEditorTest, HasASwatchForEveryTheme)
{
    QStringList names;
    for (const ThemeSwatch* each : editor()->swatches())
        names.append(each->text());

    EXPECT_EQ(names, QStringList({"Default", "Graphite", "Midnight", "Forest", "Clay", "Ocean",
                                  "Plum", "Paper"}));
    EXPECT_TRUE(swatch("Default").isChecked());
    EXPECT_TRUE(swatch("Default").hasFocus());
}

TEST_F(StyleEditorTest, ASwatchChangesThePaneAtOnce)
{
    QTest::mouseClick(&swatch("Ocean"), Qt::LeftButton);

    EXPECT_EQ(pane().style().theme, "ocean");
    EXPECT_TRUE(swatch("Ocean").isChecked());
    EXPECT_FALSE(swatch("Default").isChecked());
    EXPECT_EQ(view->paneView(pane().id())->look().tokens().sheet, QColor(0x0D, 0x22, 0x29));
}

TEST_F(StyleEditorTest, SwatchesAreReachedAndChosenByKeys)
{
    QTest::keyClick(&swatch("Default"), Qt::Key_Right);
    EXPECT_EQ(pane().style().theme, "graphite");

    QTest::keyClick(&swatch("Graphite"), Qt::Key_Down);

    EXPECT_EQ(pane().style().theme, "ocean");
}

TEST_F(StyleEditorTest, AThemeThatIsGoneKeepsItsIdUntilAnotherIsPicked)
{
    PaneStyle style;
    style.theme = "sunset";
    pane().setStyle(style);

    EXPECT_TRUE(swatch("Default").isChecked());
    QTest::mouseClick(&swatch("Default"), Qt::LeftButton);
    EXPECT_EQ(pane().style().theme, "sunset");
    QTest::mouseClick(&swatch("Plum"), Qt::LeftButton);

    EXPECT_EQ(pane().style().theme, "plum");
}

TEST_F(StyleEditorTest, SizesGoInHalvesWithinTheirLimits)
{
    EXPECT_EQ(editor()->size().text(), "12.0 pt");

    QTest::mouseClick(&editor()->larger(), Qt::LeftButton);
    EXPECT_EQ(editor()->size().text(), "12.5 pt");
    EXPECT_EQ(pane().style().fontSize, 12.5);

    QTest::mouseClick(&editor()->smaller(), Qt::LeftButton);
    EXPECT_EQ(editor()->size().text(), "12.0 pt");
    EXPECT_TRUE(pane().style().isDefault());
}

TEST_F(StyleEditorTest, TheButtonsEndAtTheLimits)
{
    PaneStyle style;
    style.fontSize = PaneStyleEditor::LargestSize;
    pane().setStyle(style);
    EXPECT_FALSE(editor()->larger().isEnabled());
    EXPECT_TRUE(editor()->smaller().isEnabled());

    style.fontSize = PaneStyleEditor::SmallestSize;
    pane().setStyle(style);

    EXPECT_FALSE(editor()->smaller().isEnabled());
}

TEST(StyleEditorSizes, StepFromBetweenTwoSizesToTheNextOne)
{
    EXPECT_EQ(PaneStyleEditor::stepped(12, 1), 12.5);
    EXPECT_EQ(PaneStyleEditor::stepped(12, -1), 11.5);
    EXPECT_EQ(PaneStyleEditor::stepped(12.3, 1), 12.5);
    EXPECT_EQ(PaneStyleEditor::stepped(12.3, -1), 12);
    EXPECT_EQ(PaneStyleEditor::stepped(24, 1), 24);
    EXPECT_EQ(PaneStyleEditor::stepped(8, -1), 8);
    EXPECT_EQ(PaneStyleEditor::stepped(90, -1), 24);
    EXPECT_EQ(PaneStyleEditor::stepped(1, 1), 8);
}

TEST(StyleEditorSizes, AreWrittenWithOneDigitBehindThePoint)
{
    EXPECT_EQ(PaneStyleEditor::sizeText(12), "12.0 pt");
    EXPECT_EQ(PaneStyleEditor::sizeText(9.5), "9.5 pt");
}

TEST_F(StyleEditorTest, TheFirstFontIsTheSystemsOwn)
{
    const std::unique_ptr<QMenu> menu = editor()->fonts().makeMenu();
    const QList<QAction*> actions = menu->actions();

    EXPECT_EQ(editor()->fonts().text(), "SF Mono");
    EXPECT_EQ(actions.front()->text(), "SF Mono");
    EXPECT_TRUE(actions.front()->isChecked());
    EXPECT_EQ(actions.size(), PaneFonts::installed().size() + 2);
}

TEST_F(StyleEditorTest, APickedFontIsThatOfThePane)
{
    ASSERT_FALSE(PaneFonts::installed().isEmpty());
    const QString family = PaneFonts::installed().front();

    editor()->fonts().makeMenu()->actions().at(2)->trigger();
    EXPECT_EQ(pane().style().fontFamily, family);
    EXPECT_EQ(editor()->fonts().text(), family);

    editor()->fonts().makeMenu()->actions().front()->trigger();
    EXPECT_EQ(pane().style().fontFamily, std::nullopt);
}

TEST_F(StyleEditorTest, ALookCanBecomeThatOfNewPanes)
{
    QTest::mouseClick(&swatch("Forest"), Qt::LeftButton);
    TextButton& button = editor()->useAsDefault();
    EXPECT_EQ(button.text(), "Use as Default for New Panes");

    QTest::mouseClick(&button, Qt::LeftButton);

    EXPECT_EQ(button.text(), "Saved as Default");
    EXPECT_EQ(PaneStyle::newPaneDefault(views.desk.shared).theme, "forest");
    QTest::mouseClick(&swatch("Clay"), Qt::LeftButton);
    EXPECT_EQ(button.text(), "Use as Default for New Panes");
}

TEST_F(StyleEditorTest, ThePreviewIsReady)
{
    EXPECT_TRUE(StylePreview::text().startsWith("> Ready when you are "));
}

TEST(StylePreviewFont, HasTheFamilyAndTheSizeOfTheStyle)
{
    PaneStyle style;
    const QFont plain = StylePreview::font(style);
    style.fontFamily = "Some Mono";
    style.fontSize = 24;

    const QFont styled = StylePreview::font(style);

    EXPECT_EQ(styled.families().front(), "Some Mono");
    EXPECT_NEAR(styled.pointSizeF(), plain.pointSizeF() * 2, 0.01);
}

TEST(PaneFonts, LeavesOutDoublesAndPrivateFamilies)
{
    EXPECT_EQ(PaneFonts::offered({"Menlo", ".SF NS Mono", "", "courier", "Menlo", "Iosevka"}),
              QStringList({"courier", "Iosevka", "Menlo"}));
}

TEST(PaneFonts, SortsStably)
{
    EXPECT_EQ(PaneFonts::offered({"mono", "Mono", "A", "MONO"}),
              QStringList({"A", "mono", "Mono", "MONO"}));
}

TEST(PaneFonts, OffersFixedPitchOnly)
{
    for (const QString& family : PaneFonts::installed())
        EXPECT_TRUE(QFontDatabase::isFixedPitch(family)) << family.toStdString();
}
