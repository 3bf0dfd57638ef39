#pragma once

#include "Terminals/TerminalPanel.h"
#include "Tests/Support/FakeAgentLauncher.h"
#include "Tests/Support/FakeChatHost.h"
#include "Tests/Support/FixedClock.h"
#include "Tests/Support/ManualScheduler.h"

namespace Bralto {

/// Makes real conversations whose agents do what a test says. Outlives them.
class ChatMaker {
public:
    [[nodiscard]] TerminalPanel::ChatFactory factory()
    {
        return [this](const QString& folder, const std::optional<QString>& sessionId) {
            return std::make_unique<ClaudeChat>(
                folder, sessionId,
                ClaudeChat::Services{host, launcher, scheduler, clock, m_memory});
        };
    }

    FakeChatHost host;
    FakeAgentLauncher launcher;
    ManualScheduler scheduler;
    FixedClock clock;

private:
    ChatCommandMemory m_memory;
};

} // namespace Bralto
