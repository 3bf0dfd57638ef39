// Which tab a tool takes, what it makes of addresses, how it waits, and what it tells of a page
// that doesn't answer.

#include "Browser/ToolTexts.h"
#include "Tests/Support/ControllerHarness.h"

#include <QDir>
#include <QJsonDocument>

using namespace Bralto;
using namespace std::chrono_literals;

namespace {

class BrowserControllerTest : public ControllerHarness {
protected:
    QByteArray respond(const QByteArray& line)
    {
        QByteArray answer;
        controller.respond(line, [&answer](const QByteArray& bytes) { answer = bytes; });
        return answer;
    }
};

using Kind = PageScriptError::Kind;

} // namespace

// --- the door

TEST_F(BrowserControllerTest, ALineOfTheSocketIsAnsweredWithALine)
{
    EXPECT_EQ(
        respond(R"({"tool":"tabs","arguments":{}})"),
        R"({"content":[{"type":"text","text":"No browser tabs open. Use open to load a page."}],"isError":false})");
    EXPECT_EQ(respond(R"({"tool":"dance"})"),
              R"({"content":[{"type":"text","text":"Unknown tool dance"}],"isError":true})");
    EXPECT_EQ(respond("[]"),
              R"({"content":[{"type":"text","text":"Malformed request"}],"isError":true})");
}

