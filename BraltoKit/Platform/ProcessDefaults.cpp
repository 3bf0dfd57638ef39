#include "Platform/ProcessDefaults.h"

#include "Platform/FileDefaultsStore.h"

namespace Bralto {

ProcessDefaults::ProcessDefaults(const AppPaths& paths, const LaunchRole& role)
    : m_standard(std::make_unique<FileDefaultsStore>(paths.preferences(), role.bundleIdentifier))
{
    auto shared =
        std::make_unique<FileDefaultsStore>(paths.preferences(), QLatin1String(SharedDomain));
    if (shared->isWritable())
        m_shared = std::move(shared);
}

ProcessDefaults::~ProcessDefaults() = default;

Defaults ProcessDefaults::defaults() const
{
    return {m_shared ? *m_shared : *m_standard, *m_standard};
}

} // namespace Bralto
