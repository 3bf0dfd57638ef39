#include "Platform/DefaultsFormat.h"
#include "Base/DefaultsStore.h"

#include <gtest/gtest.h>

#include <limits>

namespace Bralto {
namespace {

/// Whether exactly `values`, with their types, come back.
bool survives(const QVariantMap& values)
{
    const auto read = DefaultsFormat::decode(DefaultsFormat::encode(values));
    return read && DefaultsStore::isSame(*read, values);
}

TEST(DefaultsFormat, EveryTypeComesBackAsItself)
{
    const QVariantMap values{
        {"flag", true},
        {"off", false},
        {"count", 1LL},
        {"smallest", std::numeric_limits<qlonglong>::min()},
        {"largest", std::numeric_limits<qlonglong>::max()},
        {"one", 1.0},
        {"share", 0.1},
        {"huge", 1e300},
        {"tiny", 5e-324},
        {"minus", -0.0},
        {"text", QString("1")},
        {"nothing", QString("")},
        {"bytes", QByteArray("\0\xff\x80", 3)},
        {"none", QByteArray("")},
        {"date", QDateTime::fromMSecsSinceEpoch(1'700'000'000'123, Qt::UTC)},
        {"past", QDateTime::fromMSecsSinceEpoch(-62'135'596'800'000, Qt::UTC)},
        {"list", QVariantList{1LL, 1.0, true, QString("x"), QVariantList{}}},
        {"map", QVariantMap{{"a", QVariantMap{}}, {"b", QVariantList{QByteArray("x")}}}},
    };
    for (auto value = values.begin(); value != values.end(); ++value) {
        SCOPED_TRACE(value.key().toStdString());
        EXPECT_TRUE(survives({{value.key(), value.value()}}));
    }
    EXPECT_TRUE(survives(values));
    EXPECT_TRUE(survives({}));
}

TEST(DefaultsFormat, EveryTextComesBackAsKeyAndAsValue)
{
    const QString texts[] = {
        "\"quoted\" \\ /",       "tab\tline\nreturn\r", QString(QChar(0)) + QChar(1) + QChar(0x1f),
        "ä 日本 👩‍💻", QChar(0x7f),           "",
    };
    for (const QString& text : texts) {
        SCOPED_TRACE(text.toStdString());
        EXPECT_TRUE(survives({{text, text}}));
    }
}

TEST(DefaultsFormat, ADictionaryThatLooksLikeATagIsStillADictionary)
{
    for (const char* key : {"$data", "$date", "$dictionary", "$other", "$"})
        EXPECT_TRUE(survives({{"value", QVariantMap{{key, QString("Zm9v")}}}})) << key;
    EXPECT_TRUE(survives({{"$data", QString("Zm9v")}}));
    EXPECT_TRUE(survives({{"value", QVariantMap{{"$data", 1LL}, {"more", 2LL}}}}));
}

TEST(DefaultsFormat, TheFileIsReadableAndItsKeysStandInOrder)
{
    const QVariantMap values{
        {"b", QVariantList{1LL, 2.0}},
        {"a", QByteArray("foo")},
        {"c", QDateTime::fromMSecsSinceEpoch(0, Qt::UTC)},
        {"d", QVariantMap{{"x", true}}},
    };

    EXPECT_EQ(DefaultsFormat::encode(values).toStdString(), R"({
  "a": {
    "$data": "Zm9v"
  },
  "b": [
    1,
    2.0
  ],
  "c": {
    "$date": "1970-01-01T00:00:00.000Z"
  },
  "d": {
    "x": true
  }
}
)");
    EXPECT_EQ(DefaultsFormat::encode({}), "{}\n");
}

TEST(DefaultsFormat, ATextThatIsNoObjectIsDamaged)
{
    const char* const damaged[] = {
        "",        " ",          "{",           "[]",  "null",
        "{\"a\":", "{\"a\":1,}", "{} trailing", "{a}", "{\"a\":\"\xff\"}"};
    for (const char* text : damaged) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(DefaultsFormat::decode(text));
    }
    EXPECT_FALSE(DefaultsFormat::decode(QByteArray(2000, '[') + QByteArray(2000, ']')));
}

TEST(DefaultsFormat, AValueThatCantBeUnderstoodIsLeftOutAlone)
{
    const auto values = DefaultsFormat::decode(R"({
        "null": null,
        "data": {"$data": "not base64!"},
        "data type": {"$data": 1},
        "date": {"$date": "yesterday"},
        "tag": {"$unknown": 1},
        "list": [1, null],
        "map": {"a": {"$date": ""}},
        "kept": 1
    })");

    ASSERT_TRUE(values);
    EXPECT_EQ(values->keys(), QStringList{"kept"});
}

TEST(DefaultsFormat, AnIntegerThatIsTooLargeIsADouble)
{
    const auto values = DefaultsFormat::decode(R"({"a": 18446744073709551615})");

    ASSERT_TRUE(values);
    EXPECT_TRUE(DefaultsStore::isSame(values->value("a"), 18446744073709551615.0));
}

TEST(DefaultsFormat, ADateInAnotherZoneIsTheSameMoment)
{
    const auto values = DefaultsFormat::decode(R"({"a": {"$date": "2026-01-15T13:00:00+01:00"}})");

    ASSERT_TRUE(values);
    const QDateTime date = values->value("a").toDateTime();
    EXPECT_EQ(date, QDateTime(QDate(2026, 1, 15), QTime(12, 0), Qt::UTC));
    EXPECT_EQ(date.timeSpec(), Qt::UTC);
}

} // namespace
} // namespace Bralto
