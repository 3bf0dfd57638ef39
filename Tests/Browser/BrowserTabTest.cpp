#include "Browser/BrowserTab.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

TEST(BrowserTab, ABlankTabHasNoAddressAndSaysSo)
{
    const BrowserTab tab;

    EXPECT_TRUE(tab.url().isEmpty());
    EXPECT_EQ(tab.title(), "New Tab");
    EXPECT_FALSE(tab.id().isEmpty());
    EXPECT_NE(tab.id(), BrowserTab().id());
}

TEST(BrowserTab, IsCalledByItsHostUntilThePageHasATitle)
{
    BrowserTab tab(QUrl("http://localhost:8080/a"));
    const QSignalSpy titles(&tab, &BrowserTab::titleChanged);
    EXPECT_EQ(tab.title(), "localhost");

    tab.setTitle("Welcome");
    EXPECT_EQ(tab.title(), "Welcome");
    ASSERT_EQ(titles.count(), 1);
    EXPECT_EQ(titles.first().first().toString(), "Welcome");
}

TEST(BrowserTab, ATitleThatTurnsEmptyKeepsTheLast)
{
    BrowserTab tab(QUrl("http://localhost/"));
    tab.setTitle("Welcome");
    const QSignalSpy titles(&tab, &BrowserTab::titleChanged);

    tab.setTitle("");

    EXPECT_EQ(tab.title(), "Welcome");
    EXPECT_EQ(titles.count(), 0);
}

TEST(BrowserTab, ANewAddressIsAnnouncedOnceAndCarriesTheTitleAlongWithoutOne)
{
    BrowserTab tab;
    const QSignalSpy urls(&tab, &BrowserTab::urlChanged);
    const QSignalSpy titles(&tab, &BrowserTab::titleChanged);

    tab.setUrl(QUrl("http://one.test/"));
    tab.setUrl(QUrl("http://one.test/"));
    tab.setUrl(QUrl("http://one.test/other"));

    EXPECT_EQ(urls.count(), 2);
    ASSERT_EQ(titles.count(), 1);
    EXPECT_EQ(titles.first().first().toString(), "one.test");
}

TEST(BrowserTab, StoppingIsForTheEngineToCarryOut)
{
    BrowserTab tab(QUrl("http://one.test/"));
    const QSignalSpy stops(&tab, &BrowserTab::stopRequested);

    tab.stopLoading();

    EXPECT_EQ(stops.count(), 1);
}
