// The pieces of a message: blocks, pictures, tool calls and what is said of them.

#include "Chat/ChatProtocol.h"

#include "Base/Base64.h"
#include "Base/Paths.h"
#include "Chat/ChatNumbers.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace Bralto::ChatProtocol {

namespace {

/// The trimmed string at `key`, absent if nothing remains.
std::optional<QString> trimmedString(const JsonObject& input, std::string_view key)
{
    auto text = input.string(key);
    if (!text)
        return std::nullopt;
    *text = std::move(*text).trimmed();
    return text->isEmpty() ? std::nullopt : text;
}

std::optional<QString> shortenedPath(const JsonObject& input, std::string_view key,
                                     const QString& home)
{
    const auto path = trimmedString(input, key);
    if (!path)
        return std::nullopt;
    return Paths::abbreviatingHome(*path, home);
}

std::optional<QString> grepSummary(const JsonObject& input, const QString& home)
{
    auto pattern = trimmedString(input, "pattern");
    const auto path = shortenedPath(input, "path", home);
    if (!pattern || !path)
        return pattern;
    return *pattern + " in " + *path;
}

std::optional<QString> todoSummary(const JsonObject& input)
{
    const auto todos = input.array("todos");
    if (!todos)
        return std::nullopt;
    return QString::number(todos->size()) + " to-dos";
}

std::optional<QString> firstQuestion(const JsonObject& input)
{
    const auto questions = input.objects("questions");
    return questions.empty() ? std::nullopt : questions.front().string("question");
}

/// The summary by the tool's own rule, absent if it has none or it gave nothing.
std::optional<QString> toolSummary(const QString& name, const JsonObject& input,
                                   const QString& home)
{
    const auto either = [&](std::string_view first, std::string_view second) {
        auto text = trimmedString(input, first);
        return text ? text : trimmedString(input, second);
    };
    if (name == u"Bash" || name == u"PowerShell")
        return trimmedString(input, "command");
    if (name == u"Read" || name == u"Write" || name == u"Edit" || name == u"MultiEdit")
        return shortenedPath(input, "file_path", home);
    if (name == u"NotebookEdit")
        return shortenedPath(input, "notebook_path", home);
    if (name == u"Grep")
        return grepSummary(input, home);
    if (name == u"Glob")
        return trimmedString(input, "pattern");
    if (name == u"WebFetch")
        return trimmedString(input, "url");
    if (name == u"WebSearch")
        return trimmedString(input, "query");
    if (name == u"Agent" || name == u"Task")
        return either("description", "subagent_type");
    if (name == u"Skill")
        return either("skill", "command");
    if (name == u"TodoWrite")
        return todoSummary(input);
    if (name == u"AskUserQuestion")
        return firstQuestion(input);
    return std::nullopt;
}

/// Counts what a reader would call characters, and no further than it must.
bool hasFewerCharacters(const QString& text, int limit)
{
    if (text.size() < limit)
        return true;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (int count = 0; count < limit; ++count) {
        if (finder.toNextBoundary() < 0)
            return true;
    }
    return false;
}

/// The first short string of an input whose keys are sorted.
std::optional<QString> anySummary(const JsonObject& input)
{
    constexpr int TooManyCharacters = 200;
    std::vector<std::string_view> keys;
    for (const auto& [key, value] : input.raw())
        keys.push_back(key);
    std::ranges::sort(keys);
    for (const std::string_view key : keys) {
        auto text = trimmedString(input, key);
        if (text && hasFewerCharacters(*text, TooManyCharacters))
            return text;
    }
    return std::nullopt;
}

bool isLineBreak(QChar character)
{
    return character == u'\n' || character == u'\r' || character == QChar::LineSeparator ||
           character == QChar::ParagraphSeparator;
}

std::optional<ChatEdit> edit(const JsonObject& object)
{
    auto before = object.string("old_string");
    auto after = object.string("new_string");
    if (!before || !after)
        return std::nullopt;
    return ChatEdit{std::move(*before), std::move(*after)};
}

QList<ChatEdit> edits(const QString& name, const JsonObject& input)
{
    QList<ChatEdit> result;
    if (name == u"Edit") {
        if (auto only = edit(input))
            result.append(std::move(*only));
    } else if (name == u"MultiEdit") {
        for (const JsonObject& object : input.objects("edits")) {
            if (auto next = edit(object))
                result.append(std::move(*next));
        }
    } else if (name == u"Write") {
        if (auto content = input.string("content"))
            result.append(ChatEdit{QString(), std::move(*content)});
    }
    return result;
}

} // namespace

