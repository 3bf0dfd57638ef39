// Pictures, tool calls, summaries and labels.

#include "Tests/Support/ChatLines.h"

using namespace Bralto;

namespace {

const QString Home = ChatLines::Home;

QString q(const char* text)
{
    return QString::fromUtf8(text);
}

QString summary(const char* name, const std::string& input)
{
    JsonReader reader;
    return ChatProtocol::summary(q(name), reader.object(input), Home);
}

ChatToolCall toolCall(const char* name, const std::string& input)
{
    JsonReader reader;
    return ChatProtocol::toolCall(q("t"), q(name), reader.object(input), Home);
}

std::optional<ChatBlock> block(const std::string& text)
{
    JsonReader reader;
    return ChatProtocol::block(*reader.object(text), q("m-0"), Home);
}

std::optional<ChatImage> image(const std::string& source)
{
    JsonReader reader;
    return ChatProtocol::image(*reader.object(R"({"type":"image","source":)" + source + "}"));
}

std::optional<qint64> contextTokens(const std::string& usage)
{
    JsonReader reader;
    return ChatProtocol::contextTokens(reader.object(usage));
}

} // namespace

TEST(ChatProtocol, EachToolHasItsSummary)
{
    struct Row {
        const char* name;
        const char* input;
        const char* expected;
    };
    const Row rows[] = {
        {"Bash", R"({"command":" ls -l \n","description":"List"})", "ls -l"},
        {"PowerShell", R"({"command":"dir"})", "dir"},
        {"Bash", R"({"command":"  ","description":"List"})", "List"},
        {"Bash", R"({"command":"one\ntwo"})", "one"},
        {"Read", R"({"file_path":"/home/user/a.txt"})", "~/a.txt"},
        {"Write", R"({"content":"x","file_path":"/etc/a"})", "/etc/a"},
        {"Edit", R"({"file_path":"/home/username/a"})", "/home/username/a"},
        {"MultiEdit", R"({"file_path":"/home/user"})", "~"},
        {"NotebookEdit", R"({"notebook_path":"/home/user/n.ipynb"})", "~/n.ipynb"},
        {"Grep", R"({"pattern":"a.b"})", "a.b"},
        {"Grep", R"({"pattern":"a.b","path":"/home/user/src"})", "a.b in ~/src"},
        {"Grep", R"({"path":"/home/user/src"})", "/home/user/src"},
        {"Glob", R"({"path":"/p","pattern":"*.h"})", "*.h"},
        {"WebFetch", R"({"prompt":"p","url":"http://x"})", "http://x"},
        {"WebSearch", R"({"query":"find"})", "find"},
        {"Agent", R"({"description":"Look","subagent_type":"x"})", "Look"},
        {"Task", R"({"prompt":"p","subagent_type":"explorer"})", "explorer"},
        {"Skill", R"({"skill":"s","command":"c"})", "s"},
        {"Skill", R"({"args":"a","command":"c"})", "c"},
        {"TodoWrite", R"({"todos":[{},{},3]})", "3 to-dos"},
        {"TodoWrite", R"({"todos":[]})", "0 to-dos"},
        {"TodoWrite", R"({"note":"n"})", "n"},
        {"AskUserQuestion", R"({"questions":[{"question":"Which?"},{"question":"Who?"}]})",
         "Which?"},
        {"AskUserQuestion", R"({"questions":[]})", ""},
        {"mcp__x__y", R"({"b":"second","a":"first"})", "first"},
        {"mcp__x__y", R"({"a":7,"b":"  ","c":" third "})", "third"},
        {"mcp__x__y", R"({})", ""},
        {"mcp__x__y", R"({"a":{"b":"c"}})", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " " + row.input);
        EXPECT_EQ(summary(row.name, row.input), q(row.expected));
    }
}

TEST(ChatProtocol, ACallWithoutInputHasNoSummary)
{
    EXPECT_EQ(ChatProtocol::summary(q("Bash"), std::nullopt, Home), QString());
}

TEST(ChatProtocol, TheSummaryOfAnUnknownToolPassesLongTextsOver)
{
    const std::string longest(199, 'x');

    EXPECT_EQ(summary("Other", R"({"a":")" + std::string(200, 'x') + R"(","b":"one\ntwo"})"),
              q("one"));
    EXPECT_EQ(summary("Other", R"({"a":")" + longest + R"("})"), QString::fromStdString(longest));
    EXPECT_EQ(summary("Other", R"({"a":")" + std::string(200, 'x') + R"("})"), QString());
}

TEST(ChatProtocol, ASummaryCountsWhatAReaderCallsCharacters)
{
    QString flags;
    for (int count = 0; count < 199; ++count)
        flags += q("👩‍🚀");

    EXPECT_EQ(summary("Other", (R"({"a":")" + flags + "\"}").toStdString()), flags);
    EXPECT_EQ(summary("Other", (R"({"a":")" + flags + q("é\"}")).toStdString()), QString());
}

