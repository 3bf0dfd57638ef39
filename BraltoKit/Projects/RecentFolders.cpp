#include "Projects/RecentFolders.h"

#include <QFileInfo>

#include <algorithm>

namespace Bralto::RecentFolders {

QStringList load(const DefaultsStore& shared)
{
    QStringList folders = shared.strings(Key).value_or(QStringList());
    folders.removeIf([](const QString& folder) { return !QFileInfo::exists(folder); });
    return folders.first(std::min(folders.size(), Most));
}

QStringList remembering(const QStringList& list, const QString& folder)
{
    QStringList folders = list;
    folders.removeAll(folder);
    folders.prepend(folder);
    return folders.first(std::min(folders.size(), Most));
}

} // namespace Bralto::RecentFolders
