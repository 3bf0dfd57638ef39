#include "Tests/Support/WebHarness.h"

namespace Bralto {
namespace {

class WebConsoleTest : public WebTest {
protected:
    /// What was told once a call has come back, by which time everything before it was.
    const std::vector<QString>& log()
    {
        value(QStringLiteral("await new Promise(r => setTimeout(r, 50))"));
        return notes.log;
    }
    [[nodiscard]] int count(const QString& part) const
    {
        int result = 0;
        for (const QString& each : notes.log)
            result += each.contains(part) ? 1 : 0;
        return result;
    }
};

TEST_F(WebConsoleTest, EachLevelArrivesWithItsText)
{
    ASSERT_TRUE(show(R"(<!doctype html><script>
        console.log('one', 2, true, null, undefined);
        console.info({a: [1]}, () => 3);
        console.warn('%s', 'x');
        console.error(1n, Symbol('y'));
        console.debug('z');
        const round = {}; round.round = round; console.log(round);
    </script>)"));

    EXPECT_EQ(log(), (std::vector<QString>{
                         QStringLiteral("log: one 2 true null undefined"),
                         QStringLiteral("info: {\"a\":[1]} () => 3"), QStringLiteral("warn: %s x"),
                         QStringLiteral("error: 1 Symbol(y)"), QStringLiteral("debug: z"),
                         QStringLiteral("log: [object Object]")}));
}

TEST_F(WebConsoleTest, AnErrorShowsItsStackOnce)
{
    ASSERT_TRUE(show("<!doctype html><script>function far() { console.log(new TypeError('bad')) } "
                     "far()</script>"));

    ASSERT_EQ(log().size(), 1U);
    EXPECT_TRUE(log()[0].startsWith(QStringLiteral("log: TypeError: bad\n    at far (http://")));
    EXPECT_EQ(log()[0].count(QStringLiteral("TypeError: bad")), 1);
}

TEST_F(WebConsoleTest, AnUncaughtErrorIsToldOnceWithItsPlace)
{
    ASSERT_TRUE(show("<!doctype html><script>\nnull.x\n</script>"));

    ASSERT_EQ(log().size(), 1U);
    EXPECT_TRUE(log()[0].startsWith(QStringLiteral("error: Uncaught TypeError: ")));
    EXPECT_TRUE(log()[0].endsWith(QStringLiteral(" (%1:2:6)").arg(site.url().toString())));
    EXPECT_EQ(count(QStringLiteral("Uncaught")), 1);
}

TEST_F(WebConsoleTest, AnErrorInAScriptOfAnotherOriginIsTold)
{
    site.route(QStringLiteral("/far.js"), [](const SiteServer::Request&) {
        return SiteServer::Response{200, "\nnull.y", "text/javascript"};
    });
    const QString far = site.url(QStringLiteral("/far.js"), QStringLiteral("localhost")).toString();
    ASSERT_TRUE(show("<!doctype html><script src='" + far.toUtf8() + "'></script>"));

    ASSERT_EQ(log().size(), 1U);
    EXPECT_TRUE(log()[0].startsWith(QStringLiteral("error: Uncaught TypeError: ")));
    EXPECT_TRUE(log()[0].endsWith(QStringLiteral(" (%1:2)").arg(far)));
}

TEST_F(WebConsoleTest, AnErrorThatThePageMakesUpIsToldOnce)
{
    ASSERT_TRUE(show("<!doctype html><script>"
                     "dispatchEvent(new Event('error'));"
                     "dispatchEvent(new ErrorEvent('error', {message: 'made up'}));"
                     "null.x</script>"));

    ASSERT_EQ(log().size(), 2U);
    EXPECT_EQ(log()[0], QStringLiteral("error: Uncaught made up"));
    EXPECT_EQ(count(QStringLiteral("TypeError")), 1);
}

TEST_F(WebConsoleTest, ARejectionThatNobodyHandlesIsTold)
{
    ASSERT_TRUE(show(
        "<!doctype html><script>Promise.reject('why'); Promise.reject(new Error('no'))</script>"));

    ASSERT_EQ(log().size(), 2U);
    EXPECT_EQ(log()[0], QStringLiteral("error: Unhandled promise rejection: why"));
    EXPECT_TRUE(
        log()[1].startsWith(QStringLiteral("error: Unhandled promise rejection: Error: no")));
}

TEST_F(WebConsoleTest, WhatFailsToLoadIsTold)
{
    ASSERT_TRUE(show("<!doctype html><img src=/no.png><script src=/no.js></script>"
                     "<link rel=stylesheet href=/no.css>"));

    log();

    for (const auto& [tag, path] :
         {std::pair{"img", "/no.png"}, {"script", "/no.js"}, {"link", "/no.css"}})
        EXPECT_EQ(count(QStringLiteral("error: Failed to load %1 %2")
                            .arg(QLatin1String(tag), site.url(QLatin1String(path)).toString())),
                  1)
            << tag;
}

TEST_F(WebConsoleTest, FramesOfEveryOriginAreHeardBeforeTheirScriptsCanChangeAnything)
{
    site.page(QStringLiteral("/inner"),
              "<!doctype html><script>console.log('inner ' + location.hostname);"
              "console.log = () => {}; console.log('never')</script>");
    const QByteArray other =
        site.url(QStringLiteral("/inner"), QStringLiteral("localhost")).toEncoded();
    ASSERT_TRUE(show(
        "<!doctype html><iframe src=/inner></iframe><iframe src='" + other +
        "'></iframe><iframe srcdoc='<script>console.log(`srcdoc`)</script>'></iframe>"
        "<iframe sandbox=allow-scripts srcdoc='<script>console.log(`boxed`)</script>'></iframe>"));

    ASSERT_TRUE(spinUntil([this] { return notes.log.size() >= 4; }));

    EXPECT_EQ(count(QStringLiteral("log: inner 127.0.0.1")), 1);
    EXPECT_EQ(count(QStringLiteral("log: inner localhost")), 1);
    EXPECT_EQ(count(QStringLiteral("log: srcdoc")), 1);
    EXPECT_EQ(count(QStringLiteral("log: boxed")), 1);
    EXPECT_EQ(count(QStringLiteral("never")), 0);
}

TEST_F(WebConsoleTest, ALongTextIsCut)
{
    ASSERT_TRUE(show("<!doctype html><script>console.log('a'.repeat(9000), 'b')</script>"));

    ASSERT_EQ(log().size(), 1U);
    EXPECT_EQ(log()[0].size(), 4000 + 5);
}

TEST_F(WebConsoleTest, OurOwnScriptsErrorsAreNotThePages)
{
    ASSERT_TRUE(show("<!doctype html>"));

    EXPECT_EQ(error(QStringLiteral("throw new Error('ours')")).message, QStringLiteral("ours"));
    EXPECT_EQ(error(QStringLiteral("return (")).name, QStringLiteral("SyntaxError"));
    value(QStringLiteral(
        "setTimeout(() => { throw new Error('later') }); Promise.reject(new Error('late'))"));

    EXPECT_EQ(log(), std::vector<QString>());
}

TEST_F(WebConsoleTest, WhatTheServersRulesForbidIsTold)
{
    site.route(QStringLiteral("/"), [](const SiteServer::Request&) {
        return SiteServer::Response{200,
                                    "<!doctype html><script>alert(1)</script>",
                                    "text/html",
                                    {{"Content-Security-Policy", "script-src 'none'"}}};
    });
    ASSERT_TRUE(load(site.url()));

    log();

    EXPECT_EQ(count(QStringLiteral("error: Refused to execute inline script")), 1);
}

TEST_F(WebConsoleTest, APageThatForgesAMessageOnlyWritesAText)
{
    ASSERT_TRUE(show("<!doctype "
                     "html><script>console.debug('\\x010123456789abcdef0123456789abcdefh\\nhttp://"
                     "x/')</script>"));

    EXPECT_EQ(log().size(), 1U);
    EXPECT_EQ(notes.commits, 1);
}

TEST_F(WebConsoleTest, AFloodCostsTheWindowLittle)
{
    ASSERT_TRUE(show("<!doctype html>"));
    qint64 longest = 0;
    QElapsedTimer sinceTick;
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout,
                     [&] { longest = std::max(longest, sinceTick.restart()); });
    sinceTick.start();
    ticks.start(1);

    value(QStringLiteral("for (let i = 0; i < 100000; ++i) console.log('line ' + i)"));

    ASSERT_FALSE(notes.log.empty());
    EXPECT_EQ(notes.log.back(), QStringLiteral("log: line 99999"));
    EXPECT_LT(longest, 1000);
    RecordProperty("longestGapMs", int(longest));
    std::printf("longest gap %lld ms, %zu told\n", static_cast<long long>(longest),
                notes.log.size());
}

} // namespace
} // namespace Bralto
