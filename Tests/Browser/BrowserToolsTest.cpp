// What each tool does around its page: its arguments, its waits and its words.

#include "Tests/Support/ControllerHarness.h"

using namespace Bralto;
using namespace std::chrono_literals;

namespace {

using Kind = PageScriptError::Kind;

class BrowserToolsTest : public ControllerHarness {
protected:
    /// What the page was asked to run last.
    [[nodiscard]] QJsonObject sent() { return page().scripts.back().arguments; }
    [[nodiscard]] QString body() { return page().scripts.back().body; }

    void log(const QString& level, const QString& message)
    {
        page().delegate.pageLogged(level, message);
    }
};

} // namespace

// --- tabs

TEST_F(BrowserToolsTest, TabsAreListedWithTheirPlaces)
{
    const auto first = open("http://one.test/", "One");
    const auto second = tabs.add({});
    const auto third = tabs.add(QUrl("http://three.test/a b"));
    tabs.active = first->id();
    tabs.split = third->id();
    tabs.visible = first;

    EXPECT_EQ(text("tabs"), idOf(first) + "  One — http://one.test/ [active, default target]\n" +
                                idOf(second) + "  New Tab — about:blank\n" + idOf(third) +
                                "  New Tab — http://three.test/a%20b [split, loading]");
}

TEST_F(BrowserToolsTest, ListingTabsChoosesNone)
{
    open("http://one.test/", "One");

    text("tabs");

    EXPECT_EQ(controller.lastTargetId(), "");
}

// --- open

TEST_F(BrowserToolsTest, AnOpenedPageIsToldOnceItHasLoaded)
{
    const CallPtr call = start("open", {{"url", "localhost:3000"}});
    ASSERT_EQ(tabs.tabs.size(), 1);
    EXPECT_EQ(page().loads, std::vector{QUrl("http://localhost:3000")});
    EXPECT_EQ(controller.lastTargetId(), tabs.tabs[0]->id());
    EXPECT_EQ(tabs.tabs[0]->actingTool(), "open");
    pass(1s);
    EXPECT_FALSE(call->isDone());

    page().finish("Home");
    turn();

    EXPECT_EQ(call->text(), "Opened tab " + idOf(tabs.tabs[0]) + ": Home — http://localhost:3000");
    EXPECT_FALSE(call->isError());
}

TEST_F(BrowserToolsTest, APageThatNeverFinishesIsToldAsLoading)
{
    const CallPtr usual = start("open", {{"url", "http://one.test/"}});
    pass(14990ms);
    EXPECT_FALSE(usual->isDone());
    pass(10ms);
    EXPECT_TRUE(usual->text().endsWith("(still loading)")) << usual->text().toStdString();

    const CallPtr patient = start("open", {{"url", "http://one.test/"}, {"timeout", 1000}});
    pass(29990ms);
    EXPECT_FALSE(patient->isDone());
    pass(10ms);
    EXPECT_TRUE(patient->isDone());
}

TEST_F(BrowserToolsTest, ANavigationIsGivenTheTimeToBegin)
{
    const CallPtr call = start("open", {{"url", "http://one.test/"}});
    page().finish("One");
    pass(140ms);
    EXPECT_FALSE(call->isDone());
    pass(10ms);
    EXPECT_TRUE(call->isDone());
}

TEST_F(BrowserToolsTest, OpeningNeedsAnAddress)
{
    EXPECT_EQ(error("open"), "Pass a url.");
    EXPECT_EQ(error("open", {{"url", "  "}}), "Couldn’t make a URL out of   ");
    EXPECT_TRUE(tabs.tabs.empty());
}

TEST_F(BrowserToolsTest, APageCanBeOpenedInTheTabThatIsThere)
{
    const auto first = open("http://one.test/", "One");
    open("http://two.test/", "Two");

    const CallPtr call =
        start("open", {{"url", "http://three.test/"}, {"newTab", false}, {"tab", idOf(first)}});

    EXPECT_EQ(tabs.tabs.size(), 2);
    EXPECT_EQ(pages.alive.front()->loads.back(), QUrl("http://three.test/"));
    EXPECT_EQ(controller.lastTargetId(), first->id());
    pages.alive.front()->finish("Three");
    pass(150ms);
    EXPECT_TRUE(call->text().startsWith("Opened tab " + idOf(first) + ": Three"));
}

