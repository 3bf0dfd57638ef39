// What lines mean.

#include "Tests/Support/ChatLines.h"

#include <QUuid>

using namespace Bralto;
using namespace Bralto::ChatEvents;
using ChatLines::live;
using ChatLines::only;
using ChatLines::stored;

namespace {

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

QDateTime utc(const char* text)
{
    return QDateTime::fromString(q(text), Qt::ISODateWithMs);
}

/// A line with one message of the user.
std::string userLine(const std::string& content, const std::string& more = {})
{
    return R"({"type":"user","uuid":"u1","timestamp":"2026-11-21T00:43:11.544Z",)" + more +
           R"("message":{"role":"user","content":)" + content + "}}";
}

std::string userText(const std::string& text)
{
    return userLine('"' + text + '"');
}

std::string assistantLine(const std::string& content, const std::string& more = {})
{
    return R"({"type":"assistant","timestamp":"2026-11-21T00:43:11.544Z",)" + more +
           R"("message":{"id":"msg_1","content":)" + content + "}}";
}

ChatMessage userMessage(const QString& text)
{
    return {QStringLiteral("u1"),
            ChatRole::User,
            {ChatTextBlock{QStringLiteral("u1-text"), text}},
            utc("2026-11-21T00:43:11.544Z"),
            false};
}

} // namespace

// Any line

TEST(ChatProtocol, WhatItDoesNotKnowYieldsNothing)
{
    for (const char* line :
         {R"({})",
          R"({"type":7})",
          R"({"type":"keep_alive"})",
          R"({"type":"conversation_reset"})",
          R"({"type":"system"})",
          R"({"type":"system","subtype":"thinking_tokens"})",
          R"({"type":"system","subtype":"task_updated","tool_use_id":"t"})",
          R"({"type":"system","subtype":"background_tasks_changed","tasks":[]})",
          R"({"type":"stream_event"})",
          R"({"type":"stream_event","event":[]})",
          R"({"type":"stream_event","event":{"type":"ping"}})",
          R"({"type":"stream_event","event":{"type":"content_block_stop","index":0}})",
          R"({"type":"stream_event","event":{"type":"message_start"}})",
          R"({"type":"stream_event","event":{"type":"message_start","message":{"id":5}}})",
          R"({"type":"assistant"})",
          R"({"type":"assistant","message":{"content":[]}})",
          R"({"type":"user"})",
          R"({"type":"user","message":{}})",
          R"({"type":"user","message":{"content":7}})",
          R"({"type":"user","message":{"content":""}})",
          R"({"type":"user","message":{"content":[{"type":"text","text":""}]}})",
          R"({"type":"control_request","request":{"subtype":"can_use_tool"}})",
          R"({"type":"control_request","request_id":"r"})",
          R"({"type":"control_response"})",
          R"({"type":"control_cancel_request"})",
          R"({"type":"rate_limit_event"})",
          R"({"type":"rate_limit_event","rate_limit_info":"x"})"}) {
        SCOPED_TRACE(line);
        EXPECT_TRUE(live(line).empty());
    }
}

TEST(ChatProtocol, ATimestampIsReadWithAndWithoutFractions)
{
    const std::pair<const char*, QDateTime> rows[] = {
        {"2026-11-21T00:43:11.513Z", utc("2026-11-21T00:43:11.513Z")},
        {"2026-11-21T00:43:11Z", utc("2026-11-21T00:43:11.000Z")},
        {"2026-11-21T01:43:11.5+01:00", utc("2026-11-21T00:43:11.500Z")},
        {"2026-11-20T19:13:11-0530", utc("2026-11-21T00:43:11.000Z")},
        {"2026-11-21T00:43:11.123456789Z", utc("2026-11-21T00:43:11.123Z")},
        {"2024-02-29T23:59:59Z", utc("2024-02-29T23:59:59.000Z")},
    };
    for (const auto& [text, date] : rows) {
        SCOPED_TRACE(text);
        const auto line = std::string(R"({"type":"assistant","timestamp":")") + text +
                          R"(","message":{"id":"m"}})";
        EXPECT_EQ(only<Assistant>(live(line)).date, date);
    }
}

