#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace Bralto::ChatEffort {

using ReadFile = std::function<std::optional<QByteArray>(const QString& path)>;

/// The effort that an agent begins with, started by `command` in `folder`: what the command says,
/// else the first of the project's and the user's settings files that says something. A file that
/// can't be read or isn't JSON says nothing.
[[nodiscard]] std::optional<QString> effort(const QString& command, const QString& folder,
                                            const QString& home, const ReadFile& readFile);

} // namespace Bralto::ChatEffort
