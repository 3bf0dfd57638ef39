#include "Chat/ChatFileIndex.h"

#include "Base/Background.h"

#include <QDir>
#include <QSet>

#include <algorithm>

namespace Bralto {

namespace {

constexpr int NoScore = 4;

bool isSubsequence(QStringView query, QStringView text)
{
    qsizetype next = 0;
    for (qsizetype i = 0; i < text.size() && next < query.size(); ++i)
        next += text[i] == query[next] ? 1 : 0;
    return next == query.size();
}

int score(QStringView query, QStringView path)
{
    const QStringView name = path.mid(path.lastIndexOf(u'/') + 1);
    if (name.startsWith(query))
        return 0;
    if (name.contains(query))
        return 1;
    if (path.contains(query))
        return 2;
    return isSubsequence(query, path) ? 3 : NoScore;
}

bool isPackage(const QString& name)
{
    static const QSet<QString> extensions{
        QStringLiteral("app"),       QStringLiteral("bundle"),      QStringLiteral("framework"),
        QStringLiteral("xcodeproj"), QStringLiteral("xcworkspace"), QStringLiteral("playground"),
        QStringLiteral("plugin"),    QStringLiteral("kext"),        QStringLiteral("docc")};
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 && extensions.contains(name.mid(dot + 1).toLower());
}

/// Adds the files of one folder, then those of the folders in it.
void walkFolder(const QDir& folder, const QString& prefix, qsizetype limit,
                const std::stop_token& stop, QStringList& paths)
{
    const QFileInfoList entries = folder.entryInfoList(
        QDir::Files | QDir::Dirs | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    QStringList folders;
    for (const QFileInfo& entry : entries) {
        const QString name = entry.fileName();
        if (name.startsWith(u'.') || ChatFileWalk::skipped().contains(name))
            continue;
        if (entry.isDir() && !isPackage(name)) {
            if (!entry.isSymLink())
                folders.append(name);
        } else if (paths.size() < limit) {
            paths.append(prefix + name);
        }
    }
    for (const QString& name : folders) {
        if (paths.size() >= limit || stop.stop_requested())
            return;
        walkFolder(QDir(folder.filePath(name)), prefix + name + u'/', limit, stop, paths);
    }
}

} // namespace

ChatFileList::ChatFileList(QStringList paths)
    : m_paths(std::move(paths))
{
    m_lowered.reserve(m_paths.size());
    for (const QString& path : m_paths)
        m_lowered.append(path.toLower());
}

QStringList ChatFileList::matches(const QString& query, qsizetype limit) const
{
    if (query.isEmpty())
        return m_paths.first(std::min(limit, m_paths.size()));

    struct Hit {
        int score;
        qsizetype index;
    };
    const QString lowered = query.toLower();
    std::vector<Hit> hits;
    for (qsizetype i = 0; i < m_lowered.size(); ++i) {
        if (const int points = score(lowered, m_lowered[i]); points < NoScore)
            hits.push_back({points, i});
    }
    const auto count = std::min<std::size_t>(std::size_t(limit), hits.size());
    std::partial_sort(hits.begin(), hits.begin() + std::ptrdiff_t(count), hits.end(),
                      [this](const Hit& a, const Hit& b) {
                          return a.score != b.score ? a.score < b.score
                                                    : m_paths[a.index] < m_paths[b.index];
                      });
    QStringList best;
    for (std::size_t i = 0; i < count; ++i)
        best.append(m_paths[hits[i].index]);
    return best;
}

namespace ChatFileWalk {

const QSet<QString>& skipped()
{
    static const QSet<QString> names{
        QStringLiteral(".git"),         QStringLiteral(".build"), QStringLiteral(".swiftpm"),
        QStringLiteral("node_modules"), QStringLiteral("build"),  QStringLiteral("DerivedData"),
        QStringLiteral("Pods"),         QStringLiteral("dist"),   QStringLiteral(".next"),
        QStringLiteral(".venv"),        QStringLiteral("venv"),   QStringLiteral("__pycache__"),
        QStringLiteral(".DS_Store")};
    return names;
}

QStringList list(const QString& folder, qsizetype limit, const std::stop_token& stop)
{
    QStringList paths;
    walkFolder(QDir(folder), {}, limit, stop, paths);
    return paths;
}

} // namespace ChatFileWalk

ChatFileIndex::ChatFileIndex(QObject* parent)
    : QObject(parent)
{
}

ChatFileIndex::~ChatFileIndex()
{
    m_stop.request_stop();
}

ChatFileIndex::List ChatFileIndex::files(const QString& folder)
{
    Entry& entry = m_entries[folder];
    if ((!entry.list || entry.isStale) && !entry.isWalking) {
        entry.isWalking = true;
        entry.isStale = false;
        walk(folder);
    }
    return entry.list;
}

void ChatFileIndex::invalidate(const QString& folder)
{
    if (const auto entry = m_entries.find(folder); entry != m_entries.end())
        entry->isStale = true;
}

void ChatFileIndex::walk(const QString& folder)
{
    inBackground(
        this,
        [folder, stop = m_stop.get_token()]() -> List {
            return std::make_shared<const ChatFileList>(
                ChatFileWalk::list(folder, ChatFileWalk::MostPaths, stop));
        },
        [this, folder](const List& list) {
            Entry& entry = m_entries[folder];
            entry.list = list;
            entry.isWalking = false;
            emit listed(folder);
        });
}

} // namespace Bralto
