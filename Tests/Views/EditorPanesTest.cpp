#include "Views/Editor/EditorPanes.h"
#include "Tests/Support/ViewHarness.h"
#include "Views/Editor/CodeText.h"
#include "Views/Editor/EditorScreen.h"
#include "Views/Editor/EditorTab.h"
#include "Views/Editor/ProseText.h"
#include "Views/Editor/TabBar.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/TextButton.h"
#include "Views/Window/Seam.h"

#include <QClipboard>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct EditorPanesTest : testing::Test {
    void show(Pages pages = Pages::Unavailable)
    {
        if (!views.workspace)
            services.emplace(views.openProject(pages));
        panes = std::make_unique<EditorPanes>(*services, nullptr);
        panes->resize(900, 600);
        panes->show();
        panes->activateWindow();
        ViewHarness::settle();
    }

    [[nodiscard]] Workspace& workspace() const { return *views.workspace; }
    [[nodiscard]] const std::vector<EditorTab*>& tabs() const { return panes->tabBar().tabs(); }
    [[nodiscard]] EditorScreen* screen(const WorkspaceTab& tab) const
    {
        return dynamic_cast<EditorScreen*>(panes->screenOf(tab.id()));
    }
    [[nodiscard]] QStringList titles() const
    {
        QStringList texts;
        for (const EditorTab* tab : tabs())
            texts.append(tab->text());
        return texts;
    }
    [[nodiscard]] static QStringList entries(const QMenu& menu)
    {
        QStringList texts;
        for (const QAction* action : menu.actions()) {
            if (!action->isSeparator())
                texts.append(action->text());
        }
        return texts;
    }

    ViewHarness views;
    std::optional<ViewServices> services;
    std::unique_ptr<EditorPanes> panes;
};

} // namespace

// --- tabs

TEST_F(EditorPanesTest, WithoutTabsTheFolderIsIntroduced)
{
    show();

    EXPECT_FALSE(panes->tabBar().isVisible());
    QStringList words;
    for (const QLabel* label : panes->findChildren<QLabel*>()) {
        if (label->isVisible())
            words.append(label->text());
    }
    EXPECT_TRUE(words.contains("Choose a file from the sidebar, or start a new one."));
}

TEST_F(EditorPanesTest, EveryTabStandsInTheBarInOrder)
{
    show();
    views.open("a.cpp");
    views.open("b.md");

    EXPECT_EQ(titles(), (QStringList{"a.cpp", "b.md"}));
    EXPECT_FALSE(tabs()[0]->isActive());
    EXPECT_TRUE(tabs()[1]->isActive());
}

TEST_F(EditorPanesTest, AClickActivatesATab)
{
    show();
    const WorkspaceTab first = views.open("a.cpp");
    views.open("b.cpp");

    QTest::mouseClick(tabs()[0], Qt::LeftButton);

    EXPECT_EQ(workspace().activeTabId(), first.id());
    EXPECT_NE(screen(first), nullptr);
}

TEST_F(EditorPanesTest, AMiddleClickClosesATab)
{
    show();
    views.open("a.cpp");
    views.open("b.cpp");

    QTest::mouseClick(tabs()[0], Qt::MiddleButton);
    ViewHarness::settle();

    EXPECT_EQ(titles(), QStringList{"b.cpp"});
}

TEST_F(EditorPanesTest, TheCloseButtonClosesItsTab)
{
    show();
    views.open("a.cpp");
    EXPECT_EQ(tabs()[0]->closeButton()->toolTip(), "Close (Ctrl+W)");

    QTest::mouseClick(tabs()[0]->closeButton(), Qt::LeftButton);
    ViewHarness::settle();

    EXPECT_TRUE(tabs().empty());
    EXPECT_TRUE(workspace().tabs().empty());
}

TEST_F(EditorPanesTest, UnsavedTextShowsInPlaceOfTheCloseButton)
{
    show();
    const WorkspaceTab tab = views.open("a.cpp", "one");

    tab.document()->setText("two");
    EXPECT_TRUE(tabs()[0]->hasUnsavedText());
    EXPECT_EQ(tabs()[0]->closeButton()->toolTip(), "Unsaved changes");
    EXPECT_FALSE(tabs()[0]->closeButton()->isVisible());

    tab.document()->save();
    EXPECT_TRUE(tabs()[0]->closeButton()->isVisible());
}

