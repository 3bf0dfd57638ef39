#pragma once

#include "Base/Expected.h"
#include "Base/FileDescriptor.h"
#include "Browser/ControlError.h"
#include "Browser/ControlMessage.h"

#include <QByteArray>
#include <QString>

#include <sys/socket.h>
#include <sys/un.h>

#include <chrono>
#include <cstddef>
#include <optional>

/// The transport that both ends of a project's control socket share: a Unix stream socket with a
/// message a line. All calls block, and none raises SIGPIPE on a socket. Any thread.
namespace Bralto::ControlSocket {

/// The longest path of a socket, in bytes of UTF-8.
inline constexpr qsizetype PathLimit = 103;

/// The name of a project's socket, without ".sock". A digest, so that the path's length doesn't
/// depend on the project's.
[[nodiscard]] QString digest(const QString& folder);

/// The socket of the project in `folder`, `directory` being where all the sockets lie.
[[nodiscard]] QString path(const QString& directory, const QString& folder);

/// Makes `directory` with all that leads to it, for this user alone, also if it was there already;
/// why not, if that failed.
[[nodiscard]] std::optional<ControlError> prepareDirectory(const QString& directory);

struct Address {
    sockaddr_un name{};
    static constexpr socklen_t Size = offsetof(sockaddr_un, sun_path) + PathLimit + 1;

    [[nodiscard]] const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&name); }
};

/// Fails for a path over the limit.
[[nodiscard]] Expected<Address, ControlError> address(const QString& path);

/// What is said of a listener that a system call with that `error` prevents.
[[nodiscard]] ControlError cantListen(const QString& path, int error);

/// A listening socket that doesn't block, for this user alone. Whatever lies at `path` is replaced:
/// the newest process of a project takes its socket over.
[[nodiscard]] Expected<FileDescriptor, ControlError> makeListener(const QString& path);

/// What was read of a stream behind the last line that was taken.
struct LineBuffer {
    QByteArray bytes;
    qsizetype begin = 0;    ///< Where the next line begins.
    qsizetype searched = 0; ///< No line feed lies between `begin` and here.
};

/// The next line, without its line feed. Absent at the end of the stream, where what has no line
/// feed is dropped, on an error or a time-out, and if the line with its line feed would be longer
/// than `limit` bytes. A long line's memory goes with the line.
[[nodiscard]] std::optional<QByteArray> readLine(int descriptor, LineBuffer& buffer,
                                                 qsizetype limit = ControlMessage::LineLimit);

/// Whether all of `bytes` went out.
[[nodiscard]] bool writeAll(int descriptor, QByteArrayView bytes);

/// A connection whose reads and writes each take `timeout` at most.
[[nodiscard]] Expected<FileDescriptor, ControlError> connect(const QString& path,
                                                             std::chrono::seconds timeout);

/// Sends one request over a connection of its own and waits for its answer; neither has a line
/// feed.
[[nodiscard]] Expected<QByteArray, ControlError>
call(const QString& path, const QByteArray& request, std::chrono::seconds timeout);

} // namespace Bralto::ControlSocket
