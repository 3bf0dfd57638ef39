#pragma once

#include "Chat/ChatDraft.h"
#include "Chat/ChatTranscript.h"
#include "Views/Chat/ChatCard.h"

namespace Bralto {

class SceneView;
class TextButton;

/// Asks whether the agent may use a tool. What it asks for shows whole, since that is what the user
/// answers for; a plan shows as the text that it is.
class ChatPermissionCard final : public ChatCard {
    Q_OBJECT

public:
    ChatPermissionCard(Theme& theme, ChatDraft& draft, QWidget* parent);

    /// Shows the draft's request. The plan of one that approves a plan is looked for in
    /// `transcript` if the request doesn't carry it.
    void show(const ChatTranscript& transcript, const QString& folder);

    /// What the card shows below its title for a request: a plan, a whole command, else the tool's
    /// summary.
    struct Body {
        QString text;
        bool isMarkdown = false;

        bool operator==(const Body&) const = default;
    };
    [[nodiscard]] static Body body(const ChatPermission& permission,
                                   const ChatTranscript& transcript);

private:
    void showHighlight();

    ChatDraft& m_draft;
    SceneView* m_body;
    TextButton* m_allow;
    TextButton* m_refuse;
};

} // namespace Bralto
