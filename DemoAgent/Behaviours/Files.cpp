#include "DemoAgent/Behaviours/Files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace DemoAgent::Files {

namespace {

constexpr qint64 MostBytes = 65536;

// The real place of the deepest folder of a path that is there.
QString existingFolder(const QString& path)
{
    QFileInfo folder(path);
    while (!folder.exists() && !folder.isSymLink() && !folder.isRoot())
        folder = QFileInfo(folder.path());
    return folder.canonicalFilePath();
}

} // namespace

std::optional<QString> below(const QString& folder, const QString& path)
{
    const QString clean = QDir::cleanPath(QDir(folder).absoluteFilePath(path));
    const QString root = QFileInfo(folder).canonicalFilePath();
    const QString place = existingFolder(clean);
    if (place != root && !place.startsWith(root + u'/'))
        return std::nullopt;
    return clean;
}

Reading read(const QString& path)
{
    if (QFileInfo(path).isDir())
        return {.text = {}, .error = "That is a folder."};
    QFile file(path);
    if (!file.open(QFile::ReadOnly))
        return {.text = {}, .error = file.errorString()};
    return {.text = QString::fromUtf8(file.read(MostBytes)), .error = {}};
}

QString write(const QString& path, const QString& text)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QFile::WriteOnly | QFile::Truncate) || file.write(text.toUtf8()) < 0 ||
        !file.flush())
        return file.errorString();
    return {};
}

} // namespace DemoAgent::Files
