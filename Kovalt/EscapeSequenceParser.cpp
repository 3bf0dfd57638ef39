#include "Kovalt/EscapeSequenceParser.h"

#include "Kovalt/ParserRun.h"
#include "Kovalt/ProfileInterval.h"
#include "Kovalt/TextScan.h"

#include <algorithm>

namespace Kovalt {

namespace {

constexpr std::uint8_t LastControl = 0x1F;
constexpr std::uint8_t EndOfMedium = 0x19;
constexpr std::uint8_t Escape = 0x1B;

constexpr bool isDigit(std::uint8_t code)
{
    return code >= '0' && code <= '9';
}

constexpr std::int32_t appendingDigit(std::int32_t value, std::uint8_t digit)
{
    return std::min(value * 10 + (digit - '0'), EscapeSequenceParser::MaximumParameter);
}

} // namespace

EscapeSequenceParser::EscapeSequenceParser(ParserHandlers& handlers)
    : m_handlers(handlers)
    , m_table(sharedVt500Table())
{
}

void EscapeSequenceParser::reset()
{
    // What a handler resets is written over by the end of the sequence that called it.
    if (!m_parsing) {
        m_sequence = {};
        m_osc.clear();
        m_apc.clear();
        m_osc.commit();
        m_apc.commit();
    }
    m_handlers.printStateReset();
}

void EscapeSequenceParser::parse(std::span<const std::uint8_t> data) noexcept
{
    const ProfileInterval interval("ParserProfile", "Parser.Parse");
    const Sequence before = m_sequence;
    Run run{data};
    m_parsing = true;
    while (run.at < data.size() && !run.aborted) {
        switch (m_sequence.state) {
        case ParserState::Ground:
            parseGround(run);
            break;
        case ParserState::CsiEntry:
        case ParserState::CsiParam:
            parseCsi(run);
            break;
        case ParserState::DcsPassthrough:
            parseDcsData(run);
            break;
        default:
            parseByte(run);
        }
    }
    m_parsing = false;
    if (run.aborted) {
        m_sequence = before;
        m_osc.rollBack();
        m_apc.rollBack();
        return;
    }
    finish(run);
    m_osc.commit();
    m_apc.commit();
}

/// Text, controls and whole control sequences, as long as nothing leads away from the ground state.
void EscapeSequenceParser::parseGround(Run& run)
{
    while (run.at < run.data.size() && m_sequence.state == ParserState::Ground) {
        const auto code = run.code();
        if (code > LastControl) {
            parseText(run);
        } else if (code == Escape) {
            parseEscape(run);
        } else if (code == EndOfMedium) {
            parseByte(run);
            return;
        } else {
            execute(run, code);
            ++run.at;
        }
    }
}

/// The text up to the next control. In the ground state 0x7F and 0x80 to 0x9F are text too.
void EscapeSequenceParser::parseText(Run& run)
{
    const auto text = scanText(run.rest());
    if (run.print < 0) {
        run.print = run.index();
        run.textKind = text.printableAscii ? TextKind::PrintableAscii : TextKind::Mixed;
    }
    run.at += text.length;
}

/// ESC in the ground state and, if it is there already, the control sequence that it begins.
void EscapeSequenceParser::parseEscape(Run& run)
{
    clear(run);
    ++run.at;
    m_sequence.state = ParserState::Escape;
    if (run.at < run.data.size() && run.code() == '[') {
        ++run.at;
        m_sequence.state = ParserState::CsiEntry;
        parseCsi(run);
    }
}

/// Marker, digits, separators and the final byte of a control sequence; anything else is the
/// table's matter.
void EscapeSequenceParser::parseCsi(Run& run)
{
    auto& sequence = m_sequence;
    const auto data = run.data;
    auto at = run.at;
    if (sequence.state == ParserState::CsiEntry && at < data.size() && data[at] >= '<' &&
        data[at] <= '?') {
        collect(data[at++]);
        sequence.state = ParserState::CsiParam;
    }

    std::size_t count = sequence.parameterCount;
    auto value = sequence.parameters[count - 1];
    auto exceeded = sequence.parameterLimitExceeded;
    auto state = sequence.state;
    for (; at < data.size(); ++at) {
        const auto code = data[at];
        if (isDigit(code)) {
            if (!exceeded)
                value = appendingDigit(value, code);
        } else if (code == ';' || (code == ':' && state == ParserState::CsiParam)) {
            if (count < MaximumParameters && !exceeded) {
                sequence.parameters[count - 1] = value;
                sequence.separators[count - 1] = code;
                ++count;
                value = 0;
            } else {
                exceeded = true;
            }
        } else {
            break;
        }
        state = ParserState::CsiParam;
    }
    sequence.parameters[count - 1] = value;
    sequence.parameterCount = static_cast<std::uint8_t>(count);
    sequence.parameterLimitExceeded = exceeded;
    sequence.state = state;
    run.at = at;

    if (at == data.size())
        return;
    if (const auto code = data[at]; code >= 0x40 && code <= 0x7E) {
        dispatchCsi(code);
        sequence.state = ParserState::Ground;
        ++run.at;
    } else {
        parseByte(run);
    }
}

void EscapeSequenceParser::parseDcsData(Run& run)
{
    const auto length = printableAsciiLength(run.rest());
    if (length == 0) {
        parseByte(run);
        return;
    }
    if (run.dcs < 0)
        run.dcs = run.index();
    run.at += length;
}

void EscapeSequenceParser::parseByte(Run& run)
{
    const auto code = run.code();
    if (run.at == 0 && continuesCharacter(run)) {
        putString(run);
        return;
    }
    const auto [action, next] = m_table.entry(m_sequence.state, code);
    act(run, code, action, next);
}

void EscapeSequenceParser::act(Run& run, std::uint8_t code, ParserAction action, ParserState next)
{
    auto& state = m_sequence.state;
    switch (action) {
    case ParserAction::Ignore:
        ignore(run);
        break;
    case ParserAction::Error:
        error(run, code, next);
        ++run.at;
        return;
    case ParserAction::Print:
        // Text in the ground state never comes this far.
        break;
    case ParserAction::Execute:
        execute(run, code);
        break;
    case ParserAction::OscStart:
        beginString(run, next);
        break;
    case ParserAction::OscPut:
        putString(run);
        return;
    case ParserAction::OscEnd:
        endString(run, code);
        return;
    case ParserAction::CsiDispatch:
        dispatchCsi(code);
        break;
    case ParserAction::Param:
        addParameterByte(code);
        break;
    case ParserAction::Collect:
        collect(code);
        break;
    case ParserAction::EscDispatch:
        dispatchEsc(code);
        break;
    case ParserAction::Clear:
        clear(run);
        break;
    case ParserAction::DcsHook:
        hookDcs(code);
        break;
    case ParserAction::DcsPut:
        if (run.dcs < 0)
            run.dcs = run.index();
        break;
    case ParserAction::DcsUnhook:
        unhookDcs(run, code);
        return;
    }
    state = next;
    ++run.at;
}

/// The data is used up: what its end leaves open goes out.
void EscapeSequenceParser::finish(Run& run)
{
    if (m_sequence.state == ParserState::Ground)
        flushPrint(run);
    else if (m_sequence.state == ParserState::DcsPassthrough)
        putDcs(run);
}

void EscapeSequenceParser::ignore(Run& run)
{
    if (run.print >= 0)
        flushPrint(run);
    else
        putDcs(run);
    run.close();
}

void EscapeSequenceParser::execute(Run& run, std::uint8_t code)
{
    flushPrint(run);
    m_handlers.execute(code);
}

void EscapeSequenceParser::error(Run& run, std::uint8_t code, ParserState next)
{
    auto& state = m_sequence.state;
    if (code >= 0xA0) {
        if (state == ParserState::CsiIgnore || state == ParserState::DcsIgnore)
            return;
        if (state == ParserState::DcsPassthrough) {
            if (run.dcs < 0)
                run.dcs = run.index();
            return;
        }
    }
    ParsingState record{run.at,        code,          state,       run.print,   run.dcs,
                        m_osc.bytes(), m_apc.bytes(), collected(), parameters()};
    m_handlers.error(record);
    run.aborted = record.abort;
    // An open run of text goes on past this byte, which lies in it.
    run.textKind = TextKind::Mixed;
    state = next;
}

void EscapeSequenceParser::addParameterByte(std::uint8_t code)
{
    auto& sequence = m_sequence;
    if (isDigit(code)) {
        auto& last = sequence.parameters[sequence.parameterCount - 1U];
        if (!sequence.parameterLimitExceeded)
            last = appendingDigit(last, code);
    } else if (sequence.parameterCount < MaximumParameters && !sequence.parameterLimitExceeded) {
        sequence.separators[sequence.parameterCount - 1U] = code;
        sequence.parameters[sequence.parameterCount] = 0;
        ++sequence.parameterCount;
    } else {
        sequence.parameterLimitExceeded = true;
    }
}

void EscapeSequenceParser::collect(std::uint8_t code)
{
    auto& sequence = m_sequence;
    if (sequence.collectCount < MaximumCollected)
        sequence.collect[sequence.collectCount++] = code;
    else
        sequence.collectLimitExceeded = true;
}

void EscapeSequenceParser::dispatchCsi(std::uint8_t code)
{
    if (m_sequence.parameterLimitExceeded || m_sequence.collectLimitExceeded)
        return;
    m_handlers.csi({parameters(),
                    {m_sequence.separators.data(), m_sequence.parameterCount - 1U},
                    collected(),
                    code});
}

void EscapeSequenceParser::dispatchEsc(std::uint8_t code)
{
    if (!m_sequence.collectLimitExceeded)
        m_handlers.esc(collected(), code);
}

void EscapeSequenceParser::flushPrint(Run& run)
{
    if (run.print >= 0) {
        const auto text = run.since(run.print);
        run.print = -1;
        m_handlers.print(text, run.textKind);
    }
}

void EscapeSequenceParser::clear(Run& run)
{
    flushPrint(run);
    run.close();
    clearSequence();
}

void EscapeSequenceParser::clearSequence()
{
    auto& sequence = m_sequence;
    sequence.parameterLimitExceeded = false;
    sequence.collectLimitExceeded = false;
    sequence.parameterCount = 1;
    sequence.parameters[0] = 0;
    sequence.collectCount = 0;
    m_osc.clear();
    m_apc.clear();
    m_handlers.printStateReset();
}

} // namespace Kovalt
