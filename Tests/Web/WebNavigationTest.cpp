#include "Tests/Support/WebHarness.h"

namespace Bralto {
namespace {

using Kind = PageLoadError::Kind;

constexpr auto Plain = "<!doctype html><title>Plain</title><link rel=icon href=data:,>Hello";

class WebNavigationTest : public WebTest {
protected:
    /// The text of the one failure that a load of `url` brings.
    PageLoadError failure(const QUrl& url)
    {
        notes.failures.clear();
        load(url);
        if (notes.failures.size() != 1) {
            ADD_FAILURE() << "There were " << notes.failures.size() << " failures";
            return {};
        }
        return notes.failures.front();
    }
};

TEST_F(WebNavigationTest, ANewPageIsBlank)
{
    EXPECT_EQ(page->title(), QString());
    EXPECT_FALSE(page->isLoading());
    EXPECT_FALSE(page->canGoBack());
    EXPECT_FALSE(page->isPlaced());
    EXPECT_EQ(page->size(), QSize(1280, 800));
}

TEST_F(WebNavigationTest, ALoadShowsItsAddressAtOnce)
{
    site.hold(QStringLiteral("/"), Plain);

    page->load(site.url());

    EXPECT_TRUE(page->isLoading());
    EXPECT_EQ(page->url(), site.url());
    EXPECT_GT(page->progress(), 0);
    ASSERT_TRUE(spinUntil([this] { return site.count(QStringLiteral("/")) == 1; }));
    EXPECT_EQ(notes.commits, 0);
    site.releaseHeld();
    ASSERT_TRUE(spinUntil([this] { return !page->isLoading(); }));
    EXPECT_EQ(notes.commits, 1);
    EXPECT_EQ(page->title(), QStringLiteral("Plain"));
}

TEST_F(WebNavigationTest, ARefusedConnectionIsAFailureThatNamesTheServer)
{
    SiteServer gone;
    const int port = gone.port();
    gone.close();

    const PageLoadError error = failure(QUrl(QStringLiteral("http://127.0.0.1:%1/x").arg(port)));

    EXPECT_EQ(error,
              (PageLoadError{Kind::Failed,
                             QStringLiteral("127.0.0.1:%1 refused the connection.").arg(port)}));
    EXPECT_EQ(page->url(), QUrl(QStringLiteral("http://127.0.0.1:%1/x").arg(port)));
    EXPECT_FALSE(page->isLoading());
    EXPECT_EQ(notes.commits, 0);
}

TEST_F(WebNavigationTest, EachFailureHasItsWords)
{
    site.route(QStringLiteral("/silent"), [](const SiteServer::Request&) {
        return SiteServer::Response{.end = SiteServer::Response::End::Silent};
    });
    site.redirect(QStringLiteral("/round"), "/round");
    site.route(QStringLiteral("/broken"), [](const SiteServer::Request&) {
        return SiteServer::Response{500, {}};
    });
    const QString server = QStringLiteral("127.0.0.1:%1").arg(site.port());

    EXPECT_EQ(failure(QUrl(QStringLiteral("http://nowhere.invalid/"))).text,
              QStringLiteral("There is no server nowhere.invalid."));
    EXPECT_EQ(failure(site.url(QStringLiteral("/silent"))).text,
              server + QStringLiteral(" sent no answer."));
    EXPECT_EQ(failure(site.url(QStringLiteral("/round"))).text,
              server + QStringLiteral(" redirected too many times."));
    EXPECT_EQ(failure(site.url(QStringLiteral("/broken"))).text,
              server + QStringLiteral(" answered “500 Internal Server Error” and sent no page."));
    EXPECT_EQ(failure(QUrl(QStringLiteral("file:///no/such.html"))).text,
              QStringLiteral("There is no file /no/such.html."));
    EXPECT_EQ(failure(QUrl(QStringLiteral("http://127.0.0.1:6667/"))).text,
              QStringLiteral("Pages can’t be loaded from the port of 127.0.0.1:6667."));
}

TEST_F(WebNavigationTest, BackFromAFailureIsThePageBefore)
{
    ASSERT_TRUE(show(Plain));
    failure(QUrl(QStringLiteral("http://nowhere.invalid/")));
    EXPECT_EQ(notes.commits, 1);
    ASSERT_TRUE(page->canGoBack());

    page->goBack();

    ASSERT_TRUE(spinUntil([this] { return notes.commits == 2 && !page->isLoading(); }));
    EXPECT_EQ(page->url(), site.url());
    EXPECT_EQ(page->title(), QStringLiteral("Plain"));
}

TEST_F(WebNavigationTest, AFailureThatIsTriedAgainMayShowThePage)
{
    site.route(QStringLiteral("/"), [this](const SiteServer::Request&) {
        return site.count(QStringLiteral("/")) < 2 ? SiteServer::Response{503, {}}
                                                   : SiteServer::Response{200, Plain};
    });
    failure(site.url());

    page->reload();

    ASSERT_TRUE(spinUntil([this] { return notes.commits == 1 && !page->isLoading(); }));
    EXPECT_EQ(page->title(), QStringLiteral("Plain"));
    EXPECT_FALSE(page->canGoBack());
}

TEST_F(WebNavigationTest, AnErrorPageOfTheServerIsAPage)
{
    ASSERT_TRUE(load(site.url(QStringLiteral("/missing"))));

    EXPECT_TRUE(notes.failures.empty());
    EXPECT_EQ(notes.commits, 1);
    EXPECT_EQ(page->title(), QStringLiteral("Not Found"));
}

TEST_F(WebNavigationTest, ARedirectIsNoFailure)
{
    site.page(QStringLiteral("/there"), Plain);
    site.redirect(QStringLiteral("/here"), "/there");

    ASSERT_TRUE(load(site.url(QStringLiteral("/here"))));

    EXPECT_TRUE(notes.failures.empty());
    EXPECT_EQ(page->url(), site.url(QStringLiteral("/there")));
}

TEST_F(WebNavigationTest, ALoadThatAnotherReplacesTellsNothing)
{
    site.hold(QStringLiteral("/slow"), Plain);
    site.page(QStringLiteral("/quick"), "<!doctype html><title>Quick</title>");
    page->load(site.url(QStringLiteral("/slow")));
    ASSERT_TRUE(spinUntil([this] { return site.count(QStringLiteral("/slow")) == 1; }));

    ASSERT_TRUE(load(site.url(QStringLiteral("/quick"))));

    EXPECT_TRUE(notes.failures.empty());
    EXPECT_EQ(page->title(), QStringLiteral("Quick"));
    EXPECT_EQ(page->url(), site.url(QStringLiteral("/quick")));
}

TEST_F(WebNavigationTest, AStoppedLoadGivesThePageBefore)
{
    ASSERT_TRUE(show(Plain));
    site.hold(QStringLiteral("/slow"), Plain);
    page->load(site.url(QStringLiteral("/slow")));
    ASSERT_TRUE(spinUntil([this] { return site.count(QStringLiteral("/slow")) == 1; }));

    page->stop();

    ASSERT_TRUE(spinUntil([this] { return !page->isLoading(); }));
    EXPECT_EQ(page->url(), site.url());
    EXPECT_TRUE(notes.failures.empty());
}

TEST_F(WebNavigationTest, ADownloadLeavesThePage)
{
    ASSERT_TRUE(show(Plain));
    site.route(QStringLiteral("/archive"), [](const SiteServer::Request&) {
        return SiteServer::Response{200, "PK", "application/zip"};
    });

    ASSERT_TRUE(load(site.url(QStringLiteral("/archive"))));

    EXPECT_TRUE(notes.failures.empty());
    EXPECT_EQ(page->url(), site.url());
    EXPECT_EQ(value(QStringLiteral("return document.body.innerText")), QStringLiteral("Hello"));
}

TEST_F(WebNavigationTest, APageWithoutATitleHasNone)
{
    site.page(QStringLiteral("/a b/untitled"), "<!doctype html><body>x");
    ASSERT_TRUE(load(site.url(QStringLiteral("/a b/untitled?q=ä"))));

    EXPECT_EQ(page->title(), QString());
    value(QStringLiteral("document.title = 'Later'"));
    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("Later"); }));
}

