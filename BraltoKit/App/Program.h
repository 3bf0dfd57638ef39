#pragma once

#include "App/AppDelegate.h"
#include "App/BraltoCommands.h"
#include "App/CommandMenu.h"
#include "App/ProjectProcess.h"
#include "App/QuitSignals.h"
#include "App/WebLibrary.h"
#include "Base/Motion.h"
#include "Browser/BrowserControl.h"
#include "Browser/BrowserController.h"
#include "Chat/ChatFileIndex.h"
#include "Platform/ApplicationService.h"
#include "Platform/ChildProcess.h"
#include "Platform/FileDefaultsStore.h"
#include "Platform/ProcLocalServers.h"
#include "Platform/ProcProcessInspector.h"
#include "Platform/ProcessDefaults.h"
#include "Platform/ProgramChatHost.h"
#include "Platform/ProgramTerminalHost.h"
#include "Platform/QtRunLoop.h"
#include "Platform/QtScheduler.h"
#include "Platform/SessionApplications.h"
#include "Platform/SystemClock.h"
#include "Platform/SystemDesktop.h"
#include "Platform/SystemSettings.h"
#include "Platform/XkbKeyboardLayout.h"
#include "Views/Dialogs/DialogsView.h"
#include "Views/Kit/Theme.h"
#include "Views/Window/RootView.h"
#include "Views/Window/WindowChrome.h"
#include "Views/Window/WindowFocus.h"
#include "Workspace/WorkspaceBrowsers.h"

#include <QApplication>
#include <QObject>

#include <memory>
#include <optional>

namespace Bralto {

/// The running application: every object, made of the ones above it, in the order in which they
/// need each other. One a process, on the main thread.
class Program final : public QObject {
    Q_OBJECT

public:
    Program(QApplication& application, const LaunchRole& role);
    ~Program() override;

    /// Launches, opens `urls` (paths and addresses), and runs until the application ends.
    int run(const QStringList& urls);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] std::unique_ptr<ClaudeChat> makeChat(const QString& folder,
                                                       const std::optional<QString>& sessionId);
    [[nodiscard]] std::unique_ptr<TerminalSession> makeSession(const TerminalSession::Start& start);
    [[nodiscard]] TerminalPanel::Services panelServices();
    [[nodiscard]] ViewServices viewServices();
    [[nodiscard]] QWidget* makePane(ConsolePane& pane, Theme& look);
    [[nodiscard]] static PaneMenu::Hooks paneHooks(QWidget& content);
    [[nodiscard]] QWidget* makeChatView(ClaudeChat& chat, Theme& look);
    [[nodiscard]] QWidget* makeTerminalView(ConsolePane& pane, TerminalSession& session);
    [[nodiscard]] Workspace::Services workspaceServices();
    [[nodiscard]] BrowserServices browserServices();
    void clearBrowsingData();
    [[nodiscard]] Zoom::Area focusedZoomArea() const;
    void buildWindow();
    void followSystem();
    void activate();
    void terminate();
    void useDemoAgent(ClaudeChat& chat);
    void explainInstallation();

    QApplication& m_application;
    const LaunchRole m_role;
    const AppPaths m_paths;
    ProcessDefaults m_processDefaults;
    std::optional<FileDefaultsStore> m_homeDefaults; ///< A project's look at the home's own domain.
    Defaults m_defaults;
    QtScheduler m_scheduler;
    SystemClock m_clock;
    SystemSettings m_settings;
    SystemDesktop m_desktop;
    ApplicationService m_service;
    SessionApplications m_applications;
    Theme m_theme;
    DialogsView m_dialogs;
    SpaceApps m_spaceApps;
    ProjectProcess m_projects;
    NoVersionControl m_versionControl;
    WindowFocus m_focus;
    ProgramChatHost m_chatHost;
    ChildProcessLauncher m_agents;
    ChatCommandMemory m_commandMemory;
    ChatFileIndex m_files;
    QtRunLoop m_runLoop;
    ProcProcessInspector m_processes;
    XkbKeyboardLayout m_keyboard;
    ProgramTerminalHost m_terminalHost;
    ProcLocalServers m_servers;
    WebLibrary m_web;
    Motion m_motion;
    Zoom m_zoom;
    Workspace m_workspace;
    WorkspaceBrowsers m_browsers;
    BrowserController m_browserTools;
    BrowserControl m_browserControl;
    BraltoCommands m_commands;
    AppDelegate m_delegate;
    QuitSignals m_signals;
    std::unique_ptr<WindowChrome> m_window;
    bool m_isTerminating = false;
};

} // namespace Bralto
