// The process of a conversation: how it starts, how its output arrives, how it ends, and the stored
// conversation that it goes on with.

#include "Chat/ClaudeChat.h"

#include "Base/PaneEnvironment.h"
#include "Chat/AgentOutput.h"
#include "Chat/ChatHistory.h"
#include "Chat/ChatProtocol.h"

#include <QThreadPool>

#include <algorithm>
#include <utility>

namespace Bralto {

namespace {

using namespace std::chrono_literals;

constexpr auto StopLimit = 5s;
constexpr int CommandNotFound = 127; ///< The exit status of a shell that can't find its command.

/// The text of the first message that the user wrote.
std::optional<QString> firstTurn(const ChatTranscript& transcript)
{
    const auto message =
        std::find_if(transcript.messages.begin(), transcript.messages.end(),
                     [](const ChatMessage& each) { return each.role == ChatRole::User; });
    if (message == transcript.messages.end())
        return std::nullopt;
    for (const ChatBlock& block : message->blocks) {
        const auto* text = std::get_if<ChatTextBlock>(&block);
        if (text && !text->text.isEmpty())
            return text->text;
    }
    return std::nullopt;
}

} // namespace

ClaudeChat::~ClaudeChat()
{
    m_door->close();
    if (m_output)
        m_output->mute();
}

bool ClaudeChat::isRunning() const
{
    return m_process && m_process->isRunning();
}

qint64 ClaudeChat::processId() const
{
    return m_process ? m_process->processId() : 0;
}

// Launching

QStringList ClaudeChat::agentFlags() const
{
    QStringList flags{QStringLiteral("-p"),
                      QStringLiteral("--input-format"),
                      QStringLiteral("stream-json"),
                      QStringLiteral("--output-format"),
                      QStringLiteral("stream-json"),
                      QStringLiteral("--verbose"),
                      QStringLiteral("--include-partial-messages"),
                      QStringLiteral("--permission-prompt-tool"),
                      QStringLiteral("stdio")};
    flags.append(m_services.host.hasTranscript(m_sessionId) ? QStringLiteral("--resume")
                                                            : QStringLiteral("--session-id"));
    flags.append(m_sessionId);
    flags.append(m_services.host.mcpConfigFlags());
    return flags;
}

AgentLaunch ClaudeChat::agentLaunch() const
{
    const ChatHost& host = m_services.host;
    AgentLaunch launch;
    launch.program = host.shell();
    // A login shell, because it knows the user's PATH.
    launch.arguments = {QStringLiteral("-lc"), script(host.baseCommand(), agentFlags())};
    launch.environment = PaneEnvironment::setting(host.environment(m_id, m_folder, launch.program),
                                                  QStringLiteral("TERM"), QStringLiteral("dumb"));
    launch.folder = m_folder;
    return launch;
}

bool ClaudeChat::launchIfNeeded(Turn turn)
{
    // A process that has died while its words are being heard is replaced when they have been: a
    // new one makes the rest of them stale, the turn's result included.
    if (isRunning() || (m_process && m_isInBatch))
        return true;
    if (m_process)
        letGoOfProcess(); // It has died, and the end of its output is still on the way.
    m_services.host.installHooks();
    m_services.host.clearAttention(m_id);
    setAgentMissing(false);

    const int generation = ++m_generation;
    auto output = std::make_shared<AgentOutput>(m_door, m_services.clock, m_services.host.home());
    output->onArrival([this, generation, arrived = std::weak_ptr(output)] {
        if (const auto strong = arrived.lock())
            takeOutput(generation, strong);
    });
    auto process = m_services.launcher.launch(agentLaunch(), AgentOutput::pipes(output));
    if (!process) {
        setState(
            {ChatState::Kind::Failed, QStringLiteral("Couldn't start Claude: ") + process.error()});
        return false;
    }
    m_process = *process;
    m_output = std::move(output);
    m_isInterrupting = false;
    m_transcript.earlierCost += m_transcript.runCost;
    m_transcript.runCost = 0;
    if (turn == Turn::Yes)
        setState(ChatState::Kind::Starting);
    write(ChatProtocol::initializeRequest(QStringLiteral("initialize-") + newUuid()));
    return true;
}

void ClaudeChat::write(const QByteArray& line)
{
    if (m_process)
        m_process->write(line);
}

// Output

void ClaudeChat::takeOutput(int generation, const std::shared_ptr<AgentOutput>& output)
{
    const AgentOutput::Batch batch = output->take();
    if (output->exitStatus())
        finishRetiring(output.get());
    if (generation != m_generation)
        return;
    handle(batch.events);
    if (batch.hasEnded && generation == m_generation)
        processEnded();
}

void ClaudeChat::processEnded()
{
    const QString errors = m_output->errorTail().trimmed();
    const bool missing =
        !m_output->hasSpoken() && (m_output->exitStatus() == CommandNotFound ||
                                   errors.contains(QStringLiteral("command not found")));
    const ChatState::Kind kind = m_state.kind;
    letGoOfProcess();
    setAgentMissing(missing);
    if (kind == ChatState::Kind::Starting || kind == ChatState::Kind::Working ||
        kind == ChatState::Kind::Waiting)
        setState({ChatState::Kind::Failed,
                  errors.isEmpty() ? QStringLiteral("Claude stopped unexpectedly.") : errors});
}

/// What doesn't survive a process goes with it.
void ClaudeChat::letGoOfProcess()
{
    if (m_output)
        m_output->mute();
    m_process.reset();
    m_output.reset();
    setPendingQuestion(std::nullopt);
    setPendingPermission(std::nullopt);
    failReplies();
    endRemoteControl();
    change(m_transcript.finishTurn());
    m_services.host.clearAttention(m_id);
}

// Stopping

void ClaudeChat::stop()
{
    ++m_generation;
    if (m_process) {
        m_process->closeInput();
        m_process->terminate();
    }
    letGoOfProcess();
    setState(ChatState::Kind::Idle);
}

void ClaudeChat::stopAndWait(std::function<void()> done)
{
    auto process = m_process;
    auto output = m_output;
    stop();
    if (!process || !process->isRunning()) {
        m_services.scheduler.after(0ms, this, std::move(done));
        return;
    }
    const AgentOutput* key = output.get();
    const quint64 timeout = m_services.scheduler.after(StopLimit, this, [this, key] {
        const auto waiting =
            std::find_if(m_retiring.begin(), m_retiring.end(),
                         [key](const Retiring& each) { return each.output.get() == key; });
        if (waiting != m_retiring.end())
            waiting->process->kill();
        finishRetiring(key);
    });
    m_retiring.push_back({std::move(process), std::move(output), timeout, std::move(done)});
}

void ClaudeChat::finishRetiring(const AgentOutput* output)
{
    const auto found =
        std::find_if(m_retiring.begin(), m_retiring.end(),
                     [output](const Retiring& each) { return each.output.get() == output; });
    if (found == m_retiring.end())
        return;
    const Retiring finished = std::move(*found);
    m_retiring.erase(found);
    m_services.scheduler.cancel(finished.timeout);
    finished.done();
}

// The stored conversation

void ClaudeChat::loadHistory()
{
    const int load = ++m_historyLoad;
    setLoadingHistory(true);
    auto work = [this, load, door = m_door, home = m_services.host.home(),
                 path = m_services.host.transcriptPath(m_sessionId)] {
        auto history = path ? ChatHistory::loadTranscript(*path, home) : std::nullopt;
        door->post([this, load, history = std::move(history)]() mutable {
            takeHistory(load, std::move(history));
        });
    };
    QThreadPool::globalInstance()->start(std::move(work));
}

void ClaudeChat::takeHistory(int load, std::optional<ChatTranscript> history)
{
    if (load != m_historyLoad)
        return;
    setLoadingHistory(false);
    if (!history)
        return;
    change(m_transcript.prepend(std::move(*history)));
    if (m_title != untitled())
        return;
    if (const auto text = firstTurn(m_transcript))
        setTitle(titleFrom(*text));
}

} // namespace Bralto
