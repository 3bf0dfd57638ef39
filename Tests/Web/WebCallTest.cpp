#include "Tests/Support/WebHarness.h"

namespace Bralto {
namespace {

using Kind = PageScriptError::Kind;

constexpr auto Plain = "<!doctype html><title>Plain</title>Hello";

class WebCallTest : public WebTest {
protected:
    /// What a call under way ends with, once `happen` has been called.
    PageScriptError interrupted(const QString& body, const std::function<void()>& happen)
    {
        std::optional<PageScriptResult> result;
        page->call({body, {}}, std::chrono::seconds(20),
                   [&result](const PageScriptResult& value) { result.emplace(value); });
        // Once the page answers another, it has started this one.
        (void)call(QStringLiteral("return 1"));
        happen();
        if (!spinUntil([&result] { return result.has_value(); }) || *result)
            return {Kind::Exception, {}, QStringLiteral("not interrupted")};
        return result->error();
    }
};

TEST_F(WebCallTest, ValuesOfEveryKindComeBackAsTheyAre)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(value(QStringLiteral("return 1.5")), 1.5);
    EXPECT_EQ(value(QStringLiteral("return true")), true);
    EXPECT_EQ(value(QStringLiteral("return 'a\\u2028\"\\\\\\n</script>ä😀'")),
              QString::fromUtf8("a\u2028\"\\\n</script>ä😀"));
    EXPECT_EQ(value(QStringLiteral("return [1, {a: null}]")),
              (QJsonArray{1, QJsonObject{{QStringLiteral("a"), QJsonValue::Null}}}));
    EXPECT_TRUE(value(QStringLiteral("return null")).isNull());
    EXPECT_TRUE(value(QStringLiteral("return")).isUndefined());
    EXPECT_EQ(value(QStringLiteral("return '1'")), QStringLiteral("1"));
}

TEST_F(WebCallTest, ArgumentsArriveAsTheyAre)
{
    ASSERT_TRUE(show(Plain));
    const QJsonObject arguments{
        {QStringLiteral("text"), QString::fromUtf8("a\u2028\"\\\n</script>ä😀`${x}`")},
        {QStringLiteral("list"), QJsonArray{1, true, QJsonValue::Null}},
        {QStringLiteral("object"), QJsonObject{{QStringLiteral("__proto__"), 1}}},
        {QStringLiteral("$none"), QJsonValue::Null}};

    const QJsonObject echoed =
        value(QStringLiteral("return {text, list, object, $none}"), arguments).toObject();

    EXPECT_EQ(echoed, arguments);
}

TEST_F(WebCallTest, WhatIsNoPlainDataIsToldApart)
{
    ASSERT_TRUE(show(Plain));

    for (const char* body : {"const a = {}; a.a = a; return a", "return 1n", "return () => 1",
                             "return document.body", "return Symbol('a')", "return window",
                             "let a = []; for (let i = 0; i < 3000; ++i) a = [a]; return a"}) {
        SCOPED_TRACE(body);
        EXPECT_EQ(error(QString::fromLatin1(body)).kind, Kind::Unserialisable);
    }
}

TEST_F(WebCallTest, WhatIsThrownHasItsNameAndMessage)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(error(QStringLiteral("null.x")).name, QStringLiteral("TypeError"));
    EXPECT_EQ(
        error(QStringLiteral("await Promise.reject(new RangeError('far'))")),
        (PageScriptError{Kind::Exception, QStringLiteral("RangeError"), QStringLiteral("far")}));
    EXPECT_EQ(error(QStringLiteral("throw 'words'")),
              (PageScriptError{Kind::Exception, {}, QStringLiteral("words")}));
    EXPECT_EQ(error(QStringLiteral("throw null")),
              (PageScriptError{Kind::Exception, {}, QStringLiteral("null")}));
    EXPECT_EQ(error(QStringLiteral("throw {get message() { throw 1 }}")).kind, Kind::Exception);
    EXPECT_EQ(error(QStringLiteral("return document.querySelector('<')")).name,
              QStringLiteral("SyntaxError"));
}

TEST_F(WebCallTest, ABodyThatIsNoFunctionBodyIsASyntaxError)
{
    ASSERT_TRUE(show(Plain));

    for (const char* body : {"return (", "}); alert(1); (async function(){", "return 'a", "/*",
                             "x y", "}", "let let = 1"}) {
        SCOPED_TRACE(body);
        const PageScriptError found = error(QString::fromLatin1(body));
        EXPECT_EQ(found.kind, Kind::Exception);
        EXPECT_EQ(found.name, QStringLiteral("SyntaxError"));
        EXPECT_FALSE(found.message.isEmpty());
    }
    EXPECT_EQ(value(QStringLiteral("return 1 // a comment at the end")), 1);
    EXPECT_TRUE(notes.questions.empty());
    EXPECT_TRUE(notes.log.empty());
}

