#include "Views/Browser/BrowserScreen.h"
#include "Tests/Support/ViewHarness.h"
#include "Views/Browser/AddressField.h"
#include "Views/Browser/BrowserBar.h"
#include "Views/Browser/PageFindBar.h"
#include "Views/Browser/PageQuestionCard.h"
#include "Views/Browser/StartPage.h"
#include "Views/Browser/StuckStrip.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Label.h"
#include "Views/Kit/TextButton.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

/// Servers that a test tells of.
class FakeServers final : public LocalServers {
public:
    void scan(std::function<void(const std::vector<LocalServer>&)> done) override
    {
        ++scans;
        done(found);
    }
    std::vector<LocalServer> found;
    int scans = 0;
};

class BrowserScreenTest : public testing::Test {
protected:
    BrowserScreenTest()
    {
        harness.desk.browser.dress = [this](FakePage& page) {
            widgets.push_back(std::make_unique<QWidget>());
            page.shown = widgets.back().get();
            page.shown->setFocusPolicy(Qt::StrongFocus);
        };
    }
    void show(const QString& address)
    {
        if (!services)
            services.emplace(harness.openProject(Pages::Available));
        services->servers = &servers;
        harness.workspace->insertPage(QUrl(address));
        tab.emplace(*harness.workspace->activeTab());
        screen = std::make_unique<BrowserScreen>(*services, *tab, nullptr);
        screen->resize(900, 600);
        screen->show();
        QApplication::setActiveWindow(screen.get());
        QCoreApplication::processEvents();
    }
    [[nodiscard]] FakePage& page() { return *harness.desk.browser.alive.back(); }
    [[nodiscard]] BrowserTab& browser() { return *tab->browser(); }

    template <typename Widget>
    Widget* button(const QString& name) const
    {
        for (Widget* each : screen->findChildren<Widget*>()) {
            if (each->isVisible() && (each->accessibleName() == name || each->text() == name))
                return each;
        }
        return nullptr;
    }
    void press(const QString& name)
    {
        auto* found = button<Control>(name);
        ASSERT_NE(found, nullptr) << name.toStdString();
        QTest::mouseClick(found, Qt::LeftButton);
    }
    [[nodiscard]] QString words() const
    {
        QStringList result;
        for (const Label* each : screen->findChildren<Label*>()) {
            if (each->isVisible())
                result.append(each->text());
        }
        return result.join('|');
    }
    void type(const QString& text) { QTest::keyClicks(QApplication::focusWidget(), text); }

    ViewHarness harness;
    std::vector<std::unique_ptr<QWidget>> widgets; ///< Of the pages.
    FakeServers servers;
    std::optional<ViewServices> services;
    std::optional<WorkspaceTab> tab;
    std::unique_ptr<BrowserScreen> screen;
};

} // namespace

TEST_F(BrowserScreenTest, ABlankTabWaitsForAnAddress)
{
    show({});

    EXPECT_EQ(QApplication::focusWidget(), &screen->bar().address());
    EXPECT_TRUE(words().contains("Type an address or a search above.")) << words().toStdString();
    EXPECT_TRUE(harness.desk.browser.alive.empty());
}

TEST_F(BrowserScreenTest, WhatIsTypedIsLoadedAndThePageHasTheKeyboard)
{
    show({});
    type("localhost:3000");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);

    ASSERT_EQ(harness.desk.browser.alive.size(), 1);
    EXPECT_EQ(page().loads.back(), QUrl("http://localhost:3000"));
    EXPECT_EQ(QApplication::focusWidget(), page().shown);
}

TEST_F(BrowserScreenTest, EscapeInTheAddressBringsThePagesOwnBack)
{
    show("http://one.test/");
    browser().requestAddressFocus();
    type("other");
    EXPECT_TRUE(browser().isEditingAddress());

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);

    EXPECT_EQ(screen->bar().address().text(), "http://one.test/");
    EXPECT_FALSE(browser().isEditingAddress());
}

TEST_F(BrowserScreenTest, AServerThatRunsIsOneClickAway)
{
    servers.found = {{3000, "/home/me/shop"}};
    show({});
    EXPECT_TRUE(words().contains("Type an address, or open a server that's running:"));

    press("localhost:3000, shop");

    EXPECT_EQ(page().loads.back(), QUrl("http://localhost:3000"));
    EXPECT_FALSE(screen->findChild<StartPage*>()->isVisible());
}

