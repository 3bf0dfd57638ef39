#include "Browser/BrowserTab.h"
#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/FakePages.h"
#include "Tests/Support/FixedClock.h"
#include "Tests/Support/MemoryDefaultsStore.h"
#include "Tests/Support/QtPrinters.h"

#include <QCoreApplication>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

class BrowserTabTest : public testing::Test {
protected:
    std::unique_ptr<BrowserTab> open(const QString& address,
                                     BrowserTab::Load load = BrowserTab::Load::Now)
    {
        return std::make_unique<BrowserTab>(services(), QUrl(address), load);
    }
    [[nodiscard]] BrowserServices services()
    {
        return {.pages = &pages, .clock = &clock, .zoom = &zoom, .desktop = &desktop};
    }
    [[nodiscard]] FakePage& page() const { return *pages.alive.back(); }
    [[nodiscard]] PageDelegate& told() const { return page().delegate; }

    FakePages pages;
    FixedClock clock;
    MemoryDefaultsStore defaults;
    Zoom zoom{defaults};
    FakeDesktop desktop;
};

} // namespace

TEST(BrowserAddress, AServerOfThisMachineIsSpokenToWithoutEncryption)
{
    EXPECT_EQ(BrowserTab::resolve("localhost:3000"), QUrl("http://localhost:3000"));
    EXPECT_EQ(BrowserTab::resolve("127.0.0.1"), QUrl("http://127.0.0.1"));
    EXPECT_EQ(BrowserTab::resolve("0.0.0.0:8000/a b"), QUrl("http://0.0.0.0:8000/a b"));
    EXPECT_EQ(BrowserTab::resolve("10.0.0.1:8080/x"), QUrl("http://10.0.0.1:8080/x"));
}

TEST(BrowserAddress, AHostWithADotIsSpokenToWithEncryption)
{
    EXPECT_EQ(BrowserTab::resolve("host.test/a"), QUrl("https://host.test/a"));
    EXPECT_EQ(BrowserTab::resolve(" \n host.test:8443 "), QUrl("https://host.test:8443"));
    EXPECT_EQ(BrowserTab::resolve("bücher.test"), QUrl("https://bücher.test"));
}

TEST(BrowserAddress, WhatHasASchemeIsTakenAsItIs)
{
    EXPECT_EQ(BrowserTab::resolve("ftp://host/x"), QUrl("ftp://host/x"));
    EXPECT_EQ(BrowserTab::resolve("http://one.test/a?b=c#d"), QUrl("http://one.test/a?b=c#d"));
}

TEST(BrowserAddress, EverythingElseIsASearch)
{
    for (const QString& text : {QString("two words"), QString("word"), QString("a.b c"),
                                QString("1 + 1 = 2 & more"), QString("://")}) {
        const auto url = BrowserTab::resolve(text);
        ASSERT_TRUE(url) << text.toStdString();
        EXPECT_EQ(url->scheme(), "https");
        EXPECT_EQ(url->path(), "/search");
        const QByteArray query = url->query(QUrl::FullyEncoded).toLatin1();
        EXPECT_EQ(QUrl::fromPercentEncoding(query), "q=" + text);
        EXPECT_FALSE(query.contains('+'));
    }
}

TEST(BrowserAddress, BlanksAreNothing)
{
    EXPECT_FALSE(BrowserTab::resolve(""));
    EXPECT_FALSE(BrowserTab::resolve(" \t\n"));
}

TEST_F(BrowserTabTest, ABlankTabWantsAnAddressAndHasNoPage)
{
    const auto tab = open({});

    EXPECT_EQ(tab->title(), "New Tab");
    EXPECT_TRUE(tab->url().isEmpty());
    EXPECT_EQ(tab->addressFocusRequest(), 1);
    EXPECT_TRUE(pages.alive.empty());
    EXPECT_NE(tab->id(), open({})->id());
}

