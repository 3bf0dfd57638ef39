#include "Platform/DefaultsFormat.h"

#include "Base/JsonWriter.h"

#include <QDateTime>

#include <simdjson.h>

#include <string_view>

namespace Bralto::DefaultsFormat {

namespace {

constexpr std::string_view DataTag = "$data";
constexpr std::string_view DateTag = "$date";
constexpr std::string_view DictionaryTag = "$dictionary";

// Writing

void write(JsonWriter& out, const QVariant& value);

std::string_view view(const QByteArray& utf8)
{
    return {utf8.constData(), std::size_t(utf8.size())};
}

void writeTagged(JsonWriter& out, std::string_view tag, const QByteArray& text)
{
    out.beginObject();
    out.member(tag, view(text));
    out.endObject();
}

void writeList(JsonWriter& out, const QVariantList& list)
{
    out.beginArray();
    for (const QVariant& element : list)
        write(out, element);
    out.endArray();
}

void writeMap(JsonWriter& out, const QVariantMap& map)
{
    out.beginObject();
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry) {
        out.key(view(entry.key().toUtf8()));
        write(out, entry.value());
    }
    out.endObject();
}

void writeDictionary(JsonWriter& out, const QVariantMap& map)
{
    const bool looksTagged = map.size() == 1 && map.firstKey().startsWith(u'$');
    if (looksTagged) {
        out.beginObject();
        out.key(DictionaryTag);
    }
    writeMap(out, map);
    if (looksTagged)
        out.endObject();
}

void write(JsonWriter& out, const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        out.value(value.toBool());
        break;
    case QMetaType::LongLong:
        out.value(value.toLongLong());
        break;
    case QMetaType::Double:
        out.value(value.toDouble());
        break;
    case QMetaType::QString:
        out.value(value.toString());
        break;
    case QMetaType::QByteArray:
        writeTagged(out, DataTag, value.toByteArray().toBase64());
        break;
    case QMetaType::QDateTime:
        writeTagged(out, DateTag,
                    value.toDateTime().toUTC().toString(Qt::ISODateWithMs).toLatin1());
        break;
    case QMetaType::QVariantList:
        writeList(out, value.toList());
        break;
    case QMetaType::QVariantMap:
        writeDictionary(out, value.toMap());
        break;
    default:
        Q_ASSERT_X(false, "DefaultsFormat", "a value that no store accepts");
        out.null();
    }
}

// Reading

using simdjson::dom::element;
using simdjson::dom::element_type;

QString text(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), qsizetype(utf8.size()));
}

QVariant read(element value);

/// The value behind a tag, invalid if it is none.
QVariant readTagged(std::string_view tag, element value)
{
    if (tag == DictionaryTag) {
        simdjson::dom::object object;
        if (value.get(object) != simdjson::SUCCESS)
            return {};
        QVariantMap map;
        for (const auto field : object) {
            const QVariant element = read(field.value);
            if (!element.isValid())
                return {};
            map.insert(text(field.key), element);
        }
        return map;
    }
    std::string_view content;
    if (value.get(content) != simdjson::SUCCESS)
        return {};
    const QByteArray bytes(content.data(), qsizetype(content.size()));
    if (tag == DataTag) {
        const auto decoded =
            QByteArray::fromBase64Encoding(bytes, QByteArray::AbortOnBase64DecodingErrors);
        return decoded ? QVariant(*decoded) : QVariant();
    }
    if (tag == DateTag) {
        const QDateTime date = QDateTime::fromString(QString::fromLatin1(bytes), Qt::ISODateWithMs);
        return date.isValid() ? QVariant(date.toUTC()) : QVariant();
    }
    return {};
}

QVariant readObject(simdjson::dom::object object)
{
    if (object.size() == 1) {
        const auto only = *object.begin();
        if (only.key.starts_with('$'))
            return readTagged(only.key, only.value);
    }
    QVariantMap map;
    for (const auto field : object) {
        const QVariant value = read(field.value);
        if (!value.isValid())
            return {};
        map.insert(text(field.key), value);
    }
    return map;
}

QVariant readArray(simdjson::dom::array array)
{
    QVariantList list;
    list.reserve(qsizetype(array.size()));
    for (const element entry : array) {
        const QVariant value = read(entry);
        if (!value.isValid())
            return {};
        list.append(value);
    }
    return list;
}

/// Each `get` below asks for the type that the element has, so none of them fails.
QVariant read(element value)
{
    switch (value.type()) {
    case element_type::BOOL:
        return bool(value.get_bool().value_unsafe());
    case element_type::INT64:
        return qlonglong(value.get_int64().value_unsafe());
    case element_type::UINT64: // Only what is too large for the other type.
        return double(value.get_uint64().value_unsafe());
    case element_type::DOUBLE:
        return value.get_double().value_unsafe();
    case element_type::STRING:
        return text(value.get_string().value_unsafe());
    case element_type::ARRAY:
        return readArray(value.get_array().value_unsafe());
    case element_type::OBJECT:
        return readObject(value.get_object().value_unsafe());
    case element_type::NULL_VALUE:
        break;
    }
    return {};
}

} // namespace

QByteArray encode(const QVariantMap& values)
{
    JsonWriter out(JsonWriter::Layout::Indented);
    writeMap(out, values);
    return out.take() + '\n';
}

std::optional<QVariantMap> decode(const QByteArray& text)
{
    simdjson::dom::parser parser;
    simdjson::dom::object object;
    const auto size = std::size_t(text.size());
    if (parser.parse(text.constData(), size).get(object) != simdjson::SUCCESS)
        return std::nullopt;
    QVariantMap values;
    for (const auto field : object) {
        const QVariant value = read(field.value);
        if (value.isValid())
            values.insert(DefaultsFormat::text(field.key), value);
    }
    return values;
}

} // namespace Bralto::DefaultsFormat
