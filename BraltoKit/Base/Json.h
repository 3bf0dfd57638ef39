#pragma once

#include "Base/Expected.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <simdjson.h>

#include <optional>
#include <string_view>
#include <vector>

namespace Bralto {

class JsonArray;
class JsonObject;
class JsonWriter;

/// A view of one value in a parsed document; valid as long as the `JsonReader` that gave it holds
/// that document. Reading never fails: what isn't there, or has another type, is absent.
class JsonValue {
public:
    explicit JsonValue(simdjson::dom::element element)
        : m_element(element)
    {
    }

    [[nodiscard]] std::optional<std::string_view> string() const;
    [[nodiscard]] std::optional<bool> boolean() const;
    /// A 64-bit integer; a double is none, whatever its value.
    [[nodiscard]] std::optional<qint64> integer() const;
    /// An integer or a double.
    [[nodiscard]] std::optional<double> number() const;
    [[nodiscard]] std::optional<JsonObject> object() const;
    [[nodiscard]] std::optional<JsonArray> array() const;
    [[nodiscard]] bool isNull() const { return m_element.is_null(); }

    [[nodiscard]] simdjson::dom::element element() const { return m_element; }

private:
    simdjson::dom::element m_element;
};

/// A view of an object. Keys are looked up in the order in which they came; the first one wins.
class JsonObject {
public:
    explicit JsonObject(simdjson::dom::object object)
        : m_object(object)
    {
    }

    [[nodiscard]] std::optional<JsonValue> value(std::string_view key) const;
    [[nodiscard]] bool contains(std::string_view key) const { return value(key).has_value(); }

    [[nodiscard]] std::optional<std::string_view> view(std::string_view key) const;
    [[nodiscard]] std::optional<QString> string(std::string_view key) const;
    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const;
    [[nodiscard]] std::optional<qint64> integer(std::string_view key) const;
    [[nodiscard]] std::optional<double> number(std::string_view key) const;
    [[nodiscard]] std::optional<JsonObject> object(std::string_view key) const;
    [[nodiscard]] std::optional<JsonArray> array(std::string_view key) const;
    /// The objects of the array at `key`; elements of another type are left out. Empty if absent.
    [[nodiscard]] std::vector<JsonObject> objects(std::string_view key) const;
    /// The strings of the array at `key`; elements of another type are left out. Empty if absent.
    [[nodiscard]] QStringList strings(std::string_view key) const;

    [[nodiscard]] simdjson::dom::object raw() const { return m_object; }

    /// This object as compact JSON text.
    [[nodiscard]] QByteArray compact() const;
    /// This object indented by two blanks, the keys of every object in ascending order.
    [[nodiscard]] QString pretty() const;
    /// Writes every member but the one named `without` into an object that `writer` has open.
    void writeMembers(JsonWriter& writer, std::string_view without = {}) const;

private:
    simdjson::dom::object m_object;
};

/// A view of an array.
class JsonArray {
public:
    explicit JsonArray(simdjson::dom::array array)
        : m_array(array)
    {
    }

    [[nodiscard]] qsizetype size() const { return qsizetype(m_array.size()); }
    [[nodiscard]] simdjson::dom::array raw() const { return m_array; }

private:
    simdjson::dom::array m_array;
};

/// Parses one text after another into memory that it keeps for the next, unless one was
/// extraordinarily long. Not to be shared between threads; a reader on each thread is cheap.
class JsonReader {
public:
    /// The object in `text`, absent if `text` is anything else. Invalid UTF-8 and lone surrogates
    /// are repaired with U+FFFD. The result is valid until the next call.
    [[nodiscard]] std::optional<JsonObject> object(std::string_view text);
    [[nodiscard]] std::optional<JsonObject> object(const QByteArray& text);

    /// How many readable bytes behind a text spare the copy of it.
    static constexpr std::size_t Padding = simdjson::SIMDJSON_PADDING;
    /// The same for a text with at least `Padding` readable bytes of any value behind it.
    [[nodiscard]] std::optional<JsonObject> paddedObject(std::string_view text);

    /// Whatever value `text` is; on failure the parser's words. Text that is no UTF-8 is not
    /// repaired here. The result is valid until the next call.
    [[nodiscard]] Expected<JsonValue, QString> value(std::string_view text);

private:
    std::optional<JsonObject> parse(std::string_view text, bool isPadded);
    simdjson::error_code parseAnyway(std::string_view text, bool isPadded, bool mayBeDamaged,
                                     simdjson::dom::element& element);
    void fit(std::size_t size);

    simdjson::dom::parser m_parser;
};

} // namespace Bralto
