#include "Browser/BrowserControl.h"

#include "Base/JsonWriter.h"
#include "Base/MainThreadDoor.h"
#include "Browser/BrowserBridge.h"
#include "Browser/ControlSocket.h"

#include <QFileInfo>
#include <QLoggingCategory>

namespace Bralto {

Q_LOGGING_CATEGORY(browserLog, "bralto.browser")

BrowserControl::BrowserControl(AppPaths paths, LaunchRole role, Handler handler)
    : m_paths(std::move(paths))
    , m_role(std::move(role))
    , m_handler(std::move(handler))
{
}

BrowserControl::~BrowserControl()
{
    stop();
}

void BrowserControl::start()
{
    if (!m_role.folder || isRunning())
        return;
    m_context = std::make_unique<QObject>();
    m_door = std::make_shared<MainThreadDoor>(m_context.get());
    const QString directory = m_paths.control();
    auto server = std::make_unique<ControlServer>(
        ControlSocket::path(directory, *m_role.folder),
        [this, door = m_door](QByteArray request, ControlServer::Answer answer) {
            door->post([this, request = std::move(request), answer = std::move(answer)] {
                m_handler(request, answer);
            });
        });
    auto error = ControlSocket::prepareDirectory(directory);
    if (!error)
        error = server->start();
    if (error) {
        qCWarning(browserLog).noquote() << "Bralto: browser control is off:" << error->message;
        return;
    }
    m_server = std::move(server);
}

void BrowserControl::stop()
{
    m_server.reset();
    if (m_door)
        m_door->close();
    m_context.reset();
}

QStringList BrowserControl::mcpConfigFlags(const AppPaths& paths, const LaunchRole& role)
{
    const auto program = executable(role);
    if (!program)
        return {};
    const QString path = paths.mcpConfig();
    BrowserBridge::write(configJSON(*program), path, false);
    return {QStringLiteral("--mcp-config"), path};
}

std::optional<QString> BrowserControl::executable(const LaunchRole& role)
{
    if (QFileInfo(role.bundlePath).suffix() != QStringLiteral("app"))
        return std::nullopt;
    for (const QString& path :
         {role.hostExecutable, role.bundlePath + QStringLiteral("/Contents/MacOS/Bralto")}) {
        const QFileInfo info(path);
        if (info.isFile() && info.isExecutable())
            return path;
    }
    return std::nullopt;
}

QByteArray BrowserControl::configJSON(const QString& executable)
{
    JsonWriter writer(JsonWriter::Layout::Indented);
    writer.beginObject();
    writer.key("mcpServers");
    writer.beginObject();
    writer.key("bralto");
    writer.beginObject();
    writer.key("args");
    writer.beginArray();
    writer.value("--mcp");
    writer.endArray();
    writer.member("command", executable);
    writer.member("type", "stdio");
    writer.endObject();
    writer.endObject();
    writer.endObject();
    return writer.take() + '\n';
}

} // namespace Bralto
