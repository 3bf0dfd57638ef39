#include "Views/Kit/Animated.h"
#include "Views/Kit/Fonts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/RelativeTime.h"
#include "Views/Kit/TextButton.h"
#include "Views/Kit/TextLine.h"
#include "Views/Kit/ToolTip.h"
#include "Views/Window/SpaceBackdrop.h"

#include <QHelpEvent>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct KitTest : testing::Test {
    Theme theme{{.dark = true, .reducedMotion = true}};
};

/// Whether anything is drawn in the picture.
bool hasInk(const QPixmap& picture)
{
    const QImage image = picture.toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 0)
                return true;
        }
    }
    return false;
}

QString ago(qint64 seconds)
{
    const QDateTime now(QDate(2026, 3, 14), QTime(12, 0));
    return relativeTime(now.addSecs(-seconds), now);
}

} // namespace

TEST_F(KitTest, SymbolsAreDrawnInTheInkThatIsAskedFor)
{
    const QImage image = Icon::pixmap("folder", 16, Qt::red, 2).toImage();
    EXPECT_EQ(image.width(), 32);
    bool red = false;
    for (int x = 0; x < image.width(); ++x) {
        const QColor pixel = image.pixelColor(x, 10);
        if (pixel.alpha() > 200) {
            red = true;
            EXPECT_EQ(pixel.red(), 255);
            EXPECT_EQ(pixel.blue(), 0);
        }
    }
    EXPECT_TRUE(red);
}

TEST_F(KitTest, AnUnknownSymbolIsDrawnAsADocument)
{
    EXPECT_FALSE(Icon::exists("no.such.symbol"));
    EXPECT_EQ(Icon::pixmap("no.such.symbol", 16, Qt::white, 1).toImage(),
              Icon::pixmap("doc", 16, Qt::white, 1).toImage());
}

TEST_F(KitTest, TheMarkIsASymbolAsWell)
{
    EXPECT_TRUE(hasInk(Icon::pixmap(Icon::Mark, 20, Qt::white, 1)));
}

TEST_F(KitTest, SizesMayBeFractional)
{
    EXPECT_NEAR(font(TextRole::Code).pointSizeF() * 96 / 72, 12.5, 0.01);
    EXPECT_EQ(lineHeight(TextRole::Code), 20);
    EXPECT_EQ(lineHeight(TextRole::Code, 2), 40);
}

TEST_F(KitTest, EveryDigitIsAsWideAsZeroInATable)
{
    const QFont face = font(TextRole::Body);
    EXPECT_EQ(Tabular::width(face, "1111"), Tabular::width(face, "0000"));
}

