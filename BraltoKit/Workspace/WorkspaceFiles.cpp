#include "Workspace/Workspace.h"

#include "Base/Paths.h"
#include "Projects/ProjectUse.h"
#include "Workspace/FileOperations.h"

#include <QFileInfo>
#include <QUrl>

#include <algorithm>

namespace Bralto {

namespace {

/// "Couldn’t rename “a.txt”" and the like.
QString couldNot(const QString& what, const QString& name, const QString& rest = {})
{
    return QStringLiteral("Couldn’t %1 “%2”%3").arg(what, name, rest);
}

} // namespace

// --- opening

void Workspace::openFolder(const QString& path, const QStringList& files)
{
    const QString folder = Paths::standardised(path);
    if (m_root && m_root->path() == folder) {
        for (const QString& file : files)
            openFile(file);
        return;
    }
    rememberRecent(folder);
    m_services.launcher.launch(folder, files);
}

void Workspace::open(const QString& path)
{
    const QString standardised = Paths::standardised(path);
    const QFileInfo info(standardised);
    if (!info.exists())
        return;
    if (info.isDir())
        openFolder(standardised, {});
    else if (m_root &&
             (standardised == m_root->path() || Paths::isBelow(standardised, m_root->path())))
        openFile(standardised);
    else
        openFolder(Paths::parent(standardised), {standardised});
}

void Workspace::openFile(const QString& path)
{
    const QString file = Paths::standardised(path);
    if (QFileInfo(file).isDir()) {
        m_services.desktop.open(QUrl::fromLocalFile(file));
        return;
    }
    for (const WorkspaceTab& each : m_tabs) {
        if (each.document() && each.document()->path() == file) {
            activate(each);
            return;
        }
    }
    insert(WorkspaceTab(makeDocument(file)));
}

void Workspace::openFileAt(const QString& path, int line, int column)
{
    openFile(path);
    const std::vector<WorkspaceTab> opened = documentTabsAt(Paths::standardised(path));
    if (line > 0 && opened.size() == 1)
        opened.front().document()->setCursor(line, std::max(column, 1));
}

void Workspace::presentOpenPanel()
{
    if (const auto path = m_services.dialogs.openFileOrFolder())
        open(*path);
}

// --- creating

void Workspace::newInFocusedArea()
{
    if (!m_root) {
        createProject(ProjectUse::currentRoot(m_services.defaults.shared, m_services.paths));
        return;
    }
    switch (focusArea()) {
    case FocusArea::Terminal:
        m_terminal->newTab(std::nullopt);
        return;
    case FocusArea::Sidebar:
        createFile(selectedFolder());
        return;
    case FocusArea::Content:
        break;
    case FocusArea::None:
        if (m_activeTabId.isEmpty()) {
            createFile(selectedFolder());
            return;
        }
        break;
    }
    if (canShowPages())
        insertPage({});
    else
        createFile(selectedFolder());
}

void Workspace::createFile(const std::optional<QString>& folder)
{
    if (!folder && !m_root)
        return;
    const auto name = m_services.dialogs.text(
        {QStringLiteral("New File"),
         QStringLiteral("Name the file. Include an extension, like notes.md."),
         {},
         {}});
    if (!name)
        return;
    const QString path = Paths::standardised(folder.value_or(m_root->path()) + u'/' + *name);
    if (QFileInfo::exists(path)) {
        report(QStringLiteral("“%1” already exists").arg(*name),
               QStringLiteral("Choose a different name, or open the existing file from the "
                              "sidebar."));
        return;
    }
    if (const auto reason = FileOperations::createFile(path)) {
        report(couldNot(QStringLiteral("create"), *name), *reason);
        return;
    }
    refreshTree();
    openFile(path);
}

void Workspace::createFolder(const std::optional<QString>& folder)
{
    if (!folder && !m_root)
        return;
    const auto name = m_services.dialogs.text(
        {QStringLiteral("New Folder"), QStringLiteral("Name the folder."), {}, {}});
    if (!name)
        return;
    const QString path = Paths::standardised(folder.value_or(m_root->path()) + u'/' + *name);
    if (const auto reason = FileOperations::createFolder(path))
        report(couldNot(QStringLiteral("create"), *name), *reason);
    else
        refreshTree();
}

// --- changing

void Workspace::rename(const QString& path)
{
    const QString from = Paths::standardised(path);
    const QString old = Paths::lastComponent(from);
    const auto name = m_services.dialogs.text(
        {QStringLiteral("Rename"), QStringLiteral("Enter a new name for “%1”").arg(old), {}, old});
    if (!name || *name == old)
        return;
    const QString to = Paths::parent(from) + u'/' + *name;
    if (const auto reason = FileOperations::rename(from, to)) {
        report(couldNot(QStringLiteral("rename"), old), *reason);
        return;
    }
    for (const WorkspaceTab& each : documentTabsAt(from)) {
        EditorDocument* document = each.document();
        document->setPath(to + document->path().mid(from.size()));
    }
    refreshTree();
    persistSession();
}

void Workspace::moveToTrash(const QString& path)
{
    const QString trashed = Paths::standardised(path);
    const auto closing = documentTabsAt(trashed);
    if (const auto moved = m_services.desktop.moveToTrash(trashed); !moved) {
        report(couldNot(QStringLiteral("move"), Paths::lastComponent(trashed),
                        QStringLiteral(" to the Trash")),
               moved.error());
        return;
    }
    for (const WorkspaceTab& each : closing) {
        each.document()->revertToSaved();
        closeWithoutQuestion(each.document());
    }
    refreshTree();
}

void Workspace::duplicate(const QString& path)
{
    const QString source = Paths::standardised(path);
    m_copying.start([this, source] {
        const auto failure = FileOperations::duplicate(source);
        QMetaObject::invokeMethod(this,
                                  [this, source, failure] { finishDuplicate(source, failure); });
    });
}

void Workspace::finishDuplicate(const QString& path, const std::optional<QString>& failure)
{
    if (failure)
        report(couldNot(QStringLiteral("duplicate"), Paths::lastComponent(path)), *failure);
    else
        refreshTree();
}

std::vector<WorkspaceTab> Workspace::documentTabsAt(const QString& path) const
{
    std::vector<WorkspaceTab> result;
    for (const WorkspaceTab& each : m_tabs) {
        const EditorDocument* document = each.document();
        if (document && (document->path() == path || Paths::isBelow(document->path(), path)))
            result.push_back(each);
    }
    return result;
}

// --- using

void Workspace::openInTerminal(const QString& path)
{
    const QString standardised = Paths::standardised(path);
    m_terminal->newTab(QFileInfo(standardised).isDir() ? standardised
                                                       : Paths::parent(standardised));
}

void Workspace::copyRelativePath(const QString& path)
{
    m_services.desktop.copyText(relativePath(path));
}

} // namespace Bralto
