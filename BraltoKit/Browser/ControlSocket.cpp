#include "Browser/ControlSocket.h"

#include "Base/SpaceIdentity.h"

#include <QFile>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/time.h>

#include <cerrno>
#include <cstring>

namespace Bralto::ControlSocket {

namespace {

constexpr qsizetype ReadSize = 65536;
/// A line of less is copied out of what was read with it.
constexpr qsizetype LongLine = ReadSize;
constexpr int Backlog = 16;
constexpr mode_t OwnFolder = 0700;
constexpr mode_t OwnSocket = 0600;

QString systemText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

Unexpected<ControlError> failure(const QString& message)
{
    return Unexpected{ControlError{message}};
}

/// After a call that would block: waits if `descriptor` is one that never blocks, such as a pipe
/// that somebody made so. On others it means that the time is over, and the answer is false.
bool waitsFor(int descriptor, short events)
{
    const int flags = ::fcntl(descriptor, F_GETFL);
    if (flags < 0 || (flags & O_NONBLOCK) == 0)
        return false;
    pollfd entry{descriptor, events, 0};
    return ::poll(&entry, 1, -1) >= 0 || errno == EINTR;
}

bool mayRetry(int descriptor, short events)
{
    return errno == EINTR || (errno == EAGAIN && waitsFor(descriptor, events));
}

ssize_t writeSome(int descriptor, QByteArrayView bytes)
{
    const ssize_t count = ::send(descriptor, bytes.data(), std::size_t(bytes.size()), MSG_NOSIGNAL);
    if (count >= 0 || errno != ENOTSOCK)
        return count;
    return ::write(descriptor, bytes.data(), std::size_t(bytes.size()));
}

/// Reads once behind what is there already; false at the end of the stream and on an error.
bool readMore(int descriptor, QByteArray& bytes)
{
    const qsizetype size = bytes.size();
    bytes.resize(size + ReadSize);
    ssize_t count = -1;
    do {
        count = ::read(descriptor, bytes.data() + size, std::size_t(ReadSize));
    } while (count < 0 && mayRetry(descriptor, POLLIN));
    bytes.resize(size + qMax(qsizetype(count), qsizetype(0)));
    return count > 0;
}

/// Takes the line that ends at `end` out of the buffer.
QByteArray takeLine(LineBuffer& buffer, qsizetype end)
{
    const qsizetype length = end - buffer.begin;
    if (length < LongLine) {
        QByteArray line = buffer.bytes.mid(buffer.begin, length);
        buffer.begin = buffer.searched = end + 1;
        return line;
    }
    // The long one leaves with its memory, and what came behind it is little.
    QByteArray rest = buffer.bytes.mid(end + 1);
    QByteArray line = std::exchange(buffer.bytes, std::move(rest));
    line.truncate(end);
    line.remove(0, buffer.begin);
    buffer.begin = buffer.searched = 0;
    return line;
}

/// Gives back the room of the lines that were taken.
void compact(LineBuffer& buffer)
{
    buffer.bytes.remove(0, buffer.begin);
    buffer.searched -= buffer.begin;
    buffer.begin = 0;
}

std::optional<int> makeFolder(const QByteArray& folder)
{
    if (::mkdir(folder.constData(), OwnFolder) == 0)
        return std::nullopt;
    const int error = errno;
    struct stat info {};
    if (::stat(folder.constData(), &info) == 0 && S_ISDIR(info.st_mode))
        return std::nullopt;
    return error == EEXIST ? ENOTDIR : error;
}

void setTimeout(int descriptor, std::chrono::seconds timeout)
{
    const timeval limit{timeout.count(), 0};
    ::setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    ::setsockopt(descriptor, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
}

} // namespace

QString digest(const QString& folder)
{
    return SpaceIdentity::digest(folder);
}

QString path(const QString& directory, const QString& folder)
{
    return directory + u'/' + digest(folder) + QStringLiteral(".sock");
}

std::optional<ControlError> prepareDirectory(const QString& directory)
{
    const QByteArray whole = QFile::encodeName(directory);
    const auto failed = [&directory](int error) {
        return ControlError{QStringLiteral("Couldn’t make ") + directory + QStringLiteral(": ") +
                            systemText(error)};
    };
    for (qsizetype slash = whole.indexOf('/', 1); slash > 0;
         slash = whole.indexOf('/', slash + 1)) {
        if (const auto error = makeFolder(whole.left(slash)))
            return failed(*error);
    }
    if (const auto error = makeFolder(whole))
        return failed(*error);
    if (::chmod(whole.constData(), OwnFolder) != 0)
        return failed(errno);
    return std::nullopt;
}

Expected<Address, ControlError> address(const QString& path)
{
    const QByteArray bytes = path.toUtf8();
    if (bytes.size() > PathLimit)
        return failure(QStringLiteral("Socket path is too long: ") + path);
    Address address;
    address.name.sun_family = AF_UNIX;
    std::memcpy(address.name.sun_path, bytes.constData(), std::size_t(bytes.size()));
    return address;
}

ControlError cantListen(const QString& path, int error)
{
    return {QStringLiteral("Couldn’t listen at ") + path + QStringLiteral(": ") +
            systemText(error)};
}

Expected<FileDescriptor, ControlError> makeListener(const QString& path)
{
    const auto place = address(path);
    if (!place)
        return Unexpected{place.error()};
    ::unlink(place->name.sun_path);
    FileDescriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!listener.isOpen())
        return failure(QStringLiteral("socket() failed: ") + systemText(errno));
    if (::bind(listener.get(), place->get(), Address::Size) != 0 ||
        ::chmod(place->name.sun_path, OwnSocket) != 0 || ::listen(listener.get(), Backlog) != 0) {
        const int error = errno;
        ::unlink(place->name.sun_path);
        return Unexpected{cantListen(path, error)};
    }
    return listener;
}

std::optional<QByteArray> readLine(int descriptor, LineBuffer& buffer, qsizetype limit)
{
    for (;;) {
        const qsizetype end = buffer.bytes.indexOf('\n', buffer.searched);
        const qsizetype length = (end < 0 ? buffer.bytes.size() : end) - buffer.begin;
        if (length >= limit)
            return std::nullopt;
        if (end >= 0)
            return takeLine(buffer, end);
        buffer.searched = buffer.bytes.size();
        compact(buffer);
        if (!readMore(descriptor, buffer.bytes))
            return std::nullopt;
    }
}

bool writeAll(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const ssize_t count = writeSome(descriptor, bytes);
        if (count > 0)
            bytes = bytes.sliced(count);
        else if (count == 0 || !mayRetry(descriptor, POLLOUT))
            return false;
    }
    return true;
}

Expected<FileDescriptor, ControlError> connect(const QString& path, std::chrono::seconds timeout)
{
    const auto place = address(path);
    if (!place)
        return Unexpected{place.error()};
    FileDescriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!connection.isOpen())
        return failure(QStringLiteral("socket() failed"));
    setTimeout(connection.get(), timeout);
    int status = -1;
    do {
        status = ::connect(connection.get(), place->get(), Address::Size);
    } while (status != 0 && errno == EINTR);
    if (status != 0)
        return failure(systemText(errno));
    return connection;
}

Expected<QByteArray, ControlError> call(const QString& path, const QByteArray& request,
                                        std::chrono::seconds timeout)
{
    const auto connection = connect(path, timeout);
    if (!connection)
        return Unexpected{connection.error()};
    const int descriptor = connection->get();
    if (!writeAll(descriptor, request + '\n'))
        return failure(QStringLiteral("Bralto closed the connection"));
    LineBuffer buffer;
    if (auto answer = readLine(descriptor, buffer))
        return *std::move(answer);
    return failure(QStringLiteral("Bralto didn’t answer in time"));
}

} // namespace Bralto::ControlSocket
