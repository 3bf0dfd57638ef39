// The command line with the real bundle, defaults and session of this process.
#include "Launch/BraltoCommandLine.h"

#include "Base/AppPaths.h"
#include "Browser/BraltoMCP.h"
#include "Platform/MainBundle.h"
#include "Platform/ProcessDefaults.h"
#include "Platform/SessionApplications.h"
#include "Platform/SystemDesktop.h"
#include "Projects/SpaceApps.h"
#include "Workspace/SharedMigration.h"

#include <QCoreApplication>
#include <QDBusConnection>

#include <cstdio>

namespace Bralto::BraltoCommandLine {

namespace {

/// A command asks nobody: every question is answered with its first button, or not at all.
class NoDialogs final : public Dialogs {
public:
    int show(const Alert&) override { return 0; }
    std::optional<QString> text(const TextPrompt&) override { return std::nullopt; }
    std::optional<QString> openFileOrFolder() override { return std::nullopt; }
};

/// The session bus wants an application object; nothing here runs its event loop.
class CommandApplication {
    char m_name[7] = "bralto";
    char* m_arguments[2] = {m_name, nullptr};
    int m_count = 1;
    QCoreApplication m_application{m_count, m_arguments};
};

} // namespace

Expected<QString, QString> installSpace(const LaunchRole& role, const QString& folder)
{
    const CommandApplication application;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    const AppPaths paths = AppPaths::current();
    const ProcessDefaults defaults(paths, role);
    // A new user is told from an old one before the first trace is left.
    SharedMigration::migrateIfNeeded(defaults.defaults().shared, defaults.defaults().standard);
    SystemDesktop desktop(bus, [](const QString&) {});
    NoDialogs dialogs;
    const SessionApplications running(bus, SessionApplications::defaultRuntimeFolder(paths));
    SpaceApps apps(role, paths, defaults.defaults().shared, desktop, dialogs, running);
    return apps.install(folder, SpaceApps::WhileRunning::No);
}

bool deliver(const QString& bundleIdentifier, const QString& address)
{
    const CommandApplication application;
    const SessionApplications running(QDBusConnection::sessionBus(), QString());
    return running.open(bundleIdentifier, {address});
}

std::optional<int> handle(const QStringList& arguments)
{
    const LaunchRole role = MainBundle::role(MainBundle::executable());
    const Actions actions{
        [&role] { BraltoMCP::runStdio(role.shortVersion); },
        [&role](const QString& folder) { return installSpace(role, folder); },
        role.shortVersion,
        deliver,
    };
    QTextStream out(stdout);
    QTextStream err(stderr);
    return handle(arguments, actions, {out, err});
}

} // namespace Bralto::BraltoCommandLine
