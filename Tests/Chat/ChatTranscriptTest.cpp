#include "Chat/ChatTranscript.h"

#include <gtest/gtest.h>

using namespace Bralto;
using namespace Bralto::ChatEvents;

namespace {

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

QDateTime at(qint64 second)
{
    return QDateTime::fromSecsSinceEpoch(second, Qt::UTC);
}

ChatBlock text(const char* content, const char* id = "")
{
    return ChatTextBlock{q(id), q(content)};
}

ChatBlock thinking(const char* content, const char* id = "")
{
    return ChatThinkingBlock{q(id), q(content)};
}

ChatToolCall call(const char* id, const char* name = "Bash", const char* input = "{}")
{
    ChatToolCall result;
    result.id = q(id);
    result.name = q(name);
    result.inputJSON = q(input);
    return result;
}

Assistant assistant(const char* id, QList<ChatBlock> blocks,
                    const std::optional<QString>& parent = std::nullopt)
{
    return {q(id), std::move(blocks), std::nullopt, at(10), parent};
}

ToolResults result(const char* id, const char* output, bool isError = false, bool isAsync = false)
{
    return {{ChatToolResult{q(id), q(output), {}, isError, isAsync}}, std::nullopt};
}

Notice notice(const char* id, const char* content,
              const std::optional<QString>& parent = std::nullopt)
{
    return {q(id), q(content), at(20), parent};
}

User user(const char* id)
{
    return {ChatMessage{q(id), ChatRole::User, {text("hi", "x")}, at(5), false}};
}

ChatTranscriptChange rows(std::vector<std::size_t> messages)
{
    ChatTranscriptChange change;
    change.messages = std::move(messages);
    return change;
}

class ChatTranscriptTest : public testing::Test {
protected:
    ChatTranscriptChange apply(const ChatEvent& event) { return m_transcript.apply(event); }

    void applyAll(std::initializer_list<ChatEvent> events)
    {
        for (const ChatEvent& event : events)
            m_transcript.apply(event);
    }

    const QList<ChatBlock>& blocks(std::size_t row = 0) const
    {
        return m_transcript.messages.at(row).blocks;
    }

    const ChatToolCall& tool(std::size_t row, qsizetype block) const
    {
        return std::get<ChatToolCall>(blocks(row).at(block));
    }

    const ChatSubagent& agent(std::size_t at = 0) const { return m_transcript.subagents.at(at); }

    ChatTranscript m_transcript;
};

} // namespace

// The stream

TEST_F(ChatTranscriptTest, AStreamedTextKeepsItsIdWhenItsLineArrives)
{
    apply(StreamStart{q("m"), at(1)});
    EXPECT_TRUE(blocks().isEmpty());
    EXPECT_TRUE(m_transcript.messages[0].isStreaming);
    EXPECT_EQ(m_transcript.messages[0].date, at(1));

    apply(StreamBlock{0, text("")});
    EXPECT_TRUE(blocks().isEmpty());
    apply(StreamDelta{0, q("Hel")});
    EXPECT_EQ(blocks(), (QList<ChatBlock>{text("Hel", "m-0")}));
    apply(StreamDelta{0, q("lo")});
    EXPECT_EQ(blocks(), (QList<ChatBlock>{text("Hello", "m-0")}));

    apply(assistant("m", {text("Hello")}));
    EXPECT_EQ(blocks(), (QList<ChatBlock>{text("Hello", "m-0")}));
    EXPECT_TRUE(m_transcript.messages[0].isStreaming);
    apply(StreamStop{});
    EXPECT_EQ(blocks(), (QList<ChatBlock>{text("Hello", "m-0")}));
    EXPECT_FALSE(m_transcript.messages[0].isStreaming);
    EXPECT_EQ(m_transcript.messages.size(), 1u);
}

TEST_F(ChatTranscriptTest, ADeltaAfterTheFinishedLineChangesNothing)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}, assistant("m", {text("a")})});

    EXPECT_TRUE(apply(StreamDelta{0, q("b")}).isEmpty());
    EXPECT_EQ(blocks(), (QList<ChatBlock>{text("a", "m-0")}));
}

