#include "Terminals/TerminalStore.h"

#include "Base/Paths.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QUrl>

namespace Bralto::TerminalStore {

namespace {

constexpr qsizetype LongestName = 200;

std::optional<QByteArray> contents(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

} // namespace

QString file(const AppPaths& paths, const QString& folder)
{
    // Of what Qt leaves as it is, only letters and digits may stay.
    const QByteArray name =
        QUrl::toPercentEncoding(Paths::standardised(folder), QByteArray(), "-._~");
    return paths.terminals() + u'/' + QString::fromLatin1(name.right(LongestName)) +
           QStringLiteral(".json");
}

std::optional<PanelSnapshot> load(const AppPaths& paths, const QString& folder)
{
    const auto json = contents(file(paths, folder));
    return json ? PanelSnapshot::decode(*json) : std::nullopt;
}

void save(const AppPaths& paths, const QString& folder, const PanelSnapshot& snapshot)
{
    const QString path = file(paths, folder);
    const QByteArray json = snapshot.encode();
    if (contents(path) == json)
        return;
    QDir().mkpath(paths.terminals());
    QSaveFile output(path);
    if (!output.open(QIODevice::WriteOnly))
        return;
    output.write(json);
    output.commit();
}

} // namespace Bralto::TerminalStore
