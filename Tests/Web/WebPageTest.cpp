#include "Tests/Support/WebHarness.h"

namespace Bralto {
namespace {

using Kind = PageScriptError::Kind;

TEST_F(WebTest, APageLoadsAndTellsItsTitle)
{
    ASSERT_TRUE(show("<!doctype html><title>First</title>Hello"));

    EXPECT_EQ(page->title(), QStringLiteral("First"));
    EXPECT_EQ(page->url(), site.url());
    EXPECT_EQ(notes.commits, 1);
    EXPECT_EQ(page->progress(), 1);
    EXPECT_TRUE(notes.failures.empty());
}

TEST_F(WebTest, ACallGivesWhatItsFunctionReturns)
{
    ASSERT_TRUE(show("<!doctype html><title>First</title>Hello"));

    EXPECT_EQ(
        value(QStringLiteral("return a + b"), {{QStringLiteral("a"), 1}, {QStringLiteral("b"), 2}}),
        3);
    EXPECT_EQ(value(QStringLiteral("return await Promise.resolve(document.title)")),
              QStringLiteral("First"));
    EXPECT_TRUE(value(QStringLiteral("")).isUndefined());
    EXPECT_TRUE(value(QStringLiteral("return null")).isNull());
    EXPECT_EQ(error(QStringLiteral("return (")).name, QStringLiteral("SyntaxError"));
    EXPECT_EQ(
        error(QStringLiteral("throw new TypeError('no')")),
        (PageScriptError{Kind::Exception, QStringLiteral("TypeError"), QStringLiteral("no")}));
}

TEST_F(WebTest, TheConsoleIsToldBeforeTheResultOfACall)
{
    ASSERT_TRUE(show("<!doctype html><script>console.warn('early', {a: 1})</script>"));

    value(QStringLiteral("console.log('late')"));

    EXPECT_EQ(notes.log, (std::vector<QString>{QStringLiteral("warn: early {\"a\":1}"),
                                               QStringLiteral("log: late")}));
}

TEST_F(WebTest, APageThatIsNotOnTheScreenHasAPicture)
{
    ASSERT_TRUE(show("<!doctype html><body style='background:#0f0'>"));

    const QImage image = picture(PageExtent::Visible);

    ASSERT_EQ(image.size(), QSize(1280, 800));
    EXPECT_EQ(image.pixelColor(600, 400), QColor(0, 255, 0));
}

TEST_F(WebTest, TheWholePageHasAPicture)
{
    ASSERT_TRUE(
        show("<!doctype html><body style='margin:0'><div style='height:3000px;background:#00f'>"));

    const QImage image = picture(PageExtent::Whole);

    ASSERT_GT(image.height(), 2000);
    EXPECT_EQ(image.pixelColor(600, image.height() - 10), QColor(0, 0, 255));
}

} // namespace
} // namespace Bralto
