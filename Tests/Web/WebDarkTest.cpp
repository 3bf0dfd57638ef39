#include "Tests/Support/WebHarness.h"

namespace Bralto {
namespace {

constexpr auto TwoLooks =
    "<!doctype html><meta name=color-scheme content='light dark'>"
    "<style>@media (prefers-color-scheme: dark) { p { color: #0f0 } }</style><p>words";

// The engine takes its first look for the whole process, so there is one test.
TEST(WebDark, APageWithTwoLooksShowsTheDarkOne)
{
    SiteServer site;
    site.page(QStringLiteral("/"), TwoLooks);
    PageNotes notes;
    WebEngines engines({{}, {}, {}, true});
    const auto page = engines.make(notes);
    page->load(site.url());
    ASSERT_TRUE(spinUntil([&] { return notes.commits == 1 && !page->isLoading(); }));
    std::optional<PageScriptResult> result;

    page->call({QStringLiteral("return [matchMedia('(prefers-color-scheme: dark)').matches,"
                               "getComputedStyle(document.querySelector('p')).color].join()"),
                {}},
               std::chrono::seconds(10),
               [&](const PageScriptResult& value) { result.emplace(value); });

    ASSERT_TRUE(spinUntil([&] { return result.has_value(); }));
    ASSERT_TRUE(*result);
    EXPECT_EQ((*result)->toString(), QStringLiteral("true,rgb(0, 255, 0)"));
}

} // namespace
} // namespace Bralto