TEST_F(ChatTranscriptTest, FinishedBlocksStandBeforeTheOnesThatStillStream)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, thinking("hm")}, StreamBlock{1, text("a")},
              StreamBlock{2, call("t")}, assistant("m", {thinking("hmm")})});

    EXPECT_EQ(blocks(),
              (QList<ChatBlock>{thinking("hmm", "m-0"), text("a", "m-1"), ChatBlock(call("t"))}));
}

TEST_F(ChatTranscriptTest, EveryKindOfBlockGrowsByDeltas)
{
    ChatToolCall streamed = call("t", "Bash", "");
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, thinking("")}, StreamBlock{1, streamed},
              StreamBlock{2, ChatImageBlock{}}, StreamBlock{3, text("x")}});

    EXPECT_EQ(apply(StreamDelta{0, q("hm")}), rows({0}));
    EXPECT_EQ(apply(StreamDelta{1, q("{\"a\":")}), rows({0}));
    EXPECT_EQ(apply(StreamDelta{1, q("1}")}), rows({0}));
    EXPECT_TRUE(apply(StreamDelta{2, q("?")}).isEmpty());
    EXPECT_EQ(apply(StreamDelta{3, q("y")}), rows({0}));
    EXPECT_EQ(apply(StreamDelta{0, q("m")}), rows({0}));

    streamed.inputJSON = q("{\"a\":1}");
    EXPECT_EQ(blocks(), (QList<ChatBlock>{thinking("hmm", "m-0"), streamed,
                                          ChatImageBlock{q("m-2"), {}}, text("xy", "m-3")}));
}

TEST_F(ChatTranscriptTest, AnEmptyThinkingBlockNeverShowsButCounts)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, thinking("")}, StreamBlock{1, text("a")}});
    EXPECT_EQ(blocks(), (QList<ChatBlock>{text("a", "m-1")}));

    apply(assistant("m", {thinking("")}));
    EXPECT_EQ(blocks(), (QList<ChatBlock>{text("a", "m-1")}));
    apply(assistant("m", {text("a")}));
    EXPECT_EQ(blocks(), (QList<ChatBlock>{text("a", "m-1")}));
}

TEST_F(ChatTranscriptTest, BlocksAndDeltasWithoutAStreamAreDropped)
{
    EXPECT_TRUE(apply(StreamBlock{0, text("a")}).isEmpty());
    EXPECT_TRUE(apply(StreamDelta{0, q("a")}).isEmpty());
    EXPECT_TRUE(apply(StreamStop{}).isEmpty());
    EXPECT_TRUE(m_transcript.messages.empty());

    apply(StreamStart{q("m"), at(1)});
    EXPECT_TRUE(apply(StreamDelta{7, q("a")}).isEmpty());
}

TEST_F(ChatTranscriptTest, ABlockThatStartsAgainTakesThePlaceOfTheFirst)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}, StreamBlock{0, text("b")}});

    EXPECT_EQ(blocks(), (QList<ChatBlock>{text("b", "m-0")}));
}

TEST_F(ChatTranscriptTest, TheEndOfAStreamKeepsWhatNoLineReported)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}, StreamBlock{3, text("b")},
              StreamStop{}, assistant("m", {text("c")})});

    EXPECT_EQ(blocks(), (QList<ChatBlock>{text("a", "m-0"), text("b", "m-3"), text("c", "m-2")}));
}

TEST_F(ChatTranscriptTest, ANewStreamAbandonsTheOneBefore)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}, StreamStart{q("n"), at(2)},
              StreamBlock{0, text("b")}});

    EXPECT_EQ(blocks(0), (QList<ChatBlock>{text("a", "m-0")}));
    EXPECT_EQ(blocks(1), (QList<ChatBlock>{text("b", "n-0")}));
    EXPECT_TRUE(m_transcript.messages[0].isStreaming);

    // What was never finished goes with the next line of that message.
    EXPECT_EQ(apply(assistant("m", {})), rows({0}));
    EXPECT_TRUE(blocks(0).isEmpty());
    EXPECT_FALSE(m_transcript.messages[0].isStreaming);
}

TEST_F(ChatTranscriptTest, AStreamMayBeginAgainOnAMessageThatIsThere)
{
    applyAll({assistant("m", {text("a")}), user("u"), StreamStart{q("m"), at(9)},
              StreamBlock{1, text("b")}});

    ASSERT_EQ(m_transcript.messages.size(), 2u);
    EXPECT_EQ(m_transcript.messages[0].date, at(10));
    EXPECT_EQ(blocks(0), (QList<ChatBlock>{text("a", "m-0"), text("b", "m-1")}));
}

