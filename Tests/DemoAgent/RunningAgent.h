#pragma once

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <optional>

namespace DemoAgentTests {

using Lines = QList<QJsonObject>;

inline const QString Program = BRALTO_BIN "/bralto-demo-agent";

/// The real program with its pipes, in a home and a folder of its own. Every wait ends after half a
/// minute, which fails the test by what it then finds missing.
class RunningAgent {
public:
    RunningAgent()
    {
        // With a blank and a dot, as real folders have them.
        QDir(m_place.path()).mkpath("home");
        QDir(m_place.path()).mkpath("my.project 1");
    }
    ~RunningAgent()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    [[nodiscard]] QString home() const { return canonical("home"); }
    [[nodiscard]] QString folder() const { return canonical("my.project 1"); }
    [[nodiscard]] QProcess& process() { return m_process; }
    [[nodiscard]] QByteArray errors() { return m_process.readAllStandardError(); }

    void setSpeed(const QString& speed) { m_speed = speed; }

    void start(const QStringList& more = {})
    {
        static const QStringList usual{"-p",
                                       "--input-format",
                                       "stream-json",
                                       "--output-format",
                                       "stream-json",
                                       "--verbose",
                                       "--include-partial-messages",
                                       "--permission-prompt-tool",
                                       "stdio"};
        startWith(usual + more);
    }

    void startWith(const QStringList& arguments) { startProgram(Program, arguments); }

    void startProgram(const QString& program, const QStringList& arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", home());
        environment.insert("BRALTO_DEMO_SPEED", m_speed);
        m_process.setProcessEnvironment(environment);
        m_process.setWorkingDirectory(folder());
        m_process.start(program, arguments);
        ASSERT_TRUE(m_process.waitForStarted());
    }

    /// On return the bytes are in the pipe, so a test may wait for their effect without QProcess.
    void sendBytes(const QByteArray& bytes)
    {
        m_process.write(bytes);
        while (m_process.bytesToWrite() > 0 && m_process.waitForBytesWritten(5000)) {
        }
    }
    void send(const QJsonObject& line)
    {
        sendBytes(QJsonDocument(line).toJson(QJsonDocument::Compact) + '\n');
    }
    void sendTurn(const QString& text)
    {
        const QJsonArray content{QJsonObject{{"type", "text"}, {"text", text}}};
        const QJsonObject message{{"role", "user"}, {"content", content}};
        send({{"type", "user"}, {"message", message}});
    }
    void sendControl(const QString& subtype, QJsonObject fields = {})
    {
        fields.insert("subtype", subtype);
        send({{"type", "control_request"}, {"request_id", subtype + "-1"}, {"request", fields}});
    }
    void answer(const QJsonObject& request, const QJsonObject& response)
    {
        const QJsonObject body{
            {"subtype", "success"}, {"request_id", request["request_id"]}, {"response", response}};
        send({{"type", "control_response"}, {"response", body}});
    }
    void allow(const QJsonObject& request)
    {
        allow(request, request["request"].toObject()["input"].toObject());
    }
    void allow(const QJsonObject& request, const QJsonObject& input)
    {
        answer(request, {{"behavior", "allow"}, {"updatedInput", input}});
    }
    void deny(const QJsonObject& request, const QString& message)
    {
        answer(request, {{"behavior", "deny"}, {"message", message}});
    }

