#include "Chat/ClaudeChat.h"

#include "Base/MainThreadDoor.h"
#include "Base/ShellQuote.h"
#include "Chat/ChatEffort.h"
#include "Chat/ChatProtocol.h"

#include <QTextBoundaryFinder>
#include <QUuid>

#include <utility>

// The conversation as the user drives it, and its observed state. The process and its output stand
// in ClaudeChatLaunch.cpp, what the agent says in ClaudeChatEvents.cpp, requests to the agent in
// ClaudeChatControl.cpp.

namespace Bralto {

namespace {

constexpr qsizetype TitleLength = 40; ///< Characters as a reader counts them.

bool isLineBreak(QChar character)
{
    const char16_t code = character.unicode();
    return (code >= 0x0A && code <= 0x0D) || code == 0x85 || code == 0x2028 || code == 0x2029;
}

/// The lines of `text`, trimmed, without the empty ones.
QStringList linesOf(const QString& text)
{
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype index = 0; index <= text.size(); ++index) {
        if (index < text.size() && !isLineBreak(text[index]))
            continue;
        const QString line = text.mid(start, index - start).trimmed();
        if (!line.isEmpty())
            lines.append(line);
        start = index + 1;
    }
    return lines;
}

/// The end of the first `count` characters of `text`, its size if there are no more.
qsizetype endOfCharacters(const QString& text, qsizetype count)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    while (count-- > 0 && end >= 0 && end < text.size())
        end = finder.toNextBoundary();
    return end < 0 ? text.size() : end;
}

} // namespace

// Construction

ClaudeChat::ClaudeChat(QString folder, std::optional<QString> sessionId, Services services,
                       QObject* parent)
    : QObject(parent)
    , m_services(services)
    , m_id(newUuid())
    , m_sessionId(sessionId ? *sessionId : newUuid())
    , m_folder(std::move(folder))
    , m_title(untitled())
    , m_commands(services.commandMemory.commands(m_folder))
    , m_door(std::make_shared<MainThreadDoor>(this))
{
    const ChatHost& host = m_services.host;
    m_transcript.status.effort =
        ChatEffort::effort(host.baseCommand(), m_folder, host.home(),
                           [&host](const QString& path) { return host.readFile(path); });
    if (sessionId)
        loadHistory();
}

const QList<ChatCommand>& ChatCommandMemory::commands(const QString& folder) const
{
    const auto found = m_commands.constFind(folder);
    return found == m_commands.constEnd() ? ChatCommands::fallback() : *found;
}

void ChatCommandMemory::remember(const QString& folder, const QList<ChatCommand>& commands)
{
    m_commands.insert(folder, commands);
}

// What the user does

void ClaudeChat::send(const QString& text, const QList<ChatAttachment>& attachments)
{
    const QString turn = text.trimmed();
    if (turn.isEmpty() && attachments.isEmpty())
        return;
    change(m_transcript.endAllStreaming());
    change(m_transcript.append(
        ChatProtocol::userMessage(turn, attachments, m_folder, newUuid(), m_services.clock.now())));
    if (m_title == untitled() && !turn.isEmpty())
        setTitle(titleFrom(turn));
    if (!launchIfNeeded(Turn::Yes))
        return;
    write(ChatProtocol::userLine(turn, attachments, m_folder));
    if (m_state.kind == ChatState::Kind::Working || m_state.kind == ChatState::Kind::Waiting)
        return;
    // An interrupt that found nothing to interrupt says nothing about this turn.
    m_isInterrupting = false;
    setState(ChatState::Kind::Working);
}

void ClaudeChat::respond(const QString& permissionId, bool allow)
{
    if (!m_pendingPermission || m_pendingPermission->id != permissionId)
        return;
    write(allow ? ChatProtocol::allow(permissionId, m_pendingPermission->input, std::nullopt)
                : ChatProtocol::deny(permissionId,
                                     QStringLiteral("The user declined this tool use.")));
    setPendingPermission(std::nullopt);
    setState(ChatState::Kind::Working);
}

void ClaudeChat::answer(const QString& questionId, const QMap<QString, QString>& answers)
{
    if (!m_pendingQuestion || m_pendingQuestion->id != questionId)
        return;
    write(ChatProtocol::allow(questionId, m_pendingInput, answers));
    setPendingQuestion(std::nullopt);
    setState(ChatState::Kind::Working);
}

void ClaudeChat::interrupt()
{
    if (!isRunning())
        return;
    const QString message = QStringLiteral("The user interrupted.");
    if (m_pendingQuestion) {
        write(ChatProtocol::deny(m_pendingQuestion->id, message));
        setPendingQuestion(std::nullopt);
        setState(ChatState::Kind::Working);
    }
    if (m_pendingPermission) {
        write(ChatProtocol::deny(m_pendingPermission->id, message));
        setPendingPermission(std::nullopt);
    }
    m_isInterrupting = true;
    write(ChatProtocol::interruptRequest(QStringLiteral("interrupt-") + newUuid()));
}

