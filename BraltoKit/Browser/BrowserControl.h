#pragma once

#include "Base/AppPaths.h"
#include "Base/LaunchRole.h"
#include "Browser/ControlServer.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class QObject;

namespace Bralto {

class MainThreadDoor;

/// Lets agents drive a project's browser: listens while the project's window is there, and tells
/// an agent that is about to start how it gets to the tools. Main thread.
class BrowserControl {
public:
    /// Carries out one request, a line of JSON, and gives its answer to `answer`, now or later and
    /// on any thread; dropping `answer` hangs up on the client.
    using Handler = ControlServer::Handler;

    /// `handler` is called on the main thread, in a later turn of its event loop, and never after
    /// `stop()`.
    BrowserControl(AppPaths paths, LaunchRole role, Handler handler);
    ~BrowserControl();
    BrowserControl(const BrowserControl&) = delete;
    BrowserControl& operator=(const BrowserControl&) = delete;

    /// Opens the project's socket. Does nothing without a project or while it is open already; a
    /// failure is logged, and the program goes on without browser control.
    void start();
    /// Takes the socket away and hangs up on all clients; at the program's end.
    void stop();
    [[nodiscard]] bool isRunning() const { return m_server != nullptr; }

    /// The flags that tell an agent of the tools' server, and the file that they name is up to
    /// date. Empty outside a bundle, where no program could be started.
    [[nodiscard]] static QStringList mcpConfigFlags(const AppPaths& paths, const LaunchRole& role);
    /// The program that an agent starts as its server: the host's, which an update replaces, else
    /// the bundle's own.
    [[nodiscard]] static std::optional<QString> executable(const LaunchRole& role);
    /// What the agent reads of a server that is started as `executable`.
    [[nodiscard]] static QByteArray configJSON(const QString& executable);

private:
    AppPaths m_paths;
    LaunchRole m_role;
    Handler m_handler;
    std::unique_ptr<QObject> m_context; ///< Calls that are on the way go with it.
    std::shared_ptr<MainThreadDoor> m_door;
    std::unique_ptr<ControlServer> m_server;
};

} // namespace Bralto
