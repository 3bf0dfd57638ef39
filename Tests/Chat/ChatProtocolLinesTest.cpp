// The lines that go out, and the text of a typed turn.

#include "Chat/ChatProtocol.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <limits>

using namespace Bralto;

namespace {

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

ChatAttachment file(const char* path)
{
    return {QStringLiteral("f"), ChatAttachment::File{q(path)}};
}

ChatAttachment picture(const QByteArray& data, const char* mediaType)
{
    return {QStringLiteral("p"), ChatAttachment::Image{data, q(mediaType)}};
}

const QString Folder = QStringLiteral("/home/user/my.project 1");

} // namespace

TEST(ChatProtocolLines, RequestsCarryTheirIdAndSubtype)
{
    EXPECT_EQ(ChatProtocol::initializeRequest(q("initialize-1")),
              "{\"type\":\"control_request\",\"request_id\":\"initialize-1\","
              "\"request\":{\"subtype\":\"initialize\"}}\n");
    EXPECT_EQ(ChatProtocol::interruptRequest(q("i")),
              "{\"type\":\"control_request\",\"request_id\":\"i\","
              "\"request\":{\"subtype\":\"interrupt\"}}\n");
}

TEST(ChatProtocolLines, ARequestCarriesFieldsOfEveryType)
{
    const QVariantMap fields{{q("enabled"), true},
                             {q("count"), 5},
                             {q("share"), 5.0},
                             {q("model"), q("a\"b")},
                             {q("settings"), QVariantMap{{q("effortLevel"), q("max")}}},
                             {q("list"), QVariantList{1, q("x"), false}}};

    EXPECT_EQ(ChatProtocol::controlRequest(q("r"), q("set"), fields),
              "{\"type\":\"control_request\",\"request_id\":\"r\",\"request\":{"
              "\"subtype\":\"set\",\"count\":5,\"enabled\":true,\"list\":[1,\"x\",false],"
              "\"model\":\"a\\\"b\",\"settings\":{\"effortLevel\":\"max\"},\"share\":5.0}}\n");
}

TEST(ChatProtocolLines, ARequestThatCantBeBuiltIsAnEmptyObject)
{
    for (const QVariant& value :
         {QVariant(), QVariant(std::numeric_limits<double>::infinity()), QVariant(QUrl(q("x:y"))),
          QVariant(QVariantList{1, QVariant()}),
          QVariant(QVariantMap{{q("deep"), std::numeric_limits<double>::quiet_NaN()}})}) {
        EXPECT_EQ(ChatProtocol::controlRequest(q("r"), q("set"), {{q("a"), value}}), "{}\n");
    }
}

TEST(ChatProtocolLines, AllowReturnsTheInputAsItCame)
{
    EXPECT_EQ(ChatProtocol::allow(q("r"), R"({"z":1,"a":2.0,"t":"é\n"})", std::nullopt),
              "{\"type\":\"control_response\",\"response\":{\"subtype\":\"success\","
              "\"request_id\":\"r\",\"response\":{\"behavior\":\"allow\","
              "\"updatedInput\":{\"z\":1,\"a\":2.0,\"t\":\"é\\n\"}}}}\n");
}

TEST(ChatProtocolLines, AllowSetsAnswersWhenGivenAndRemovesThemOtherwise)
{
    const auto updatedInput = [](const std::optional<QMap<QString, QString>>& answers) {
        const QByteArray line =
            ChatProtocol::allow(q("r"), R"({"answers":{"old":"x"},"questions":[]})", answers);
        return QJsonDocument::fromJson(line)["response"]["response"]["updatedInput"].toObject();
    };

    EXPECT_EQ(updatedInput(std::nullopt), (QJsonObject{{"questions", QJsonArray()}}));
    EXPECT_EQ(
        updatedInput(QMap<QString, QString>{{q("Which?"), q("A, B")}}),
        (QJsonObject{{"questions", QJsonArray()}, {"answers", QJsonObject{{"Which?", "A, B"}}}}));
    EXPECT_EQ(updatedInput(QMap<QString, QString>()),
              (QJsonObject{{"questions", QJsonArray()}, {"answers", QJsonObject()}}));
}

TEST(ChatProtocolLines, AllowOfAnInputThatIsNoObjectSendsAnEmptyOne)
{
    for (const char* input : {"", "[]", "nonsense", "{\"a\":"}) {
        SCOPED_TRACE(input);
        EXPECT_TRUE(
            ChatProtocol::allow(q("r"), input, std::nullopt).contains("\"updatedInput\":{}"));
    }
}

