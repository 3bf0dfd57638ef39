// evaluate, on a real engine.

#include "Tests/Support/PageToolsHarness.h"

namespace Bralto {
namespace {

class EvaluateTool : public PageTools {
protected:
    void expectAll(const std::vector<std::pair<QString, QString>>& rows)
    {
        for (const auto& [expression, expected] : rows)
            EXPECT_EQ(value(expression), expected) << expression.toStdString();
    }
};

TEST_F(EvaluateTool, ExpressionsAndBodiesBothRun)
{
    show("<p id=p>Hello</p>");
    expectAll({
        {"1+1", "2"},
        {"return 1", "1"},
        {"1 // a remark", "1"},
        {"const a = 2; return a * 3", "6"},
        {"for (let i = 0; i < 3; i++) document.title += i; return document.title", "\"Page012\""},
        {"await Promise.resolve(5)", "5"},
        {"await new Promise((r) => setTimeout(() => r('late'), 50))", "\"late\""},
        {"return await Promise.resolve([6])", "[6]"},
        {"const a = 1", "undefined"},
        {"{ a: 1 }", "{\"a\":1}"},
        {"document.title = 'x'", "\"x\""},
    });
}

TEST_F(EvaluateTool, ValuesAreSpelledAsJson)
{
    show("<p id=p class=c>Hello</p>");
    expectAll({
        {"undefined", "undefined"},
        {"null", "null"},
        {"'a\"\\\\\\n\\u0001ü😀'", "\"a\\\"\\\\\\n\\u0001ü😀\""},
        {"NaN", "null"},
        {"1n << 70n", "\"1180591620717411303424\""},
        {"Symbol('a')", "undefined"},
        {"[undefined, Symbol('a'), () => 1]", "[null,null,\"[function anonymous]\"]"},
        {"({ a: undefined, b: function named() {} })", "{\"b\":\"[function named]\"}"},
        {"new Date(0)", "\"1970-01-01T00:00:00.000Z\""},
        {"new URL('http://a.test/')", "\"http://a.test/\""},
        {"document.getElementById('p')", "\"<p#p> <p id=\\\"p\\\" class=\\\"c\\\">Hello</p>\""},
        {"document.getElementById('p').firstChild", "\"Hello\""},
        {"document.querySelectorAll('p').length", "1"},
        {"(() => { const a = {}; a.self = a; return a })()", "{\"self\":\"[circular]\"}"},
        {"(() => { const a = []; return [a, a] })()", "[[],\"[circular]\"]"},
        {"new Map([[1, 2]])", "{}"},
        {"Object.create({ inherited: 1 })", "{}"},
    });
    EXPECT_TRUE(value("new TypeError('no')").startsWith("\"TypeError: no\\n    at "));
    EXPECT_EQ(
        value("Object.assign(document.createElement('b'), { innerHTML: 'x'.repeat(500) })").size(),
        QString("\"<b> \"").size() + 200);
}

TEST_F(EvaluateTool, ThePageAndTheScriptDoNotSeeEachOthersNames)
{
    show("<script>function quote() { return 'the page’s' }</script>");
    expectAll(
        {{"quote()", "\"the page’s\""}, {"typeof spell + typeof clean", "\"undefinedundefined\""}});
}

TEST_F(EvaluateTool, ErrorsAreToldWithTheirNames)
{
    show("");
    EXPECT_EQ(error("evaluate", {{"expression", "nosuch.thing"}}),
              "Page script error: ReferenceError: nosuch is not defined");
    EXPECT_EQ(error("evaluate", {{"expression", "throw new Error('by hand')"}}),
              "Page script error: by hand");
    EXPECT_TRUE(error("evaluate", {{"expression", "return ("}})
                    .startsWith("Page script error: SyntaxError: "));
    EXPECT_EQ(error("evaluate", {{"expression", "throw 'text'"}}), "Page script error: text");
}

TEST_F(EvaluateTool, ALongResultIsCut)
{
    show("");
    const QString told = value("'x'.repeat(60000)");
    EXPECT_TRUE(told.endsWith("x… (cut at 50000 characters)"));
    EXPECT_EQ(told.section("…", 0, 0).size(), 50000);
}

TEST_F(EvaluateTool, APolicyOfThePageDoesNotBindTheTools)
{
    site.route("/strict", [](const SiteServer::Request&) {
        return SiteServer::Response{
            200,
            "<!doctype html><title>Strict</title><button>Go</button>",
            "text/html",
            {{"Content-Security-Policy", "default-src 'none'; script-src 'self'"}}};
    });
    open("/strict");
    EXPECT_EQ(value("1 + 1"), "2");
    EXPECT_EQ(outline(), "- button \"Go\" [ref=e1]");
}

} // namespace
} // namespace Bralto
