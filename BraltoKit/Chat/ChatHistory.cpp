#include "Chat/ChatHistory.h"

#include "Base/Json.h"
#include "Chat/ChatProtocol.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

namespace Bralto::ChatHistory {

namespace {

constexpr int MostThreads = 4;

/// Reads the lines of a file that begin in one stretch of it, in memory that it keeps for the next
/// stretch.
class SegmentReader {
public:
    SegmentReader(const QString& path, qint64 segmentBytes)
        : m_file(path)
        , m_segmentBytes(segmentBytes)
    {
        m_isOpen = m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    /// The lines that begin in the segment at `start`, with their line feeds; at least
    /// `JsonReader::Padding` readable bytes follow. Valid until the next call; absent if the file
    /// can't be read.
    std::optional<std::string_view> read(qint64 start)
    {
        // A line begins behind a line feed, so the byte before the segment counts.
        const qint64 from = std::max<qint64>(start - 1, 0);
        const std::size_t size = std::size_t(start + m_segmentBytes - from);
        m_size = 0;
        if (!m_isOpen || !m_file.seek(from) || !fill(size))
            return std::nullopt;
        const std::size_t begin = start == 0 ? 0 : behindLineFeed(0);
        // With no line to finish the bytes behind the segment are the next one's.
        if (begin >= size || begin >= m_size)
            return std::string_view();
        std::size_t end = behindLineFeed(size - 1);
        while (end == m_size && m_size >= size && m_bytes[m_size - 1] != '\n') {
            const std::size_t known = m_size;
            if (!fill(2 * m_size))
                return std::nullopt;
            if (m_size == known)
                break;
            end = behindLineFeed(known);
        }
        return std::string_view(m_bytes.get() + begin, end - begin);
    }

private:
    /// Reads on until `size` bytes are there or the file ends. False after an error.
    bool fill(std::size_t size)
    {
        reserve(size);
        while (m_size < size) {
            const qint64 count = m_file.read(m_bytes.get() + m_size, qint64(size - m_size));
            if (count <= 0)
                return count == 0;
            m_size += std::size_t(count);
        }
        return true;
    }

    void reserve(std::size_t capacity)
    {
        if (capacity <= m_capacity)
            return;
        // No container: it would fill with zeros what is about to be read.
        std::unique_ptr<char[]> larger(new char[capacity + JsonReader::Padding]);
        if (m_size > 0)
            std::memcpy(larger.get(), m_bytes.get(), m_size);
        m_bytes = std::move(larger);
        m_capacity = capacity;
    }

    /// The position behind the first line feed from `at` on; the end if there is none.
    [[nodiscard]] std::size_t behindLineFeed(std::size_t at) const
    {
        const void* found =
            at < m_size ? std::memchr(m_bytes.get() + at, '\n', m_size - at) : nullptr;
        return found ? std::size_t(static_cast<const char*>(found) - m_bytes.get()) + 1 : m_size;
    }

    QFile m_file;
    const qint64 m_segmentBytes;
    bool m_isOpen = false;
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_capacity = 0;
    std::size_t m_size = 0;
};

/// Loads one file. Several threads take its segments one after the other, decode them side by
/// side, and apply them in the order of the file.
class Loader {
public:
    Loader(QString path, QString home, QDateTime now, qint64 segmentBytes, qint64 fileBytes)
        : m_path(std::move(path))
        , m_home(std::move(home))
        , m_now(std::move(now))
        , m_segmentBytes(segmentBytes)
        , m_segments((fileBytes + segmentBytes - 1) / segmentBytes)
    {
    }

    std::optional<ChatTranscript> load()
    {
        const qint64 threads =
            std::min<qint64>({m_segments, MostThreads, QThread::idealThreadCount()});
        std::vector<std::jthread> helpers;
        try {
            for (qint64 count = 1; count < threads; ++count)
                helpers.emplace_back([this] { work(); });
        } catch (const std::system_error&) {
            // The system gives no more threads; those that run do the work.
        }
        work();
        helpers.clear();
        if (m_hasFailed)
            return std::nullopt;
        m_transcript.finishTurn();
        return std::move(m_transcript);
    }

private:
    void work()
    {
        SegmentReader file(m_path, m_segmentBytes);
        JsonReader reader;
        for (qint64 segment = m_next++; segment < m_segments; segment = m_next++) {
            const auto lines = file.read(segment * m_segmentBytes);
            const auto events = decode(lines.value_or(std::string_view()), reader);

            std::unique_lock lock(m_mutex);
            m_turn.wait(lock, [&] { return m_applied == segment; });
            m_hasFailed |= !lines;
            for (const ChatEvent& event : events)
                m_transcript.apply(event);
            ++m_applied;
            m_turn.notify_all();
        }
    }

    [[nodiscard]] std::vector<ChatEvent> decode(std::string_view lines, JsonReader& reader) const
    {
        std::vector<ChatEvent> events;
        while (!lines.empty()) {
            const std::size_t end = std::min(lines.find('\n'), lines.size());
            const std::string_view line = lines.substr(0, end);
            lines.remove_prefix(std::min(end + 1, lines.size()));
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

    const QString m_path;
    const QString m_home;
    const QDateTime m_now;
    const qint64 m_segmentBytes;
    const qint64 m_segments;
    std::atomic<qint64> m_next = 0;

    std::mutex m_mutex; ///< Guards what follows while threads run.
    std::condition_variable m_turn;
    qint64 m_applied = 0; ///< How many segments are in the transcript.
    bool m_hasFailed = false;
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
                                             const QDateTime& now, qint64 segmentBytes)
{
    const QFileInfo file(path);
    if (!file.isFile() || !file.isReadable())
        return std::nullopt;
    return Loader(path, home, now, segmentBytes, file.size()).load();
}

} // namespace Bralto::ChatHistory