TEST_F(BrowserToolsTest, WithoutATabToOpenItInAPageGetsANewOne)
{
    start("open", {{"url", "http://one.test/"}, {"newTab", "false"}});
    EXPECT_EQ(tabs.tabs.size(), 1);

    start("open", {{"url", "http://two.test/"}, {"newTab", false}, {"tab", "nosuch"}});
    EXPECT_EQ(tabs.tabs.size(), 2);
}

TEST_F(BrowserToolsTest, ATabThatCannotBeOpenedIsAnError)
{
    tabs.isFull = true;
    EXPECT_EQ(error("open", {{"url", "http://one.test/"}}), "Couldn’t open a tab");
}

// --- navigate

TEST_F(BrowserToolsTest, NavigatingLoadsAnAddress)
{
    const auto tab = open("http://one.test/", "One");

    const CallPtr call = start("navigate", {{"url", "two.test"}, {"back", true}});
    EXPECT_EQ(page().loads.back(), QUrl("https://two.test"));
    EXPECT_TRUE(page().told.isEmpty()) << "the address comes first";
    page().finish("Two");
    pass(150ms);

    EXPECT_EQ(call->text(), "Now at tab " + idOf(tab) + ": Two — https://two.test");
}

TEST_F(BrowserToolsTest, NavigatingGoesThroughTheHistory)
{
    open("http://one.test/", "One");
    EXPECT_EQ(error("navigate", {{"back", true}}), "Nothing to go back to in this tab.");
    EXPECT_EQ(error("navigate", {{"forward", true}}), "Nothing to go forward to in this tab.");

    page().back = true;
    page().forward = true;
    page().delegate.pageChanged();
    start("navigate", {{"back", true}, {"forward", true}, {"reload", true}});
    start("navigate", {{"back", false}, {"forward", true}, {"reload", true}});
    start("navigate", {{"reload", "yes"}});

    EXPECT_EQ(page().told, (QStringList{"back", "forward", "reload"}));
}

TEST_F(BrowserToolsTest, NavigatingNowhereIsAnError)
{
    open("http://one.test/", "One");
    for (const QJsonObject& arguments : {QJsonObject{}, QJsonObject{{"reload", false}}})
        EXPECT_EQ(error("navigate", arguments), "Pass a url, or back, forward or reload: true.");
}

TEST_F(BrowserToolsTest, AFailedLoadIsPartOfTheAnswer)
{
    open("http://one.test/", "One");
    const CallPtr call = start("navigate", {{"url", "http://two.test/"}});

    page().loading = false;
    page().delegate.pageFailed({.text = "Refused."});
    page().delegate.pageChanged();
    pass(150ms);

    EXPECT_TRUE(call->text().endsWith("(failed: Refused.)"));
    EXPECT_FALSE(call->isError());
}

// --- snapshot

TEST_F(BrowserToolsTest, ASnapshotNamesItsTab)
{
    const auto tab = open("http://one.test/", "One");

    const CallPtr call = start("snapshot", {{"ref", "e4"}});
    EXPECT_EQ(sent(),
              (QJsonObject{{"ref", "e4"}, {"selector", QJsonValue::Null}, {"maxChars", 16000}}));
    EXPECT_TRUE(body().endsWith("return await outline({ maxChars, ref, selector });\n"));
    reply("Page: One");

    EXPECT_EQ(call->text(), "Tab " + idOf(tab) + "\nPage: One");
}

TEST_F(BrowserToolsTest, ASnapshotsSizeHasLimits)
{
    open("http://one.test/", "One");
    for (const auto& [asked, expected] : std::vector<std::pair<QJsonValue, int>>{
             {10, 1000}, {"2500.9", 2500}, {1e9, 200000}, {-5, 1000}, {"many", 16000}}) {
        start("snapshot", {{"maxChars", asked}});
        EXPECT_EQ(sent()["maxChars"].toInt(), expected);
    }
}

