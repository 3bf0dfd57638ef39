#include "App/WebLibrary.h"

#include "Tests/Support/WebHarness.h"

#include <QTemporaryDir>

namespace Bralto {
namespace {

bool isEngineMapped()
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("libBraltoWeb.so");
}

TEST(WebLibrary, LiesInTheHostsBundleOrBesideTheExecutable)
{
    LaunchRole role;
    role.hostBundlePath = QStringLiteral("/opt/Bralto.app");

    EXPECT_EQ(WebLibrary::candidates(role, QStringLiteral("/x/MacOS")),
              (QStringList{QStringLiteral("/opt/Bralto.app/Contents/Frameworks/libBraltoWeb.so"),
                           QStringLiteral("/x/MacOS/../Frameworks/libBraltoWeb.so")}));
}

TEST(WebLibrary, WithoutTheLibraryThereAreNoPages)
{
    WebLibrary library({QStringLiteral("/no/such.so")}, {});
    PageNotes notes;
    bool isDone = false;

    EXPECT_EQ(library.make(notes), nullptr);
    library.clearBrowsingData([&isDone] { isDone = true; });

    EXPECT_TRUE(isDone);
    EXPECT_FALSE(library.isLoaded());
}

TEST(WebLibrary, TheFirstPageLoadsTheEngine)
{
    SiteServer site;
    site.page(QStringLiteral("/"), "<!doctype html><title>Loaded</title>words");
    WebLibrary library(
        {QStringLiteral(BRALTO_BIN "/../Bralto.app/Contents/Frameworks/libBraltoWeb.so")}, {});
    PageNotes notes;
    EXPECT_FALSE(library.isLoaded());
    EXPECT_FALSE(isEngineMapped());

    const std::unique_ptr<PageEngine> page = library.make(notes);

    ASSERT_NE(page, nullptr);
    EXPECT_TRUE(isEngineMapped());
    page->load(site.url());
    EXPECT_TRUE(spinUntil([&] { return page->title() == QStringLiteral("Loaded"); }));
}

} // namespace
} // namespace Bralto
