#include "Kovalt/TransitionTable.h"

#include <initializer_list>

namespace Kovalt {

namespace {

using enum ParserState;
using Action = ParserAction;

/// A set of byte codes; `with` adds a range to it.
class Codes {
public:
    constexpr Codes(std::uint8_t code) { m_has[code] = true; }
    constexpr Codes(std::uint8_t first, std::uint8_t last) { add(first, last); }

    [[nodiscard]] constexpr Codes with(std::uint8_t first, std::uint8_t last) const
    {
        Codes more = *this;
        more.add(first, last);
        return more;
    }
    [[nodiscard]] constexpr Codes with(std::uint8_t code) const { return with(code, code); }
    [[nodiscard]] constexpr bool has(std::size_t code) const { return m_has[code]; }

private:
    constexpr void add(std::uint8_t first, std::uint8_t last)
    {
        for (std::size_t code = first; code <= last; ++code)
            m_has[code] = true;
    }

    std::array<bool, 256> m_has{};
};

constexpr std::uint8_t LastColumn = 0xA0;
constexpr Codes Everything(0x00, LastColumn);
constexpr Codes Printables(0x20, 0x7E);
// 0x19 is in neither set: it is an error in every state.
constexpr Codes Executables = Codes(0x00, 0x18).with(0x1C, 0x1F);
constexpr Codes Intermediates(0x20, 0x2F);
constexpr Codes Finals(0x40, 0x7E);
constexpr Codes Markers(0x3C, 0x3F);
constexpr Codes DigitsAndSemicolon = Codes(0x30, 0x39).with(0x3B);

using States = std::initializer_list<ParserState>;
constexpr States AllStates = {Ground,    Escape,          EscapeIntermediate, CsiEntry,
                              CsiParam,  CsiIntermediate, CsiIgnore,          SosPmApcString,
                              OscString, ApcString,       DcsEntry,           DcsParam,
                              DcsIgnore, DcsIntermediate, DcsPassthrough};

/// Writes rules into a table. A later rule overwrites an earlier one.
class Builder {
public:
    void rule(States states, const Codes& codes, Action action, ParserState next)
    {
        for (const auto state : states)
            apply(state, codes, action, next);
    }
    void stay(States states, const Codes& codes, Action action)
    {
        for (const auto state : states)
            apply(state, codes, action, state);
    }
    [[nodiscard]] const TransitionTable& table() const { return m_table; }

private:
    void apply(ParserState state, const Codes& codes, Action action, ParserState next)
    {
        for (std::size_t code = 0; code <= LastColumn; ++code) {
            if (codes.has(code))
                m_table.set(state, static_cast<std::uint8_t>(code), action, next);
        }
    }

