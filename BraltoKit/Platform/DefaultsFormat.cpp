#include "Platform/DefaultsFormat.h"

#include <QDateTime>

#include <simdjson.h>

#include <array>
#include <charconv>
#include <string_view>

namespace Bralto::DefaultsFormat {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view DataTag = "$data";
constexpr std::string_view DateTag = "$date";
constexpr std::string_view DictionaryTag = "$dictionary";

// Writing

void write(QByteArray& out, const QVariant& value, int depth);

void writeBreak(QByteArray& out, int depth)
{
    out.append('\n').append(2 * depth, ' ');
}

void writeString(QByteArray& out, const QByteArray& utf8)
{
    constexpr char Hex[] = "0123456789abcdef";
    out.append('"');
    for (const char byte : utf8) {
        if (byte == '"' || byte == '\\')
            out.append('\\').append(byte);
        else if (byte == '\n')
            out.append("\\n");
        else if (uchar(byte) < 0x20)
            out.append("\\u00").append(Hex[byte >> 4]).append(Hex[byte & 0xF]);
        else
            out.append(byte);
    }
    out.append('"');
}

void writeDouble(QByteArray& out, double value)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    const std::string_view written(text.data(), std::size_t(end - text.data()));
    out.append(written.data(), qsizetype(written.size()));
    if (written.find_first_of(".e") == std::string_view::npos)
        out.append(".0");
}

void writeTagged(QByteArray& out, std::string_view tag, const QByteArray& text)
{
    out.append("{\"").append(tag.data(), qsizetype(tag.size())).append("\": ");
    writeString(out, text);
    out.append('}');
}

void writeList(QByteArray& out, const QVariantList& list, int depth)
{
    if (list.isEmpty()) {
        out.append("[]");
        return;
    }
    out.append('[');
    for (qsizetype index = 0; index < list.size(); ++index) {
        if (index > 0)
            out.append(',');
        writeBreak(out, depth + 1);
        write(out, list[index], depth + 1);
    }
    writeBreak(out, depth);
    out.append(']');
}

void writeMap(QByteArray& out, const QVariantMap& map, int depth)
{
    if (map.isEmpty()) {
        out.append("{}");
        return;
    }
    out.append('{');
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry) {
        if (entry != map.constBegin())
            out.append(',');
        writeBreak(out, depth + 1);
        writeString(out, entry.key().toUtf8());
        out.append(": ");
        write(out, entry.value(), depth + 1);
    }
    writeBreak(out, depth);
    out.append('}');
}

void writeDictionary(QByteArray& out, const QVariantMap& map, int depth)
{
    const bool looksTagged = map.size() == 1 && map.firstKey().startsWith(u'$');
    if (looksTagged)
        out.append("{\"")
            .append(DictionaryTag.data(), qsizetype(DictionaryTag.size()))
            .append("\": ");
    writeMap(out, map, depth);
    if (looksTagged)
        out.append('}');
}

void write(QByteArray& out, const QVariant& value, int depth)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        out.append(value.toBool() ? "true" : "false");
        break;
    case QMetaType::LongLong:
        out.append(QByteArray::number(value.toLongLong()));
        break;
    case QMetaType::Double:
        writeDouble(out, value.toDouble());
        break;
    case QMetaType::QString:
        writeString(out, value.toString().toUtf8());
        break;
    case QMetaType::QByteArray:
        writeTagged(out, DataTag, value.toByteArray().toBase64());
        break;
    case QMetaType::QDateTime:
        writeTagged(out, DateTag,
                    value.toDateTime().toUTC().toString(Qt::ISODateWithMs).toLatin1());
        break;
    case QMetaType::QVariantList:
        writeList(out, value.toList(), depth);
        break;
    case QMetaType::QVariantMap:
        writeDictionary(out, value.toMap(), depth);
        break;
    default:
        Q_ASSERT_X(false, "DefaultsFormat", "a value that no store accepts");
        out.append("null");
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
    QByteArray out;
    writeMap(out, values, 0);
    out.append('\n');
    return out;
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