TEST(ChatProtocol, ALineWithoutAReadableTimestampIsFromNow)
{
    for (const char* text : {"\"\"", "\"2026-11-21\"", "\"2026-11-21T00:43:11\"", "\"yesterday\"",
                             "\"2026-02-30T00:00:00Z\"", "\"2026-11-21T24:00:00Z\"", "1795000000",
                             "\"2026-11-21T00:43:11.Z\"", "\"2026-11-21T00:43:11Zx\"", "null"}) {
        SCOPED_TRACE(text);
        const auto line =
            std::string(R"({"type":"assistant","timestamp":)") + text + R"(,"message":{"id":"m"}})";
        EXPECT_EQ(only<Assistant>(live(line)).date, ChatLines::Now);
    }
}

// system

TEST(ChatProtocol, InitTellsWhatRuns)
{
    EXPECT_EQ(only<Initialized>(live(
                  R"({"type":"system","subtype":"init","claude_code_version":"2.1","model":"m",)"
                  R"("permissionMode":"plan","cwd":"/p"})")),
              (Initialized{q("2.1"), q("m"), q("plan"), q("/p")}));
    EXPECT_EQ(only<Initialized>(live(R"({"type":"system","subtype":"init","model":5})")),
              Initialized());
}

TEST(ChatProtocol, StatusCountsOnlyWithAPermissionMode)
{
    EXPECT_EQ(only<PermissionModeChanged>(live(
                  R"({"type":"system","subtype":"status","status":null,"permissionMode":"plan"})")),
              (PermissionModeChanged{q("plan")}));
    EXPECT_TRUE(live(R"({"type":"system","subtype":"status","status":"requesting"})").empty());
}

TEST(ChatProtocol, BridgeStateTellsOfRemoteControl)
{
    EXPECT_EQ(only<RemoteControl>(live(
                  R"({"type":"system","subtype":"bridge_state","state":"failed","detail":"no"})")),
              (RemoteControl{q("failed"), q("no")}));
    EXPECT_EQ(
        only<RemoteControl>(live(R"({"type":"system","subtype":"bridge_state","state":"ready"})")),
        (RemoteControl{q("ready"), std::nullopt}));
    EXPECT_TRUE(live(R"({"type":"system","subtype":"bridge_state","detail":"no"})").empty());
}

TEST(ChatProtocol, ChangedCommandsGoThroughTheCatalogue)
{
    const auto commands = only<Commands>(live(
        R"({"type":"system","subtype":"commands_changed","commands":[{"name":"mine"},{"name":"exit"}]})"));

    ASSERT_EQ(commands.commands.size(), ChatCommands::fallback().size() + 1);
    EXPECT_TRUE(live(R"({"type":"system","subtype":"commands_changed"})").empty());
    EXPECT_EQ(
        only<Commands>(live(R"({"type":"system","subtype":"commands_changed","commands":[]})"))
            .commands,
        ChatCommands::fallback());
}

TEST(ChatProtocol, TasksNeedTheCallThatStartedThem)
{
    for (const char* subtype : {"task_started", "task_progress", "task_notification"}) {
        SCOPED_TRACE(subtype);
        EXPECT_TRUE(live(std::string(R"({"type":"system","subtype":")") + subtype + "\"}").empty());
    }
}

TEST(ChatProtocol, ATaskTellsItsStartProgressAndEnd)
{
    EXPECT_EQ(only<TaskStarted>(live(
                  R"({"type":"system","subtype":"task_started","tool_use_id":"t","task_id":"a",)"
                  R"("description":"d","subagent_type":"s","is_backgrounded":true})")),
              (TaskStarted{q("t"), q("a"), q("d"), q("s"), true}));
    EXPECT_EQ(
        only<TaskStarted>(live(R"({"type":"system","subtype":"task_started","tool_use_id":"t"})")),
        (TaskStarted{q("t"), {}, {}, {}, false}));
    EXPECT_EQ(only<TaskProgress>(
                  live(R"({"type":"system","subtype":"task_progress","tool_use_id":"t",)"
                       R"("description":"d","usage":{"tool_uses":2,"total_tokens":300}})")),
              (TaskProgress{q("t"), q("d"), 2, 300}));
    EXPECT_EQ(only<TaskProgress>(
                  live(R"({"type":"system","subtype":"task_progress","tool_use_id":"t"})")),
              (TaskProgress{q("t"), {}, {}, {}}));
    EXPECT_EQ(
        only<TaskEnded>(live(
            R"({"type":"system","subtype":"task_notification","tool_use_id":"t","summary":"s"})")),
        (TaskEnded{q("t"), false, q("s")}));
}

