#include "Chat/ChatRowItems.h"
#include "Chat/ChatThinkingTimes.h"
#include "Chat/ChatWorkingRow.h"
#include "Chat/ClippedText.h"

#include <gtest/gtest.h>

#include <QTimeZone>

using namespace Bralto;

namespace {

ChatToolCall tool(const char* id, const char* name)
{
    ChatToolCall call;
    call.id = QString::fromLatin1(id);
    call.name = QString::fromLatin1(name);
    return call;
}

ChatMessage message(ChatRole role, QList<ChatBlock> blocks, bool isStreaming = false)
{
    ChatMessage message;
    message.id = "m";
    message.role = role;
    message.blocks = std::move(blocks);
    message.isStreaming = isStreaming;
    return message;
}

QDateTime at(int seconds)
{
    return QDateTime(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC).addSecs(seconds);
}

} // namespace

TEST(ChatRowItems, NeighboursOfOneToolFold)
{
    const QList<ChatBlock> blocks{tool("a", "Read"), tool("b", "Read"), tool("c", "Grep"),
                                  tool("d", "Read")};

    EXPECT_EQ(ChatRowItems::items(blocks),
              (std::vector<ChatRowItem>{{"group-a", 0, 2}, {"c", 2, 1}, {"d", 3, 1}}));
}

TEST(ChatRowItems, AGroupKeepsItsIdWhileItGrows)
{
    QList<ChatBlock> blocks{tool("a", "Glob"), tool("b", "Glob")};
    const QString before = ChatRowItems::items(blocks)[0].id;
    blocks.append(tool("c", "Glob"));

    EXPECT_EQ(ChatRowItems::items(blocks), (std::vector<ChatRowItem>{{before, 0, 3}}));
}

TEST(ChatRowItems, OtherBlocksPartAGroupAndNeverFold)
{
    const QList<ChatBlock> blocks{tool("a", "Read"), ChatTextBlock{"t", "x"}, tool("b", "Read"),
                                  tool("c", "Bash"), tool("d", "Bash")};

    EXPECT_EQ(ChatRowItems::items(blocks).size(), 5u);
    EXPECT_TRUE(ChatRowItems::items({}).empty());
}

TEST(ChatRowItems, GroupsHaveTitles)
{
    EXPECT_EQ(ChatRowItems::groupTitle("Read", 2), "Read 2 files");
    EXPECT_EQ(ChatRowItems::groupTitle("Grep", 3), "Ran 3 searches");
    EXPECT_EQ(ChatRowItems::groupTitle("Glob", 3), "Ran 3 searches");
    EXPECT_EQ(ChatRowItems::groupTitle("WebFetch", 4), "Fetched 4 pages");
    EXPECT_EQ(ChatRowItems::groupTitle("WebSearch", 5), "Searched the web 5 times");
}

TEST(ClippedText, AShortTextIsShownWhole)
{
    EXPECT_EQ(ClippedText::of("a\nb", 2, false), (ClippedText{"a\nb", ""}));
    EXPECT_EQ(ClippedText::of("", 12, false), (ClippedText{"", ""}));
}

TEST(ClippedText, MoreLinesThanTheLimitAreCut)
{
    EXPECT_EQ(ClippedText::of("a\nb\nc", 2, false), (ClippedText{"a\nb", "Show more (3 lines)"}));
    EXPECT_EQ(ClippedText::of("a\nb\nc", 2, true), (ClippedText{"a\nb\nc", "Show less"}));
}

TEST(ClippedText, ALongLineIsCutAlthoughTheLimitHoldsIt)
{
    EXPECT_EQ(ClippedText::of(QString(4000, 'x'), 12, false).button, "");

    const ClippedText cut = ClippedText::of(QString(4001, 'x'), 12, false);
    EXPECT_EQ(cut.shown.size(), 4000);
    EXPECT_EQ(cut.button, "Show more (1 lines)");
}

