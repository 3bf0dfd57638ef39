#pragma once

#include "Base/DefaultsStore.h"
#include "Chat/ChatHost.h"
#include "Terminals/TerminalHost.h"

#include <QStringList>

namespace Bralto {

/// What the program gives its terminal panes: the user's own shell, and else what a chat gets, so
/// that a conversation finds the same things as a terminal and as a chat. Main thread.
class ProgramTerminalHost final : public TerminalHost {
public:
    static constexpr int StandardHistory = 10'000;
    static constexpr int LongestHistory = 1'000'000;

    /// `chats` and `shared` outlive this object; `environment` is the program's own, "NAME=value".
    ProgramTerminalHost(ChatHost& chats, const DefaultsStore& shared, QStringList environment);

    /// One that is no program gives way to the shell of the chats.
    [[nodiscard]] QString shell() const override;
    [[nodiscard]] QStringList environment(const QString& pane, const QString& project,
                                          const QString& shell) const override;
    [[nodiscard]] QString claudeCommand(const QString& session) override;
    void clearAttention(const QString& pane) override;
    /// The shared default "terminalHistoryRows", if it is a whole number up to the longest history.
    [[nodiscard]] int historyRows() const override;

private:
    ChatHost& m_chats;
    const DefaultsStore& m_shared;
    QStringList m_environment;
};

} // namespace Bralto
