#include "DemoAgent/LineWriter.h"

#include "DemoAgent/Wire.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace DemoAgent {

QString LineWriter::send(QJsonObject line)
{
    QString uuid;
    if (!line.value("type").toString().startsWith(u"control_")) {
        uuid = line.value("uuid").toString();
        if (uuid.isEmpty()) {
            uuid = makeUuid();
            line.insert("uuid", uuid);
        }
        if (!line.contains("session_id"))
            line.insert("session_id", m_sessionId);
    }
    sendBytes(Wire::encode(line));
    return uuid;
}

void LineWriter::sendBytes(const QByteArray& bytes)
{
    if (m_pieceSize <= 0) {
        writeAll(bytes.constData(), bytes.size());
        return;
    }
    for (qsizetype from = 0; from < bytes.size(); from += m_pieceSize) {
        writeAll(bytes.constData() + from, qMin(m_pieceSize, bytes.size() - from));
        std::this_thread::sleep_for(m_piecePause);
    }
}

void LineWriter::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

void LineWriter::cutInto(qsizetype size, std::chrono::milliseconds pause)
{
    m_pieceSize = size;
    m_piecePause = pause;
}

void LineWriter::writeAll(const char* bytes, qsizetype size) const
{
    while (m_descriptor >= 0 && size > 0) {
        const ssize_t written = ::write(m_descriptor, bytes, static_cast<size_t>(size));
        if (written >= 0) {
            bytes += written;
            size -= written;
            continue;
        }
        if (errno == EAGAIN) {
            pollfd room{.fd = m_descriptor, .events = POLLOUT, .revents = 0};
            ::poll(&room, 1, -1);
        } else if (errno != EINTR) {
            // Nobody listens any more, and nothing that is left to do could be seen.
            ::_exit(1);
        }
    }
}

} // namespace DemoAgent
