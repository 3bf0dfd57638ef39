#include "Tests/Support/WebHarness.h"

namespace Bralto {
namespace {

using Kind = PageLoadError::Kind;

class WebCertificateTest : public WebTest {
protected:
    WebCertificateTest()
    {
        secure.page(QStringLiteral("/"), "<!doctype html><title>Secure</title>words");
    }

    SiteServer secure{SiteServer::Secure{}};
};

TEST_F(WebCertificateTest, ACertificateThatNobodyTrustsIsShownNotPassedOver)
{
    ASSERT_TRUE(load(secure.url()));

    EXPECT_EQ(notes.failures,
              (std::vector<PageLoadError>{
                  {Kind::Certificate,
                   QStringLiteral(
                       "The certificate of 127.0.0.1:%1 comes from nobody this machine trusts.")
                       .arg(secure.port())}}));
    EXPECT_EQ(notes.commits, 0);
    EXPECT_TRUE(secure.requests().empty());
}

TEST_F(WebCertificateTest, TheUserMayVisitAllTheSame)
{
    ASSERT_TRUE(load(secure.url()));

    page->visitDespiteCertificate();

    ASSERT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("Secure"); }));
    EXPECT_EQ(page->url(), secure.url());
    EXPECT_EQ(notes.failures.size(), 1U);
    PageNotes otherNotes;
    const auto other = engines.make(otherNotes);
    other->load(secure.url());
    ASSERT_TRUE(spinUntil([&] { return !other->isLoading(); }));
    EXPECT_EQ(other->title(), QStringLiteral("Secure"));
}

TEST_F(WebCertificateTest, WhatIsTakenForOneServerIsNotTakenForAnother)
{
    SiteServer second{SiteServer::Secure{}};
    ASSERT_TRUE(load(secure.url()));
    page->visitDespiteCertificate();
    ASSERT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("Secure"); }));

    ASSERT_TRUE(load(secure.url(QStringLiteral("/"), QStringLiteral("localhost"))));

    ASSERT_EQ(notes.failures.size(), 2U);
    EXPECT_EQ(notes.failures[1].kind, Kind::Certificate);
    EXPECT_TRUE(notes.failures[1].text.startsWith(QStringLiteral("The certificate of localhost:")));
}

TEST_F(WebCertificateTest, APageThatDidNotFailForItsCertificateIsNotVisitedAgain)
{
    ASSERT_TRUE(show("<!doctype html><title>Plain</title>words"));

    page->visitDespiteCertificate();

    EXPECT_FALSE(page->isLoading());
}

TEST_F(WebCertificateTest, WhatAPageFetchesInAdditionIsRefusedInSilence)
{
    ASSERT_TRUE(show("<!doctype html>words"));

    EXPECT_EQ(value(QStringLiteral(
                        "return await fetch(url, {mode: 'no-cors'}).then(() => 'yes', () => 'no')"),
                    {{QStringLiteral("url"), secure.url().toString()}}),
              QStringLiteral("no"));
    EXPECT_TRUE(notes.failures.empty());
    page->visitDespiteCertificate();
    EXPECT_FALSE(page->isLoading());
}

} // namespace
} // namespace Bralto
