#pragma once

#include "Projects/SpaceApps.h"
#include "Workspace/Workspace.h"

#include <functional>

namespace Bralto {

/// What a workspace asks of the other processes and of its own end.
class ProjectProcess final : public ProjectLauncher {
public:
    /// `spaceApps` outlives this object. `terminate` asks the application to end.
    ProjectProcess(SpaceApps& spaceApps, std::function<void()> terminate);

    void launch(const QString& folder, const QStringList& files) override;
    void refresh(const QString& folder) override;
    void terminate() override { m_terminate(); }

private:
    SpaceApps& m_spaceApps;
    std::function<void()> m_terminate;
};

/// Stands where a watcher of the project's version control will: nothing is watched.
class NoVersionControl final : public GitWatcher {
public:
    void watch(const QString&) override {}
    void refresh() override {}
};

} // namespace Bralto
