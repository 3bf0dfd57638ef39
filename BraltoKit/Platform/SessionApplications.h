#pragma once

#include "Base/AppPaths.h"
#include "Platform/FileLock.h"
#include "Projects/RunningApplications.h"

#include <QDBusConnection>
#include <QString>
#include <QStringList>

#include <memory>

namespace Bralto {

/// Applications of this session, each the owner of a name on the session bus. Where there is no
/// bus, a locked file for each identifier serves instead. Main thread.
class SessionApplications final : public RunningApplications {
public:
    /// The folder for the locks of this session; one in the support folder where the system
    /// gives a session none.
    [[nodiscard]] static QString defaultRuntimeFolder(const AppPaths& paths);

    /// `runtimeFolder` is made when the first lock is needed.
    SessionApplications(const QDBusConnection& bus, const QString& runtimeFolder);
    ~SessionApplications() override;

    [[nodiscard]] bool isRunning(const QString& bundleIdentifier) const override;

    /// Makes this process the running application of that identifier, until it ends. False if
    /// another process is.
    bool claim(const QString& bundleIdentifier);

    /// Hands addresses to the running application of that identifier and waits until it has them.
    /// False if none is running, or it doesn't answer; nothing is started. Needs a bus.
    [[nodiscard]] bool open(const QString& bundleIdentifier, const QStringList& addresses) const;

    /// The bus name of an identifier: an element that begins with a digit gets a "_" before it.
    [[nodiscard]] static QString busName(const QString& bundleIdentifier);
    /// Where that application's object is, as the desktop's rules have it.
    [[nodiscard]] static QString objectPath(const QString& bundleIdentifier);

private:
    [[nodiscard]] QString lockPath(const QString& bundleIdentifier) const;

    QDBusConnection m_bus;
    QString m_runtimeFolder;
    std::unique_ptr<FileLock> m_lock;
};

} // namespace Bralto
