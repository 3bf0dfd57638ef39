#include "Base/Json.h"

#include "Base/JsonWriter.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Bralto;

namespace {

/// Parses and serialises again; what couldn't be parsed is an empty text.
QByteArray roundTrip(std::string_view text)
{
    JsonReader reader;
    const auto object = reader.object(text);
    return object ? object->compact() : QByteArray();
}

std::optional<QString> stringAtA(std::string_view text)
{
    JsonReader reader;
    const auto object = reader.object(text);
    return object ? object->string("a") : std::nullopt;
}

std::string nested(int depth)
{
    return std::string(std::size_t(depth), '[') + std::string(std::size_t(depth), ']');
}

} // namespace

TEST(JsonReader, TakesObjectsOnly)
{
    JsonReader reader;

    EXPECT_TRUE(reader.object(std::string_view("{}")));
    EXPECT_TRUE(reader.object(std::string_view(" {\"a\":1}\r")));
    for (const char* text : {"", " ", "[]", "1", "\"a\"", "null", "{", "{\"a\":}", "{}x",
                             "nonsense", "{\"a\":1", "{'a':1}", "{\"a\":\"\n\"}"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(reader.object(std::string_view(text)));
    }
}

TEST(JsonReader, TakesAnyValueThatIsAskedFor)
{
    JsonReader reader;

    EXPECT_EQ(reader.value("1")->integer(), 1);
    EXPECT_EQ(reader.value(" \"a\" ")->string(), "a");
    EXPECT_TRUE(reader.value("null")->isNull());
    EXPECT_FALSE(reader.value("0")->isNull());
    EXPECT_EQ(reader.value("[1,2]")->array()->size(), 2);
    EXPECT_EQ(reader.value("123456789012345678901234567890")->number(), 1.2345678901234568e29);
    EXPECT_EQ(reader.value("\"\\ud800\"")->string(), "\xef\xbf\xbd");
}

TEST(JsonReader, SaysWhyATextIsNoValue)
{
    JsonReader reader;

    for (const std::string& text :
         {std::string(), std::string(" "), std::string("nonsense"), std::string("1 2"),
          std::string("{\"a\":1"), std::string("\"\xff\""), std::string("1e999"),
          std::string("\0\0", 2), nested(5000)}) {
        SCOPED_TRACE(text.substr(0, 40));
        const auto value = reader.value(text);
        ASSERT_FALSE(value);
        EXPECT_FALSE(value.error().isEmpty());
    }
}

TEST(JsonReader, ReadsOneTextAfterAnother)
{
    JsonReader reader;

    EXPECT_EQ(reader.object(QByteArray("{\"a\":1}"))->integer("a"), 1);
    EXPECT_FALSE(reader.object(QByteArray("{\"a\":")));
    EXPECT_EQ(reader.object(QByteArray("{\"a\":2}"))->integer("a"), 2);
}

TEST(JsonReader, ParsesATextWhereItLies)
{
    const std::string_view text = "{\"a\":\"b\"}";
    const std::string padded = std::string(text) + std::string(JsonReader::Padding, '#');
    JsonReader reader;

    const auto object = reader.paddedObject(std::string_view(padded).substr(0, text.size()));

    ASSERT_TRUE(object);
    EXPECT_EQ(object->string("a"), QStringLiteral("b"));
}

TEST(JsonReader, GivesBackTheMemoryOfAnExtraordinaryText)
{
    JsonReader reader;
    const QByteArray large = "{\"a\":\"" + QByteArray(20 * 1024 * 1024, 'x') + "\"}";

    EXPECT_EQ(reader.object(large)->view("a")->size(), 20u * 1024 * 1024);
    EXPECT_EQ(reader.object(QByteArray("{\"a\":1}"))->integer("a"), 1);
}

TEST(JsonReader, RefusesWhatIsNestedTooDeep)
{
    JsonReader reader;

    EXPECT_TRUE(reader.object("{\"a\":" + nested(1000) + "}"));
    EXPECT_FALSE(reader.object("{\"a\":" + nested(2000) + "}"));
    EXPECT_FALSE(reader.object("{\"a\":" + std::string(1'000'000, '[')));
    EXPECT_TRUE(reader.object(std::string_view("{}")));
}

TEST(JsonReader, RepairsBytesThatAreNoUtf8)
{
    EXPECT_EQ(stringAtA("{\"a\":\"x\xff\"}"), QStringLiteral("x\uFFFD"));
    EXPECT_EQ(stringAtA("{\"a\":\"\xc3\"}"), QStringLiteral("\uFFFD"));
    EXPECT_EQ(stringAtA("{\"b\":\"\xed\xa0\x80\",\"a\":\"fine\"}"), QStringLiteral("fine"));
}

TEST(JsonReader, RepairsSurrogatesWithoutTheirOtherHalf)
{
    EXPECT_EQ(stringAtA(R"({"a":"\ud83d"})"), QStringLiteral("\uFFFD"));
    EXPECT_EQ(stringAtA(R"({"a":"\ude00!"})"), QStringLiteral("\uFFFD!"));
    EXPECT_EQ(stringAtA(R"({"a":"\uD83D\uD83D\uDE00"})"), QStringLiteral("\uFFFD\U0001F600"));
    EXPECT_EQ(stringAtA(R"({"a":"\ud83d\n"})"), QStringLiteral("\uFFFD\n"));
    EXPECT_EQ(stringAtA(R"({"a":"\\ud83d \ud83d"})"), QStringLiteral("\\ud83d \uFFFD"));
}

TEST(JsonReader, LeavesWholePairsOfSurrogatesAlone)
{
    EXPECT_EQ(stringAtA(R"({"a":"\ud83d\ude00"})"), QStringLiteral("\U0001F600"));
    EXPECT_EQ(stringAtA("{\"b\":\"\xff\",\"a\":\"\\ud83d\\ude00\"}"), QStringLiteral("\U0001F600"));
}

TEST(JsonReader, TakesAnIntegerThatIsTooLongAsADouble)
{
    JsonReader reader;
    const auto object =
        reader.object(std::string_view(R"({"a":123456789012345678901234,"b":"1234567890123456789",)"
                                       R"("c":-1234567890123456789012.5,"d":7})"));

    ASSERT_TRUE(object);
    EXPECT_EQ(object->integer("a"), std::nullopt);
    EXPECT_DOUBLE_EQ(*object->number("a"), 123456789012345678901234.0);
    EXPECT_EQ(object->string("b"), QStringLiteral("1234567890123456789"));
    EXPECT_DOUBLE_EQ(*object->number("c"), -1234567890123456789012.5);
    EXPECT_EQ(object->integer("d"), 7);
}

TEST(JsonObject, KeepsIntegersAndDoublesApart)
{
    JsonReader reader;
    const auto object = reader.object(std::string_view(R"({"i":5,"d":5.0,"e":5e0})"));

    EXPECT_EQ(object->integer("i"), 5);
    EXPECT_EQ(object->integer("d"), std::nullopt);
    EXPECT_EQ(object->integer("e"), std::nullopt);
    EXPECT_EQ(object->number("i"), 5.0);
    EXPECT_EQ(object->number("d"), 5.0);
}

TEST(JsonObject, WhatHasAnotherTypeIsAbsent)
{
    JsonReader reader;
    const auto object = reader.object(std::string_view(
        R"({"s":"","n":1,"b":true,"z":null,"o":{},"a":[],"big":18446744073709551615})"));

    EXPECT_EQ(object->string("s"), QString());
    EXPECT_EQ(object->string("n"), std::nullopt);
    EXPECT_EQ(object->boolean("n"), std::nullopt);
    EXPECT_EQ(object->integer("b"), std::nullopt);
    EXPECT_EQ(object->number("s"), std::nullopt);
    EXPECT_EQ(object->integer("big"), std::nullopt);
    EXPECT_FALSE(object->object("a"));
    EXPECT_FALSE(object->array("o"));
    EXPECT_FALSE(object->string("missing"));
    EXPECT_TRUE(object->contains("z"));
    EXPECT_FALSE(object->string("z"));
    EXPECT_FALSE(object->contains("missing"));
}

TEST(JsonObject, LeavesElementsOfAnotherTypeOut)
{
    JsonReader reader;
    const auto object =
        reader.object(std::string_view(R"({"a":[{"n":1},"x",2,{"n":3},null,"y"]})"));

    EXPECT_EQ(object->strings("a"), (QStringList{"x", "y"}));
    const auto objects = object->objects("a");
    ASSERT_EQ(objects.size(), 2u);
    EXPECT_EQ(objects[1].integer("n"), 3);
    EXPECT_EQ(object->array("a")->size(), 6);
    EXPECT_TRUE(object->objects("missing").empty());
    EXPECT_TRUE(object->strings("missing").isEmpty());
}

TEST(JsonObject, TheFirstOfEqualKeysWinsEverywhere)
{
    JsonReader reader;
    const auto object = reader.object(std::string_view(R"({"a":1,"b":2,"a":3})"));

    EXPECT_EQ(object->integer("a"), 1);
    EXPECT_EQ(object->compact(), R"({"a":1,"b":2})");
}

TEST(JsonObject, CompactKeepsOrderTypesAndText)
{
    for (const char* text :
         {R"({})", R"({"z":1,"a":-2,"m":[1,2.5,"x",null,true,false,{}]})", R"({"a":5.0})",
          R"({"a":18446744073709551615})", R"({"a":"\"\\/\n\t\r\u0000\u001f"})",
          R"({"a":{"b":[]}})", R"({"é€😀":"é€😀"})", R"({"a":1e+300})",
          R"({"a":0.0055839999999999996})"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(roundTrip(text), text);
    }
}