TEST(ChatProtocol, AnAbsentSummaryTakesTheFirstKeyInAscendingOrder)
{
    EXPECT_EQ(summary("Other", R"({"é":"last","b":"second","B":"first"})"), q("first"));
}

TEST(ChatProtocol, AToolCallShowsItsInputIndentedAndSorted)
{
    const auto call = toolCall("Bash", R"({"timeout":5,"command":"ls"})");

    EXPECT_EQ(call.inputJSON, q("{\n  \"command\": \"ls\",\n  \"timeout\": 5\n}"));
    EXPECT_EQ(call.id, q("t"));
    EXPECT_EQ(call.name, q("Bash"));
    EXPECT_EQ(call.summary, q("ls"));
    EXPECT_EQ(call.status, ChatToolStatus::Running);
    EXPECT_EQ(call.resultText, std::nullopt);
    EXPECT_EQ(call.filePath, std::nullopt);
    EXPECT_TRUE(call.edits.isEmpty());
}

TEST(ChatProtocol, AToolCallWithoutInputIsAnEmptyObject)
{
    const auto call = ChatProtocol::toolCall(q("t"), q("ExitPlanMode"), std::nullopt, Home);

    EXPECT_EQ(call.inputJSON, q("{}"));
    EXPECT_EQ(call.summary, QString());
}

TEST(ChatProtocol, AToolCallKnowsItsFile)
{
    EXPECT_EQ(toolCall("Read", R"({"file_path":"/a","notebook_path":"/b"})").filePath, q("/a"));
    EXPECT_EQ(toolCall("NotebookEdit", R"({"notebook_path":"/b"})").filePath, q("/b"));
    EXPECT_EQ(toolCall("Read", R"({"file_path":7})").filePath, std::nullopt);
}

TEST(ChatProtocol, AToolCallKnowsItsEdits)
{
    EXPECT_EQ(toolCall("Edit", R"({"old_string":"a","new_string":"b"})").edits,
              (QList<ChatEdit>{{q("a"), q("b")}}));
    EXPECT_TRUE(toolCall("Edit", R"({"old_string":"a"})").edits.isEmpty());
    EXPECT_EQ(toolCall("MultiEdit", R"({"edits":[{"old_string":"a","new_string":"b"},)"
                                    R"({"old_string":"c"},7,{"old_string":"","new_string":"d"}]})")
                  .edits,
              (QList<ChatEdit>{{q("a"), q("b")}, {QString(), q("d")}}));
    EXPECT_EQ(toolCall("Write", R"({"content":"all"})").edits,
              (QList<ChatEdit>{{QString(), q("all")}}));
    EXPECT_TRUE(toolCall("Write", R"({})").edits.isEmpty());
    EXPECT_TRUE(toolCall("Bash", R"({"old_string":"a","new_string":"b"})").edits.isEmpty());
}