// --- tools that act

TEST_F(BrowserToolsTest, AClickGivesThePageAMomentToReact)
{
    open("http://one.test/", "One");

    const CallPtr call = start("click", {{"selector", "#go"}, {"double", "yes"}});
    EXPECT_EQ(sent(),
              (QJsonObject{{"ref", QJsonValue::Null}, {"selector", "#go"}, {"double", true}}));
    reply("Clicked button");
    pass(240ms);
    EXPECT_FALSE(call->isDone());
    pass(10ms);

    EXPECT_EQ(call->text(), "Clicked button");
}

TEST_F(BrowserToolsTest, ANavigationThatFollowsIsWaitedForAndTold)
{
    const auto tab = open("http://one.test/", "One");
    const CallPtr call = start("click", {{"ref", "e1"}});
    reply("Clicked link \"Two\"");
    page().load(QUrl("http://two.test/"));
    pass(5s);
    EXPECT_FALSE(call->isDone());

    page().finish("Two");
    turn();

    EXPECT_EQ(call->text(),
              "Clicked link \"Two\"\nNow at tab " + idOf(tab) + ": Two — http://two.test/");
}

TEST_F(BrowserToolsTest, ANavigationThatDoesNotEndIsWaitedForTenSeconds)
{
    open("http://one.test/", "One");
    const CallPtr call = start("press", {{"key", "Enter"}});
    reply("Pressed Enter");
    page().load(QUrl("http://two.test/"));
    pass(10240ms);
    EXPECT_FALSE(call->isDone());
    pass(10ms);

    EXPECT_TRUE(call->text().endsWith("(still loading)"));
}

TEST_F(BrowserToolsTest, APageThatLeavesAtOnceIsNoFailure)
{
    const auto tab = open("http://one.test/", "One");
    const CallPtr call = start("click", {{"ref", "e1"}});
    page().load(QUrl("http://two.test/"));
    page().finish("Two");
    fail({.kind = Kind::Navigated});
    pass(250ms);

    EXPECT_EQ(call->text(), "The page went elsewhere before it could answer.\nNow at tab " +
                                idOf(tab) + ": Two — http://two.test/");
    EXPECT_FALSE(call->isError());
}

TEST_F(BrowserToolsTest, AFailedActionIsToldAtOnce)
{
    open("http://one.test/", "One");
    const CallPtr call = start("click");
    fail({.name = "Error", .message = "Pass a ref."});

    EXPECT_EQ(call->text(), "Page script error: Pass a ref.");
    EXPECT_TRUE(call->isError());
}

TEST_F(BrowserToolsTest, TypingReplacesUnlessToldOtherwise)
{
    open("http://one.test/", "One");
    EXPECT_EQ(error("type"), "Pass the text to type.");
    EXPECT_EQ(error("type", {{"text", ""}}), "Pass the text to type.");

    start("type", {{"text", 42}, {"ref", "e1"}});
    EXPECT_EQ(sent(), (QJsonObject{{"ref", "e1"},
                                   {"selector", QJsonValue::Null},
                                   {"text", "42"},
                                   {"submit", false},
                                   {"clear", true}}));
    start("type", {{"text", "a"}, {"submit", true}, {"clear", false}});
    EXPECT_TRUE(sent()["submit"].toBool());
    EXPECT_FALSE(sent()["clear"].toBool());
}

TEST_F(BrowserToolsTest, PressingNeedsAKey)
{
    open("http://one.test/", "One");
    EXPECT_EQ(error("press"), "Pass a key, like Enter, Escape, ArrowDown or Shift+Tab.");

    start("press", {{"key", "Shift+Tab"}});
    EXPECT_EQ(sent()["key"].toString(), "Shift+Tab");
}

TEST_F(BrowserToolsTest, ScrollingWaitsForNoLoad)
{
    open("http://one.test/", "One");

    const CallPtr call = start("scroll", {{"dy", "300"}});
    EXPECT_EQ(
        sent(),
        (QJsonObject{
            {"ref", QJsonValue::Null}, {"selector", QJsonValue::Null}, {"dx", 0}, {"dy", 300}}));
    reply("Scrolled");

    EXPECT_EQ(call->text(), "Scrolled");
}

