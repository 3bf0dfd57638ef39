#include "Workspace/WorkspaceBrowsers.h"

namespace Bralto {

WorkspaceBrowsers::WorkspaceBrowsers(Workspace& workspace)
    : m_workspace(workspace)
{
}

std::vector<std::shared_ptr<BrowserTab>> WorkspaceBrowsers::browsers() const
{
    std::vector<std::shared_ptr<BrowserTab>> result;
    for (const WorkspaceTab& tab : m_workspace.tabs()) {
        if (auto browser = tab.sharedBrowser())
            result.push_back(std::move(browser));
    }
    return result;
}

std::shared_ptr<BrowserTab> WorkspaceBrowsers::visibleBrowser() const
{
    const BrowserTab* visible = m_workspace.visibleBrowser();
    const auto tab = visible ? m_workspace.tab(visible->id()) : std::nullopt;
    return tab ? tab->sharedBrowser() : nullptr;
}

QString WorkspaceBrowsers::activeTabId() const
{
    return m_workspace.activeTabId();
}

QString WorkspaceBrowsers::splitTabId() const
{
    return m_workspace.splitTabId();
}

std::shared_ptr<BrowserTab> WorkspaceBrowsers::openBrowser(const QUrl& url)
{
    m_workspace.insertPage(url);
    const auto active = m_workspace.activeTab();
    return active ? active->sharedBrowser() : nullptr;
}

bool WorkspaceBrowsers::closeBrowser(const QString& id)
{
    const auto tab = m_workspace.tab(id);
    if (!tab || !tab->browser())
        return false;
    m_workspace.close(*tab);
    return true;
}

} // namespace Bralto
