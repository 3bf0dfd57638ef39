#include "Browser/ControlMessage.h"

#include "Base/JsonWriter.h"

#include <QJsonDocument>

namespace Bralto::ControlMessage {

namespace {

void write(JsonWriter& writer, const Text& item)
{
    writer.member("type", "text");
    writer.member("text", item.text);
}

void write(JsonWriter& writer, const Image& item)
{
    const QByteArray data = item.bytes.toBase64();
    writer.member("type", "image");
    writer.member("data", std::string_view(data.constData(), std::size_t(data.size())));
    writer.member("mimeType", item.mimeType);
}

} // namespace

std::optional<Request> decodeRequest(const QByteArray& line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    const QJsonObject object = document.object(); // Empty for anything else.
    const QJsonValue tool = object.value(QLatin1String("tool"));
    if (!tool.isString())
        return std::nullopt;
    return Request{tool.toString(), object.value(QLatin1String("arguments")).toObject()};
}

QByteArray encodeRequest(const QString& tool, std::string_view arguments)
{
    JsonWriter writer;
    writer.beginObject();
    writer.member("tool", tool);
    writer.key("arguments");
    writer.raw(arguments);
    writer.endObject();
    return writer.take();
}

QByteArray encodeResponse(const std::vector<Item>& content, bool isError)
{
    JsonWriter writer;
    writer.beginObject();
    writer.key("content");
    writer.beginArray();
    for (const Item& item : content) {
        writer.beginObject();
        std::visit([&writer](const auto& kind) { write(writer, kind); }, item);
        writer.endObject();
    }
    writer.endArray();
    writer.member("isError", isError);
    writer.endObject();
    QByteArray line = writer.take();
    return line.size() < LineLimit ? line : QByteArray(Unsendable);
}

} // namespace Bralto::ControlMessage
