#include "Chat/LineBatches.h"

#include "Base/Json.h"

#include <algorithm>
#include <cstring>

namespace Bralto {

static_assert(ByteBuffer::Padding >= JsonReader::Padding);

char* ByteBuffer::reserve(std::size_t count)
{
    const std::size_t needed = m_size + count;
    if (needed > m_capacity) {
        const std::size_t capacity = std::max(needed, 2 * m_capacity);
        std::unique_ptr<char[]> larger(new char[capacity + Padding]);
        if (m_size > 0)
            std::memcpy(larger.get(), m_bytes.get(), m_size);
        m_bytes = std::move(larger);
        m_capacity = capacity;
    }
    return m_bytes.get() + m_size;
}

void ByteBuffer::append(std::string_view bytes)
{
    if (bytes.empty())
        return;
    std::memcpy(reserve(bytes.size()), bytes.data(), bytes.size());
    grow(bytes.size());
}

LineBatches::LineBatches(const QString& path, qint64 pieceBytes)
    : m_file(path)
    , m_pieceBytes(std::size_t(pieceBytes))
{
    m_hasFailed = !m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool LineBatches::next(ByteBuffer& batch)
{
    batch.truncate(0);
    batch.append(m_begun.view());
    m_begun.truncate(0);
    while (!m_hasFailed) {
        const auto piece = readPiece(batch);
        if (!piece) {
            m_hasFailed = true;
            break;
        }
        if (piece->empty())
            return batch.size() > 0;
        const auto* lineFeed =
            static_cast<const char*>(::memrchr(piece->data(), '\n', piece->size()));
        if (!lineFeed)
            continue;
        const std::string_view begun(lineFeed + 1, piece->data() + piece->size());
        m_begun.append(begun);
        batch.truncate(batch.size() - begun.size());
        return true;
    }
    return false;
}

/// The bytes that were read, none at the end of the file; absent after an error.
std::optional<std::string_view> LineBatches::readPiece(ByteBuffer& batch)
{
    char* const room = batch.reserve(m_pieceBytes);
    const qint64 count = m_file.read(room, qint64(m_pieceBytes));
    if (count < 0)
        return std::nullopt;
    batch.grow(std::size_t(count));
    return std::string_view(room, std::size_t(count));
}

} // namespace Bralto