TEST(ChatProtocol, ATaskFailedUnlessItsStatusIsAGoodOne)
{
    const std::pair<const char*, bool> rows[] = {
        {"\"completed\"", false}, {"\"success\"", false}, {"\"done\"", false}, {"7", false},
        {"\"stopped\"", true},    {"\"failed\"", true},   {"\"\"", true},
    };
    for (const auto& [status, failed] : rows) {
        SCOPED_TRACE(status);
        const auto line =
            std::string(R"({"type":"system","subtype":"task_notification","tool_use_id":"t",)"
                        R"("status":)") +
            status + "}";
        EXPECT_EQ(only<TaskEnded>(live(line)).failed, failed);
    }
}

// rate_limit_event

TEST(ChatProtocol, RateLimitsAreHandedOnAsTheyCame)
{
    EXPECT_EQ(
        only<RateLimits>(live(
            R"({"type":"rate_limit_event","rate_limit_info":{"status":"allowed","resetsAt":5}})")),
        (RateLimits{R"({"status":"allowed","resetsAt":5})"}));
}

// stream_event

TEST(ChatProtocol, AStreamStartsWithItsMessage)
{
    EXPECT_EQ(
        only<StreamStart>(live(
            R"({"type":"stream_event","event":{"type":"message_start","message":{"id":"m"}}})")),
        (StreamStart{q("m"), ChatLines::Now}));
}

TEST(ChatProtocol, AStreamEventOfASubagentIsDropped)
{
    EXPECT_TRUE(
        live(R"({"type":"stream_event","parent_tool_use_id":"t","event":{"type":"message_stop"}})")
            .empty());
    EXPECT_EQ(
        only<StreamStop>(live(
            R"({"type":"stream_event","parent_tool_use_id":null,"event":{"type":"message_stop"}})")),
        StreamStop());
}

TEST(ChatProtocol, AStreamedBlockStartsByItsKind)
{
    const auto start = [](const std::string& block) {
        return live(R"({"type":"stream_event","event":{"type":"content_block_start","index":2,)"
                    R"("content_block":)" +
                    block + "}}");
    };

    EXPECT_EQ(only<StreamBlock>(start(R"({"type":"text","text":"a"})")),
              (StreamBlock{2, ChatTextBlock{{}, q("a")}}));
    EXPECT_EQ(only<StreamBlock>(start(R"({"type":"text"})")), (StreamBlock{2, ChatTextBlock{}}));
    EXPECT_EQ(only<StreamBlock>(start(R"({"type":"thinking","thinking":"a"})")),
              (StreamBlock{2, ChatThinkingBlock{{}, q("a")}}));

    ChatToolCall call;
    call.id = q("t");
    call.name = q("Bash");
    EXPECT_EQ(
        only<StreamBlock>(start(R"({"type":"tool_use","id":"t","name":"Bash","input":{"a":1}})")),
        (StreamBlock{2, call}));
    call.name = q("Tool");
    EXPECT_EQ(only<StreamBlock>(start(R"({"type":"server_tool_use","id":"t"})")),
              (StreamBlock{2, call}));

    EXPECT_TRUE(start(R"({"type":"tool_use","name":"Bash"})").empty());
    EXPECT_TRUE(start(R"({"type":"redacted_thinking"})").empty());
    EXPECT_TRUE(start(R"({"type":"image"})").empty());
    EXPECT_TRUE(start("7").empty());
}

TEST(ChatProtocol, AStreamedBlockNeedsItsIndex)
{
    EXPECT_TRUE(live(R"({"type":"stream_event","event":{"type":"content_block_start",)"
                     R"("content_block":{"type":"text"}}})")
                    .empty());
    EXPECT_TRUE(live(R"({"type":"stream_event","event":{"type":"content_block_start","index":0.0,)"
                     R"("content_block":{"type":"text"}}})")
                    .empty());
}

