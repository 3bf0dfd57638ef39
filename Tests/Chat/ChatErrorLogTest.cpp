#include "Chat/ChatErrorLog.h"

#include <gtest/gtest.h>

#include <string>

using namespace Bralto;

TEST(ChatErrorLog, IsEmptyAtFirstAndAfterClearing)
{
    ChatErrorLog log;
    EXPECT_EQ(log.tail(), QString());

    log.append("text");
    log.clear();

    EXPECT_EQ(log.tail(), QString());
}

TEST(ChatErrorLog, TellsWhatWasAppended)
{
    ChatErrorLog log;
    log.append("one\n");
    log.append("two");

    EXPECT_EQ(log.tail(), QStringLiteral("one\ntwo"));
}

TEST(ChatErrorLog, TheTailIsTheLast600Bytes)
{
    ChatErrorLog log;
    log.append(std::string(1000, 'a') + std::string(599, 'b'));

    EXPECT_EQ(log.tail(), QStringLiteral("a") + QString(599, u'b'));
}

TEST(ChatErrorLog, KeepsTheEndHoweverMuchComes)
{
    ChatErrorLog log;
    for (int count = 0; count < 10; ++count)
        log.append(std::string(3000, char('0' + count)));
    EXPECT_EQ(log.tail(), QString(600, u'9'));

    log.append(std::string(100'000, 'x') + "end");

    EXPECT_EQ(log.tail(), QString(597, u'x') + "end");
}

TEST(ChatErrorLog, RepairsWhatIsNoUtf8)
{
    ChatErrorLog log;
    log.append("a\xff" + std::string("b"));
    EXPECT_EQ(log.tail(), QStringLiteral("a\uFFFDb"));

    // The cut goes through the middle of a character.
    log.clear();
    for (int count = 0; count < 301; ++count)
        log.append("é");
    log.append("!");

    EXPECT_TRUE(log.tail().endsWith(QStringLiteral("é!")));
    EXPECT_TRUE(log.tail().startsWith(QChar(0xfffd)));
}
