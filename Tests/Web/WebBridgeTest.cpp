#include "Web/WebBridge.h"
#include "Web/WebAsking.h"
#include "Web/WebFileDialog.h"
#include "Web/WebNavigation.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

using Kind = WebBridge::Message::Kind;

const QString Key = QStringLiteral("0123456789abcdef");

QString message(const char* rest)
{
    return QChar(1) + Key + QString::fromUtf8(rest);
}

TEST(WebBridge, AMessageWithItsKeyIsRead)
{
    const auto hello = WebBridge::read(Key, message("h\nhttp://a/"));
    ASSERT_TRUE(hello);
    EXPECT_EQ(hello->kind, Kind::Hello);
    EXPECT_EQ(hello->text, QStringLiteral("http://a/"));

    const auto value = WebBridge::read(Key, message("v17\n{\n}"));
    ASSERT_TRUE(value);
    EXPECT_EQ(value->kind, Kind::Value);
    EXPECT_EQ(value->id, 17U);
    EXPECT_EQ(value->text, QStringLiteral("{\n}"));

    const auto log = WebBridge::read(Key, message("cwarn\ntext"));
    ASSERT_TRUE(log);
    EXPECT_EQ(log->kind, Kind::Log);
    EXPECT_EQ(log->level, QStringLiteral("warn"));
}

TEST(WebBridge, WhatThePageWritesIsNoMessage)
{
    for (const QString& text :
         {QString(), QStringLiteral("h\nhttp://a/"), Key + QStringLiteral("h\nx"), message(""),
          message("h"), message("?1\nx"), QChar(1) + QStringLiteral("0123456789abcdeXh\nx"),
          QString(QChar(1))})
        EXPECT_FALSE(WebBridge::read(Key, text)) << qPrintable(text);
}

TEST(WebBridge, OnlyIdentifiersNameArguments)
{
    for (const char* name : {"a", "_", "$x9", "Ref"})
        EXPECT_TRUE(WebBridge::isArgumentName(QString::fromLatin1(name))) << name;
    for (const char* name : {"", "9a", "a b", "a,b", "a=1", "a\n", "a)", "ä"})
        EXPECT_FALSE(WebBridge::isArgumentName(QString::fromUtf8(name))) << name;
}

TEST(WebBridge, KeysAreNeverTheSame)
{
    EXPECT_NE(WebBridge::newKey(), WebBridge::newKey());
    EXPECT_EQ(WebBridge::newKey().size(), 32);
}

TEST(WebAsking, AnAddressIsReadAsAQuestion)
{
    const auto question = WebAsking::questionFrom(QUrl(
        QStringLiteral("bralto-ask:key?prompt&What%20%26%20why%3F%0A&%C3%A4"), QUrl::StrictMode));

    ASSERT_TRUE(question);
    EXPECT_EQ(question->kind, PageQuestion::Kind::Prompt);
    EXPECT_EQ(question->text, QStringLiteral("What & why?\n"));
    EXPECT_EQ(question->suggestion, QStringLiteral("ä"));
}

TEST(WebAsking, WhatIsNoQuestionIsNone)
{
    for (const char* address :
         {"bralto-ask:key", "bralto-ask:key?", "bralto-ask:key?alert", "bralto-ask:key?alert&a",
          "bralto-ask:key?alert&a&b&c", "bralto-ask:key?login&a&b"})
        EXPECT_FALSE(WebAsking::questionFrom(QUrl(QString::fromLatin1(address)))) << address;
}

TEST(WebNavigation, AnAddressIsNoTitle)
{
    const QUrl url(QStringLiteral("http://localhost:3000/a%20b/?q=%C3%A4"));
    for (const char* title : {"http://localhost:3000/a%20b/?q=%C3%A4",
                              "localhost:3000/a%20b/?q=%C3%A4", "localhost:3000/a b/?q=ä"})
        EXPECT_TRUE(WebNavigation::isAddress(QString::fromUtf8(title), url)) << title;
    EXPECT_FALSE(WebNavigation::isAddress(QStringLiteral("localhost"), url));
    EXPECT_TRUE(WebNavigation::isAddress(QStringLiteral("host.test"),
                                         QUrl(QStringLiteral("https://www.host.test/"))));
    EXPECT_FALSE(WebNavigation::isAddress(QStringLiteral("Host"),
                                          QUrl(QStringLiteral("https://host.test/"))));
}

TEST(WebFileDialog, TheTypesOfAPageAreTheDialogsFilter)
{
    EXPECT_EQ(WebFileDialog::nameFilters({}), QStringList{QStringLiteral("All files (*)")});
    EXPECT_EQ(
        WebFileDialog::nameFilters({QStringLiteral(".PNG"), QStringLiteral("no/such")}).front(),
        QStringLiteral("Files for this page (*.png)"));
    EXPECT_TRUE(WebFileDialog::nameFilters({QStringLiteral("image/*")})
                    .front()
                    .contains(QStringLiteral("*.jpg")));
}

} // namespace
} // namespace Bralto
