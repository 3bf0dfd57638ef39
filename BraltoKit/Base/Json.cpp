#include "Base/Json.h"

#include "Base/JsonWriter.h"

#include <algorithm>
#include <bit>
#include <tuple>

namespace Bralto {

using simdjson::SUCCESS;

namespace {

/// Memory for longer texts than this is given back with the next shorter one.
constexpr std::size_t KeptCapacity = 16 * 1024 * 1024;
constexpr std::size_t SmallestCapacity = 16 * 1024;

template <typename Value>
std::optional<Value> get(simdjson::dom::element element)
{
    Value value{};
    if (element.get(value) != SUCCESS)
        return std::nullopt;
    return value;
}

QString text(std::string_view view)
{
    return QString::fromUtf8(view.data(), qsizetype(view.size()));
}

// Serialising

enum class KeyOrder { AsTheyCame, Ascending };

struct Member {
    std::string_view key;
    simdjson::dom::element value;
    std::size_t position;
};

/// Every key once, with the value that a lookup would find.
std::vector<Member> members(simdjson::dom::object object, KeyOrder order)
{
    std::vector<Member> result;
    for (const auto [key, value] : object)
        result.push_back({key, value, result.size()});
    std::ranges::stable_sort(result, {}, &Member::key);
    const auto isDoubled = [](const Member& left, const Member& right) {
        return left.key == right.key;
    };
    result.erase(std::unique(result.begin(), result.end(), isDoubled), result.end());
    if (order == KeyOrder::AsTheyCame)
        std::ranges::sort(result, {}, &Member::position);
    return result;
}

void write(JsonWriter& writer, simdjson::dom::object object, KeyOrder order);

/// Recurses at most as deep as the parser lets a document be nested.
void write(JsonWriter& writer, simdjson::dom::element element, KeyOrder order)
{
    using simdjson::dom::element_type;
    switch (element.type()) {
    case element_type::OBJECT:
        write(writer, element.get_object().value_unsafe(), order);
        return;
    case element_type::ARRAY: {
        const simdjson::dom::array items = element.get_array().value_unsafe();
        writer.beginArray();
        for (const auto item : items)
            write(writer, item, order);
        writer.endArray();
        return;
    }
    case element_type::STRING:
        writer.value(element.get_string().value_unsafe());
        return;
    case element_type::INT64:
        writer.value(element.get_int64().value_unsafe());
        return;
    case element_type::UINT64:
        writer.value(quint64(element.get_uint64().value_unsafe()));
        return;
    case element_type::DOUBLE:
        writer.value(element.get_double().value_unsafe());
        return;
    case element_type::BOOL:
        writer.value(element.get_bool().value_unsafe());
        return;
    case element_type::NULL_VALUE:
        writer.null();
        return;
    }
}

void write(JsonWriter& writer, simdjson::dom::object object, KeyOrder order)
{
    writer.beginObject();
    for (const Member& member : members(object, order)) {
        writer.key(member.key);
        write(writer, member.value, order);
    }
    writer.endObject();
}

QByteArray serialised(simdjson::dom::object object, JsonWriter::Layout layout, KeyOrder order)
{
    JsonWriter writer(layout);
    write(writer, object, order);
    return writer.take();
}

// Repairing what the parser refuses: bytes that are no UTF-8, surrogates without their other half,
// and integers of more than 64 bits.

bool isLowSurrogateEscape(std::string_view text, std::size_t at)
{
    if (at + 6 > text.size() || text[at] != '\\' || text[at + 1] != 'u')
        return false;
    const char first = text[at + 2];
    const char second = text[at + 3];
    return (first == 'd' || first == 'D') &&
           ((second >= 'c' && second <= 'f') || (second >= 'C' && second <= 'F'));
}

bool isHighSurrogateEscape(std::string_view text, std::size_t at)
{
    if (at + 6 > text.size() || text[at] != '\\' || text[at + 1] != 'u')
        return false;
    const char first = text[at + 2];
    const char second = text[at + 3];
    return (first == 'd' || first == 'D') && (second == '8' || second == '9' || second == 'a' ||
                                              second == 'A' || second == 'b' || second == 'B');
}

/// Copies the escape at `at` and returns how many bytes it has.
std::size_t copyEscape(QByteArray& result, std::string_view text, std::size_t at)
{
    std::size_t length = std::min<std::size_t>(2, text.size() - at);
    if (isHighSurrogateEscape(text, at) && isLowSurrogateEscape(text, at + 6)) {
        length = 12;
    } else if (isHighSurrogateEscape(text, at) || isLowSurrogateEscape(text, at)) {
        result.append("\\ufffd");
        return 6;
    }
    result.append(text.data() + at, qsizetype(length));
    return length;
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Copies the digits at `at`, as a double if no 64-bit integer holds them.
std::size_t copyDigits(QByteArray& result, std::string_view text, std::size_t at)
{
    constexpr std::size_t SafeDigits = 18;
    std::size_t end = at;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    result.append(text.data() + at, qsizetype(end - at));
    const bool isFraction = at > 0 && text[at - 1] == '.';
    const bool goesOn =
        end < text.size() && (text[end] == '.' || text[end] == 'e' || text[end] == 'E');
    if (end - at > SafeDigits && !isFraction && !goesOn)
        result.append("e0");
    return end - at;
}

QByteArray repaired(std::string_view damaged)
{
    const QByteArray utf8 = text(damaged).toUtf8();
    const std::string_view source(utf8.constData(), std::size_t(utf8.size()));
    QByteArray result;
    result.reserve(utf8.size());
    bool inString = false;
    for (std::size_t at = 0; at < source.size();) {
        if (source[at] == '\\') {
            at += copyEscape(result, source, at);
        } else if (!inString && isDigit(source[at])) {
            at += copyDigits(result, source, at);
        } else {
            inString ^= source[at] == '"';
            result.append(source[at++]);
        }
    }
    return result;
}

} // namespace

std::optional<std::string_view> JsonValue::string() const
{
    return get<std::string_view>(m_element);
}

std::optional<bool> JsonValue::boolean() const
{
    return get<bool>(m_element);
}

std::optional<qint64> JsonValue::integer() const
{
    return get<int64_t>(m_element);
}

std::optional<double> JsonValue::number() const
{
    return get<double>(m_element);
}

std::optional<JsonObject> JsonValue::object() const
{
    if (const auto object = get<simdjson::dom::object>(m_element))
        return JsonObject(*object);
    return std::nullopt;
}

std::optional<JsonArray> JsonValue::array() const
{
    if (const auto array = get<simdjson::dom::array>(m_element))
        return JsonArray(*array);
    return std::nullopt;
}

std::optional<JsonValue> JsonObject::value(std::string_view key) const
{
    simdjson::dom::element element;
    if (m_object.at_key(key).get(element) != SUCCESS)
        return std::nullopt;
    return JsonValue(element);
}

std::optional<std::string_view> JsonObject::view(std::string_view key) const
{
    const auto found = value(key);
    return found ? found->string() : std::nullopt;
}

std::optional<QString> JsonObject::string(std::string_view key) const
{
    if (const auto found = view(key))
        return text(*found);
    return std::nullopt;
}

std::optional<bool> JsonObject::boolean(std::string_view key) const
{
    const auto found = value(key);
    return found ? found->boolean() : std::nullopt;
}

std::optional<qint64> JsonObject::integer(std::string_view key) const
{
    const auto found = value(key);
    return found ? found->integer() : std::nullopt;
}

std::optional<double> JsonObject::number(std::string_view key) const
{
    const auto found = value(key);
    return found ? found->number() : std::nullopt;
}

std::optional<JsonObject> JsonObject::object(std::string_view key) const
{
    const auto found = value(key);
    return found ? found->object() : std::nullopt;
}

std::optional<JsonArray> JsonObject::array(std::string_view key) const
{
    const auto found = value(key);
    return found ? found->array() : std::nullopt;
}

std::vector<JsonObject> JsonObject::objects(std::string_view key) const
{
    std::vector<JsonObject> result;
    if (const auto found = array(key)) {
        for (const auto item : found->raw()) {
            if (const auto object = get<simdjson::dom::object>(item))
                result.emplace_back(*object);
        }
    }
    return result;
}

QStringList JsonObject::strings(std::string_view key) const
{
    QStringList result;
    if (const auto found = array(key)) {
        for (const auto item : found->raw()) {
            if (const auto string = get<std::string_view>(item))
                result.append(text(*string));
        }
    }
    return result;
}

QByteArray JsonObject::compact() const
{
    return serialised(m_object, JsonWriter::Layout::Compact, KeyOrder::AsTheyCame);
}

QString JsonObject::pretty() const
{
    return QString::fromUtf8(
        serialised(m_object, JsonWriter::Layout::Indented, KeyOrder::Ascending));
}

void JsonObject::writeMembers(JsonWriter& writer, std::string_view without) const
{
    for (const Member& member : members(m_object, KeyOrder::AsTheyCame)) {
        if (member.key == without)
            continue;
        writer.key(member.key);
        write(writer, member.value, KeyOrder::AsTheyCame);
    }
}

std::optional<JsonObject> JsonReader::object(std::string_view text)
{
    return parse(text, false);
}

std::optional<JsonObject> JsonReader::object(const QByteArray& text)
{
    // A line that grew piece by piece mostly has room behind it, which spares a copy.
    const bool isPadded = text.capacity() - text.size() >= qsizetype(Padding);
    return parse({text.constData(), std::size_t(text.size())}, isPadded);
}

std::optional<JsonObject> JsonReader::paddedObject(std::string_view text)
{
    return parse(text, true);
}

Expected<JsonValue, QString> JsonReader::value(std::string_view text)
{
    simdjson::dom::element element;
    const auto error = parseAnyway(text, false, false, element);
    if (error != SUCCESS)
        return Unexpected{QString::fromLatin1(simdjson::error_message(error))};
    return JsonValue(element);
}

std::optional<JsonObject> JsonReader::parse(std::string_view text, bool isPadded)
{
    simdjson::dom::element element;
    return parseAnyway(text, isPadded, true, element) == SUCCESS ? JsonValue(element).object()
                                                                 : std::nullopt;
}

/// Parses what JSON allows and the parser refuses as well, and if it `mayBeDamaged`, text that is
/// no UTF-8.
simdjson::error_code JsonReader::parseAnyway(std::string_view text, bool isPadded,
                                             bool mayBeDamaged, simdjson::dom::element& element)
{
    if (text.empty())
        return simdjson::EMPTY;
    fit(text.size());
    const auto error = m_parser.parse(text.data(), text.size(), !isPadded).get(element);
    const bool isRepairable = (error == simdjson::UTF8_ERROR && mayBeDamaged) ||
                              error == simdjson::STRING_ERROR || error == simdjson::NUMBER_ERROR;
    if (!isRepairable)
        return error;
    const QByteArray sound = repaired(text);
    return m_parser.parse(sound.constData(), std::size_t(sound.size())).get(element);
}

void JsonReader::fit(std::size_t size)
{
    if (m_parser.capacity() > KeptCapacity && size <= KeptCapacity)
        m_parser = simdjson::dom::parser();
    if (m_parser.capacity() >= size || size > KeptCapacity)
        return;
    // In powers of two, so that lines that grow a little don't allocate each time. Parsing itself
    // takes what it still lacks, and fails where it can't.
    const std::size_t capacity = std::bit_ceil(std::max(size, SmallestCapacity));
    if (m_parser.allocate(capacity) == SUCCESS)
        std::ignore = m_parser.doc.allocate(capacity);
}

} // namespace Bralto
