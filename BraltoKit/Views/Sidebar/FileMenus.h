#pragma once

#include <QString>

class QMenu;

namespace Bralto {

class Desktop;
class Workspace;

/// What can be done with a file or a folder. The entries call the workspace; names are asked for
/// after the menu has closed.
namespace FileMenus {

enum class IsRoot { No, Yes };

void addFolderActions(QMenu& menu, Workspace& workspace, Desktop& desktop, const QString& path,
                      IsRoot isRoot);
void addFileActions(QMenu& menu, Workspace& workspace, Desktop& desktop, const QString& path);
/// The menu of the project's title.
void addProjectActions(QMenu& menu, Workspace& workspace, Desktop& desktop);

} // namespace FileMenus

} // namespace Bralto
