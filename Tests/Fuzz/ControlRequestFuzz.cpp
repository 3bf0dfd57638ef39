// However a client's bytes are cut, the lines are those of the whole; and what is read as a request
// is one again when it is written.

#include "Browser/ControlMessage.h"
#include "Browser/ControlSocket.h"

#include <QJsonDocument>

#include <sys/socket.h>

#include <array>
#include <cstdlib>

using namespace Bralto;

namespace {

constexpr qsizetype Limit = 64;

/// The lines before the first that is over the limit or has no end.
QList<QByteArray> expected(const QByteArray& bytes)
{
    QList<QByteArray> lines = bytes.split('\n');
    lines.removeLast();
    for (qsizetype index = 0; index < lines.size(); ++index) {
        if (lines[index].size() >= Limit)
            return lines.first(index);
    }
    return lines;
}

QList<QByteArray> read(const QByteArray& bytes, qsizetype cut)
{
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0)
        std::abort();
    const FileDescriptor near(ends[0]);
    FileDescriptor far(ends[1]);
    QList<QByteArray> lines;
    ControlSocket::LineBuffer buffer;
    // What the buffer holds already is as if it had come in a read of its own.
    buffer.bytes = bytes.first(cut);
    if (!ControlSocket::writeAll(far.get(), bytes.sliced(cut)))
        std::abort();
    far.reset();
    while (auto line = ControlSocket::readLine(near.get(), buffer, Limit))
        lines.append(*std::move(line));
    return lines;
}

void decodeAndEncode(const QByteArray& line)
{
    const auto request = ControlMessage::decodeRequest(line);
    if (!request)
        return;
    const QByteArray arguments = QJsonDocument(request->arguments).toJson(QJsonDocument::Compact);
    const QByteArray again = ControlMessage::encodeRequest(
        request->tool, {arguments.constData(), std::size_t(arguments.size())});
    if (!ControlMessage::decodeRequest(again))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    // What a socket takes at once, so that one thread can play both ends.
    if (size == 0 || size > 50'000)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char*>(data) + 1, qsizetype(size) - 1);
    if (read(bytes, bytes.size() * data[0] / 255) != expected(bytes))
        std::abort();
    decodeAndEncode(bytes);
    return 0;
}
