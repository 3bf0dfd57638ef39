#pragma once

#include "Browser/BrowserTab.h"
#include "Browser/BrowserTabs.h"

#include <QStringList>

#include <algorithm>

namespace Bralto {

/// Tabs in the order and the places that a test gives them.
class FakeBrowserTabs final : public BrowserTabs {
public:
    explicit FakeBrowserTabs(const BrowserServices& services)
        : m_services(services)
    {
    }

    [[nodiscard]] std::vector<std::shared_ptr<BrowserTab>> browsers() const override
    {
        return tabs;
    }
    [[nodiscard]] std::shared_ptr<BrowserTab> visibleBrowser() const override { return visible; }
    [[nodiscard]] QString activeTabId() const override { return active; }
    [[nodiscard]] QString splitTabId() const override { return split; }
    [[nodiscard]] std::shared_ptr<BrowserTab> openBrowser(const QUrl& url) override
    {
        return isFull ? nullptr : add(url);
    }
    bool closeBrowser(const QString& id) override
    {
        const auto found = std::ranges::find(tabs, id, &BrowserTab::id);
        if (found == tabs.end())
            return false;
        const std::shared_ptr<BrowserTab> tab = *found;
        tabs.erase(found);
        if (visible == tab)
            visible = nullptr;
        tab->close();
        return true;
    }

    /// A tab that is the last and, as a user's new one, on the screen.
    std::shared_ptr<BrowserTab> add(const QUrl& url, BrowserTab::Load load = BrowserTab::Load::Now)
    {
        tabs.push_back(std::make_shared<BrowserTab>(m_services, url, load));
        visible = tabs.back();
        active = visible->id();
        return visible;
    }

    std::vector<std::shared_ptr<BrowserTab>> tabs;
    std::shared_ptr<BrowserTab> visible;
    QString active;
    QString split;
    bool isFull = false;

private:
    BrowserServices m_services;
};

} // namespace Bralto
