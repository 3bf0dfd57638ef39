#include "Platform/DefaultsFile.h"

#include "Base/DefaultsStore.h"
#include "Platform/DefaultsFormat.h"
#include "Platform/FileLock.h"

#include <QDir>
#include <QSaveFile>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace Bralto {

namespace {

/// Whether one of `changes` is news to `values`.
bool isNews(const QVariantMap& changes, const QVariantMap& values)
{
    return std::any_of(changes.keyValueBegin(), changes.keyValueEnd(), [&](const auto& change) {
        return !DefaultsStore::isSame(change.second, values.value(change.first));
    });
}

QVariantMap applying(const QVariantMap& changes, QVariantMap values)
{
    for (auto change = changes.constBegin(); change != changes.constEnd(); ++change) {
        if (change.value().isValid())
            values.insert(change.key(), change.value());
        else
            values.remove(change.key());
    }
    return values;
}

} // namespace

DefaultsFile::DefaultsFile(const QString& folder, const QString& domain)
    : m_folder(folder)
    , m_path(folder + u'/' + domain + QStringLiteral(".json"))
    , m_lockPath(m_path + QStringLiteral(".lock"))
{
}

DefaultsFile::State DefaultsFile::read()
{
    Found found = refresh();
    if (found == Found::Damaged) {
        const FileLock lock(m_lockPath, FileLock::Wait::Yes);
        found = refreshUnderLock();
    }
    return {m_values, found == Found::Values};
}

DefaultsFile::State DefaultsFile::commit(const QVariantMap& changes)
{
    QDir().mkpath(m_folder);
    const FileLock lock(m_lockPath, FileLock::Wait::Yes);
    if (!lock.isHeld() || refreshUnderLock() != Found::Values)
        return {m_values, false};
    const bool isStored = !isNews(changes, m_values) || replace(applying(changes, m_values));
    return {m_values, isStored};
}

bool DefaultsFile::isWritable() const
{
    return QDir().mkpath(m_folder) && FileLock(m_lockPath, FileLock::Wait::No).isOpen();
}

DefaultsFile::Found DefaultsFile::refresh()
{
    int error = 0;
    std::unique_ptr<QFile> file = open(error);
    if (!file) {
        if (error != ENOENT)
            return Found::Unreadable;
        m_values.clear();
        m_seen.reset();
        return Found::Values;
    }
    const Identity found = identity(*file);
    if (m_seen && found == m_seenIdentity)
        return Found::Values;

    auto values = DefaultsFormat::decode(file->readAll());
    if (!values)
        return Found::Damaged;
    m_values = *std::move(values);
    m_seen = std::move(file);
    m_seenIdentity = found;
    return Found::Values;
}

DefaultsFile::Found DefaultsFile::refreshUnderLock()
{
    const Found found = refresh();
    if (found != Found::Damaged)
        return found;
    const QString aside = m_path + QStringLiteral(".damaged");
    QFile::remove(aside);
    // Who can't put the file aside must not write over it.
    if (!QFile::rename(m_path, aside))
        return Found::Unreadable;
    return refresh();
}

bool DefaultsFile::replace(const QVariantMap& values)
{
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.write(DefaultsFormat::encode(values));
    if (!file.commit())
        return false;
    m_values = values;
    int error = 0;
    m_seen = open(error); // Under the lock, so it is the file from above.
    m_seenIdentity = m_seen ? identity(*m_seen) : Identity();
    return true;
}

DefaultsFile::Identity DefaultsFile::identity(const QFile& file)
{
    struct stat status {};
    if (::fstat(file.handle(), &status) != 0)
        return {};
    constexpr qint64 SecondInNanoseconds = 1'000'000'000;
    return {quint64(status.st_dev), quint64(status.st_ino), qint64(status.st_size),
            status.st_mtim.tv_sec * SecondInNanoseconds + status.st_mtim.tv_nsec};
}

std::unique_ptr<QFile> DefaultsFile::open(int& error) const
{
    const int handle =
        ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    error = errno;
    if (handle < 0)
        return nullptr;
    auto file = std::make_unique<QFile>();
    file->open(handle, QIODevice::ReadOnly, QFile::AutoCloseHandle);
    return file;
}

} // namespace Bralto
