#include "Workspace/Workspace.h"

#include "Base/Paths.h"
#include "Terminals/TerminalStore.h"

#include <QFileInfo>
#include <QSet>

namespace Bralto {

namespace {

/// What stands behind `prefix`; absent if `token` doesn't begin with it.
std::optional<QString> remainder(const QString& token, const char* prefix)
{
    const QLatin1String start(prefix);
    if (!token.startsWith(start))
        return std::nullopt;
    return token.mid(start.size());
}

QString names(const std::vector<EditorDocument*>& documents)
{
    QStringList result;
    for (const EditorDocument* document : documents)
        result.append(Paths::lastComponent(document->path()));
    return result.join(QStringLiteral(", "));
}

} // namespace

// --- restoring

QStringList Workspace::restoreSession()
{
    // The bundle alone chooses the project: the home application has no notion of a last one.
    if (!m_services.folder || !QFileInfo(*m_services.folder).isDir())
        return {};
    setRoot(Paths::standardised(*m_services.folder));
    const QString& folder = m_root->path();
    m_services.git.watch(folder);

    const auto session = SessionStore::load(m_services.defaults.shared, folder);
    QSet<QString> seen;
    for (const QString& token : session.tabs) {
        const auto tab = tabFor(token);
        // Two documents of one file would overwrite each other.
        if (!tab || (tab->document() && seen.contains(*tab->sessionToken())))
            continue;
        seen.insert(*tab->sessionToken());
        m_tabs.push_back(*tab);
    }
    const auto find = [this](const std::optional<QString>& token) {
        const auto found = std::find_if(m_tabs.begin(), m_tabs.end(), [&token](const auto& each) {
            return token && each.sessionToken() == token;
        });
        return found != m_tabs.end() ? std::optional(*found) : std::nullopt;
    };
    auto active = find(session.active);
    if (!active && !m_tabs.empty())
        active = m_tabs.front();
    if (active)
        m_activeTabId = active->id();
    selectTab(active);
    if (const auto split = find(session.split); split && split->id() != m_activeTabId)
        m_splitTabId = split->id();
    return SessionStore::chatSessions(session.tabs);
}

std::optional<WorkspaceTab> Workspace::tabFor(const QString& token) const
{
    if (const auto path = remainder(token, SessionStore::FilePrefix)) {
        if (!path->startsWith(u'/') || !QFileInfo::exists(*path))
            return std::nullopt;
        return WorkspaceTab(makeDocument(*path));
    }
    if (const auto address = remainder(token, SessionStore::WebPrefix)) {
        const QUrl url(*address, QUrl::StrictMode);
        if (!url.isValid() || url.isRelative())
            return std::nullopt;
        return WorkspaceTab(
            std::make_shared<BrowserTab>(m_services.browser, url, BrowserTab::Load::WhenNeeded));
    }
    return std::nullopt;
}

std::shared_ptr<EditorDocument> Workspace::makeDocument(const QString& path) const
{
    return std::make_shared<EditorDocument>(path, m_services.scheduler,
                                            [this] { return m_autosaveEnabled; });
}

// --- keeping

void Workspace::persistSession()
{
    if (!m_root)
        return;
    SessionStore::Session session;
    for (const WorkspaceTab& each : m_tabs) {
        if (const auto token = each.sessionToken())
            session.tabs.append(*token);
    }
    if (const auto active = activeTab())
        session.active = active->sessionToken();
    if (const auto split = splitTab())
        session.split = split->sessionToken();
    SessionStore::save(m_services.defaults.shared, session, m_root->path());
}

void Workspace::persistTerminals()
{
    for (const auto& [folder, panel] : m_terminals)
        TerminalStore::save(m_services.paths, folder, panel->snapshot());
}

void Workspace::saveAll()
{
    for (EditorDocument* document : documents())
        document->save();
}

void Workspace::syncWithDisk()
{
    for (EditorDocument* document : documents())
        document->reloadIfChangedOnDisk();
    refreshTree();
    m_services.git.refresh();
}

bool Workspace::confirmDiscardingChanges(const std::vector<EditorDocument*>& documents)
{
    std::vector<EditorDocument*> failed;
    for (EditorDocument* document : documents) {
        if (!document->hasUnsavedText())
            continue;
        document->save();
        if (document->saveError())
            failed.push_back(document);
    }
    if (failed.empty())
        return true;
    Alert alert;
    alert.title = QStringLiteral("Couldn’t save ") + names(failed);
    alert.text = *failed.front()->saveError();
    alert.buttons = {QStringLiteral("Keep Editing"), QStringLiteral("Discard Changes")};
    alert.lastIsDestructive = true;
    if (alert.text.isEmpty())
        alert.text = QStringLiteral("Your recent edits haven’t been written to disk.");
    return m_services.dialogs.show(alert) == 1;
}

// --- the root

void Workspace::closeFolder()
{
    if (!confirmDiscardingChanges(documents()))
        return;
    if (m_services.folder) {
        persistSession();
        persistTerminals();
        m_services.launcher.terminate();
        return;
    }
    persistTerminals();
    // The tabs live until every listener has returned.
    const auto closed = std::exchange(m_tabs, {});
    m_recentTabIds.clear();
    m_activeTabId.clear();
    m_splitTabId.clear();
    emit tabsChanged();
    emit activeTabChanged();
    emit splitTabChanged();
    selectTab(std::nullopt);
    setRoot({});
    setTerminal(panel(std::nullopt));
}

void Workspace::setRoot(const QString& path)
{
    m_rootPresence.reset();
    if (!path.isEmpty()) {
        m_rootPresence = std::make_unique<FolderPresence>(path);
        connect(m_rootPresence.get(), &FolderPresence::missingChanged, this, [this](bool missing) {
            rebuildRoot();
            emit rootMissingChanged(missing);
        });
    }
    const auto old = std::exchange(
        m_root,
        path.isEmpty() ? nullptr : std::make_unique<FileNode>(path, true, m_showHiddenFiles));
    m_expandedFolders.clear();
    emit rootChanged();
    emit expandedFoldersChanged();
    setSpace(path.isEmpty() ? SpaceTheme{} : SpaceStore::load(m_services.defaults.shared, path));
}

void Workspace::refreshTree()
{
    if (!m_root)
        return;
    const bool wasMissing = isRootMissing();
    m_rootPresence->check();
    // A folder that went or came back has brought its new node along.
    if (wasMissing == isRootMissing())
        rebuildRoot();
}

void Workspace::rebuildRoot()
{
    const auto old =
        std::exchange(m_root, std::make_unique<FileNode>(m_root->path(), true, m_showHiddenFiles));
    emit rootChanged();
}

void Workspace::toggleExpanded(const QString& path)
{
    if (!m_expandedFolders.remove(path))
        m_expandedFolders.insert(path);
    emit expandedFoldersChanged();
}

} // namespace Bralto
