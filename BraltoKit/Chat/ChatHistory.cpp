#include "Chat/ChatHistory.h"

#include "Base/Json.h"
#include "Chat/ChatProtocol.h"
#include "Chat/LineBatches.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>

namespace Bralto::ChatHistory {

namespace {

constexpr int MostThreads = 4;

/// Loads one file. Several threads take batches of its lines in turn and decode them side by side;
/// what they found is applied in the order of the file, by whoever brings the batch that is due.
class Loader {
public:
    Loader(const QString& path, QString home, QDateTime now, qint64 pieceBytes)
        : m_home(std::move(home))
        , m_now(std::move(now))
        , m_batches(path, pieceBytes)
    {
    }

    /// `threads` is at least 1, the caller's own.
    std::optional<ChatTranscript> load(qint64 threads)
    {
        std::vector<std::jthread> helpers;
        try {
            for (qint64 count = 1; count < threads; ++count)
                helpers.emplace_back([this] { work(); });
        } catch (const std::system_error&) {
            // The system gives no more threads; those that run do the work.
        }
        work();
        helpers.clear();
        if (m_batches.hasFailed())
            return std::nullopt;
        m_transcript.finishTurn();
        return std::move(m_transcript);
    }

private:
    using Events = std::vector<ChatEvent>;

    void work()
    {
        ByteBuffer lines;
        JsonReader reader;
        while (const auto number = take(lines))
            apply(*number, decode(lines, reader));
    }

    /// The number of the batch whose lines are now in `lines`; absent at the end.
    std::optional<qint64> take(ByteBuffer& lines)
    {
        const std::lock_guard lock(m_fileMutex);
        return m_batches.next(lines) ? std::optional(m_taken++) : std::nullopt;
    }

    [[nodiscard]] Events decode(const ByteBuffer& batch, JsonReader& reader) const
    {
        Events events;
        for (std::size_t at = 0; at < batch.size();) {
            const std::string_view rest = batch.view().substr(at);
            const std::string_view line = rest.substr(0, rest.find('\n'));
            at += line.size() + 1;
            if (!mayHoldMessage(line))
                continue;
            const auto object = reader.paddedObject(line);
            if (!object)
                continue;
            std::ranges::move(
                ChatProtocol::events(*object, ChatProtocol::Source::Stored, m_now, m_home),
                std::back_inserter(events));
        }
        return events;
    }

    /// Never waits for another thread's batch: what comes early is kept for the one that is due.
    void apply(qint64 number, Events events)
    {
        const std::lock_guard lock(m_transcriptMutex);
        m_early.emplace(number, std::move(events));
        for (auto due = m_early.find(m_applied); due != m_early.end();
             due = m_early.find(++m_applied)) {
            for (const ChatEvent& event : due->second)
                m_transcript.apply(event);
            m_early.erase(due);
        }
    }

    const QString m_home;
    const QDateTime m_now;

    std::mutex m_fileMutex; ///< Guards what is read.
    LineBatches m_batches;
    qint64 m_taken = 0;

    std::mutex m_transcriptMutex; ///< Guards what is made of it.
    std::map<qint64, Events> m_early;
    qint64 m_applied = 0; ///< How many batches are in the transcript.
    ChatTranscript m_transcript;
};

} // namespace

std::optional<QString> transcriptPath(const QString& projectsFolder, const QString& sessionId)
{
    if (sessionId.isEmpty() || sessionId.contains(u'/') || sessionId.contains(QChar(u'\0')))
        return std::nullopt;
    const QFileInfoList folders =
        QDir(projectsFolder)
            .entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
    for (const QFileInfo& folder : folders) {
        const QString path = folder.filePath() + u'/' + sessionId + ".jsonl";
        if (QFileInfo(path).isFile())
            return path;
    }
    return std::nullopt;
}

bool mayHoldMessage(std::string_view line)
{
    constexpr std::string_view Key = "\"type\":\"";
    while (const void* found = ::memmem(line.data(), line.size(), Key.data(), Key.size())) {
        line.remove_prefix(std::size_t(static_cast<const char*>(found) - line.data()) + Key.size());
        if (line.starts_with("user\"") || line.starts_with("assistant\""))
            return true;
    }
    return false;
}

std::optional<ChatTranscript> loadTranscript(const QString& path, const QString& home,
                                             const QDateTime& now, qint64 pieceBytes)
{
    const QFileInfo file(path);
    if (!file.isFile() || !file.isReadable())
        return std::nullopt;
    const qint64 threads = std::clamp<qint64>(file.size() / pieceBytes, 1,
                                              std::min(MostThreads, QThread::idealThreadCount()));
    return Loader(path, home, now, pieceBytes).load(threads);
}

} // namespace Bralto::ChatHistory
