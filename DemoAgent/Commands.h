#pragma once

#include <QJsonArray>
#include <QString>

namespace DemoAgent::Commands {

/// The slash commands, as the app lists them: the built-in ones, then those that the user keeps as
/// Markdown files in `.claude/commands` of the project and of the home folder.
[[nodiscard]] QJsonArray list(const QString& home, const QString& folder);

} // namespace DemoAgent::Commands
