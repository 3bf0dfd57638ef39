#include "BraltoShared/BraltoLink.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

constexpr char Session[] = "0f8fad5b-d9cb-469f-a165-70867728950e";

std::optional<BraltoLink> parsed(const char* text)
{
    return BraltoLink::parse(QUrl(QString::fromUtf8(text)));
}

/// What another process gets that is handed the address as text.
std::optional<BraltoLink> carried(const BraltoLink& link)
{
    return BraltoLink::parse(QUrl(QString::fromUtf8(link.url().toEncoded())));
}

TEST(BraltoLink, EachRequestHasItsAddress)
{
    const QUuid session = QUuid::fromString(QString(Session));

    EXPECT_EQ((BraltoLink{BraltoLink::Open{"/a/b"}}.url().toEncoded()), "bralto://open?path=/a/b");
    EXPECT_EQ((BraltoLink{BraltoLink::Reveal{"p1", "/a"}}.url().toEncoded()),
              "bralto://reveal?pane=p1&path=/a");
    EXPECT_EQ((BraltoLink{BraltoLink::New{"My App"}}.url().toEncoded()),
              "bralto://new?name=My%20App");
    EXPECT_EQ((BraltoLink{BraltoLink::Resume{"/a", session}}.url().toEncoded()),
              QByteArray("bralto://resume?path=/a&session=") + Session);
}

TEST(BraltoLink, EveryRequestSurvivesItsAddress)
{
    const QStringList paths{"/a & b + c",  "/a=b?c#d", "/100%", "/%41",   "/ä/日本/👩‍💻",
                            "/it's \"x\"", "/a;b,c",   "/[x]",  "/a\\b|", "/line\nbreak"};
    for (const QString& path : paths) {
        SCOPED_TRACE(path.toStdString());
        const BraltoLink open{BraltoLink::Open{path}};
        const BraltoLink reveal{BraltoLink::Reveal{path, path}};
        const BraltoLink resume{BraltoLink::Resume{path, QUuid::createUuid()}};

        EXPECT_EQ(carried(open), open);
        EXPECT_EQ(carried(reveal), reveal);
        EXPECT_EQ(carried(resume), resume);
    }
}

TEST(BraltoLink, APlusSignInAnAddressIsNoBlank)
{
    EXPECT_EQ(parsed("bralto://open?path=/a+b"), (BraltoLink{BraltoLink::Open{"/a+b"}}));
}

TEST(BraltoLink, SchemeAndHostMayBeInCapitals)
{
    EXPECT_EQ(parsed("BRALTO://Open?path=/a"), (BraltoLink{BraltoLink::Open{"/a"}}));
}

TEST(BraltoLink, TheFirstValueOfANameWins)
{
    EXPECT_EQ(parsed("bralto://open?path=/first&path=/second"),
              (BraltoLink{BraltoLink::Open{"/first"}}));
    EXPECT_EQ(parsed("bralto://open?path&path=/second"), (BraltoLink{BraltoLink::Open{"/second"}}));
}

TEST(BraltoLink, ItemsNobodyAskedForAreIgnored)
{
    EXPECT_EQ(parsed("bralto://open?x=1&path=/a&&y#part"), (BraltoLink{BraltoLink::Open{"/a"}}));
}

TEST(BraltoLink, AnythingElseIsNoLink)
{
    const char* const rejected[] = {
        "",
        "bralto:",
        "bralto://",
        "bralto:open?path=/a",
        "bralto://open",
        "bralto://open?path",
        "bralto://open?Path=/a",
        "bralto://close?path=/a",
        "bralto://reveal?pane=p",
        "bralto://reveal?path=/a",
        "bralto://new",
        "bralto://new?name=",
        "bralto://new?name=.hidden",
        "bralto://new?name=a/b",
        "bralto://new?name=a%2Fb",
        "bralto://resume?path=/a",
        "bralto://resume?session=0f8fad5b-d9cb-469f-a165-70867728950e",
        "bralto://resume?path=/a&session=0f8fad5b",
        "bralto://resume?path=/a&session=0f8fad5b-d9cb-469f-a165-70867728950g",
        "bralto://resume?path=/a&session={0f8fad5b-d9cb-469f-a165-70867728950e}",
        "http://open?path=/a",
    };
    for (const char* text : rejected) {
        SCOPED_TRACE(text);
        EXPECT_EQ(parsed(text), std::nullopt);
    }
}

TEST(BraltoLink, ASessionMayBeInCapitalsAndMayBeAllZeros)
{
    EXPECT_EQ(parsed("bralto://resume?path=/a&session=0F8FAD5B-D9CB-469F-A165-70867728950E"),
              (BraltoLink{BraltoLink::Resume{"/a", QUuid::fromString(QString(Session))}}));
    EXPECT_EQ(parsed("bralto://resume?path=/a&session=00000000-0000-0000-0000-000000000000"),
              (BraltoLink{BraltoLink::Resume{"/a", QUuid()}}));
}

TEST(BraltoLink, AProjectNameIsTrimmedAndNamesOneVisibleFolder)
{
    EXPECT_EQ(BraltoLink::projectName(" \n My App\t"), "My App");
    EXPECT_EQ(BraltoLink::projectName("a.b"), "a.b");
    EXPECT_EQ(BraltoLink::projectName(""), std::nullopt);
    EXPECT_EQ(BraltoLink::projectName(" \n"), std::nullopt);
    EXPECT_EQ(BraltoLink::projectName(" .hidden"), std::nullopt);
    EXPECT_EQ(BraltoLink::projectName("a/b"), std::nullopt);
    EXPECT_EQ(BraltoLink::projectName("a:b"), std::nullopt);
    EXPECT_EQ(BraltoLink::projectName(QString("a") + QChar(0) + "b"), std::nullopt);
}

} // namespace
} // namespace Bralto
