// The way out: what the user did becomes lines for the agent.

#include "Chat/ChatProtocol.h"

#include "Base/JsonWriter.h"
#include "Base/Paths.h"

#include <algorithm>

namespace Bralto::ChatProtocol {

namespace {

QByteArray line(JsonWriter& writer)
{
    return writer.take() + '\n';
}

/// Whether `value` could be written; what JSON has no form for makes the whole line fail.
bool write(JsonWriter& writer, const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        writer.value(value.toBool());
        return true;
    case QMetaType::Int:
    case QMetaType::Long:
    case QMetaType::LongLong:
        writer.value(value.toLongLong());
        return true;
    case QMetaType::Double:
        writer.value(value.toDouble());
        return qIsFinite(value.toDouble());
    case QMetaType::QString:
        writer.value(value.toString());
        return true;
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        const QVariantList items = value.toList();
        writer.beginArray();
        const bool written =
            std::ranges::all_of(items, [&](const QVariant& item) { return write(writer, item); });
        writer.endArray();
        return written;
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        bool written = true;
        writer.beginObject();
        for (auto at = map.begin(); at != map.end() && written; ++at) {
            writer.key(at.key().toStdString());
            written = write(writer, at.value());
        }
        writer.endObject();
        return written;
    }
    default:
        return false;
    }
}

/// Opens a reply to a request of the agent; `close` ends it.
JsonWriter openReply(const QString& requestId, std::string_view subtype)
{
    JsonWriter writer;
    writer.beginObject();
    writer.member("type", "control_response");
    writer.key("response");
    writer.beginObject();
    writer.member("subtype", subtype);
    writer.member("request_id", requestId);
    return writer;
}

QByteArray closeReply(JsonWriter& writer)
{
    writer.endObject();
    writer.endObject();
    return line(writer);
}

void writeInput(JsonWriter& writer, const QByteArray& input,
                const std::optional<QMap<QString, QString>>& answers)
{
    JsonReader reader;
    writer.beginObject();
    if (const auto object = reader.object(input))
        object->writeMembers(writer, "answers");
    if (answers) {
        writer.key("answers");
        writer.beginObject();
        for (auto at = answers->begin(); at != answers->end(); ++at)
            writer.member(at.key().toStdString(), at.value());
        writer.endObject();
    }
    writer.endObject();
}

QString mention(const QString& path, const QString& folder)
{
    QString file = Paths::standardised(path);
    const QString root = Paths::standardised(folder);
    if (Paths::isBelow(file, root))
        file = file.mid(root.endsWith(u'/') ? root.size() : root.size() + 1);
    const bool isQuoted = std::ranges::any_of(file, [](QChar c) { return c.isSpace(); });
    return isQuoted ? "@\"" + file + u'"' : u'@' + file;
}

/// What stands between the tags of `name`, trimmed; absent without either tag.
std::optional<QString> tagContent(const QString& text, QLatin1String name)
{
    const QString opening = u'<' + name + u'>';
    const QString closing = QLatin1String("</") + name + u'>';
    const qsizetype start = text.indexOf(opening);
    if (start < 0)
        return std::nullopt;
    const qsizetype inner = start + opening.size();
    const qsizetype end = text.indexOf(closing, inner);
    if (end < 0)
        return std::nullopt;
    return text.mid(inner, end - inner).trimmed();
}

} // namespace

std::optional<QString> slashCommand(const QString& text)
{
    const auto name = tagContent(text, QLatin1String("command-name"));
    if (!name || name->isEmpty())
        return std::nullopt;
    const auto arguments = tagContent(text, QLatin1String("command-args"));
    return arguments && !arguments->isEmpty() ? *name + u' ' + *arguments : *name;
}

