#pragma once

#include "Projects/SpaceTheme.h"
#include "Views/ViewServices.h"

#include <QDateTime>

#include <vector>

namespace Bralto {

/// One project in a list: how it looks, what it is called, where it is, when it was used.
struct ProjectEntry {
    QString folder;
    QString name;
    SpaceTheme space;
    std::optional<QDateTime> lastUsed;
};

namespace RecentProjects {

/// The recent folders of the workspace, newest first. One that has gone is in the list as well:
/// its drive may come back.
[[nodiscard]] std::vector<ProjectEntry> entries(const ViewServices& services);

/// The entries whose name contains `text`, whatever its case; all for a blank text.
[[nodiscard]] std::vector<ProjectEntry> matching(std::vector<ProjectEntry> entries,
                                                 const QString& text);

} // namespace RecentProjects

} // namespace Bralto
