#include "Browser/ControlMessage.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

using namespace ControlMessage;

TEST(ControlRequest, NamesAToolAndItsArguments)
{
    const auto request =
        decodeRequest(R"({"tool":"open","arguments":{"url":"localhost:3000","newTab":false}})");

    ASSERT_TRUE(request);
    EXPECT_EQ(request->tool, "open");
    EXPECT_EQ(request->arguments, (QJsonObject{{"url", "localhost:3000"}, {"newTab", false}}));
}

TEST(ControlRequest, KeepsIntegersWhole)
{
    const auto request = decodeRequest(R"({"tool":"x","arguments":{"n":9007199254740993}})");

    ASSERT_TRUE(request);
    EXPECT_EQ(request->arguments.value("n").toInteger(), 9007199254740993);
}

TEST(ControlRequest, TakesArgumentsThatAreNoObjectForNone)
{
    for (const char* line :
         {R"({"tool":"tabs"})", R"({"tool":"tabs","arguments":null})",
          R"({"tool":"tabs","arguments":[1]})", R"({"tool":"tabs","arguments":"{}"})",
          R"({"arguments":7,"tool":"tabs"})"}) {
        SCOPED_TRACE(line);
        EXPECT_EQ(decodeRequest(line), (Request{"tabs", {}}));
    }
}

TEST(ControlRequest, LetsAnyNameThrough)
{
    EXPECT_EQ(decodeRequest(R"({"tool":""})"), (Request{"", {}}));
    EXPECT_EQ(decodeRequest(R"({"tool":"no such tool"})"), (Request{"no such tool", {}}));
}

TEST(ControlRequest, IsMalformedIfItIsNoObjectWithATool)
{
    const QByteArray deep =
        R"({"tool":"x","arguments":)" + QByteArray(100'000, '[') + QByteArray(100'000, ']') + '}';
    for (const QByteArray& line :
         {QByteArray(""), QByteArray("x"), QByteArray("[]"), QByteArray("\"tabs\""),
          QByteArray("{}"), QByteArray(R"({"tool":1})"), QByteArray(R"({"tool":null})"),
          QByteArray(R"({"tool":"tabs")"), QByteArray(R"({"tool":"tabs"} x)"),
          QByteArray(R"([{"tool":"tabs"}])"), QByteArray("{\"tool\":\"\xff\"}"),
          QByteArray("\0\0\0", 3), QByteArray("{\"tool\":\"tabs\"}\0", 16), deep}) {
        SCOPED_TRACE(line.left(40).toStdString());
        EXPECT_EQ(decodeRequest(line), std::nullopt);
    }
}

TEST(ControlRequest, IsWrittenAsItIsRead)
{
    EXPECT_EQ(encodeRequest("tabs", "{}"), R"({"tool":"tabs","arguments":{}})");
    const QByteArray line = encodeRequest("a\"b\n", R"({"n":12345678901234567890123, "a":1})");

    EXPECT_EQ(line, R"({"tool":"a\"b\n","arguments":{"n":12345678901234567890123, "a":1}})");
    EXPECT_EQ(decodeRequest(line)->tool, "a\"b\n");
    EXPECT_EQ(decodeRequest(line)->arguments.value("a").toInt(), 1);
}

TEST(ControlResponse, HoldsTheContentAndWhetherTheToolFailed)
{
    EXPECT_EQ(encodeResponse({Text{"1/2 – “done”\n"}}, false),
              R"({"content":[{"type":"text","text":"1/2 – “done”\n"}],"isError":false})");
    EXPECT_EQ(encodeResponse({Text{Malformed}}, true),
              R"({"content":[{"type":"text","text":"Malformed request"}],"isError":true})");
    EXPECT_EQ(encodeResponse({}, false), R"({"content":[],"isError":false})");
}

TEST(ControlResponse, CarriesAPictureInBase64)
{
    EXPECT_EQ(encodeResponse({Image{QByteArray("\x89PNG"), "image/png"}, Text{"t"}}, false),
              R"({"content":[{"type":"image","data":"iVBORw==","mimeType":"image/png"},)"
              R"({"type":"text","text":"t"}],"isError":false})");
}

TEST(ControlResponse, IsAlwaysOneLineOfValidJson)
{
    const QString end = QStringLiteral("\r\n\u2028\x7f");
    const QString odd = QString(u'\0') + QChar(0xd800) + end;

    const QByteArray line = encodeResponse({Text{odd}}, false);

    EXPECT_FALSE(line.contains('\n'));
    const QJsonDocument read = QJsonDocument::fromJson(line);
    ASSERT_TRUE(read.isObject());
    EXPECT_EQ(read["content"][0]["text"].toString(), QString(u'\0') + u'?' + end);
}

TEST(ControlResponse, GivesWayToAFixedLineIfItIsTooLong)
{
    const QByteArray half(LineLimit / 2, 'x');

    EXPECT_EQ(encodeResponse({Image{half, "image/png"}, Image{half, "image/png"}}, false),
              R"({"content":[],"isError":true})");
}

} // namespace
} // namespace Bralto