TEST(ChatProtocolLines, RefusalsSayWhy)
{
    EXPECT_EQ(ChatProtocol::deny(q("r"), q("The user interrupted.")),
              "{\"type\":\"control_response\",\"response\":{\"subtype\":\"success\","
              "\"request_id\":\"r\",\"response\":{\"behavior\":\"deny\","
              "\"message\":\"The user interrupted.\"}}}\n");
    EXPECT_EQ(ChatProtocol::unsupported(q("r")),
              "{\"type\":\"control_response\",\"response\":{\"subtype\":\"error\","
              "\"request_id\":\"r\",\"error\":\"Not supported by Bralto\"}}\n");
}

TEST(ChatProtocolLines, AUserLineHoldsTheTextAndThePictures)
{
    EXPECT_EQ(ChatProtocol::userLine(
                  q("Look\n\"here\""),
                  {picture("\1\2", "image/png"), file("/x/a.txt"), picture("\3", "image/jpeg")},
                  Folder),
              "{\"type\":\"user\",\"message\":{\"role\":\"user\",\"content\":["
              "{\"type\":\"text\",\"text\":\"@/x/a.txt\\n\\nLook\\n\\\"here\\\"\"},"
              "{\"type\":\"image\",\"source\":{\"type\":\"base64\",\"media_type\":\"image/png\","
              "\"data\":\"AQI=\"}},"
              "{\"type\":\"image\",\"source\":{\"type\":\"base64\",\"media_type\":\"image/jpeg\","
              "\"data\":\"Aw==\"}}]}}\n");
}

TEST(ChatProtocolLines, AUserLineOfAPictureAloneHasNoText)
{
    EXPECT_EQ(ChatProtocol::userLine(QString(), {picture("\1\2", "image/png")}, Folder),
              "{\"type\":\"user\",\"message\":{\"role\":\"user\",\"content\":["
              "{\"type\":\"image\",\"source\":{\"type\":\"base64\",\"media_type\":\"image/png\","
              "\"data\":\"AQI=\"}}]}}\n");
}

TEST(ChatProtocolLines, EveryLineIsOneLine)
{
    const QString hostile = q("a\nb\r\n\u2028\"\\") + QChar(0) + QChar(0xd800);

    for (const QByteArray& line :
         {ChatProtocol::userLine(hostile, {}, Folder), ChatProtocol::deny(hostile, hostile),
          ChatProtocol::controlRequest(hostile, hostile, {{hostile, hostile}}),
          ChatProtocol::allow(hostile, "{}", QMap<QString, QString>{{hostile, hostile}})}) {
        EXPECT_EQ(line.count('\n'), 1);
        EXPECT_TRUE(line.endsWith('\n'));
        EXPECT_TRUE(QJsonDocument::fromJson(line).isObject());
    }
}

TEST(ChatProtocolLines, FilesAreMentionedByTheirPathInTheProject)
{
    struct Row {
        const char* path;
        const char* mention;
    };
    const Row rows[] = {
        {"/home/user/my.project 1/src/a.cpp", "@src/a.cpp"},
        {"/home/user/my.project 1/./src/../b.cpp", "@b.cpp"},
        {"/home/user/my.project 1/a file.txt", "@\"a file.txt\""},
        {"/home/user/my.project 10/a.cpp", "@\"/home/user/my.project 10/a.cpp\""},
        {"/etc/hosts", "@/etc/hosts"},
        {"/home/user/my.project 1", "@\"/home/user/my.project 1\""},
        {"/tmp/a\tb", "@\"/tmp/a\tb\""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(ChatProtocol::promptText(QString(), {file(row.path)}, Folder), q(row.mention));
    }
}

TEST(ChatProtocolLines, MentionsStandBeforeTheText)
{
    EXPECT_EQ(ChatProtocol::promptText(q("Look"),
                                       {file("/a"), picture("x", "image/png"), file("/b")}, Folder),
              q("@/a @/b\n\nLook"));
    EXPECT_EQ(ChatProtocol::promptText(q("Look"), {}, Folder), q("Look"));
    EXPECT_EQ(ChatProtocol::promptText(QString(), {}, Folder), QString());
}

TEST(ChatProtocolLines, ATypedTurnShowsItsMentionsAndPictures)
{
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(5, Qt::UTC);
    const auto message = ChatProtocol::userMessage(
        q("Look"), {picture("a", "image/png"), file("/b"), picture("c", "image/gif")}, Folder,
        q("m"), now);

    EXPECT_EQ(message,
              (ChatMessage{q("m"),
                           ChatRole::User,
                           {ChatTextBlock{q("m-text"), q("@/b\n\nLook")},
                            ChatImageBlock{q("m-image-0"), {QByteArray("a"), {}, q("image/png")}},
                            ChatImageBlock{q("m-image-1"), {QByteArray("c"), {}, q("image/gif")}}},
                           now,
                           false}));
    EXPECT_TRUE(ChatProtocol::userMessage(QString(), {}, Folder, q("m"), now).blocks.isEmpty());
}
