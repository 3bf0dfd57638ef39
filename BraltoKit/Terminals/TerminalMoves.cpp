#include "Terminals/TerminalPanel.h"

#include <algorithm>
#include <utility>

namespace Bralto {

void TerminalPanel::move(const ConsolePane* pane, const TerminalGroup* target, std::size_t index)
{
    TerminalGroup* source = groupOf(pane);
    const auto targetIndex = indexOf(target);
    if (!source || !targetIndex)
        return;
    TerminalGroup* destination = m_groups[*targetIndex].get();
    std::size_t place = std::min(index, destination->panes().size());
    if (source == destination) {
        const std::size_t from = *source->indexOf(pane);
        if (from < place)
            --place;
        if (from == place) {
            markFocused(pane);
            return;
        }
    }
    destination->putQuietly(source->takeQuietly(pane), place);
    const bool isLeftEmpty = source->panes().empty();
    const bool changesActive = m_activeGroupId != destination->id();
    m_activeGroupId = destination->id();
    if (isLeftEmpty)
        dropGroup(source);
    else if (source != destination)
        source->announce();
    destination->announce();
    if (isLeftEmpty)
        emit groupsChanged();
    if (changesActive)
        emit activeGroupChanged();
    focus(pane);
}

void TerminalPanel::merge(const TerminalGroup* group, const TerminalGroup* target,
                          std::size_t index)
{
    const auto from = indexOf(group);
    const auto to = indexOf(target);
    if (group == target || !from || !to)
        return;
    TerminalGroup* source = m_groups[*from].get();
    TerminalGroup* destination = m_groups[*to].get();
    const ConsolePane* focused = source->focusedPane();
    std::size_t place = std::min(index, destination->panes().size());
    while (!source->panes().empty())
        destination->putQuietly(source->takeQuietly(source->panes().front().get()), place++);
    const bool changesActive = m_activeGroupId != destination->id();
    m_activeGroupId = destination->id();
    dropGroup(source);
    destination->announce();
    emit groupsChanged();
    if (changesActive)
        emit activeGroupChanged();
    focus(focused ? focused : destination->focusedPane());
}

void TerminalPanel::moveToNewGroup(const ConsolePane* pane, std::optional<std::size_t> index)
{
    TerminalGroup* source = groupOf(pane);
    if (!source)
        return;
    const std::size_t place = std::min(index.value_or(m_groups.size()), m_groups.size());
    if (source->panes().size() == 1) {
        moveGroup(source, place);
        return;
    }
    std::vector<std::unique_ptr<ConsolePane>> panes;
    panes.push_back(source->takeQuietly(pane));
    auto made = std::make_unique<TerminalGroup>(std::move(panes));
    m_activeGroupId = made->id();
    m_groups.insert(m_groups.begin() + std::ptrdiff_t(place), std::move(made));
    source->announce();
    emit groupsChanged();
    emit activeGroupChanged();
    focus(pane);
}

void TerminalPanel::moveGroup(const TerminalGroup* group, std::size_t index)
{
    const auto from = indexOf(group);
    if (!from || *from == index)
        return;
    auto moved = take(*from);
    const std::size_t place = std::min(index, m_groups.size());
    m_groups.insert(m_groups.begin() + std::ptrdiff_t(place), std::move(moved));
    emit groupsChanged();
}

} // namespace Bralto