// --- screenshot

TEST_F(BrowserToolsTest, AScreenshotIsAPictureAndALineOfText)
{
    const auto tab = open("http://one.test/", "One");

    const CallPtr call = start("screenshot");
    EXPECT_EQ(page().extents, std::vector{PageExtent::Visible});
    page().replyPicture(QByteArray("png"));
    turn();

    ASSERT_TRUE(call->isDone());
    EXPECT_EQ(*call->output, (ToolOutput{{ControlMessage::Image{"png", "image/png"},
                                          ControlMessage::Text{"Screenshot of tab " + idOf(tab) +
                                                               ": One — http://one.test/"}},
                                         false}));
    start("screenshot", {{"fullPage", true}});
    EXPECT_EQ(page().extents.back(), PageExtent::Whole);
}

TEST_F(BrowserToolsTest, APageThatNobodyShowsGetsRoomOfItsOwn)
{
    open("http://one.test/", "One");
    page().placed = false;
    page().room = {9, 600};
    start("screenshot");
    EXPECT_EQ(page().room, QSize(1280, 800));

    page().room = {640, 480};
    start("screenshot");
    EXPECT_EQ(page().room, QSize(640, 480));
}

TEST_F(BrowserToolsTest, AShownPageWithoutRoomCannotBeDrawn)
{
    open("http://one.test/", "One");
    page().room = {800, 9};

    EXPECT_EQ(error("screenshot"), "The tab has no room on screen to draw.");
}

TEST_F(BrowserToolsTest, AMissingPictureHasItsReason)
{
    open("http://one.test/", "One");
    for (const auto& [failure, expected] : std::vector<std::pair<PagePictureError, QString>>{
             {PagePictureError::NothingDrawn, "Couldn’t take a screenshot"},
             {PagePictureError::Unreadable, "Couldn’t read the page’s PDF"},
             {PagePictureError::Unencodable, "Couldn’t render the page"}}) {
        const CallPtr call = start("screenshot");
        page().replyPicture(Unexpected{failure});
        turn();
        EXPECT_EQ(call->text(), expected);
        EXPECT_TRUE(call->isError());
    }
}

TEST_F(BrowserToolsTest, APageThatStandsStillIsNotDrawnForEver)
{
    open("http://one.test/", "One");
    const CallPtr call = start("screenshot");
    pass(30s);

    EXPECT_EQ(call->text(), "Couldn’t take a screenshot");
    page().replyPicture(QByteArray("late"));
    turn();
}

// --- evaluate

TEST_F(BrowserToolsTest, AnExpressionIsTriedFirst)
{
    open("http://one.test/", "One");

    const CallPtr call = start("evaluate", {{"expression", "1+1"}});
    EXPECT_TRUE(body().startsWith(
        "const __braltoValue = await (async () => {\nreturn (\n1+1\n);\n})();\n"));
    EXPECT_EQ(page().timeouts.back(), 60s);
    reply("2");

    EXPECT_EQ(call->text(), "2");
    EXPECT_EQ(page().scripts.size(), 1);
}

TEST_F(BrowserToolsTest, WhatIsNoExpressionRunsAsABody)
{
    open("http://one.test/", "One");
    for (const PageScriptError& syntax :
         {PageScriptError{.name = "SyntaxError", .message = "Unexpected token 'return'"},
          PageScriptError{.message = "Uncaught SyntaxError: Unexpected token"}}) {
        const CallPtr call = start("evaluate", {{"expression", "return 1"}});
        fail(syntax);
        EXPECT_TRUE(
            body().startsWith("const __braltoValue = await (async () => {\nreturn 1\n})();"));
        reply("1");
        EXPECT_EQ(call->text(), "1");
    }
}