TEST_F(BrowserTabTest, AnAddressIsLoadedAtOnce)
{
    const auto tab = open("http://one.test/a");

    ASSERT_EQ(pages.alive.size(), 1);
    EXPECT_EQ(page().loads, std::vector{QUrl("http://one.test/a")});
    EXPECT_EQ(tab->addressText(), "http://one.test/a");
    EXPECT_EQ(tab->addressFocusRequest(), 0);
    EXPECT_TRUE(tab->isLoading());
}

TEST_F(BrowserTabTest, ARestoredTabLoadsWhenItIsFirstNeeded)
{
    const auto tab = open("http://one.test/", BrowserTab::Load::WhenNeeded);
    EXPECT_TRUE(pages.alive.empty());
    EXPECT_EQ(tab->addressText(), "http://one.test/");

    EXPECT_NE(tab->page(), nullptr);
    EXPECT_EQ(tab->page(), tab->pageIfMade());
    ASSERT_EQ(pages.alive.size(), 1);
    EXPECT_EQ(page().loads.size(), 1);
}

TEST_F(BrowserTabTest, WithoutPagesATabIsItsAddress)
{
    BrowserTab tab(QUrl("http://one.test/"));

    EXPECT_EQ(tab.page(), nullptr);
    EXPECT_EQ(tab.url(), QUrl("http://one.test/"));
    tab.load(QUrl("http://two.test/"));
    EXPECT_EQ(tab.url(), QUrl("http://two.test/"));
}

TEST_F(BrowserTabTest, WithoutAnEngineATabSaysSoAndTriesAgainOnRequest)
{
    pages.isMissing = true;
    const auto tab = open("http://one.test/");
    EXPECT_TRUE(tab->errorMessage());
    EXPECT_EQ(tab->url(), QUrl("http://one.test/"));

    pages.isMissing = false;
    tab->reload();
    EXPECT_EQ(tab->errorMessage(), std::nullopt);
    EXPECT_EQ(pages.alive.size(), 1);
}

TEST_F(BrowserTabTest, ATitleThatTurnsEmptyKeepsTheLast)
{
    const auto tab = open("http://one.test/");
    page().finish("Welcome");
    const QSignalSpy titles(tab.get(), &BrowserTab::titleChanged);

    page().finish("");

    EXPECT_EQ(tab->title(), "Welcome");
    EXPECT_EQ(titles.count(), 0);
}

TEST_F(BrowserTabTest, WhatTheEngineSaysIsMirroredAndToldOnce)
{
    const auto tab = open("http://one.test/");
    const QSignalSpy histories(tab.get(), &BrowserTab::historyChanged);
    const QSignalSpy progress(tab.get(), &BrowserTab::progressChanged);
    const QSignalSpy loading(tab.get(), &BrowserTab::isLoadingChanged);

    page().back = true;
    page().loaded = 0.5;
    told().pageChanged();
    told().pageChanged();
    page().finish();

    EXPECT_TRUE(tab->canGoBack());
    EXPECT_FALSE(tab->canGoForward());
    EXPECT_EQ(histories.count(), 1);
    EXPECT_EQ(progress.count(), 2);
    EXPECT_EQ(loading.count(), 1);
}

TEST_F(BrowserTabTest, TheAddressFollowsThePage)
{
    const auto tab = open("http://one.test/");
    page().address = QUrl("http://one.test/next");
    told().pageChanged();

    EXPECT_EQ(tab->url(), QUrl("http://one.test/next"));
    EXPECT_EQ(tab->addressText(), "http://one.test/next");
}

TEST_F(BrowserTabTest, WhatIsTypedIsNotOverwrittenByThePage)
{
    const auto tab = open("http://one.test/");
    tab->setEditingAddress(true);
    tab->setAddressText("host.te");

    page().address = QUrl("http://one.test/next");
    told().pageChanged();
    EXPECT_EQ(tab->addressText(), "host.te");

    tab->setEditingAddress(false);
    EXPECT_EQ(tab->addressText(), "http://one.test/next") << "whoever leaves the field gives up";
}

