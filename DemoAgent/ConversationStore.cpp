#include "DemoAgent/ConversationStore.h"

#include "DemoAgent/Arguments.h"
#include "DemoAgent/Wire.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <fcntl.h>
#include <unistd.h>

namespace DemoAgent {

namespace {

bool isAsciiLetterOrDigit(QChar character)
{
    return character.unicode() < 128 && character.isLetterOrNumber();
}

// A line that a person wrote, not a tool's result or the agent's own notice.
bool isPrompt(const QJsonObject& line)
{
    const QString text = textOf(line.value("message")["content"]);
    return !line.value("isMeta").toBool() && !line.value("isCompactSummary").toBool() &&
           !text.isEmpty() && !text.startsWith(u"[Request ") && !text.startsWith(u'<');
}

} // namespace

QString textOf(const QJsonValue& content)
{
    if (content.isString())
        return content.toString();
    QStringList texts;
    for (const QJsonValue block : content.toArray()) {
        if (block["type"] == "text")
            texts.append(block["text"].toString());
    }
    return texts.join(u'\n');
}

ConversationStore::ConversationStore(const QString& home, QString folder, QString sessionId)
    : m_folder(std::move(folder))
    , m_sessionId(std::move(sessionId))
    , m_path(projectFolder(home, m_folder) + u'/' + m_sessionId + u".jsonl")
{
}

QString ConversationStore::projectFolder(const QString& home, const QString& folder)
{
    QString name = folder;
    for (QChar& character : name) {
        if (!isAsciiLetterOrDigit(character))
            character = u'-';
    }
    return home + u"/.claude/projects/" + name;
}

bool ConversationStore::exists() const
{
    return QFileInfo::exists(m_path);
}

std::optional<StoredConversation> ConversationStore::load()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    StoredConversation result;
    while (!file.atEnd()) {
        const QJsonObject line = QJsonDocument::fromJson(file.readLine()).object();
        const QString type = line.value("type").toString();
        if (type != u"user" && type != u"assistant")
            continue;
        const QString text = textOf(line.value("message")["content"]);
        result.characters += text.size();
        result.lastUuid = line.value("uuid").toString(result.lastUuid);
        if (type == u"user" && isPrompt(line)) {
            ++result.turns;
            result.lastPrompt = text;
            if (result.firstPrompt.isEmpty())
                result.firstPrompt = text;
        }
    }
    m_lastUuid = result.lastUuid;
    return result;
}

QString ConversationStore::appendUser(const QJsonObject& message, const QJsonObject& more)
{
    return append({{"type", "user"}, {"message", message}}, more);
}

QString ConversationStore::appendAssistant(const QJsonObject& message, const QJsonObject& more)
{
    return append({{"type", "assistant"}, {"message", message}}, more);
}

void ConversationStore::appendNote(QJsonObject line)
{
    line.insert("sessionId", m_sessionId);
    write(m_path, line);
}

void ConversationStore::appendSidechain(const QString& agentId, QJsonObject line)
{
    line = signedLine(std::move(line), {});
    line.insert("isSidechain", true);
    line.insert("agentId", agentId);
    const QString folder = m_path.chopped(QStringView(u".jsonl").size());
    write(folder + u"/subagents/agent-" + agentId + u".jsonl", line);
}

QString ConversationStore::append(QJsonObject line, const QJsonObject& more)
{
    line = signedLine(std::move(line), m_lastUuid);
    for (auto field = more.begin(); field != more.end(); ++field)
        line.insert(field.key(), field.value());
    write(m_path, line);
    m_lastUuid = line.value("uuid").toString();
    return m_lastUuid;
}

QJsonObject ConversationStore::signedLine(QJsonObject line, const QString& parent) const
{
    line.insert("uuid", makeUuid());
    line.insert("parentUuid", parent.isEmpty() ? QJsonValue() : QJsonValue(parent));
    line.insert("isSidechain", false);
    line.insert("timestamp", timestamp());
    line.insert("cwd", m_folder);
    line.insert("sessionId", m_sessionId);
    line.insert("userType", "external");
    line.insert("version", Version);
    return line;
}

void ConversationStore::write(const QString& path, const QJsonObject& line)
{
    QDir().mkpath(QFileInfo(path).path());
    const int file = ::open(QFile::encodeName(path).constData(),
                            O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0)
        return;
    const QByteArray bytes = Wire::encode(line);
    // One write a line: a reader, or another process that appends, sees it whole.
    [[maybe_unused]] const ssize_t written =
        ::write(file, bytes.constData(), static_cast<size_t>(bytes.size()));
    ::close(file);
}

} // namespace DemoAgent