TEST_F(BrowserToolsTest, AnythingElseIsNotTriedTwice)
{
    open("http://one.test/", "One");
    for (const PageScriptError& failure :
         {PageScriptError{.name = "TypeError", .message = "x"},
          PageScriptError{.kind = Kind::TimedOut},
          PageScriptError{.kind = Kind::Navigated, .message = "SyntaxError"}}) {
        const CallPtr call = start("evaluate", {{"expression", "f()"}});
        fail(failure);
        EXPECT_TRUE(call->isError());
    }
    EXPECT_EQ(page().scripts.size(), 3);
}

TEST_F(BrowserToolsTest, BothAttemptsTogetherEndBeforeTheAgentGivesUp)
{
    open("http://one.test/", "One");
    const CallPtr call = start("evaluate", {{"expression", "JSON.parse(await slow())"}});
    pass(50s);
    fail({.name = "SyntaxError"});

    EXPECT_EQ(page().timeouts.back(), 10s);
    fail({.kind = Kind::TimedOut});
    EXPECT_TRUE(call->text().startsWith("The page didn’t answer in 60 seconds;"));
}

TEST_F(BrowserToolsTest, AResultIsCutAtFiftyThousandCharacters)
{
    open("http://one.test/", "One");
    EXPECT_EQ(error("evaluate"), "Pass an expression (or a function body that returns something).");

    const CallPtr fits = start("evaluate", {{"expression", "a"}});
    reply(QString(50000, 'x'));
    EXPECT_EQ(fits->text(), QString(50000, 'x'));

    const CallPtr longer = start("evaluate", {{"expression", "a"}});
    reply(QString(50001, 'x'));
    EXPECT_EQ(longer->text(), QString(50000, 'x') + "… (cut at 50000 characters)");
}

// --- wait

TEST_F(BrowserToolsTest, WaitingForNothingWaitsForTheLoad)
{
    const auto tab = tabs.add(QUrl("http://one.test/"));
    const CallPtr call = start("wait");
    pass(3s);
    EXPECT_FALSE(call->isDone());
    page().finish("One");
    turn();
    EXPECT_EQ(call->text(), "Loaded tab " + idOf(tab) + ": One — http://one.test/");

    page().load(QUrl("http://two.test/"));
    const CallPtr endless = start("wait", {{"timeout", 2.9}});
    pass(2890ms);
    EXPECT_FALSE(endless->isDone());
    pass(10ms);
    EXPECT_EQ(endless->text(), "Still loading after 2s: tab " + idOf(tab) +
                                   ": One — http://two.test/ (still loading)");
    EXPECT_FALSE(endless->isError());
}

TEST_F(BrowserToolsTest, AConditionIsAskedUntilItHolds)
{
    open("http://one.test/", "One");
    const CallPtr call = start("wait", {{"text", "Done"}, {"selector", "#x"}});
    EXPECT_EQ(sent(), (QJsonObject{{"text", "Done"}, {"selector", "#x"}, {"gone", false}}));
    for (int i = 0; i < 6; ++i) {
        reply(false);
        EXPECT_TRUE(page().waiting.empty());
        pass(200ms);
    }
    reply(true);

    EXPECT_EQ(call->text(), "Found text \"Done\" and selector #x after 1.2s");
}

TEST_F(BrowserToolsTest, AConditionCanBeThatSomethingGoes)
{
    open("http://one.test/", "One");
    const CallPtr call = start("wait", {{"selector", ".spinner"}, {"gone", true}});
    EXPECT_TRUE(sent()["gone"].toBool());
    reply(true);

    EXPECT_EQ(call->text(), "Gone selector .spinner after 0.0s");
}

TEST_F(BrowserToolsTest, AConditionThatNeverHoldsTimesOut)
{
    const auto tab = open("http://one.test/", "One");
    const QString summary = "tab " + idOf(tab) + ": One — http://one.test/";
    const CallPtr appear = start("wait", {{"text", "x"}, {"timeout", 1.5}});
    const CallPtr leave = start("wait", {{"text", "x"}, {"timeout", 1.5}, {"gone", true}});
    for (int i = 0; i < 8; ++i) {
        reply(false);
        reply(false);
        pass(200ms);
    }

    EXPECT_EQ(appear->text(), "Timed out after 1s waiting for text \"x\" to appear on " + summary);
    EXPECT_EQ(leave->text(), "Timed out after 1s waiting for text \"x\" to go away on " + summary);
    EXPECT_TRUE(appear->isError());
}

