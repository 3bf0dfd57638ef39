#include "Editor/FileNode.h"

#include "Base/Paths.h"
#include "Editor/FileKind.h"

#include <QCollator>
#include <QDirIterator>
#include <QLocale>

#include <algorithm>
#include <array>

namespace Bralto {

namespace {

/// Never shown, whatever the user asks for.
bool isAlwaysHidden(const QString& name)
{
    static const std::array<QLatin1String, 4> names = {
        QLatin1String(".DS_Store"), QLatin1String(".git"), QLatin1String(".build"),
        QLatin1String(".swiftpm")};
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The order in which people count: "b2" before "b10", "B" beside "b".
const QCollator& naturalOrder()
{
    static const QCollator collator = [] {
        // The C locale compares code points and knows no numbers.
        const QLocale system = QLocale::system().collation();
        QCollator result(system.language() == QLocale::C ? QLocale(QLocale::English) : system);
        result.setNumericMode(true);
        result.setCaseSensitivity(Qt::CaseInsensitive);
        return result;
    }();
    return collator;
}

struct Entry {
    QString path;
    QString name;
    bool isDirectory;
    bool isPackage;
    QCollatorSortKey key;
};

bool isBefore(const Entry& left, const Entry& right)
{
    if (left.isDirectory != right.isDirectory)
        return left.isDirectory;
    const int order = left.key.compare(right.key);
    // Names that differ in case alone would else stand as the disk happens to list them.
    return order != 0 ? order < 0 : left.name < right.name;
}

} // namespace

FileNode::FileNode(QString path, bool isDirectory, bool showHidden, bool isPackage)
    : m_path(std::move(path))
    , m_isDirectory(isDirectory)
    , m_showHidden(showHidden)
    , m_isPackage(isPackage)
{
}

QString FileNode::name() const
{
    return Paths::lastComponent(m_path);
}

QString FileNode::symbol() const
{
    const FileKind kind = FileKinds::of(m_path, m_isDirectory);
    if (m_isPackage || kind == FileKind::App)
        return QStringLiteral("shippingbox");
    return FileKinds::symbol(kind);
}

const std::vector<std::unique_ptr<FileNode>>& FileNode::children() const
{
    static const std::vector<std::unique_ptr<FileNode>> none;
    if (!m_isDirectory)
        return none;
    if (!m_children)
        m_children = contents(m_path, m_showHidden);
    return *m_children;
}

std::vector<std::unique_ptr<FileNode>> FileNode::contents(const QString& folder, bool showHidden)
{
    QDir::Filters filter = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System;
    if (showHidden)
        filter |= QDir::Hidden;

    std::vector<Entry> entries;
    QDirIterator iterator(folder, filter);
    while (iterator.hasNext()) {
        const QString path = iterator.next();
        const QString name = iterator.fileName();
        if (isAlwaysHidden(name))
            continue;
        const bool isFolder = iterator.fileInfo().isDir();
        const bool isPackage = isFolder && FileKinds::isPackage(name);
        entries.push_back(
            {path, name, isFolder && !isPackage, isPackage, naturalOrder().sortKey(name)});
    }
    std::stable_sort(entries.begin(), entries.end(), isBefore);

    std::vector<std::unique_ptr<FileNode>> nodes;
    nodes.reserve(entries.size());
    for (Entry& entry : entries) {
        nodes.push_back(std::make_unique<FileNode>(std::move(entry.path), entry.isDirectory,
                                                   showHidden, entry.isPackage));
    }
    return nodes;
}

} // namespace Bralto