TEST_F(KitTest, TextFromOutsideIsFlattenedToOneLine)
{
    EXPECT_EQ(TextLine::flattened("one\ntwo\tthree"), "one two three");
    EXPECT_LE(TextLine::flattened(QString(100'000, 'x')).size(), 2000);
}

TEST_F(KitTest, AReleasedButtonIsClickedByKeysToo)
{
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        TextButton button(theme, TextButton::Kind::Plain, "Open");
        const QSignalSpy clicks(&button, &TextButton::clicked);
        QTest::keyClick(&button, Qt::Key(key));
        EXPECT_EQ(clicks.count(), 1) << key;
    }
}

TEST_F(KitTest, AControlSaysWhatItIsAndItsShortcut)
{
    IconButton button(theme, Ground::Frame, "sidebar.left");
    button.setTip("Hide Sidebar", "Ctrl+S");
    EXPECT_EQ(button.accessibleName(), "Hide Sidebar");
    EXPECT_EQ(button.toolTip(), "Hide Sidebar (Ctrl+S)");
}

TEST_F(KitTest, AClickDoesNotTakeTheKeyboard)
{
    QWidget window;
    QVBoxLayout column(&window);
    auto* edit = new QWidget;
    edit->setFocusPolicy(Qt::StrongFocus);
    auto* button = new TextButton(theme, TextButton::Kind::Plain, "Open");
    column.addWidget(edit);
    column.addWidget(button);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    edit->setFocus();

    QTest::mouseClick(button, Qt::LeftButton);

    EXPECT_TRUE(edit->hasFocus());
}

TEST_F(KitTest, ATipIsCutIntoWordsAndShortcut)
{
    EXPECT_EQ(ToolTip::parts("Split View (Ctrl+Alt+\\)"),
              (ToolTip::Parts{"Split View", "Ctrl+Alt+\\"}));
    EXPECT_EQ(ToolTip::parts("README.md"), (ToolTip::Parts{"README.md", ""}));
}

TEST_F(KitTest, TheTipOfAWidgetShowsInTheProgramsOwnLook)
{
    QWidget window;
    auto* tip = new ToolTip(theme, window);
    auto* button = new IconButton(theme, Ground::Frame, "plus", &window);
    button->setTip("New Claude Chat", "Ctrl+N");
    window.show();

    QHelpEvent help(QEvent::ToolTip, {4, 4}, button->mapToGlobal(QPoint(4, 4)));
    QApplication::sendEvent(button, &help);
    EXPECT_TRUE(tip->isVisible());

    QTest::keyClick(button, Qt::Key_A);
    EXPECT_FALSE(tip->isVisible());
}

TEST_F(KitTest, AMenuKeepsWhatItsRowsSay)
{
    PopupMenu menu(theme);
    menu.addAction("Hide Sidebar\tCtrl+S");
    menu.addSeparator();
    QMenu* more = menu.addMenu("Open Recent");
    more->addAction("tidal-api");
    PopupMenu::dress(menu, theme);

    EXPECT_GT(menu.sizeHint().width(), 120);
    EXPECT_GE(menu.sizeHint().height(), 2 * Measure::MenuRow);
    EXPECT_EQ(more->style(), menu.style());
}

TEST_F(KitTest, TimesAreRelative)
{
    EXPECT_EQ(ago(-500), "just now");
    EXPECT_EQ(ago(20), "just now");
    EXPECT_EQ(ago(120), "2 min ago");
    EXPECT_EQ(ago(3600), "1 hour ago");
    EXPECT_EQ(ago(5 * 3600), "5 hours ago");
    EXPECT_EQ(ago(20 * 3600), "Yesterday");
    EXPECT_EQ(ago(3 * 86400), "3 days ago");
    EXPECT_EQ(ago(8 * 86400), "1 week ago");
    EXPECT_EQ(ago(16 * 86400), "2 weeks ago");
    EXPECT_EQ(ago(40 * 86400), "last month");
    EXPECT_EQ(ago(200 * 86400), "6 months ago");
    EXPECT_EQ(ago(400 * 86400), "last year");
    EXPECT_EQ(ago(1000 * 86400), "2 years ago");
}

TEST_F(KitTest, WithReducedMotionAGoalIsReachedAtOnce)
{
    Animated value(theme, Motions::Toggle, 0, nullptr);
    const QSignalSpy settled(&value, &Animated::settled);
    value.moveTo(1);
    EXPECT_EQ(value.value(), 1);
    EXPECT_FALSE(value.isMoving());
    EXPECT_EQ(settled.count(), 1);
}

TEST_F(KitTest, WithMotionAGoalIsApproached)
{
    Theme moving({.dark = true, .reducedMotion = false});
    Animated value(moving, Motions::Toggle, 0, nullptr);
    value.moveTo(1);
    EXPECT_TRUE(value.isMoving());
    EXPECT_LT(value.value(), 1);
    EXPECT_EQ(value.goal(), 1);
}

TEST(Grain, TheTileIsTheSameInEveryProcess)
{
    const QImage& tile = Grain::tile(1);
    ASSERT_EQ(tile.size(), QSize(256, 256));
    // The first numbers of the generator, worked out by hand.
    quint64 state = 684321;
    const auto next = [&state] {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return state >> 33U;
    };
    for (int x = 0; x < 64; ++x) {
        const quint64 chance = next() % 1000;
        int expected = 0;
        if (chance >= 960)
            expected = int(next() % 90) + 60;
        else if (chance >= 550)
            expected = int(next() % 30) + 10;
        EXPECT_EQ(qAlpha(tile.pixel(x, 0)), expected) << x;
    }
}

TEST(Grain, ATileHasSharpPixelsAtEveryScale)
{
    EXPECT_EQ(Grain::tile(2).width(), 512);
    EXPECT_EQ(Grain::tile(1.5).width(), 512);
    EXPECT_EQ(Grain::tile(0.3).width(), 256);
    EXPECT_EQ(&Grain::tile(2), &Grain::tile(2));
}

TEST(SpaceBackdrop, ThePictureIsMadeOnceForASizeAndAColour)
{
    QWidget window;
    window.resize(100, 80);
    SpaceBackdrop backdrop(window);
    SpaceTheme space;
    const Tokens dark(TokenSource::from(space, true));
    const Tokens light(TokenSource::from(space, false));

    const qint64 first = backdrop.picture(dark.frame).cacheKey();
    EXPECT_EQ(backdrop.picture(dark.frame).cacheKey(), first);
    EXPECT_NE(backdrop.picture(light.frame).cacheKey(), first);
    window.resize(120, 80);
    EXPECT_EQ(backdrop.picture(light.frame).width(), 120);
}

TEST(SpaceBackdrop, WithoutTextureTheFrameIsThePlainGradient)
{
    QWidget window;
    window.resize(40, 200);
    SpaceBackdrop backdrop(window);
    SpaceTheme space;
    space.grain = 0;
    const Tokens tokens(TokenSource::from(space, true));

    const QImage picture = backdrop.picture(tokens.frame).toImage();

    const QColor middle = picture.pixelColor(20, 100);
    EXPECT_NEAR(middle.red(), tokens.frame.stops[1].red(), 2);
    EXPECT_NEAR(middle.blue(), tokens.frame.stops[1].blue(), 2);
}
