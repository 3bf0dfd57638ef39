#include "Launch/DesktopLibrary.h"

#include <QFile>

#include <dlfcn.h>

namespace Bralto::DesktopLibrary {

namespace {

constexpr auto InBundle = "/Contents/Frameworks/libBraltoDesktop.so";
constexpr auto BesideExecutable = "/../Frameworks/libBraltoDesktop.so";

} // namespace

QStringList candidates(const LaunchRole& role, const QString& executableFolder)
{
    QStringList result;
    if (!role.hostBundlePath.isEmpty())
        result.append(role.hostBundlePath + QLatin1String(InBundle));
    result.append(executableFolder + QLatin1String(BesideExecutable));
    return result;
}

Expected<Entry, QString> load(const QStringList& candidates)
{
    QString reason;
    for (const QString& path : candidates) {
        // Global, so that a library that is loaded later finds the same toolkit.
        void* library = dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_GLOBAL);
        void* entry = library ? dlsym(library, EntryPoint) : nullptr;
        if (entry)
            return reinterpret_cast<Entry>(entry);
        // The best candidate's reason is the one that helps.
        if (const char* text = dlerror(); text && reason.isEmpty())
            reason = QString::fromLocal8Bit(text);
    }
    return Unexpected{reason};
}

} // namespace Bralto::DesktopLibrary
