#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <chrono>

namespace DemoAgent {

/// The way out: stdout, a line at a time. A write waits until the reader has room, as the protocol
/// loses nothing. When the reader has gone, the process ends.
class LineWriter {
public:
    LineWriter(int descriptor, QString sessionId)
        : m_descriptor(descriptor)
        , m_sessionId(std::move(sessionId))
    {
    }

    /// Writes one line, with a new `uuid` and the `session_id` unless it is a control line or has
    /// them already. Returns its uuid, empty for a control line.
    QString send(QJsonObject line);
    /// Writes bytes as they are.
    void sendBytes(const QByteArray& bytes);
    void close();

    /// From now on every write is cut into pieces of `size` bytes (0 for none), with a pause after
    /// each, so that the reader sees the seams.
    void cutInto(qsizetype size, std::chrono::milliseconds pause);

private:
    void writeAll(const char* bytes, qsizetype size) const;

    int m_descriptor;
    QString m_sessionId;
    qsizetype m_pieceSize = 0;
    std::chrono::milliseconds m_piecePause{0};
};

} // namespace DemoAgent
