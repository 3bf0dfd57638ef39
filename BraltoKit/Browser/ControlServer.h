#pragma once

#include "Browser/ControlClients.h"
#include "Browser/ControlError.h"

#include <QString>

#include <memory>
#include <optional>
#include <thread>

namespace Bralto {

/// Serves a project's control socket to the processes of the same user; see `ControlClients` for
/// how a client is served. Started and stopped on one thread.
class ControlServer {
public:
    using Answer = ControlClients::Answer;
    using Handler = ControlClients::Handler;

    ControlServer(QString path, Handler handler);
    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    /// Listens from here on; why it can't, if it can't. Does nothing while it is running.
    [[nodiscard]] std::optional<ControlError> start();
    /// Takes the socket away, unless a newer process has replaced it, and hangs up on all clients.
    /// Waits for none of them: a request that is under way is answered into the void.
    void stop();

    [[nodiscard]] bool isRunning() const { return m_source != nullptr; }
    [[nodiscard]] const QString& path() const { return m_path; }
    /// Of this run, or of the last one: clients whose thread has not ended.
    [[nodiscard]] std::size_t clientCount() const;

private:
    class Source;

    QString m_path;
    Handler m_handler;
    std::shared_ptr<ControlClients> m_clients;
    std::unique_ptr<Source> m_source;
    std::thread m_acceptor;
};

} // namespace Bralto
