#include "App/ProjectProcess.h"

namespace Bralto {

ProjectProcess::ProjectProcess(SpaceApps& spaceApps, std::function<void()> terminate)
    : m_spaceApps(spaceApps)
    , m_terminate(std::move(terminate))
{
}

void ProjectProcess::launch(const QString& folder, const QStringList& files)
{
    m_spaceApps.launch(folder, files);
}

void ProjectProcess::refresh(const QString& folder)
{
    // The name in the bundle follows the next launch; what can't be written now is written then.
    (void)m_spaceApps.install(folder, SpaceApps::WhileRunning::No);
}

} // namespace Bralto
