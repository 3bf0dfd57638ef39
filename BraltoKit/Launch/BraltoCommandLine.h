#pragma once

#include "Base/Expected.h"
#include "Base/LaunchRole.h"

#include <QString>
#include <QStringList>
#include <QTextStream>

#include <functional>
#include <optional>

/// What the executable does as a command-line tool, decided before any application exists.
namespace Bralto::BraltoCommandLine {

/// What the options bring about.
struct Actions {
    /// Serves the browser tools on standard input and output until the input ends.
    std::function<void()> serveTools;
    /// Makes the application of a folder: its bundle, or the system's words why not.
    std::function<Expected<QString, QString>(const QString& folder)> installSpace;
    QString version; ///< Of the home application.
    /// Hands an address to the running application of that identifier; whether it took it.
    std::function<bool(const QString& bundleIdentifier, const QString& address)> deliver;
};

struct Streams {
    QTextStream& out;
    QTextStream& err;
};

/// The exit status of a process whose `arguments`, its own path first, are a command; nothing if
/// the application has to start. The first rule that matches wins:
///
///     --mcp anywhere          serves the browser tools, then 0
///     --install-space PATH    prints the bundle and 0, or a message and 1
///     --render-icon PATH      not in this version: a message and 2
///     --deliver ID ADDRESS    0, or a message and 1
///     --help, --version       print and 0
///
/// Only the first occurrence of an option counts; one without the values that it needs is none.
[[nodiscard]] std::optional<int> handle(const QStringList& arguments, const Actions& actions,
                                        Streams streams);

/// The same with the real actions and the streams of the process.
[[nodiscard]] std::optional<int> handle(const QStringList& arguments);

/// Makes the application of `folder` as this process's part can; see `SpaceApps::install`.
[[nodiscard]] Expected<QString, QString> installSpace(const LaunchRole& role,
                                                      const QString& folder);

/// Hands `address` to the running application of that identifier; whether it took it.
[[nodiscard]] bool deliver(const QString& bundleIdentifier, const QString& address);

} // namespace Bralto::BraltoCommandLine
