#pragma once

#include "Base/DefaultsStore.h"
#include "Platform/DefaultsFile.h"

#include <QFileSystemWatcher>
#include <QMutex>
#include <QThreadPool>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace Bralto {

/// One domain of settings in a file that other processes share.
///
///     set ──▶ values in memory ──▶ signal
///                  │ the turn after
///                  ▼
///     worker: lock, read, put in, replace ──▶ what others wrote meanwhile ──▶ values, signal
///
/// All that is set in one turn of the event loop, or while the worker is busy, is one replacement
/// of the file. What could not be written stays in memory and is tried again with the next
/// change. A change by another process is noticed by watching the folder.
class FileDefaultsStore final : public DefaultsStore {
    Q_OBJECT

public:
    /// The domain `domain` in `folder`, read at once. Watches the folder if there is an event loop
    /// to tell it.
    FileDefaultsStore(const QString& folder, const QString& domain, QObject* parent = nullptr);
    /// What was set is written before this returns.
    ~FileDefaultsStore() override;

    [[nodiscard]] QVariant value(const QString& key) const override { return m_values.value(key); }
    void set(const QString& key, const QVariant& value) override;
    void remove(const QString& key) override;
    void synchronise() override;

    /// Whether this process can keep the domain on disk.
    [[nodiscard]] bool isWritable() const { return m_file.isWritable(); }

signals:
    void workDue(QPrivateSignal);     ///< Heard a turn later.
    void answerReady(QPrivateSignal); ///< From the worker's thread.

private:
    void schedule();
    void startWorker();
    void takeAnswer();
    void adopt(const DefaultsFile::State& answer);
    void watch();

    QString m_folder;
    QVariantMap m_values;
    QVariantMap m_pending;  ///< Set but not handed over; an invalid value is a removal.
    QVariantMap m_inFlight; ///< With the worker.
    bool m_isScheduled = false;
    bool m_isWorking = false;
    bool m_mayBeReplaced = false; ///< The folder changed since the worker last looked.
    std::unique_ptr<QFileSystemWatcher> m_watcher;

    DefaultsFile m_file; ///< The worker's alone while it works.
    QMutex m_answerLock;
    std::optional<DefaultsFile::State> m_answer;
    QThreadPool m_worker; ///< Ends first, so that everything above outlives its last job.
};

} // namespace Bralto
