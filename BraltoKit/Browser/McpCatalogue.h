#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>

#include <string_view>

/// The browser tools as the agent is told of them.
namespace Bralto::McpCatalogue {

/// How the server introduces its tools.
[[nodiscard]] std::string_view instructions();

[[nodiscard]] const QSet<QString>& toolNames();

/// A JSON array with an object a tool: its name, title and description, the schema of its
/// arguments, and a note if it only reads. Made once.
[[nodiscard]] const QByteArray& json();

} // namespace Bralto::McpCatalogue