TEST(ChatProtocol, ADeltaAppendsItsFirstText)
{
    const auto delta = [](const std::string& content) {
        return live(R"({"type":"stream_event","event":{"type":"content_block_delta","index":1,)"
                    R"("delta":)" +
                    content + "}}");
    };

    EXPECT_EQ(only<StreamDelta>(delta(R"({"text":"a"})")), (StreamDelta{1, q("a")}));
    EXPECT_EQ(only<StreamDelta>(delta(R"({"thinking":"b"})")), (StreamDelta{1, q("b")}));
    EXPECT_EQ(only<StreamDelta>(delta(R"({"partial_json":"c"})")), (StreamDelta{1, q("c")}));
    EXPECT_EQ(only<StreamDelta>(delta(R"({"partial_json":"c","text":"a"})")),
              (StreamDelta{1, q("a")}));
    EXPECT_EQ(only<StreamDelta>(delta(R"({"text":null,"thinking":"b"})")),
              (StreamDelta{1, q("b")}));
    EXPECT_TRUE(delta(R"({"partial_json":""})").empty());
    EXPECT_TRUE(delta(R"({"text":"","thinking":"b"})").empty());
    EXPECT_TRUE(delta(R"({"signature":"s"})").empty());
    EXPECT_TRUE(delta("[]").empty());
}

// assistant

TEST(ChatProtocol, AnAssistantLineGivesItsBlocksWithFallbackIds)
{
    const auto event = only<Assistant>(live(assistantLine(
        R"([{"type":"text","text":"a"},{"type":"unknown"},{"type":"thinking","thinking":"b"},)"
        R"({"type":"redacted_thinking","data":"x"},{"type":"text"}])")));

    EXPECT_EQ(event.messageId, q("msg_1"));
    EXPECT_EQ(event.date, utc("2026-11-21T00:43:11.544Z"));
    EXPECT_EQ(event.parent, std::nullopt);
    EXPECT_EQ(event.contextTokens, std::nullopt);
    EXPECT_EQ(event.blocks, (QList<ChatBlock>{ChatTextBlock{q("msg_1-0"), q("a")},
                                              ChatThinkingBlock{q("msg_1-2"), q("b")},
                                              ChatThinkingBlock{q("msg_1-3"), QString()},
                                              ChatTextBlock{q("msg_1-4"), QString()}}));
}

TEST(ChatProtocol, AnAssistantLineOfASubagentNamesItsParent)
{
    EXPECT_EQ(only<Assistant>(live(assistantLine("[]", R"("parent_tool_use_id":"t",)"))).parent,
              q("t"));
    EXPECT_EQ(only<Assistant>(live(assistantLine("[]", R"("parent_tool_use_id":7,)"))).parent,
              std::nullopt);
}

TEST(ChatProtocol, ASidechainCountsOnTheLiveStreamOnly)
{
    EXPECT_TRUE(stored(assistantLine("[]", R"("isSidechain":true,)")).empty());
    EXPECT_EQ(live(assistantLine("[]", R"("isSidechain":true,)")).size(), 1u);
    EXPECT_TRUE(stored(userLine("\"x\"", R"("isSidechain":true,)")).empty());
    EXPECT_TRUE(stored(userLine("\"x\"", R"("isMeta":true,)")).empty());
    EXPECT_EQ(live(userLine("\"x\"", R"("isMeta":true,)")).size(), 1u);
    EXPECT_EQ(stored(userLine("\"x\"", R"("isSidechain":false,"isMeta":false,)")).size(), 1u);
}

// user

TEST(ChatProtocol, ALiveUserLineOfToolResultsYieldsThemOnly)
{
    const auto event = only<ToolResults>(live(userLine(
        R"([{"type":"tool_result","tool_use_id":"t","content":"out","is_error":true},)"
        R"({"type":"tool_result","content":"lost"},{"type":"tool_result","tool_use_id":"v"}])")));

    EXPECT_EQ(event, (ToolResults{{ChatToolResult{q("t"), q("out"), {}, true, false},
                                   ChatToolResult{q("v"), {}, {}, false, false}},
                                  std::nullopt}));
}

