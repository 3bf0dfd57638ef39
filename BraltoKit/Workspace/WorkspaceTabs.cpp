#include "Workspace/Workspace.h"

#include "Base/Paths.h"

namespace Bralto {

// --- opening and activating

void Workspace::insert(const WorkspaceTab& tab)
{
    saveActiveDocument();
    place(tab);
    activate(tab);
}

void Workspace::insertPage(const QUrl& url)
{
    insert(WorkspaceTab(std::make_shared<BrowserTab>(m_services.browser, url)));
}

/// Puts a new tab behind the active one, or at the end if none is active.
void Workspace::place(const WorkspaceTab& tab)
{
    const auto active = indexOf(m_activeTabId);
    const auto position = active ? std::ptrdiff_t(*active) + 1 : std::ssize(m_tabs);
    m_tabs.insert(m_tabs.begin() + position, tab);
    emit tabsChanged();
}

void Workspace::activate(const WorkspaceTab& tab)
{
    // A copy: `tab` may be an element of a list that a listener changes.
    const WorkspaceTab next = tab;
    if (!indexOf(next.id()))
        return;
    noteUsed(next.id());
    if (next.id() == m_splitTabId) {
        selectTab(next);
        return;
    }
    if (next.id() == m_activeTabId)
        return;
    saveActiveDocument();
    setActiveTabId(next.id());

    const auto* file =
        m_sidebarSelection ? std::get_if<SidebarItem::File>(&m_sidebarSelection->target) : nullptr;
    if (!file || !next.document() || file->path != next.document()->path())
        selectTab(next);
    persistSession();
}

void Workspace::selectAdjacentTab(int offset)
{
    std::vector<WorkspaceTab> candidates;
    std::optional<std::ptrdiff_t> active;
    for (const WorkspaceTab& each : m_tabs) {
        if (each.id() == m_splitTabId)
            continue;
        if (each.id() == m_activeTabId)
            active = std::ssize(candidates);
        candidates.push_back(each);
    }
    if (candidates.size() < 2 || !active)
        return;
    const auto count = std::ssize(candidates);
    const WorkspaceTab& next =
        candidates[std::size_t(((*active + offset) % count + count) % count)];
    activate(next);
    focus(next);
}

void Workspace::focus(const WorkspaceTab& tab)
{
    // A turn later, since the view of a new tab is not there yet.
    m_services.scheduler.after(std::chrono::milliseconds(0), this, [this, id = tab.id()] {
        if (indexOf(id))
            emit focusRequested(id);
    });
}

// --- closing

void Workspace::close(const WorkspaceTab& tab)
{
    const WorkspaceTab closing = tab;
    if (closing.document() && !confirmDiscardingChanges({closing.document()}))
        return;
    removeTab(closing);
}

void Workspace::closeWithoutQuestion(const EditorDocument* document)
{
    for (const WorkspaceTab& each : m_tabs) {
        if (each.document() == document) {
            removeTab(WorkspaceTab(each));
            return;
        }
    }
}

void Workspace::closeOthers(const WorkspaceTab& tab)
{
    const WorkspaceTab kept = tab;
    const std::vector<WorkspaceTab> before = m_tabs;
    for (const WorkspaceTab& each : before) {
        if (each != kept)
            close(each);
    }
    activate(kept);
}

/// Takes the tab out. `tab` is no element of `m_tabs`, and keeps the content until all have heard.
void Workspace::removeTab(const WorkspaceTab& tab)
{
    const auto index = indexOf(tab.id());
    if (!index)
        return;
    const bool wasActive = tab.id() == m_activeTabId;
    const auto survivor = wasActive ? splitTab() : std::nullopt;
    m_tabs.erase(m_tabs.begin() + std::ptrdiff_t(*index));
    m_recentTabIds.removeAll(tab.id());

    const bool endsSplit = tab.id() == m_splitTabId || survivor;
    if (endsSplit)
        m_splitTabId.clear();
    std::optional<WorkspaceTab> next = survivor;
    if (wasActive && !next && !m_tabs.empty())
        next = m_tabs[std::min(*index, m_tabs.size() - 1)];
    if (wasActive)
        m_activeTabId = next ? next->id() : QString();

    emit tabsChanged();
    if (endsSplit)
        emit splitTabChanged();
    if (wasActive) {
        emit activeTabChanged();
        selectTab(next);
    }
    if (BrowserTab* browser = tab.browser())
        browser->close();
    persistSession();
}

// --- the split

void Workspace::toggleSplit()
{
    if (!m_splitTabId.isEmpty()) {
        setSplitTabId({});
        persistSession();
        return;
    }
    const auto active = activeTab();
    if (!active) {
        if (canShowPages())
            insertPage({});
        return;
    }
    if (const auto partner = splitPartner(*active)) {
        openInSplit(*partner);
        return;
    }
    if (!canShowPages())
        return;
    const WorkspaceTab blank(std::make_shared<BrowserTab>(m_services.browser));
    place(blank);
    setSplitTabId(blank.id());
    persistSession();
}

void Workspace::openInSplit(const WorkspaceTab& tab)
{
    const WorkspaceTab partner = tab;
    if (!indexOf(partner.id()))
        return;
    if (m_activeTabId.isEmpty() || partner.id() == m_activeTabId) {
        if (m_activeTabId.isEmpty())
            activate(partner);
        if (m_splitTabId.isEmpty())
            toggleSplit();
        return;
    }
    if (partner.id() == m_splitTabId)
        return;
    setSplitTabId(partner.id());
    noteUsed(partner.id());
    persistSession();
}

std::optional<WorkspaceTab> Workspace::splitPartner(const WorkspaceTab& tab) const
{
    std::vector<WorkspaceTab> candidates;
    for (const QString& id : m_recentTabIds) {
        if (const auto index = indexOf(id))
            candidates.push_back(m_tabs[*index]);
    }
    candidates.insert(candidates.end(), m_tabs.begin(), m_tabs.end());
    std::erase(candidates, tab);
    if (candidates.empty())
        return std::nullopt;
    const auto other = std::find_if(candidates.begin(), candidates.end(), [&tab](const auto& each) {
        return (each.browser() == nullptr) != (tab.browser() == nullptr);
    });
    return other != candidates.end() ? *other : candidates.front();
}

// --- state

void Workspace::saveActiveDocument()
{
    if (const auto active = activeTab(); active && active->document())
        active->document()->save();
}

void Workspace::noteUsed(const QString& tabId)
{
    m_recentTabIds.removeAll(tabId);
    m_recentTabIds.prepend(tabId);
}

void Workspace::selectTab(const std::optional<WorkspaceTab>& tab)
{
    setSidebarSelection(tab ? std::optional(SidebarItem{SidebarItem::Open{tab->id()}})
                            : std::nullopt);
}

void Workspace::setActiveTabId(const QString& id)
{
    if (id == m_activeTabId)
        return;
    m_activeTabId = id;
    emit activeTabChanged();
}

void Workspace::setSplitTabId(const QString& id)
{
    if (id == m_splitTabId)
        return;
    m_splitTabId = id;
    emit splitTabChanged();
}

} // namespace Bralto