TEST_F(WebNavigationTest, TheHistoryGoesBackAndForth)
{
    ASSERT_TRUE(show("<!doctype html><title>One</title>", QStringLiteral("/1")));
    ASSERT_TRUE(show("<!doctype html><title>Two</title>", QStringLiteral("/2")));
    EXPECT_TRUE(page->canGoBack());
    EXPECT_FALSE(page->canGoForward());

    page->goBack();
    ASSERT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("One"); }));

    EXPECT_TRUE(page->canGoForward());
    EXPECT_EQ(page->url(), site.url(QStringLiteral("/1")));
    page->goForward();
    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("Two"); }));
}

TEST_F(WebNavigationTest, AReloadFetchesThePageAnew)
{
    int visits = 0;
    site.route(QStringLiteral("/"), [&visits](const SiteServer::Request&) {
        return SiteServer::Response{200, "<!doctype html><title>" + QByteArray::number(++visits)};
    });
    ASSERT_TRUE(load(site.url()));

    page->reload();

    EXPECT_TRUE(page->isLoading());
    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("2"); }));
}

TEST_F(WebNavigationTest, AScriptThatMovesOnInItsPageChangesTheAddressAlone)
{
    ASSERT_TRUE(show(Plain));

    value(QStringLiteral("history.pushState(null, '', '/elsewhere')"));

    EXPECT_TRUE(
        spinUntil([this] { return page->url() == site.url(QStringLiteral("/elsewhere")); }));
    EXPECT_EQ(notes.commits, 1);
    EXPECT_TRUE(page->canGoBack());
}