TEST(ClippedText, AnOpenTextEndsAtTwoHundredThousandCharacters)
{
    EXPECT_EQ(ClippedText::of(QString(200001, 'x'), 12, true).shown.size(), 200000);
}

TEST(ClippedText, ACutNeverSplitsACharacter)
{
    const QString text = QString(3999, 'x') + QString::fromUtf8("😀") + "y";
    EXPECT_EQ(ClippedText::of(text, 12, false).shown, QString(3999, 'x'));
}

TEST(ChatWorkingRow, WaitsForTheFirstWords)
{
    EXPECT_TRUE(ChatWorkingRow::awaitsFirstWords({}));
    EXPECT_TRUE(ChatWorkingRow::awaitsFirstWords({message(ChatRole::User, {ChatTextBlock{}})}));
    EXPECT_TRUE(ChatWorkingRow::awaitsFirstWords({message(ChatRole::Assistant, {})}));
    EXPECT_FALSE(
        ChatWorkingRow::awaitsFirstWords({message(ChatRole::Assistant, {ChatTextBlock{}})}));
}

TEST(ChatWorkingRow, SaysWhatHappensBeforeAMessageDoes)
{
    using Kind = ChatState::Kind;
    const std::vector<ChatMessage> none;
    const std::vector<ChatMessage> words{message(ChatRole::Assistant, {ChatTextBlock{}})};
    const auto text = [](const std::optional<ChatWorkingRow>& row) {
        return row ? row->text : QString("-");
    };

    EXPECT_EQ(text(ChatWorkingRow::of({Kind::Idle, {}}, none, true)), "Loading the conversation…");
    EXPECT_EQ(text(ChatWorkingRow::of({Kind::Idle, {}}, none, false)), "-");
    EXPECT_EQ(text(ChatWorkingRow::of({Kind::Starting, {}}, none, false)), "Starting Claude…");
    EXPECT_EQ(text(ChatWorkingRow::of({Kind::Working, {}}, none, false)), "Thinking…");
    EXPECT_EQ(text(ChatWorkingRow::of({Kind::Working, {}}, words, false)), "-");
    EXPECT_EQ(text(ChatWorkingRow::of({Kind::Waiting, {}}, none, false)), "-");
    const auto failed = ChatWorkingRow::of({Kind::Failed, "Broken."}, words, false);
    EXPECT_EQ(text(failed), "Broken.");
    EXPECT_EQ(failed->kind, ChatWorkingRow::Kind::Failed);
}

TEST(ChatThinkingTimes, MeasuresFromTheFirstSightToWhatFollows)
{
    ChatThinkingTimes times;
    times.observe(message(ChatRole::Assistant, {ChatThinkingBlock{"b", "h"}}, true), at(0));
    times.observe(message(ChatRole::Assistant, {ChatThinkingBlock{"b", "hm"}}, true), at(4));
    EXPECT_FALSE(times.seconds("b").has_value());

    times.observe(
        message(ChatRole::Assistant, {ChatThinkingBlock{"b", "hm"}, ChatTextBlock{"t", "x"}}, true),
        at(6));
    times.observe(message(ChatRole::Assistant, {ChatThinkingBlock{"b", "hm"}}), at(60));

    EXPECT_EQ(times.seconds("b"), 6);
}

TEST(ChatThinkingTimes, OfAStoredConversationNothingIsKnown)
{
    ChatThinkingTimes times;
    times.observe(message(ChatRole::Assistant, {ChatThinkingBlock{"b", "h"}}), at(0));

    EXPECT_FALSE(times.seconds("b").has_value());
    EXPECT_EQ(ChatThinkingTimes::title(false, std::nullopt), "Thought");
    EXPECT_EQ(ChatThinkingTimes::title(false, 6), "Thought for 6 s");
    EXPECT_EQ(ChatThinkingTimes::title(true, std::nullopt), "Thinking…");
}
