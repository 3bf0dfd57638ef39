#include "Base/PropertyList.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

QByteArray listOf(const QByteArray& body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>" + body +
           "</dict></plist>";
}

TEST(PropertyList, IsWrittenInTheOrderOfItsEntries)
{
    const PropertyList::Entries entries{
        {"Name", QString("A & B <\"it's\">")},
        {"Flag", true},
        {"Off", false},
        {"Count", -3LL},
        {"List", QVariantList{QString("x"), true}},
        {"Nested", QVariantMap{{"b", QString("2")}, {"a", QVariantList{}}}},
    };

    EXPECT_EQ(PropertyList::encode(entries).toStdString(),
              R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
	<key>Name</key>
	<string>A &amp; B &lt;"it's"&gt;</string>
	<key>Flag</key>
	<true/>
	<key>Off</key>
	<false/>
	<key>Count</key>
	<integer>-3</integer>
	<key>List</key>
	<array>
		<string>x</string>
		<true/>
	</array>
	<key>Nested</key>
	<dict>
		<key>a</key>
		<array>
		</array>
		<key>b</key>
		<string>2</string>
	</dict>
</dict>
</plist>
)");
}

TEST(PropertyList, WhatIsWrittenIsReadBackWithItsTypes)
{
    const QVariantMap nested{{"a", QVariantList{1LL, false}}, {"b", QVariantMap{}}};
    const PropertyList::Entries entries{
        {"text", QString(" a\tb\nc\rd é 日本 👩‍💻 ]]> ")},
        {"empty", QString("")},
        {"number", 1LL},
        {"flag", true},
        {"nested", nested},
    };

    const auto read = PropertyList::decode(PropertyList::encode(entries));

    ASSERT_TRUE(read);
    EXPECT_EQ(read->size(), entries.size());
    for (const auto& [key, value] : entries) {
        SCOPED_TRACE(key.toStdString());
        EXPECT_EQ(read->value(key).typeId(), value.typeId());
        EXPECT_EQ(read->value(key), value);
    }
}

TEST(PropertyList, ACharacterThatXmlCantHoldIsReplaced)
{
    const QString text = QString("a") + QChar(1) + QChar(0) + QChar(0xD800) + QChar(0xFFFE) + "b";

    const auto read = PropertyList::decode(PropertyList::encode({{"key", text}}));

    ASSERT_TRUE(read);
    EXPECT_EQ(read->value("key").toString(), QStringLiteral(u"a\uFFFD\uFFFD\uFFFD\uFFFDb"));
}

TEST(PropertyList, AForeignFileIsReadDespiteItsHeaderAndComments)
{
    const auto read = PropertyList::decode(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//EXAMPLE//DTD PLIST 1.0//EN" "http://example.invalid/list.dtd">
<plist version="1.0">
<!-- a comment -->
<dict>
  <key>Name</key> <!-- another --> <string><![CDATA[a<b]]></string>
  <key>Date</key> <date>2026-01-15T12:00:00Z</date>
  <key>Share</key> <real>0.5</real>
  <key>Odd</key> <integer>many</integer>
  <key>Last</key> <true/>
</dict>
</plist>)");

    ASSERT_TRUE(read);
    EXPECT_EQ(*read, (QVariantMap{{"Name", QString("a<b")}, {"Last", true}}));
}

TEST(PropertyList, AnythingElseIsNoPropertyList)
{
    const QByteArray malformed[] = {
        "",
        "bplist00",
        "<plist>",
        "<plist></plist>",
        "<plist><array/></plist>",
        "<dict><key>a</key><true/></dict>",
        listOf("<key>a</key>"),
        listOf("<true/>"),
        listOf("<key>a</key><key>b</key>x"),
        listOf("<string>a</string><key>b</key><true/>"),
        listOf("<key>a</key><string>b"),
        listOf("<key>a</key><string><b/></string>"),
        listOf("<key>a</key><string>&undefined;</string>"),
        listOf("<key>a</key><string>b</string>").chopped(5),
        listOf("<key>a</key><string>b</string>") + "<more/>",
    };
    for (const QByteArray& xml : malformed) {
        SCOPED_TRACE(xml.toStdString());
        EXPECT_EQ(PropertyList::decode(xml), std::nullopt);
    }
}

TEST(PropertyList, NestingWithoutEndIsRefused)
{
    const auto nested = [](int depth) {
        return listOf("<key>a</key>" + QByteArray("<array>").repeated(depth) +
                      QByteArray("</array>").repeated(depth));
    };

    EXPECT_TRUE(PropertyList::decode(nested(20)));
    EXPECT_FALSE(PropertyList::decode(nested(100'000)));
}

TEST(PropertyList, EntitiesThatMultiplyAreRefused)
{
    QByteArray entities = "<!DOCTYPE plist [<!ENTITY a0 \"aaaaaaaaaa\">";
    for (int level = 1; level < 12; ++level) {
        const QByteArray inner = "&a" + QByteArray::number(level - 1) + ';';
        entities += "<!ENTITY a" + QByteArray::number(level) + " \"" + inner.repeated(10) + "\">";
    }

    EXPECT_FALSE(PropertyList::decode(
        entities + "]><plist><dict><key>a</key><string>&a11;</string></dict></plist>"));
}

} // namespace
} // namespace Bralto
