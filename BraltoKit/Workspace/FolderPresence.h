#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

namespace Bralto {

/// Knows whether a folder is there, and is told when it goes or comes back: it watches the folder
/// while it is there, and while it isn't, the nearest folder above that is. The folder above the
/// watched one is watched too, since a folder doesn't tell when it is moved away. Main thread.
class FolderPresence final : public QObject {
    Q_OBJECT

public:
    explicit FolderPresence(QString folder, QObject* parent = nullptr);

    [[nodiscard]] bool isMissing() const { return m_isMissing; }

    /// Looks at once, for a disk that tells nothing by itself.
    void check();

signals:
    void missingChanged(bool missing);

private:
    /// Moves the watch to what is there now; whether the folder is missing.
    bool watch();
    void watchOnly(const QStringList& wanted);

    QString m_folder;
    QFileSystemWatcher m_watcher;
    bool m_isMissing = false;
};

} // namespace Bralto