TEST(ChatProtocol, AToolResultJoinsItsTextsAndCollectsItsPictures)
{
    const auto event = only<ToolResults>(live(userLine(
        R"([{"type":"tool_result","tool_use_id":"t","content":[{"type":"text","text":"a"},)"
        R"({"type":"text","text":""},{"type":"image","source":{"type":"url","url":"http://x/y"}},)"
        R"({"type":"text","text":"b"},{"type":"other","text":"c"}]},)"
        R"({"type":"tool_result","tool_use_id":"v","content":[{"type":"text","text":""}]}])")));

    ASSERT_EQ(event.results.size(), 2);
    EXPECT_EQ(event.results[0].text, q("a\nb"));
    EXPECT_EQ(event.results[0].images, (QList<ChatImage>{{{}, QUrl(q("http://x/y")), {}}}));
    EXPECT_EQ(event.results[1].text, std::nullopt);
}

TEST(ChatProtocol, AResultIsAsyncByTheObjectBesideTheMessage)
{
    const std::string content = R"([{"type":"tool_result","tool_use_id":"t","content":"x"}])";
    const std::pair<const char*, bool> rows[] = {
        {R"({"isAsync":true})", true},    {R"({"isAsync":false})", false}, {R"({})", false},
        {R"([{"isAsync":true}])", false}, {R"("Error: no")", false},
    };
    for (const auto& [result, isAsync] : rows) {
        SCOPED_TRACE(result);
        const auto line = userLine(content, std::string(R"("tool_use_result":)") + result + ",");
        EXPECT_EQ(only<ToolResults>(live(line)).results.first().isAsync, isAsync);
    }
}

TEST(ChatProtocol, ResultsComeBeforeTheTextOfTheirLine)
{
    const auto events = stored(
        userLine(R"([{"type":"text","text":"hello"},{"type":"tool_result","tool_use_id":"t"}])"));

    ASSERT_EQ(events.size(), 2u);
    EXPECT_TRUE(std::holds_alternative<ToolResults>(events[0]));
    EXPECT_EQ(std::get<User>(events[1]).message, userMessage(q("hello")));
}

TEST(ChatProtocol, LiveTextIsANoticeStoredTextIsTheUsers)
{
    EXPECT_EQ(only<Notice>(live(userText("hello"))),
              (Notice{q("u1"), q("hello"), utc("2026-11-21T00:43:11.544Z"), std::nullopt}));
    EXPECT_EQ(only<User>(stored(userText("hello"))).message, userMessage(q("hello")));
}

TEST(ChatProtocol, AnInterruptIsANoticeInAStoredFileToo)
{
    EXPECT_EQ(only<Notice>(stored(userText("[Request interrupted by user]"))).text,
              q("[Request interrupted by user]"));
    EXPECT_EQ(only<User>(stored(userText("so [Request interrupted"))).message,
              userMessage(q("so [Request interrupted")));
}

TEST(ChatProtocol, ALineWithoutAnIdGetsANewOne)
{
    const char* const line = R"({"type":"user","message":{"content":"x"}})";
    const auto first = only<Notice>(live(line));
    const auto second = only<Notice>(live(line));

    EXPECT_FALSE(QUuid::fromString(first.id).isNull());
    EXPECT_EQ(first.id, first.id.toUpper());
    EXPECT_EQ(first.id.size(), 36);
    EXPECT_NE(first.id, second.id);
}

TEST(ChatProtocol, SeveralTextsAreJoinedAndPicturesFollow)
{
    const auto message =
        only<User>(
            stored(userLine(
                R"([{"type":"text","text":"a"},)"
                R"({"type":"image","source":{"type":"base64","media_type":"image/png","data":"AQI="}},)"
                R"({"type":"text","text":"b"},{"type":"image","source":{"type":"url","url":"u:x"}},)"
                R"({"type":"image","source":{"type":"file","data":"AQI="}}])")))
            .message;

    EXPECT_EQ(
        message.blocks,
        (QList<ChatBlock>{ChatTextBlock{q("u1-text"), q("a\nb")},
                          ChatImageBlock{q("u1-image-0"), {QByteArray("\1\2"), {}, q("image/png")}},
                          ChatImageBlock{q("u1-image-1"), {{}, QUrl(q("u:x")), {}}}}));
}

