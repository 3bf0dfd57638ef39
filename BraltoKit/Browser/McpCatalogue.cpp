#include "Browser/McpCatalogue.h"

#include "Base/JsonWriter.h"

#include <algorithm>
#include <span>

namespace Bralto::McpCatalogue {

namespace {

constexpr std::string_view Instructions =
    "These tools drive the browser tabs inside the Bralto window of the project you're "
    "working in; the owner sees every page you open. Use these tools for any web page work in "
    "this project (localhost previews, docs, testing). Use Claude in Chrome only for "
    "logged-in accounts the owner's Chrome holds. Start with snapshot to get element refs "
    "(e12…) for click and type; take a new snapshot after the page changes. Without a tab "
    "argument, tools act on the page showing in the window.";

enum class Type { String, Number, Boolean, Level };
enum class Presence { Optional, Required };
enum class Effect { Acts, Reads };

struct Parameter {
    std::string_view name;
    std::string_view description; ///< Empty if the name says it all.
    Type type;
    Presence presence = Presence::Optional;
};

struct Tool {
    std::string_view name;
    std::string_view title;
    Effect effect;
    std::string_view description;
    std::span<const Parameter> parameters;
};

constexpr std::string_view Levels[] = {"log", "info", "warn", "error", "debug"};

constexpr Parameter OpenParameters[] = {
    {"url", "URL, host:port, or file path", Type::String, Presence::Required},
    {"newTab", "false loads it in the target tab instead (default true)", Type::Boolean},
    {"tab", "Tab id for newTab: false", Type::String},
    {"timeout", "Seconds to wait for the load (default 15, max 30)", Type::Number},
};

constexpr Parameter NavigateParameters[] = {
    {"tab", "Tab id (default: the page on screen)", Type::String},
    {"url", "", Type::String},
    {"back", "", Type::Boolean},
    {"forward", "", Type::Boolean},
    {"reload", "", Type::Boolean},
    {"timeout", "Seconds to wait (default 15, max 30)", Type::Number},
};

constexpr Parameter SnapshotParameters[] = {
    {"tab", "", Type::String},
    {"ref", "Only this element's subtree", Type::String},
    {"selector", "Only the first element matching this CSS selector", Type::String},
    {"maxChars", "Size budget (default 16000)", Type::Number},
};

constexpr Parameter ClickParameters[] = {
    {"tab", "", Type::String},
    {"ref", "Ref from snapshot, e.g. e12", Type::String},
    {"selector", "CSS selector, if there's no ref", Type::String},
    {"double", "Double-click", Type::Boolean},
};

constexpr Parameter TypeParameters[] = {
    {"tab", "", Type::String},
    {"ref", "", Type::String},
    {"selector", "", Type::String},
    {"text", "", Type::String, Presence::Required},
    {"submit", "Press Enter / submit the form afterwards", Type::Boolean},
    {"clear", "Replace the current value (default true)", Type::Boolean},
};

constexpr Parameter PressParameters[] = {
    {"tab", "", Type::String},
    {"ref", "", Type::String},
    {"selector", "", Type::String},
    {"key", "", Type::String, Presence::Required},
};

constexpr Parameter ScrollParameters[] = {
    {"tab", "", Type::String},
    {"ref", "", Type::String},
    {"selector", "", Type::String},
    {"dx", "", Type::Number},
    {"dy", "Positive scrolls down", Type::Number},
};

constexpr Parameter ScreenshotParameters[] = {
    {"tab", "", Type::String},
    {"fullPage", "The whole scrollable page (default false)", Type::Boolean},
};

constexpr Parameter EvaluateParameters[] = {
    {"tab", "", Type::String},
    {"expression", "", Type::String, Presence::Required},
};

constexpr Parameter WaitParameters[] = {
    {"tab", "", Type::String},
    {"text", "", Type::String},
    {"selector", "", Type::String},
    {"gone", "", Type::Boolean},
    {"timeout", "Seconds (default 10, max 30)", Type::Number},
};

constexpr Parameter ConsoleParameters[] = {
    {"tab", "", Type::String},
    {"level", "", Type::Level},
    {"limit", "Most recent N (default 50)", Type::Number},
    {"clear", "Empty the log after reading", Type::Boolean},
};

constexpr Parameter CloseParameters[] = {
    {"tab", "", Type::String},
};

constexpr Tool Tools[] = {
    {"tabs",
     "List tabs",
     Effect::Reads,
     "List the browser tabs open in this project's Bralto window: id, title, URL, and which "
     "is active, in split view, loading, or the default target.",
     {}},
    {"open", "Open page", Effect::Acts,
     "Open a URL in a new Bralto browser tab beside the current one (it becomes the active "
     "tab, without taking the keyboard from the owner). Returns the tab id once the page has "
     "loaded, or after the timeout. Accepts full URLs, localhost:3000-style addresses, and "
     "file paths.",
     OpenParameters},
    {"navigate", "Navigate", Effect::Acts,
     "Load a URL in a tab, or go back, forward, or reload. Waits for the load.",
     NavigateParameters},
    {"snapshot", "Page snapshot", Effect::Reads,
     "An accessibility-style outline of the page: roles, names, values, links, with refs like "
     "e12 on everything you can act on. Use the refs with click, type, press, scroll. Refs "
     "stay valid until the element leaves the page; take a fresh snapshot after the page "
     "changes. Large pages keep every interactive element and drop text past maxChars.",
     SnapshotParameters},
    {"click", "Click", Effect::Acts,
     "Click an element: scrolls it into view, fires pointer and mouse events, then clicks. "
     "Reports a navigation if one followed.",
     ClickParameters},
    {"type", "Type", Effect::Acts,
     "Put text into a field (input, textarea, contenteditable, or pick a select option by "
     "value or label). Replaces what's there unless clear is false. Fires input and change "
     "events so React and other frameworks see it.",
     TypeParameters},
    {"press", "Press key", Effect::Acts,
     "Press a key on the focused element (or on ref/selector), e.g. Enter, Escape, Tab, "
     "ArrowDown, PageDown, Backspace, a, Shift+Tab, Meta+a.",
     PressParameters},
    {"scroll", "Scroll", Effect::Acts,
     "Scroll an element into view (ref or selector), or scroll the page (or that element) by "
     "dx/dy pixels.",
     ScrollParameters},
    {"screenshot", "Screenshot", Effect::Reads,
     "A PNG of the tab as it looks in Bralto (the visible part, or the whole page with "
     "fullPage). Wide pages are scaled to 1280 pixels across.",
     ScreenshotParameters},
    {"evaluate", "Run JavaScript", Effect::Acts,
     "Run JavaScript in the page and get the result as JSON. Pass an expression "
     "(document.title) or a function body with return; await works in both.",
     EvaluateParameters},
    {"wait", "Wait", Effect::Reads,
     "Wait until text or a CSS selector appears on the page (or goes away with gone: true), "
     "up to timeout seconds. With neither, waits for the page to finish loading.",
     WaitParameters},
    {"console", "Console", Effect::Reads,
     "Recent console messages and uncaught errors from the page, oldest first.", ConsoleParameters},
    {"close", "Close tab", Effect::Acts, "Close a browser tab (default: the page on screen).",
     CloseParameters},
};

std::string_view typeName(Type type)
{
    switch (type) {
    case Type::Number:
        return "number";
    case Type::Boolean:
        return "boolean";
    case Type::String:
    case Type::Level:
        break;
    }
    return "string";
}

void write(JsonWriter& writer, const Parameter& parameter)
{
    writer.key(parameter.name);
    writer.beginObject();
    writer.member("type", typeName(parameter.type));
    if (parameter.type == Type::Level) {
        writer.key("enum");
        writer.beginArray();
        for (const std::string_view level : Levels)
            writer.value(level);
        writer.endArray();
    }
    if (!parameter.description.empty())
        writer.member("description", parameter.description);
    writer.endObject();
}

/// Left out if it would be empty.
void writeRequired(JsonWriter& writer, std::span<const Parameter> parameters)
{
    const auto isRequired = [](const Parameter& parameter) {
        return parameter.presence == Presence::Required;
    };
    if (std::ranges::none_of(parameters, isRequired))
        return;
    writer.key("required");
    writer.beginArray();
    for (const Parameter& parameter : parameters) {
        if (isRequired(parameter))
            writer.value(parameter.name);
    }
    writer.endArray();
}

void write(JsonWriter& writer, const Tool& tool)
{
    writer.beginObject();
    writer.member("name", tool.name);
    writer.member("title", tool.title);
    writer.member("description", tool.description);
    writer.key("inputSchema");
    writer.beginObject();
    writer.member("type", "object");
    writer.key("properties");
    writer.beginObject();
    for (const Parameter& parameter : tool.parameters)
        write(writer, parameter);
    writer.endObject();
    writeRequired(writer, tool.parameters);
    writer.endObject();
    if (tool.effect == Effect::Reads) {
        writer.key("annotations");
        writer.beginObject();
        writer.member("readOnlyHint", true);
        writer.endObject();
    }
    writer.endObject();
}

QSet<QString> namesOfTools()
{
    QSet<QString> names;
    for (const Tool& tool : Tools)
        names.insert(QString::fromLatin1(tool.name.data(), qsizetype(tool.name.size())));
    return names;
}

QByteArray encode()
{
    JsonWriter writer;
    writer.beginArray();
    for (const Tool& tool : Tools)
        write(writer, tool);
    writer.endArray();
    return writer.take();
}

} // namespace

std::string_view instructions()
{
    return Instructions;
}

const QSet<QString>& toolNames()
{
    static const QSet<QString> names = namesOfTools();
    return names;
}

const QByteArray& json()
{
    static const QByteArray text = encode();
    return text;
}

} // namespace Bralto::McpCatalogue
