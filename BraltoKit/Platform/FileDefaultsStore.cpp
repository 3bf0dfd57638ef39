#include "Platform/FileDefaultsStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QMutexLocker>

#include <utility>

namespace Bralto {

namespace {

/// The keys under which `before` and `after` hold different values.
QStringList differences(const QVariantMap& before, const QVariantMap& after)
{
    QStringList keys;
    if (before.isSharedWith(after))
        return keys;
    auto left = before.constBegin();
    auto right = after.constBegin();
    while (left != before.constEnd() || right != after.constEnd()) {
        if (right == after.constEnd() || (left != before.constEnd() && left.key() < right.key()))
            keys.append((left++).key());
        else if (left == before.constEnd() || right.key() < left.key())
            keys.append((right++).key());
        else {
            if (!DefaultsStore::isSame(left.value(), right.value()))
                keys.append(left.key());
            ++left;
            ++right;
        }
    }
    return keys;
}

} // namespace

FileDefaultsStore::FileDefaultsStore(const QString& folder, const QString& domain, QObject* parent)
    : DefaultsStore(parent)
    , m_folder(folder)
    , m_file(folder, domain)
{
    m_worker.setMaxThreadCount(1);
    connect(this, &FileDefaultsStore::workDue, this, &FileDefaultsStore::startWorker,
            Qt::QueuedConnection);
    connect(this, &FileDefaultsStore::answerReady, this, &FileDefaultsStore::takeAnswer,
            Qt::QueuedConnection);
    if (QCoreApplication::instance()) {
        m_watcher = std::make_unique<QFileSystemWatcher>();
        connect(m_watcher.get(), &QFileSystemWatcher::directoryChanged, this, [this] {
            m_mayBeReplaced = true;
            schedule();
        });
        watch();
    }
    m_values = m_file.read().values;
}

FileDefaultsStore::~FileDefaultsStore()
{
    blockSignals(true);
    synchronise();
}

void FileDefaultsStore::set(const QString& key, const QVariant& value)
{
    Q_ASSERT(isStorable(value));
    if (isSame(m_values.value(key), value))
        return;
    m_values.insert(key, value);
    m_pending.insert(key, value);
    schedule();
    emit changed(key);
}

void FileDefaultsStore::remove(const QString& key)
{
    if (m_values.remove(key) == 0)
        return;
    m_pending.insert(key, QVariant());
    schedule();
    emit changed(key);
}

void FileDefaultsStore::synchronise()
{
    m_worker.waitForDone();
    takeAnswer();
    if (!m_pending.isEmpty()) {
        m_inFlight = std::exchange(m_pending, {});
        adopt(m_file.commit(m_inFlight));
    }
}

void FileDefaultsStore::schedule()
{
    if (std::exchange(m_isScheduled, true))
        return;
    emit workDue({});
}

void FileDefaultsStore::startWorker()
{
    m_isScheduled = false;
    // A worker that is busy is followed by another one when its answer is here.
    if (m_isWorking || (m_pending.isEmpty() && !m_mayBeReplaced))
        return;
    m_isWorking = true;
    m_mayBeReplaced = false;
    m_inFlight = std::exchange(m_pending, {});
    m_worker.start([this, changes = m_inFlight] {
        DefaultsFile::State answer = changes.isEmpty() ? m_file.read() : m_file.commit(changes);
        const QMutexLocker locker(&m_answerLock);
        m_answer = std::move(answer);
        emit answerReady({});
    });
}

void FileDefaultsStore::takeAnswer()
{
    std::optional<DefaultsFile::State> answer;
    {
        const QMutexLocker locker(&m_answerLock);
        answer = std::exchange(m_answer, std::nullopt);
    }
    if (!answer)
        return; // Taken before, by who could not wait for this turn.
    m_isWorking = false;
    if (!m_pending.isEmpty() || m_mayBeReplaced)
        schedule();
    adopt(*answer);
}

void FileDefaultsStore::adopt(const DefaultsFile::State& answer)
{
    if (!answer.isStored) {
        // What was set since then is newer than what came back.
        QVariantMap kept = std::exchange(m_inFlight, {});
        kept.insert(m_pending);
        m_pending = std::move(kept);
    }
    m_inFlight.clear();

    QVariantMap next = answer.values;
    for (auto change = m_pending.constBegin(); change != m_pending.constEnd(); ++change) {
        if (change.value().isValid())
            next.insert(change.key(), change.value());
        else
            next.remove(change.key());
    }
    const QStringList keys = differences(m_values, next);
    m_values = std::move(next);
    watch();
    for (const QString& key : keys)
        emit changed(key);
}

void FileDefaultsStore::watch()
{
    // A folder that was removed has no watch any more, not even when it is there again.
    if (m_watcher && m_watcher->directories().isEmpty() && QDir().mkpath(m_folder))
        m_watcher->addPath(m_folder);
}

} // namespace Bralto
