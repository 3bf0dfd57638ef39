#pragma once

#include "Terminals/PaneProcess.h"

namespace Bralto {

/// The program of a pane on a pseudo-terminal of this machine. Its end hangs up the program.
class LocalPaneProcess final : public PaneProcess {
public:
    /// `delegate` and `loop` outlive this object.
    LocalPaneProcess(Kovalt::LocalProcessDelegate& delegate, Kovalt::RunLoop& loop);

    void start(const Kovalt::ProcessStart& start) override { m_process.startProcess(start); }
    void send(std::span<const std::uint8_t> bytes) override { m_process.send(bytes); }
    void updateWindowSize() override { m_process.updateWindowSize(); }
    void terminate() override { m_process.terminate(); }
    [[nodiscard]] pid_t pid() const override { return m_process.shellPid(); }
    [[nodiscard]] bool isRunning() const override { return m_process.isRunning(); }

private:
    Kovalt::LocalProcess m_process;
};

} // namespace Bralto
