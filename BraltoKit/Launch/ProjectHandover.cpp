#include "Launch/ProjectHandover.h"

#include "Base/Paths.h"
#include "Launch/BraltoCommandLine.h"
#include "Platform/ProcessDefaults.h"
#include "Platform/SystemClock.h"
#include "Projects/ProjectUse.h"
#include "Projects/RecentFolders.h"
#include "Workspace/SharedMigration.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace Bralto::ProjectHandover {

namespace {

constexpr auto InBundle = "/Contents/MacOS/Bralto";

QString replaceBy(const QString& executable, const QStringList& arguments)
{
    std::vector<QByteArray> texts{QFile::encodeName(executable)};
    for (const QString& argument : arguments)
        texts.push_back(QFile::encodeName(argument));
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (QByteArray& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    execv(pointers.front(), pointers.data());
    return QString::fromLocal8Bit(std::strerror(errno));
}

} // namespace

std::optional<Request> request(const LaunchRole& role, const QStringList& arguments)
{
    if (role.isFolderApp() || arguments.size() != 1)
        return std::nullopt;
    const QFileInfo info(arguments.first());
    if (!info.exists())
        return std::nullopt;
    const QString path = Paths::standardised(info.absoluteFilePath());
    if (info.isDir())
        return Request{path, {}};
    return Request{Paths::parent(path), {path}};
}

QString replaceProcess(const LaunchRole& role, const Request& request)
{
    {
        // What is set here is written before the process is replaced. A new user is told from an
        // old one before the first trace is left.
        const ProcessDefaults domains(AppPaths::current(), role);
        DefaultsStore& shared = domains.defaults().shared;
        SharedMigration::migrateIfNeeded(shared, domains.defaults().standard);
        ProjectUse::markUsed(shared, request.folder, SystemClock().now());
        shared.setStrings(RecentFolders::Key,
                          RecentFolders::remembering(RecentFolders::load(shared), request.folder));
    }
    const auto bundle = BraltoCommandLine::installSpace(role, request.folder);
    if (!bundle)
        return bundle.error();
    return replaceBy(*bundle + QLatin1String(InBundle), request.files);
}

} // namespace Bralto::ProjectHandover
