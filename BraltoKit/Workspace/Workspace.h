#pragma once

#include "Base/AppPaths.h"
#include "Base/Clock.h"
#include "Base/DefaultsStore.h"
#include "Base/Desktop.h"
#include "Base/Dialogs.h"
#include "Base/Expected.h"
#include "Base/Scheduler.h"
#include "BraltoShared/BraltoLink.h"
#include "Editor/FileNode.h"
#include "Projects/SpaceTheme.h"
#include "Terminals/TerminalPanel.h"
#include "Workspace/FocusArea.h"
#include "Workspace/FolderPresence.h"
#include "Workspace/SessionStore.h"
#include "Workspace/WorkspaceTab.h"

#include <QObject>
#include <QSet>
#include <QStringList>
#include <QThreadPool>

#include <map>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace Bralto {

/// What the sidebar shows as selected.
struct SidebarItem {
    struct Open {
        QString tabId;
        bool operator==(const Open&) const = default;
    };
    struct File {
        QString path;
        bool operator==(const File&) const = default;
    };
    struct Folder {
        QString path;
        bool operator==(const Folder&) const = default;
    };

    std::variant<Open, File, Folder> target;

    bool operator==(const SidebarItem&) const = default;
};

/// Starts the applications of other projects.
class ProjectLauncher {
public:
    virtual ~ProjectLauncher() = default;

    /// Opens `folder` in its own process, with `files` (paths or addresses). Reports its own
    /// failure.
    virtual void launch(const QString& folder, const QStringList& files) = 0;
    /// The project's look changed: its bundle is brought up to date.
    virtual void refresh(const QString& folder) = 0;
    /// This process ends once it may.
    virtual void terminate() = 0;
};

/// Follows the version control of a folder.
class GitWatcher {
public:
    virtual ~GitWatcher() = default;
    virtual void watch(const QString& folder) = 0;
    virtual void refresh() = 0;
};

/// Why a project folder could not be made.
struct ProjectFolderError {
    enum class Kind { InvalidName, Exists, Failed };

    Kind kind = Kind::Failed;
    QString name;
    QString reason; ///< Of `Failed` only: the system's words.

    [[nodiscard]] QString title() const;
    [[nodiscard]] QString text() const;

    bool operator==(const ProjectFolderError&) const = default;
};

/// The one model of a process: its project's folder, tabs, panel, and everything that outlives a
/// launch. In the home application it has no root and serves the commands and the recent list.
/// Main thread. Its state is untouched after any failed file operation.
class Workspace final : public QObject {
    Q_OBJECT

public:
    struct Services {
        Defaults defaults;
        /// The home application's own domain, read by the migration only.
        const DefaultsStore& legacy;
        AppPaths paths;
        Scheduler& scheduler;
        const Clock& clock;
        Dialogs& dialogs;
        Desktop& desktop;
        ProjectLauncher& launcher;
        GitWatcher& git;
        FocusReader& focus;
        TerminalPanel::Services panel; ///< What every panel is made with.
        /// The project of this process's bundle; absent in the home application.
        std::optional<QString> folder;
        BrowserServices browser = {}; ///< Without pages nothing makes a blank tab.
    };

    enum class RestoreSession { No, Yes };

    static constexpr double SmallestSplit = 0.2;
    static constexpr double LargestSplit = 0.8;

    /// Everything in `services` outlives this object.
    Workspace(Services services, RestoreSession restore, QObject* parent = nullptr);
    ~Workspace() override;