TEST_F(ChatTranscriptTest, ADeltaTouchesItsMessageOnly)
{
    applyAll({user("u"), StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}});
    const QString shownElsewhere = std::get<ChatTextBlock>(blocks(1).first()).text;

    EXPECT_EQ(apply(StreamDelta{0, q("b")}), rows({1}));
    EXPECT_EQ(shownElsewhere, q("a"));
}

TEST_F(ChatTranscriptTest, AStreamedTextGrowsInPlace)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}});
    const auto place = [this] {
        return std::get<ChatTextBlock>(blocks().first()).text.constData();
    };
    const QString word(100, u'x');

    int moves = 0;
    const QChar* before = place();
    for (int count = 0; count < 10'000; ++count) {
        apply(StreamDelta{0, word});
        moves += place() != before;
        before = place();
    }

    EXPECT_EQ(std::get<ChatTextBlock>(blocks().first()).text.size(), 1'000'001);
    EXPECT_LT(moves, 100);
}

// Finished lines

TEST_F(ChatTranscriptTest, LinesOfOneMessageAddUpWithRunningIds)
{
    const auto first = apply(assistant("m", {text("a")}));
    const auto second = apply(assistant("m", {text("b"), thinking("c")}));

    EXPECT_EQ(blocks(),
              (QList<ChatBlock>{text("a", "m-0"), text("b", "m-1"), thinking("c", "m-2")}));
    EXPECT_TRUE(first.messageList);
    EXPECT_EQ(first.messages, (std::vector<std::size_t>{0}));
    EXPECT_EQ(second, rows({0}));
}

TEST_F(ChatTranscriptTest, AToolBlockKeepsItsOwnIdAndCountsForTheOthers)
{
    applyAll({assistant("m", {call("t"), text("a")})});

    EXPECT_EQ(blocks(), (QList<ChatBlock>{ChatBlock(call("t")), text("a", "m-1")}));
}

TEST_F(ChatTranscriptTest, AnEmptyLineMakesItsMessageAnyway)
{
    EXPECT_TRUE(apply(assistant("m", {})).messageList);
    EXPECT_EQ(m_transcript.messages,
              (std::vector<ChatMessage>{{q("m"), ChatRole::Assistant, {}, at(10), false}}));
    EXPECT_TRUE(apply(assistant("m", {})).isEmpty());
}

TEST_F(ChatTranscriptTest, ContextTokensAreStored)
{
    Assistant event = assistant("m", {});
    event.contextTokens = 150;

    EXPECT_TRUE(apply(event).status);
    EXPECT_EQ(m_transcript.status.contextTokens, 150);
    EXPECT_FALSE(apply(event).status);
    apply(assistant("m", {}));
    EXPECT_EQ(m_transcript.status.contextTokens, 150);
}

// Tool results

TEST_F(ChatTranscriptTest, AResultEndsItsCall)
{
    applyAll({assistant("m", {call("t"), call("v")})});

    EXPECT_EQ(apply(result("t", "out")), rows({0}));
    EXPECT_EQ(tool(0, 0).status, ChatToolStatus::Done);
    EXPECT_EQ(tool(0, 0).resultText, q("out"));
    EXPECT_EQ(tool(0, 1).status, ChatToolStatus::Running);
    EXPECT_EQ(apply(result("v", "no", true)), rows({0}));
    EXPECT_EQ(tool(0, 1).status, ChatToolStatus::Failed);
    EXPECT_TRUE(apply(result("v", "no", true)).isEmpty());
}

TEST_F(ChatTranscriptTest, AResultBringsItsPicturesAndClearsWhatWasThere)
{
    const ChatImage image{QByteArray("x"), std::nullopt, std::nullopt};
    applyAll({assistant("m", {call("t")}), result("t", "out"),
              ToolResults{{ChatToolResult{q("t"), std::nullopt, {image}, false, false}}, {}}});

    EXPECT_EQ(tool(0, 0).resultText, std::nullopt);
    EXPECT_EQ(tool(0, 0).resultImages, (QList<ChatImage>{image}));
}

TEST_F(ChatTranscriptTest, AResultForAnUnknownCallIsDropped)
{
    apply(assistant("m", {call("t")}));

    EXPECT_TRUE(apply(result("other", "out")).isEmpty());
}

