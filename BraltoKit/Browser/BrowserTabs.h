#pragma once

#include <QString>
#include <QUrl>

#include <memory>
#include <vector>

namespace Bralto {

class BrowserTab;

/// The browser tabs of one project's window, for whoever drives them. Main thread. A tab that was
/// closed lives on as long as it is held, without a page.
class BrowserTabs {
public:
    virtual ~BrowserTabs() = default;

    /// In the order of the tab bar.
    [[nodiscard]] virtual std::vector<std::shared_ptr<BrowserTab>> browsers() const = 0;
    /// The focused tab, else the active one, else the one in the split, whichever is first a page.
    [[nodiscard]] virtual std::shared_ptr<BrowserTab> visibleBrowser() const = 0;
    [[nodiscard]] virtual QString activeTabId() const = 0; ///< Of any kind of tab.
    [[nodiscard]] virtual QString splitTabId() const = 0;
    /// A new tab beside the active one becomes the active one; the keyboard stays where it is.
    /// Null if it could not be made.
    [[nodiscard]] virtual std::shared_ptr<BrowserTab> openBrowser(const QUrl& url) = 0;
    /// False if no such tab is open.
    virtual bool closeBrowser(const QString& id) = 0;
};

} // namespace Bralto
