#pragma once

#include "Base/DefaultsStore.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

/// The projects that were opened lately, as all processes of the program know them.
namespace Bralto::RecentFolders {

/// Where the list stands in the shared defaults.
inline constexpr char Key[] = "recentFolders";

inline constexpr qsizetype Most = 6;

/// The folders that are still there, newest first.
[[nodiscard]] QStringList load(const DefaultsStore& shared);

/// `list` with `folder`, standardised, in front; at most `Most` remain.
[[nodiscard]] QStringList remembering(const QStringList& list, const QString& folder);

} // namespace Bralto::RecentFolders