TEST_F(WebCallTest, ANameThatIsNoParameterIsASyntaxError)
{
    ASSERT_TRUE(show(Plain));

    for (const char* name : {"a b", "", "1a", "a=alert(1)", "}", "class"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(error(QStringLiteral("return 1"), {{QString::fromLatin1(name), 1}}).name,
                  QStringLiteral("SyntaxError"));
    }
}

TEST_F(WebCallTest, ACallTakesNoLongerThanItsTimeOut)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(error(QStringLiteral("await new Promise(() => {})"), {}, 0).kind, Kind::TimedOut);
    EXPECT_EQ(value(QStringLiteral("return 1")), 1);
}

TEST_F(WebCallTest, ANavigationEndsTheCallsOfThePageBefore)
{
    ASSERT_TRUE(show(Plain));
    site.page(QStringLiteral("/next"), Plain);

    const PageScriptError found =
        interrupted(QStringLiteral("await new Promise(() => {})"),
                    [this] { page->load(site.url(QStringLiteral("/next"))); });

    EXPECT_EQ(found.kind, Kind::Navigated);
    ASSERT_TRUE(spinUntil([this] { return !page->isLoading(); }));
    EXPECT_EQ(value(QStringLiteral("return location.pathname")), QStringLiteral("/next"));
}

TEST_F(WebCallTest, ACallThatNavigatesEndsAsNavigated)
{
    ASSERT_TRUE(show(Plain));
    site.page(QStringLiteral("/next"), Plain);

    EXPECT_EQ(error(QStringLiteral("location = '/next'; await new Promise(() => {})")).kind,
              Kind::Navigated);
}

TEST_F(WebCallTest, MovingOnWithinAPageKeepsItsCalls)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(value(QStringLiteral("history.pushState(0, '', '/a'); location.hash = 'b';"
                                   "await new Promise(r => setTimeout(r, 50)); return 7")),
              7);
}

TEST_F(WebCallTest, TheEndOfTheProcessEndsItsCalls)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(
        interrupted(QStringLiteral("await new Promise(() => {})"), [this] { page->terminate(); })
            .kind,
        Kind::Ended);
}

TEST_F(WebCallTest, APageWithoutAProcessAnswersNothing)
{
    ASSERT_TRUE(show(Plain));
    page->terminate();
    ASSERT_TRUE(spinUntil([this] { return notes.ends == 1; }));

    EXPECT_EQ(error(QStringLiteral("return 1")).kind, Kind::Ended);
}

TEST_F(WebCallTest, ADoneMayCallAgainWhileTheEngineGoes)
{
    ASSERT_TRUE(show(Plain));
    int ends = 0;
    PageEngine* engine = page.get();
    page->call(
        {QStringLiteral("await new Promise(() => {})"), {}}, std::chrono::seconds(20),
        [&, engine](const PageScriptResult&) {
            engine->call({QStringLiteral("return 1"), {}}, std::chrono::seconds(20),
                         [&ends](const PageScriptResult& result) { ends += result ? 0 : 1; });
            engine->picture(PageExtent::Whole,
                            [&ends](const PagePictureResult& result) { ends += result ? 0 : 1; });
        });

    page.reset();

    EXPECT_EQ(ends, 2);
}

TEST_F(WebCallTest, TheEndOfTheEngineEndsItsCalls)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(
        interrupted(QStringLiteral("await new Promise(() => {})"), [this] { page.reset(); }).kind,
        Kind::Ended);
}

TEST_F(WebCallTest, ADoneThatEndsTheEngineDoesNoHarm)
{
    ASSERT_TRUE(show(Plain));
    int calls = 0;
    for (int i = 0; i < 3; ++i)
        page->call({QStringLiteral("return 1"), {}}, std::chrono::seconds(5),
                   [this, &calls](const PageScriptResult&) {
                       ++calls;
                       page.reset();
                   });

    EXPECT_TRUE(spinUntil([&calls] { return calls == 3; }));
}

TEST_F(WebCallTest, APageBeforeItsFirstLoadAnswersToo)
{
    EXPECT_EQ(value(QStringLiteral("return 1 + 1")), 2);
}

TEST_F(WebCallTest, APageThatFailedAnswersToo)
{
    ASSERT_TRUE(load(QUrl(QStringLiteral("http://nowhere.invalid/"))));

    EXPECT_EQ(value(QStringLiteral("return 1 + 1")), 2);
}

TEST_F(WebCallTest, AFailedLoadEndsTheCallsOfThePageBefore)
{
    ASSERT_TRUE(show(Plain));

    const PageScriptError found =
        interrupted(QStringLiteral("await new Promise(() => {})"),
                    [this] { page->load(QUrl(QStringLiteral("http://nowhere.invalid/"))); });

    EXPECT_EQ(found.kind, Kind::Navigated);
    EXPECT_EQ(value(QStringLiteral("return location.protocol")), QStringLiteral("chrome-error:"));
}

