#include "Replay.h"

#include "Base/Json.h"
#include "Chat/ChatHistory.h"
#include "Chat/ChatJson.h"
#include "Chat/ChatProtocol.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace Bralto {

namespace {

/// The agent's line in an entry of a recording, which notes for each line who wrote it; the entry
/// itself if it is no such entry; nothing if somebody else wrote it.
std::optional<JsonObject> agentLine(const JsonObject& entry)
{
    const auto from = entry.view("from");
    if (!from)
        return entry;
    return *from == "agent" ? entry.object("line") : std::nullopt;
}

/// What a single line tells about the file that it stands in.
ReplaySource source(const JsonObject& line)
{
    if (line.contains("from") || line.contains("session_id") || line.contains("event") ||
        line.view("type").value_or("").starts_with("control_"))
        return ReplaySource::Stream;
    if (line.contains("sessionId") || line.contains("parentUuid") || line.contains("isSidechain"))
        return ReplaySource::Stored;
    return ReplaySource::Unknown;
}

/// What the first telling line says; a file that tells nothing is a stored conversation.
ReplaySource source(QFile& file, JsonReader& reader)
{
    ReplaySource found = ReplaySource::Unknown;
    while (found == ReplaySource::Unknown && !file.atEnd()) {
        if (const auto line = reader.object(file.readLine()))
            found = source(*line);
    }
    file.seek(0);
    return found == ReplaySource::Unknown ? ReplaySource::Stored : found;
}

ChatTranscript replayedStream(QFile& file, JsonReader& reader)
{
    const QString home = QDir::homePath();
    ChatTranscript transcript;
    while (!file.atEnd()) {
        const auto entry = reader.object(file.readLine());
        const auto line = entry ? agentLine(*entry) : std::nullopt;
        if (!line)
            continue;
        const auto now = QDateTime::currentDateTimeUtc();
        for (const ChatEvent& event :
             ChatProtocol::events(*line, ChatProtocol::Source::Live, now, home))
            transcript.apply(event);
    }
    return transcript;
}

void print(const ChatTranscript& transcript)
{
    const QByteArray json = ChatJson::encode(transcript);
    std::fwrite(json.constData(), 1, std::size_t(json.size()), stdout);
}

} // namespace

int replay(const QString& path, ReplaySource told)
{
    QFile file(path);
    JsonReader reader;
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "bralto-chat: %s: %s\n", qUtf8Printable(path),
                     qUtf8Printable(file.errorString()));
        return 1;
    }
    if (told == ReplaySource::Unknown)
        told = source(file, reader);
    if (told == ReplaySource::Stream) {
        print(replayedStream(file, reader));
        return 0;
    }
    const auto transcript = ChatHistory::loadTranscript(path, QDir::homePath());
    if (!transcript) {
        std::fprintf(stderr, "bralto-chat: %s can't be read\n", qUtf8Printable(path));
        return 1;
    }
    print(*transcript);
    return 0;
}

} // namespace Bralto
