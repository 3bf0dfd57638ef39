#pragma once

#include "Base/DefaultsStore.h"
#include "Base/LaunchRole.h"

#include <QString>
#include <QStringList>
#include <QVariant>

/// The mode in which the program shows itself without showing anyone's data.
namespace Bralto::Demo {

/// A true flag, a number other than 0, or a text that reads "1", "yes", "true" or "on".
[[nodiscard]] bool isTruthy(const QVariant& value);

/// Whether this process shows a demo: the environment says so, else its launch argument
/// "-BraltoDemo" with a value behind it, else its folder is one of the shared "demoFolders".
/// `environment` is the value of `BRALTO_DEMO`. Decided once, at the start.
[[nodiscard]] bool isActive(const QString& environment, const QStringList& arguments,
                            const LaunchRole& role, const DefaultsStore& shared);

} // namespace Bralto::Demo
