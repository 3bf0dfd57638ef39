#pragma once

#include "Base/LaunchRole.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace Bralto {

/// A folder given to the home application on the command line becomes that project's own process:
/// this one is replaced, so that whoever started it keeps one process to wait for, and no window
/// but the project's opens.
namespace ProjectHandover {

/// The project that `arguments` (without the program's own name) ask for: one existing folder, or
/// one existing file, whose folder it is then.
struct Request {
    QString folder;    ///< Standardised.
    QStringList files; ///< What the project is to open.

    bool operator==(const Request&) const = default;
};
[[nodiscard]] std::optional<Request> request(const LaunchRole& role, const QStringList& arguments);

/// Remembers the project as a recent one, makes its bundle, and replaces this process by it. Only
/// returns on failure, with the system's own words.
[[nodiscard]] QString replaceProcess(const LaunchRole& role, const Request& request);

} // namespace ProjectHandover

} // namespace Bralto