    // State
    [[nodiscard]] const FileNode* root() const { return m_root.get(); } ///< Null without a project.
    [[nodiscard]] const std::vector<WorkspaceTab>& tabs() const { return m_tabs; }
    [[nodiscard]] const QString& activeTabId() const { return m_activeTabId; } ///< Empty if none.
    [[nodiscard]] const QString& splitTabId() const { return m_splitTabId; }   ///< Empty if none.
    [[nodiscard]] double splitFraction() const { return m_splitFraction; }
    [[nodiscard]] const QStringList& recentFolders() const
    {
        return m_recentFolders;
    } ///< Newest first.
    [[nodiscard]] const std::optional<SidebarItem>& sidebarSelection() const
    {
        return m_sidebarSelection;
    }
    [[nodiscard]] bool isSidebarVisible() const { return m_isSidebarVisible; }
    [[nodiscard]] const SpaceTheme& space() const { return m_space; }
    [[nodiscard]] const QSet<QString>& expandedFolders() const { return m_expandedFolders; }
    [[nodiscard]] bool isEditingSpace() const { return m_isEditingSpace; }
    [[nodiscard]] bool showHiddenFiles() const { return m_showHiddenFiles; }
    [[nodiscard]] bool autosaveEnabled() const { return m_autosaveEnabled; }
    [[nodiscard]] TerminalPanel& terminal() const { return *m_terminal; }
    [[nodiscard]] bool canShowPages() const { return m_services.browser.pages != nullptr; }
    /// The project's folder vanished while it was open. Its texts stay, and saving one says why it
    /// could not be; once the folder is back, everything goes on.
    [[nodiscard]] bool isRootMissing() const;

    // Accessors
    [[nodiscard]] std::optional<WorkspaceTab> tab(const QString& id) const;
    [[nodiscard]] std::optional<WorkspaceTab> activeTab() const;
    [[nodiscard]] std::optional<WorkspaceTab> splitTab() const;
    [[nodiscard]] std::optional<WorkspaceTab> focusedTab() const;
    [[nodiscard]] BrowserTab* visibleBrowser() const;
    [[nodiscard]] std::vector<EditorDocument*> documents() const;
    [[nodiscard]] std::optional<QString> selectedFolder() const;
    [[nodiscard]] QString relativePath(const QString& path) const;
    [[nodiscard]] FocusArea focusArea() const;

    // Opening
    /// Opens `files` here if `path` is this project; else the project in its own process.
    void openFolder(const QString& path, const QStringList& files);
    /// A folder as a project, a file here or in the project of its own folder.
    void open(const QString& path);
    void openFile(const QString& path);
    /// With the cursor at a line and column from 1; 0 leaves it where it was.
    void openFileAt(const QString& path, int line, int column);
    /// Leaves the project, which ends its process; `confirmDiscardingChanges` may keep it.
    void closeFolder();
    void presentOpenPanel();
    void rememberRecent(const QString& path);
    void clearRecents();

    // Tabs
    /// Puts a new tab behind the active one and activates it.
    void insert(const WorkspaceTab& tab);
    void insertPage(const QUrl& url); ///< A new page tab; an empty address is a blank one.
    void activate(const WorkspaceTab& tab);
    void close(const WorkspaceTab& tab); ///< Asks if the text can't be saved.
    void closeWithoutQuestion(const EditorDocument* document);
    void closeOthers(const WorkspaceTab& tab);
    void selectAdjacentTab(int offset);
    void toggleSplit();
    void openInSplit(const WorkspaceTab& tab);
    /// The tab that would best stand beside `tab`: the latest used of the other kind, else the
    /// latest used.
    [[nodiscard]] std::optional<WorkspaceTab> splitPartner(const WorkspaceTab& tab) const;
    void focus(const WorkspaceTab& tab);

    // Files
    void newInFocusedArea();
    void createFile(const std::optional<QString>& folder);
    void createFolder(const std::optional<QString>& folder);
    void rename(const QString& path);
    void moveToTrash(const QString& path);
    /// Copies on another thread, one after the other; the tree follows once a copy is there.
    void duplicate(const QString& path);
    void openInTerminal(const QString& path);
    void copyRelativePath(const QString& path);
    void refreshTree(); ///< A new root node; folders are listed again as they are looked at.
    void toggleExpanded(const QString& path);

    // Projects
    Expected<QString, ProjectFolderError> makeProjectFolder(const QString& name,
                                                            const QString& parent);
    std::optional<QString> createProject(const QString& parent);
    enum class StartClaude { No, Yes };
    std::optional<QString> createProject(const QString& name, const QString& parent,
                                         StartClaude startClaude);

