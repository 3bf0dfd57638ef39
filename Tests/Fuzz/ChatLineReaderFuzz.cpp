// However bytes are cut, the lines are those of the whole.
// Seeds: Tests/Fixtures/Agent.

#include "Chat/ChatLineReader.h"

#include <QList>

#include <cstdlib>

using namespace Bralto;

namespace {

std::vector<QByteArray> wholeLines(std::string_view bytes)
{
    std::vector<QByteArray> lines;
    for (const QByteArray& line :
         QByteArray::fromRawData(bytes.data(), qsizetype(bytes.size())).split('\n')) {
        if (!line.isEmpty())
            lines.push_back(line);
    }
    return lines;
}

std::vector<QByteArray> cutLines(std::string_view bytes, std::size_t chunkSize)
{
    ChatLineReader reader;
    std::vector<QByteArray> lines;
    while (!bytes.empty()) {
        const auto chunk = bytes.substr(0, chunkSize);
        bytes.remove_prefix(chunk.size());
        for (QByteArray& line : reader.feed(chunk))
            lines.push_back(std::move(line));
        // Chunks of different sizes, some of them large.
        chunkSize = chunkSize * 7 % 257 + 1;
    }
    if (auto rest = reader.finish())
        lines.push_back(std::move(*rest));
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (cutLines(bytes, data[0] + 1u) != wholeLines(bytes))
        std::abort();
    return 0;
}
