#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace Bralto::TextFile {

/// The largest file that opens, in bytes: 8 MiB.
inline constexpr qint64 LargestSize = qint64(8) * 1024 * 1024;

/// How many bytes at the start are searched for the zero that tells a binary file.
inline constexpr qsizetype SearchedForZero = 8000;

/// What reading a file gave: its text, or an empty text and the reason in the user's words.
struct Content {
    QString text;
    std::optional<QString> error;

    bool operator==(const Content&) const = default;
};

/// Reads the text of a regular file. At most `LargestSize` bytes and one more are ever read.
[[nodiscard]] Content read(const QString& path);

/// `bytes` as UTF-8, else in the encoding that they look like; absent if neither works. A byte
/// order mark of UTF-8 stays in the text, so that saving writes it again.
[[nodiscard]] std::optional<QString> decode(const QByteArray& bytes);

/// Replaces the file by `text` as UTF-8 in one step; the system's words on failure, and then the
/// old file is as it was.
[[nodiscard]] std::optional<QString> write(const QString& path, const QString& text);

} // namespace Bralto::TextFile
