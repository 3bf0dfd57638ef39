#pragma once

#include "Kovalt/Process/LocalProcess.h"

#include <cstdint>
#include <memory>
#include <span>

namespace Bralto {

/// The program of a pane on its pseudo-terminal. Main thread.
class PaneProcess {
public:
    virtual ~PaneProcess() = default;

    /// A program that can't be started ends at once.
    virtual void start(const Kovalt::ProcessStart& start) = 0;
    /// In order and without blocking; dropped unless the program runs.
    virtual void send(std::span<const std::uint8_t> bytes) = 0;
    /// The owner has another window size.
    virtual void updateWindowSize() = 0;
    /// Closes the terminal and asks the program to end. Neither waits nor reports.
    virtual void terminate() = 0;
    /// Of the program; 0 before the start.
    [[nodiscard]] virtual pid_t pid() const = 0;
    [[nodiscard]] virtual bool isRunning() const = 0;
};

} // namespace Bralto
