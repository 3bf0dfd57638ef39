// The payloads of operating-system commands, read alone and carried out by a terminal.

#include "Kovalt/Ascii.h"
#include "Kovalt/Base64.h"
#include "Kovalt/ClipboardRequest.h"
#include "Kovalt/Hex.h"
#include "Kovalt/HyperlinkPayload.h"
#include "Kovalt/Notification.h"
#include "Kovalt/SemanticPromptOptions.h"
#include "Kovalt/ShellMarks.h"
#include "Kovalt/Terminal.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

using namespace Kovalt;

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Every report is a sequence in one of the two forms, without a control inside.
class Checker final : public TerminalDelegate {
public:
    void send(Terminal& source, std::span<const std::uint8_t> data) override
    {
        const bool isShort = source.modes().controlForm == ControlForm::EightBit;
        auto bytes = Ascii::view(data);
        const std::string_view end = isShort ? "\x9c" : "\x1b\\";
        require(isShort ? data[0] >= 0x90 && data[0] <= 0x9D : data[0] == 0x1B);
        bytes.remove_prefix(1);
        if (bytes.ends_with(end))
            bytes.remove_suffix(end.size());
        for (const char c : bytes)
            require(static_cast<unsigned char>(c) >= 0x20 && c != 0x7F);
    }
    void mouseModeChanged(Terminal&) override {}
    std::optional<std::vector<std::uint8_t>> clipboardRead(Terminal&) override
    {
        return std::vector<std::uint8_t>{0x1B, 0x0A};
    }
};

void readAlone(const std::string& text)
{
    if (const auto data = Base64::decode(text))
        require(Base64::encode(*data).size() == text.size());
    if (const auto bytes = Hex::decode(text))
        require(Hex::decode(Hex::encode(*bytes)) == bytes);
    if (const auto report = parseProgressReport(text))
        require(report->progress.value_or(0) <= 100);
    if (const auto link = parseHyperlinkPayload(text))
        require(!link->uri.empty() && link->id().size() <= link->parameters.size());
    if (const auto color = Colors::parseColor(text))
        require(Colors::parseColor(Colors::formatAsXcolor(*color)) == color);
    (void)parseNotification(text);
    (void)parseClipboardRequest(text);
    (void)parseSemanticPromptOptions(text);
}

void carryOut(FuzzedDataProvider& input)
{
    constexpr int Codes[] = {0, 1, 2, 4, 6, 7, 8, 9, 10, 11, 12, 52, 104, 112, 133, 777, 1337};
    Checker checker;
    TerminalOptions options;
    options.cols = 12;
    options.rows = 4;
    options.scrollback = 10;
    options.ansi256PaletteStrategy = Ansi256PaletteStrategy::Xterm;
    Terminal terminal(&checker, options);
    terminal.setSilentLog(true);
    while (input.remaining_bytes() > 0) {
        terminal.feed("\x1b]" + std::to_string(input.PickValueInArray(Codes)) + ';');
        terminal.feed(input.ConsumeRandomLengthString(64));
        terminal.feed("\x1b\\\x1b[20t\x1b[21t");
        if (input.ConsumeBool())
            terminal.feed(input.ConsumeBool() ? "text\r\n" : "\x1b[H");
        const Position at{input.ConsumeIntegralInRange(-1, 12),
                          input.ConsumeIntegralInRange(-1, 4)};
        (void)terminal.handleSemanticPromptClick(at, {});
        (void)ShellMarks::commandOutput(terminal.buffer(), at.row);
        (void)ShellMarks::previousPrompt(terminal.buffer(), at.row);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    readAlone(input.ConsumeRandomLengthString());
    carryOut(input);
    return 0;
}