TEST(ChatProtocol, APictureAloneIsAMessageWithoutText)
{
    const auto message =
        only<User>(stored(userLine(R"([{"type":"text","text":""},{"type":"text","text":""},)"
                                   R"({"type":"image","source":{"type":"url","url":"u:x"}}])")))
            .message;

    ASSERT_EQ(message.blocks.size(), 1);
    EXPECT_EQ(blockId(message.blocks.first()), q("u1-image-0"));
}

TEST(ChatProtocol, AStoredSlashCommandReadsAsItWasTyped)
{
    const std::pair<const char*, const char*> rows[] = {
        {"<command-name>/review</command-name><command-args> x </command-args>", "/review x"},
        {"<command-name>/context</command-name>\\n   <command-message>context</command-message>\\n "
         "<command-args></command-args>",
         "/context"},
        {"<command-message>m</command-message><command-name> /a </command-name>", "/a"},
        {"<local-command-caveat>c</local-command-caveat><command-name>/b</command-name>", "/b"},
        {"<command-name>open", "<command-name>open"},
    };
    for (const auto& [text, shown] : rows) {
        SCOPED_TRACE(text);
        EXPECT_EQ(only<User>(stored(userText(text))).message, userMessage(q(shown)));
    }
}

TEST(ChatProtocol, TheOutputOfAStoredCommandIsANotice)
{
    EXPECT_EQ(
        only<Notice>(stored(userText("<local-command-stdout> Compacted\\n</local-command-stdout>")))
            .text,
        q("Compacted"));
    EXPECT_TRUE(stored(userText("<local-command-stdout> \\n </local-command-stdout>")).empty());
}

TEST(ChatProtocol, StoredCaveatsAndRemindersShowNothing)
{
    EXPECT_TRUE(stored(userText("<local-command-caveat>x</local-command-caveat>")).empty());
    EXPECT_TRUE(stored(userText("<system-reminder>x</system-reminder>")).empty());
    EXPECT_EQ(stored(userText(" <system-reminder>x")).size(), 1u);
}

TEST(ChatProtocol, ALiveNoticeKeepsItsTags)
{
    EXPECT_EQ(only<Notice>(live(userText("<local-command-stdout>Set model"))).text,
              q("<local-command-stdout>Set model"));
    EXPECT_EQ(only<Notice>(live(userText("<system-reminder>x"))).text, q("<system-reminder>x"));
}

// control_request

TEST(ChatProtocol, ARequestForAToolIsAPermission)
{
    EXPECT_EQ(
        only<Permission>(live(
            R"({"type":"control_request","request_id":"r","request":{"subtype":"can_use_tool",)"
            R"("tool_name":"Bash","input":{"z":1,"command":"ls"}}})")),
        (Permission{q("r"), R"({"z":1,"command":"ls"})", q("Bash")}));
    EXPECT_EQ(
        only<Permission>(live(
            R"({"type":"control_request","request_id":"r","request":{"subtype":"can_use_tool"}})")),
        (Permission{q("r"), "{}", q("Tool")}));
}

TEST(ChatProtocol, AskingTheUserIsAQuestion)
{
    const auto event = only<Question>(
        live(R"({"type":"control_request","request_id":"r","request":{"subtype":"can_use_tool",)"
             R"("tool_name":"AskUserQuestion","tool_use_id":"t","input":{"questions":[)"
             R"({"header":"H","question":"Which?","multiSelect":true,)"
             R"("options":[{"label":"A","description":"a"},{"label":"B"},{},7]},{}]}}})"));

    EXPECT_EQ(event.requestId, q("r"));
    EXPECT_TRUE(event.input.startsWith(R"({"questions":[)"));
    ChatQuestion expected;
    expected.id = q("r");
    expected.toolUseId = q("t");
    expected.items = {{q("H"),
                       q("Which?"),
                       {{q("A"), q("a")}, {q("B"), std::nullopt}, {QString(), std::nullopt}},
                       true},
                      {std::nullopt, QString(), {}, false}};
    EXPECT_EQ(event.question, expected);
}

