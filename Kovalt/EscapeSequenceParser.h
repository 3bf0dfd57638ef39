#pragma once

#include "Kovalt/ParserHandlers.h"
#include "Kovalt/ParserState.h"
#include "Kovalt/ParserString.h"
#include "Kovalt/TransitionTable.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace Kovalt {

/// Cuts the bytes that a process writes into text, controls, sequences and strings, and calls
/// `ParserHandlers` for each, in order and as early as the bytes allow. It never decodes text:
/// text and device-control data leave it as views of the caller's buffer.
///
/// The data may end anywhere. State, strings, parameters, collected bytes and the active handler
/// survive to the next call, so a sequence may be cut at any byte.
///
/// One thread at a time; not reentrant: a handler may call `reset()`, never `parse()`. Two parsers
/// share the transition table only.
class EscapeSequenceParser {
public:
    /// A sequence with more parameters is consumed and not dispatched.
    static constexpr std::size_t MaximumParameters = 24;
    /// A larger parameter has this value.
    static constexpr std::int32_t MaximumParameter = 65535;
    /// A sequence with more intermediates and private markers is consumed and not dispatched.
    static constexpr std::size_t MaximumCollected = 32;
    /// An operating-system, application or device-control string that is longer (64 MiB unless set)
    /// is malformed: it is consumed to its end, dispatched to nobody, and none of it is kept.
    static constexpr std::size_t DefaultStringLimit = 64U << 20U;

    /// `handlers` must outlive the parser.
    explicit EscapeSequenceParser(ParserHandlers& handlers);
    EscapeSequenceParser(const EscapeSequenceParser&) = delete;
    EscapeSequenceParser& operator=(const EscapeSequenceParser&) = delete;

    /// Never fails: what can't be understood is dropped.
    void parse(std::span<const std::uint8_t> data) noexcept;
    /// Back to the initial state, with nothing half done. Inside a handler the sequence that is
    /// being carried out still ends as it would have ended.
    void reset();

    [[nodiscard]] ParserState currentState() const { return m_sequence.state; }
    [[nodiscard]] std::size_t stringLimit() const { return m_stringLimit; }
    void setStringLimit(std::size_t bytes) { m_stringLimit = bytes; }

private:
    struct Run;

    void parseGround(Run& run);
    void parseText(Run& run);
    void parseEscape(Run& run);
    void parseCsi(Run& run);
    void parseDcsData(Run& run);
    void parseByte(Run& run);
    void act(Run& run, std::uint8_t code, ParserAction action, ParserState next);
    void finish(Run& run);

    void ignore(Run& run);
    void execute(Run& run, std::uint8_t code);
    void error(Run& run, std::uint8_t code, ParserState next);
    void addParameterByte(std::uint8_t code);
    void collect(std::uint8_t code);
    void dispatchCsi(std::uint8_t code);
    void dispatchEsc(std::uint8_t code);

    void beginString(Run& run, ParserState next);
    void putString(Run& run);
    void endString(Run& run, std::uint8_t code);
    void dispatchOsc() const;
    void dispatchApc() const;
    [[nodiscard]] bool continuesCharacter(const Run& run) const;

    void hookDcs(std::uint8_t code);
    void putDcs(Run& run);
    void unhookDcs(Run& run, std::uint8_t code);

    void flushPrint(Run& run);
    void clear(Run& run);
    void endSequence(Run& run, std::uint8_t code);
    void clearSequence();

    [[nodiscard]] std::span<const std::int32_t> parameters() const
    {
        return {m_sequence.parameters.data(), m_sequence.parameterCount};
    }
    [[nodiscard]] std::span<const std::uint8_t> collected() const
    {
        return {m_sequence.collect.data(), m_sequence.collectCount};
    }

    /// What a call that is aborted takes back, but for the strings.
    struct Sequence {
        ParserState state = ParserState::Ground;
        bool parameterLimitExceeded = false;
        bool collectLimitExceeded = false;
        std::uint8_t parameterCount = 1; ///< Never 0.
        std::uint8_t collectCount = 0;
        std::array<std::int32_t, MaximumParameters> parameters{};
        std::array<std::uint8_t, MaximumParameters> separators{};
        std::array<std::uint8_t, MaximumCollected> collect{};
        DcsHandler* dcsHandler = nullptr;
        std::size_t dcsSize = 0;
    };

    ParserHandlers& m_handlers;
    const TransitionTable& m_table;
    std::size_t m_stringLimit = DefaultStringLimit;
    bool m_parsing = false;
    Sequence m_sequence;
    ParserString m_osc;
    ParserString m_apc;
};

/// The decimal number that all of `digits` makes. None when it is empty, holds anything else, or
/// passes the signed 64-bit range.
[[nodiscard]] std::optional<std::int64_t> parseDecimal(std::span<const std::uint8_t> digits);

} // namespace Kovalt
