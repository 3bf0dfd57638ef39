#include "App/AppDelegate.h"

#include "BraltoShared/BraltoLink.h"

#include <QFileInfo>
#include <QUrl>

namespace Bralto {

namespace {

constexpr auto WindowCheckDelay = std::chrono::milliseconds{500};
constexpr auto FullScreenKey = "NSFullScreenMenuItemEverywhere";
constexpr auto PendingLaunchKey = "migrated.pendingLaunch";

} // namespace

AppDelegate::AppDelegate(Services services, QObject* parent)
    : QObject(parent)
    , m_services(std::move(services))
{
}

void AppDelegate::willFinishLaunching()
{
    m_services.defaults.standard.set(QLatin1String(FullScreenKey), false);
}

void AppDelegate::didFinishLaunching()
{
    m_services.activate();
    m_services.scheduler.after(WindowCheckDelay, this, [this] { checkWindow(); });
    if (m_services.role.isFolderApp())
        return;
    // A session from before projects had processes of their own is brought back once.
    const auto pending = m_services.defaults.shared.string(QLatin1String(PendingLaunchKey));
    if (!pending)
        return;
    m_services.defaults.shared.remove(QLatin1String(PendingLaunchKey));
    m_services.workspace.openFolder(*pending, {});
}

void AppDelegate::checkWindow()
{
    if (!m_services.hasWindow())
        m_services.activate();
}

void AppDelegate::open(const QStringList& urls)
{
    for (const QString& url : urls)
        openOne(url);
}

void AppDelegate::openOne(const QString& text)
{
    Workspace& workspace = m_services.workspace;
    if (text.startsWith(u'/')) {
        workspace.open(text);
        return;
    }
    const QUrl url(text, QUrl::StrictMode);
    const QString scheme = url.scheme().toLower();
    if (scheme == QLatin1String(BraltoLink::Scheme)) {
        if (const auto link = BraltoLink::parse(url))
            workspace.perform(*link);
    } else if (scheme == QLatin1String("http") || scheme == QLatin1String("https")) {
        if (workspace.root() && workspace.canShowPages()) {
            workspace.insertPage(url);
            m_services.activate();
        } else {
            m_services.desktop.open(url);
        }
    } else if (url.isLocalFile()) {
        workspace.open(url.toLocalFile());
    } else {
        workspace.open(QFileInfo(text).absoluteFilePath());
    }
}

void AppDelegate::didBecomeActive()
{
    m_services.workspace.syncWithDisk();
}

void AppDelegate::didResignActive()
{
    if (m_services.role.isFolderApp())
        m_services.workspace.markUsed();
    m_services.workspace.saveAll();
    m_services.workspace.persistTerminals();
}

bool AppDelegate::shouldTerminate()
{
    Workspace& workspace = m_services.workspace;
    workspace.persistSession();
    workspace.persistTerminals();
    return workspace.confirmDiscardingChanges(workspace.documents());
}

void AppDelegate::willTerminate()
{
    // Now the bundle can be replaced safely; a failure costs nothing but the refresh.
    if (m_services.role.folder)
        (void)m_services.spaceApps.install(*m_services.role.folder, SpaceApps::WhileRunning::Yes);
}

} // namespace Bralto
