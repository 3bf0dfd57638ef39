#pragma once

/// @file
/// The stored form of a conversation: a file of lines that the agent writes while it runs. Meant
/// for a worker thread; nothing here touches anything but its arguments and the file.

#include "Chat/ChatTranscript.h"

#include <QDateTime>
#include <QString>

#include <optional>
#include <string_view>

namespace Bralto::ChatHistory {

/// Where the conversation `sessionId` is stored: the first folder, by name, in `projectsFolder`
/// that holds its file. Absent if none does.
[[nodiscard]] std::optional<QString> transcriptPath(const QString& projectsFolder,
                                                    const QString& sessionId);

/// How much of a file is read at a time, for each of at most four threads. It stays in the
/// processor's own memory until it is decoded; a line that is longer is in memory as a whole.
inline constexpr qint64 PieceBytes = 256 * 1024;

/// The conversation in the file at `path`, its turn finished. `home` is abbreviated in summaries;
/// `now` dates a line that has no time of its own. Absent if there is no such file or it can't be
/// read. What is no line of a conversation, or was cut off while it was written, is left out.
///
/// The calling thread and some of its own share the work; they have ended when this returns.
[[nodiscard]] std::optional<ChatTranscript>
loadTranscript(const QString& path, const QString& home,
               const QDateTime& now = QDateTime::currentDateTimeUtc(),
               qint64 pieceBytes = PieceBytes);

/// Whether a stored line can have anything to say: a search of its bytes that spares the parsing
/// of all the agent's own records.
[[nodiscard]] bool mayHoldMessage(std::string_view line);

} // namespace Bralto::ChatHistory
