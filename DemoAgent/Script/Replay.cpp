#include "DemoAgent/Script/ScriptContext.h"

#include <QFile>
#include <QJsonDocument>

#include <algorithm>

namespace DemoAgent {

namespace {

// The text of the member "line", which stands last in an entry, without the blanks between tokens:
// parsing and writing it anew would lose the order of its keys.
QByteArray lineText(const QByteArray& entry)
{
    const qsizetype start = entry.indexOf("\"line\":");
    const qsizetype end = entry.lastIndexOf('}');
    if (start < 0 || end < 0)
        return {};
    QByteArray text;
    bool isInString = false;
    for (qsizetype index = start + 7; index < end; ++index) {
        const char byte = entry.at(index);
        if (isInString && byte == '\\') {
            text += byte;
            text += entry.at(++index);
            continue;
        }
        if (byte == '"')
            isInString = !isInString;
        if (isInString || !QByteArrayView(" \t\r\n").contains(byte))
            text += byte;
    }
    return text;
}

// Plays one recording: sends what the agent sent, and where the app spoke waits for the like.
class Replay {
public:
    explicit Replay(ScriptContext& context)
        : m_context(context)
    {
    }

    /// Plays one entry. The status to end the process with, absent as long as it goes on.
    Task<std::optional<int>> play(QByteArray entryText)
    {
        const QJsonObject entry = QJsonDocument::fromJson(entryText).object();
        const QString from = entry.value("from").toString();
        const QJsonObject line = entry.value("line").toObject();
        std::optional<int> status;
        if (from == u"agent") {
            co_await pauseUntil(entry.value("ms").toInteger());
            send(line, lineText(entryText));
        } else if (from == u"app") {
            const bool came = co_await waitFor(line);
            m_lastMs = entry.value("ms").toInteger();
            if (!came)
                status = 0;
        } else if (from == u"stderr") {
            const QByteArray text = entry.value("text").toString().toUtf8();
            std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stderr);
        } else if (from == u"exit") {
            co_await m_context.inbox.end();
            status = entry.value("code").toInt();
        }
        co_return status;
    }

private:
    Task<> pauseUntil(qint64 ms)
    {
        const qint64 gap = std::max<qint64>(0, ms - std::exchange(m_lastMs, ms));
        co_await m_context.conversation.pace.pause(std::chrono::milliseconds(gap));
    }

    void send(const QJsonObject& line, QByteArray text)
    {
        if (line.value("type").toString() == u"control_request")
            m_context.asked.insert(line.value("request_id").toString());
        const QByteArray session = line.value("session_id").toString().toUtf8();
        if (!session.isEmpty())
            text.replace(session, m_context.conversation.sessionId.toUtf8());
        const QByteArray request = line.value("response")["request_id"].toString().toUtf8();
        if (m_requests.contains(request))
            text.replace(request, m_requests.value(request));
        m_context.conversation.out.sendBytes(text + '\n');
    }

    Task<bool> waitFor(QJsonObject recorded)
    {
        const QString type = recorded.value("type").toString();
        ScriptInbox::Matcher matcher =
            lineOf(type, recorded.value("request")["subtype"].toString());
        if (type == u"control_response")
            matcher = answerTo(recorded.value("response")["request_id"].toString());
        const auto line = co_await m_context.inbox.next(matcher);
        if (line && type == u"control_request") {
            m_requests.insert(recorded.value("request_id").toString().toUtf8(),
                              line->value("request_id").toString().toUtf8());
        }
        co_return line.has_value();
    }

    ScriptContext& m_context;
    /// Ids of the recording, and those of the app that talks now.
    QHash<QByteArray, QByteArray> m_requests;
    qint64 m_lastMs = 0;
};

QString pathOf(const ScriptContext& context, const QString& name)
{
    return name.startsWith(u'/') ? name : QString(context.folder + u'/' + name);
}

} // namespace

QSet<QString> subtypesInRecording(const QString& path)
{
    QSet<QString> result;
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        return result;
    while (!file.atEnd()) {
        const QJsonObject entry = QJsonDocument::fromJson(file.readLine()).object();
        if (entry.value("from").toString() == u"app")
            result.insert(entry.value("line")["request"]["subtype"].toString());
    }
    return result;
}

Task<> replayRecording(ScriptContext& context, const ScriptStep& step)
{
    QFile file(pathOf(context, context.text(step)));
    std::optional<int> status;
    if (!file.open(QFile::ReadOnly)) {
        std::fprintf(stderr, "Can't read %s\n", qPrintable(file.fileName()));
        status = 2;
    }
    Replay replay(context);
    while (!status && !file.atEnd()) {
        QByteArray entry = file.readLine();
        status = co_await replay.play(entry);
    }
    if (status) {
        context.host.endProcess(*status);
        Later<bool> never;
        co_await never;
    }
}

} // namespace DemoAgent
