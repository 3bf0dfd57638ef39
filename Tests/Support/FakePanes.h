#pragma once

#include "Kovalt/Ascii.h"
#include "Terminals/TerminalPanel.h"
#include "Tests/Support/ChatMaker.h"
#include "Tests/Support/MemoryDefaultsStore.h"

#include <QHash>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Bralto {

/// The program of a pane that does what a test says.
class FakePaneProcess final : public PaneProcess {
public:
    FakePaneProcess(Kovalt::LocalProcessDelegate& delegate, pid_t pid,
                    std::vector<FakePaneProcess*>& living)
        : m_delegate(delegate)
        , m_pid(pid)
        , m_living(living)
    {
        living.push_back(this);
    }
    ~FakePaneProcess() override { std::erase(m_living, this); }

    void start(const Kovalt::ProcessStart& start) override
    {
        started = start;
        m_isRunning = starts;
    }
    void send(std::span<const std::uint8_t> bytes) override
    {
        sent.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    void updateWindowSize() override { sizes.push_back(m_delegate.getWindowSize()); }
    void terminate() override
    {
        ++terminations;
        m_isRunning = false;
    }
    [[nodiscard]] pid_t pid() const override { return m_pid; }
    [[nodiscard]] bool isRunning() const override { return m_isRunning; }

    void write(std::string_view bytes) { m_delegate.dataReceived(Kovalt::Ascii::bytes(bytes)); }
    /// With a raw wait status.
    void end(int status = 0)
    {
        m_isRunning = false;
        m_delegate.processTerminated(m_source, status);
    }

    bool starts = true;
    std::optional<Kovalt::ProcessStart> started;
    std::string sent;
    std::vector<winsize> sizes;
    int terminations = 0;

private:
    struct NoLoop final : Kovalt::RunLoop {
        void post(Task /*task*/) override {}
    };

    Kovalt::LocalProcessDelegate& m_delegate;
    NoLoop m_loop;
    Kovalt::LocalProcess m_source{m_delegate, m_loop}; ///< Never started: names who tells.
    pid_t m_pid;
    std::vector<FakePaneProcess*>& m_living;
    bool m_isRunning = false;
};

/// A process table that a test fills.
class FakeProcessInspector final : public ProcessInspector {
public:
    struct Child {
        pid_t pid;
        QString name;
        bool heedsAsking = true;
    };
    using Signal = std::pair<pid_t, Ending>;

    [[nodiscard]] std::vector<pid_t> childPids(pid_t pid) const override
    {
        std::vector<pid_t> pids;
        for (const Child& child : children.value(pid))
            pids.push_back(child.pid);
        return pids;
    }
    [[nodiscard]] QStringList childNames(pid_t pid) const override
    {
        QStringList names;
        for (const Child& child : children.value(pid))
            names.append(child.name);
        return names;
    }
    [[nodiscard]] std::optional<QString> currentDirectory(pid_t pid) const override
    {
        const auto found = directories.constFind(pid);
        return found == directories.constEnd() ? std::nullopt : std::optional(*found);
    }
    void end(pid_t pid, Ending how) override
    {
        signalled.push_back({pid, how});
        for (QList<Child>& each : children)
            each.removeIf([&](const Child& child) {
                return child.pid == pid && (how == Ending::Force || child.heedsAsking);
            });
    }

    QHash<pid_t, QList<Child>> children;
    QHash<pid_t, QString> directories;
    std::vector<Signal> signalled;
};

class FakeTerminalHost final : public TerminalHost {
public:
    [[nodiscard]] QString shell() const override { return shellPath; }
    [[nodiscard]] QStringList environment(const QString& pane, const QString& project,
                                          const QString& shell) const override
    {
        return {"PANE=" + pane, "PROJECT=" + project, "SHELL=" + shell};
    }
    [[nodiscard]] QString claudeCommand(const QString& session) override
    {
        return "claude --session-id " + session;
    }
    void clearAttention(const QString& pane) override { clearedPanes.append(pane); }
    [[nodiscard]] int historyRows() const override { return rows; }

    QString shellPath = "/bin/zsh";
    int rows = 10'000;
    QStringList clearedPanes;
};

/// Makes real conversations and terminals, whose agents and shells do what a test says. Outlives
/// them.
class PaneMaker {
public:
    [[nodiscard]] TerminalSession::Services sessionServices()
    {
        return {.host = host,
                .processes = inspector,
                .scheduler = chats.scheduler,
                .clock = chats.clock,
                .makeProcess = [this](Kovalt::LocalProcessDelegate& delegate) {
                    auto made = std::make_unique<FakePaneProcess>(delegate, ++m_lastPid, processes);
                    made->starts = shellsStart;
                    return made;
                }};
    }
    [[nodiscard]] TerminalPanel::Services panelServices() { return panelServices(shared); }
    [[nodiscard]] TerminalPanel::Services panelServices(DefaultsStore& defaults)
    {
        return {.makeChat = chats.factory(),
                .makeSession =
                    [this](const TerminalSession::Start& start) {
                        return std::make_unique<TerminalSession>(start, sessionServices());
                    },
                .shared = defaults,
                .motion = motion,
                .scheduler = chats.scheduler,
                .clearAttention = [this](const QString& pane) { host.clearAttention(pane); }};
    }
    /// The process that was made last.
    [[nodiscard]] FakePaneProcess& process() const { return *processes.back(); }

    [[nodiscard]] FakePaneProcess& processOf(const TerminalSession& session) const
    {
        const std::string pane = "PANE=" + session.paneId().toStdString();
        return **std::ranges::find_if(processes, [&pane](const FakePaneProcess* process) {
            return process->started->environment->front() == pane;
        });
    }

    ChatMaker chats;
    FakeTerminalHost host;
    FakeProcessInspector inspector;
    MemoryDefaultsStore shared;
    Motion motion{chats.scheduler};
    bool shellsStart = true;
    std::vector<FakePaneProcess*> processes; ///< Those that live, the newest last.

private:
    pid_t m_lastPid = 1000;
};

} // namespace Bralto
