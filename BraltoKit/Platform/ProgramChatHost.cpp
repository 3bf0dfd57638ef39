#include "Platform/ProgramChatHost.h"

#include "Base/PaneEnvironment.h"
#include "Browser/BrowserControl.h"
#include "Chat/ChatHistory.h"
#include "Platform/Programs.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace Bralto {

namespace {

constexpr char CommandKey[] = "claudeCommand";
constexpr char StandardCommand[] = "claude --dangerously-skip-permissions --chrome";
constexpr qint64 SettingsLimit = 1 << 20; ///< Bytes; no settings file is this large.

} // namespace

ProgramChatHost::ProgramChatHost(Defaults defaults, Surroundings surroundings)
    : m_defaults(defaults)
    , m_surroundings(std::move(surroundings))
    , m_bridge(m_surroundings.paths, m_surroundings.role)
{
}

QString ProgramChatHost::baseCommand() const
{
    const QString key = QLatin1String(CommandKey);
    auto command = m_surroundings.command;
    if (!command)
        command = m_defaults.shared.string(key);
    if (!command)
        command = m_defaults.standard.string(key);
    const QString trimmed = command ? command->trimmed() : QString();
    return trimmed.isEmpty() ? QLatin1String(StandardCommand) : trimmed;
}

bool ProgramChatHost::hasTranscript(const QString& sessionId) const
{
    return transcriptPath(sessionId).has_value();
}

QStringList ProgramChatHost::mcpConfigFlags() const
{
    return BrowserControl::mcpConfigFlags(m_surroundings.paths, m_surroundings.role);
}

// What watches the agent from outside comes with later modules; until then nothing has to be told.

void ProgramChatHost::installHooks() {}

void ProgramChatHost::clearAttention(const QString&) {}

void ProgramChatHost::ingestRateLimits(const QByteArray&, const QDateTime&) {}

QString ProgramChatHost::shell() const
{
    QString zsh = QStringLiteral("/bin/zsh");
    if (Programs::isProgram(zsh))
        return zsh;
    const auto own = PaneEnvironment::value(m_surroundings.environment, QStringLiteral("SHELL"));
    return own && Programs::isProgram(*own) ? *own : QStringLiteral("/bin/sh");
}

QStringList ProgramChatHost::environment(const QString& pane, const QString& project,
                                         const QString& shell) const
{
    return m_bridge.configure(PaneEnvironment::build(m_surroundings.environment, {pane, project}),
                              shell);
}

bool ProgramChatHost::isDemo() const
{
    return m_surroundings.isDemo;
}

QString ProgramChatHost::home() const
{
    return m_surroundings.paths.home();
}

std::optional<QByteArray> ProgramChatHost::readFile(const QString& path) const
{
    QFile file(path);
    // Only a regular file: a pipe in its place would be waited for.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray contents = file.read(SettingsLimit + 1);
    if (contents.size() > SettingsLimit || file.error() != QFileDevice::NoError)
        return std::nullopt;
    return contents;
}

std::optional<QString> ProgramChatHost::transcriptPath(const QString& sessionId) const
{
    return ChatHistory::transcriptPath(m_surroundings.paths.claudeProjects(), sessionId);
}

} // namespace Bralto