TEST_F(BrowserScreenTest, ServersAreLookedForOnlyWhileTheStartPageIsSeen)
{
    show({});
    EXPECT_EQ(servers.scans, 1);
    QTest::qWait(StartPage::RescanMilliseconds + 200);
    EXPECT_EQ(servers.scans, 2);

    browser().load(QUrl("http://one.test/"));
    QTest::qWait(StartPage::RescanMilliseconds + 200);
    EXPECT_EQ(servers.scans, 2);
}

TEST_F(BrowserScreenTest, TheBarLeadsThroughTheHistory)
{
    show("http://one.test/");
    EXPECT_FALSE(button<Control>("Back")->isEnabled());
    page().back = true;
    page().forward = true;
    page().finish("One");

    press("Back");
    press("Forward");
    press("Reload");

    EXPECT_EQ(page().told, (QStringList{"back", "forward", "reload"}));
}

TEST_F(BrowserScreenTest, APageThatLoadsCanBeStopped)
{
    show("http://one.test/");
    press("Stop");
    EXPECT_EQ(page().told, QStringList{"stop"});

    page().finish();
    EXPECT_EQ(button<Control>("Stop"), nullptr);
}

TEST_F(BrowserScreenTest, AFailureSaysWhyAndOffersAnotherTry)
{
    show("http://localhost:8080/stations");
    page().delegate.pageFailed({.text = "localhost refused to connect."});
    EXPECT_TRUE(words().contains("localhost refused to connect.|http://localhost:8080/stations"));
    EXPECT_EQ(button<Control>("Visit Anyway"), nullptr);

    press("Try Again");

    EXPECT_EQ(page().loads.size(), 2);
    EXPECT_FALSE(words().contains("refused"));
}

TEST_F(BrowserScreenTest, ACertificateCanBePassedOverByTheUser)
{
    show("https://one.test/");
    page().delegate.pageFailed({PageLoadError::Kind::Certificate, "Not trusted."});

    press("Visit Anyway");

    EXPECT_EQ(page().told, QStringList{"visit despite certificate"});
}

TEST_F(BrowserScreenTest, APageThatEndedIsReloadedOnRequest)
{
    show("http://one.test/");
    page().finish();
    page().delegate.pageEnded();
    EXPECT_TRUE(words().contains("This page has stopped."));

    press("Reload");
    EXPECT_EQ(page().loads.size(), 2);
    EXPECT_FALSE(words().contains("This page has stopped."));
}

TEST_F(BrowserScreenTest, APageThatStandsStillCanBeStopped)
{
    show("http://one.test/");
    EXPECT_EQ(button<Control>("Stop Page"), nullptr);
    page().delegate.pageResponds(false);

    press("Stop Page");

    EXPECT_EQ(page().told, QStringList{"terminate"});
}

TEST_F(BrowserScreenTest, ADialogOfThePageIsAnswered)
{
    show("http://one.test/");
    page().delegate.pageAsked({.id = 1,
                               .kind = PageQuestion::Kind::Prompt,
                               .origin = "http://one.test",
                               .text = "Your name?",
                               .suggestion = "nobody"});
    EXPECT_TRUE(words().contains("one.test asks|Your name?"));
    EXPECT_TRUE(QApplication::focusWidget()->inherits("Bralto::Field"));

    type("Ada");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);

    ASSERT_EQ(page().answers.size(), 1);
    EXPECT_EQ(page().answers.at(1), (PageAnswer{true, "nobodyAda", {}}));
    EXPECT_FALSE(screen->findChild<PageQuestionCard*>()->isVisible());
}

TEST_F(BrowserScreenTest, ReturnAllowsNothingToAPage)
{
    show("http://one.test/");
    page().delegate.pageAsked(
        {.id = 1, .kind = PageQuestion::Kind::Permission, .text = "use your camera"});

    QTest::keyClick(screen->findChild<PageQuestionCard*>(), Qt::Key_Return);
    EXPECT_TRUE(page().answers.empty());
    press("Don’t Allow");
    ASSERT_EQ(page().answers.size(), 1);
    EXPECT_FALSE(page().answers.at(1).isAccepted);
}

