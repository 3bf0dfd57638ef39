#include "Chat/ToolPresentation.h"

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

ChatToolCall call(const char* name, const char* summary, const char* path = nullptr)
{
    ChatToolCall call;
    call.name = QString::fromUtf8(name);
    call.summary = QString::fromUtf8(summary);
    if (path != nullptr)
        call.filePath = QString::fromUtf8(path);
    return call;
}

} // namespace

TEST(ToolPresentation, EveryKnownToolReadsAsASentence)
{
    struct Row {
        ChatToolCall call;
        ToolPresentation expected;
    };
    const Row rows[] = {
        {call("Bash", "ls"), {"terminal", "Ran", "ls", true}},
        {call("BashOutput", "ls"), {"terminal", "Ran", "ls", true}},
        {call("Read", "~/p/a.c", "/home/u/p/a.c"), {"doc.text", "Read", "a.c", false}},
        {call("Read", "~/p/a.c"), {"doc.text", "Read", "~/p/a.c", false}},
        {call("Edit", "s", "/p/b.c"), {"pencil", "Edited", "b.c", false}},
        {call("MultiEdit", "s", "/p/b.c"), {"pencil", "Edited", "b.c", false}},
        {call("Write", "s", "/p/b.c"), {"square.and.pencil", "Wrote", "b.c", false}},
        {call("NotebookEdit", "s", "/p/n.ipynb"), {"book", "Edited", "n.ipynb", false}},
        {call("Grep", "x.*y"), {"magnifyingglass", "Searched for", "x.*y", true}},
        {call("Glob", "*.c"), {"magnifyingglass", "Searched for", "*.c", true}},
        {call("WebFetch", "https://a.org/b"), {"globe", "Fetched", "a.org", false}},
        {call("WebFetch", "no address"), {"globe", "Fetched", "no address", false}},
        {call("WebSearch", "tides"), {"globe", "Searched the web for", "tides", false}},
        {call("Task", "Find it"), {"person.2", "Asked an agent to", "find it", false}},
        {call("Agent", "Find it"), {"person.2", "Asked an agent to", "find it", false}},
        {call("TodoWrite", "3 to-dos"), {"checklist", "Updated the plan", "", false}},
        {call("AskUserQuestion", "Which?"), {"questionmark.bubble", "Asked you", "Which?", false}},
        {call("Deploy", "preview"), {"wrench.and.screwdriver", "Deploy", "preview", false}},
        {call("bash", "ls"), {"wrench.and.screwdriver", "bash", "ls", false}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.call.name.toStdString());
        EXPECT_EQ(ToolPresentation::of(row.call), row.expected);
    }
}

TEST(ToolPresentation, AToolOfAServerReadsByItsOwnName)
{
    EXPECT_EQ(ToolPresentation::of(call("mcp__srv__get_page", "")),
              (ToolPresentation{"puzzlepiece.extension", "Get page", "srv", false}));
    EXPECT_EQ(ToolPresentation::of(call("mcp__srv__get__page", "x")),
              (ToolPresentation{"puzzlepiece.extension", "Get page", "x", false}));
    EXPECT_EQ(ToolPresentation::of(call("mcp__srv", "x")),
              (ToolPresentation{"wrench.and.screwdriver", "mcp__srv", "x", false}));
    EXPECT_EQ(ToolPresentation::of(call("other__srv__tool", "x")).verb, "other__srv__tool");
}

TEST(ToolDetails, ReadLinesAndAgentsToolsAreCounted)
{
    ChatToolCall read = call("Read", "a");
    EXPECT_EQ(ToolDetails::count(read, nullptr), "");
    read.status = ChatToolStatus::Done;
    read.resultText = "1\n2\n";
    EXPECT_EQ(ToolDetails::count(read, nullptr), "2 lines");
    read.resultText = "1";
    EXPECT_EQ(ToolDetails::count(read, nullptr), "1 line");

    ChatSubagent agent;
    EXPECT_EQ(ToolDetails::count(call("Task", "x"), &agent), "");
    agent.toolUses = 7;
    EXPECT_EQ(ToolDetails::count(call("Task", "x"), &agent), "7 tools");
}

TEST(ToolDetails, OnlyWhatHasSomethingToShowOpens)
{
    ChatToolCall bash = call("Bash", "ls");
    EXPECT_FALSE(ToolDetails::canOpen(bash, nullptr));
    bash.resultText = "";
    EXPECT_FALSE(ToolDetails::canOpen(bash, nullptr));
    bash.resultText = "out";
    EXPECT_TRUE(ToolDetails::canOpen(bash, nullptr));

    ChatToolCall edit = call("Edit", "a");
    edit.edits = {{"a", "b"}};
    EXPECT_TRUE(ToolDetails::canOpen(edit, nullptr));
}

TEST(ToolDetails, AnAgentsCallsAreListedInOrder)
{
    ChatSubagent agent;
    ChatMessage message;
    message.blocks = {call("Read", "a"), ChatTextBlock{"t", "text"}, call("Grep", "b")};
    agent.messages = {message, message};

    const auto calls = ToolDetails::calls(agent);

    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(calls[1]->name, "Grep");
    EXPECT_TRUE(ToolDetails::canOpen(call("Task", "x"), &agent));
}

TEST(ToolDetails, TheInputOfAShellIsItsCommand)
{
    ChatToolCall bash = call("Bash", "ls");
    bash.inputJSON = R"({"command": "ls\n-l", "timeout": 3})";
    EXPECT_EQ(ToolDetails::input(bash), "ls\n-l");
    bash.inputJSON = R"({"command": "l)";
    EXPECT_EQ(ToolDetails::input(bash), R"({"command": "l)");

    ChatToolCall other = call("Deploy", "x");
    other.inputJSON = "{}";
    EXPECT_EQ(ToolDetails::input(other), "");
    other.inputJSON = "{\n  \"a\": 1\n}";
    EXPECT_EQ(ToolDetails::input(other), other.inputJSON);
}

TEST(ToolDetails, AStatusHasAName)
{
    EXPECT_EQ(ToolDetails::statusName(ChatToolStatus::Running), "Running");
    EXPECT_EQ(ToolDetails::statusName(ChatToolStatus::Done), "Done");
    EXPECT_EQ(ToolDetails::statusName(ChatToolStatus::Failed), "Failed");
}
