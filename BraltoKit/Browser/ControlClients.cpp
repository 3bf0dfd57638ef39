#include "Browser/ControlClients.h"

#include "Browser/ControlSocket.h"

#include <pthread.h>
#include <sys/resource.h>

#include <atomic>
#include <semaphore>

namespace Bralto {

namespace {

/// A client's thread keeps its data on the heap.
constexpr std::size_t StackSize = 256 * 1024;
/// Descriptors that stay for the rest of the program, where its limit is low.
constexpr rlim_t KeptBack = 128;

/// Carries an answer to the thread that waits for it.
struct ResponseBox {
    std::optional<QByteArray> value;
    std::binary_semaphore isDone{0};
};

/// What all copies of one answer function share.
class Ticket {
public:
    explicit Ticket(std::shared_ptr<ResponseBox> box)
        : m_box(std::move(box))
    {
    }
    Ticket(const Ticket&) = delete;
    Ticket& operator=(const Ticket&) = delete;
    ~Ticket() { settle(std::nullopt); }

    void settle(std::optional<QByteArray> value)
    {
        if (m_isSettled.exchange(true))
            return;
        m_box->value = std::move(value);
        m_box->isDone.release();
    }

private:
    std::shared_ptr<ResponseBox> m_box;
    std::atomic<bool> m_isSettled = false;
};

/// Absent if nobody answers.
std::optional<QByteArray> await(const ControlClients::Handler& handler, QByteArray request)
{
    const auto box = std::make_shared<ResponseBox>();
    {
        const auto ticket = std::make_shared<Ticket>(box);
        handler(std::move(request),
                [ticket](QByteArray answer) { ticket->settle(std::move(answer)); });
    }
    box->isDone.acquire();
    return std::move(box->value);
}

bool isSameUser(int descriptor)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == ::getuid();
}

bool leavesDescriptors(int descriptor)
{
    rlimit limit{};
    return ::getrlimit(RLIMIT_NOFILE, &limit) != 0 ||
           rlim_t(descriptor) + KeptBack < limit.rlim_cur;
}

bool startDetached(void* (*run)(void*), void* argument)
{
    pthread_attr_t attributes;
    if (::pthread_attr_init(&attributes) != 0)
        return false;
    ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    ::pthread_attr_setstacksize(&attributes, StackSize);
    pthread_t thread{};
    const bool isStarted = ::pthread_create(&thread, &attributes, run, argument) == 0;
    ::pthread_attr_destroy(&attributes);
    return isStarted;
}

} // namespace

struct ControlClients::Connection {
    std::shared_ptr<ControlClients> clients;
    FileDescriptor descriptor;
};

ControlClients::ControlClients(Handler handler)
    : m_handler(std::move(handler))
{
}

void ControlClients::add(FileDescriptor connection)
{
    const int descriptor = connection.get();
    if (!isSameUser(descriptor) || !leavesDescriptors(descriptor) || !enter(descriptor))
        return;
    std::unique_ptr<Connection> owned(new Connection{shared_from_this(), std::move(connection)});
    if (startDetached(run, owned.get()))
        static_cast<void>(owned.release()); // The thread's from here on.
    else
        leave(descriptor);
}

void ControlClients::hangUp()
{
    const std::lock_guard lock(m_lock);
    m_isOpen = false;
    // Under the lock, so that no number is closed and used again meanwhile.
    for (const int descriptor : m_descriptors)
        ::shutdown(descriptor, SHUT_RDWR);
}

std::size_t ControlClients::count() const
{
    const std::lock_guard lock(m_lock);
    return m_descriptors.size();
}

void* ControlClients::run(void* connection)
{
    const std::unique_ptr<Connection> owned(static_cast<Connection*>(connection));
    const int descriptor = owned->descriptor.get();
    owned->clients->serve(descriptor);
    owned->clients->leave(descriptor);
    return nullptr;
}

bool ControlClients::enter(int descriptor)
{
    const std::lock_guard lock(m_lock);
    return m_isOpen && m_descriptors.size() < Most && m_descriptors.insert(descriptor).second;
}

void ControlClients::leave(int descriptor)
{
    const std::lock_guard lock(m_lock);
    m_descriptors.erase(descriptor);
}

bool ControlClients::isOpen() const
{
    const std::lock_guard lock(m_lock);
    return m_isOpen;
}

void ControlClients::serve(int descriptor) const
{
    ControlSocket::LineBuffer buffer;
    while (auto line = ControlSocket::readLine(descriptor, buffer)) {
        if (line->isEmpty())
            continue;
        // What was read before the end is not begun after it.
        if (!isOpen())
            return;
        auto answer = await(m_handler, *std::move(line));
        if (!answer || !ControlSocket::writeAll(descriptor, answer->append('\n')))
            return;
    }
}

} // namespace Bralto
