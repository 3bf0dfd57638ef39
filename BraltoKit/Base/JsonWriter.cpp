#include "Base/JsonWriter.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Bralto {

namespace {

// A short text whose values all lie deep would grow by the square of its depth otherwise.
constexpr int DeepestIndent = 32;

constexpr bool needsEscape(char character)
{
    return static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\';
}

void appendEscape(QByteArray& text, char character)
{
    switch (character) {
    case '"':
        text.append("\\\"");
        return;
    case '\\':
        text.append("\\\\");
        return;
    case '\n':
        text.append("\\n");
        return;
    case '\r':
        text.append("\\r");
        return;
    case '\t':
        text.append("\\t");
        return;
    default: {
        static constexpr char Digits[] = "0123456789abcdef";
        const std::array<char, 6> escape{
            '\\', 'u', '0', '0', Digits[(character >> 4) & 0xf], Digits[character & 0xf]};
        text.append(escape.data(), escape.size());
    }
    }
}

} // namespace

void JsonWriter::key(std::string_view utf8)
{
    separate();
    quote(utf8);
    m_text.append(m_layout == Layout::Indented ? ": " : ":");
    m_followsKey = true;
}

void JsonWriter::value(std::string_view utf8)
{
    separate();
    quote(utf8);
}

void JsonWriter::value(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    value(std::string_view(utf8.constData(), size_t(utf8.size())));
}

void JsonWriter::value(quint64 integer)
{
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), integer).ptr;
    raw({digits.data(), size_t(end - digits.data())});
}

void JsonWriter::number(qint64 integer)
{
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), integer).ptr;
    raw({digits.data(), size_t(end - digits.data())});
}

void JsonWriter::value(double number)
{
    if (!std::isfinite(number)) {
        null();
        return;
    }
    std::array<char, 40> digits{};
    auto end = std::to_chars(digits.data(), digits.data() + 32, number).ptr;
    const std::string_view written(digits.data(), size_t(end - digits.data()));
    if (written.find_first_of(".e") == std::string_view::npos) {
        *end++ = '.';
        *end++ = '0';
    }
    raw({digits.data(), size_t(end - digits.data())});
}

void JsonWriter::raw(std::string_view json)
{
    separate();
    m_text.append(json.data(), qsizetype(json.size()));
}

QByteArray JsonWriter::take()
{
    m_depth = 0;
    m_needsComma = false;
    m_followsKey = false;
    return std::exchange(m_text, {});
}

void JsonWriter::open(char bracket)
{
    separate();
    m_text.append(bracket);
    ++m_depth;
    m_needsComma = false;
}

void JsonWriter::close(char bracket)
{
    const bool isEmpty = !m_needsComma;
    --m_depth;
    if (!isEmpty && m_depth < DeepestIndent)
        breakLine();
    m_text.append(bracket);
    m_needsComma = true;
}

void JsonWriter::separate()
{
    if (!m_followsKey) {
        if (m_needsComma)
            m_text.append(',');
        if (m_depth > 0 && m_depth <= DeepestIndent)
            breakLine();
    }
    m_followsKey = false;
    m_needsComma = true;
}

void JsonWriter::breakLine()
{
    if (m_layout == Layout::Compact)
        return;
    m_text.append('\n');
    m_text.append(qsizetype(m_depth) * 2, ' ');
}

void JsonWriter::quote(std::string_view utf8)
{
    m_text.append('"');
    auto run = utf8.begin();
    for (auto at = utf8.begin(); at != utf8.end(); ++at) {
        if (!needsEscape(*at))
            continue;
        m_text.append(run, at - run);
        appendEscape(m_text, *at);
        run = at + 1;
    }
    m_text.append(run, utf8.end() - run);
    m_text.append('"');
}

} // namespace Bralto
