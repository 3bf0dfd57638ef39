#include "Views/Home/RecentProjects.h"

#include <QVariantMap>

namespace Bralto::RecentProjects {

std::vector<ProjectEntry> entries(const ViewServices& services)
{
    const QVariantMap used = services.defaults.shared.dictionary(QStringLiteral("projectLastUsed"))
                                 .value_or(QVariantMap());
    std::vector<ProjectEntry> entries;
    for (const QString& folder : services.workspace.recentFolders()) {
        const SpaceTheme space = SpaceStore::load(services.defaults.shared, folder);
        const QVariant date = used.value(folder);
        const auto lastUsed = date.metaType().id() == QMetaType::QDateTime
                                  ? std::optional(date.toDateTime())
                                  : std::nullopt;
        entries.push_back({folder, space.displayName(folder), space, lastUsed});
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
