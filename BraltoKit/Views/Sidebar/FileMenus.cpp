#include "Views/Sidebar/FileMenus.h"

#include "Base/Desktop.h"
#include "Workspace/Workspace.h"

#include <QMenu>
#include <QUrl>

#include <functional>

namespace Bralto::FileMenus {
namespace {

/// An entry whose work begins once the menu is gone, so that a question doesn't open under it.
QAction* add(QMenu& menu, Workspace& workspace, const QString& title, std::function<void()> work)
{
    QAction* action = menu.addAction(title);
    QObject::connect(action, &QAction::triggered, &workspace, std::move(work),
                     Qt::QueuedConnection);
    return action;
}

void addChanges(QMenu& menu, Workspace& workspace, const QString& path)
{
    menu.addSeparator();
    add(menu, workspace, QMenu::tr("Rename"), [&workspace, path] { workspace.rename(path); });
    add(menu, workspace, QMenu::tr("Duplicate"), [&workspace, path] { workspace.duplicate(path); });
    add(menu, workspace, QMenu::tr("Move to Trash"),
        [&workspace, path] { workspace.moveToTrash(path); });
}

} // namespace

void addFolderActions(QMenu& menu, Workspace& workspace, Desktop& desktop, const QString& path,
                      IsRoot isRoot)
{
    add(menu, workspace, QMenu::tr("New File"), [&workspace, path] { workspace.createFile(path); });
    add(menu, workspace, QMenu::tr("New Folder"),
        [&workspace, path] { workspace.createFolder(path); });
    menu.addSeparator();
    add(menu, workspace, QMenu::tr("Open in Integrated Terminal"),
        [&workspace, path] { workspace.openInTerminal(path); });
    add(menu, workspace, QMenu::tr("Reveal in Finder"), [&desktop, path] { desktop.reveal(path); });
    add(menu, workspace, QMenu::tr("Copy Relative Path"),
        [&workspace, path] { workspace.copyRelativePath(path); });
    if (isRoot == IsRoot::No)
        addChanges(menu, workspace, path);
}

void addFileActions(QMenu& menu, Workspace& workspace, Desktop& desktop, const QString& path)
{
    add(menu, workspace, QMenu::tr("Open with Default App"),
        [&desktop, path] { desktop.open(QUrl::fromLocalFile(path)); });
    add(menu, workspace, QMenu::tr("Reveal in Finder"), [&desktop, path] { desktop.reveal(path); });
    add(menu, workspace, QMenu::tr("Copy Relative Path"),
        [&workspace, path] { workspace.copyRelativePath(path); });
    add(menu, workspace, QMenu::tr("Open in Integrated Terminal"),
        [&workspace, path] { workspace.openInTerminal(path); });
    addChanges(menu, workspace, path);
}

void addProjectActions(QMenu& menu, Workspace& workspace, Desktop& desktop)
{
    const FileNode* root = workspace.root();
    if (!root)
        return;
    const QString path = root->path();
    add(menu, workspace, QMenu::tr("Reveal in Finder"), [&desktop, path] { desktop.reveal(path); });
    add(menu, workspace, QMenu::tr("Copy Path"), [&desktop, path] { desktop.copyText(path); });
    menu.addSeparator();
    add(menu, workspace, QMenu::tr("Open Folder"), [&workspace] { workspace.presentOpenPanel(); });
    add(menu, workspace, QMenu::tr("Close Folder"), [&workspace] { workspace.closeFolder(); });
}

} // namespace Bralto::FileMenus
