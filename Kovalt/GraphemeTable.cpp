#include "Kovalt/GraphemeTable.h"

#include "Kovalt/Utf8.h"

namespace Kovalt {

namespace {

constexpr std::size_t EntryCost = 160; ///< What an entry takes beside its text.
constexpr std::size_t ExtensionCost = 48;

char32_t scalarOf(std::int32_t code)
{
    return code > 0 && code <= 0x10FFFF ? char32_t(code) : U' ';
}

} // namespace

GraphemeTable::GraphemeTable(std::size_t byteBudget)
    : m_byteBudget(byteBudget)
{
}

const GraphemeTable::Entry* GraphemeTable::entry(std::int32_t code) const
{
    const std::int64_t index = std::int64_t(code) - CharData::FirstGrapheme;
    const bool isKnown = index >= 0 && index < std::int64_t(m_entries.size());
    return isKnown ? &m_entries[std::size_t(index)] : nullptr;
}

bool GraphemeTable::spend(std::size_t bytes)
{
    if (bytes > m_byteBudget - m_bytes)
        return false;
    m_bytes += bytes;
    return true;
}

std::optional<std::int32_t> GraphemeTable::intern(std::string_view grapheme)
{
    if (grapheme.empty())
        return 0;
    std::size_t position = 0;
    const char32_t first = Utf8::next(grapheme, position);
    if (position == grapheme.size())
        return std::int32_t(first);
    if (grapheme == "\r\n")
        return 10;
    if (const auto found = m_codes.find(grapheme); found != m_codes.end())
        return found->second;
    if (grapheme.size() > LongestGrapheme || !spend(EntryCost + grapheme.size()))
        return std::nullopt;

    Entry made{std::string(grapheme), first, {}};
    for (position = 0; position < grapheme.size();) {
        made.lastScalar = Utf8::next(grapheme, position);
        made.state.advance(made.lastScalar);
    }
    const auto code = CharData::FirstGrapheme + std::int32_t(m_entries.size());
    m_codes.emplace(m_entries.emplace_back(std::move(made)).text, code);
    return code;
}

std::int32_t GraphemeTable::codeFor(std::string_view grapheme)
{
    if (const auto code = intern(grapheme))
        return *code;
    std::size_t position = 0;
    return std::int32_t(Utf8::next(grapheme, position));
}

std::optional<std::int32_t> GraphemeTable::extended(std::int32_t code, char32_t scalar)
{
    const std::uint64_t key = std::uint64_t(std::uint32_t(code)) << 32 | scalar;
    Extension& recent = m_recent[recentSlot(code, scalar)];
    if (const auto found = m_extensions.find(key); found != m_extensions.end()) {
        recent = {code, scalar, found->second};
        return found->second;
    }
    std::string text;
    appendText(text, code);
    Utf8::append(text, scalar);
    const auto made = intern(text);
    if (made && spend(ExtensionCost))
        m_extensions.emplace(key, *made);
    return made;
}

bool GraphemeTable::joins(std::int32_t code, char32_t scalar) const
{
    if (const Entry* known = entry(code))
        return known->state.wouldContinue(scalar);
    GraphemeState state;
    state.advance(scalarOf(code));
    return state.wouldContinue(scalar);
}

char32_t GraphemeTable::lastScalar(std::int32_t code) const
{
    if (const Entry* known = entry(code))
        return known->lastScalar;
    return code == 0 ? 0 : scalarOf(code);
}

char32_t GraphemeTable::firstScalar(std::int32_t code) const
{
    if (const Entry* known = entry(code)) {
        std::size_t position = 0;
        return Utf8::next(known->text, position);
    }
    return scalarOf(code);
}

std::string GraphemeTable::textFor(std::int32_t code) const
{
    std::string text;
    appendText(text, code);
    return text;
}

void GraphemeTable::appendText(std::string& text, std::int32_t code) const
{
    if (const Entry* known = entry(code))
        text += known->text;
    else
        Utf8::append(text, scalarOf(code));
}

} // namespace Kovalt