TEST(ChatProtocol, ABlockIsReadByItsType)
{
    EXPECT_EQ(block(R"({"type":"text","text":"a"})"), (ChatBlock(ChatTextBlock{q("m-0"), q("a")})));
    EXPECT_EQ(block(R"({"type":"thinking"})"), (ChatBlock(ChatThinkingBlock{q("m-0"), QString()})));
    EXPECT_EQ(block(R"({"type":"redacted_thinking","thinking":"secret"})"),
              (ChatBlock(ChatThinkingBlock{q("m-0"), QString()})));
    EXPECT_EQ(blockId(*block(R"({"type":"tool_use","id":"t1","name":"Bash","input":{}})")),
              q("t1"));
    EXPECT_EQ(std::get<ChatToolCall>(*block(R"({"type":"server_tool_use","id":"t2"})")).name,
              q("Tool"));
    EXPECT_EQ(block(R"({"type":"tool_use","id":""})"), std::nullopt);
    EXPECT_EQ(block(R"({"type":"tool_use"})"), std::nullopt);
    EXPECT_EQ(block(R"({"type":"web_search_tool_result"})"), std::nullopt);
    EXPECT_EQ(block(R"({})"), std::nullopt);
}

TEST(ChatProtocol, APictureIsBytesOrAnAddress)
{
    EXPECT_EQ(image(R"({"type":"base64","media_type":"image/png","data":"AAEC"})"),
              (ChatImage{QByteArray("\0\1\2", 3), std::nullopt, q("image/png")}));
    EXPECT_EQ(image(R"({"type":"base64","data":"AAEC"})"),
              (ChatImage{QByteArray("\0\1\2", 3), std::nullopt, std::nullopt}));
    EXPECT_EQ(image(R"({"type":"url","url":"https://x.example/a.png","media_type":"image/png"})"),
              (ChatImage{std::nullopt, QUrl(q("https://x.example/a.png")), std::nullopt}));
}

TEST(ChatProtocol, APictureThatCantBeReadVanishes)
{
    for (const char* source :
         {R"({"type":"base64"})", R"({"type":"base64","data":"A"})",
          R"({"type":"base64","data":"AA EC"})", R"({"type":"base64","data":7})",
          R"({"type":"file","file_id":"f"})", R"({"type":"url"})", R"({"type":"url","url":""})",
          R"({})", R"([])", "null"}) {
        SCOPED_TRACE(source);
        EXPECT_EQ(image(source), std::nullopt);
    }
    EXPECT_EQ(block(R"({"type":"image","source":{"type":"text","data":"AAEC"}})"), std::nullopt);
}

TEST(ChatProtocol, TheContextIsTheInputOfAllKinds)
{
    EXPECT_EQ(contextTokens(R"({"input_tokens":1,"cache_creation_input_tokens":20,)"
                            R"("cache_read_input_tokens":300,"output_tokens":4000})"),
              321);
    EXPECT_EQ(contextTokens(R"({"input_tokens":5,"cache_read_input_tokens":"many"})"), 5);
}

TEST(ChatProtocol, AnEmptyContextIsAbsentAndNotZero)
{
    EXPECT_EQ(contextTokens(R"({"input_tokens":0,"cache_creation_input_tokens":0,)"
                            R"("cache_read_input_tokens":0})"),
              std::nullopt);
    EXPECT_EQ(contextTokens(R"({"output_tokens":5})"), std::nullopt);
    EXPECT_EQ(contextTokens(R"({"input_tokens":-5})"), std::nullopt);
    EXPECT_EQ(ChatProtocol::contextTokens(std::nullopt), std::nullopt);
}

TEST(ChatProtocol, AModelIdentifierBecomesALabel)
{
    const std::pair<const char*, const char*> rows[] = {
        {"claude-opus-4-7[1m]", "Opus 4.7"},
        {"claude-opus-4-7-20260101", "Opus 4.7"},
        {"claude-sonnet-5", "Sonnet 5"},
        {"claude-haiku-4-5-preview-2", "Haiku 4.5"},
        {"claude-fable", "Fable"},
        {"claude-3-5-sonnet", "3 5"},
        {"opus", "Opus"},
        {"gpt-12-345", "Gpt 12"},
        {"claude", "claude"},
        {"claude-[1m]", "claude-[1m]"},
        {"", ""},
        {"--", "--"},
        {"élan-1", "Élan 1"},
    };
    for (const auto& [model, label] : rows) {
        SCOPED_TRACE(model);
        EXPECT_EQ(ChatProtocol::displayName(q(model)), q(label));
    }
}
