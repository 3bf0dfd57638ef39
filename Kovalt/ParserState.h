#pragma once

#include <cstdint>

namespace Kovalt {

/// Where in a sequence the parser stands.
enum class ParserState : std::uint8_t {
    Ground,
    Escape,
    EscapeIntermediate,
    CsiEntry,
    CsiParam,
    CsiIntermediate,
    CsiIgnore,
    SosPmApcString,
    OscString,
    ApcString,
    DcsEntry,
    DcsParam,
    DcsIgnore,
    DcsIntermediate,
    DcsPassthrough,
};

/// What a byte does on its way to the next state.
enum class ParserAction : std::uint8_t {
    Ignore,
    Error,
    Print,
    Execute,
    OscStart,
    OscPut,
    OscEnd,
    CsiDispatch,
    Param,
    Collect,
    EscDispatch,
    Clear,
    DcsHook,
    DcsPut,
    DcsUnhook,
};

} // namespace Kovalt
