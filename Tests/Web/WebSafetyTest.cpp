#include "Tests/Support/WebHarness.h"

#include "Web/WebProfile.h"

#include <QDesktopServices>
#include <QTemporaryDir>

namespace Bralto {
namespace {

constexpr auto Plain = "<!doctype html><title>Plain</title>Hello";

class WebSafetyTest : public WebTest {
protected:
    QString write(const QString& name, const QByteArray& text)
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        return file.fileName();
    }

    QTemporaryDir folder;
};

TEST_F(WebSafetyTest, AFilesPageReadsNoOtherFile)
{
    const QString secret = write(QStringLiteral("secret.txt"), "secret");
    const QString self =
        write(QStringLiteral("page.html"), "<!doctype html><title>File</title>Here");
    ASSERT_TRUE(load(QUrl::fromLocalFile(self)));
    EXPECT_EQ(page->title(), QStringLiteral("File"));

    const QString read = value(QStringLiteral(R"(
        const viaFetch = await fetch(secret).then(r => r.text(), () => 'no');
        const viaRequest = await new Promise(resolve => {
            const request = new XMLHttpRequest();
            request.onload = () => resolve(request.responseText);
            request.onerror = () => resolve('no');
            try { request.open('GET', secret); request.send(); } catch { resolve('no'); }
        });
        const viaFrame = await new Promise(resolve => {
            const frame = document.createElement('iframe');
            frame.onload = () => {
                try { resolve(frame.contentDocument.body.innerText || 'no'); } catch { resolve('no'); }
            };
            frame.onerror = () => resolve('no');
            setTimeout(() => resolve('no'), 500);
            frame.src = secret;
            document.body.append(frame);
        });
        return [viaFetch, viaRequest, viaFrame].join();)"),
                               {{QStringLiteral("secret"), QUrl::fromLocalFile(secret).toString()}})
                             .toString();

    EXPECT_EQ(read, QStringLiteral("no,no,no"));
}

TEST_F(WebSafetyTest, AFilesPageReadsNothingFromTheNet)
{
    site.route(QStringLiteral("/data"), [](const SiteServer::Request&) {
        return SiteServer::Response{
            200, "data", "text/plain", {{"Access-Control-Allow-Origin", "*"}}};
    });
    ASSERT_TRUE(load(QUrl::fromLocalFile(write(QStringLiteral("page.html"), Plain))));

    EXPECT_EQ(value(QStringLiteral("return await fetch(url).then(r => r.text(), () => 'no')"),
                    {{QStringLiteral("url"), site.url(QStringLiteral("/data")).toString()}}),
              QStringLiteral("no"));
}

TEST_F(WebSafetyTest, AWebPageReachesNoFile)
{
    const QString secret = write(QStringLiteral("secret.txt"), "secret");
    ASSERT_TRUE(show(Plain));
    const QJsonObject arguments{{QStringLiteral("secret"), QUrl::fromLocalFile(secret).toString()}};

    EXPECT_EQ(value(QStringLiteral("return await fetch(secret).then(r => r.text(), () => 'no')"),
                    arguments),
              QStringLiteral("no"));
    value(QStringLiteral("setTimeout(() => { location = secret })"), arguments);
    value(QStringLiteral("window.open(secret)"), arguments);
    value(QStringLiteral("await new Promise(r => setTimeout(r, 200))"));
    EXPECT_EQ(page->url(), site.url());
    EXPECT_TRUE(notes.newPages.empty());
}

TEST_F(WebSafetyTest, ThePageFindsNothingOfTheProgram)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(value(QStringLiteral("return typeof qt + typeof QWebChannel")),
              QStringLiteral("undefinedundefined"));
    EXPECT_EQ(value(QStringLiteral(
                  "return await navigator.clipboard.readText().then(() => 'read', () => 'no')")),
              QStringLiteral("no"));
    EXPECT_EQ(value(QStringLiteral("return document.execCommand('paste')")), false);
}

