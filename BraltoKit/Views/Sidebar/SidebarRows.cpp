#include "Views/Sidebar/SidebarRows.h"

#include "Base/Shortcuts.h"
#include "Editor/FileKind.h"
#include "Workspace/Workspace.h"

#include <QObject>

namespace Bralto {
namespace {

using Kind = SidebarRow::Kind;

SidebarRow section(const QString& title)
{
    return {.kind = Kind::Section, .key = {}, .text = title, .symbol = {}};
}

QString symbolOf(const WorkspaceTab& tab)
{
    if (const EditorDocument* document = tab.document())
        return FileKinds::symbol(FileKinds::of(document->path(), false));
    return QStringLiteral("globe");
}

void appendTabs(const Workspace& workspace, std::vector<SidebarRow>& rows)
{
    if (workspace.tabs().empty())
        return;
    rows.push_back(section(QObject::tr("Open")));
    for (const WorkspaceTab& tab : workspace.tabs()) {
        const EditorDocument* document = tab.document();
        rows.push_back({.kind = Kind::OpenTab,
                        .key = tab.id(),
                        .text = tab.title(),
                        .symbol = symbolOf(tab),
                        .isUnsaved = document && document->hasUnsavedText(),
                        .isSelected = workspace.sidebarSelection() ==
                                      SidebarItem{SidebarItem::Open{tab.id()}}});
    }
}

void appendChildren(const Workspace& workspace, const FileNode& folder, int depth,
                    std::vector<SidebarRow>& rows)
{
    for (const std::unique_ptr<FileNode>& node : folder.children()) {
        const bool isFolder = node->isDirectory();
        const SidebarItem item = isFolder ? SidebarItem{SidebarItem::Folder{node->path()}}
                                          : SidebarItem{SidebarItem::File{node->path()}};
        const bool isExpanded = isFolder && workspace.expandedFolders().contains(node->path());
        rows.push_back({.kind = isFolder ? Kind::Folder : Kind::File,
                        .key = node->path(),
                        .text = node->name(),
                        .symbol = node->symbol(),
                        .depth = depth,
                        .isExpanded = isExpanded,
                        .isSelected = workspace.sidebarSelection() == item});
        if (isExpanded)
            appendChildren(workspace, *node, depth + 1, rows);
    }
}

} // namespace

bool SidebarRow::isSameAs(const SidebarRow& other) const
{
    return kind == other.kind && key == other.key && depth == other.depth &&
           (isAction() || text == other.text);
}

std::vector<SidebarRow> SidebarRows::of(const Workspace& workspace)
{
    std::vector<SidebarRow> rows;
    const FileNode* root = workspace.root();
    if (!root)
        return rows;
    appendTabs(workspace, rows);
    rows.push_back(section(QObject::tr("Files")));
    const std::size_t files = rows.size();
    appendChildren(workspace, *root, 0, rows);
    if (rows.size() == files && !workspace.isRootMissing()) {
        rows.push_back({.kind = Kind::EmptyTitle,
                        .key = {},
                        .text = QObject::tr("Empty Folder"),
                        .symbol = {}});
        rows.push_back({.kind = Kind::EmptyText,
                        .key = {},
                        .text = QObject::tr("Press %1 to create your first file.")
                                    .arg(Shortcuts::keys(Shortcuts::Command::New)),
                        .symbol = {}});
    }
    return rows;
}

} // namespace Bralto
