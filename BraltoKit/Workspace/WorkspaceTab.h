#pragma once

#include "Browser/BrowserTab.h"
#include "Editor/EditorDocument.h"

#include <QString>

#include <memory>
#include <optional>
#include <variant>

namespace Bralto {

/// One tab of the editor area: a document or a page. A handle; copies name the same tab.
class WorkspaceTab {
public:
    explicit WorkspaceTab(std::shared_ptr<EditorDocument> document);
    explicit WorkspaceTab(std::shared_ptr<BrowserTab> browser);

    [[nodiscard]] const QString& id() const;
    [[nodiscard]] EditorDocument* document() const;                  ///< Null for a page.
    [[nodiscard]] BrowserTab* browser() const;                       ///< Null for a document.
    [[nodiscard]] std::shared_ptr<BrowserTab> sharedBrowser() const; ///< The same, held.
    /// What shows on the tab: the file's name; the page's title, before it
    /// has one its host.
    [[nodiscard]] QString title() const;
    /// What the session keeps of it: "file:" or "web:" and where it is; absent for a blank page.
    [[nodiscard]] std::optional<QString> sessionToken() const;

    bool operator==(const WorkspaceTab& other) const { return id() == other.id(); }

private:
    // Shared, since a view may still show a tab in the turn in which it is closed.
    std::variant<std::shared_ptr<EditorDocument>, std::shared_ptr<BrowserTab>> m_content;
};

} // namespace Bralto
