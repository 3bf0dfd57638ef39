#include "Workspace/Workspace.h"

#include "Base/Paths.h"
#include "Projects/ProjectUse.h"
#include "Projects/RecentFolders.h"
#include "Terminals/TerminalStore.h"
#include "Workspace/SharedMigration.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace Bralto {

namespace {

// Keys of the defaults.
constexpr auto SplitFractionKey = "splitFraction";
constexpr auto SidebarVisibleKey = "sidebarVisible";
constexpr auto ShowHiddenFilesKey = "showHiddenFiles";
constexpr auto AutosaveKey = "autosave";
double clampedSplit(double fraction)
{
    return std::clamp(fraction, Workspace::SmallestSplit, Workspace::LargestSplit);
}

} // namespace

Workspace::Workspace(Services services, RestoreSession restore, QObject* parent)
    : QObject(parent)
    , m_services(std::move(services))
{
    m_copying.setMaxThreadCount(1);
    DefaultsStore& shared = m_services.defaults.shared;
    const DefaultsStore& standard = m_services.defaults.standard;
    m_splitFraction = clampedSplit(standard.number(SplitFractionKey).value_or(0.5));
    m_isSidebarVisible = standard.boolean(SidebarVisibleKey).value_or(true);
    SharedMigration::migrateIfNeeded(shared, m_services.legacy);

    m_firstPanel =
        std::make_unique<TerminalPanel>(m_services.paths.home(), std::nullopt, m_services.panel);
    m_terminal = m_firstPanel.get();
    m_showHiddenFiles = shared.boolean(ShowHiddenFilesKey).value_or(false);
    m_autosaveEnabled = shared.boolean(AutosaveKey).value_or(true);
    m_recentFolders = RecentFolders::load(shared);
    // Another process may open a project, and its list must not be overwritten with an older one.
    connect(&shared, &DefaultsStore::changed, this, [this](const QString& key) {
        if (key == QLatin1String(RecentFolders::Key))
            setRecentFolders(RecentFolders::load(m_services.defaults.shared));
    });
    if (restore == RestoreSession::No)
        return;

    const QStringList chats = restoreSession();
    setTerminal(panel(m_root ? std::optional(m_root->path()) : std::nullopt));
    if (chats.isEmpty())
        return;
    // Saved at once, so that no later launch adopts them again.
    m_terminal->adoptChats(chats);
    persistSession();
    persistTerminals();
}

Workspace::~Workspace()
{
    m_copying.waitForDone();
}

// --- accessors

bool Workspace::isRootMissing() const
{
    return m_rootPresence && m_rootPresence->isMissing();
}

std::optional<WorkspaceTab> Workspace::tab(const QString& id) const
{
    const auto index = indexOf(id);
    return index ? std::optional(m_tabs[*index]) : std::nullopt;
}

std::optional<WorkspaceTab> Workspace::activeTab() const
{
    return tab(m_activeTabId);
}

std::optional<WorkspaceTab> Workspace::splitTab() const
{
    return tab(m_splitTabId);
}

std::optional<WorkspaceTab> Workspace::focusedTab() const
{
    if (!m_splitTabId.isEmpty() && m_services.focus.focusedTabId() == m_splitTabId)
        return splitTab();
    return activeTab();
}

BrowserTab* Workspace::visibleBrowser() const
{
    for (const auto& candidate : {focusedTab(), activeTab(), splitTab()}) {
        if (candidate && candidate->browser())
            return candidate->browser();
    }
    return nullptr;
}

std::vector<EditorDocument*> Workspace::documents() const
{
    std::vector<EditorDocument*> result;
    for (const WorkspaceTab& each : m_tabs) {
        if (EditorDocument* document = each.document())
            result.push_back(document);
    }
    return result;
}

std::optional<QString> Workspace::selectedFolder() const
{
    if (m_sidebarSelection) {
        if (const auto* folder = std::get_if<SidebarItem::Folder>(&m_sidebarSelection->target))
            return folder->path;
        if (const auto* file = std::get_if<SidebarItem::File>(&m_sidebarSelection->target))
            return Paths::parent(file->path);
    }
    return m_root ? std::optional(m_root->path()) : std::nullopt;
}

QString Workspace::relativePath(const QString& path) const
{
    QString standardised = Paths::standardised(path);
    if (!m_root)
        return standardised;
    const QString& root = m_root->path();
    if (standardised == root)
        return QStringLiteral(".");
    if (!Paths::isBelow(standardised, root))
        return standardised;
    return standardised.mid(root.endsWith(u'/') ? root.size() : root.size() + 1);
}

