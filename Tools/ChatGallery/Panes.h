#pragma once

#include "Chat/ChatFileIndex.h"
#include "Chat/ClaudeChat.h"
#include "Views/Kit/Theme.h"

#include "Tests/Support/FakeAgentLauncher.h"
#include "Tests/Support/FakeChatHost.h"
#include "Tests/Support/FixedClock.h"
#include "Tests/Support/ManualScheduler.h"

#include <QSize>

#include <functional>

namespace Bralto {

class ChatDraft;
class ChatView;

/// A whole pane with a conversation whose agent says what the picture needs.
class Pane {
public:
    Pane(QString folder, bool dark);
    ~Pane();

    /// One line of the agent, as JSON.
    void say(const char* json);
    /// The turn that all pictures begin with.
    void begin();

    [[nodiscard]] ClaudeChat& chat() const { return *m_chat; }
    [[nodiscard]] ChatDraft& draft() const;
    [[nodiscard]] ChatView& view() const { return *m_view; }
    [[nodiscard]] FakeAgent& agent() const { return m_launcher.agent(); }

private:
    FakeChatHost m_host;
    FakeAgentLauncher m_launcher;
    ManualScheduler m_scheduler;
    FixedClock m_clock;
    ChatCommandMemory m_memory;
    ChatFileIndex m_files;
    Theme m_theme;
    std::unique_ptr<ClaudeChat> m_chat;
    std::unique_ptr<ChatView> m_view;
};

/// A pane in one state.
struct PaneSample {
    const char* name;
    QSize size;
    std::function<void(Pane&)> prepare;
};

[[nodiscard]] const std::vector<PaneSample>& paneSamples();

} // namespace Bralto
