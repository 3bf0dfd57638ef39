#include "Browser/ControlServer.h"

#include "Browser/ControlSocket.h"

#include <QFile>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <functional>
#include <system_error>

namespace Bralto {

namespace {

/// How long connections wait in the queue when the program has no descriptor for one: nobody tells
/// when there is one again.
constexpr std::chrono::milliseconds Pause{100};

/// Which file lies at a path.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    bool operator==(const FileIdentity&) const = default;
};

std::optional<FileIdentity> identity(const QByteArray& path)
{
    struct stat info {};
    if (::lstat(path.constData(), &info) != 0)
        return std::nullopt;
    return FileIdentity{info.st_dev, info.st_ino};
}

} // namespace

/// Watches the listening socket on a thread of its own, until it is told to end.
class ControlServer::Source {
public:
    Source(FileDescriptor listener, FileDescriptor wake, const QString& path)
        : m_listener(std::move(listener))
        , m_wake(std::move(wake))
        , m_path(path.toUtf8())
        , m_identity(identity(m_path))
    {
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    /// A newer process may have its own socket there by now.
    ~Source()
    {
        if (m_identity && identity(m_path) == m_identity)
            ::unlink(m_path.constData());
    }

    void run(ControlClients& clients) const
    {
        while (!isCancelled(std::chrono::milliseconds(-1), m_listener.get())) {
            if (!accept(clients) && isCancelled(Pause))
                return;
        }
    }

    void cancel() const { ::eventfd_write(m_wake.get(), 1); }

private:
    /// Waits for the end, or for `other` (-1 is never ready).
    [[nodiscard]] bool isCancelled(std::chrono::milliseconds limit, int other = -1) const
    {
        pollfd entries[]{{m_wake.get(), POLLIN, 0}, {other, POLLIN, 0}};
        ::poll(entries, std::size(entries), int(limit.count()));
        return entries[0].revents != 0;
    }

    /// Takes what is waiting; false if the program can't take more for now.
    [[nodiscard]] bool accept(ControlClients& clients) const
    {
        for (;;) {
            FileDescriptor connection(::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
            if (connection.isOpen())
                clients.add(std::move(connection));
            else if (errno == EAGAIN)
                return true;
            else if (errno != EINTR && errno != ECONNABORTED)
                return false;
        }
    }

    FileDescriptor m_listener;
    FileDescriptor m_wake;
    QByteArray m_path;
    std::optional<FileIdentity> m_identity;
};

ControlServer::ControlServer(QString path, Handler handler)
    : m_path(std::move(path))
    , m_handler(std::move(handler))
{
}

ControlServer::~ControlServer()
{
    stop();
}

std::optional<ControlError> ControlServer::start()
{
    if (isRunning())
        return std::nullopt;
    FileDescriptor wake(::eventfd(0, EFD_CLOEXEC));
    if (!wake.isOpen())
        return ControlSocket::cantListen(m_path, errno);
    auto listener = ControlSocket::makeListener(m_path);
    if (!listener)
        return listener.error();
    auto source = std::make_unique<Source>(std::move(*listener), std::move(wake), m_path);
    m_clients = std::make_shared<ControlClients>(m_handler);
    try {
        m_acceptor = std::thread(&Source::run, source.get(), std::ref(*m_clients));
    } catch (const std::system_error& error) {
        return ControlSocket::cantListen(m_path, error.code().value());
    }
    m_source = std::move(source);
    return std::nullopt;
}

void ControlServer::stop()
{
    if (!isRunning())
        return;
    m_source->cancel();
    m_acceptor.join();
    m_clients->hangUp();
    m_source.reset();
}

std::size_t ControlServer::clientCount() const
{
    return m_clients ? m_clients->count() : 0;
}

} // namespace Bralto
