#pragma once

#include "Base/FileDescriptor.h"

#include <QByteArray>

#include <functional>
#include <memory>
#include <mutex>
#include <set>

namespace Bralto {

/// The live connections of a control server. Each has a thread of its own, which reads a request,
/// blocks until that is answered, writes the answer, and reads on: nobody waits for anybody else,
/// and the requests of one client are answered in order.
///
/// The threads belong to nobody and keep alive what they use. One that waits for an answer goes on
/// waiting after `hangUp()`; it ends when the answer comes, or when nobody is left who could give
/// it. Any thread.
class ControlClients : public std::enable_shared_from_this<ControlClients> {
public:
    /// Takes the answer, a line without its line feed, on any thread. Only the first call counts.
    /// If every copy goes without a call, the connection is closed.
    using Answer = std::function<void(QByteArray)>;
    /// Called on the client's thread, so maybe on several at once, and maybe still for a request
    /// that comes while the server stops: it owns or guards what it uses.
    using Handler = std::function<void(QByteArray request, Answer answer)>;

    /// More than these are refused: each costs the program a thread and a descriptor.
    static constexpr std::size_t Most = 2000;

    explicit ControlClients(Handler handler);

    /// Serves a connection until its end. It is closed at once if the peer is another user, or if
    /// the program has no thread or descriptor to spare for it.
    void add(FileDescriptor connection);
    /// Ends all connections, and every one that is added later.
    void hangUp();
    [[nodiscard]] std::size_t count() const;

private:
    struct Connection;

    static void* run(void* connection);
    bool enter(int descriptor);
    void leave(int descriptor);
    [[nodiscard]] bool isOpen() const;
    void serve(int descriptor) const;

    const Handler m_handler;
    mutable std::mutex m_lock;
    std::set<int> m_descriptors;
    bool m_isOpen = true;
};

} // namespace Bralto