TEST_F(ChatTranscriptTest, ALateResultFindsItsCallFarAbove)
{
    apply(assistant("m", {call("t")}));
    for (int count = 0; count < 100; ++count)
        apply(user(QByteArray::number(count).constData()));

    EXPECT_EQ(apply(result("t", "out")), rows({0}));
}

TEST_F(ChatTranscriptTest, TheLastCallOfAnIdGetsTheResult)
{
    applyAll({assistant("m", {call("t")}), assistant("n", {call("t")}), result("t", "out")});

    EXPECT_EQ(tool(0, 0).status, ChatToolStatus::Running);
    EXPECT_EQ(tool(1, 0).status, ChatToolStatus::Done);
}

TEST_F(ChatTranscriptTest, AResultThatCameFirstSurvivesTheFinishedLine)
{
    ChatToolCall streamed = call("t", "Bash", "");
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, streamed}, StreamDelta{0, q("{\"comm")}});
    EXPECT_EQ(tool(0, 0).summary, QString());
    EXPECT_EQ(tool(0, 0).inputJSON, q("{\"comm"));

    apply(result("t", "out", true));
    ChatToolCall finished = call("t", "Bash", "{\n  \"command\": \"ls\"\n}");
    finished.summary = q("ls");
    apply(assistant("m", {finished}));

    finished.status = ChatToolStatus::Failed;
    finished.resultText = q("out");
    EXPECT_EQ(blocks(), (QList<ChatBlock>{finished}));
    apply(StreamStop{});
    EXPECT_EQ(blocks(), (QList<ChatBlock>{finished}));
}

TEST_F(ChatTranscriptTest, AResultSurvivesFurtherLinesOfItsMessage)
{
    applyAll({assistant("m", {call("t")}), result("t", "out"), assistant("m", {text("more")})});

    EXPECT_EQ(tool(0, 0).resultText, q("out"));
    EXPECT_EQ(tool(0, 0).status, ChatToolStatus::Done);
}

TEST_F(ChatTranscriptTest, ACallLostWithItsStreamTakesNoResult)
{
    applyAll({assistant("k", {call("t")}), StreamStart{q("m"), at(1)}, StreamBlock{0, call("t")},
              StreamStart{q("n"), at(2)}, assistant("m", {text("a")})});

    EXPECT_EQ(apply(result("t", "out")), rows({0}));
    EXPECT_EQ(tool(0, 0).status, ChatToolStatus::Done);
}

// The user and notices

TEST_F(ChatTranscriptTest, AUsersMessageEndsTheStream)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}});

    const auto change = apply(user("u"));

    EXPECT_EQ(change.messages, (std::vector<std::size_t>{0, 1}));
    EXPECT_TRUE(change.messageList);
    EXPECT_FALSE(m_transcript.messages[0].isStreaming);
    EXPECT_EQ(m_transcript.messages[1], user("u").message);
    EXPECT_TRUE(apply(StreamDelta{0, q("b")}).isEmpty());
}

TEST_F(ChatTranscriptTest, ANoticeLeavesTheStreamOpen)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}, notice("n", "note"),
              StreamDelta{0, q("b")}});

    EXPECT_EQ(blocks(0), (QList<ChatBlock>{text("ab", "m-0")}));
    EXPECT_EQ(m_transcript.messages[1],
              (ChatMessage{q("n"), ChatRole::System, {text("note", "n-text")}, at(20), false}));
}

TEST_F(ChatTranscriptTest, AppendingShowsTheTurnAtOnce)
{
    const auto change = m_transcript.append(user("u").message);

    EXPECT_TRUE(change.messageList);
    EXPECT_EQ(change.messages, (std::vector<std::size_t>{0}));
    EXPECT_EQ(m_transcript.messages.back(), user("u").message);
}

TEST_F(ChatTranscriptTest, ANoticeWithTheIdOfTheStreamDoesNotBreakIt)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}, StreamBlock{1, text("b")},
              notice("m", "note"), StreamDelta{0, q("c")}});

    // Searches run from the end, so the later message of that id has taken over.
    EXPECT_EQ(blocks(1), (QList<ChatBlock>{text("ac", "m-0"), text("b", "m-1")}));
}

// Subagents

