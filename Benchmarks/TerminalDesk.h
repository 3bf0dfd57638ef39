#pragma once

#include "Platform/ProcProcessInspector.h"
#include "Platform/QtRunLoop.h"
#include "Platform/QtScheduler.h"
#include "Platform/SystemClock.h"
#include "Terminals/TerminalPanel.h"
#include "Tests/Support/ViewHarness.h"
#include "Views/Terminal/TerminalView.h"

#include <QTemporaryDir>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

namespace Bralto {

/// The window of a measurement: panes, and below them a strip that takes clicks. It tells when
/// what it painted is on its way to the screen.
class BenchWindow final : public QWidget {
public:
    BenchWindow();

    [[nodiscard]] QWidget& panes() { return *m_panes; }
    [[nodiscard]] QWidget& strip() { return *m_strip; }
    [[nodiscard]] int frames() const { return m_frames; }

    std::function<void()> painted;

protected:
    bool event(QEvent* event) override;

private:
    QWidget* m_panes;
    QWidget* m_strip;
    int m_frames = 0;
};

/// What panes need: real processes on real pseudo-terminals, which all run one script.
class TerminalDesk final : public TerminalHost {
public:
    /// `script` is for /bin/sh. It waits until `open` unless `isOpen`.
    TerminalDesk(const QString& script, int historyRows, bool isOpen = false);
    ~TerminalDesk() override;

    [[nodiscard]] TerminalSession::Services sessionServices();
    [[nodiscard]] TerminalPanel::Services panelServices();
    [[nodiscard]] ViewServices viewServices() { return m_services; }
    /// Lets the script of so many panes go on.
    void open(int panes) const;

    [[nodiscard]] QString shell() const override { return m_folder.filePath("bench-shell"); }
    [[nodiscard]] QStringList environment(const QString& pane, const QString& project,
                                          const QString& shell) const override;
    [[nodiscard]] QString claudeCommand(const QString& /*session*/) override { return {}; }
    void clearAttention(const QString& /*pane*/) override {}
    [[nodiscard]] int historyRows() const override { return m_historyRows; }

private:
    [[nodiscard]] QString gate() const { return m_folder.filePath("gate"); }

    const QTemporaryDir m_folder;
    const int m_historyRows;
    int m_gate = -1;
    QtScheduler m_scheduler;
    SystemClock m_clock;
    QtRunLoop m_runLoop;
    ProcProcessInspector m_processes;
    ViewHarness m_views;
    ViewServices m_services;
};

/// A window with panes of their own on a desk.
class PaneWindow {
public:
    PaneWindow(TerminalDesk& desk, int count);

    /// Gives a single pane exactly this grid; several share a window of the screen's size.
    void show(int cols, int rows);
    [[nodiscard]] BenchWindow& window() { return m_window; }
    [[nodiscard]] TerminalView& view(int index = 0) { return *m_views[std::size_t(index)]; }
    [[nodiscard]] int running() const { return m_running; }
    /// Processes events until the condition holds or the time is up; whether it does.
    static bool await(const std::function<bool()>& condition, int milliseconds);

private:
    std::vector<std::unique_ptr<TerminalSession>> m_sessions;
    BenchWindow m_window;
    std::vector<TerminalView*> m_views;
    int m_running = 0;
};

} // namespace Bralto
