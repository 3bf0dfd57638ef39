#include "Base/Paths.h"

#include <QDir>

namespace Bralto::Paths {

QString standardised(const QString& path)
{
    if (path.isEmpty())
        return path;
    QString clean =
        QDir::cleanPath(path.startsWith(u'/') ? path : QDir::currentPath() + u'/' + path);
    // Nothing lies above the root, which Qt leaves to the system to find out.
    while (clean.startsWith(QLatin1String("/../")))
        clean.remove(0, 3);
    return clean == QLatin1String("/..") ? QStringLiteral("/") : clean;
}

bool isBelow(const QString& path, const QString& folder)
{
    if (folder.isEmpty())
        return false;
    const QString prefix = folder.endsWith(u'/') ? folder : folder + u'/';
    return path.size() > prefix.size() && path.startsWith(prefix);
}

QString lastComponent(const QString& path)
{
    return path.mid(path.lastIndexOf(u'/') + 1);
}

QString parent(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash <= 0 ? QStringLiteral("/") : path.left(slash);
}

QString abbreviatingHome(const QString& path, const QString& home)
{
    if (home.isEmpty())
        return path;
    if (path == home)
        return QStringLiteral("~");
    return isBelow(path, home)
               ? u'~' + path.mid(home.endsWith(u'/') ? home.size() - 1 : home.size())
               : path;
}

} // namespace Bralto::Paths