    TransitionTable m_table;
};

void addAnywhere(Builder& builder)
{
    builder.rule(AllStates, Everything, Action::Error, Ground);
    builder.stay({Ground}, Printables, Action::Print);

    const auto cancels = Codes(0x18).with(0x1A).with(0x80, 0x97).with(0x99, 0x9A);
    builder.rule(AllStates, cancels, Action::Execute, Ground);
    builder.rule(AllStates, 0x9C, Action::Ignore, Ground);
    builder.rule(AllStates, 0x1B, Action::Clear, Escape);
    builder.rule(AllStates, 0x9D, Action::OscStart, OscString);
    builder.rule(AllStates, Codes(0x98).with(0x9E), Action::Ignore, SosPmApcString);
    builder.rule(AllStates, 0x9F, Action::OscStart, ApcString);
    builder.rule(AllStates, 0x9B, Action::Clear, CsiEntry);
    builder.rule(AllStates, 0x90, Action::Clear, DcsEntry);
}

void addControls(Builder& builder)
{
    builder.rule({Ground}, Executables, Action::Execute, Ground);
    builder.stay({Escape}, Executables, Action::Execute);
    builder.stay({Escape}, 0x7F, Action::Ignore);
    builder.stay({OscString, ApcString}, Executables, Action::Ignore);
    builder.stay({CsiEntry, CsiParam, CsiIgnore, CsiIntermediate, EscapeIntermediate}, Executables,
                 Action::Execute);
    builder.stay({CsiEntry, CsiParam, CsiIntermediate, EscapeIntermediate}, 0x7F, Action::Ignore);
}

void addTextString(Builder& builder, ParserState string, std::uint8_t introducer)
{
    builder.rule({Escape}, introducer, Action::OscStart, string);
    builder.stay({string}, Printables.with(0x7F).with(LastColumn), Action::OscPut);
    const auto ends = Codes(0x9C).with(0x18).with(0x1A).with(0x1B).with(0x07);
    builder.rule({string}, ends, Action::OscEnd, Ground);
    builder.stay({string}, Codes(0x1C, 0x1F), Action::Ignore);
}

void addStrings(Builder& builder)
{
    addTextString(builder, OscString, 0x5D);
    addTextString(builder, ApcString, 0x5F);
    builder.rule({Escape}, Codes(0x58).with(0x5E), Action::Ignore, SosPmApcString);
    const auto ignored = Printables.with(0x00, 0x18).with(0x1C, 0x1F);
    builder.stay({SosPmApcString}, ignored, Action::Ignore);
    builder.rule({SosPmApcString}, 0x9C, Action::Ignore, Ground);
    builder.stay({SosPmApcString}, 0x7F, Action::Ignore);
}

void addControlSequences(Builder& builder)
{
    builder.rule({Escape}, 0x5B, Action::Clear, CsiEntry);

    builder.rule({CsiEntry}, Finals, Action::CsiDispatch, Ground);
    // A leading colon stays an error.
    builder.rule({CsiEntry}, DigitsAndSemicolon, Action::Param, CsiParam);
    builder.rule({CsiEntry}, Markers, Action::Collect, CsiParam);
    builder.rule({CsiEntry}, Intermediates, Action::Collect, CsiIntermediate);

    builder.stay({CsiParam}, Codes(0x30, 0x3B), Action::Param);
    builder.rule({CsiParam}, Finals, Action::CsiDispatch, Ground);
    builder.rule({CsiParam}, Markers, Action::Ignore, CsiIgnore);
    builder.rule({CsiParam}, Intermediates, Action::Collect, CsiIntermediate);

    builder.stay({CsiIgnore}, Codes(0x20, 0x3F).with(0x7F), Action::Ignore);
    builder.rule({CsiIgnore}, Finals, Action::Ignore, Ground);

    builder.stay({CsiIntermediate}, Intermediates, Action::Collect);
    builder.rule({CsiIntermediate}, Codes(0x30, 0x3F), Action::Ignore, CsiIgnore);
    builder.rule({CsiIntermediate}, Finals, Action::CsiDispatch, Ground);
}

void addEscapes(Builder& builder)
{
    builder.rule({Escape}, Intermediates, Action::Collect, EscapeIntermediate);
    builder.stay({EscapeIntermediate}, Intermediates, Action::Collect);
    builder.rule({EscapeIntermediate}, Codes(0x30, 0x7E), Action::EscDispatch, Ground);
    const auto finals =
        Codes(0x30, 0x4F).with(0x51, 0x57).with(0x59, 0x5A).with(0x5C).with(0x60, 0x7E);
    builder.rule({Escape}, finals, Action::EscDispatch, Ground);
}

void addDeviceControl(Builder& builder)
{
    builder.rule({Escape}, 0x50, Action::Clear, DcsEntry);

    const auto skipped = Executables.with(0x7F);
    builder.stay({DcsEntry, DcsParam, DcsIntermediate}, skipped, Action::Ignore);

    builder.rule({DcsEntry}, Intermediates, Action::Collect, DcsIntermediate);
    builder.rule({DcsEntry}, 0x3A, Action::Ignore, DcsIgnore);
    builder.rule({DcsEntry}, DigitsAndSemicolon, Action::Param, DcsParam);
    builder.rule({DcsEntry}, Markers, Action::Collect, DcsParam);

    builder.stay({DcsIgnore}, Executables.with(0x20, 0x7F), Action::Ignore);

    builder.stay({DcsParam}, DigitsAndSemicolon, Action::Param);
    builder.rule({DcsParam}, Markers.with(0x3A), Action::Ignore, DcsIgnore);
    builder.rule({DcsParam}, Intermediates, Action::Collect, DcsIntermediate);

    builder.stay({DcsIntermediate}, Intermediates, Action::Collect);
    builder.rule({DcsIntermediate}, Codes(0x30, 0x3F), Action::Ignore, DcsIgnore);

    builder.rule({DcsIntermediate, DcsParam, DcsEntry}, Finals, Action::DcsHook, DcsPassthrough);

    builder.stay({DcsPassthrough}, Printables.with(0x00, 0x18).with(0x1C, 0x1F), Action::DcsPut);
    builder.stay({DcsPassthrough}, 0x7F, Action::Ignore);
    builder.rule({DcsPassthrough}, Codes(0x1B).with(0x9C), Action::DcsUnhook, Ground);
}

} // namespace

TransitionTable buildVt500TransitionTable()
{
    Builder builder;
    addAnywhere(builder);
    addControls(builder);
    addStrings(builder);
    addControlSequences(builder);
    addEscapes(builder);
    addDeviceControl(builder);
    return builder.table();
}

const TransitionTable& sharedVt500Table()
{
    static const TransitionTable table = buildVt500TransitionTable();
    return table;
}

} // namespace Kovalt
