#include "Terminals/SessionScrollback.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Bralto;

TEST(SessionScrollback, ThePromptThatWasShowingIsLeftOut)
{
    for (const char* prompt : {"user@host %", "$ ", "root #", "> ", "build 100%"})
        EXPECT_EQ(SessionScrollback::kept(std::string("text\n") + prompt + "\n\n  \n"), "text")
            << prompt;
    EXPECT_EQ(SessionScrollback::kept("$ one\n$\n$ \n"), "$ one\n$");
    EXPECT_EQ(SessionScrollback::kept("done.\n"), "done.");
}

TEST(SessionScrollback, EarlierLinesOfARestoreAreDropped)
{
    EXPECT_EQ(SessionScrollback::kept("a\n── restored Nov 21, 2026, 1:05 PM ──\nb\n"), "a\nb");
    EXPECT_EQ(SessionScrollback::kept(" ── restored by hand\n"), " ── restored by hand");
}

TEST(SessionScrollback, AtMostFifteenHundredLinesAreKept)
{
    std::string text;
    for (int line = 0; line < 2000; ++line)
        text += std::to_string(line) + '\n';

    const QStringList lines = SessionScrollback::kept(text).split('\n');

    EXPECT_EQ(lines.size(), 1500);
    EXPECT_EQ(lines.front(), "500");
    EXPECT_EQ(lines.back(), "1999");
}

TEST(SessionScrollback, WhatIsNoUtf8IsNotKept)
{
    EXPECT_EQ(SessionScrollback::kept("a\xff\n"), QString());
    EXPECT_EQ(SessionScrollback::kept(""), QString());
}

TEST(SessionScrollback, IsReplayedWithLineEndsOfATerminalAndADimLine)
{
    EXPECT_EQ(SessionScrollback::replayed("a\nb", "now"),
              "a\r\nb\r\n\x1b[2m── restored now ──\x1b[0m\r\n");
}

TEST(SessionScrollback, TheTimeIsWrittenAsTheLocaleWritesIt)
{
    const QDateTime at(QDate(2026, 11, 21), QTime(13, 5));

    EXPECT_EQ(SessionScrollback::stamp(QLocale(QLocale::English, QLocale::UnitedStates), at)
                  .replace(QChar(0x202F), u' '),
              "Nov 21, 2026, 1:05 PM");
    EXPECT_EQ(SessionScrollback::stamp(QLocale(QLocale::German, QLocale::Germany), at),
              "21. Nov. 2026, 13:05");
}