TEST_F(WebNavigationTest, ALinkThatThePageFollowsIsALoad)
{
    site.page(QStringLiteral("/next"), "<!doctype html><title>Next</title>");
    ASSERT_TRUE(show("<!doctype html><a href=/next>next</a>"));

    value(QStringLiteral("setTimeout(() => document.querySelector('a').click())"));

    EXPECT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("Next"); }));
    EXPECT_EQ(notes.commits, 2);
}

TEST_F(WebNavigationTest, AWindowThatThePageOpensIsAskedFor)
{
    ASSERT_TRUE(show("<!doctype html><a target=_blank href=/new>new</a>"));

    value(QStringLiteral("document.querySelector('a').click()"));
    ASSERT_TRUE(spinUntil([this] { return notes.newPages.size() == 1; }));
    value(QStringLiteral("window.open('/other')"));
    ASSERT_TRUE(spinUntil([this] { return notes.newPages.size() == 2; }));
    value(QStringLiteral("const w = window.open(''); w.location = '/third'"));
    ASSERT_TRUE(spinUntil([this] { return notes.newPages.size() == 3; }));

    EXPECT_EQ(notes.newPages, (std::vector<QUrl>{site.url(QStringLiteral("/new")),
                                                 site.url(QStringLiteral("/other")),
                                                 site.url(QStringLiteral("/third"))}));
    EXPECT_EQ(site.count(QStringLiteral("/third")), 0);
}

TEST_F(WebNavigationTest, ZoomHoldsOverPages)
{
    page->setZoomFactor(2);
    ASSERT_TRUE(show(Plain));
    EXPECT_EQ(value(QStringLiteral("return innerWidth")), 640);

    ASSERT_TRUE(load(site.url(QStringLiteral("/"), QStringLiteral("localhost"))));

    EXPECT_EQ(value(QStringLiteral("return innerWidth")), 640);
    page->setZoomFactor(1);
    EXPECT_EQ(
        value(QStringLiteral("await new Promise(r => setTimeout(r, 100)); return innerWidth")),
        1280);
}

TEST_F(WebNavigationTest, AServerSeesAPlainBrowser)
{
    ASSERT_TRUE(show(Plain));

    const QByteArray agent = site.requests().front().headers.at("user-agent");

    EXPECT_TRUE(agent.startsWith("Mozilla/5.0 (X11; Linux"));
    EXPECT_TRUE(agent.contains(" Chrome/"));
    EXPECT_FALSE(agent.contains("QtWebEngine"));
    EXPECT_EQ(value(QStringLiteral("return navigator.userAgent")), QString::fromLatin1(agent));
}