TEST_F(BrowserScreenTest, EscapeRefuses)
{
    show("http://one.test/");
    page().delegate.pageAsked({.id = 3, .kind = PageQuestion::Kind::Confirm, .text = "Sure?"});

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);

    ASSERT_EQ(page().answers.size(), 1);
    EXPECT_FALSE(page().answers.at(3).isAccepted);
}

TEST_F(BrowserScreenTest, QuestionsComeOneAfterTheOther)
{
    show("http://one.test/");
    page().delegate.pageAsked({.id = 1, .text = "first"});
    page().delegate.pageAsked({.id = 2, .text = "second"});
    EXPECT_TRUE(words().contains("first"));
    EXPECT_FALSE(words().contains("second"));

    press("OK");
    EXPECT_TRUE(words().contains("second"));
}

TEST_F(BrowserScreenTest, AToolAtWorkIsNamedForAWhile)
{
    show("http://one.test/");
    page().finish();
    browser().markActing("snapshot").reset();

    EXPECT_TRUE(words().contains("snapshot")) << "longer than it took";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !words().contains("snapshot"); }));
}

TEST_F(BrowserScreenTest, FindingTellsHowManyThereAre)
{
    show("http://one.test/");
    page().finish();
    screen->findBar().open();
    type("tide");
    ASSERT_EQ(page().searches.back().first, "tide");
    page().waitingSearches.back()(2, 7);
    EXPECT_TRUE(words().contains("2 of 7"));

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(page().searches.back().second, PageEngine::FindDirection::Backward);
    page().waitingSearches.back()(0, 0);
    EXPECT_TRUE(words().contains("No matches"));

    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_TRUE(page().searches.back().first.isEmpty());
    EXPECT_FALSE(screen->findBar().isVisible());
}

TEST_F(BrowserScreenTest, ThePagesWidgetIsShownAndGivenBack)
{
    show("http://one.test/");
    const QWidget* shown = page().shown;
    EXPECT_EQ(shown->parentWidget(), screen.get());
    EXPECT_EQ(shown->geometry(), QRect(0, 38, 900, 562));

    screen.reset();
    EXPECT_EQ(shown->parentWidget(), nullptr) << "the engine's own";
}

TEST_F(BrowserScreenTest, APageInFullScreenHasTheWholeSheet)
{
    show("http://one.test/");
    page().delegate.pageWantsFullScreen(true);
    EXPECT_FALSE(screen->bar().isVisible());

    QTest::keyClick(screen.get(), Qt::Key_Escape);
    EXPECT_TRUE(screen->bar().isVisible());
}

TEST_F(BrowserScreenTest, ThePageFollowsTheAppearance)
{
    SpaceTheme space;
    space.appearance = SpaceAppearance::System;
    harness.theme.setSpace(space);
    harness.theme.setSystem({.dark = true});
    show("http://one.test/");
    EXPECT_TRUE(page().dark);

    harness.theme.setSystem({.dark = false});
    EXPECT_FALSE(page().dark);
}

TEST_F(BrowserScreenTest, TheMenuOfALinkOpensItInATabOfItsOwn)
{
    show("http://one.test/");
    const auto menu = screen->makeMenu({.link = QUrl("http://two.test/")});
    QAction* entry = nullptr;
    for (QAction* each : menu->actions()) {
        if (each->text() == "Open Link in New Tab")
            entry = each;
    }
    ASSERT_NE(entry, nullptr);

    entry->trigger();
    QCoreApplication::processEvents();

    ASSERT_EQ(harness.workspace->tabs().size(), 2);
    EXPECT_EQ(harness.workspace->tabs()[1].browser()->url(), QUrl("http://two.test/"));
}

TEST_F(BrowserScreenTest, InTheSplitTheBarClosesIt)
{
    show("http://one.test/");
    EXPECT_EQ(button<Control>("Close Split View"), nullptr);
    harness.workspace->insertPage(QUrl("http://two.test/"));
    harness.workspace->openInSplit(*tab);

    press("Close Split View");
    QCoreApplication::processEvents();

    EXPECT_TRUE(harness.workspace->splitTabId().isEmpty());
}
