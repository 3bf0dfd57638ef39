#pragma once

#include "Kovalt/ParserState.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace Kovalt {

/// What is known of a run of text before anybody looked at it again.
enum class TextKind : std::uint8_t {
    PrintableAscii, ///< Every byte is 0x20 to 0x7E.
    Mixed,          ///< Anything else: UTF-8, 0x7F, the bytes 0x80 to 0x9F, sometimes a stray 0x19.
};

/// A control sequence: ESC [ parameters collected-bytes final. The views end with the call.
struct CsiSequence {
    /// 1 to 24 values of 0 to 65535. One that was left out is 0; without any there is a single 0.
    std::span<const std::int32_t> parameters;
    /// ";" or ":" in front of each parameter but the first.
    std::span<const std::uint8_t> separators;
    /// Private markers and intermediates in the order of their arrival.
    std::span<const std::uint8_t> collect;
    /// 0x40 to 0x7E.
    std::uint8_t code = 0;
};

/// Takes the data of one device-control string.
class DcsHandler {
public:
    virtual ~DcsHandler() = default;
    /// The string begins. `parameters` as in `CsiSequence`; `code` is the final byte.
    virtual void hook(std::span<const std::uint8_t> collect,
                      std::span<const std::int32_t> parameters, std::uint8_t code) = 0;
    /// The next part of the data, never empty, in pieces of any size.
    virtual void put(std::span<const std::uint8_t> data) = 0;
    /// The string ended as it should.
    virtual void unhook() = 0;
    /// The string passed the limit. What was kept of it can go; neither `put` nor `unhook` follows.
    virtual void abandon() {}
};

/// What stood around a byte that fits nowhere. The views end with the call.
struct ParsingState {
    std::size_t position = 0; ///< The byte's index in the data of this call.
    std::uint8_t code = 0;    ///< The byte.
    ParserState currentState = ParserState::Ground;
    std::ptrdiff_t print = -1; ///< Where the pending run of text starts; -1 without one.
    std::ptrdiff_t dcs =
        -1; ///< Where the pending run of device-control data starts; -1 without one.
    std::span<const std::uint8_t> osc;
    std::span<const std::uint8_t> apc;
    std::span<const std::uint8_t> collect;
    std::span<const std::int32_t> parameters;
    /// Set by the handler: `parse()` returns at once, as if it had not been called.
    bool abort = false;
};

/// What the parser calls. Every view points into the caller's data or into the parser and ends with
/// the call. None of these may throw or call `EscapeSequenceParser::parse`.
class ParserHandlers {
public:
    virtual ~ParserHandlers() = default;

    /// Text, never empty, not decoded. A multi-byte character may be cut by the end of the data.
    virtual void print(std::span<const std::uint8_t> text, TextKind kind) = 0;
    /// A sequence began or a string ended: half a character that waits for its rest is dropped.
    virtual void printStateReset() = 0;
    /// A control, 0x00 to 0x1F or 0x80 to 0x9A.
    virtual void execute(std::uint8_t code) = 0;
    virtual void csi(const CsiSequence& sequence) = 0;
    /// ESC collected-bytes code. The ESC \ that ends a string comes here too.
    virtual void esc(std::span<const std::uint8_t> collect, std::uint8_t code) = 0;
    /// Only with a numeric code; `data` is what follows the first ";".
    virtual void osc(std::int64_t code, std::span<const std::uint8_t> data) = 0;
    /// `command` is the string's first byte, `data` all that follows it.
    virtual void apc(std::uint8_t command, std::span<const std::uint8_t> data) = 0;
    /// Who takes the device-control string that begins. With null it is consumed and lost. What is
    /// returned must live as long as these handlers.
    virtual DcsHandler* dcsHandler(std::span<const std::uint8_t> collect, std::uint8_t code) = 0;
    /// A byte that fits nowhere. The parser goes on in the ground state unless `abort` is set.
    virtual void error(ParsingState& state) = 0;
};

} // namespace Kovalt