    /// Carries out what another process asked for with an address. What it names must exist.
    void perform(const BraltoLink& link);

    // Settings
    void setSidebarSelection(const std::optional<SidebarItem>& item);
    void setSplitFraction(double fraction); ///< Clamped on every write.
    void setSidebarVisible(bool visible);
    void toggleSidebar();
    void setSpace(const SpaceTheme& space);
    void setEditingSpace(bool editing);
    void setShowHiddenFiles(bool show);
    void setAutosaveEnabled(bool enabled);

    // Keeping
    void persistSession();
    void persistTerminals();
    void saveAll();
    void markUsed();
    void syncWithDisk();
    /// Saves what is unsaved; whether all of it was, or the user gives up what was not.
    bool confirmDiscardingChanges(const std::vector<EditorDocument*>& documents);

    // Others' use
    /// The panel of a folder, or of the home folder; made from its file when first asked for.
    TerminalPanel& panel(const std::optional<QString>& folder);
    void openConsoleIfNew();
    /// Opens the panel at the pane that holds this conversation; whether there is one.
    bool revealClaudePane(const QString& claudeSessionId);

signals:
    /// The old root lives until every listener has returned.
    void rootChanged();
    void rootMissingChanged(bool missing);
    void tabsChanged();
    void activeTabChanged();
    void splitTabChanged();
    void splitFractionChanged(double fraction);
    void recentFoldersChanged();
    void sidebarSelectionChanged();
    void isSidebarVisibleChanged(bool visible);
    void spaceChanged();
    void expandedFoldersChanged();
    void isEditingSpaceChanged(bool editing);
    void showHiddenFilesChanged(bool show);
    void autosaveEnabledChanged(bool enabled);
    void terminalChanged();
    /// The tab's view takes the keyboard, after the turn of the event loop that asked for it.
    void focusRequested(const QString& tabId);

private:
    [[nodiscard]] QStringList restoreSession();
    [[nodiscard]] std::optional<WorkspaceTab> tabFor(const QString& token) const;
    [[nodiscard]] std::shared_ptr<EditorDocument> makeDocument(const QString& path) const;
    [[nodiscard]] std::vector<WorkspaceTab> documentTabsAt(const QString& path) const;
    [[nodiscard]] std::optional<std::size_t> indexOf(const QString& tabId) const;

    void setRoot(const QString& path);
    void rebuildRoot();
    void setTerminal(TerminalPanel& panel);
    void setActiveTabId(const QString& id);
    void setSplitTabId(const QString& id);
    void setRecentFolders(const QStringList& folders);
    void noteUsed(const QString& tabId);
    void selectTab(const std::optional<WorkspaceTab>& tab);
    void place(const WorkspaceTab& tab);
    void saveActiveDocument();
    void removeTab(const WorkspaceTab& tab);
    void finishDuplicate(const QString& path, const std::optional<QString>& failure);
    void report(const QString& title, const QString& text);

    Services m_services;
    std::unique_ptr<FileNode> m_root;
    std::unique_ptr<FolderPresence> m_rootPresence; ///< Null without a root.
    std::vector<WorkspaceTab> m_tabs;
    QString m_activeTabId;
    QString m_splitTabId;
    double m_splitFraction = 0.5;
    QStringList m_recentFolders;
    std::optional<SidebarItem> m_sidebarSelection;
    bool m_isSidebarVisible = true;
    SpaceTheme m_space;
    QSet<QString> m_expandedFolders;
    bool m_isEditingSpace = false;
    bool m_showHiddenFiles = false;
    bool m_autosaveEnabled = true;
    TerminalPanel* m_terminal = nullptr;
    std::map<QString, std::unique_ptr<TerminalPanel>> m_terminals; ///< By folder path.
    std::unique_ptr<TerminalPanel> m_firstPanel; ///< In front until a project's panel is; not kept.
    QStringList m_recentTabIds;                  ///< Activation order, newest first; not kept.
    QThreadPool m_copying;                       ///< One thread, so that no two copies take a name.
};

} // namespace Bralto