TEST_F(WebSafetyTest, ADocumentThatKnowsNoKeyAsksNothing)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(
        value(QStringLiteral(
            "return await fetch('bralto-ask:0123?alert&a&b').then(() => 'asked', () => 'no')")),
        QStringLiteral("no"));
    EXPECT_TRUE(notes.questions.empty());
}

TEST_F(WebSafetyTest, EachProjectHasItsOwnCookiesAndKeepsThem)
{
    QTemporaryDir other;
    const auto profileIn = [](const QTemporaryDir& place) {
        return PageProfile{place.filePath(QStringLiteral("storage")),
                           place.filePath(QStringLiteral("cache"))};
    };
    site.page(QStringLiteral("/"), Plain);
    const auto run = [&](const QTemporaryDir& place, const QString& script) {
        PageNotes its;
        WebEngines ofProject(profileIn(place));
        const auto one = ofProject.make(its);
        one->load(site.url());
        spinUntil([&] { return its.commits == 1 && !one->isLoading(); });
        std::optional<PageScriptResult> result;
        one->call({script, {}}, std::chrono::seconds(10),
                  [&](const PageScriptResult& value) { result.emplace(value); });
        spinUntil([&] { return result.has_value(); });
        return result && *result ? (*result)->toString() : QStringLiteral("failed");
    };
    const QString read = QStringLiteral("return document.cookie + localStorage.getItem('b')");

    run(folder,
        QStringLiteral("document.cookie = 'a=1;max-age=9999'; localStorage.setItem('b', '2')"));
    // The engine writes them once nobody uses them any more.
    ASSERT_TRUE(spinUntil([&] {
        QFile cookies(folder.filePath(QStringLiteral("storage/Cookies")));
        return cookies.open(QIODevice::ReadOnly) && cookies.readAll().contains("127.0.0.1");
    }));

    EXPECT_EQ(run(folder, read), QStringLiteral("a=12"));
    EXPECT_EQ(run(other, read), QStringLiteral("null"));
    EXPECT_FALSE(QFileInfo(folder.filePath(QStringLiteral("storage"))).permissions() &
                 (QFile::ReadGroup | QFile::ReadOther));
}

TEST_F(WebSafetyTest, ClearedDataIsGone)
{
    int fetches = 0;
    site.route(QStringLiteral("/kept.js"), [&fetches](const SiteServer::Request&) {
        ++fetches;
        return SiteServer::Response{
            200, "1", "text/javascript", {{"Cache-Control", "max-age=9999"}}};
    });
    WebEngines own(
        PageProfile{folder.filePath(QStringLiteral("s")), folder.filePath(QStringLiteral("c"))});
    page = own.make(notes);
    ASSERT_TRUE(show("<!doctype html><script src=/kept.js></script>"));
    value(QStringLiteral("document.cookie = 'a=1;max-age=9999'; localStorage.setItem('b', '2');"
                         "await new Promise((r, f) => { const o = indexedDB.open('c'); o.onsuccess "
                         "= r; o.onerror = f; })"));
    bool isDone = false;

    own.clearBrowsingData([&isDone] { isDone = true; });

    ASSERT_TRUE(spinUntil([&isDone] { return isDone; }));
    ASSERT_TRUE(load(site.url()));
    EXPECT_EQ(value(QStringLiteral("return document.cookie + localStorage.getItem('b')")),
              QStringLiteral("null"));
    EXPECT_EQ(value(QStringLiteral("return (await indexedDB.databases()).length")), 0);
    EXPECT_EQ(fetches, 2);
    page.reset();
}

TEST(WebProfile, TheUserAgentLosesTheToolkitsName)
{
    EXPECT_EQ(WebProfile::userAgent(
                  QStringLiteral("Mozilla/5.0 (KHTML) QtWebEngine/6.4.2 Chrome/102 Safari/5"), {}),
              QStringLiteral("Mozilla/5.0 (KHTML) Chrome/102 Safari/5"));
    EXPECT_EQ(WebProfile::userAgent(QStringLiteral("A/1"), QStringLiteral("B/2")),
              QStringLiteral("A/1 B/2"));
}

} // namespace
} // namespace Bralto
