#include "Terminals/ConsoleDrop.h"

#include "Terminals/TerminalPanel.h"

#include <algorithm>
#include <utility>

namespace Bralto {

namespace {

using Edge = ConsoleDrag::Edge;
using Target = ConsoleDrag::Target;

Edge edgeOf(const ConsoleDropInfo& info)
{
    return ConsoleDrag::edge(info.x, info.width);
}

std::size_t beside(std::size_t index, Edge edge)
{
    return edge == Edge::Trailing ? index + 1 : index;
}

std::optional<std::size_t> indexOf(const TerminalPanel& panel, const TerminalGroup* group)
{
    const auto& groups = panel.groups();
    const auto found =
        std::ranges::find(groups, group, [](const auto& each) { return each.get(); });
    if (found == groups.end())
        return std::nullopt;
    return std::size_t(found - groups.begin());
}

/// Moves a tab to a place between the tabs as they stand now, the moved one among them.
void moveGroup(TerminalPanel& panel, const TerminalGroup* group, std::size_t place)
{
    const auto from = indexOf(panel, group);
    if (from)
        panel.moveGroup(group, *from < place ? place - 1 : place);
}

} // namespace

PaneDropDelegate::PaneDropDelegate(ConsoleDrag& drag, TerminalPanel& panel, QString paneId)
    : m_drag(drag)
    , m_panel(panel)
    , m_paneId(std::move(paneId))
{
}

bool PaneDropDelegate::validateDrop(const ConsoleDropInfo& info) const
{
    const ConsolePane* target = m_panel.pane(m_paneId);
    if (!target)
        return false;
    if (const ConsolePane* pane = m_drag.draggedPane(m_panel, info.formats))
        return pane != target;
    const TerminalGroup* group = m_drag.draggedGroup(m_panel, info.formats);
    return group && group != m_panel.groupOf(target);
}

DropProposal PaneDropDelegate::dropUpdated(const ConsoleDropInfo& info)
{
    if (!validateDrop(info))
        return DropProposal::Forbidden;
    m_drag.point({Target::Place::Pane, m_paneId, edgeOf(info)});
    return DropProposal::Move;
}

void PaneDropDelegate::dropExited()
{
    m_drag.leave({Target::Place::Pane, m_paneId, Edge::Leading});
    m_drag.leave({Target::Place::Pane, m_paneId, Edge::Trailing});
}

bool PaneDropDelegate::performDrop(const ConsoleDropInfo& info)
{
    const bool isValid = validateDrop(info);
    if (isValid) {
        const ConsolePane* target = m_panel.pane(m_paneId);
        const TerminalGroup* into = m_panel.groupOf(target);
        const std::size_t place = beside(into->indexOf(target).value_or(0), edgeOf(info));
        if (const ConsolePane* pane = m_drag.draggedPane(m_panel, info.formats))
            m_panel.move(pane, into, place);
        else
            m_panel.merge(m_drag.draggedGroup(m_panel, info.formats), into, place);
    }
    m_drag.finish();
    return isValid;
}

ChipDropDelegate::ChipDropDelegate(ConsoleDrag& drag, TerminalPanel& panel, QString groupId)
    : m_drag(drag)
    , m_panel(panel)
    , m_groupId(std::move(groupId))
{
}

bool ChipDropDelegate::validateDrop(const ConsoleDropInfo& info) const
{
    return m_panel.group(m_groupId) && (m_drag.draggedPane(m_panel, info.formats) ||
                                        m_drag.draggedGroup(m_panel, info.formats));
}

void ChipDropDelegate::dropEntered(const ConsoleDropInfo& info)
{
    const ConsolePane* pane = m_drag.draggedPane(m_panel, info.formats);
    const TerminalGroup* group = m_panel.group(m_groupId);
    if (pane && group && m_panel.groupOf(pane) != group && m_panel.activeGroup() != group)
        m_panel.activateGroup(group);
}

DropProposal ChipDropDelegate::dropUpdated(const ConsoleDropInfo& info)
{
    if (!validateDrop(info))
        return DropProposal::Forbidden;
    const bool isGroup = m_drag.draggedGroup(m_panel, info.formats) != nullptr;
    m_drag.point(
        {Target::Place::Chip, m_groupId, isGroup ? std::optional(edgeOf(info)) : std::nullopt});
    return DropProposal::Move;
}

void ChipDropDelegate::dropExited()
{
    for (const std::optional<Edge> edge :
         {std::optional<Edge>(), std::optional(Edge::Leading), std::optional(Edge::Trailing)})
        m_drag.leave({Target::Place::Chip, m_groupId, edge});
}

bool ChipDropDelegate::performDrop(const ConsoleDropInfo& info)
{
    const bool isValid = validateDrop(info);
    if (isValid) {
        const TerminalGroup* group = m_panel.group(m_groupId);
        if (const ConsolePane* pane = m_drag.draggedPane(m_panel, info.formats))
            m_panel.move(pane, group, group->panes().size());
        else
            moveGroup(m_panel, m_drag.draggedGroup(m_panel, info.formats),
                      beside(indexOf(m_panel, group).value_or(0), edgeOf(info)));
    }
    m_drag.finish();
    return isValid;
}

HeaderDropDelegate::HeaderDropDelegate(ConsoleDrag& drag, TerminalPanel& panel)
    : m_drag(drag)
    , m_panel(panel)
{
}

bool HeaderDropDelegate::validateDrop(const ConsoleDropInfo& info) const
{
    return m_drag.draggedPane(m_panel, info.formats) || m_drag.draggedGroup(m_panel, info.formats);
}

DropProposal HeaderDropDelegate::dropUpdated(const ConsoleDropInfo& info)
{
    if (!validateDrop(info))
        return DropProposal::Forbidden;
    m_drag.point({Target::Place::NewTab, {}, {}});
    return DropProposal::Move;
}

void HeaderDropDelegate::dropExited()
{
    m_drag.leave({Target::Place::NewTab, {}, {}});
}

bool HeaderDropDelegate::performDrop(const ConsoleDropInfo& info)
{
    const bool isValid = validateDrop(info);
    if (const ConsolePane* pane = m_drag.draggedPane(m_panel, info.formats))
        m_panel.moveToNewGroup(pane, std::nullopt);
    else if (const TerminalGroup* group = m_drag.draggedGroup(m_panel, info.formats))
        moveGroup(m_panel, group, m_panel.groups().size());
    m_drag.finish();
    return isValid;
}

} // namespace Bralto
