#include "Base/JsonSlices.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Bralto {
namespace {

std::vector<std::string> slices(std::string_view text)
{
    std::vector<std::string> result;
    JsonSlices walk(text);
    while (const auto slice = walk.next())
        result.emplace_back(*slice);
    return result;
}

using Texts = std::vector<std::string>;

TEST(JsonSlices, AreTheValuesOfAnObjectAsTheyCame)
{
    EXPECT_EQ(slices(R"({"a":1,"b" : [1, {"c":2}] ,"a":"x","d":{ }})"),
              (Texts{"1", R"([1, {"c":2}])", R"("x")", "{ }"}));
    EXPECT_EQ(slices(R"( {"n":12345678901234567890123456789,"f":1e2,"t":true,"z":null} )"),
              (Texts{"12345678901234567890123456789", "1e2", "true", "null"}));
}

TEST(JsonSlices, AreTheElementsOfAnArrayAsTheyCame)
{
    EXPECT_EQ(slices("[1,\t[ ],\r\n\"a\",{},-0.0 ]"), (Texts{"1", "[ ]", "\"a\"", "{}", "-0.0"}));
}

TEST(JsonSlices, AreNotMisledByWhatStandsInStrings)
{
    EXPECT_EQ(slices(R"({"a\"}":"]}\\","b":["\"","[{",{"}":"]"}],"c":"\\\""})"),
              (Texts{R"("]}\\")", R"(["\"","[{",{"}":"]"}])", R"("\\\"")"}));
}

TEST(JsonSlices, AreNoneOfAnEmptyContainer)
{
    EXPECT_EQ(slices("{}"), Texts{});
    EXPECT_EQ(slices("[ ]"), Texts{});
    JsonSlices walk("[1]");
    EXPECT_EQ(walk.next(), "1");
    EXPECT_EQ(walk.next(), std::nullopt);
    EXPECT_EQ(walk.next(), std::nullopt);
}

TEST(JsonSlices, StayInsideATextThatNoParserTook)
{
    for (const char* text : {"", " ", "x", "{", "[", "[\"", "[\"\\", "{\"a", "{\"a\"", "{\"a\":",
                             "[[[", "[1,", "[,,]", "[{]}", "]]", "{]:}", "[1 2 3", "[}{"}) {
        SCOPED_TRACE(text);
        EXPECT_LE(slices(text).size(), 4u);
    }
}

} // namespace
} // namespace Bralto
