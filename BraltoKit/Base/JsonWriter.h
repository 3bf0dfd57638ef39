#pragma once

#include <QByteArray>
#include <QString>

#include <concepts>
#include <optional>
#include <string_view>

namespace Bralto {

/// Builds one JSON text from front to back. The caller opens and closes in order and gives every
/// value inside an object a key; the writer sets commas, quotes and indents.
class JsonWriter {
public:
    enum class Layout {
        Compact,
        Indented, ///< By two blanks a level. What is nested deeper than 32 levels stays compact.
    };

    explicit JsonWriter(Layout layout = Layout::Compact)
        : m_layout(layout)
    {
    }

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }

    void key(std::string_view utf8);

    /// Text in UTF-8; what is invalid in it goes through as it is.
    void value(std::string_view utf8);
    void value(const char* utf8) { value(std::string_view(utf8)); }
    void value(const QString& text);
    template <std::same_as<bool> Boolean>
    void value(Boolean boolean)
    {
        raw(boolean ? "true" : "false");
    }
    template <std::signed_integral Integer>
    void value(Integer integer)
    {
        number(integer);
    }
    void value(quint64 integer);
    /// Always with a fraction or an exponent, so that it is read as a double again. A number that
    /// JSON can't spell is `null`.
    void value(double number);
    void null() { raw("null"); }
    /// A value that is JSON already, or text that needs no escape, with its quotes.
    void raw(std::string_view json);

    template <typename Value>
    void member(std::string_view name, const Value& content)
    {
        key(name);
        value(content);
    }
    /// Nothing at all if `content` is absent.
    template <typename Value>
    void member(std::string_view name, const std::optional<Value>& content)
    {
        if (content)
            member(name, *content);
    }

    /// The text written so far; the writer is empty afterwards.
    [[nodiscard]] QByteArray take();

private:
    void number(qint64 integer);
    void open(char bracket);
    void close(char bracket);
    void separate();
    void breakLine();
    void quote(std::string_view utf8);

    QByteArray m_text;
    Layout m_layout;
    int m_depth = 0;
    bool m_needsComma = false;
    bool m_followsKey = false;
};

} // namespace Bralto
