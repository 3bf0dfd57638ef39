#pragma once

#include "Views/Chat/ChatCard.h"

namespace Bralto {

/// Says that there is no agent on this computer, and offers the two ways on.
class ChatMissingAgentCard final : public ChatCard {
    Q_OBJECT

public:
    ChatMissingAgentCard(Theme& theme, QWidget* parent);

signals:
    void useDemoAgentRequested();
    void installHelpRequested();
};

} // namespace Bralto
