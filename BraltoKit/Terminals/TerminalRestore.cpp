#include "Terminals/TerminalPanel.h"

#include <QFileInfo>

#include <algorithm>

namespace Bralto {

void TerminalPanel::restore(const PanelSnapshot& snapshot)
{
    m_editorFraction = std::clamp(snapshot.editorFraction, SmallestFraction, LargestFraction);
    for (const GroupSnapshot& kept : snapshot.groups) {
        std::vector<std::unique_ptr<ConsolePane>> panes;
        for (const PaneSnapshot& pane : kept.panes) {
            if (auto made = restored(pane))
                panes.push_back(std::move(made));
        }
        if (panes.empty())
            continue;
        const auto focused = std::clamp(kept.focusedIndex, 0, int(panes.size()) - 1);
        const QString focusedId = panes[std::size_t(focused)]->id();
        m_groups.push_back(std::make_unique<TerminalGroup>(std::move(panes), kept.name));
        m_groups.back()->setFocusedPaneId(focusedId);
    }
    if (m_groups.empty())
        return;
    const int active = snapshot.activeGroupIndex;
    const bool isInRange = active >= 0 && std::size_t(active) < m_groups.size();
    m_activeGroupId = m_groups[isInRange ? std::size_t(active) : 0]->id();
    m_isVisible = snapshot.isVisible;
}

std::unique_ptr<ConsolePane> TerminalPanel::restored(const PaneSnapshot& snapshot) const
{
    // A conversation that ran in a terminal goes on as a chat; a plain shell has nothing to go on
    // with.
    if (snapshot.kind == PaneKind::Shell || !snapshot.claudeSessionId)
        return nullptr;
    const QString folder = QFileInfo::exists(snapshot.directory) ? snapshot.directory : m_directory;
    return std::make_unique<ConsolePane>(m_makeChat(folder, snapshot.claudeSessionId->toLower()),
                                         snapshot.name, snapshot.style);
}

} // namespace Bralto