TEST_F(ChatTranscriptTest, AnAgentCallStartsASubagent)
{
    const auto change = apply(
        assistant("m", {call("t", "Agent", R"({"description":"Look","subagent_type":"explorer"})"),
                        call("v", "Task", R"({"run_in_background":true})"), call("w", "Bash", "{}"),
                        call("x", "Agent", "not json")}));

    EXPECT_TRUE(change.subagents);
    ASSERT_EQ(m_transcript.subagents.size(), 3u);
    EXPECT_EQ(agent(0), (ChatSubagent{q("t"),
                                      {},
                                      q("Look"),
                                      q("explorer"),
                                      ChatToolStatus::Running,
                                      {},
                                      0,
                                      0,
                                      {},
                                      false,
                                      {}}));
    EXPECT_EQ(agent(1).description, q("Subagent"));
    EXPECT_TRUE(agent(1).isBackground);
    EXPECT_EQ(agent(2).description, q("Subagent"));
}

TEST_F(ChatTranscriptTest, AResultEndsAForegroundSubagent)
{
    applyAll({assistant("m", {call("t", "Agent")}), TaskProgress{q("t"), q("Reading"), 1, 2}});

    const auto change = apply(result("t", "report"));

    EXPECT_TRUE(change.subagents);
    EXPECT_EQ(agent().status, ChatToolStatus::Done);
    EXPECT_EQ(agent().activity, std::nullopt);
    EXPECT_EQ(agent().summary, q("report"));
    EXPECT_EQ(tool(0, 0).resultText, q("report"));
    apply(result("t", "again", true));
    EXPECT_EQ(agent().status, ChatToolStatus::Failed);
    EXPECT_EQ(agent().summary, q("report"));
}

TEST_F(ChatTranscriptTest, AResultLeavesABackgroundSubagentRunning)
{
    applyAll({assistant("m", {call("t", "Agent")}), result("t", "launched", false, true)});

    EXPECT_TRUE(agent().isBackground);
    EXPECT_EQ(agent().status, ChatToolStatus::Running);
    EXPECT_EQ(tool(0, 0).status, ChatToolStatus::Done);

    apply(TaskEnded{q("t"), false, q("report")});
    EXPECT_EQ(agent().status, ChatToolStatus::Done);
    EXPECT_EQ(agent().summary, q("report"));
    EXPECT_EQ(tool(0, 0).resultText, q("report"));
}

TEST_F(ChatTranscriptTest, ASubagentThatStartedInTheBackgroundStaysRunningToo)
{
    applyAll({assistant("m", {call("t", "Agent", R"({"run_in_background":true})")}),
              result("t", "launched")});

    EXPECT_EQ(agent().status, ChatToolStatus::Running);
}

TEST_F(ChatTranscriptTest, ATasksEndWithoutASummaryClearsAnEarlierOne)
{
    applyAll({assistant("m", {call("t", "Agent")}), result("t", "report")});

    EXPECT_TRUE(apply(TaskEnded{q("t"), true, std::nullopt}).subagents);
    EXPECT_EQ(agent().summary, std::nullopt);
    EXPECT_EQ(agent().status, ChatToolStatus::Failed);
    EXPECT_EQ(tool(0, 0).resultText, q("report"));
    EXPECT_EQ(tool(0, 0).status, ChatToolStatus::Failed);
}

TEST_F(ChatTranscriptTest, ATaskMayBeSeenBeforeItsCall)
{
    applyAll({TaskProgress{q("t"), q("Reading"), 3, std::nullopt},
              TaskProgress{q("t"), std::nullopt, std::nullopt, 500},
              assistant("m", {call("t", "Agent", R"({"description":"Look"})")})});

    ASSERT_EQ(m_transcript.subagents.size(), 1u);
    EXPECT_EQ(agent().description, q("Subagent"));
    EXPECT_EQ(agent().activity, q("Reading"));
    EXPECT_EQ(agent().toolUses, 3);
    EXPECT_EQ(agent().tokens, 500);
}

TEST_F(ChatTranscriptTest, ATasksStartFillsInWhatItTells)
{
    applyAll({TaskStarted{q("t"), q("a1"), q("Look"), q("explorer"), true},
              TaskStarted{q("t"), std::nullopt, std::nullopt, std::nullopt, false}});

    EXPECT_EQ(agent(), (ChatSubagent{q("t"),
                                     q("a1"),
                                     q("Look"),
                                     q("explorer"),
                                     ChatToolStatus::Running,
                                     {},
                                     0,
                                     0,
                                     {},
                                     false,
                                     {}}));
    EXPECT_TRUE(apply(TaskStarted{q("t"), q("a1"), q("Look"), q("explorer"), false}).isEmpty());
}