TEST(JsonObject, CompactSpellsEscapesInTheirShortestForm)
{
    EXPECT_EQ(roundTrip(R"({"a":"\u00e9\/\b\u000a"})"), "{\"a\":\"é/\\u0008\\n\"}");
}

TEST(JsonObject, PrettyIndentsAndSortsEveryLevel)
{
    JsonReader reader;
    const auto object =
        reader.object(std::string_view(R"({"b":[1,{"y":1,"x":[]}],"a":{},"é":"ü","C":null})"));

    EXPECT_EQ(object->pretty(), QStringLiteral("{\n"
                                               "  \"C\": null,\n"
                                               "  \"a\": {},\n"
                                               "  \"b\": [\n"
                                               "    1,\n"
                                               "    {\n"
                                               "      \"x\": [],\n"
                                               "      \"y\": 1\n"
                                               "    }\n"
                                               "  ],\n"
                                               "  \"é\": \"ü\"\n"
                                               "}"));
    EXPECT_EQ(reader.object(std::string_view("{}"))->pretty(), QStringLiteral("{}"));
}

TEST(JsonObject, PrettyStaysSmallHoweverDeepTheValuesLie)
{
    JsonReader reader;
    std::string deep = "{\"a\":" + nested(900) + "}";
    const QByteArray text = reader.object(deep)->pretty().toUtf8();

    EXPECT_LT(text.size(), 8000);
    EXPECT_EQ(roundTrip({text.constData(), std::size_t(text.size())}),
              QByteArray::fromStdString(deep));
}

TEST(JsonWriter, WritesMembersAndLeavesAbsentOnesOut)
{
    JsonWriter writer;
    writer.beginObject();
    writer.member("text", QStringLiteral("a\"b"));
    writer.member("none", std::optional<QString>());
    writer.member("some", std::optional<qint64>(-3));
    writer.member("number", 2.0);
    writer.member("yes", true);
    writer.key("list");
    writer.beginArray();
    writer.value("x");
    writer.value(1);
    writer.null();
    writer.endArray();
    writer.endObject();

    EXPECT_EQ(writer.take(),
              R"({"text":"a\"b","some":-3,"number":2.0,"yes":true,"list":["x",1,null]})");
    EXPECT_EQ(writer.take(), "");
}

TEST(JsonWriter, WhatJsonCantSpellIsNull)
{
    JsonWriter writer;
    writer.beginArray();
    writer.value(std::numeric_limits<double>::infinity());
    writer.value(std::numeric_limits<double>::quiet_NaN());
    writer.value(1e20);
    writer.value(-std::numeric_limits<double>::denorm_min());
    writer.endArray();

    EXPECT_EQ(writer.take(), "[null,null,1e+20,-5e-324]");
}
