#pragma once

#include "Base/AppPaths.h"
#include "Base/DefaultsStore.h"

#include <QDateTime>
#include <QString>

/// Where the projects are and when each was last worked on, as the shared defaults keep it.
namespace Bralto::ProjectsLibrary {

/// The projects folder: the one that the user chose, else the default.
[[nodiscard]] QString currentRoot(const DefaultsStore& shared, const AppPaths& paths);

/// Notes that the project in `folder` was used at `date`.
void markUsed(DefaultsStore& shared, const QString& folder, const QDateTime& date);

} // namespace Bralto::ProjectsLibrary