FocusArea Workspace::focusArea() const
{
    return m_services.focus.current();
}

std::optional<std::size_t> Workspace::indexOf(const QString& tabId) const
{
    const auto found = std::find_if(m_tabs.begin(), m_tabs.end(),
                                    [&tabId](const auto& each) { return each.id() == tabId; });
    if (found == m_tabs.end())
        return std::nullopt;
    return std::size_t(found - m_tabs.begin());
}

// --- settings

void Workspace::setSidebarSelection(const std::optional<SidebarItem>& item)
{
    if (item == m_sidebarSelection)
        return;
    m_sidebarSelection = item;
    emit sidebarSelectionChanged();
}

void Workspace::setSplitFraction(double fraction)
{
    if (std::isnan(fraction))
        return;
    const double clamped = clampedSplit(fraction);
    m_services.defaults.standard.set(SplitFractionKey, clamped);
    if (clamped == m_splitFraction)
        return;
    m_splitFraction = clamped;
    emit splitFractionChanged(clamped);
}

void Workspace::setSidebarVisible(bool visible)
{
    if (visible == m_isSidebarVisible)
        return;
    m_isSidebarVisible = visible;
    m_services.defaults.standard.set(SidebarVisibleKey, visible);
    emit isSidebarVisibleChanged(visible);
}

void Workspace::toggleSidebar()
{
    setSidebarVisible(!m_isSidebarVisible);
}

void Workspace::setSpace(const SpaceTheme& space)
{
    if (space == m_space)
        return;
    m_space = space;
    if (m_root) {
        SpaceStore::save(m_services.defaults.shared, space, m_root->path());
        m_services.launcher.refresh(m_root->path());
    }
    emit spaceChanged();
}

void Workspace::setEditingSpace(bool editing)
{
    if (editing == m_isEditingSpace)
        return;
    m_isEditingSpace = editing;
    emit isEditingSpaceChanged(editing);
}

void Workspace::setShowHiddenFiles(bool show)
{
    if (show == m_showHiddenFiles)
        return;
    m_showHiddenFiles = show;
    m_services.defaults.shared.set(ShowHiddenFilesKey, show);
    emit showHiddenFilesChanged(show);
    refreshTree();
}

void Workspace::setAutosaveEnabled(bool enabled)
{
    if (enabled == m_autosaveEnabled)
        return;
    m_autosaveEnabled = enabled;
    m_services.defaults.shared.set(AutosaveKey, enabled);
    emit autosaveEnabledChanged(enabled);
}

// --- the recent folders

void Workspace::rememberRecent(const QString& path)
{
    const QString folder = Paths::standardised(path);
    DefaultsStore& shared = m_services.defaults.shared;
    ProjectUse::markUsed(shared, folder, m_services.clock.now());
    const QStringList folders = RecentFolders::remembering(m_recentFolders, folder);
    setRecentFolders(folders);
    shared.setStrings(RecentFolders::Key, folders);
}

void Workspace::clearRecents()
{
    m_services.defaults.shared.remove(RecentFolders::Key);
    setRecentFolders({});
}

void Workspace::setRecentFolders(const QStringList& folders)
{
    if (folders == m_recentFolders)
        return;
    m_recentFolders = folders;
    emit recentFoldersChanged();
}

void Workspace::markUsed()
{
    const auto project = m_root ? std::optional(m_root->path()) : m_services.folder;
    if (project) {
        ProjectUse::markUsed(m_services.defaults.shared, *project, m_services.clock.now());
    }
}

// --- the panel

TerminalPanel& Workspace::panel(const std::optional<QString>& folder)
{
    const QString key = Paths::standardised(folder.value_or(m_services.paths.home()));
    auto& panel = m_terminals[key];
    if (!panel) {
        panel = std::make_unique<TerminalPanel>(key, TerminalStore::load(m_services.paths, key),
                                                m_services.panel);
    }
    return *panel;
}

void Workspace::openConsoleIfNew()
{
    if (!m_terminal->hasPanes())
        m_terminal->show();
}

bool Workspace::revealClaudePane(const QString& claudeSessionId)
{
    const ConsolePane* pane = m_terminal->paneOfConversation(claudeSessionId.toLower());
    if (!pane)
        return false;
    m_terminal->show();
    m_terminal->focus(pane);
    return true;
}

void Workspace::setTerminal(TerminalPanel& panel)
{
    if (&panel == m_terminal)
        return;
    m_terminal = &panel;
    emit terminalChanged();
}

void Workspace::report(const QString& title, const QString& text)
{
    m_services.dialogs.report({title, text});
}

} // namespace Bralto
