#include "Chat/ChatNotice.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Bralto;
using ChatNotice::Shown;
using ChatNotice::shown;

namespace {

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

QString lines(int count)
{
    QStringList result;
    for (int line = 1; line <= count; ++line)
        result.append(QString::number(line));
    return result.join(u'\n');
}

} // namespace

TEST(ChatNotice, LeavesTheAgentsWrappersOut)
{
    const std::pair<const char*, const char*> rows[] = {
        {"<local-command-stdout>Set model to `x`</local-command-stdout>", "Set model to `x`"},
        {"<local-command-stderr>\n bad \n</local-command-stderr>", "bad"},
        {"<command-name>/context</command-name>\n<command-message>m</command-message>",
         "/context\nm"},
        {"plain", "plain"},
        {"<local-command-stdout></local-command-stdout>", ""},
        {"", ""},
    };
    for (const auto& [text, expected] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(shown(q(text)), (Shown{q(expected), 0}));
    }
}

TEST(ChatNotice, OtherAnglesStay)
{
    for (const char* text : {"a < b > c", "<b>bold</b>", "</", "<", "<local-command-stdou>x",
                             "<command-name", "std::vector<command-names>", "< command-name>"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(shown(q(text)).text, q(text));
    }
}

TEST(ChatNotice, TwelveLinesShowWhole)
{
    EXPECT_EQ(shown(lines(12)), (Shown{lines(12), 0}));
    EXPECT_EQ(shown("\n\n" + lines(12) + "\n\n"), (Shown{lines(12), 0}));
}

TEST(ChatNotice, MoreLinesFoldBehindTheTwelfth)
{
    EXPECT_EQ(shown(lines(13)), (Shown{lines(12), 1}));
    EXPECT_EQ(shown(lines(500)), (Shown{lines(12), 488}));
    EXPECT_EQ(shown("<local-command-stdout>" + lines(20) + "</local-command-stdout>"),
              (Shown{lines(12), 8}));
}

TEST(ChatNotice, UnfoldedAllOfItShows)
{
    EXPECT_EQ(shown(lines(500), ChatNotice::Extent::Whole), (Shown{lines(500), 0}));
}
