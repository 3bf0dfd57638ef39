// Whatever a terminal is fed, its screen stays sound; whole and cut feeds give the same screen,
// also when its size changes in between.

#include "Kovalt/ScreenDump.h"
#include "Kovalt/Terminal.h"

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace Kovalt;

namespace {

class Delegate final : public TerminalDelegate {
public:
    void send(Terminal&, std::span<const std::uint8_t> data) override
    {
        sent.append(reinterpret_cast<const char*>(data.data()), data.size());
    }
    void mouseModeChanged(Terminal&) override {}
    std::string sent;
};

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

void requireSound(const BufferLine& line)
{
    for (int column = 0; column < line.size(); ++column) {
        const CharData cell = line[column];
        const bool isLead = cell.width == 2;
        require(cell.width >= 0 && cell.width <= 2, "width");
        require(!isLead || (column + 1 < line.size() && line[column + 1].width == 0), "right half");
        require(cell.width != 0 || (column > 0 && line[column - 1].width == 2), "left half");
    }
}

void requireSound(const Buffer& buffer)
{
    require(buffer.x >= 0 && buffer.x <= buffer.cols(), "x");
    require(buffer.y >= 0 && buffer.y < buffer.rows(), "y");
    require(buffer.scrollTop >= 0 && buffer.scrollTop <= buffer.scrollBottom, "scrollTop");
    require(buffer.scrollBottom < buffer.rows(), "scrollBottom");
    require(buffer.marginLeft >= 0 && buffer.marginLeft <= buffer.marginRight, "marginLeft");
    require(buffer.marginRight < buffer.cols(), "marginRight");
    require(buffer.lines().count() <= buffer.lines().maxLength(), "ring length");
    require(buffer.yDisp >= 0 && buffer.yDisp <= buffer.yBase, "yDisp");
    require(int(buffer.tabStops.size()) == buffer.cols(), "tab stops");
    for (int row = 0; row < buffer.lines().count(); ++row) {
        const BufferLine* const line = buffer.lines().peek(row);
        if (!line)
            continue;
        require(line->size() == buffer.cols(), "row size");
        require(line->semanticMarks().size() <= std::size_t(4 * (buffer.cols() + 1)), "marks");
        requireSound(*line);
    }
}

void requireSound(const Terminal& terminal)
{
    const Buffer& buffer = terminal.buffer();
    require(terminal.cols() == buffer.cols() && terminal.rows() == buffer.rows(), "size");
    require(buffer.lines().count() == buffer.yBase + buffer.rows(), "ring");
    require(buffer.marginMode == terminal.modes().marginMode, "margin mode");
    require(buffer.insertMode == terminal.modes().insertMode, "insert mode");
    require(buffer.wraparound == terminal.modes().wraparound, "wraparound");
    requireSound(terminal.buffer(Terminal::BufferKind::Normal));
    requireSound(terminal.buffer(Terminal::BufferKind::Alt));
    const TitleState& titles = terminal.titles();
    require(titles.terminalTitleStack.size() <= TitleState::MaximumStack, "titles");
    require(titles.terminalIconStack.size() <= TitleState::MaximumStack, "icon titles");
    require(terminal.keyboardMode().stack().size() <= KeyboardModeState::MaximumStack, "keyboard");
}

/// All that a host can see of both.
void requireSame(const Terminal& one, const Terminal& other)
{
    require(one.modes() == other.modes(), "same modes");
    require(one.titles() == other.titles(), "same titles");
    require(one.colors() == other.colors(), "same colours");
    require(one.charsets() == other.charsets(), "same character sets");
    require(one.bidiState() == other.bidiState(), "same direction");
    require(one.keyboardMode() == other.keyboardMode(), "same keyboard");
    require(one.currentAttribute() == other.currentAttribute(), "same looks");
    require(one.buffer().tabStops == other.buffer().tabStops, "same tab stops");
    require(one.getUpdateRange() == other.getUpdateRange(), "same rows to paint");
    for (const auto kind : {Terminal::BufferKind::Normal, Terminal::BufferKind::Alt})
        require(one.getBufferAsData(kind) == other.getBufferAsData(kind), "same text");
    const auto whole = ScreenDump::json(one, ScreenDump::Range::ScreenAndHistory);
    const auto cut = ScreenDump::json(other, ScreenDump::Range::ScreenAndHistory);
    if (whole != cut)
        std::fprintf(stderr, "%s\n%s\n", whole.c_str(), cut.c_str());
    require(whole == cut, "same screen");
}

/// Without the blanks at the ends of rows: an empty cell that a cut wide character left its looks
/// comes back as a blank.
std::string shownText(const Terminal& terminal)
{
    std::string shown;
    for (const char byte : ScreenDump::text(terminal)) {
        if (byte == '\n')
            shown.erase(shown.find_last_not_of(' ') + 1);
        shown += byte;
    }
    return shown;
}

/// The screen, written down, looks the same elsewhere.
void requireRoundTrip(const Terminal& terminal)
{
    TerminalOptions options = terminal.options();
    options.scrollback = 0;
    Terminal other(nullptr, options);
    other.setSilentLog(true);
    const std::string text = ScreenDump::sgr(terminal);
    other.feed(text);
    require(shownText(terminal) == shownText(other), "same text again");
    require(ScreenDump::sgr(other) == text, "same looks again");
}

/// In a string a lone byte of 0x80 to 0x9F, and SUB, end it only as the first byte of a feed (other
/// controls aside).
bool mayCutBefore(unsigned char previous, unsigned char next)
{
    const bool isLead = previous >= 0xC2 && previous <= 0xF4;
    if (next >= 0x80 && next <= 0x9F)
        return isLead;
    return next >= 0x20 || next == 0x1B;
}

TerminalOptions smallScreen()
{
    TerminalOptions options;
    options.cols = 17;
    options.rows = 6;
    options.scrollback = 9;
    options.stringLimitBytes = 4096;
    return options;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    Delegate delegate;
    Delegate twinDelegate;
    Terminal terminal(&delegate, smallScreen());
    Terminal twin(&twinDelegate, smallScreen());
    terminal.setSilentLog(true);
    twin.setSilentLog(true);

    // 0xFE with a byte behind it changes the size.
    std::size_t start = 0;
    for (std::size_t i = 0; i <= size; ++i) {
        const bool resizes = i + 1 < size && data[i] == 0xFE;
        if (i < size && !resizes)
            continue;
        terminal.feed(std::span(data + start, i - start));
        for (std::size_t at = start; at < i;) {
            std::size_t end = at + 1 + data[at] % 5;
            end = end > i ? i : end;
            while (end < i && !mayCutBefore(data[end - 1], data[end]))
                ++end;
            twin.feed(std::span(data + at, end - at));
            at = end;
        }
        requireSound(terminal);
        if (resizes) {
            const int cols = 1 + data[i + 1] % 40;
            const int rows = data[i + 1] / 40 * 3;
            terminal.resize(cols, rows);
            twin.resize(cols, rows);
            requireSound(terminal);
            ++i;
        }
        start = i + 1;
    }
    require(delegate.sent == twinDelegate.sent, "same answers");
    requireSame(terminal, twin);
    requireRoundTrip(terminal);
    return 0;
}
