// wait and screenshot on real pages.

#include "Tests/Support/PageToolsHarness.h"

namespace Bralto {
namespace {

class WatchingTools : public PageTools {};

TEST_F(WatchingTools, WaitingEndsOnceTheTextIsThere)
{
    show("<p id=p></p><script>setTimeout(() => p.textContent = 'Ready now', 600)</script>");
    const QString told = text("wait", {{"text", "Ready"}});
    EXPECT_TRUE(told.startsWith("Found text \"Ready\" after 0.") ||
                told.startsWith("Found text \"Ready\" after 1."))
        << told.toStdString();
}

TEST_F(WatchingTools, OnlyWhatIsSeenIsFound)
{
    show("<p id=a hidden>Secret</p><div style='display:none'><b id=b>x</b></div><i id=c>y</i>"
         "<details><summary>s</summary><u id=d>z</u></details>");
    for (const char* selector : {"#a", "#b", "#d", "#none"}) {
        SCOPED_TRACE(selector);
        EXPECT_TRUE(run("wait", {{"selector", selector}, {"timeout", 0}}).isError);
        EXPECT_FALSE(run("wait", {{"selector", selector}, {"gone", true}}).isError);
    }
    EXPECT_FALSE(run("wait", {{"selector", "#c"}}).isError);
    EXPECT_TRUE(run("wait", {{"text", "Secret"}, {"timeout", 0}}).isError);
    EXPECT_TRUE(run("wait", {{"selector", "#c"}, {"text", "Secret"}, {"timeout", 0}}).isError);
}

TEST_F(WatchingTools, WaitingLooksIntoShadowRoots)
{
    open("/shadow.html");
    EXPECT_FALSE(run("wait", {{"selector", "#deep"}}).isError);
}

TEST_F(WatchingTools, WaitingOutlastsANavigation)
{
    open("/leaving.html");
    value("setTimeout(() => location.href = '/arrived.html', 300)");
    EXPECT_FALSE(run("wait", {{"text", "Here you are"}}).isError);
}

TEST_F(WatchingTools, WaitingForTheLoadTellsThatItIsOver)
{
    open("/arrived.html");
    EXPECT_TRUE(text("wait").startsWith("Loaded tab "));
}

TEST_F(WatchingTools, AScreenshotShowsThePage)
{
    show("<body style='margin:0;background:#00f'>");
    const QImage image = picture();
    ASSERT_EQ(image.size(), QSize(1280, 800));
    EXPECT_EQ(image.pixelColor(600, 400), QColor(0, 0, 255));
}

} // namespace
} // namespace Bralto