TEST_F(ChatTranscriptTest, WhatASubagentSaysIsNestedUnderItsCall)
{
    ChatToolCall inner = call("i");
    inner.summary = q("ls");
    applyAll({assistant("m", {call("t", "Agent")}), notice("p", "do it", q("t")),
              assistant("n", {text("a"), inner}, q("t"))});

    ASSERT_EQ(m_transcript.messages.size(), 1u);
    ASSERT_EQ(agent().messages.size(), 2u);
    EXPECT_EQ(agent().messages[0].role, ChatRole::System);
    EXPECT_EQ(agent().messages[1].blocks, (QList<ChatBlock>{text("a", "n-0"), ChatBlock(inner)}));
    EXPECT_EQ(agent().activity, q("ls"));

    ToolResults results = result("i", "out");
    results.parent = q("t");
    const auto change = apply(results);
    EXPECT_EQ(std::get<ChatToolCall>(agent().messages[1].blocks[1]).resultText, q("out"));
    EXPECT_TRUE(change.subagents);
    EXPECT_TRUE(change.messages.empty());
}

TEST_F(ChatTranscriptTest, ASubagentThatSpeaksFirstIsMade)
{
    const auto change = apply(assistant("n", {text("a")}, q("t")));

    EXPECT_TRUE(change.subagents);
    EXPECT_EQ(agent().description, q("Subagent"));
    EXPECT_EQ(agent().messages.size(), 1u);
    EXPECT_EQ(agent().activity, std::nullopt);
}

TEST_F(ChatTranscriptTest, AnActivityThatIsKnownStays)
{
    ChatToolCall inner = call("i");
    inner.summary = q("ls");
    applyAll({TaskProgress{q("t"), q("Reading"), {}, {}}, assistant("n", {inner}, q("t"))});
    EXPECT_EQ(agent().activity, q("Reading"));

    apply(TaskEnded{q("t"), false, std::nullopt});
    apply(assistant("o", {inner}, q("t")));
    EXPECT_EQ(agent().activity, std::nullopt);
}

TEST_F(ChatTranscriptTest, ASubagentsSubagentIsItsOwn)
{
    applyAll({assistant("n", {call("i", "Agent")}, q("t"))});

    EXPECT_EQ(m_transcript.subagents.size(), 1u);
    EXPECT_EQ(agent().id, q("t"));
}

// Status

TEST_F(ChatTranscriptTest, InitFillsTheStatus)
{
    EXPECT_TRUE(apply(Initialized{q("2.1"), q("claude-opus-4-7"), q("plan"), q("/p")}).status);
    EXPECT_EQ(m_transcript.status.cliVersion, q("2.1"));
    EXPECT_EQ(m_transcript.status.model, q("claude-opus-4-7"));
    EXPECT_EQ(m_transcript.status.modelName, q("Opus 4.7"));
    EXPECT_EQ(m_transcript.status.permissionMode, q("plan"));
    EXPECT_EQ(m_transcript.status.cwd, q("/p"));

    EXPECT_TRUE(apply(Initialized{}).isEmpty());
    EXPECT_EQ(m_transcript.status.cwd, q("/p"));
}

TEST_F(ChatTranscriptTest, TheFirstNameOfAModelStays)
{
    applyAll({Initialized{{}, q("m1"), {}, {}}, ModelNames{{{q("m1"), q("One")}}},
              ModelNames{{{q("m1"), q("Uno")}, {q("m2"), q("Two")}}}});

    EXPECT_EQ(m_transcript.status.modelName, q("One"));
    m_transcript.setModel(q("m2"));
    EXPECT_EQ(m_transcript.status.model, q("m2"));
    EXPECT_EQ(m_transcript.status.modelName, q("Two"));
}

TEST_F(ChatTranscriptTest, NamesBeforeTheModelServeIt)
{
    EXPECT_FALSE(apply(ModelNames{{{q("m1"), q("One")}}}).status);
    apply(Initialized{{}, q("m1"), {}, {}});

    EXPECT_EQ(m_transcript.status.modelName, q("One"));
}

