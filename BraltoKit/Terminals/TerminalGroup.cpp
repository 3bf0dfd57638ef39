#include "Base/Uuid.h"
#include "Terminals/PaneName.h"
#include "Terminals/TerminalPanel.h"

#include <algorithm>

namespace Bralto {

TerminalGroup::TerminalGroup(std::vector<std::unique_ptr<ConsolePane>> panes,
                             std::optional<QString> name)
    : m_id(newUuid())
    , m_panes(std::move(panes))
    , m_name(std::move(name))
{
    if (!m_panes.empty())
        m_focusedPaneId = m_panes.front()->id();
    for (const auto& pane : m_panes)
        follow(pane.get());
}

TerminalGroup::~TerminalGroup() = default;

ConsolePane* TerminalGroup::focusedPane() const
{
    if (m_panes.empty())
        return nullptr;
    const auto focused = std::find_if(m_panes.begin(), m_panes.end(), [this](const auto& pane) {
        return pane->id() == m_focusedPaneId;
    });
    return focused != m_panes.end() ? focused->get() : m_panes.front().get();
}

QString TerminalGroup::title() const
{
    if (const auto name = PaneName::shown(m_name))
        return *name;
    QStringList labels;
    for (const auto& pane : m_panes)
        labels.append(pane->label());
    labels.removeDuplicates();
    return labels.join(QStringLiteral(" + "));
}

bool TerminalGroup::containsClaude() const
{
    return std::ranges::any_of(m_panes, [](const auto& pane) { return pane->isClaude(); });
}

void TerminalGroup::setName(const std::optional<QString>& name)
{
    if (name == m_name)
        return;
    m_name = name;
    emit titleChanged();
}

void TerminalGroup::setFocusedPaneId(const QString& id)
{
    if (id == m_focusedPaneId)
        return;
    m_focusedPaneId = id;
    emit focusedPaneChanged();
}

void TerminalGroup::putQuietly(std::unique_ptr<ConsolePane> pane, std::size_t index)
{
    follow(pane.get());
    m_focusedPaneId = pane->id();
    const auto place = std::ptrdiff_t(std::min(index, m_panes.size()));
    m_panes.insert(m_panes.begin() + place, std::move(pane));
}

std::unique_ptr<ConsolePane> TerminalGroup::takeQuietly(const ConsolePane* pane)
{
    const auto index = indexOf(pane);
    if (!index)
        return nullptr;
    std::unique_ptr<ConsolePane> taken = std::move(m_panes[*index]);
    m_panes.erase(m_panes.begin() + std::ptrdiff_t(*index));
    disconnect(taken.get(), nullptr, this, nullptr);
    if (taken->id() == m_focusedPaneId)
        m_focusedPaneId = m_panes.empty() ? QString() : m_panes[*index > 0 ? *index - 1 : 0]->id();
    return taken;
}

void TerminalGroup::announce()
{
    emit panesChanged();
    emit focusedPaneChanged();
    emit titleChanged();
}

void TerminalGroup::insert(std::unique_ptr<ConsolePane> pane, std::size_t index)
{
    putQuietly(std::move(pane), index);
    announce();
}

std::unique_ptr<ConsolePane> TerminalGroup::detach(const ConsolePane* pane)
{
    std::unique_ptr<ConsolePane> detached = takeQuietly(pane);
    if (detached)
        announce();
    return detached;
}

std::optional<std::size_t> TerminalGroup::indexOf(const ConsolePane* pane) const
{
    const auto found = std::find_if(m_panes.begin(), m_panes.end(),
                                    [pane](const auto& each) { return each.get() == pane; });
    if (found == m_panes.end())
        return std::nullopt;
    return std::size_t(found - m_panes.begin());
}

GroupSnapshot TerminalGroup::snapshot() const
{
    GroupSnapshot snapshot;
    snapshot.name = m_name;
    for (std::size_t index = 0; index < m_panes.size(); ++index) {
        if (m_panes[index]->id() == m_focusedPaneId)
            snapshot.focusedIndex = int(index);
        snapshot.panes.push_back(m_panes[index]->snapshot());
    }
    return snapshot;
}

void TerminalGroup::follow(const ConsolePane* pane)
{
    connect(pane, &ConsolePane::labelChanged, this, &TerminalGroup::titleChanged);
}

} // namespace Bralto
