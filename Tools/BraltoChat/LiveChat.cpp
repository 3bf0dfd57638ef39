#include "LiveChat.h"

#include "LiveReport.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <unistd.h>

namespace Bralto {

namespace {

using namespace std::chrono_literals;

constexpr auto ReplyLimit = 30s;

void print(const QByteArray& line)
{
    std::fwrite(line.constData(), 1, std::size_t(line.size()), stdout);
    std::fflush(stdout);
}

} // namespace

LiveChat::LiveChat(const QString& folder, const std::optional<QString>& sessionId,
                   ClaudeChat::Services services, int input)
    : m_chat(folder, sessionId, services)
    , m_input(input)
    , m_notifier(input, QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &LiveChat::readInput);
    observe();
}

void LiveChat::start()
{
    print(LiveReport::session(m_chat));
    print(LiveReport::state(m_chat.state()));
    if (m_chat.isLoadingHistory())
        print(LiveReport::history(true));
    m_chat.launchIfNeeded(ClaudeChat::Turn::No);
}

// What the conversation tells

void LiveChat::observe()
{
    connect(&m_chat, &ClaudeChat::sessionIdChanged, this,
            [this] { print(LiveReport::session(m_chat)); });
    connect(&m_chat, &ClaudeChat::stateChanged, this, [this](const ChatState& state) {
        print(LiveReport::state(state));
        quitIfNothingFollows();
    });
    connect(&m_chat, &ClaudeChat::titleChanged, this,
            [](const QString& title) { print(LiveReport::title(title)); });
    connect(&m_chat, &ClaudeChat::pendingQuestionChanged, this,
            [this] { print(LiveReport::question(m_chat.pendingQuestion())); });
    connect(&m_chat, &ClaudeChat::pendingPermissionChanged, this,
            [this] { print(LiveReport::permission(m_chat.pendingPermission())); });
    connect(&m_chat, &ClaudeChat::commandsChanged, this,
            [this] { print(LiveReport::commands(m_chat.commands())); });
    const auto reportModels = [this] { print(LiveReport::models(m_chat)); };
    connect(&m_chat, &ClaudeChat::modelsChanged, this, reportModels);
    connect(&m_chat, &ClaudeChat::chosenModelChanged, this, reportModels);
    connect(&m_chat, &ClaudeChat::planChanged, this, reportModels);
    connect(&m_chat, &ClaudeChat::remoteControlChanged, this,
            [this] { print(LiveReport::remoteControl(m_chat.remoteControl())); });
    connect(&m_chat, &ClaudeChat::isLoadingHistoryChanged, this,
            [](bool loading) { print(LiveReport::history(loading)); });
    connect(&m_chat, &ClaudeChat::agentMissingChanged, this,
            [](bool missing) { print(LiveReport::agentMissing(missing)); });
    connect(&m_chat, &ClaudeChat::turnEnded, this, [] { print(LiveReport::turnEnded()); });
    connect(&m_chat, &ClaudeChat::transcriptReplaced, this, [this] { m_told.clear(); });
    connect(&m_chat, &ClaudeChat::transcriptChanged, this, &LiveChat::reportTranscript);
}

void LiveChat::reportTranscript(const ChatTranscriptChange& change)
{
    const ChatTranscript& transcript = m_chat.transcript();
    m_told.resize(transcript.messages.size());
    if (change.messageList) {
        for (std::size_t row = 0; row < transcript.messages.size(); ++row)
            reportRow(row);
    } else {
        for (const std::size_t row : change.messages)
            reportRow(row);
    }
    if (change.subagents)
        print(LiveReport::subagents(transcript.subagents));
    if (change.status)
        print(LiveReport::status(transcript.status));
}

void LiveChat::reportRow(std::size_t row)
{
    QByteArray line = LiveReport::message(row, m_chat.transcript().messages[row]);
    if (line == m_told[row])
        return;
    print(line);
    m_told[row] = std::move(line);
}

// What the commands ask for

void LiveChat::readInput()
{
    std::array<char, 65536> bytes;
    const ssize_t length = ::read(m_input, bytes.data(), bytes.size());
    if (length < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (length > 0) {
        for (const QByteArray& line :
             m_lines.feed(std::string_view(bytes.data(), std::size_t(length))))
            obey(line);
        return;
    }
    inputEnded();
}

void LiveChat::inputEnded()
{
    m_notifier.setEnabled(false);
    if (const auto line = m_lines.finish())
        obey(*line);
    m_hasInputEnded = true;
    quitIfNothingFollows();
}

void LiveChat::obey(const QByteArray& line)
{
    if (m_isQuitting)
        return;
    const auto object = m_json.object(line);
    if (!object) {
        print(LiveReport::error(QStringLiteral("not a JSON object")));
        return;
    }
    const auto command = decodeLiveCommand(*object);
    if (!command) {
        print(LiveReport::error(command.error()));
        return;
    }
    std::visit([this](const auto& each) { perform(each); }, *command);
}

void LiveChat::perform(const LiveCommands::Send& command)
{
    m_chat.send(command.text);
}

void LiveChat::perform(const LiveCommands::Respond& command)
{
    if (const auto& permission = m_chat.pendingPermission())
        m_chat.respond(QString(permission->id), command.allow);
    else
        print(LiveReport::error(QStringLiteral("no permission is asked for")));
}

void LiveChat::perform(const LiveCommands::Answer& command)
{
    if (const auto& question = m_chat.pendingQuestion())
        m_chat.answer(QString(question->id), command.answers);
    else
        print(LiveReport::error(QStringLiteral("no question is open")));
}

void LiveChat::perform(const LiveCommands::Interrupt&)
{
    m_chat.interrupt();
}

void LiveChat::perform(const LiveCommands::SetModel& command)
{
    m_chat.setModel(command.value);
}

void LiveChat::perform(const LiveCommands::SetEffort& command)
{
    m_chat.setEffort(command.level);
}

void LiveChat::perform(const LiveCommands::SetMode& command)
{
    m_chat.setPermissionMode(command.mode);
}

void LiveChat::perform(const LiveCommands::SetRemoteControl& command)
{
    m_chat.setRemoteControl(command.on);
}

void LiveChat::perform(const LiveCommands::Control& command)
{
    ++m_openRequests;
    m_chat.control(command.subtype, command.fields, ReplyLimit,
                   [this, subtype = command.subtype](const auto& reply) {
                       --m_openRequests;
                       print(LiveReport::reply(subtype, reply));
                       quitIfNothingFollows();
                   });
}

void LiveChat::perform(const LiveCommands::Switch& command)
{
    m_chat.switchSession(command.sessionId);
}

void LiveChat::perform(const LiveCommands::Stop&)
{
    m_chat.stop();
}

void LiveChat::perform(const LiveCommands::Quit&)
{
    quit();
}

/// After the last command the running turn is finished, but a card that nobody can answer any more
/// isn't waited for.
void LiveChat::quitIfNothingFollows()
{
    const ChatState::Kind kind = m_chat.state().kind;
    const bool isBusy = kind == ChatState::Kind::Starting || kind == ChatState::Kind::Working;
    if (m_hasInputEnded && !isBusy && m_openRequests == 0)
        quit();
}

void LiveChat::quit()
{
    if (std::exchange(m_isQuitting, true))
        return;
    m_notifier.setEnabled(false);
    // Not from within a signal of the conversation: its news is still being told.
    QMetaObject::invokeMethod(
        this, [this] { m_chat.stopAndWait([this] { emit finished(); }); }, Qt::QueuedConnection);
}

} // namespace Bralto
