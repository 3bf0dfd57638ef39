#include "App/BraltoCommands.h"

#include "Base/Paths.h"

namespace Bralto {

namespace {

using Shortcuts::Command;
using Shortcuts::Switched;

enum class Enabled { No, Yes };

Enabled when(bool condition)
{
    return condition ? Enabled::Yes : Enabled::No;
}

Switched on(bool condition)
{
    return condition ? Switched::On : Switched::Off;
}

MenuItem item(Command command, Enabled enabled, std::function<void()> run,
              Switched state = Switched::Off)
{
    return {command,
            Shortcuts::title(command, state),
            enabled == Enabled::Yes,
            std::nullopt,
            std::move(run),
            {}};
}

MenuItem toggle(Command command, bool checked, std::function<void()> run)
{
    MenuItem result = item(command, Enabled::Yes, std::move(run));
    result.isChecked = checked;
    return result;
}

MenuItem separator()
{
    return {};
}

} // namespace

BraltoCommands::BraltoCommands(Services services)
    : m_services(std::move(services))
{
}

std::vector<Menu> BraltoCommands::menus() const
{
    return {fileMenu(), viewMenu(), terminalMenu(), goMenu()};
}

Menu BraltoCommands::fileMenu() const
{
    Workspace& workspace = m_services.workspace;
    const Enabled project = when(workspace.root() != nullptr);
    EditorDocument* document = workspace.activeTab() ? workspace.activeTab()->document() : nullptr;

    Menu menu{QStringLiteral("File"), {}};
    std::vector<MenuItem>& items = menu.items;
    items.push_back(
        item(Command::New, Enabled::Yes, [&workspace] { workspace.newInFocusedArea(); }));
    items.push_back(
        item(Command::NewFile, project, [&workspace] { workspace.createFile(std::nullopt); }));
    if (workspace.canShowPages())
        items.push_back(
            item(Command::NewBrowserTab, Enabled::Yes, [&workspace] { workspace.insertPage({}); }));
    items.push_back(
        item(Command::NewFolder, project, [&workspace] { workspace.createFolder(std::nullopt); }));
    items.push_back(separator());
    items.push_back(
        item(Command::Open, Enabled::Yes, [&workspace] { workspace.presentOpenPanel(); }));
    if (m_services.openHome)
        items.push_back(item(Command::AllProjects, Enabled::Yes, m_services.openHome));
    items.push_back(recentMenu());
    items.push_back(separator());
    items.push_back(item(Command::Close, Enabled::Yes, [this] { closeFocused(); }));
    items.push_back(item(Command::CloseFolder, project, [&workspace] { workspace.closeFolder(); }));
    items.push_back(separator());
    items.push_back(item(Command::Save, when(document != nullptr), [document] {
        if (document)
            document->save();
    }));
    items.push_back(item(Command::SaveAll, when(!workspace.documents().empty()),
                         [&workspace] { workspace.saveAll(); }));
    items.push_back(toggle(Command::SaveAutomatically, workspace.autosaveEnabled(), [&workspace] {
        workspace.setAutosaveEnabled(!workspace.autosaveEnabled());
    }));
    items.push_back(separator());
    items.push_back(item(Command::Quit, Enabled::Yes, m_services.quit));
    return menu;
}

MenuItem BraltoCommands::recentMenu() const
{
    Workspace& workspace = m_services.workspace;
    MenuItem menu{
        Command::OpenRecent, Shortcuts::title(Command::OpenRecent), true, std::nullopt, {}, {}};
    for (const QString& folder : workspace.recentFolders()) {
        menu.items.push_back({std::nullopt,
                              Paths::lastComponent(folder),
                              true,
                              std::nullopt,
                              [&workspace, folder] { workspace.openFolder(folder, {}); },
                              {}});
    }
    if (!menu.items.empty()) {
        menu.items.push_back(separator());
        menu.items.push_back(
            item(Command::ClearMenu, Enabled::Yes, [&workspace] { workspace.clearRecents(); }));
    }
    menu.isEnabled = !menu.items.empty();
    return menu;
}

Menu BraltoCommands::viewMenu() const
{
    Workspace& workspace = m_services.workspace;
    TerminalPanel& terminal = workspace.terminal();
    const Enabled project = when(workspace.root() != nullptr);
    Zoom& zoom = m_services.zoom;
    const auto area = m_services.zoomArea;

    Menu menu{QStringLiteral("View"), {}};
    std::vector<MenuItem>& items = menu.items;
    items.push_back(item(
        Command::ToggleSidebar, project, [&workspace] { workspace.toggleSidebar(); },
        on(workspace.isSidebarVisible())));
    items.push_back(item(
        Command::ToggleTerminal, Enabled::Yes,
        [&terminal] { terminal.isVisible() ? terminal.hide() : terminal.show(); },
        on(terminal.isVisible())));
    items.push_back(item(
        Command::ToggleTerminalSize, project, [&terminal] { terminal.toggleMaximized(); },
        on(terminal.isMaximized())));
    items.push_back(item(
        Command::ToggleSplit, project, [&workspace] { workspace.toggleSplit(); },
        on(!workspace.splitTabId().isEmpty())));
    items.push_back(separator());
    items.push_back(toggle(Command::ShowHiddenFiles, workspace.showHiddenFiles(), [&workspace] {
        workspace.setShowHiddenFiles(!workspace.showHiddenFiles());
    }));
    items.push_back(separator());
    items.push_back(item(Command::ZoomIn, project, [&zoom, area] { zoom.zoomIn(area()); }));
    items.push_back(item(Command::ZoomOut, project, [&zoom, area] { zoom.zoomOut(area()); }));
    items.push_back(item(Command::ActualSize, project, [&zoom, area] { zoom.set(area(), 1.0); }));
    return menu;
}

Menu BraltoCommands::terminalMenu() const
{
    Workspace& workspace = m_services.workspace;
    TerminalPanel& terminal = workspace.terminal();
    const TerminalGroup* group = terminal.activeGroup();
    ConsolePane* pane = group ? group->focusedPane() : nullptr;
    const bool isChat = pane && pane->chat();
    const bool canSwap = pane && pane->isClaude() && !pane->isSwapping();

    Menu menu{QStringLiteral("Terminal"), {}};
    menu.items.push_back(item(
        Command::ToggleTerminal, Enabled::Yes,
        [&terminal] { terminal.isVisible() ? terminal.hide() : terminal.show(); },
        on(terminal.isVisible())));
    menu.items.push_back(item(Command::NewClaudeBeside, Enabled::Yes,
                              [&terminal] { terminal.addPane(PaneKind::Claude); }));
    menu.items.push_back(item(Command::NewClaudeChat, when(workspace.root() != nullptr),
                              [&terminal] { terminal.addPane(PaneKind::Chat); }));
    menu.items.push_back(item(Command::NewShellBeside, Enabled::Yes,
                              [&terminal] { terminal.addPane(PaneKind::Shell); }));
    menu.items.push_back(item(Command::NewTerminalTab, Enabled::Yes,
                              [&terminal] { terminal.newTab(std::nullopt); }));
    menu.items.push_back(separator());
    menu.items.push_back(item(
        Command::ToggleChatView, when(canSwap), [&terminal, pane] { terminal.toggleView(pane); },
        on(isChat)));
    menu.items.push_back(item(Command::StylePane, when(pane && terminal.isVisible()), [pane] {
        if (pane)
            pane->setEditingStyle(!pane->isEditingStyle());
    }));
    menu.items.push_back(separator());
    menu.items.push_back(item(Command::KillTerminal, when(terminal.hasPanes()),
                              [&terminal] { terminal.closeFocused(); }));
    return menu;
}

Menu BraltoCommands::goMenu() const
{
    Workspace& workspace = m_services.workspace;
    EditorDocument* document = workspace.activeTab() ? workspace.activeTab()->document() : nullptr;

    Menu menu{QStringLiteral("Go"), {}};
    std::vector<MenuItem>& items = menu.items;
    items.push_back(item(Command::NextTab, Enabled::Yes, [this] { switchTab(true); }));
    items.push_back(item(Command::PreviousTab, Enabled::Yes, [this] { switchTab(false); }));
    items.push_back(item(Command::NextEditorTab, Enabled::Yes,
                         [&workspace] { workspace.selectAdjacentTab(1); }));
    items.push_back(item(Command::PreviousEditorTab, Enabled::Yes,
                         [&workspace] { workspace.selectAdjacentTab(-1); }));
    items.push_back(separator());
    if (workspace.canShowPages()) {
        BrowserTab* page = workspace.visibleBrowser();
        items.push_back(item(Command::OpenLocation, when(page != nullptr), [page] {
            if (page)
                page->requestAddressFocus();
        }));
        items.push_back(item(Command::ReloadPage, when(page != nullptr), [page] {
            if (page)
                page->isLoading() ? page->stopLoading() : page->reload();
        }));
        if (m_services.clearBrowsingData)
            items.push_back(
                item(Command::ClearBrowsingData, Enabled::Yes, m_services.clearBrowsingData));
        items.push_back(separator());
    }
    items.push_back(item(Command::RevealInFinder, when(document != nullptr), [this, document] {
        if (document)
            m_services.reveal(document->path());
    }));
    return menu;
}

void BraltoCommands::closeFocused() const
{
    Workspace& workspace = m_services.workspace;
    if (workspace.focusArea() == FocusArea::Terminal) {
        workspace.terminal().closeFocused();
        return;
    }
    if (const auto tab = workspace.focusedTab())
        workspace.close(*tab);
}

void BraltoCommands::switchTab(bool forward) const
{
    Workspace& workspace = m_services.workspace;
    if (workspace.focusArea() == FocusArea::Terminal)
        workspace.terminal().cycle(forward);
    else
        workspace.selectAdjacentTab(forward ? 1 : -1);
}

} // namespace Bralto
