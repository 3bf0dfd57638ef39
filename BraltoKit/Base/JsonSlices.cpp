#include "Base/JsonSlices.h"

#include <algorithm>

namespace Bralto {

namespace {

constexpr std::string_view Blanks = " \t\r\n";
constexpr std::string_view ScalarEnds = ",]} \t\r\n";
constexpr std::string_view Marks = "\"[]{}";

} // namespace

JsonSlices::JsonSlices(std::string_view container)
    : m_text(container)
{
    skipBlanks();
    m_hasKeys = m_at < m_text.size() && m_text[m_at] == '{';
}

std::optional<std::string_view> JsonSlices::next()
{
    // Behind the opening bracket, the last comma, or at the closing bracket.
    if (m_at < m_text.size())
        ++m_at;
    skipBlanks();
    if (m_at >= m_text.size() || m_text[m_at] == ']' || m_text[m_at] == '}') {
        m_at = m_text.size();
        return std::nullopt;
    }
    if (m_hasKeys) {
        skipString();
        skipBlanks();
        if (m_at < m_text.size())
            ++m_at; // The colon.
        skipBlanks();
    }
    const std::size_t begin = m_at;
    skipValue();
    const std::string_view slice = m_text.substr(begin, m_at - begin);
    skipBlanks();
    if (m_at < m_text.size() && m_text[m_at] != ',')
        m_at = m_text.size();
    return slice;
}

void JsonSlices::skipBlanks()
{
    m_at = std::min(m_text.find_first_not_of(Blanks, m_at), m_text.size());
}

void JsonSlices::skipString()
{
    ++m_at;
    while (m_at < m_text.size() && m_text[m_at] != '"')
        m_at += m_text[m_at] == '\\' ? 2 : 1;
    m_at = std::min(m_at + 1, m_text.size());
}

void JsonSlices::skipValue()
{
    std::size_t depth = 0;
    do {
        const char mark = m_at < m_text.size() ? m_text[m_at] : '\0';
        if (mark == '"') {
            skipString();
        } else if (mark == '[' || mark == '{') {
            ++depth;
            ++m_at;
        } else if (depth > 0) {
            --depth;
            ++m_at;
        } else {
            m_at = std::min(m_text.find_first_of(ScalarEnds, m_at), m_text.size());
        }
        if (depth > 0)
            m_at = std::min(m_text.find_first_of(Marks, m_at), m_text.size());
    } while (depth > 0 && m_at < m_text.size());
}

} // namespace Bralto
