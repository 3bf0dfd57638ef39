#include "App/Program.h"

#include "App/Compositing.h"
#include "App/FirstFrame.h"
#include "App/ZoomKeys.h"
#include "Base/ShellQuote.h"
#include "Base/SpaceIdentity.h"
#include "Launch/Demo.h"
#include "Platform/LocalPaneProcess.h"
#include "Platform/MainBundle.h"
#include "Projects/ProjectUse.h"
#include "Views/Chat/ChatView.h"
#include "Views/Terminal/TerminalInput.h"
#include "Views/Terminal/TerminalView.h"
#include "Workspace/ZoomTarget.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QDBusConnection>
#include <QFileInfo>
#include <QPointer>
#include <QProcessEnvironment>
#include <QStandardPaths>

namespace Bralto {

namespace {

constexpr QSize DefaultSize{1180, 780};
constexpr QSize SmallestSize{640, 420};
constexpr int PanelWidth = 400; ///< Windows up to here are panels.
constexpr auto DemoAgent = "/Contents/Helpers/bralto-demo-agent";

Theme::System systemLook(const SystemSettings& settings)
{
    const bool paletteIsDark = QGuiApplication::palette().window().color().lightness() < 128;
    return {settings.dark().value_or(paletteIsDark), settings.reducedMotion(),
            Compositing::isActive()};
}

PageProfile pageProfile(const AppPaths& paths, const LaunchRole& role, bool isDark)
{
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return {.storage = paths.browser(role.bundleIdentifier),
            .cache = cache + QStringLiteral("/bralto/") + role.bundleIdentifier,
            .isDark = isDark};
}

void copyToClipboard(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

} // namespace

Program::Program(QApplication& application, const LaunchRole& role)
    : m_application(application)
    , m_role(role)
    , m_paths(AppPaths::current())
    , m_processDefaults(m_paths, role)
    , m_defaults(m_processDefaults.defaults())
    , m_desktop(QDBusConnection::sessionBus(), copyToClipboard)
    , m_service(QDBusConnection::sessionBus(), role.bundleIdentifier)
    , m_applications(QDBusConnection::sessionBus(),
                     SessionApplications::defaultRuntimeFolder(m_paths))
    , m_theme(systemLook(m_settings))
    , m_dialogs(m_theme)
    , m_spaceApps(role, m_paths, m_defaults.shared, m_desktop, m_dialogs, m_applications)
    , m_projects(m_spaceApps, [this] { terminate(); })
    , m_chatHost(m_defaults,
                 {m_paths, role, QProcessEnvironment::systemEnvironment().toStringList(),
                  Demo::isActive(qEnvironmentVariable("BRALTO_DEMO"), QCoreApplication::arguments(),
                                 role, m_defaults.shared)})
    , m_keyboard(QGuiApplication::platformName() == QStringLiteral("xcb")
                     ? std::optional(qgetenv("DISPLAY"))
                     : std::nullopt)
    , m_terminalHost(m_chatHost, m_defaults.shared,
                     QProcessEnvironment::systemEnvironment().toStringList())
    , m_servers([this] {
        return ProcLocalServers::Places{ProjectUse::currentRoot(m_defaults.shared, m_paths),
                                        m_role.folder.value_or(QString())};
    })
    , m_web(WebLibrary::candidates(role, QFileInfo(MainBundle::executable()).path()),
            pageProfile(m_paths, role, m_theme.tokens().dark))
    , m_motion(m_scheduler)
    , m_zoom(m_defaults.shared)
    , m_workspace(workspaceServices(), Workspace::RestoreSession::Yes)
    , m_browsers(m_workspace)
    , m_browserTools(m_browsers, m_scheduler, m_clock)
    , m_browserControl(m_paths, role,
                       [this](const QByteArray& request, std::function<void(QByteArray)> answer) {
                           m_browserTools.respond(request, std::move(answer));
                       })
    , m_commands(
          {m_workspace, m_zoom, [this] { return focusedZoomArea(); },
           role.isFolderApp() ? std::function<void()>([this] { m_spaceApps.openHome(); }) : nullptr,
           [this](const QString& path) { m_desktop.reveal(path); }, [this] { terminate(); },
           [this] { clearBrowsingData(); }})
    , m_delegate(
          {role, m_workspace, m_defaults, m_desktop, m_scheduler, m_spaceApps,
           [this] { activate(); },
           [this] { return m_window && m_window->isVisible() && m_window->width() > PanelWidth; }})
{
    // Owning the name is running, for whoever asks whether this project is open.
    m_applications.claim(role.bundleIdentifier);
    buildWindow();
    followSystem();
    connect(&m_service, &ApplicationService::activateRequested, this, &Program::activate);
    connect(&m_service, &ApplicationService::openRequested, this,
            [this](const QStringList& addresses) {
                activate();
                m_delegate.open(addresses);
            });
    connect(&m_signals, &QuitSignals::quitRequested, this, &Program::terminate);
    auto* zoomKeys = new ZoomKeys(&m_application, [this] { return m_workspace.root() != nullptr; });
    connect(zoomKeys, &ZoomKeys::zoomRequested, this, [this](ZoomKeys::Direction direction) {
        const Zoom::Area area = focusedZoomArea();
        direction == ZoomKeys::Direction::In ? m_zoom.zoomIn(area) : m_zoom.zoomOut(area);
    });
    connect(&m_application, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) {
                if (state == Qt::ApplicationActive)
                    m_delegate.didBecomeActive();
                else if (state == Qt::ApplicationInactive && !m_isTerminating)
                    m_delegate.didResignActive();
            });
}

Program::~Program()
{
    m_window.reset();
}

Workspace::Services Program::workspaceServices()
{
    const DefaultsStore* legacy = &m_defaults.standard;
    if (m_role.isFolderApp()) {
        m_homeDefaults.emplace(m_paths.preferences(), QLatin1String(SpaceIdentity::HomeIdentifier));
        legacy = &*m_homeDefaults;
    }
    return {m_defaults,      *legacy,       m_paths,          m_scheduler,      m_clock,
            m_dialogs,       m_desktop,     m_projects,       m_versionControl, m_focus,
            panelServices(), m_role.folder, browserServices()};
}

BrowserServices Program::browserServices()
{
    // Without a project there are no tabs.
    return {m_role.isFolderApp() ? &m_web : nullptr, &m_clock, &m_zoom, &m_desktop};
}

void Program::clearBrowsingData()
{
    const int chosen = m_dialogs.show(
        {tr("Clear the browsing data of this project?"),
         tr("Cookies, caches and everything else that pages keep on this computer are removed, and "
            "you are signed out of their sites. Other projects keep theirs."),
         {tr("Cancel"), tr("Clear")},
         true});
    if (chosen == 1)
        m_web.clearBrowsingData([] {});
}

TerminalPanel::Services Program::panelServices()
{
    return {[this](const QString& folder, const std::optional<QString>& sessionId) {
                return makeChat(folder, sessionId);
            },
            [this](const TerminalSession::Start& start) { return makeSession(start); },
            m_defaults.shared,
            m_motion,
            m_scheduler,
            [this](const QString& pane) { m_terminalHost.clearAttention(pane); }};
}

std::unique_ptr<TerminalSession> Program::makeSession(const TerminalSession::Start& start)
{
    return std::make_unique<TerminalSession>(
        start, TerminalSession::Services{m_terminalHost, m_processes, m_scheduler, m_clock,
                                         [this](Kovalt::LocalProcessDelegate& delegate) {
                                             return std::make_unique<LocalPaneProcess>(delegate,
                                                                                       m_runLoop);
                                         }});
}

std::unique_ptr<ClaudeChat> Program::makeChat(const QString& folder,
                                              const std::optional<QString>& sessionId)
{
    return std::make_unique<ClaudeChat>(
        folder, sessionId,
        ClaudeChat::Services{m_chatHost, m_agents, m_scheduler, m_clock, m_commandMemory});
}

Zoom::Area Program::focusedZoomArea() const
{
    return ZoomTarget::area(m_workspace);
}

void Program::buildWindow()
{
    const QString layout = m_settings.buttonLayout();
    m_window = std::make_unique<WindowChrome>(m_theme, m_workspace,
                                              layout.isEmpty() ? WindowButtonLayout()
                                                               : WindowButtonLayout::parse(layout),
                                              WindowChrome::wantedFrame());
    m_window->setWindowTitle(QStringLiteral("Bralto"));
    m_window->setMinimumSize(SmallestSize);
    m_window->resize(DefaultSize);
    m_dialogs.setWindow(m_window.get());
    m_window->setContent(new RootView(viewServices(), nullptr));
    m_window->setMenu((new CommandMenu(m_commands, m_window.get()))->menu());
    m_window->installEventFilter(this);
    new FirstFrame(m_window.get());
}

ViewServices Program::viewServices()
{
    ViewServices services{m_workspace,
                          m_theme,
                          m_desktop,
                          m_defaults,
                          m_clock,
                          m_motion,
                          m_zoom,
                          m_role.isFolderApp() ? WindowLayout::Role::FolderApplication
                                               : WindowLayout::Role::HomeApplication,
                          [this](ConsolePane& pane, Theme& look) { return makePane(pane, look); }};
    services.keyboard = &m_keyboard;
    services.servers = &m_servers;
    services.paneHooks = &Program::paneHooks;
    return services;
}

QWidget* Program::makePane(ConsolePane& pane, Theme& look)
{
    TerminalSession* session = pane.terminal();
    return session ? makeTerminalView(pane, *session) : makeChatView(*pane.chat(), look);
}

QWidget* Program::makeTerminalView(ConsolePane& pane, TerminalSession& session)
{
    auto* view = new TerminalView(viewServices(), session);
    connect(&view->input(), &TerminalInput::urlActivated, this,
            [this](const QString& url) { m_delegate.open({url}); });
    // The pane around the view has the menu.
    connect(&view->input(), &TerminalInput::contextMenuRequested, view, [view](const QPoint& at) {
        QContextMenuEvent event(QContextMenuEvent::Other, view->mapFromGlobal(at), at);
        QApplication::sendEvent(view->parentWidget(), &event);
    });
    connect(&view->input(), &TerminalInput::fileActivated, &m_workspace, &Workspace::openFileAt);
    const auto applyStyle = [view, &pane] { view->setStyle(pane.style()); };
    connect(&pane, &ConsolePane::styleChanged, view, applyStyle);
    applyStyle();
    const auto applyZoom = [this, view] { view->setZoom(m_zoom.level(Zoom::Area::Terminal)); };
    connect(&m_zoom, &Zoom::changed, view, applyZoom);
    applyZoom();
    return view;
}

PaneMenu::Hooks Program::paneHooks(QWidget& content)
{
    auto* view = qobject_cast<TerminalView*>(&content);
    if (!view)
        return {};
    const QPointer<TerminalInput> input(&view->input());
    return {.canCopy = [input] { return input && input->canCopy(); },
            .copy =
                [input] {
                    if (input)
                        input->copy();
                },
            .paste =
                [input] {
                    if (input)
                        input->paste();
                }};
}

QWidget* Program::makeChatView(ClaudeChat& chat, Theme& look)
{
    auto* view = new ChatView(chat, look, m_clock, m_files);
    connect(view, &ChatView::openFileRequested, &m_workspace, &Workspace::openFile);
    connect(view, &ChatView::openUrlRequested, this,
            [this](const QUrl& url) { m_delegate.open({url.toString()}); });
    connect(view, &ChatView::useDemoAgentRequested, this, [this, &chat] { useDemoAgent(chat); });
    connect(view, &ChatView::installHelpRequested, this, &Program::explainInstallation);
    const auto applyZoom = [this, view] { view->setZoom(m_zoom.level(Zoom::Area::Terminal)); };
    connect(&m_zoom, &Zoom::changed, view, applyZoom);
    applyZoom();
    return view;
}

void Program::useDemoAgent(ClaudeChat& chat)
{
    QString agent = m_role.hostBundlePath + QLatin1String(DemoAgent);
    if (m_role.hostBundlePath.isEmpty())
        agent = QFileInfo(MainBundle::executable()).path() + QStringLiteral("/bralto-demo-agent");
    m_defaults.shared.set(QStringLiteral("claudeCommand"), ShellQuote::quoted(agent));
    chat.stop();
    chat.launchIfNeeded(ClaudeChat::Turn::No);
}

void Program::explainInstallation()
{
    m_dialogs.show({tr("Install Claude Code"),
                    tr("With Node.js on this computer, run this in a terminal:\n\n"
                       "npm install -g @anthropic-ai/claude-code\n\n"
                       "Then sign in by starting “claude” once, and open a new chat here.")});
}

void Program::followSystem()
{
    connect(&m_settings, &SystemSettings::changed, this, [this] {
        m_theme.setSystem(systemLook(m_settings));
        m_motion.setReduced(m_settings.reducedMotion());
    });
    connect(&m_workspace, &Workspace::spaceChanged, this,
            [this] { m_theme.setSpace(m_workspace.space()); });
    const auto tellPages = [this] { m_web.setDark(m_theme.tokens().dark); };
    connect(&m_theme, &Theme::changed, this, tellPages);
    m_theme.setSpace(m_workspace.space());
    // The window may have taken the project's look already.
    tellPages();
    m_motion.setReduced(m_settings.reducedMotion());
}

void Program::activate()
{
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

int Program::run(const QStringList& urls)
{
    m_delegate.willFinishLaunching();
    m_delegate.didFinishLaunching();
    m_browserControl.start();
    if (!urls.isEmpty())
        m_delegate.open(urls);
    // Whoever left with the console open finds the keyboard there again.
    const TerminalPanel& panel = m_workspace.terminal();
    if (panel.isVisible() && panel.activeGroup())
        m_workspace.terminal().focus(panel.activeGroup()->focusedPane());
    return QApplication::exec();
}

void Program::terminate()
{
    if (m_isTerminating || !m_delegate.shouldTerminate())
        return;
    m_isTerminating = true;
    m_browserControl.stop();
    m_delegate.willTerminate();
    QApplication::exit(0);
}

bool Program::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_window.get() && event->type() == QEvent::Close) {
        // Nothing stays behind a closed window that one could bring it back with.
        event->ignore();
        terminate();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Bralto
