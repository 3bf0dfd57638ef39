// The server's two ends: the agent's pipes, and the socket of the project's window.
#include "Browser/BraltoMCP.h"

#include "Base/AppPaths.h"
#include "Base/PaneEnvironment.h"
#include "Base/Paths.h"
#include "Browser/ControlMessage.h"
#include "Browser/ControlSocket.h"

#include <QDir>
#include <QFileInfo>
#include <QProcessEnvironment>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>

namespace Bralto::BraltoMCP {

namespace {

constexpr std::chrono::seconds RelayTimeout{90};

QString notRunning()
{
    return QStringLiteral("Bralto isn’t running for this project. Open this project in Bralto "
                          "first: these tools control the browser inside its window.");
}

bool isBlank(const QByteArray& line)
{
    return std::ranges::all_of(
        line, [](char byte) { return byte == ' ' || byte == '\t' || byte == '\r'; });
}

} // namespace

std::optional<QString> socketPath(const Surroundings& surroundings,
                                  const std::function<bool(const QString&)>& exists)
{
    const auto found = [&](const QString& folder) -> std::optional<QString> {
        const QString path = ControlSocket::path(surroundings.directory, folder);
        return exists(path) ? std::optional(path) : std::nullopt;
    };
    const auto project =
        PaneEnvironment::value(surroundings.environment, QLatin1String(PaneEnvironment::Project));
    if (project && !project->isEmpty()) {
        if (auto path = found(*project))
            return path;
    }
    for (QString folder = Paths::standardised(surroundings.cwd); !folder.isEmpty();
         folder = Paths::parent(folder)) {
        if (auto path = found(folder))
            return path;
        if (folder == u'/')
            break;
    }
    return std::nullopt;
}

Expected<QByteArray, ControlError> relay(const QString& tool, std::string_view arguments,
                                         const Surroundings& surroundings)
{
    const auto path =
        socketPath(surroundings, [](const QString& file) { return QFileInfo::exists(file); });
    if (!path)
        return Unexpected{ControlError{notRunning()}};
    auto answer =
        ControlSocket::call(*path, ControlMessage::encodeRequest(tool, arguments), RelayTimeout);
    if (answer)
        return answer;
    return Unexpected{
        ControlError{notRunning() + QStringLiteral(" (") + answer.error().message + u')'}};
}

void runStdio(const QString& version)
{
    std::signal(SIGPIPE, SIG_IGN);
    const Surroundings surroundings{
        QProcessEnvironment::systemEnvironment().toStringList(),
        QDir::currentPath(),
        AppPaths::current().control(),
    };
    const Server server{version, [&surroundings](const QString& tool, std::string_view arguments) {
                            return relay(tool, arguments, surroundings);
                        }};
    ControlSocket::LineBuffer buffer;
    while (const auto line = ControlSocket::readLine(STDIN_FILENO, buffer)) {
        if (isBlank(*line))
            continue;
        auto answer = handle({line->constData(), std::size_t(line->size())}, server);
        // Where nobody reads any more, the input will end as well.
        if (answer)
            static_cast<void>(ControlSocket::writeAll(STDOUT_FILENO, answer->append('\n')));
    }
}

} // namespace Bralto::BraltoMCP
