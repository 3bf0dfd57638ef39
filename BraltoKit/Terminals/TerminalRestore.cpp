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
    m_isParked = !m_isVisible;
}

std::unique_ptr<ConsolePane> TerminalPanel::restored(const PaneSnapshot& snapshot)
{
    ConsolePane::Content content;
    if (snapshot.kind == PaneKind::Chat) {
        if (!snapshot.claudeSessionId)
            return nullptr;
        const QString folder =
            QFileInfo::exists(snapshot.directory) ? snapshot.directory : m_directory;
        content = m_services.makeChat(folder, snapshot.claudeSessionId->toLower());
    } else {
        content = makeSession({snapshot.kind, m_directory, m_directory, snapshot});
    }
    return std::make_unique<ConsolePane>(std::move(content), snapshot.style.value_or(PaneStyle()),
                                         snapshot.name);
}

} // namespace Bralto
