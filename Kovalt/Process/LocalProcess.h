#pragma once

#include "Kovalt/Process/ProcessConnection.h"

#include <sys/ioctl.h>
#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Kovalt {

class LocalProcess;

/// Is told on the thread of the process's loop. It may start, terminate or destroy the process.
class LocalProcessDelegate {
public:
    virtual ~LocalProcessDelegate() = default;
    /// The raw wait status; none if it is not known. All that the process wrote came before.
    virtual void processTerminated(LocalProcess& source, std::optional<std::int32_t> exitCode) = 0;
    /// At most 131072 bytes.
    virtual void dataReceived(std::span<const std::uint8_t> slice) = 0;
    virtual winsize getWindowSize() = 0;
    /// What had to wait behind `LocalProcess::send` is written.
    virtual void sendCompleted(LocalProcess& /*source*/) {}
};

/// A program to run and what it runs with.
struct ProcessStart {
    std::string executable = {}; ///< A path; nothing is searched.
    std::vector<std::string> arguments = {};
    /// Lines "NAME=value"; `getEnvironmentVariables()` if none.
    std::optional<std::vector<std::string>> environment = {};
    /// The name that the program gets as its first argument; its path if none.
    std::optional<std::string> execName = {};
    std::optional<std::string> currentDirectory = {};
};

/// Runs one program at a time on a pseudo-terminal and moves the bytes both ways. A flood of output
/// neither blocks the loop nor grows without bound: the program waits until its output is taken.
/// All members belong to the loop's thread.
class LocalProcess : private ProcessConnection::Owner {
public:
    /// `delegate` and `loop` must outlive this object. Lines for whoever looks for a mistake go to
    /// `printer`, from any thread; without one to standard output.
    LocalProcess(LocalProcessDelegate& delegate, RunLoop& loop,
                 Delivery delivery = Delivery::Sliced, ProcessLog::Printer printer = {});
    /// Closes the terminal, which hangs up the program. It is sent no other signal.
    ~LocalProcess() override;
    LocalProcess(const LocalProcess&) = delete;
    LocalProcess& operator=(const LocalProcess&) = delete;

    /// Nothing happens while a program is running. A failure to start leaves `isRunning` false and
    /// tells nobody; a program that can't be executed exits with 127.
    void startProcess(const ProcessStart& start);
    /// In order and without blocking. Dropped unless a program is running.
    void send(std::span<const std::uint8_t> data);
    /// Something that was sent is not written yet; `sendCompleted` tells when it is.
    [[nodiscard]] bool isSendWaiting() const;
    /// Closes the terminal and asks the program to end. Neither waits nor reports.
    void terminate();
    /// Gives the program's terminal the size that the delegate tells.
    void updateWindowSize();

    /// From the start to the program's end, or to the end of its terminal.
    [[nodiscard]] bool isRunning() const { return m_running; }
    /// The master's descriptor; -1 without one.
    [[nodiscard]] int childfd() const;
    /// Of the last program; 0 before the first.
    [[nodiscard]] pid_t shellPid() const { return m_shellPid; }
    /// What was read and is not delivered yet.
    [[nodiscard]] std::size_t pendingBytes() const;
    /// Reading waits because too much is pending.
    [[nodiscard]] bool isReadSuspended() const;

    /// Prints what is read and written.
    void setDebugIO(bool enabled) { m_log->setDebugIO(enabled); }
    /// Writes each piece that is read to a file "log-<number>" of this directory; none ends that.
    void setHostLogging(std::optional<std::string> directory);

private:
    void connectionReceived(std::span<const std::uint8_t> bytes) override;
    void connectionSent() override;
    void connectionEnded() override;
    void connectionExited(std::optional<int> status) override;

    LocalProcessDelegate& m_delegate;
    RunLoop& m_loop;
    const Delivery m_delivery;
    const std::shared_ptr<ProcessLog> m_log;
    std::shared_ptr<ProcessConnection> m_connection;
    bool m_running = false;
    pid_t m_shellPid = 0;
};

} // namespace Kovalt