TEST_F(BrowserToolsTest, WithNoTimeAtAllAConditionIsAskedOnce)
{
    open("http://one.test/", "One");
    const CallPtr call = start("wait", {{"text", "x"}, {"timeout", 0}});
    EXPECT_EQ(page().timeouts.back(), 100ms);
    reply(false);
    pass(200ms);

    EXPECT_EQ(page().scripts.size(), 1);
    EXPECT_TRUE(call->text().startsWith("Timed out after 0s"));
}

TEST_F(BrowserToolsTest, AnErrorInTheMiddleOfANavigationIsNotYet)
{
    open("http://one.test/", "One");
    const CallPtr call = start("wait", {{"text", "x"}});
    fail({.kind = Kind::Navigated});
    pass(200ms);
    fail({.name = "TypeError"});
    pass(200ms);
    reply(true);

    EXPECT_EQ(call->text(), "Found text \"x\" after 0.4s");
}

// --- console

TEST_F(BrowserToolsTest, TheConsoleIsReadOldestFirst)
{
    const auto tab = open("http://one.test/", "One");
    EXPECT_EQ(text("console"),
              "No console messages in tab " + idOf(tab) + ": One — http://one.test/.");
    const QDateTime noon(QDate(2026, 1, 15), QTime(12, 0));
    clock.set(noon);
    log("log", "first");
    clock.set(noon.addSecs(61));
    log("error", "second");

    EXPECT_EQ(text("console"), "[12:00:00] log: first\n[12:01:01] error: second");
}

TEST_F(BrowserToolsTest, TheConsoleIsFilteredByLevel)
{
    const auto tab = open("http://one.test/", "One");
    clock.set(QDateTime(QDate(2026, 1, 15), QTime(12, 0)));
    log("log", "a");
    log("warn", "b");
    log("warning", "c");

    for (const char* level : {"warn", "WARNING", "Warn"})
        EXPECT_EQ(text("console", {{"level", level}}), "[12:00:00] warn: b\n[12:00:00] warning: c");
    EXPECT_EQ(text("console", {{"level", "Error"}}), "No console messages at level error in tab " +
                                                         idOf(tab) + ": One — http://one.test/.");
}

TEST_F(BrowserToolsTest, TheConsoleShowsTheNewestMessages)
{
    open("http://one.test/", "One");
    clock.set(QDateTime(QDate(2026, 1, 15), QTime(12, 0)));
    for (int i = 0; i < 60; ++i)
        log("log", QString::number(i));

    EXPECT_TRUE(
        text("console").startsWith("(10 earlier messages not shown)\n[12:00:00] log: 10\n"));
    EXPECT_EQ(text("console", {{"limit", 0}}),
              "(59 earlier messages not shown)\n[12:00:00] log: 59");
    EXPECT_FALSE(text("console", {{"limit", 1000}}).contains("earlier"));
}

TEST_F(BrowserToolsTest, TheConsoleCanBeEmptiedAfterReading)
{
    open("http://one.test/", "One");
    log("log", "a");
    log("error", "b");

    EXPECT_TRUE(text("console", {{"level", "error"}, {"clear", true}}).endsWith("error: b"));

    EXPECT_TRUE(text("console").startsWith("No console messages in"));
}

// --- close

TEST_F(BrowserToolsTest, AClosedTabIsToldAsItWas)
{
    const auto first = open("http://one.test/", "One");
    open("http://two.test/", "Two");

    EXPECT_EQ(text("close", {{"tab", idOf(first)}}),
              "Closed tab " + idOf(first) + ": One — http://one.test/");
    EXPECT_EQ(tabs.tabs.size(), 1);
}

TEST_F(BrowserToolsTest, ATabThatIsGoneAlreadyCannotBeClosed)
{
    const auto tab = open("http://one.test/", "One");
    tabs.tabs.clear();
    tabs.visible = tab;

    EXPECT_EQ(error("close"), "That tab is gone.");
}
