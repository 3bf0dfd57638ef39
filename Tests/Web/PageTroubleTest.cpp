// What the tools tell of pages that load slowly, ask, flood, block or crash: things that a driver
// of another browser could not show.

#include "Tests/Support/PageToolsHarness.h"

#include <QCoreApplication>
#include <QElapsedTimer>

namespace Bralto {
namespace {

class PageTrouble : public PageTools {};

TEST_F(PageTrouble, APageIsOpenedAndLeftAndFoundAgain)
{
    open("/arrived.html");
    EXPECT_TRUE(
        text("navigate", {{"url", site.url("/controls.html").toString()}}).contains("Controls — "));
    EXPECT_TRUE(text("navigate", {{"back", true}}).contains("Arrived — "));
    EXPECT_EQ(error("navigate", {{"back", true}}), "Nothing to go back to in this tab.");
    EXPECT_TRUE(text("navigate", {{"forward", true}}).contains("Controls — "));
    EXPECT_TRUE(text("navigate", {{"reload", true}}).contains("Controls — "));
}

TEST_F(PageTrouble, APageThatNeverEndsCanBeReadAllTheSame)
{
    site.route("/endless", [](const SiteServer::Request&) {
        return SiteServer::Response{200,
                                    "<!doctype html><title>Endless</title><button>Go</button>",
                                    "text/html",
                                    {},
                                    SiteServer::Response::End::Open};
    });
    const QString told = text("open", {{"url", site.url("/endless").toString()}, {"timeout", 1}});
    EXPECT_TRUE(told.endsWith("(still loading)")) << told.toStdString();
    EXPECT_EQ(outline(), "- button \"Go\" [ref=e1]");
    EXPECT_TRUE(text("wait", {{"timeout", 0.5}}).startsWith("Still loading after 0s: "));
}

TEST_F(PageTrouble, AServerThatIsNotThereIsTold)
{
    const QString told = text("open", {{"url", "http://127.0.0.1:9/"}});
    EXPECT_TRUE(told.startsWith("Opened tab ") && told.contains(" (failed: "))
        << told.toStdString();
}

TEST_F(PageTrouble, TheConsoleOfAllFramesIsRead)
{
    open("/frames.html");
    // Frames are processes of their own, which nothing waits for.
    value("new Promise((resolve) => setTimeout(resolve, 500))");
    const QString told = text("console");
    EXPECT_TRUE(told.contains("log: inner 127.0.0.1")) << told.toStdString();
    EXPECT_TRUE(told.contains("log: inner localhost")) << told.toStdString();
}

TEST_F(PageTrouble, ErrorsOfThePageAreInItsConsole)
{
    show("<script>console.warn('careful', {a: 1}); nosuch()</script>");
    // What the page said before it answers has arrived with the answer.
    value("1");
    EXPECT_TRUE(text("console", {{"level", "warning"}}).endsWith("warn: careful {\"a\":1}"));
    EXPECT_TRUE(text("console", {{"level", "error"}}).contains("nosuch is not defined"));
}

TEST_F(PageTrouble, AFloodedConsoleKeepsTheNewest)
{
    open("/flood.html");
    text("wait", {{"text", "Stop"}});
    EXPECT_EQ(value("new Promise((r) => setTimeout(() => r(count), 1500))"), "20000");
    const QString told = text("console", {{"limit", 1}});
    EXPECT_TRUE(told.contains("(299 earlier messages not shown)"));
    EXPECT_TRUE(told.contains("log: message 19999 ")) << told.left(200).toStdString();
}

TEST_F(PageTrouble, AScreenshotCanShowTheWholePage)
{
    show("<body style='margin:0;background:#0f0'><div style='height:3000px'></div><p>End</p>");
    const QImage image = picture({{"fullPage", true}});
    EXPECT_GT(image.height(), 2500);
    EXPECT_LE(image.width(), 1280);
}

TEST_F(PageTrouble, AQuestionOfThePageIsToldAndCanBeAnswered)
{
    open("/dialogs.html");
    BrowserTab& tab = *tabs.tabs[0];
    QStringList told;
    // While the question is open the engine runs a loop of its own, within the test's.
    controller.run("click", {{"selector", "#confirm"}}, [&](const ToolOutput& clicked) {
        told << textOf(clicked);
        controller.run("snapshot", {}, [&](const ToolOutput& looked) {
            told << textOf(looked);
            ASSERT_EQ(tab.questions().size(), 1);
            tab.answer(tab.questions()[0].id, {.isAccepted = true});
        });
    });
    while (told.size() < 2)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);

    const QString asks = "The page asks “Delete all?” and stands still until the owner answers in "
                         "the Bralto window. "
                         "Use wait, then take a new snapshot.";
    EXPECT_EQ(told, (QStringList{asks, asks}));
    EXPECT_FALSE(run("wait", {{"selector", "#alert"}}).isError);
    EXPECT_EQ(value("document.title"), "\"Deleted\"");
}

TEST_F(PageTrouble, APageThatBlocksItselfTimesOut)
{
    show("<button>Go</button>");
    value("setTimeout(() => { while (true); }, 0)");
    const QString told = text("wait", {{"timeout", 1}});
    EXPECT_TRUE(told.startsWith("Loaded ")) << told.toStdString();
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(
        error("wait", {{"text", "Go"}, {"timeout", 2}}).startsWith("Timed out after 2s waiting"));
    EXPECT_LT(timer.elapsed(), 4000);
    tabs.tabs[0]->stopPage();
}

TEST_F(PageTrouble, ACrashedPageIsToldAndLoadsAgain)
{
    open("/arrived.html");
    BrowserTab& tab = *tabs.tabs[0];
    tab.stopPage();
    while (!tab.hasEnded())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);

    EXPECT_EQ(error("snapshot"),
              "The page crashed. Use navigate with reload: true to load it again.");
    EXPECT_TRUE(text("navigate", {{"reload", true}}).contains("Arrived — "));
    EXPECT_EQ(outline(), "- paragraph: Here you are.");
}

TEST_F(PageTrouble, APageThatCrashesWhileItLoadsIsToldAtOnce)
{
    open("/arrived.html");
    const QString told = text("navigate", {{"url", "chrome://crash"}});
    EXPECT_TRUE(told.contains(" (failed: ")) << told.toStdString();
    EXPECT_TRUE(error("click", {{"selector", "p"}}).startsWith("The page crashed."));
}

TEST_F(PageTrouble, AFileIsOpenedByItsPath)
{
    const QString path = QDir::cleanPath(QStringLiteral(BRALTO_FIXTURES "/../Site/arrived.html"));
    EXPECT_TRUE(text("open", {{"url", path}}).contains("Arrived — file://"));
    EXPECT_EQ(outline(), "- paragraph: Here you are.");
}

TEST_F(PageTrouble, ABlankTabIsABlankPage)
{
    tabs.add({});
    EXPECT_TRUE(text("snapshot").contains("URL: about:blank\n"));
    EXPECT_EQ(value("1 + 1"), "2");
}

} // namespace
} // namespace Bralto
