// The parser's strings: operating-system commands, application commands, device control.

#include "Kovalt/ParserRun.h"
#include "Kovalt/TextScan.h"

#include <algorithm>
#include <limits>

namespace Kovalt {

namespace {

constexpr std::uint8_t Bell = 0x07;
constexpr std::uint8_t Cancel = 0x18;
constexpr std::uint8_t Substitute = 0x1A;
constexpr std::uint8_t Escape = 0x1B;

constexpr bool stopsString(std::uint8_t code)
{
    return code == Bell || code == Cancel || code == Escape;
}

constexpr bool isContinuation(std::uint8_t code)
{
    return code >= 0x80 && code <= 0xBF;
}

/// How many bytes a UTF-8 character has that begins with this byte; 1 if none does.
constexpr std::size_t characterLength(std::uint8_t lead)
{
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 1;
}

bool endsInsideCharacter(std::span<const std::uint8_t> bytes)
{
    for (std::size_t length = 1; length <= std::min<std::size_t>(bytes.size(), 3); ++length) {
        const auto code = bytes[bytes.size() - length];
        if (!isContinuation(code))
            return characterLength(code) > length;
    }
    return false;
}

} // namespace

std::optional<std::int64_t> parseDecimal(std::span<const std::uint8_t> digits)
{
    constexpr auto Limit = std::numeric_limits<std::int64_t>::max();
    std::int64_t value = 0;
    for (const auto code : digits) {
        if (code < '0' || code > '9')
            return std::nullopt;
        const std::int64_t digit = code - '0';
        if (value > (Limit - digit) / 10)
            return std::nullopt;
        value = value * 10 + digit;
    }
    return digits.empty() ? std::nullopt : std::optional(value);
}

void EscapeSequenceParser::beginString(Run& run, ParserState next)
{
    flushPrint(run);
    (next == ParserState::ApcString ? m_apc : m_osc).clear();
}

/// Takes everything up to BEL, CAN or ESC, which stay for the table. Other controls are dropped.
void EscapeSequenceParser::putString(Run& run)
{
    auto& string = m_sequence.state == ParserState::ApcString ? m_apc : m_osc;
    while (run.at < run.data.size()) {
        const auto text = run.rest().first(scanText(run.rest()).length);
        string.append(text, m_stringLimit);
        run.at += text.size();
        while (run.at < run.data.size() && run.code() < 0x20) {
            if (stopsString(run.code()))
                return;
            ++run.at;
        }
    }
}

void EscapeSequenceParser::endString(Run& run, std::uint8_t code)
{
    if (code != Cancel && code != Substitute) {
        if (m_sequence.state == ParserState::ApcString)
            dispatchApc();
        else
            dispatchOsc();
    }
    endSequence(run, code);
}

void EscapeSequenceParser::dispatchOsc() const
{
    const auto bytes = m_osc.bytes();
    const auto separator = std::find(bytes.begin(), bytes.end(), std::uint8_t{';'});
    const auto length = static_cast<std::size_t>(separator - bytes.begin());
    if (const auto code = parseDecimal(bytes.first(length)))
        m_handlers.osc(*code, bytes.subspan(std::min(length + 1, bytes.size())));
}

void EscapeSequenceParser::dispatchApc() const
{
    if (!m_apc.isEmpty())
        m_handlers.apc(m_apc.bytes().front(), m_apc.bytes().subspan(1));
}

/// A character of a string whose first bytes came with the call before: its bytes from 0x80 to 0x9F
/// are no controls.
bool EscapeSequenceParser::continuesCharacter(const Run& run) const
{
    if (!isContinuation(run.code()))
        return false;
    if (m_sequence.state == ParserState::OscString)
        return endsInsideCharacter(m_osc.bytes());
    return m_sequence.state == ParserState::ApcString && endsInsideCharacter(m_apc.bytes());
}

void EscapeSequenceParser::hookDcs(std::uint8_t code)
{
    auto& sequence = m_sequence;
    sequence.dcsHandler = nullptr;
    sequence.dcsSize = 0;
    if (sequence.parameterLimitExceeded || sequence.collectLimitExceeded)
        return;
    sequence.dcsHandler = m_handlers.dcsHandler(collected(), code);
    if (sequence.dcsHandler != nullptr)
        sequence.dcsHandler->hook(collected(), parameters(), code);
}

/// Hands over the open run, unless the string has become too long for anybody.
void EscapeSequenceParser::putDcs(Run& run)
{
    auto& sequence = m_sequence;
    if (run.dcs < 0 || sequence.dcsHandler == nullptr)
        return;
    const auto data = run.since(run.dcs);
    sequence.dcsSize += data.size();
    if (sequence.dcsSize > m_stringLimit) {
        sequence.dcsHandler->abandon();
        sequence.dcsHandler = nullptr;
    } else {
        sequence.dcsHandler->put(data);
    }
}

void EscapeSequenceParser::unhookDcs(Run& run, std::uint8_t code)
{
    putDcs(run);
    if (m_sequence.dcsHandler != nullptr)
        m_sequence.dcsHandler->unhook();
    m_sequence.dcsHandler = nullptr;
    endSequence(run, code);
}

/// A string is over. An ESC that ended it begins the next sequence.
void EscapeSequenceParser::endSequence(Run& run, std::uint8_t code)
{
    run.close();
    clearSequence();
    m_sequence.state = code == Escape ? ParserState::Escape : ParserState::Ground;
    ++run.at;
}

} // namespace Kovalt