void ClaudeChat::switchSession(const std::optional<QString>& sessionId)
{
    stop();
    m_sessionId = sessionId ? *sessionId : newUuid();
    ChatTranscript transcript;
    transcript.status.effort = m_transcript.status.effort;
    m_transcript = std::move(transcript);
    m_batchChange = {};
    emit sessionIdChanged(m_sessionId);
    emit transcriptReplaced();
    setTitle(untitled());
    setChosenModel(std::nullopt);
    endRemoteControl();
    ++m_historyLoad; // A load for the old conversation has nothing to say any more.
    setLoadingHistory(false);
    if (sessionId)
        loadHistory();
    launchIfNeeded(Turn::No);
}

void ClaudeChat::note(const QString& text)
{
    change(m_transcript.apply(
        ChatEvents::Notice{newUuid(), text, m_services.clock.now(), std::nullopt}));
}

// Rules

QString ClaudeChat::untitled()
{
    return QStringLiteral("Claude");
}

QString ClaudeChat::newUuid()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

QString ClaudeChat::titleFrom(const QString& text)
{
    QStringList lines = linesOf(text);
    if (lines.size() >= 2 && lines.first().startsWith(QLatin1Char('@')))
        lines.removeFirst();
    QString title = lines.isEmpty() ? text : lines.first();
    if (endOfCharacters(title, TitleLength) >= title.size())
        return title;
    return title.left(endOfCharacters(title, TitleLength - 1)).trimmed() + QChar(0x2026);
}

QString ClaudeChat::script(const QString& baseCommand, const QStringList& flags)
{
    // "command" skips shell functions; in front of an assignment it would name a program.
    const QString first = baseCommand.section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty);
    const QString prefix =
        first.contains(QLatin1Char('=')) ? QString() : QStringLiteral("command ");
    return QStringLiteral("exec ") + prefix + baseCommand + QLatin1Char(' ') +
           ShellQuote::joined(flags);
}

// Observed state

void ClaudeChat::setState(const ChatState& state)
{
    if (m_state == state)
        return;
    m_state = state;
    publish();
    emit stateChanged(m_state);
}

void ClaudeChat::setPendingQuestion(std::optional<ChatQuestion> question)
{
    if (!question)
        m_pendingInput.clear();
    if (m_pendingQuestion == question)
        return;
    m_pendingQuestion = std::move(question);
    emit pendingQuestionChanged();
}

void ClaudeChat::setPendingPermission(std::optional<ChatPermission> permission)
{
    if (m_pendingPermission == permission)
        return;
    m_pendingPermission = std::move(permission);
    emit pendingPermissionChanged();
}

void ClaudeChat::setTitle(const QString& title)
{
    if (m_title == title)
        return;
    m_title = title;
    emit titleChanged(m_title);
}

void ClaudeChat::setLoadingHistory(bool loading)
{
    if (m_isLoadingHistory == loading)
        return;
    m_isLoadingHistory = loading;
    emit isLoadingHistoryChanged(loading);
}

void ClaudeChat::setCommands(const QList<ChatCommand>& commands)
{
    m_services.commandMemory.remember(m_folder, commands);
    if (m_commands == commands)
        return;
    m_commands = commands;
    emit commandsChanged();
}

void ClaudeChat::setChosenModel(std::optional<QString> value)
{
    if (m_chosenModel == value)
        return;
    m_chosenModel = std::move(value);
    emit chosenModelChanged();
}

void ClaudeChat::updateRemoteControl(const ChatRemoteControl& remoteControl)
{
    if (m_remoteControl == remoteControl)
        return;
    m_remoteControl = remoteControl;
    emit remoteControlChanged();
}

void ClaudeChat::endRemoteControl()
{
    ChatRemoteControl off = m_remoteControl;
    off.phase = ChatRemoteControl::Off{};
    off.sessionUrl.reset();
    updateRemoteControl(off);
}

void ClaudeChat::setAgentMissing(bool missing)
{
    if (m_isAgentMissing == missing)
        return;
    m_isAgentMissing = missing;
    emit agentMissingChanged(missing);
}

void ClaudeChat::change(const ChatTranscriptChange& change)
{
    m_batchChange.merge(change);
    if (!m_isInBatch)
        publish();
}

void ClaudeChat::publish()
{
    if (m_batchChange.isEmpty())
        return;
    emit transcriptChanged(std::exchange(m_batchChange, {}));
}

} // namespace Bralto
