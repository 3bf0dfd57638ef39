#pragma once

#include "KeyScript.h"
#include "Options.h"
#include "PretendWindow.h"
#include "StandardStreams.h"

#include "Kovalt/Process/LocalProcess.h"
#include "Kovalt/Process/PollLoop.h"
#include "Kovalt/SpecialColors.h"
#include "Kovalt/Terminal.h"
#include "Kovalt/TerminalTimer.h"

#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace KovaltTool {

/// One run: a program on a terminal, or what was recorded of one.
class Session final : private Kovalt::TerminalDelegate,
                      private Kovalt::LocalProcessDelegate,
                      private Kovalt::TerminalTimer {
public:
    Session(const Options& options, std::vector<KeyStep> keys);
    ~Session() override;

    /// Runs to the end, then writes the screen if that was asked for. The exit status.
    int run();

private:
    // TerminalDelegate
    std::optional<std::string>
    windowCommand(Kovalt::Terminal& source,
                  const Kovalt::WindowManipulationCommand& command) override;
    void sizeChanged(Kovalt::Terminal& source) override;
    void send(Kovalt::Terminal& source, std::span<const std::uint8_t> data) override;
    std::optional<std::pair<int, int>> cellSizeInPixels(Kovalt::Terminal& source) override;
    void clipboardCopy(Kovalt::Terminal& source, std::span<const std::uint8_t> content) override;
    std::optional<std::vector<std::uint8_t>> clipboardRead(Kovalt::Terminal& source) override;
    void mouseModeChanged(Kovalt::Terminal& /*source*/) override {}
    // LocalProcessDelegate
    void processTerminated(Kovalt::LocalProcess& source,
                           std::optional<std::int32_t> exitCode) override;
    void dataReceived(std::span<const std::uint8_t> slice) override;
    winsize getWindowSize() override;
    void sendCompleted(Kovalt::LocalProcess& source) override;
    // TerminalTimer
    void start(std::chrono::milliseconds delay, std::function<void()> elapsed) override;
    void cancel() override;

    int replay();
    [[nodiscard]] int finish(int status);
    void launch();
    void watchInput();
    void watchSignals();
    void type(std::size_t step);
    void press(const Kovalt::KittyKeyEvent& key);
    void goOnIfShown();
    void end(int status);
    /// The screen in the form that was asked for.
    [[nodiscard]] std::string dump() const;

    const Options& m_options;
    std::vector<KeyStep> m_keys;
    PretendWindow m_window;
    Kovalt::PollLoop m_loop;
    Kovalt::PollLoop::Id m_timer = 0;
    Kovalt::PollLoop::Id m_input = 0;
    std::optional<std::size_t> m_awaitedStep; ///< The keys go on once its text is shown.
    bool m_waitsForProgram = false;           ///< Before more of standard input is read.
    std::optional<RawInput> m_rawInput;
    std::ofstream m_record;
    int m_signals = -1;
    std::string m_lastScreen;                             ///< As it was at the end.
    std::optional<int> m_status;                          ///< Once it has ended.
    std::optional<std::vector<std::uint8_t>> m_clipboard; ///< What the program put there.
    Kovalt::Terminal m_terminal;
    Kovalt::SpecialColors m_specialColors;
    Kovalt::LocalProcess m_process;
};

} // namespace KovaltTool