QString promptText(const QString& text, const QList<ChatAttachment>& attachments,
                   const QString& folder)
{
    QStringList mentions;
    for (const ChatAttachment& attachment : attachments) {
        if (const auto* file = std::get_if<ChatAttachment::File>(&attachment.kind))
            mentions.append(mention(file->path, folder));
    }
    QStringList parts{mentions.join(u' '), text};
    parts.removeAll(QString());
    return parts.join(QStringLiteral("\n\n"));
}

ChatMessage userMessage(const QString& text, const QList<ChatAttachment>& attachments,
                        const QString& folder, const QString& id, const QDateTime& now)
{
    ChatMessage message;
    message.id = id;
    message.role = ChatRole::User;
    message.date = now;
    if (const QString prompt = promptText(text, attachments, folder); !prompt.isEmpty())
        message.blocks.append(ChatTextBlock{id + "-text", prompt});
    int count = 0;
    for (const ChatAttachment& attachment : attachments) {
        if (const auto* picture = std::get_if<ChatAttachment::Image>(&attachment.kind)) {
            message.blocks.append(
                ChatImageBlock{id + "-image-" + QString::number(count++),
                               ChatImage{picture->data, std::nullopt, picture->mediaType}});
        }
    }
    return message;
}

QByteArray userLine(const QString& text, const QList<ChatAttachment>& attachments,
                    const QString& folder)
{
    JsonWriter writer;
    writer.beginObject();
    writer.member("type", "user");
    writer.key("message");
    writer.beginObject();
    writer.member("role", "user");
    writer.key("content");
    writer.beginArray();
    if (const QString prompt = promptText(text, attachments, folder); !prompt.isEmpty()) {
        writer.beginObject();
        writer.member("type", "text");
        writer.member("text", prompt);
        writer.endObject();
    }
    for (const ChatAttachment& attachment : attachments) {
        const auto* picture = std::get_if<ChatAttachment::Image>(&attachment.kind);
        if (!picture)
            continue;
        const QByteArray data = picture->data.toBase64();
        writer.beginObject();
        writer.member("type", "image");
        writer.key("source");
        writer.beginObject();
        writer.member("type", "base64");
        writer.member("media_type", picture->mediaType);
        writer.member("data", std::string_view(data.constData(), std::size_t(data.size())));
        writer.endObject();
        writer.endObject();
    }
    writer.endArray();
    writer.endObject();
    writer.endObject();
    return line(writer);
}

QByteArray initializeRequest(const QString& id)
{
    return controlRequest(id, QStringLiteral("initialize"), {});
}

QByteArray interruptRequest(const QString& id)
{
    return controlRequest(id, QStringLiteral("interrupt"), {});
}

QByteArray controlRequest(const QString& id, const QString& subtype, const QVariantMap& fields)
{
    JsonWriter writer;
    writer.beginObject();
    writer.member("type", "control_request");
    writer.member("request_id", id);
    writer.key("request");
    writer.beginObject();
    writer.member("subtype", subtype);
    for (auto at = fields.begin(); at != fields.end(); ++at) {
        writer.key(at.key().toStdString());
        if (!write(writer, at.value()))
            return "{}\n";
    }
    writer.endObject();
    writer.endObject();
    return line(writer);
}

QByteArray allow(const QString& requestId, const QByteArray& input,
                 const std::optional<QMap<QString, QString>>& answers)
{
    JsonWriter writer = openReply(requestId, "success");
    writer.key("response");
    writer.beginObject();
    writer.member("behavior", "allow");
    writer.key("updatedInput");
    writeInput(writer, input, answers);
    writer.endObject();
    return closeReply(writer);
}

QByteArray deny(const QString& requestId, const QString& message)
{
    JsonWriter writer = openReply(requestId, "success");
    writer.key("response");
    writer.beginObject();
    writer.member("behavior", "deny");
    writer.member("message", message);
    writer.endObject();
    return closeReply(writer);
}

QByteArray unsupported(const QString& requestId)
{
    JsonWriter writer = openReply(requestId, "error");
    writer.member("error", "Not supported by Bralto");
    return closeReply(writer);
}

} // namespace Bralto::ChatProtocol