TEST(ChatProtocol, AQuestionWithoutInputHasNoItems)
{
    const auto event = only<Question>(
        live(R"({"type":"control_request","request_id":"r","request":{"subtype":"can_use_tool",)"
             R"("tool_name":"AskUserQuestion"}})"));

    EXPECT_TRUE(event.question.items.isEmpty());
    EXPECT_EQ(event.input, "{}");
}

TEST(ChatProtocol, AnyOtherRequestIsUnsupported)
{
    EXPECT_EQ(only<UnsupportedRequest>(live(
                  R"({"type":"control_request","request_id":"r","request":{"subtype":"hook"}})")),
              (UnsupportedRequest{q("r")}));
    EXPECT_EQ(only<UnsupportedRequest>(
                  live(R"({"type":"control_request","request_id":"r","request":{}})")),
              (UnsupportedRequest{q("r")}));
}

TEST(ChatProtocol, TheAgentMayWithdrawARequest)
{
    EXPECT_EQ(only<CancelledRequest>(live(R"({"type":"control_cancel_request","request_id":"r"})")),
              (CancelledRequest{q("r")}));
}

// control_response

TEST(ChatProtocol, AReplyHandsItsPayloadOn)
{
    EXPECT_EQ(only<ControlResponse>(live(
                  R"({"type":"control_response","response":{"subtype":"success","request_id":"r",)"
                  R"("response":{"mode":"plan"}}})")),
              (ControlResponse{q("r"), QByteArray(R"({"mode":"plan"})"), std::nullopt}));
    EXPECT_EQ(
        only<ControlResponse>(live(
            R"({"type":"control_response","response":{"subtype":"success","request_id":"r"}})")),
        (ControlResponse{q("r"), std::nullopt, std::nullopt}));
    EXPECT_EQ(only<ControlResponse>(live(R"({"type":"control_response","response":{}})")),
              (ControlResponse{QString(), std::nullopt, std::nullopt}));
}

TEST(ChatProtocol, ARefusalAlwaysHasWords)
{
    const std::pair<const char*, const char*> rows[] = {
        {R"("error":"no")", "no"},
        {R"("error":"")", "Claude couldn't do that"},
        {R"("error":7)", "Claude couldn't do that"},
        {R"("response":{"a":1})", "Claude couldn't do that"},
    };
    for (const auto& [field, words] : rows) {
        SCOPED_TRACE(field);
        const auto reply = only<ControlResponse>(live(
            std::string(
                R"({"type":"control_response","response":{"subtype":"error","request_id":"r",)") +
            field + "}}"));
        EXPECT_EQ(reply, (ControlResponse{q("r"), std::nullopt, q(words)}));
    }
}

TEST(ChatProtocol, ModelsWithoutCommandsGiveNamesAndTheReplyOnly)
{
    const auto events = live(
        R"({"type":"control_response","response":{"subtype":"success","request_id":"r","response":)"
        R"({"models":[{"value":"default","resolvedModel":"m0","displayName":"Default"},)"
        R"({"value":"a","resolvedModel":"m1","displayName":"One"},)"
        R"({"value":"b","resolvedModel":"m1","displayName":"Two"},)"
        R"({"resolvedModel":"m2","displayName":"No value"},)"
        R"({"value":"c","resolvedModel":"m3"},{"value":"d","displayName":"D"}]}}})");

    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(std::get<ModelNames>(events[0]),
              (ModelNames{{{q("m1"), q("One")}, {q("m2"), q("No value")}}}));
    EXPECT_TRUE(std::holds_alternative<ControlResponse>(events[1]));
}

