// Whatever the agent writes, the transcript is what the plain rules say.
// Seeds: Tests/Fixtures/Agent.

#include "Tests/Support/FuzzedLines.h"
#include "Tests/Support/PlainTranscript.h"

#include <cstdio>
#include <cstdlib>

using namespace Bralto;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    if (size == 0)
        return 0;
    // The plain rules copy everything at every step.
    constexpr std::size_t Longest = 64 * 1024;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1,
                                 std::min(size - 1, Longest));
    const auto source =
        data[0] % 2 == 0 ? ChatProtocol::Source::Live : ChatProtocol::Source::Stored;
    TranscriptComparison comparison;
    forEachEvent(bytes, source, [&](const ChatEvent& event) {
        if (const auto difference = comparison.apply(event)) {
            std::fprintf(stderr, "%s after an event of kind %zu\n", qPrintable(*difference),
                         event.index());
            std::abort();
        }
    });
    return 0;
}