    /// The next line, without its line feed; absent at the end of the output.
    std::optional<QByteArray> nextBytes()
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(30000)) {
                const QByteArray rest = m_process.readAll();
                return rest.isEmpty() ? std::nullopt : std::optional(rest);
            }
        }
        return m_process.readLine().chopped(1);
    }

    std::optional<QJsonObject> next()
    {
        const auto bytes = nextBytes();
        if (!bytes)
            return std::nullopt;
        return QJsonDocument::fromJson(*bytes).object();
    }

    /// The lines up to the first that satisfies `last`, with it; or to the end.
    Lines until(const std::function<bool(const QJsonObject&)>& last)
    {
        Lines lines;
        while (auto line = next()) {
            lines.append(*line);
            if (last(*line))
                break;
        }
        return lines;
    }
    Lines untilType(const QString& type)
    {
        return until([&](const QJsonObject& line) { return line["type"].toString() == type; });
    }
    Lines untilResult() { return untilType("result"); }
    Lines turn(const QString& text)
    {
        sendTurn(text);
        return untilResult();
    }
    QJsonObject control(const QString& subtype, const QJsonObject& fields = {})
    {
        sendControl(subtype, fields);
        return untilType("control_response").last()["response"].toObject();
    }

    /// Ends the input and waits for the end; the exit status, 128 and the signal if one ended it.
    int finish()
    {
        m_process.closeWriteChannel();
        return wait();
    }
    int wait()
    {
        if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(30000))
            return -1;
        return m_process.exitStatus() == QProcess::CrashExit ? 128 + m_process.exitCode()
                                                             : m_process.exitCode();
    }

    [[nodiscard]] QString write(const QString& name, const QByteArray& bytes) const
    {
        const QString path = folder() + '/' + name;
        QFile file(path);
        EXPECT_TRUE(file.open(QFile::WriteOnly));
        file.write(bytes);
        return path;
    }
    [[nodiscard]] QByteArray read(const QString& name) const
    {
        QFile file(folder() + '/' + name);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    [[nodiscard]] QString canonical(const QString& name) const
    {
        return QDir(m_place.filePath(name)).canonicalPath();
    }

    QTemporaryDir m_place;
    QProcess m_process;
    QString m_speed = "0";
};

/// A way for a command to tell its process id: it writes to `path()`, and `read()` waits for it.
class PidPipe {
public:
    explicit PidPipe(const RunningAgent& agent)
        : m_path(agent.folder() + "/pid")
    {
        EXPECT_EQ(::mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
    }
    [[nodiscard]] pid_t read() const
    {
        QFile pipe(m_path);
        EXPECT_TRUE(pipe.open(QFile::ReadOnly));
        return pipe.readLine().trimmed().toInt();
    }

private:
    QString m_path;
};

/// Waits until a process has ended, a child of ours or not.
inline bool waitForEnd(pid_t process)
{
    const int handle = static_cast<int>(::syscall(SYS_pidfd_open, process, 0));
    if (handle < 0)
        return errno == ESRCH;
    pollfd ended{.fd = handle, .events = POLLIN, .revents = 0};
    const bool hasEnded = ::poll(&ended, 1, 30000) == 1;
    ::close(handle);
    return hasEnded;
}

/// What a line is, in short: "system/init", "delta/text_delta", "assistant/text",
/// "user/tool_result".
inline QString kind(const QJsonObject& line)
{
    const QString type = line["type"].toString();
    if (type == "stream_event") {
        const QJsonObject event = line["event"].toObject();
        if (event["type"] == "content_block_delta")
            return "delta/" + event["delta"].toObject()["type"].toString();
        return event["type"].toString();
    }
    if (type == "system" || type == "result")
        return type + '/' + line["subtype"].toString();
    if (type == "control_request")
        return "ask/" + line["request"].toObject()["tool_name"].toString();
    if (type == "assistant" || type == "user") {
        const QJsonValue content = line["message"].toObject()["content"];
        const QString child = line["parent_tool_use_id"].isString() ? "child " : "";
        const QString block = content.isString() ? "string" : content[0]["type"].toString();
        return child + type + '/' + block;
    }
    return type;
}

/// The kinds of the lines; equal neighbours count once.
inline QStringList kinds(const Lines& lines)
{
    QStringList result;
    for (const QJsonObject& line : lines) {
        if (result.isEmpty() || result.last() != kind(line))
            result.append(kind(line));
    }
    return result;
}

/// The first line of a kind, empty if there is none.
inline QJsonObject first(const Lines& lines, const QString& wanted)
{
    for (const QJsonObject& line : lines) {
        if (kind(line) == wanted)
            return line;
    }
    return {};
}

/// The text of the first text or tool-result block.
inline QString textOf(const QJsonObject& line)
{
    const QJsonValue block = line["message"].toObject()["content"][0];
    return block["text"].toString(block["content"].toString());
}

/// The lines that make up one message with one text block.
inline QStringList textMessage()
{
    return {"system/status",  "message_start",      "content_block_start", "delta/text_delta",
            "assistant/text", "content_block_stop", "message_delta",       "message_stop"};
}

/// A message of a text and a tool call.
inline QStringList toolMessage()
{
    return {"system/status",       "message_start",          "content_block_start",
            "delta/text_delta",    "assistant/text",         "content_block_stop",
            "content_block_start", "delta/input_json_delta", "assistant/tool_use",
            "content_block_stop",  "message_delta",          "message_stop"};
}

} // namespace DemoAgentTests
