#pragma once

/// @file
/// The files of a project for the "@" list: one walk a folder on a worker, shared by all panes.

#include <QHash>
#include <QObject>
#include <QStringList>

#include <memory>
#include <stop_token>

namespace Bralto {

/// Paths relative to their folder, made ready for searching once. Immutable.
class ChatFileList {
public:
    ChatFileList() = default;
    explicit ChatFileList(QStringList paths);

    [[nodiscard]] const QStringList& paths() const { return m_paths; }

    /// The paths that fit `query`, best first, at most `limit`.
    [[nodiscard]] QStringList matches(const QString& query, qsizetype limit) const;

private:
    QStringList m_paths;
    QStringList m_lowered; ///< The same in lower case.
};

namespace ChatFileWalk {

/// Where a walk ends.
inline constexpr qsizetype MostPaths = 20000;

/// The names that a walk neither enters nor lists.
[[nodiscard]] const QSet<QString>& skipped();

/// The files below `folder`, relative to it, those of each folder in order of name. Hidden ones are
/// left out, packages count as files, symbolic links to folders aren't followed. May be called on
/// any thread; ends early when `stop` asks for it.
[[nodiscard]] QStringList list(const QString& folder, qsizetype limit = MostPaths,
                               const std::stop_token& stop = {});

} // namespace ChatFileWalk

/// One list for each folder, walked on first demand and then kept. Main thread.
class ChatFileIndex final : public QObject {
    Q_OBJECT

public:
    using List = std::shared_ptr<const ChatFileList>;

    explicit ChatFileIndex(QObject* parent = nullptr);
    ~ChatFileIndex() override;

    /// The list of `folder`; null until its walk has ended, which `listed` tells.
    [[nodiscard]] List files(const QString& folder);

    /// The next demand for `folder` walks it anew; the old list serves meanwhile.
    void invalidate(const QString& folder);

signals:
    void listed(const QString& folder);

private:
    struct Entry {
        List list;
        bool isWalking = false;
        bool isStale = false;
    };

    void walk(const QString& folder);

    QHash<QString, Entry> m_entries;
    std::stop_source m_stop;
};

} // namespace Bralto
