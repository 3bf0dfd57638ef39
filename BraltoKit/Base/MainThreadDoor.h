#pragma once

#include <QMetaObject>
#include <QObject>

#include <mutex>
#include <utility>

namespace Bralto {

/// The way from a worker to an object of the main thread that may be gone by then. The object and
/// its workers share the door; the object closes it before it ends.
class MainThreadDoor {
public:
    explicit MainThreadDoor(QObject* owner)
        : m_owner(owner)
    {
    }

    /// Runs `call` on the main thread in a later turn of its event loop, unless the owner has gone
    /// by then. Any thread.
    template <typename Call>
    void post(Call call)
    {
        whileOpen([&call](QObject* owner) {
            QMetaObject::invokeMethod(owner, std::move(call), Qt::QueuedConnection);
        });
    }

    /// Runs `call` here and now while the owner is kept from closing; not at all if it has closed.
    /// Short calls only. Any thread.
    template <typename Call>
    void whileOpen(Call call)
    {
        const std::lock_guard lock(m_mutex);
        if (m_owner)
            call(m_owner);
    }

    /// From here on nothing passes. Main thread.
    void close()
    {
        const std::lock_guard lock(m_mutex);
        m_owner = nullptr;
    }

private:
    std::mutex m_mutex;
    QObject* m_owner;
};

} // namespace Bralto
