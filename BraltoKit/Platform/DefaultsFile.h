#pragma once

#include <QFile>
#include <QString>
#include <QVariantMap>

#include <memory>

namespace Bralto {

/// The file of one domain, which several processes read and write. It is only ever replaced as a
/// whole, under a lock, so that a reader needs none and no writer loses another's keys. One thread
/// at a time.
class DefaultsFile {
public:
    /// The file `<domain>.json` in `folder`; neither needs to be there.
    DefaultsFile(const QString& folder, const QString& domain);

    struct State {
        QVariantMap values;
        bool isStored = true; ///< Whether the file holds these values.
    };

    /// What the file holds now; it is read only if it was replaced since the last time. A file
    /// that can't be understood is kept beside it as `<domain>.json.damaged` and counts as empty.
    State read();

    /// Puts `changes` into what the file holds now; an invalid value removes its key. Nothing is
    /// written if that changes nothing. On failure the file is as it was.
    State commit(const QVariantMap& changes);

    /// Whether this process can write here.
    [[nodiscard]] bool isWritable() const;

private:
    enum class Found { Values, Damaged, Unreadable };

    /// Which file it is and, for one that was edited in place, which state of it.
    struct Identity {
        quint64 device = 0;
        quint64 number = 0;
        qint64 size = 0;
        qint64 modified = 0; ///< Nanoseconds since 1970.

        bool operator==(const Identity&) const = default;
    };

    static Identity identity(const QFile& file);

    Found refresh();
    Found refreshUnderLock();
    bool replace(const QVariantMap& values);
    [[nodiscard]] std::unique_ptr<QFile> open(int& error) const;

    QString m_folder;
    QString m_path;
    QString m_lockPath;
    QVariantMap m_values;
    /// The file that `m_values` came from. It stays open, so that no other file gets its number
    /// and one look at that tells whether the file was replaced.
    std::unique_ptr<QFile> m_seen;
    Identity m_seenIdentity;
};

} // namespace Bralto
