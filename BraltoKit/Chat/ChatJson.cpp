#include "Chat/ChatJson.h"

#include "Base/JsonWriter.h"

#include <QCryptographicHash>

namespace Bralto::ChatJson {

namespace {

QString text(const QDateTime& date)
{
    return date.toUTC().toString(Qt::ISODateWithMs);
}

std::string_view name(ChatRole role)
{
    switch (role) {
    case ChatRole::User:
        return "user";
    case ChatRole::Assistant:
        return "assistant";
    case ChatRole::System:
        return "system";
    }
    return {};
}

std::string_view name(ChatToolStatus status)
{
    switch (status) {
    case ChatToolStatus::Running:
        return "running";
    case ChatToolStatus::Done:
        return "done";
    case ChatToolStatus::Failed:
        return "failed";
    }
    return {};
}

void writePicture(JsonWriter& writer, const ChatImage& image)
{
    writer.member("mediaType", image.mediaType);
    if (image.url)
        writer.member("url", image.url->toString());
    if (image.data) {
        writer.member("bytes", image.data->size());
        writer.member(
            "sha256",
            QString::fromLatin1(
                QCryptographicHash::hash(*image.data, QCryptographicHash::Sha256).toHex()));
    }
}

/// Writes a block's members into an object that is open.
struct BlockWriter {
    JsonWriter& writer;

    void operator()(const ChatTextBlock& block) const
    {
        writer.member("kind", "text");
        writer.member("id", block.id);
        writer.member("text", block.text);
    }

    void operator()(const ChatThinkingBlock& block) const
    {
        writer.member("kind", "thinking");
        writer.member("id", block.id);
        writer.member("text", block.text);
    }

    void operator()(const ChatImageBlock& block) const
    {
        writer.member("kind", "image");
        writer.member("id", block.id);
        writePicture(writer, block.image);
    }

    void operator()(const ChatToolCall& call) const
    {
        writer.member("kind", "tool");
        writer.member("id", call.id);
        writer.member("name", call.name);
        writer.member("summary", call.summary);
        writer.member("input", call.inputJSON);
        writer.member("filePath", call.filePath);
        writeEdits(call.edits);
        writer.member("status", name(call.status));
        writer.member("result", call.resultText);
        writeResultImages(call.resultImages);
    }

private:
    void writeEdits(const QList<ChatEdit>& edits) const
    {
        if (edits.isEmpty())
            return;
        writer.key("edits");
        writer.beginArray();
        for (const ChatEdit& edit : edits) {
            writer.beginObject();
            writer.member("before", edit.before);
            writer.member("after", edit.after);
            writer.endObject();
        }
        writer.endArray();
    }

    void writeResultImages(const QList<ChatImage>& images) const
    {
        if (images.isEmpty())
            return;
        writer.key("resultImages");
        writer.beginArray();
        for (const ChatImage& image : images) {
            writer.beginObject();
            writePicture(writer, image);
            writer.endObject();
        }
        writer.endArray();
    }
};

template <typename Values>
void writeAll(JsonWriter& writer, std::string_view key, const Values& values)
{
    writer.key(key);
    writer.beginArray();
    for (const auto& value : values)
        write(writer, value);
    writer.endArray();
}

} // namespace

void write(JsonWriter& writer, const ChatMessage& message)
{
    writer.beginObject();
    writer.member("id", message.id);
    writer.member("role", name(message.role));
    writer.member("date", text(message.date));
    if (message.isStreaming)
        writer.member("isStreaming", true);
    writer.key("blocks");
    writer.beginArray();
    for (const ChatBlock& block : message.blocks) {
        writer.beginObject();
        std::visit(BlockWriter{writer}, block);
        writer.endObject();
    }
    writer.endArray();
    writer.endObject();
}

void write(JsonWriter& writer, const ChatSubagent& agent)
{
    writer.beginObject();
    writer.member("id", agent.id);
    writer.member("taskId", agent.taskId);
    writer.member("description", agent.description);
    writer.member("type", agent.type);
    writer.member("status", name(agent.status));
    writer.member("activity", agent.activity);
    writer.member("toolUses", agent.toolUses);
    writer.member("tokens", agent.tokens);
    writer.member("summary", agent.summary);
    writer.member("isBackground", agent.isBackground);
    writeAll(writer, "messages", agent.messages);
    writer.endObject();
}

void write(JsonWriter& writer, const ChatSessionInfo& status)
{
    writer.beginObject();
    writer.member("cliVersion", status.cliVersion);
    writer.member("model", status.model);
    writer.member("modelName", status.modelName);
    writer.member("permissionMode", status.permissionMode);
    writer.member("effort", status.effort);
    writer.member("cwd", status.cwd);
    writer.member("contextTokens", status.contextTokens);
    writer.member("contextWindow", status.contextWindow);
    writer.member("costUSD", status.costUSD);
    writer.member("totalTokens", status.totalTokens);
    writer.endObject();
}

QByteArray encode(const ChatTranscript& transcript)
{
    JsonWriter writer(JsonWriter::Layout::Indented);
    writer.beginObject();
    writeAll(writer, "messages", transcript.messages);
    writeAll(writer, "subagents", transcript.subagents);
    writer.key("status");
    write(writer, transcript.status);
    writer.endObject();
    return writer.take() + '\n';
}

} // namespace Bralto::ChatJson