TEST_F(BrowserControllerTest, ArgumentsThatAreNoObjectAreNone)
{
    EXPECT_EQ(respond(R"({"tool":"open","arguments":["http://a.test"]})"),
              R"({"content":[{"type":"text","text":"Pass a url."}],"isError":true})");
}

// --- the tab

TEST_F(BrowserControllerTest, ATabIsNamedByTheBeginningOfItsId)
{
    const auto first = open("http://one.test/", "One");
    const auto second = open("http://two.test/", "Two");

    for (const QString& name :
         {first->id(), idOf(first), idOf(first).toUpper(), idOf(first).left(6)})
        EXPECT_TRUE(text("console", {{"tab", name}}).contains("One")) << name.toStdString();
    EXPECT_EQ(controller.lastTargetId(), first->id());
    EXPECT_TRUE(text("console", {{"tab", idOf(second)}}).contains("Two"));
}

TEST_F(BrowserControllerTest, AnUnknownTabIsNamedInTheError)
{
    open("http://one.test/", "One");

    EXPECT_EQ(error("console", {{"tab", "XYZ"}}),
              "No browser tab XYZ. Use tabs to see the open ones.");
}

TEST_F(BrowserControllerTest, WithoutATabTheOneOnTheScreenIsTaken)
{
    const auto first = open("http://one.test/", "One");
    open("http://two.test/", "Two");
    tabs.visible = first;

    EXPECT_TRUE(text("console").contains("One"));
}

TEST_F(BrowserControllerTest, WithTheEditorInFrontTheLastUsedTabIsTaken)
{
    const auto first = open("http://one.test/", "One");
    open("http://two.test/", "Two");
    tabs.visible = nullptr;
    EXPECT_TRUE(text("console").contains("Two")) << "the last one, before any was used";

    text("console", {{"tab", idOf(first)}});

    EXPECT_TRUE(text("console").contains("One"));
}

TEST_F(BrowserControllerTest, AClosedTabIsNoLongerTheLastUsedOne)
{
    const auto first = open("http://one.test/", "One");
    open("http://two.test/", "Two");
    text("console", {{"tab", idOf(first)}});
    tabs.visible = nullptr;

    tabs.closeBrowser(first->id());

    EXPECT_TRUE(text("console").contains("Two"));
}

TEST_F(BrowserControllerTest, WithoutAnyTabEveryToolOfAPageSaysSo)
{
    const QJsonObject all{
        {"text", "a"}, {"key", "a"}, {"expression", "a"}, {"url", "http://a.test"}};
    for (const char* tool : {"navigate", "snapshot", "click", "type", "press", "scroll",
                             "screenshot", "evaluate", "wait", "console", "close"}) {
        EXPECT_EQ(error(tool, all),
                  "No browser tab is open in this project. Use open to load a page.")
            << tool;
    }
}

// --- addresses

TEST(ToolAddresses, APathIsAFile)
{
    EXPECT_EQ(*ToolTexts::url(" /tmp/a b.html\n"), QUrl("file:///tmp/a%20b.html"));
    EXPECT_EQ(*ToolTexts::url("~/x.html"), QUrl::fromLocalFile(QDir::homePath() + "/x.html"));
}

TEST(ToolAddresses, AKnownSchemeIsTakenAsItIs)
{
    for (const char* address : {"http://a.test/?q=1#x", "https://a.test", "file:///tmp/a",
                                "data:text/html,<b>a</b>", "about:blank", "blob:http://a.test/1"})
        EXPECT_EQ(ToolTexts::url(address)->scheme(), QUrl(address).scheme()) << address;
    EXPECT_EQ(ToolTexts::url("HTTP://a.test/")->host(), "a.test");
}

TEST(ToolAddresses, EverythingElseIsWhatTheAddressFieldMakesOfIt)
{
    EXPECT_EQ(*ToolTexts::url("localhost:3000"), QUrl("http://localhost:3000"));
    EXPECT_EQ(*ToolTexts::url("a.test"), QUrl("https://a.test"));
    EXPECT_EQ(*ToolTexts::url("ftp://a.test/"), QUrl("ftp://a.test/"));
    EXPECT_EQ(ToolTexts::url("two words")->path(), "/search");
}

TEST(ToolAddresses, NothingIsNoAddress)
{
    const auto url = ToolTexts::url(" \n");
    ASSERT_FALSE(url);
    EXPECT_EQ(url.error().message, "Couldn’t make a URL out of  \n");
}

TEST(ToolTexts, ACutDoesNotHalveACharacter)
{
    EXPECT_EQ(ToolTexts::cut("abcd", 4, "…"), "abcd");
    EXPECT_EQ(ToolTexts::cut("abcde", 4, "…"), "abcd…");
    EXPECT_EQ(ToolTexts::cut("abc😀", 4, "…"), "abc…");
}

// --- the summary

TEST_F(BrowserControllerTest, ASummaryHasIdTitleAndAddress)
{
    const auto tab = open("http://one.test/a", "One");

    EXPECT_EQ(ToolTexts::summary(*tab), "tab " + idOf(tab) + ": One — http://one.test/a");
}

TEST_F(BrowserControllerTest, ASummarySaysThatThePageLoadsOrFailed)
{
    const auto tab = tabs.add(QUrl("http://one.test/"));
    EXPECT_EQ(ToolTexts::summary(*tab),
              "tab " + idOf(tab) + ": New Tab — http://one.test/ (still loading)");

    page().loading = false;
    page().delegate.pageFailed({.text = "The server refused."});

    EXPECT_EQ(ToolTexts::summary(*tab),
              "tab " + idOf(tab) + ": New Tab — http://one.test/ (failed: The server refused.)");
}

TEST_F(BrowserControllerTest, ASummaryOfABlankTabNamesTheBlankPage)
{
    const auto tab = tabs.add({});

    EXPECT_EQ(ToolTexts::summary(*tab), "tab " + idOf(tab) + ": New Tab — about:blank");
}

TEST_F(BrowserControllerTest, APageWithoutATitleIsCalledByTheTabsLastOne)
{
    const auto tab = open("http://one.test/", "One");
    page().name = "  ";

    EXPECT_EQ(ToolTexts::summary(*tab), "tab " + idOf(tab) + ": One — http://one.test/");
}

// --- what a script's result becomes

TEST_F(BrowserControllerTest, AResultIsToldAsText)
{
    open("http://one.test/", "One");
    const std::vector<std::pair<QJsonValue, QString>> rows{
        {"text", "text"},
        {12, "12"},
        {1.5, "1.5"},
        {true, "true"},
        {false, "false"},
        {QJsonValue::Null, ""},
        {QJsonValue(QJsonValue::Undefined), ""},
        {QJsonObject{{"a", 1}}, R"({"a":1})"},
    };
    for (const auto& [value, expected] : rows) {
        const CallPtr call = start("scroll");
        reply(value);
        EXPECT_EQ(call->text(), expected);
        EXPECT_FALSE(call->isError());
    }
}

TEST_F(BrowserControllerTest, EveryWayInWhichAScriptFailsHasItsSentence)
{
    const auto tab = open("http://one.test/", "One");
    const std::vector<std::pair<PageScriptError, QString>> rows{
        {{Kind::Exception, "Error", "No element e5."}, "Page script error: No element e5."},
        {{Kind::Exception, "", "thrown"}, "Page script error: thrown"},
        {{Kind::Exception, "TypeError", "x is null"}, "Page script error: TypeError: x is null"},
        {{Kind::Unserialisable},
         "The result can’t be sent back; return plain data (or JSON.stringify it)."},
        {{Kind::Navigated},
         "The page went elsewhere before it could answer. Now at tab " + idOf(tab) +
             ": One — http://one.test/. Take a new snapshot."},
        {{Kind::Asking, "", "Sure?"},
         "The page asks “Sure?” and stands still until the owner answers in the Bralto window. Use "
         "wait, then take a new snapshot."},
        {{Kind::TimedOut},
         "The page didn’t answer in 30 seconds; a script of its own may be running "
         "without end. Use navigate with reload: true, or open the page in a new "
         "tab."},
        {{Kind::Ended}, "The page crashed. Use navigate with reload: true to load it again."},
    };
    for (const auto& [failure, expected] : rows) {
        const CallPtr call = start("scroll");
        fail(failure);
        EXPECT_EQ(call->text(), expected);
        EXPECT_TRUE(call->isError());
    }
}

TEST_F(BrowserControllerTest, AQuestionOfAnyLengthIsCut)
{
    open("http://one.test/", "One");
    const CallPtr call = start("scroll");

    fail({.kind = Kind::Asking, .message = QString(5000, 'x')});

    EXPECT_LT(call->text().size(), 500);
}

TEST_F(BrowserControllerTest, EveryCallEndsBeforeTheAgentGivesUp)
{
    open("http://one.test/", "One");
    for (const auto& [tool, arguments] :
         std::vector<std::pair<QString, QJsonObject>>{{"snapshot", {}},
                                                      {"click", {{"ref", "e1"}}},
                                                      {"type", {{"text", "a"}}},
                                                      {"press", {{"key", "a"}}},
                                                      {"scroll", {}},
                                                      {"wait", {{"text", "a"}, {"timeout", 1000}}},
                                                      {"evaluate", {{"expression", "1"}}}}) {
        const CallPtr call = start(tool, arguments);
        EXPECT_LE(page().timeouts.back(), tool == "evaluate" ? 60s : 30s) << tool.toStdString();
        EXPECT_GT(page().timeouts.back(), 0s);
    }
}

// --- tabs and pages that come and go

TEST_F(BrowserControllerTest, ATabThatIsClosedInTheMiddleOfAToolIsToldAsGone)
{
    const auto tab = open("http://one.test/", "One");
    const CallPtr call = start("snapshot");

    const auto done = page().waiting.front();
    page().waiting.clear();
    tabs.closeBrowser(tab->id());
    done(Unexpected{PageScriptError{.kind = Kind::Ended}});
    turn();

    EXPECT_EQ(call->text(), "That tab is gone.");
    EXPECT_TRUE(call->isError());
}

TEST_F(BrowserControllerTest, ATabThatIsClosedBetweenTwoStepsOfAToolIsToldAsGone)
{
    const auto tab = open("http://one.test/", "One");
    const CallPtr call = start("wait", {{"text", "late"}});
    reply(false);

    tabs.closeBrowser(tab->id());
    pass(200ms);

    EXPECT_EQ(call->text(), "That tab is gone.");
}

TEST_F(BrowserControllerTest, ALoadIsNotWaitedForOnceItsTabIsClosed)
{
    const CallPtr call = start("open", {{"url", "http://one.test/"}});
    pass(150ms);
    EXPECT_FALSE(call->isDone());

    tabs.closeBrowser(tabs.tabs.back()->id());
    turn();

    EXPECT_TRUE(call->isDone());
}

TEST_F(BrowserControllerTest, WithoutAnEngineAToolSaysSo)
{
    FakeBrowserTabs addresses{{}};
    BrowserController other(addresses, scheduler, clock);
    addresses.add(QUrl("http://one.test/"));
    for (const char* tool : {"snapshot", "screenshot", "scroll"}) {
        std::optional<ToolOutput> output;
        other.run(tool, {}, [&output](ToolOutput answer) { output = std::move(answer); });
        ASSERT_TRUE(output) << tool;
        EXPECT_EQ(*output,
                  ToolOutput::error("Pages can’t be shown here: the page engine is missing. "
                                    "Use another browser."));
    }
}

TEST_F(BrowserControllerTest, ARestoredTabLoadsBeforeItIsLookedAt)
{
    tabs.add(QUrl("http://one.test/"), BrowserTab::Load::WhenNeeded);
    ASSERT_TRUE(pages.alive.empty());

    const CallPtr call = start("snapshot");
    pass(500ms);
    ASSERT_EQ(page().loads.size(), 1);
    EXPECT_TRUE(page().waiting.empty()) << "the page is still empty";
    page().finish("One");
    turn();

    EXPECT_EQ(page().waiting.size(), 1);
    reply("Page: One");
    EXPECT_TRUE(call->text().endsWith("\nPage: One"));
}

TEST_F(BrowserControllerTest, ACrashedPageIsNotAskedAnything)
{
    open("http://one.test/", "One");
    page().delegate.pageEnded();

    EXPECT_EQ(error("snapshot"),
              "The page crashed. Use navigate with reload: true to load it again.");
    EXPECT_TRUE(page().scripts.empty());
}

TEST_F(BrowserControllerTest, ALoadIsNotWaitedForOnceItsPageCrashed)
{
    const CallPtr call = start("open", {{"url", "http://one.test/"}});
    pass(1s);
    page().delegate.pageEnded();
    turn();

    EXPECT_TRUE(call->isDone());
}

TEST_F(BrowserControllerTest, AControllerThatGoesTakesItsToolsAlong)
{
    const auto tab = open("http://one.test/", "One");
    bool isTold = false;
    {
        BrowserController other(tabs, scheduler, clock);
        other.run("snapshot", {}, [&isTold](const ToolOutput&) { isTold = true; });
        other.run("open", {{"url", "http://two.test/"}},
                  [&isTold](const ToolOutput&) { isTold = true; });
        EXPECT_EQ(tab->actingTool(), "snapshot");
    }

    EXPECT_EQ(tab->actingTool(), "");
    pages.alive.front()->reply(QJsonValue("late"));
    pass(20s);
    EXPECT_FALSE(isTold);
    EXPECT_EQ(scheduler.waiting(), 0);
}

TEST_F(BrowserControllerTest, ATabShowsTheToolForAsLongAsItRuns)
{
    const auto tab = open("http://one.test/", "One");

    const CallPtr call = start("click", {{"ref", "e1"}});
    EXPECT_EQ(tab->actingTool(), "click");
    reply("Clicked");
    EXPECT_EQ(tab->actingTool(), "click") << "the page may still react";
    pass(250ms);

    EXPECT_TRUE(call->isDone());
    EXPECT_EQ(tab->actingTool(), "");
}

TEST_F(BrowserControllerTest, TwoClientsMeetAtTheirWaits)
{
    const auto first = open("http://one.test/", "One");
    const auto second = open("http://two.test/", "Two");

    const CallPtr slow = start("snapshot", {{"tab", idOf(first)}});
    const CallPtr quick = start("snapshot", {{"tab", idOf(second)}});
    EXPECT_EQ(controller.lastTargetId(), second->id());
    reply(*pages.alive.back(), "second");
    EXPECT_TRUE(quick->isDone());
    EXPECT_FALSE(slow->isDone());
    reply(*pages.alive.front(), "first");

    EXPECT_EQ(slow->text(), "Tab " + idOf(first) + "\nfirst");
    EXPECT_EQ(quick->text(), "Tab " + idOf(second) + "\nsecond");
}