TEST_F(WebNavigationTest, ThePicturesOfATabAreItsPages)
{
    QImage dot(16, 16, QImage::Format_RGB32);
    dot.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    dot.save(&buffer, "PNG");
    site.route(QStringLiteral("/dot.png"), [png](const SiteServer::Request&) {
        return SiteServer::Response{200, png, "image/png"};
    });

    ASSERT_TRUE(show("<!doctype html><link rel=icon href=/dot.png>"));

    ASSERT_TRUE(spinUntil([this] { return !notes.icon.isEmpty(); }));
    const QImage icon = QImage::fromData(notes.icon, "PNG");
    EXPECT_GE(icon.width(), 16);
    EXPECT_EQ(icon.pixelColor(8, 8), QColor(Qt::red));
}

TEST_F(WebNavigationTest, APageWhoseProcessDiesSaysSoAndReloads)
{
    ASSERT_TRUE(show(Plain));

    page->terminate();

    ASSERT_TRUE(spinUntil([this] { return notes.ends == 1; }));
    EXPECT_FALSE(page->isLoading());
    EXPECT_EQ(page->url(), site.url());
    page->reload();
    ASSERT_TRUE(spinUntil([this] { return notes.commits == 2 && !page->isLoading(); }));
    EXPECT_EQ(value(QStringLiteral("return document.body.innerText")), QStringLiteral("Hello"));
}

TEST_F(WebNavigationTest, ACrashIsTheEndOfThePage)
{
    ASSERT_TRUE(show(Plain));

    page->load(QUrl(QStringLiteral("chrome://crash")));

    ASSERT_TRUE(spinUntil([this] { return notes.ends == 1; }));
    EXPECT_FALSE(page->isLoading());
    ASSERT_TRUE(load(site.url()));
    EXPECT_EQ(value(QStringLiteral("return 1")), 1);
}

class WebTimeoutTest : public WebTest {
protected:
    WebTimeoutTest()
        : WebTest({std::chrono::milliseconds(300), std::chrono::milliseconds(300)})
    {
    }
};

TEST_F(WebTimeoutTest, AServerThatNeverAnswersIsAFailure)
{
    site.hold(QStringLiteral("/slow"), Plain);

    ASSERT_TRUE(load(site.url(QStringLiteral("/slow"))));

    ASSERT_EQ(notes.failures.size(), 1U);
    EXPECT_EQ(notes.failures.front().text,
              QStringLiteral("127.0.0.1:%1 took too long to answer.").arg(site.port()));
    EXPECT_EQ(page->url(), site.url(QStringLiteral("/slow")));
    ASSERT_TRUE(show(Plain));
    EXPECT_EQ(notes.failures.size(), 1U);
}

TEST_F(WebTimeoutTest, APageThatNeverEndsIsThereAllTheSame)
{
    site.route(QStringLiteral("/endless"), [](const SiteServer::Request&) {
        return SiteServer::Response{200,
                                    "<!doctype html><title>Endless</title><p>Some",
                                    "text/html",
                                    {},
                                    SiteServer::Response::End::Open};
    });

    page->load(site.url(QStringLiteral("/endless")));

    ASSERT_TRUE(spinUntil([this] { return page->title() == QStringLiteral("Endless"); }));
    EXPECT_TRUE(page->isLoading());
    EXPECT_EQ(value(QStringLiteral("await new Promise(r => setTimeout(r, 400)); return 1")), 1);
    EXPECT_TRUE(notes.failures.empty());
}

TEST_F(WebTimeoutTest, APageThatStandsStillIsNoticedAndCanBeEnded)
{
    ASSERT_TRUE(show(Plain));

    const PageScriptError stuck = error(QStringLiteral("while (true);"), {}, 3);

    EXPECT_EQ(stuck.kind, PageScriptError::Kind::TimedOut);
    EXPECT_EQ(notes.responses, std::vector<bool>{false});
    page->terminate();
    ASSERT_TRUE(spinUntil([this] { return notes.ends == 1; }));
    EXPECT_EQ(notes.responses, (std::vector<bool>{false, true}));
    ASSERT_TRUE(show(Plain));
    EXPECT_EQ(value(QStringLiteral("return 1")), 1);
}

} // namespace
} // namespace Bralto
