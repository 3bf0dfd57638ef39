#pragma once

#include <QFile>

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace Bralto {

/// Bytes in memory that is kept for the next ones. No container of the library: those fill with
/// zeros what is about to be read.
class ByteBuffer {
public:
    [[nodiscard]] std::size_t size() const { return m_size; }
    [[nodiscard]] std::string_view view() const { return {m_bytes.get(), m_size}; }

    /// Makes room for `count` bytes behind the last one, and for `Padding` that stay unused.
    /// Returns where they go.
    char* reserve(std::size_t count);
    /// Counts bytes that were put into the reserved room.
    void grow(std::size_t count) { m_size += count; }
    void append(std::string_view bytes);
    void truncate(std::size_t size) { m_size = size; }

    /// How many readable bytes there are behind the last one.
    static constexpr std::size_t Padding = 64;

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_capacity = 0; ///< Without the padding.
    std::size_t m_size = 0;
};

/// Takes a file apart into batches of whole lines. Every byte is read once, and in memory there is
/// the batch with the beginning of the next one.
class LineBatches {
public:
    /// A batch is at least one piece of `pieceBytes`, and as many more as its last line needs.
    LineBatches(const QString& path, qint64 pieceBytes);

    /// Puts the next lines into `batch`, with their line feeds; the last line of the file may lack
    /// its own. False at the end of the file, and if it can't be read.
    bool next(ByteBuffer& batch);
    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }

private:
    std::optional<std::string_view> readPiece(ByteBuffer& batch);

    QFile m_file;
    const std::size_t m_pieceBytes;
    ByteBuffer m_begun; ///< The beginning of a line whose end isn't read yet.
    bool m_hasFailed = false;
};

} // namespace Bralto