TEST_F(BrowserTabTest, ReturnLoadsWhatWasTyped)
{
    const auto tab = open({});
    tab->setEditingAddress(true);
    tab->setAddressText("localhost:3000");

    tab->submit();

    EXPECT_FALSE(tab->isEditingAddress());
    ASSERT_EQ(pages.alive.size(), 1);
    EXPECT_EQ(page().loads.back(), QUrl("http://localhost:3000"));
}

TEST_F(BrowserTabTest, ReturnOnBlanksLeavesTheTabAsItWas)
{
    const auto tab = open("http://one.test/");
    tab->setEditingAddress(true);
    tab->setAddressText("  ");

    tab->submit();

    EXPECT_TRUE(tab->isEditingAddress());
    EXPECT_EQ(page().loads.size(), 1);
}

TEST_F(BrowserTabTest, AFailureIsToldUntilTheNextPage)
{
    const auto tab = open("http://one.test/");
    told().pageFailed({.text = "Refused"});
    EXPECT_EQ(tab->errorMessage(), "Refused");
    EXPECT_FALSE(tab->canVisitAnyway());

    told().pageCommitted();
    EXPECT_EQ(tab->errorMessage(), std::nullopt);
}

TEST_F(BrowserTabTest, ALoadThatAnotherTookThePlaceOfIsNoFailure)
{
    const auto tab = open("http://one.test/");

    told().pageFailed({.kind = PageLoadError::Kind::Cancelled, .text = "Cancelled"});

    EXPECT_EQ(tab->errorMessage(), std::nullopt);
}

TEST_F(BrowserTabTest, AfterAFailureReloadTriesTheAddressAgain)
{
    const auto tab = open("http://one.test/");
    told().pageFailed({.text = "Refused"});

    tab->reload();

    EXPECT_EQ(page().loads.size(), 2);
    EXPECT_EQ(tab->errorMessage(), std::nullopt);
    tab->reload();
    EXPECT_EQ(page().told, QStringList{"reload"});
}

TEST_F(BrowserTabTest, ACertificateThatIsNotTrustedCanBeTakenByTheUserAlone)
{
    const auto tab = open("https://one.test/");
    tab->visitAnyway();
    EXPECT_TRUE(page().told.isEmpty());

    told().pageFailed({PageLoadError::Kind::Certificate, "Not trusted"});
    EXPECT_TRUE(tab->canVisitAnyway());
    tab->visitAnyway();
    EXPECT_EQ(page().told, QStringList{"visit despite certificate"});
}

TEST_F(BrowserTabTest, ANewWindowIsLoadedHere)
{
    const auto tab = open("http://one.test/");

    told().pageWantsNewPage(QUrl("http://two.test/"));

    EXPECT_EQ(pages.alive.size(), 1);
    EXPECT_EQ(page().loads.back(), QUrl("http://two.test/"));
}

TEST_F(BrowserTabTest, TheZoomOfTheBrowserIsThePages)
{
    zoom.set(Zoom::Area::Browser, 1.5);
    const auto tab = open("http://one.test/");
    EXPECT_EQ(page().zoom, 1.5);

    zoom.set(Zoom::Area::Browser, 0.8);
    EXPECT_EQ(page().zoom, 0.8);
    zoom.set(Zoom::Area::Editor, 2.0);
    EXPECT_EQ(page().zoom, 0.8);
}

TEST_F(BrowserTabTest, TheConsoleKeepsTheNewestThreeHundred)
{
    const auto tab = open("http://one.test/");
    for (int i = 0; i < 301; ++i)
        told().pageLogged("log", QString::number(i));

    const auto& entries = tab->console().entries();
    ASSERT_EQ(entries.size(), 300);
    EXPECT_EQ(entries.front().text, "1");
    EXPECT_EQ(entries.back().text, "300");
    EXPECT_EQ(entries.back().date, clock.now());
}

