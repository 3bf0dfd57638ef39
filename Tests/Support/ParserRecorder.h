#pragma once

#include "Kovalt/EscapeSequenceParser.h"

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Kovalt {

inline std::span<const std::uint8_t> bytesOf(std::string_view text)
{
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

inline std::string textOf(std::span<const std::uint8_t> bytes)
{
    return {bytes.begin(), bytes.end()};
}

/// What a parser called, a line a call. Text that came in several pieces is one line, and so is
/// the data of a device-control string.
class ParserRecorder : public ParserHandlers, private DcsHandler {
public:
    std::vector<std::string> calls;
    /// Which device-control strings somebody takes: collected bytes and the final byte.
    std::vector<std::string> dcsKinds = {"q", "$q"};
    bool abortOnError = false;
    /// Text was said to be printable ASCII and was not, or the other way round.
    bool wrongKind = false;

    /// The calls without those that tell nothing to a reader of a test.
    [[nodiscard]] std::vector<std::string> told() const
    {
        std::vector<std::string> result;
        std::copy_if(calls.begin(), calls.end(), std::back_inserter(result),
                     [](const std::string& call) { return call != "reset"; });
        return result;
    }

    void print(std::span<const std::uint8_t> text, TextKind kind) override
    {
        const auto ascii = std::all_of(text.begin(), text.end(),
                                       [](auto code) { return code >= 0x20 && code < 0x7F; });
        wrongKind |= ascii != (kind == TextKind::PrintableAscii) || text.empty();
        addPiece("print ", text);
    }
    void printStateReset() override
    {
        if (calls.empty() || calls.back() != "reset")
            calls.emplace_back("reset");
    }
    void execute(std::uint8_t code) override { calls.push_back("execute " + std::to_string(code)); }
    void csi(const CsiSequence& sequence) override
    {
        std::string call = "csi " + textOf(sequence.collect) + "[";
        for (std::size_t index = 0; index < sequence.parameters.size(); ++index) {
            if (index > 0)
                call += static_cast<char>(sequence.separators[index - 1]);
            call += std::to_string(sequence.parameters[index]);
        }
        calls.push_back(call + "]" + static_cast<char>(sequence.code));
    }
    void esc(std::span<const std::uint8_t> collect, std::uint8_t code) override
    {
        calls.push_back("esc " + textOf(collect) + static_cast<char>(code));
    }
    void osc(std::int64_t code, std::span<const std::uint8_t> data) override
    {
        calls.push_back("osc " + std::to_string(code) + " " + textOf(data));
    }
    void apc(std::uint8_t command, std::span<const std::uint8_t> data) override
    {
        calls.push_back(std::string("apc ") + static_cast<char>(command) + " " + textOf(data));
    }
    DcsHandler* dcsHandler(std::span<const std::uint8_t> collect, std::uint8_t code) override
    {
        const auto kind = textOf(collect) + static_cast<char>(code);
        return std::find(dcsKinds.begin(), dcsKinds.end(), kind) != dcsKinds.end() ? this : nullptr;
    }
    void error(ParsingState& state) override
    {
        calls.push_back("error " + std::to_string(state.code) + " in " +
                        std::to_string(static_cast<int>(state.currentState)) + " at " +
                        std::to_string(state.position) + " print " + std::to_string(state.print) +
                        " dcs " + std::to_string(state.dcs));
        state.abort = abortOnError;
    }

private:
    void hook(std::span<const std::uint8_t> collect, std::span<const std::int32_t> parameters,
              std::uint8_t code) override
    {
        std::string call = "hook " + textOf(collect);
        for (const auto parameter : parameters)
            call += std::to_string(parameter) + ";";
        calls.push_back(call + static_cast<char>(code));
    }
    void put(std::span<const std::uint8_t> data) override { addPiece("put ", data); }
    void unhook() override { calls.emplace_back("unhook"); }
    void abandon() override { calls.emplace_back("abandon"); }

    void addPiece(std::string_view what, std::span<const std::uint8_t> piece)
    {
        if (calls.empty() || !calls.back().starts_with(what))
            calls.emplace_back(what);
        calls.back() += textOf(piece);
    }
};

} // namespace Kovalt
