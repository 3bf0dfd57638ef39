#pragma once

#include "Browser/BrowserTabs.h"
#include "Workspace/Workspace.h"

namespace Bralto {

/// The page tabs of a workspace, for the tools that drive them.
class WorkspaceBrowsers final : public BrowserTabs {
public:
    /// `workspace` outlives this object.
    explicit WorkspaceBrowsers(Workspace& workspace);

    [[nodiscard]] std::vector<std::shared_ptr<BrowserTab>> browsers() const override;
    [[nodiscard]] std::shared_ptr<BrowserTab> visibleBrowser() const override;
    [[nodiscard]] QString activeTabId() const override;
    [[nodiscard]] QString splitTabId() const override;
    [[nodiscard]] std::shared_ptr<BrowserTab> openBrowser(const QUrl& url) override;
    bool closeBrowser(const QString& id) override;

private:
    Workspace& m_workspace;
};

} // namespace Bralto