TEST_F(WebCallTest, DocumentsOfEveryKindAnswer)
{
    site.route(QStringLiteral("/strict"), [](const SiteServer::Request&) {
        return SiteServer::Response{
            200,
            Plain,
            "text/html",
            {{"Content-Security-Policy", "default-src 'none'; script-src 'self'; "
                                         "require-trusted-types-for 'script'"}}};
    });
    site.route(QStringLiteral("/sandboxed"), [](const SiteServer::Request&) {
        return SiteServer::Response{
            200, Plain, "text/html", {{"Content-Security-Policy", "sandbox allow-scripts"}}};
    });
    site.route(QStringLiteral("/text"), [](const SiteServer::Request&) {
        return SiteServer::Response{200, "plain", "text/plain"};
    });
    site.route(QStringLiteral("/xml"), [](const SiteServer::Request&) {
        return SiteServer::Response{200, "<a/>", "application/xml"};
    });
    for (const QUrl& url :
         {site.url(QStringLiteral("/strict")), site.url(QStringLiteral("/sandboxed")),
          site.url(QStringLiteral("/text")), site.url(QStringLiteral("/xml")),
          QUrl(QStringLiteral("data:text/html,<p>x")), QUrl(QStringLiteral("about:blank"))}) {
        SCOPED_TRACE(url.toString().toStdString());
        ASSERT_TRUE(load(url));
        EXPECT_EQ(value(QStringLiteral("return await 41 + 1")), 42);
    }
}

TEST_F(WebCallTest, APageThatChangesItsWorldDoesNotReachTheResult)
{
    ASSERT_TRUE(show(R"(<!doctype html><script>
        JSON.stringify = JSON.parse = () => 'mine';
        console.debug = console.log = () => {};
        Object.prototype.toJSON = () => 'mine';
        Array.prototype[Symbol.iterator] = () => { throw 1 };
        Function.prototype.apply = Function.prototype.call = () => 'mine';
        Promise.prototype.then = () => 'mine';
        Reflect.apply = () => 'mine';
        String.prototype.startsWith = () => { throw 1 };
        window.String = window.Error = window.Node = null;
        window.requestAnimationFrame = null;
    </script>)"));

    EXPECT_EQ(value(QStringLiteral("return a"), {{QStringLiteral("a"), 5}}), 5);
    EXPECT_EQ(value(QStringLiteral("return 'x'")), QStringLiteral("x"));
    EXPECT_EQ(error(QStringLiteral("throw new TypeError('x')")).name, QStringLiteral("TypeError"));
}

TEST_F(WebCallTest, ThePageDoesNotFindTheKey)
{
    ASSERT_TRUE(show(R"(<!doctype html><script>
        const seen = [];
        const search = (object) => {
            for (const key of Reflect.ownKeys(object)) {
                seen.push(String(key));
                let value;
                try { value = object[key]; } catch {}
                if (typeof value === 'function') seen.push(Function.prototype.toString.call(value));
            }
        };
        search(window);
        window.spy = () => { try { seen.push(String(spy.caller)); } catch {} search(window); };
        window.seen = seen;
    </script>)"));

    const QString seen = value(QStringLiteral("spy(); return seen.join('\\n')")).toString();

    EXPECT_TRUE(seen.contains(QStringLiteral("Symbol(bralto)")));
    EXPECT_FALSE(seen.contains(QRegularExpression(QStringLiteral("[0-9a-f]{32}"))));
}

TEST_F(WebCallTest, ALargeResultArrivesAndATooLargeOneIsRefused)
{
    ASSERT_TRUE(show(Plain));

    EXPECT_EQ(value(QStringLiteral("return 'x'.repeat(5e6)")).toString().size(), 5000000);
    EXPECT_EQ(error(QStringLiteral("return 'x'.repeat(2e7)")).name, QStringLiteral("RangeError"));
}

TEST_F(WebCallTest, TimersAndFramesOfAHiddenPageRunWhileItIsDriven)
{
    ASSERT_TRUE(show(Plain));

    const double spent =
        value(
            QStringLiteral("const start = performance.now();"
                           "for (let i = 0; i < 20; ++i) await new Promise(r => setTimeout(r, 10));"
                           "await new Promise(r => requestAnimationFrame(r));"
                           "return performance.now() - start"))
            .toDouble();

    EXPECT_LT(spent, 3000);
    EXPECT_EQ(value(QStringLiteral("return document.visibilityState")), QStringLiteral("visible"));
}

TEST_F(WebCallTest, ManyCallsAtOnceGetTheirOwnAnswers)
{
    ASSERT_TRUE(show(Plain));
    std::vector<int> answers(200, -1);
    int count = 0;

    for (int i = 0; i < 200; ++i)
        page->call({QStringLiteral("await new Promise(r => setTimeout(r, (i * 7) % 13)); return i"),
                    {{QStringLiteral("i"), i}}},
                   std::chrono::seconds(20), [&, i](const PageScriptResult& result) {
                       answers[std::size_t(i)] = result ? result->toInt() : -2;
                       ++count;
                   });

    ASSERT_TRUE(spinUntil([&count] { return count == 200; }));
    for (int i = 0; i < 200; ++i)
        EXPECT_EQ(answers[std::size_t(i)], i);
}

} // namespace
} // namespace Bralto
