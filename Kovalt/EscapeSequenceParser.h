#pragma once

#include "Kovalt/ParserHandlers.h"
#include "Kovalt/ParserState.h"
#include "Kovalt/ParserString.h"

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

    [[nodiscard]] ParserState currentState() const { return m_state; }
    [[nodiscard]] std::size_t stringLimit() const { return m_stringLimit; }
    void setStringLimit(std::size_t bytes) { m_stringLimit = bytes; }

private:
    struct Run;
    struct Snapshot;

    void parseByte(Run& run);
    void parseText(Run& run);
    void parseCsi(Run& run);
    void beginEscape(Run& run);

    void ignore(Run& run);
    void error(Run& run, ParserState next);
    void execute(Run& run);
    void beginString(Run& run, ParserState next);
    void putString(Run& run);
    void endString(Run& run);
    void dispatchOsc();
    void dispatchApc();
    void addParameterByte(std::uint8_t code);
    void collect(std::uint8_t code);
    void dispatchCsi(std::uint8_t code);
    void dispatchEsc(std::uint8_t code);
    void hookDcs(std::uint8_t code);
    void putDcs(Run& run);
    void unhookDcs(Run& run);

    void flushPrint(Run& run);
    void clear(Run& run);
    void clearSequence();
    [[nodiscard]] bool goesOnWithACharacter(const Run& run) const;
    [[nodiscard]] Snapshot snapshot() const;
    void restore(const Snapshot& snapshot);

    ParserHandlers& m_handlers;
    DcsHandler* m_dcsHandler = nullptr;
    std::size_t m_dcsSize = 0;
    std::size_t m_stringLimit = DefaultStringLimit;

    ParserState m_state = ParserState::Ground;
    bool m_parameterLimitExceeded = false;
    bool m_collectLimitExceeded = false;
    bool m_parsing = false;
    std::uint8_t m_parameterCount = 1;
    std::uint8_t m_collectCount = 0;
    std::array<std::int32_t, MaximumParameters> m_parameters{};
    std::array<std::uint8_t, MaximumParameters> m_separators{};
    std::array<std::uint8_t, MaximumCollected> m_collect{};
    ParserString m_osc;
    ParserString m_apc;
};

/// The decimal number that all of `digits` makes. None when it is empty, holds anything else, or
/// passes the signed 64-bit range.
[[nodiscard]] std::optional<std::int64_t> parseDecimal(std::span<const std::uint8_t> digits);

} // namespace Kovalt