std::optional<qint64> contextTokens(const std::optional<JsonObject>& usage)
{
    if (!usage)
        return std::nullopt;
    qint64 sum = 0;
    for (const char* key :
         {"input_tokens", "cache_creation_input_tokens", "cache_read_input_tokens"})
        sum = saturatingSum(sum, usage->integer(key).value_or(0));
    return sum >= 1 ? std::optional(sum) : std::nullopt;
}

std::optional<ChatBlock> block(const JsonObject& object, const QString& fallbackId,
                               const QString& home)
{
    const auto type = object.view("type").value_or("");
    if (type == "text")
        return ChatTextBlock{fallbackId, object.string("text").value_or(QString())};
    if (type == "thinking")
        return ChatThinkingBlock{fallbackId, object.string("thinking").value_or(QString())};
    if (type == "redacted_thinking")
        return ChatThinkingBlock{fallbackId, QString()};
    if (type == "image") {
        auto picture = image(object);
        return picture ? std::optional<ChatBlock>(ChatImageBlock{fallbackId, std::move(*picture)})
                       : std::nullopt;
    }
    if (type == "tool_use" || type == "server_tool_use") {
        const auto id = object.string("id").value_or(QString());
        if (id.isEmpty())
            return std::nullopt;
        return toolCall(id, object.string("name").value_or(QStringLiteral("Tool")),
                        object.object("input"), home);
    }
    return std::nullopt;
}

std::optional<ChatImage> image(const JsonObject& block)
{
    if (block.view("type") != "image")
        return std::nullopt;
    const auto source = block.object("source");
    const auto type = source ? source->view("type").value_or("") : "";
    if (type == "base64") {
        const auto data = source->view("data");
        if (!data)
            return std::nullopt;
        auto decoded = Base64::decode(*data);
        if (!decoded)
            return std::nullopt;
        return ChatImage{std::move(*decoded), std::nullopt, source->string("media_type")};
    }
    if (type == "url") {
        const auto url = source->string("url");
        if (!url || url->isEmpty())
            return std::nullopt;
        return ChatImage{std::nullopt, QUrl(*url), std::nullopt};
    }
    return std::nullopt;
}

ChatQuestion question(const std::optional<JsonObject>& input, const QString& id)
{
    ChatQuestion result;
    result.id = id;
    if (!input)
        return result;
    for (const JsonObject& object : input->objects("questions")) {
        ChatQuestion::Item item;
        item.header = object.string("header");
        item.question = object.string("question").value_or(QString());
        for (const JsonObject& option : object.objects("options")) {
            item.options.append(
                {option.string("label").value_or(QString()), option.string("description")});
        }
        item.multiSelect = object.boolean("multiSelect").value_or(false);
        result.items.append(std::move(item));
    }
    return result;
}

QString summary(const QString& name, const std::optional<JsonObject>& input, const QString& home)
{
    if (!input)
        return {};
    auto text = toolSummary(name, *input, home);
    if (!text)
        text = anySummary(*input);
    if (!text)
        return {};
    const auto end = std::ranges::find_if(*text, isLineBreak);
    return text->left(end - text->cbegin());
}

ChatToolCall toolCall(const QString& id, const QString& name,
                      const std::optional<JsonObject>& input, const QString& home)
{
    ChatToolCall call;
    call.id = id;
    call.name = name;
    call.inputJSON = input ? input->pretty() : QStringLiteral("{}");
    call.summary = summary(name, input, home);
    if (input) {
        call.filePath = input->string("file_path");
        if (!call.filePath)
            call.filePath = input->string("notebook_path");
        call.edits = edits(name, *input);
    }
    return call;
}

QString displayName(const QString& model)
{
    constexpr qsizetype LongestVersionPart = 2;
    QStringList parts = model.section(u'[', 0, 0).split(u'-', Qt::SkipEmptyParts);
    if (!parts.isEmpty() && parts.first() == u"claude")
        parts.removeFirst();
    if (parts.isEmpty())
        return model;
    QStringList version;
    for (const QString& part : parts.mid(1)) {
        const bool isNumber =
            std::ranges::all_of(part, [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
        if (!isNumber || part.size() > LongestVersionPart)
            break;
        // "05" is the number 5.
        version.append(QString::number(part.toInt()));
    }
    const QString family = parts.first().left(1).toUpper() + parts.first().mid(1);
    return version.isEmpty() ? family : family + u' ' + version.join(u'.');
}

} // namespace Bralto::ChatProtocol
