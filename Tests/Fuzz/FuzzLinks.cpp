// Links in text and on a screen: what is found lies inside, in order, and is found again.

#include "Kovalt/LinkDetection.h"
#include "Kovalt/Terminal.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

using namespace Kovalt;

namespace {

class Silence final : public TerminalDelegate {
public:
    void send(Terminal&, std::span<const std::uint8_t>) override {}
    void mouseModeChanged(Terminal&) override {}
};

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void findInText(std::string_view text)
{
    std::size_t before = 0;
    for (const auto& match : LinkDetection::findAll(text)) {
        require(match.begin >= before && match.begin < match.end && match.end <= text.size());
        require(LinkDetection::findAt(text, match.begin) == match);
        before = match.end;
    }
}

void findOnScreen(FuzzedDataProvider& input)
{
    Silence silence;
    TerminalOptions options;
    options.cols = input.ConsumeIntegralInRange(2, 20);
    options.rows = input.ConsumeIntegralInRange(1, 4);
    options.scrollback = 4;
    Terminal terminal(&silence, options);
    terminal.setSilentLog(true);
    terminal.feed(input.ConsumeRemainingBytesAsString());
    for (int row = -1; row <= terminal.buffer().lines().count(); ++row) {
        for (int col = -1; col <= options.cols; ++col) {
            const auto link = terminal.link({LinkLookupLocation::Space::Buffer, {col, row}},
                                            LinkLookupMode::ExplicitAndImplicit);
            if (!link)
                continue;
            require(!link->text.empty() && !link->rowRanges.empty());
            require(link->range.row == row);
            for (const auto& range : link->rowRanges)
                require(range.first >= 0 && range.first < range.last && range.last <= options.cols);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    findInText(input.ConsumeRandomLengthString());
    findOnScreen(input);
    return 0;
}