TEST_F(ChatTranscriptTest, CapabilitiesAndModeChangesFillTheStatus)
{
    Capabilities capabilities;
    capabilities.capabilities.version = q("2.2");
    apply(capabilities);
    EXPECT_EQ(m_transcript.status.cliVersion, q("2.2"));
    EXPECT_EQ(m_transcript.status.permissionMode, std::nullopt);

    capabilities.capabilities.permissionMode = q("default");
    apply(capabilities);
    EXPECT_EQ(m_transcript.status.permissionMode, q("default"));
    apply(PermissionModeChanged{q("plan")});
    EXPECT_EQ(m_transcript.status.permissionMode, q("plan"));
    EXPECT_TRUE(apply(PermissionModeChanged{q("plan")}).isEmpty());
}

TEST_F(ChatTranscriptTest, WhatTheSessionHandlesHasNoEffect)
{
    for (const ChatEvent& event :
         {ChatEvent(RateLimits{"{}"}), ChatEvent(Question{}), ChatEvent(Permission{}),
          ChatEvent(UnsupportedRequest{}), ChatEvent(Commands{}), ChatEvent(RemoteControl{}),
          ChatEvent(ControlResponse{}), ChatEvent(CancelledRequest{})})
        EXPECT_TRUE(apply(event).isEmpty());
    EXPECT_TRUE(m_transcript.messages.empty());
    EXPECT_EQ(m_transcript.status, ChatSessionInfo());
}

// Results of a turn

TEST_F(ChatTranscriptTest, AResultEndsEveryStream)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}, StreamStart{q("n"), at(2)}});

    EXPECT_EQ(apply(Result{}), rows({0, 1}));
    EXPECT_FALSE(m_transcript.messages[0].isStreaming);
    EXPECT_FALSE(m_transcript.messages[1].isStreaming);
    EXPECT_TRUE(apply(Result{}).isEmpty());
}

TEST_F(ChatTranscriptTest, TheCostOfEarlierProcessesIsAddedToTheCurrentOnes)
{
    m_transcript.earlierCost = 1.10;

    EXPECT_TRUE(apply(Result{{}, 0.40, 100, {}, 0}).status);

    EXPECT_DOUBLE_EQ(*m_transcript.status.costUSD, 1.50);
    EXPECT_DOUBLE_EQ(m_transcript.runCost, 0.40);
    apply(Result{{}, std::nullopt, 50, {}, 0});
    EXPECT_DOUBLE_EQ(*m_transcript.status.costUSD, 1.50);
    EXPECT_EQ(m_transcript.status.totalTokens, 150);
}

TEST_F(ChatTranscriptTest, TheContextWindowIsTheModelsIfItIsTold)
{
    struct Row {
        std::optional<QString> model;
        std::optional<qint64> before;
        QMap<QString, qint64> windows;
        std::optional<qint64> after;
    };
    const Row table[] = {
        {q("m"), 5, {{q("m"), 100}, {q("a"), 900}}, 100},
        {q("m[1m]"), 5, {{q("m"), 100}, {q("a"), 900}}, 100},
        {q("m[1m]"), 5, {{q("m"), 100}, {q("m[1m]"), 200}}, 200},
        {q("mno"), {}, {{q("m"), 100}, {q("mn"), 200}}, 100},
        {q("x"), {}, {{q("m"), 100}, {q("a"), 900}, {q("z"), 20}}, 900},
        {q("x"), 5, {{q("m"), 100}}, 5},
        {{}, {}, {{q("m"), 100}, {q("n"), 50}}, 100},
        {{}, 5, {{q("m"), 100}}, 5},
        {{}, {}, {}, {}},
        {q("m"), 5, {}, 5},
    };
    for (const Row& row : table) {
        ChatTranscript transcript;
        transcript.status.model = row.model;
        transcript.status.contextWindow = row.before;

        transcript.apply(Result{{}, {}, {}, row.windows, 0});

        EXPECT_EQ(transcript.status.contextWindow, row.after) << (&row - table);
    }
}

// The value

