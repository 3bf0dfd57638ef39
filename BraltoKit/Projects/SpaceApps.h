#pragma once

#include "Base/AppPaths.h"
#include "Base/DefaultsStore.h"
#include "Base/Desktop.h"
#include "Base/Dialogs.h"
#include "Base/Expected.h"
#include "Base/LaunchRole.h"
#include "Projects/RunningApplications.h"

#include <QStringList>

namespace Bralto {

/// Writes, refreshes, finds and starts the application bundle of each project. Main thread.
class SpaceApps {
public:
    /// The collaborators must outlive this object.
    SpaceApps(LaunchRole role, AppPaths paths, DefaultsStore& shared, Desktop& desktop,
              Dialogs& dialogs, const RunningApplications& running);

    /// Where the bundle of `folder` belongs: a name that no other project's bundle claims.
    [[nodiscard]] QString appPath(const QString& folder) const;

    /// Makes or refreshes the bundle; its path, or the system's words why it could not be.
    /// `whileRunning` is said by that very application, at quit.
    enum class WhileRunning { No, Yes };
    Expected<QString, QString> install(const QString& folder, WhileRunning whileRunning);

    /// Starts the application of `folder` with `files` (paths or addresses) as arguments. Reports
    /// its own failure; whether it started.
    bool launch(const QString& folder, const QStringList& files);

    /// Starts the home application.
    void openHome();

    /// Copies `source` to `destination` unless size and date say that it is there already. A
    /// running executable is replaced, never written into. The system's words on failure.
    static Expected<bool, QString> copyIfNewer(const QString& source, const QString& destination);

    [[nodiscard]] const LaunchRole& role() const { return m_role; }

private:
    [[nodiscard]] QByteArray description(const QString& folder, const QString& name) const;

    LaunchRole m_role;
    AppPaths m_paths;
    DefaultsStore& m_shared;
    Desktop& m_desktop;
    Dialogs& m_dialogs;
    const RunningApplications& m_running;
};

} // namespace Bralto