TEST(ChatProtocol, CommandsMakeAReplyTheAgentsCapabilities)
{
    const auto events = live(
        R"({"type":"control_response","response":{"subtype":"success","request_id":"r","response":)"
        R"({"commands":[{"name":"mine"}],"models":[{"value":"claude-opus-4-7[1m]"},{},)"
        R"({"value":"v","resolvedModel":"r","displayName":"D","description":"d",)"
        R"("supportedEffortLevels":["low","max"]}],"claude_code_version":"2.1",)"
        R"("current_permission_mode":"plan","account":{"subscriptionType":"max"},)"
        R"("remote_control_available":true,"remote_control_auto_enable":true}}})");

    ASSERT_EQ(events.size(), 3u);
    EXPECT_TRUE(std::holds_alternative<ModelNames>(events[0]));
    const auto& told = std::get<Capabilities>(events[1]).capabilities;
    EXPECT_EQ(told.commands.size(), ChatCommands::fallback().size() + 1);
    EXPECT_EQ(told.models,
              (QList<ChatModelOption>{{q("claude-opus-4-7[1m]"), q("claude-opus-4-7[1m]"),
                                       q("Opus 4.7"), std::nullopt, QStringList()},
                                      {q("v"), q("r"), q("D"), q("d"), {"low", "max"}}}));
    EXPECT_EQ(told.version, q("2.1"));
    EXPECT_EQ(told.permissionMode, q("plan"));
    EXPECT_EQ(told.plan, q("max"));
    EXPECT_TRUE(told.remoteControlAvailable);
    EXPECT_TRUE(told.remoteControlAutoEnable);
    EXPECT_TRUE(std::holds_alternative<ControlResponse>(events[2]));
}

TEST(ChatProtocol, AnOlderAgentTellsLessOfItself)
{
    const auto events =
        live(R"({"type":"control_response","response":{"response":{"commands":7}}})");

    ASSERT_EQ(events.size(), 2u);
    ChatCapabilities expected;
    expected.commands = ChatCommands::fallback();
    EXPECT_EQ(std::get<Capabilities>(events[0]).capabilities, expected);
}

// result

TEST(ChatProtocol, ATurnEndsWithItsFigures)
{
    EXPECT_EQ(only<Result>(
                  live(R"({"type":"result","subtype":"success","is_error":false,"result":"text",)"
                       R"("total_cost_usd":0.25,"queued_turn_count":2,"usage":{"input_tokens":1,)"
                       R"("output_tokens":20,"cache_creation_input_tokens":300,)"
                       R"("cache_read_input_tokens":4000,"service_tier":"x"},"modelUsage":{)"
                       R"("b":{"contextWindow":200},"a":{"contextWindow":100},"c":{},"d":7,)"
                       R"("e":{"contextWindow":1.5}}})")),
              (Result{std::nullopt, 0.25, 4321, {{q("a"), 100}, {q("b"), 200}}, 2}));
}

TEST(ChatProtocol, AResultWithoutFiguresHasNone)
{
    EXPECT_EQ(only<Result>(live(R"({"type":"result"})")),
              (Result{std::nullopt, std::nullopt, std::nullopt, {}, 0}));
    EXPECT_EQ(only<Result>(live(R"({"type":"result","usage":{},"total_cost_usd":1})")),
              (Result{std::nullopt, 1.0, 0, {}, 0}));
}

TEST(ChatProtocol, AFailedTurnSaysWhy)
{
    const std::pair<const char*, std::optional<QString>> rows[] = {
        {R"("subtype":"success","is_error":true,"result":"API Error")", q("API Error")},
        {R"("subtype":"error_max_turns","errors":["a","b"],"result":"r")", q("a\nb")},
        {R"("subtype":"error_max_turns","errors":[],"result":"")", q("error_max_turns")},
        {R"("is_error":true)", q("Claude stopped")},
        {R"("subtype":"","result":"")", q("Claude stopped")},
        {R"("subtype":7)", std::nullopt},
        {R"("subtype":"success","result":"fine","errors":["x"])", std::nullopt},
    };
    for (const auto& [fields, error] : rows) {
        SCOPED_TRACE(fields);
        EXPECT_EQ(only<Result>(live(std::string(R"({"type":"result",)") + fields + "}")).error,
                  error);
    }
}

TEST(ChatProtocol, FiguresThatOverflowStayAtTheirLimit)
{
    const auto result = only<Result>(live(
        R"({"type":"result","usage":{"input_tokens":9223372036854775807,"output_tokens":5}})"));

    EXPECT_EQ(result.tokens, std::numeric_limits<qint64>::max());
}
