#include "Workspace/FolderPresence.h"

#include "Base/Paths.h"

#include <QFileInfo>

namespace Bralto {

namespace {

/// The folder itself, or the nearest one above it that is there.
QString nearestExisting(QString folder)
{
    while (!QFileInfo(folder).isDir() && folder != QLatin1String("/"))
        folder = Paths::parent(folder);
    return folder;
}

} // namespace

FolderPresence::FolderPresence(QString folder, QObject* parent)
    : QObject(parent)
    , m_folder(std::move(folder))
{
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &FolderPresence::check);
    m_isMissing = watch();
}

void FolderPresence::check()
{
    const bool isMissing = watch();
    if (isMissing == m_isMissing)
        return;
    m_isMissing = isMissing;
    emit missingChanged(isMissing);
}

bool FolderPresence::watch()
{
    // What came or went between the look and the watch is seen by looking again.
    QString watched;
    for (QString nearest = nearestExisting(m_folder); nearest != watched;
         nearest = nearestExisting(m_folder)) {
        watched = nearest;
        const QStringList before = m_watcher.directories();
        if (before == QStringList(watched))
            continue;
        if (!before.isEmpty())
            m_watcher.removePaths(before);
        m_watcher.addPath(watched);
    }
    return watched != m_folder;
}

} // namespace Bralto
