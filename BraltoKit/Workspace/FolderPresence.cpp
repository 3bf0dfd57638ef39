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
    QString nearest;
    for (QString found = nearestExisting(m_folder); found != nearest;
         found = nearestExisting(m_folder)) {
        nearest = found;
        watchOnly({nearest, Paths::parent(nearest)});
    }
    return nearest != m_folder;
}

void FolderPresence::watchOnly(const QStringList& wanted)
{
    const QStringList watched = m_watcher.directories();
    for (const QString& folder : watched) {
        if (!wanted.contains(folder))
            m_watcher.removePath(folder);
    }
    for (const QString& folder : wanted) {
        if (!watched.contains(folder))
            m_watcher.addPath(folder);
    }
}

} // namespace Bralto
