// However bytes are cut, the parser calls what the plainest machine calls, and cutting changes
// nothing but what the start of a call changes by design.

#include "Kovalt/EscapeSequenceParser.h"

#include "Tests/Support/ParserRecorder.h"
#include "Tests/Support/ReferenceParser.h"

#include <cstdlib>

using namespace Kovalt;

namespace {

using Bytes = std::span<const std::uint8_t>;

/// The sizes of the pieces follow from the first byte.
template <typename Parser>
std::vector<std::string> callsOfPieces(Bytes data, std::size_t size)
{
    ParserRecorder recorder;
    Parser parser(recorder);
    while (!data.empty()) {
        const auto piece = data.first(std::min(size, data.size()));
        parser.parse(piece);
        data = data.subspan(piece.size());
        size = size * 7 % 61 + 1;
    }
    if (recorder.wrongKind)
        std::abort();
    return recorder.calls;
}

/// A device-control string that was broken off loses more or less of its data, as it was cut.
std::vector<std::string> withoutBrokenData(std::vector<std::string> calls)
{
    std::vector<std::string> result;
    for (std::size_t at = 0; at < calls.size(); ++at) {
        const auto broken =
            calls[at].starts_with("put ") && (at + 1 == calls.size() || calls[at + 1] != "unhook");
        const auto again = calls[at] == "reset" && !result.empty() && result.back() == "reset";
        if (!broken && !again)
            result.push_back(std::move(calls[at]));
    }
    return result;
}

/// Without the bytes that mean another thing at the start of a call.
std::vector<std::uint8_t> withoutCutDependentBytes(Bytes data)
{
    std::vector<std::uint8_t> result;
    for (const auto code : data) {
        if (code != 0x19 && code != 0x1A && (code < 0x80 || code > 0x9F))
            result.push_back(code);
    }
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::size_t pieceSize = data[0] + 1U;
    const Bytes stream(data + 1, size - 1);
    if (callsOfPieces<EscapeSequenceParser>(stream, pieceSize) !=
        callsOfPieces<ReferenceParser>(stream, pieceSize))
        std::abort();

    const auto plain = withoutCutDependentBytes(stream);
    const auto whole = callsOfPieces<EscapeSequenceParser>(plain, plain.size());
    const auto cut = callsOfPieces<EscapeSequenceParser>(plain, pieceSize % 16 + 1);
    // Positions in error records count from the start of a call.
    const auto comparable = [](std::vector<std::string> calls) {
        for (auto& call : calls) {
            if (call.starts_with("error"))
                call.erase(call.find(" at "));
        }
        return withoutBrokenData(std::move(calls));
    };
    if (comparable(whole) != comparable(cut))
        std::abort();
    return 0;
}
