#include "Browser/ToolArguments.h"
#include "Tests/Support/QtPrinters.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace Bralto;
using namespace std::chrono_literals;

namespace {

ToolArguments parsed(const char* json)
{
    return ToolArguments(QJsonDocument::fromJson(json).object());
}

} // namespace

TEST(ToolArguments, AStringIsTextOrANumbersText)
{
    const ToolArguments arguments = parsed(
        R"({"text":"a","blank":" ","empty":"","whole":12,"part":1.5,"true":true,"null":null,"list":["a"]})");

    EXPECT_EQ(arguments.string("text"), "a");
    EXPECT_EQ(arguments.string("blank"), " ");
    EXPECT_EQ(arguments.string("whole"), "12");
    EXPECT_EQ(arguments.string("part"), "1.5");
    for (const char* key : {"empty", "true", "null", "list", "missing"})
        EXPECT_EQ(arguments.string(key), std::nullopt) << key;
}

TEST(ToolArguments, ABooleanIsANumberOrAWordToo)
{
    const ToolArguments arguments = parsed(
        R"({"true":true,"false":false,"one":1,"zero":0,"half":0.5,"word":"TRUE","yes":"Yes",)"
        R"("digit":"1","no":"no","other":"on","empty":"","null":null,"list":[true]})");

    for (const char* key : {"true", "one", "half", "word", "yes", "digit"})
        EXPECT_EQ(arguments.boolean(key), true) << key;
    for (const char* key : {"false", "zero", "no", "other", "empty"})
        EXPECT_EQ(arguments.boolean(key), false) << key;
    for (const char* key : {"null", "list", "missing"})
        EXPECT_EQ(arguments.boolean(key), std::nullopt) << key;
}

TEST(ToolArguments, ANumberMayBeSpelledAsAString)
{
    const ToolArguments arguments = parsed(
        R"({"whole":12,"text":"1.5","exponent":"1e3","negative":"-2","word":"ten","empty":"","inf":"inf",)"
        R"("nan":"nan","true":true,"null":null})");

    EXPECT_EQ(arguments.number("whole"), 12);
    EXPECT_EQ(arguments.number("text"), 1.5);
    EXPECT_EQ(arguments.number("exponent"), 1000);
    EXPECT_EQ(arguments.number("negative"), -2);
    for (const char* key : {"word", "empty", "inf", "nan", "true", "null", "missing"})
        EXPECT_EQ(arguments.number(key), std::nullopt) << key;
}

TEST(ToolArguments, LimitsHoldForWhateverIsAskedFor)
{
    const ToolArguments arguments = parsed(R"({"huge":1e300,"tiny":-1e300,"part":7.9})");

    EXPECT_EQ(arguments.integer("huge", 5, 1, 300), 300);
    EXPECT_EQ(arguments.integer("tiny", 5, 1, 300), 1);
    EXPECT_EQ(arguments.integer("part", 5, 1, 300), 7);
    EXPECT_EQ(arguments.integer("missing", 5, 1, 300), 5);
    EXPECT_EQ(arguments.seconds("part", 10, 0.1, 30), 7900ms);
    EXPECT_EQ(arguments.seconds("huge", 10, 0.1, 30), 30s);
    EXPECT_EQ(arguments.seconds("tiny", 10, 0.1, 30), 100ms);
    EXPECT_EQ(arguments.seconds("missing", 10, 0.1, 30), 10s);
}
