#include "Views/Home/RecentProjects.h"

#include "Projects/ProjectUse.h"

namespace Bralto::RecentProjects {

std::vector<ProjectEntry> entries(const ViewServices& services)
{
    std::vector<ProjectEntry> entries;
    for (const QString& folder : services.workspace.recentFolders()) {
        const SpaceTheme space = SpaceStore::load(services.defaults.shared, folder);
        entries.push_back({folder, space.displayName(folder), space,
                           ProjectUse::lastUsed(services.defaults.shared, folder)});
    }
    return entries;
}

std::vector<ProjectEntry> matching(std::vector<ProjectEntry> entries, const QString& text)
{
    const QString wanted = text.trimmed();
    std::erase_if(entries, [&wanted](const ProjectEntry& entry) {
        return !entry.name.contains(wanted, Qt::CaseInsensitive);
    });
    return entries;
}

} // namespace Bralto::RecentProjects
