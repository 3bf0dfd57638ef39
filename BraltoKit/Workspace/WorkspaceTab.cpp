#include "Workspace/WorkspaceTab.h"

#include "Base/Paths.h"
#include "Workspace/SessionStore.h"

namespace Bralto {

WorkspaceTab::WorkspaceTab(std::shared_ptr<EditorDocument> document)
    : m_content(std::move(document))
{
}

WorkspaceTab::WorkspaceTab(std::shared_ptr<BrowserTab> browser)
    : m_content(std::move(browser))
{
}

const QString& WorkspaceTab::id() const
{
    return std::visit([](const auto& content) -> const QString& { return content->id(); },
                      m_content);
}

EditorDocument* WorkspaceTab::document() const
{
    const auto* content = std::get_if<std::shared_ptr<EditorDocument>>(&m_content);
    return content ? content->get() : nullptr;
}

BrowserTab* WorkspaceTab::browser() const
{
    const auto* content = std::get_if<std::shared_ptr<BrowserTab>>(&m_content);
    return content ? content->get() : nullptr;
}

std::shared_ptr<BrowserTab> WorkspaceTab::sharedBrowser() const
{
    const auto* content = std::get_if<std::shared_ptr<BrowserTab>>(&m_content);
    return content ? *content : nullptr;
}

QString WorkspaceTab::title() const
{
    if (const EditorDocument* file = document())
        return Paths::lastComponent(file->path());
    const BrowserTab& page = *browser();
    return page.hasTitle() || page.url().host().isEmpty() ? page.title() : page.url().host();
}

std::optional<QString> WorkspaceTab::sessionToken() const
{
    if (const EditorDocument* file = document())
        return QLatin1String(SessionStore::FilePrefix) + file->path();
    const QUrl& url = browser()->url();
    if (url.isEmpty())
        return std::nullopt;
    return QLatin1String(SessionStore::WebPrefix) + url.toString(QUrl::FullyEncoded);
}

} // namespace Bralto
