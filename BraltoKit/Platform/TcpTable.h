#pragma once

#include <QByteArrayView>

#include <vector>

/// The kernel's table of TCP sockets, as it stands in /proc/net/tcp and /proc/net/tcp6.
namespace Bralto::TcpTable {

struct Listener {
    quint64 inode = 0; ///< Of the socket.
    int port = 0;

    bool operator==(const Listener&) const = default;
};

/// The sockets that wait for connections. A line that is not as expected is passed over.
[[nodiscard]] std::vector<Listener> listeners(QByteArrayView table);

} // namespace Bralto::TcpTable