TEST_F(EditorPanesTest, ADocumentsMenuHasItsEntries)
{
    show();
    views.open("a.cpp");
    views.open("b.cpp");

    EXPECT_EQ(entries(*tabs()[0]->makeMenu()),
              (QStringList{"Close", "Close Others", "Open in Split View", "Reveal in Finder"}));
    workspace().toggleSplit();
    EXPECT_EQ(entries(*tabs()[0]->makeMenu()),
              (QStringList{"Close", "Close Others", "Close Split View", "Reveal in Finder"}));
}

TEST_F(EditorPanesTest, CloseOthersOfTheMenuLeavesOneTab)
{
    show();
    views.open("a.cpp");
    views.open("b.cpp");
    views.open("c.cpp");

    const auto menu = tabs()[1]->makeMenu();
    menu->actions()[1]->trigger();
    ViewHarness::settle();

    EXPECT_EQ(titles(), QStringList{"b.cpp"});
}

TEST_F(EditorPanesTest, ARenamedFileRenamesItsTab)
{
    show();
    const WorkspaceTab tab = views.open("a.cpp");

    tab.document()->setPath(views.desk.path("longer-name.cpp"));

    EXPECT_EQ(tabs()[0]->text(), "longer-name.cpp");
}

TEST_F(EditorPanesTest, ManyTabsGiveWayAndTheActiveOneIsInView)
{
    show();
    for (int at = 0; at < 30; ++at)
        views.open(QString("a-file-with-a-long-name-%1.cpp").arg(at));
    ViewHarness::settle();

    for (const EditorTab* tab : tabs())
        EXPECT_GE(tab->width(), Measure::SmallestTab);
    const EditorTab* active = tabs().back();
    EXPECT_TRUE(active->isActive());
    EXPECT_GE(active->x(), 0);
    EXPECT_LE(active->geometry().right(), active->parentWidget()->width());
}

TEST_F(EditorPanesTest, WithoutPagesThereIsNoButtonForOne)
{
    show();
    EXPECT_EQ(panes->tabBar().newTabButton(), nullptr);
}

TEST_F(EditorPanesTest, WithPagesTheButtonMakesOne)
{
    show(Pages::Available);
    views.open("a.cpp");

    QTest::mouseClick(panes->tabBar().newTabButton(), Qt::LeftButton);

    EXPECT_EQ(titles(), (QStringList{"a.cpp", "New Tab"}));
}

// --- split

TEST_F(EditorPanesTest, ASplitShowsBothTabsSideBySide)
{
    show();
    const WorkspaceTab first = views.open("a.cpp");
    const WorkspaceTab second = views.open("b.cpp");

    workspace().toggleSplit();

    ASSERT_NE(screen(first), nullptr);
    ASSERT_NE(screen(second), nullptr);
    const int left = screen(second)->mapTo(panes.get(), QPoint()).x();
    const int right = screen(first)->mapTo(panes.get(), QPoint()).x();
    EXPECT_LT(left, right);
    EXPECT_TRUE(panes->seam().isVisible());
}

TEST_F(EditorPanesTest, DraggingTheSplitSeamMovesTheShares)
{
    show();
    views.open("a.cpp");
    views.open("b.cpp");
    workspace().toggleSplit();

    emit panes->seam().dragStarted();
    EXPECT_EQ(views.motion.inFlight(), 1);
    emit panes->seam().dragged(90);
    EXPECT_NEAR(workspace().splitFraction(), 0.6, 0.001);
    emit panes->seam().dragged(5000);
    EXPECT_EQ(workspace().splitFraction(), 0.8);
    emit panes->seam().dragEnded();
    EXPECT_EQ(views.motion.inFlight(), 0);
}

