#pragma once

#include "Base/AppPaths.h"
#include "Base/DefaultsStore.h"

#include <QDateTime>
#include <QString>

#include <optional>

/// Where the projects live, and when each was last worked on.
namespace Bralto::ProjectUse {

/// Notes in the shared defaults that `folder` was worked on at `date`.
void markUsed(DefaultsStore& shared, const QString& folder, const QDateTime& date);

/// When `folder` was last marked.
[[nodiscard]] std::optional<QDateTime> lastUsed(const DefaultsStore& shared, const QString& folder);

/// The projects folder of someone who has not chosen one.
[[nodiscard]] QString defaultRoot(const AppPaths& paths);

/// The projects folder: the chosen one, else the default. It need not exist.
[[nodiscard]] QString currentRoot(const DefaultsStore& shared, const AppPaths& paths);

} // namespace Bralto::ProjectUse
