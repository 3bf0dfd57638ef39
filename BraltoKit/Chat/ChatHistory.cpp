#include "Chat/ChatHistory.h"

#include "Base/Json.h"
#include "Chat/ChatProtocol.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <memory>

namespace Bralto::ChatHistory {

namespace {

/// Goes through a file line by line. A line is a view into the window, with enough readable bytes
/// behind it to be parsed where it lies.
class LineWindow {
public:
    explicit LineWindow(QFile& file)
        : m_file(file)
    {
        resize(std::size_t(WindowBytes));
    }

    /// The next line without its line feed, valid until the next call; absent at the end of the
    /// file and after an error.
    std::optional<std::string_view> next()
    {
        for (;;) {
            const char* const begin = m_bytes.get() + m_begin;
            const char* const end = m_bytes.get() + m_end;
            const auto* feed = static_cast<const char*>(
                std::memchr(begin + m_scanned, '\n', std::size_t(end - begin) - m_scanned));
            if (feed) {
                m_begin += std::size_t(feed - begin) + 1;
                m_scanned = 0;
                return std::string_view(begin, std::size_t(feed - begin));
            }
            m_scanned = std::size_t(end - begin);
            if (!fill())
                return rest();
        }
    }

    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }

private:
    void resize(std::size_t capacity)
    {
        // Not a container: the window must not be filled with zeros each time that it grows.
        auto larger = std::unique_ptr<char[]>(new char[capacity + JsonReader::Padding]);
        if (m_end > m_begin)
            std::memcpy(larger.get(), m_bytes.get() + m_begin, m_end - m_begin);
        m_bytes = std::move(larger);
        m_end -= m_begin;
        m_begin = 0;
        m_capacity = capacity;
    }

    /// Reads on behind the beginning of a line; false at the end of the file.
    bool fill()
    {
        if (m_begin > 0) {
            std::memmove(m_bytes.get(), m_bytes.get() + m_begin, m_end - m_begin);
            m_end -= m_begin;
            m_begin = 0;
        } else if (m_end == m_capacity) {
            resize(2 * m_capacity);
        }
        const qint64 count = m_file.read(m_bytes.get() + m_end, qint64(m_capacity - m_end));
        m_hasFailed |= count < 0;
        if (count <= 0)
            return false;
        m_end += std::size_t(count);
        return true;
    }

    /// What stands behind the last line feed of the file.
    std::optional<std::string_view> rest()
    {
        if (m_hasFailed || m_begin == m_end)
            return std::nullopt;
        const std::string_view line(m_bytes.get() + m_begin, m_end - m_begin);
        m_begin = m_end;
        m_scanned = 0;
        return line;
    }

    QFile& m_file;
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_capacity = 0;
    std::size_t m_begin = 0;   ///< Where the line that is being looked for begins.
    std::size_t m_end = 0;     ///< Where what was read ends.
    std::size_t m_scanned = 0; ///< How many bytes from `m_begin` on hold no line feed.
    bool m_hasFailed = false;
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
                                             const QDateTime& now)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;

    ChatTranscript transcript;
    JsonReader reader;
    LineWindow lines(file);
    while (const auto line = lines.next()) {
        if (!mayHoldMessage(*line))
            continue;
        const auto object = reader.paddedObject(*line);
        if (!object)
            continue;
        for (const ChatEvent& event :
             ChatProtocol::events(*object, ChatProtocol::Source::Stored, now, home))
            transcript.apply(event);
    }
    if (lines.hasFailed())
        return std::nullopt;
    transcript.finishTurn();
    return transcript;
}

} // namespace Bralto::ChatHistory
