#pragma once

#include "Kovalt/ScreenDump.h"
#include "Kovalt/Terminal.h"
#include "Kovalt/TerminalTimer.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Kovalt::Testing {

/// Fires when the test says so.
class ManualTimer final : public TerminalTimer {
public:
    void start(std::chrono::milliseconds delay, std::function<void()> elapsed) override
    {
        ++starts;
        lastDelay = delay;
        m_elapsed = std::move(elapsed);
    }
    void cancel() override { m_elapsed = nullptr; }

    [[nodiscard]] bool isPending() const { return m_elapsed != nullptr; }
    void fire()
    {
        if (const auto elapsed = std::exchange(m_elapsed, nullptr))
            elapsed();
    }

    int starts = 0;
    std::chrono::milliseconds lastDelay{0};

private:
    std::function<void()> m_elapsed;
};

/// Writes down every call, and answers what a test prepared.
class RecordingDelegate final : public TerminalDelegate {
public:
    std::vector<std::string> events; ///< In order, for example "title hello".
    std::string sent;
    std::optional<std::string> windowReply;
    std::vector<WindowManipulationCommand> windowCommands;
    std::function<void(Terminal&, const WindowManipulationCommand&)> windowAction;
    std::optional<std::pair<int, int>> cellSize;
    std::optional<std::pair<Color, Color>> colors;
    std::optional<std::vector<std::uint8_t>> clipboard;
    bool trusted = true;

    void showCursor(Terminal&) override { note("showCursor"); }
    void hideCursor(Terminal&) override { note("hideCursor"); }
    void setTerminalTitle(Terminal&, const std::string& title) override { note("title " + title); }
    void setTerminalIconTitle(Terminal&, const std::string& title) override
    {
        note("iconTitle " + title);
    }
    std::optional<std::string> windowCommand(Terminal& source,
                                             const WindowManipulationCommand& command) override
    {
        note("windowCommand " + std::to_string(static_cast<int>(command.kind)) + " " +
             std::to_string(command.first) + " " + std::to_string(command.second));
        windowCommands.push_back(command);
        if (windowAction)
            windowAction(source, command);
        return windowReply;
    }
    void sizeChanged(Terminal& source) override
    {
        note("sizeChanged " + std::to_string(source.cols()) + "x" + std::to_string(source.rows()));
    }
    void send(Terminal&, std::span<const std::uint8_t> data) override
    {
        sent.append(reinterpret_cast<const char*>(data.data()), data.size());
    }
    void linefeed(Terminal&) override { ++linefeeds; }
    void scrolled(Terminal&, int) override { ++scrolls; }
    void bufferActivated(Terminal& source) override
    {
        note(source.isAlternateBufferActive() ? "alternate" : "normal");
    }
    void synchronizedOutputChanged(Terminal&, bool active) override
    {
        note(active ? "synchronized on" : "synchronized off");
    }
    void bell(Terminal&) override { note("bell"); }
    bool isProcessTrusted(Terminal&) override { return trusted; }
    std::optional<std::pair<int, int>> cellSizeInPixels(Terminal&) override { return cellSize; }
    void mouseModeChanged(Terminal& source) override
    {
        note("mouseMode " + std::to_string(static_cast<int>(source.modes().mouseMode)));
    }
    void cursorStyleChanged(Terminal&, CursorStyle style) override
    {
        note("cursorStyle " + std::to_string(static_cast<int>(style)));
    }
    void hostCurrentDirectoryUpdated(Terminal& source) override
    {
        note("directory " + source.hostCurrentDirectory().value_or("-"));
    }
    void hostCurrentDocumentUpdated(Terminal& source) override
    {
        note("document " + source.hostCurrentDocument().value_or("-"));
    }
    void colorChanged(Terminal&, std::optional<int> index) override
    {
        note("colorChanged " + (index ? std::to_string(*index) : "all"));
    }
    void setForegroundColor(Terminal&, Color color) override { note("fg " + hex(color)); }
    void setBackgroundColor(Terminal&, Color color) override { note("bg " + hex(color)); }
    void setCursorColor(Terminal&, std::optional<Color> color) override
    {
        note("cursor " + (color ? hex(*color) : "none"));
    }
    std::optional<std::pair<Color, Color>> getColors(Terminal&) override { return colors; }
    void iTermContent(Terminal&, std::string_view content) override
    {
        note("iTerm " + std::string(content));
    }
    void clipboardCopy(Terminal&, std::span<const std::uint8_t> content) override
    {
        note("copy " + std::string(content.begin(), content.end()));
    }
    std::optional<std::vector<std::uint8_t>> clipboardRead(Terminal&) override
    {
        note("clipboardRead");
        return clipboard;
    }
    void notify(Terminal&, std::string_view title, std::string_view body) override
    {
        note("notify " + std::string(title) + "|" + std::string(body));
    }
    void progressReport(Terminal&, const ProgressReport& report) override
    {
        note("progress " + std::to_string(static_cast<int>(report.state)) + " " +
             (report.progress ? std::to_string(*report.progress) : "-"));
    }