TEST_F(EditorPanesTest, TheViewOfATabKeepsItsPlaceWhileAnotherShows)
{
    show();
    const WorkspaceTab first = views.open("a.cpp", QByteArray("line\n").repeated(500));
    screen(first)->code()->setCursor({400, 2});
    views.open("b.cpp");
    workspace().activate(first);

    EXPECT_EQ(screen(first)->code()->cursor(), (TextRows::Place{400, 2}));
}

// --- documents

TEST_F(EditorPanesTest, CodeAndProseHaveTheirOwnViews)
{
    show();
    const WorkspaceTab code = views.open("a.cpp", "int a;");
    EXPECT_NE(screen(code)->code(), nullptr);
    const WorkspaceTab prose = views.open("b.md", "Words");
    ASSERT_NE(screen(prose)->prose(), nullptr);
    EXPECT_EQ(screen(prose)->prose()->toPlainText(), "Words");
}

TEST_F(EditorPanesTest, TheCursorIsToldToTheDocument)
{
    show();
    const WorkspaceTab tab = views.open("a.cpp", "one\ntwo");

    screen(tab)->code()->setCursor({1, 2});

    EXPECT_EQ(tab.document()->cursorLine(), 2);
    EXPECT_EQ(tab.document()->cursorColumn(), 3);
}

TEST_F(EditorPanesTest, ThePillSaysWhereTheCursorIsAndWhatTheFileIs)
{
    EXPECT_EQ(StatusPill::parts({.problem = {}, .line = 36, .column = 52, .language = "C-family"}),
              (QStringList{"Ln 36, Col 52", "C-family"}));
    EXPECT_EQ(StatusPill::parts({.problem = {}, .words = 64, .language = "Markdown"}),
              (QStringList{"Ln 1, Col 1", "64 words", "Markdown"}));
    EXPECT_EQ(StatusPill::parts({.problem = "Disk full", .language = "Text"}),
              (QStringList{"Not saved", "Ln 1, Col 1", "Text"}));
}

TEST_F(EditorPanesTest, AFileThatCanNotBeReadOffersItsOwnApplication)
{
    show();
    const WorkspaceTab tab = views.open("a.bin", QByteArray("\0\1\2\3\0\0", 6));
    ASSERT_TRUE(tab.document()->loadError());

    auto* button = screen(tab)->findChild<TextButton*>();
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->text(), "Open with Default App");
    QTest::mouseClick(button, Qt::LeftButton);

    EXPECT_EQ(views.desk.desktop.opened, QList{QUrl::fromLocalFile(views.desk.path("a.bin"))});
}

TEST_F(EditorPanesTest, CodeIsSelectedAndCopiedByKeys)
{
    show();
    const WorkspaceTab tab = views.open("a.cpp", "first\nsecond");
    CodeText& code = *screen(tab)->code();

    QTest::keyClick(&code, Qt::Key_Right);
    QTest::keyClick(&code, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&code, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "irst\ns");

    QTest::keyClick(&code, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(code.selectedText(), "first\nsecond");
}

TEST_F(EditorPanesTest, CodeIsReadOnly)
{
    show();
    const WorkspaceTab tab = views.open("a.cpp", "first");

    QTest::keyClicks(screen(tab)->code(), "xyz");

    EXPECT_EQ(tab.document()->text(), "first");
}

TEST_F(EditorPanesTest, AReloadedFileShowsItsNewText)
{
    show();
    const WorkspaceTab tab = views.open("a.cpp", "one\ntwo\nthree");
    screen(tab)->code()->setCursor({2, 4});

    tab.document()->setText("one");

    EXPECT_EQ(screen(tab)->code()->text(), "one");
    EXPECT_EQ(screen(tab)->code()->cursor(), (TextRows::Place{0, 3}));
}

TEST_F(EditorPanesTest, ALargeFileIsLaidOutWithoutTouchingMostOfIt)
{
    const QByteArray line = "    const auto next = std::ranges::upper_bound(samples, when, {});\n";
    CodeText code(views.theme);
    code.resize(900, 600);
    code.show();

    code.setText(QString::fromLatin1(line.repeated(8 * 1024 * 1024 / line.size())));
    code.setCursor({120'000, 4});

    EXPECT_EQ(code.cursor().line, 120'000);
    EXPECT_FALSE(code.grab().isNull());
}