TEST_F(ChatTranscriptTest, HistoryStandsInFrontAndShowsNothingTwice)
{
    applyAll({assistant("b", {text("live")}), user("c"), TaskProgress{q("s"), q("live"), {}, {}}});
    ChatTranscript history;
    history.apply(user("a"));
    history.apply(assistant("b", {text("old")}));
    history.apply(TaskProgress{q("r"), q("old"), {}, {}});
    history.apply(TaskProgress{q("s"), q("old"), {}, {}});
    history.status.model = q("old");

    const auto change = m_transcript.prepend(history);

    EXPECT_TRUE(change.messageList);
    EXPECT_TRUE(change.subagents);
    ASSERT_EQ(m_transcript.messages.size(), 3u);
    EXPECT_EQ(m_transcript.messages[0].id, q("a"));
    EXPECT_EQ(blocks(1), (QList<ChatBlock>{text("live", "b-0")}));
    EXPECT_EQ(m_transcript.messages[2].id, q("c"));
    ASSERT_EQ(m_transcript.subagents.size(), 2u);
    EXPECT_EQ(agent(0).id, q("r"));
    EXPECT_EQ(agent(1).activity, q("live"));
    EXPECT_EQ(m_transcript.status.model, std::nullopt);
}

TEST_F(ChatTranscriptTest, AfterHistoryEverythingIsStillFound)
{
    applyAll({StreamStart{q("c"), at(1)}, StreamBlock{0, text("x")}});
    ChatTranscript history;
    history.apply(assistant("a", {call("t")}));
    history.apply(assistant("b", {text("old")}));
    m_transcript.prepend(history);

    EXPECT_EQ(apply(result("t", "out")), rows({0}));
    EXPECT_EQ(apply(assistant("b", {text("new")})), rows({1}));
    EXPECT_EQ(blocks(1), (QList<ChatBlock>{text("old", "b-0"), text("new", "b-1")}));
    EXPECT_EQ(apply(StreamDelta{0, q("y")}), rows({2}));
    EXPECT_EQ(blocks(2), (QList<ChatBlock>{text("xy", "c-0")}));
}

TEST_F(ChatTranscriptTest, EmptyHistoryChangesNothing)
{
    apply(user("a"));

    EXPECT_TRUE(m_transcript.prepend({}).isEmpty());
}

TEST_F(ChatTranscriptTest, ASubagentGoesOnAfterHistory)
{
    apply(TaskProgress{q("t"), q("Reading"), {}, {}});
    ChatTranscript history;
    history.apply(assistant("n", {text("a")}, q("t")));
    m_transcript.prepend(history);

    apply(assistant("o", {text("b")}, q("t")));

    ASSERT_EQ(agent().messages.size(), 2u);
    EXPECT_EQ(agent().messages[0].id, q("n"));
    EXPECT_EQ(agent().messages[1].id, q("o"));
}

TEST_F(ChatTranscriptTest, ACopyLivesItsOwnLife)
{
    applyAll({StreamStart{q("m"), at(1)}, StreamBlock{0, text("a")}, StreamBlock{1, call("t")},
              assistant("n", {text("a")}, q("s"))});
    ChatTranscript copy = m_transcript;

    applyAll({StreamDelta{0, q("b")}, result("t", "out"), assistant("o", {text("b")}, q("s"))});

    EXPECT_EQ(copy.messages[0].blocks, (QList<ChatBlock>{text("a", "m-0"), ChatBlock(call("t"))}));
    EXPECT_EQ(copy.subagents[0].messages.size(), 1u);
    copy.apply(assistant("p", {text("c")}, q("s")));
    ASSERT_EQ(copy.subagents[0].messages.size(), 2u);
    EXPECT_EQ(copy.subagents[0].messages[1].id, q("p"));
    EXPECT_EQ(agent().messages[1].id, q("o"));
    copy.apply(StreamDelta{0, q("c")});
    EXPECT_EQ(blocks()[0], text("ab", "m-0"));
}

TEST(ChatTranscriptChange, ChangesAddUp)
{
    ChatTranscriptChange change;
    EXPECT_TRUE(change.isEmpty());
    change.touch(5);
    change.touch(2);
    change.touch(5);
    ChatTranscriptChange other;
    other.touch(3);
    other.touch(2);
    other.status = true;

    change.merge(other);

    EXPECT_EQ(change.messages, (std::vector<std::size_t>{2, 3, 5}));
    EXPECT_TRUE(change.status);
    EXPECT_FALSE(change.subagents);
    EXPECT_FALSE(change.messageList);
    EXPECT_FALSE(change.isEmpty());
}
