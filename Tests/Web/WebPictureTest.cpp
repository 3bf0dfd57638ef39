#include "Tests/Support/WebHarness.h"

namespace Bralto {
namespace {

/// 100 px each of red, green and blue, and then white down to `height`.
QByteArray bands(int height)
{
    return "<!doctype html><body style='margin:0'><div style='height:100px;background:#f00'></div>"
           "<div style='height:100px;background:#0f0'></div>"
           "<div style='height:100px;background:#00f'></div>"
           "<div style='height:" +
           QByteArray::number(height - 300) + "px'>words</div>";
}

class WebPictureTest : public WebTest {};

TEST_F(WebPictureTest, ThePictureShowsWhatTheScriptJustDid)
{
    ASSERT_TRUE(show("<!doctype html><body style='margin:0;background:#f00'>words"));
    ASSERT_EQ(picture(PageExtent::Visible).pixelColor(700, 500), QColor(255, 0, 0));

    value(QStringLiteral("document.body.style.background = '#00f'"));

    EXPECT_EQ(picture(PageExtent::Visible).pixelColor(700, 500), QColor(0, 0, 255));
}

TEST_F(WebPictureTest, APageOnTheScreenAndOneBesideItLookAlike)
{
    ASSERT_TRUE(show(bands(600)));
    page->resize({900, 500});
    const QImage beside = picture(PageExtent::Visible);
    QWidget window;
    window.resize(900, 500);
    page->widget()->setParent(&window);
    page->widget()->setGeometry(0, 0, 900, 500);
    window.show();
    page->widget()->show();

    const QImage shown = picture(PageExtent::Visible);
    window.hide();
    value(QStringLiteral("scrollTo(0, 50)"));
    const QImage scrolled = picture(PageExtent::Visible);

    EXPECT_EQ(beside.size(), QSize(900, 500));
    EXPECT_EQ(shown.size(), QSize(900, 500));
    EXPECT_EQ(beside.pixelColor(10, 150), QColor(0, 255, 0));
    EXPECT_EQ(shown.pixelColor(10, 150), QColor(0, 255, 0));
    EXPECT_EQ(scrolled.pixelColor(10, 151), QColor(0, 0, 255));
    page->widget()->setParent(nullptr);
}

TEST_F(WebPictureTest, AWideViewIsMadeSmaller)
{
    ASSERT_TRUE(show(bands(600)));
    page->resize({2560, 1000});

    const QImage image = picture(PageExtent::Visible);

    EXPECT_EQ(image.size(), QSize(1280, 500));
    EXPECT_EQ(image.pixelColor(10, 75), QColor(0, 255, 0));
}

TEST_F(WebPictureTest, AViewWithoutRoomHasNoPicture)
{
    ASSERT_TRUE(show(bands(600)));
    page->resize({0, 0});
    std::optional<PagePictureResult> result;

    page->picture(PageExtent::Visible,
                  [&](const PagePictureResult& picture) { result.emplace(picture); });

    ASSERT_TRUE(spinUntil([&] { return result.has_value(); }));
    ASSERT_FALSE(*result);
    EXPECT_EQ(result->error(), PagePictureError::NothingDrawn);
}

TEST_F(WebPictureTest, TheWholePageIsAsLongAsItIs)
{
    ASSERT_TRUE(show(bands(3000)));

    const QImage image = picture(PageExtent::Whole);

    EXPECT_EQ(image.height(), 3000);
    EXPECT_GE(image.width(), 1260);
    EXPECT_LE(image.width(), 1280);
    EXPECT_EQ(image.pixelColor(10, 150), QColor(0, 255, 0));
    EXPECT_EQ(value(QStringLiteral("return [innerWidth, innerHeight, scrollY].join()")),
              QStringLiteral("1280,800,0"));
}

TEST_F(WebPictureTest, AVeryLongPageIsMadeSmaller)
{
    ASSERT_TRUE(show(bands(20000)));

    const QImage image = picture(PageExtent::Whole);

    EXPECT_LE(image.height(), PagePicture::LargestHeight);
    EXPECT_GE(image.height(), PagePicture::LargestHeight - 2);
    EXPECT_EQ(image.pixelColor(10, 58), QColor(0, 255, 0));
}

TEST_F(WebPictureTest, AZoomedPageIsWholeToo)
{
    page->setZoomFactor(1.5);
    ASSERT_TRUE(show(bands(2000)));

    const QImage image = picture(PageExtent::Whole);

    ASSERT_FALSE(image.isNull());
    const double scale = image.height() / 2000.0;
    EXPECT_EQ(image.pixelColor(10, int(150 * scale)), QColor(0, 255, 0));
    EXPECT_EQ(image.pixelColor(10, int(250 * scale)), QColor(0, 0, 255));
}

TEST_F(WebPictureTest, PicturesThatAreTakenAtOnceAllArrive)
{
    ASSERT_TRUE(show(bands(1500)));
    PageNotes otherNotes;
    const std::unique_ptr<PageEngine> other = engines.make(otherNotes);
    other->load(site.url());
    ASSERT_TRUE(spinUntil([&] { return !other->isLoading(); }));
    std::vector<int> heights;

    for (PageEngine* each : {page.get(), other.get()})
        for (const PageExtent extent : {PageExtent::Visible, PageExtent::Whole})
            each->picture(extent, [&heights](const PagePictureResult& result) {
                heights.push_back(result ? QImage::fromData(*result, "PNG").height() : 0);
            });

    ASSERT_TRUE(spinUntil([&] { return heights.size() == 4; }));
    std::sort(heights.begin(), heights.end());
    EXPECT_EQ(heights, (std::vector<int>{800, 800, 1500, 1500}));
}

TEST_F(WebPictureTest, TheEndOfTheEngineEndsItsPictures)
{
    ASSERT_TRUE(show(bands(1500)));
    int ends = 0;
    for (const PageExtent extent : {PageExtent::Visible, PageExtent::Whole, PageExtent::Whole})
        page->picture(extent, [&ends](const PagePictureResult& result) { ends += result ? 0 : 1; });

    page.reset();

    EXPECT_EQ(ends, 3);
    page = engines.make(notes);
    ASSERT_TRUE(show(bands(1500)));
    EXPECT_EQ(picture(PageExtent::Whole).height(), 1500);
}

TEST_F(WebPictureTest, APageThatStandsStillHasThePictureOfItsLastFrame)
{
    ASSERT_TRUE(show(bands(600)));
    ASSERT_EQ(picture(PageExtent::Visible).pixelColor(10, 150), QColor(0, 255, 0));
    page->call({QStringLiteral("while (true);"), {}}, std::chrono::seconds(30),
               [](const PageScriptResult&) {});

    EXPECT_EQ(picture(PageExtent::Visible).pixelColor(10, 150), QColor(0, 255, 0));
    page->terminate();
    EXPECT_TRUE(spinUntil([this] { return notes.ends == 1; }));
}

TEST_F(WebPictureTest, WhileTheInspectorIsOpenTheWholePageIsWhatIsSeen)
{
    ASSERT_TRUE(show(bands(3000)));
    page->inspect();

    const QImage image = picture(PageExtent::Whole);

    EXPECT_EQ(image.size(), QSize(1280, 800));
    EXPECT_EQ(image.pixelColor(10, 150), QColor(0, 255, 0));
}

} // namespace
} // namespace Bralto
