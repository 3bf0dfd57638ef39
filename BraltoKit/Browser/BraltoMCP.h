#pragma once

#include "Base/Expected.h"
#include "Base/Json.h"
#include "Browser/ControlError.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <string_view>

/// The program as a Model Context Protocol server over standard input and output, started by the
/// agent: it answers the protocol's housekeeping itself and hands every tool call to the window of
/// the project that the agent works in. A JSON-RPC message a line; nothing is remembered from one
/// to the next. No window, no event loop, one thread.
namespace Bralto::BraltoMCP {

/// Calls a tool in the project's window: `arguments` is the text of a JSON object, the result the
/// line that came back.
using Relay = std::function<Expected<QByteArray, ControlError>(const QString& tool,
                                                               std::string_view arguments)>;

struct Server {
    QString version; ///< Of the program.
    Relay relay;
};

/// One line to one line, both without the line feed; absent if there is nothing to say.
[[nodiscard]] std::optional<QByteArray> handle(std::string_view line, const Server& server);

/// One message. `text` is what it was parsed from; identifiers and arguments are copied from it as
/// they came.
[[nodiscard]] std::optional<QByteArray> handle(const JsonObject& message, std::string_view text,
                                               const Server& server);

/// The names of the tools that can be called.
[[nodiscard]] const QSet<QString>& toolNames();

/// `id` is JSON.
[[nodiscard]] QByteArray error(std::string_view id, int code, const QString& message);

/// Where a server process looks for its project.
struct Surroundings {
    QStringList environment; ///< "NAME=value".
    QString cwd;
    QString directory; ///< Of the control sockets.
};

/// The socket of the project that the environment names, else of the nearest folder from `cwd`
/// upwards that has one. `exists` tells whether there is a file at a path.
[[nodiscard]] std::optional<QString> socketPath(const Surroundings& surroundings,
                                                const std::function<bool(const QString&)>& exists);

/// Over the socket of the project; takes 90 seconds at most.
[[nodiscard]] Expected<QByteArray, ControlError>
relay(const QString& tool, std::string_view arguments, const Surroundings& surroundings);

/// Serves standard input until it ends.
void runStdio(const QString& version);

} // namespace Bralto::BraltoMCP
