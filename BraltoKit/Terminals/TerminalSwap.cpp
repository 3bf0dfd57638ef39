#include "Base/Uuid.h"
#include "Terminals/OutliveThisTurn.h"
#include "Terminals/TerminalPanel.h"

#include <QPointer>

#include <utility>

namespace Bralto {

void TerminalPanel::toggleView(const ConsolePane* pane)
{
    if (!groupOf(pane) || pane->isSwapping() || !parsedUuid(pane->claudeSessionId()))
        return;
    ConsolePane& swapped = *this->pane(pane->id());
    swapped.setSwapping(true);
    if (swapped.chat())
        swapToTerminal(swapped);
    else
        swapToChat(swapped);
}

// A pane that is closed meanwhile takes its content along, and with it what waits for its end.

void TerminalPanel::swapToTerminal(ConsolePane& pane)
{
    ClaudeChat* chat = pane.chat();
    chat->stopAndWait([this, chat, swapped = QPointer(&pane)] {
        if (swapped)
            finishSwap(*swapped, resumedTerminal(chat->sessionId(), chat->folder()));
    });
}

void TerminalPanel::swapToChat(ConsolePane& pane)
{
    TerminalSession* session = pane.terminal();
    session->endClaude([this, session, swapped = QPointer(&pane)] {
        if (!swapped)
            return;
        session->terminate();
        m_services.clearAttention(session->paneId());
        finishSwap(*swapped, m_services.makeChat(session->startDirectory(), session->paneId()));
    });
}

void TerminalPanel::finishSwap(ConsolePane& pane, ConsolePane::Content content)
{
    outliveThisTurn(this,
                    std::make_unique<ConsolePane::Content>(pane.exchange(std::move(content))));
    pane.setSwapping(false);
    const TerminalGroup* group = groupOf(&pane);
    if (!group)
        pane.stop();
    else if (group == activeGroup() && group->focusedPane() == &pane)
        focus(&pane);
}

} // namespace Bralto