TEST_F(BrowserTabTest, QuestionsAreAnsweredOnce)
{
    const auto tab = open("http://one.test/");
    told().pageAsked({.id = 7, .kind = PageQuestion::Kind::Confirm, .text = "Sure?"});
    told().pageAsked({.id = 8, .kind = PageQuestion::Kind::Alert});
    ASSERT_EQ(tab->questions().size(), 2);

    tab->answer(7, {.isAccepted = true});
    tab->answer(7, {});
    told().pageWithdrew(8);

    EXPECT_TRUE(tab->questions().empty());
    ASSERT_EQ(page().answers.size(), 1);
    EXPECT_TRUE(page().answers.at(7).isAccepted);
}

TEST_F(BrowserTabTest, APageThatEndedComesBackWithAReload)
{
    const auto tab = open("http://one.test/");
    told().pageResponds(false);
    EXPECT_FALSE(tab->responds());
    tab->stopPage();
    EXPECT_EQ(page().told, QStringList{"terminate"});
    told().pageEnded();
    EXPECT_TRUE(tab->hasEnded());
    EXPECT_TRUE(tab->errorMessage());
    EXPECT_TRUE(tab->responds());

    tab->reload();
    EXPECT_FALSE(tab->hasEnded());
}

TEST_F(BrowserTabTest, APageThatStandsStillMakesWayForTheNextLoad)
{
    const auto tab = open("http://one.test/");
    told().pageResponds(false);

    tab->reload();
    EXPECT_EQ(page().told, QStringList{"terminate"});
    EXPECT_EQ(page().loads.size(), 1) << "its process would never get to it";
    told().pageEnded();
    EXPECT_EQ(tab->errorMessage(), std::nullopt);
    QCoreApplication::processEvents();

    EXPECT_EQ(page().loads.size(), 2);
    told().pageEnded();
    EXPECT_TRUE(tab->hasEnded()) << "of itself this time";
}

TEST_F(BrowserTabTest, TheLastToolAtWorkIsNamed)
{
    const auto tab = open("http://one.test/");
    const QSignalSpy changes(tab.get(), &BrowserTab::actingToolChanged);

    auto click = tab->markActing("click");
    auto snapshot = tab->markActing("snapshot");
    EXPECT_EQ(tab->actingTool(), "snapshot");
    click.reset();
    EXPECT_EQ(tab->actingTool(), "snapshot");
    snapshot.reset();
    EXPECT_TRUE(tab->actingTool().isEmpty());
    EXPECT_EQ(changes.count(), 4);
}

TEST_F(BrowserTabTest, AToolMayOutliveItsTab)
{
    auto tab = open("http://one.test/");
    auto acting = tab->markActing("click");
    tab.reset();
    acting.reset();
}

TEST_F(BrowserTabTest, OpensItsAddressInTheUsersOwnBrowser)
{
    open({})->openInDefaultBrowser();
    EXPECT_TRUE(desktop.opened.isEmpty());

    open("http://one.test/")->openInDefaultBrowser();
    EXPECT_EQ(desktop.opened.size(), 1);
}

TEST_F(BrowserTabTest, AClosedTabHasNoPageAndMakesNone)
{
    const auto tab = open("http://one.test/");
    const QSignalSpy going(tab.get(), &BrowserTab::pageGoing);

    tab->close();

    EXPECT_EQ(going.count(), 1);
    EXPECT_TRUE(pages.alive.empty());
    EXPECT_EQ(tab->page(), nullptr);
}

TEST(PagePicture, IsNoLargerThanAnAgentCanTake)
{
    EXPECT_EQ(PagePicture::fitted({1280, 800}), QSize(1280, 800));
    EXPECT_EQ(PagePicture::fitted({2560, 1600}), QSize(1280, 800));
    EXPECT_EQ(PagePicture::fitted({1000, 78000}), QSize(100, 7800));
    EXPECT_EQ(PagePicture::fitted({1, 100000}), QSize(1, 7800));
    EXPECT_EQ(PagePicture::fitted({640, 480}), QSize(640, 480));
    EXPECT_TRUE(PagePicture::fitted({0, 10}).isEmpty());
}