    int linefeeds = 0;
    int scrolls = 0;

private:
    void note(std::string event) { events.push_back(std::move(event)); }
    static std::string hex(Color color)
    {
        return std::to_string(color.red) + "," + std::to_string(color.green) + "," +
               std::to_string(color.blue);
    }
};

/// A terminal that is fed whole texts, and a twin that gets the same one byte at a time. After each
/// text both must be in the same state.
class TerminalHarness {
public:
    explicit TerminalHarness(int cols = 20, int rows = 6, std::optional<int> scrollback = 20)
        : TerminalHarness(optionsOf(cols, rows, scrollback))
    {
    }
    explicit TerminalHarness(TerminalOptions options)
        : terminal(&delegate, withTimer(options, timer))
        , twin(&twinDelegate, withTimer(options, twinTimer))
    {
        terminal.setSilentLog(true);
        twin.setSilentLog(true);
        forgetEvents();
    }

    static TerminalOptions optionsOf(int cols, int rows, std::optional<int> scrollback = 20)
    {
        TerminalOptions options;
        options.cols = cols;
        options.rows = rows;
        options.scrollback = scrollback;
        return options;
    }

    void feed(std::string_view text)
    {
        terminal.feed(text);
        for (const char& byte : text)
            twin.feed(std::string_view(&byte, 1));
        expectTwins();
    }
    /// What is done to the terminal from outside is done to the twin too.
    void onBoth(const std::function<void(Terminal&)>& action)
    {
        action(terminal);
        action(twin);
        expectTwins();
    }
    /// What the text is answered.
    [[nodiscard]] std::string replyTo(std::string_view text)
    {
        delegate.sent.clear();
        twinDelegate.sent.clear();
        feed(text);
        return delegate.sent;
    }
    void forgetEvents()
    {
        delegate.events.clear();
        twinDelegate.events.clear();
        delegate.sent.clear();
        twinDelegate.sent.clear();
    }
    /// Prepares both delegates alike.
    void prepare(const std::function<void(RecordingDelegate&)>& action)
    {
        action(delegate);
        action(twinDelegate);
    }

    /// A row of the screen, without the empty cells at its end.
    [[nodiscard]] std::string row(int index) { return ringRow(terminal.buffer().yBase + index); }
    [[nodiscard]] std::string ringRow(int index)
    {
        BufferLine::TextRange range;
        range.trimRight = true;
        return terminal.buffer().lines()[index].translateToString(terminal.graphemes(), range);
    }
    /// The whole screen, rows joined by "|".
    [[nodiscard]] std::string screen()
    {
        std::string text;
        for (int i = 0; i < terminal.rows(); ++i)
            text += (i == 0 ? "" : "|") + row(i);
        return text;
    }
    [[nodiscard]] CharData cell(int col, int row) { return terminal.buffer().screenLine(row)[col]; }
    [[nodiscard]] std::string character(int col, int row)
    {
        return terminal.graphemes().textFor(cell(col, row).code);
    }
    [[nodiscard]] Position cursor() const { return terminal.getCursorLocation(); }
    [[nodiscard]] const TerminalModes& modes() const { return terminal.modes(); }

    ManualTimer timer;
    ManualTimer twinTimer;
    RecordingDelegate delegate;
    RecordingDelegate twinDelegate;
    Terminal terminal;
    Terminal twin;

private:
    static TerminalOptions withTimer(TerminalOptions options, ManualTimer& timer)
    {
        options.timer = &timer;
        return options;
    }
    void expectTwins()
    {
        constexpr auto Everything = ScreenDump::Range::ScreenAndHistory;
        EXPECT_EQ(ScreenDump::json(terminal, Everything), ScreenDump::json(twin, Everything));
        EXPECT_TRUE(terminal.modes() == twin.modes());
        EXPECT_TRUE(terminal.titles() == twin.titles());
        EXPECT_TRUE(terminal.colors() == twin.colors());
        EXPECT_TRUE(terminal.charsets() == twin.charsets());
        EXPECT_TRUE(terminal.bidiState() == twin.bidiState());
        EXPECT_TRUE(terminal.keyboardMode() == twin.keyboardMode());
        EXPECT_TRUE(terminal.currentAttribute() == twin.currentAttribute());
        EXPECT_EQ(terminal.buffer().tabStops, twin.buffer().tabStops);
        EXPECT_TRUE(terminal.getUpdateRange() == twin.getUpdateRange());
        EXPECT_TRUE(terminal.getScrollInvariantUpdateRange() ==
                    twin.getScrollInvariantUpdateRange());
        EXPECT_EQ(delegate.events, twinDelegate.events);
        EXPECT_EQ(delegate.sent, twinDelegate.sent);
        EXPECT_EQ(delegate.linefeeds, twinDelegate.linefeeds);
        EXPECT_EQ(delegate.scrolls, twinDelegate.scrolls);
    }
};

} // namespace Kovalt::Testing

namespace Kovalt {

inline void PrintTo(const Position& position, std::ostream* out)
{
    *out << "column " << position.col << ", row " << position.row;
}

} // namespace Kovalt
