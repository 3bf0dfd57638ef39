#include "Platform/ProgramTerminalHost.h"

#include "Base/PaneEnvironment.h"
#include "Platform/Programs.h"
#include "Terminals/ClaudeLauncher.h"

#include <cmath>
#include <utility>

namespace Bralto {

namespace {

constexpr char HistoryKey[] = "terminalHistoryRows";

} // namespace

ProgramTerminalHost::ProgramTerminalHost(ChatHost& chats, const DefaultsStore& shared,
                                         QStringList environment)
    : m_chats(chats)
    , m_shared(shared)
    , m_environment(std::move(environment))
{
}

QString ProgramTerminalHost::shell() const
{
    const QString own = PaneEnvironment::value(m_environment, QStringLiteral("SHELL"))
                            .value_or(QStringLiteral("/bin/zsh"));
    return Programs::isProgram(own) ? own : m_chats.shell();
}

QStringList ProgramTerminalHost::environment(const QString& pane, const QString& project,
                                             const QString& shell) const
{
    return m_chats.environment(pane, project, shell);
}

QString ProgramTerminalHost::claudeCommand(const QString& session)
{
    return ClaudeLauncher::command(m_chats, session);
}

void ProgramTerminalHost::clearAttention(const QString& pane)
{
    m_chats.clearAttention(pane);
}

int ProgramTerminalHost::historyRows() const
{
    const auto rows = m_shared.number(QLatin1String(HistoryKey));
    const bool isUsable =
        rows && *rows >= 0 && *rows <= LongestHistory && std::trunc(*rows) == *rows;
    return isUsable ? int(*rows) : StandardHistory;
}

} // namespace Bralto
