#include "App/WebLibrary.h"

#include <QFile>
#include <QLoggingCategory>

#include <dlfcn.h>

namespace Bralto {

namespace {

Q_LOGGING_CATEGORY(log, "bralto.web")

constexpr auto InBundle = "/Contents/Frameworks/libBraltoWeb.so";
constexpr auto BesideExecutable = "/../Frameworks/libBraltoWeb.so";

} // namespace

WebLibrary::WebLibrary(QStringList candidates, PageProfile profile)
    : m_candidates(std::move(candidates))
    , m_profile(std::move(profile))
{
}

// The library itself stays: what the toolkit started in it ends with the process.
WebLibrary::~WebLibrary() = default;

QStringList WebLibrary::candidates(const LaunchRole& role, const QString& executableFolder)
{
    QStringList result;
    if (!role.hostBundlePath.isEmpty())
        result.append(role.hostBundlePath + QLatin1String(InBundle));
    result.append(executableFolder + QLatin1String(BesideExecutable));
    return result;
}

PageEngines* WebLibrary::engines()
{
    if (m_engines || m_wasLookedFor)
        return m_engines.get();
    m_wasLookedFor = true;
    QString reason;
    for (const QString& path : m_candidates) {
        void* library = dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_GLOBAL);
        void* entry = library ? dlsym(library, MakePageEnginesEntry) : nullptr;
        if (entry) {
            m_engines.reset(reinterpret_cast<MakePageEngines>(entry)(m_profile));
            return m_engines.get();
        }
        // The best candidate's reason is the one that helps.
        if (const char* text = dlerror(); text && reason.isEmpty())
            reason = QString::fromLocal8Bit(text);
    }
    qCWarning(log, "There are no pages: %s", qUtf8Printable(reason));
    return nullptr;
}

std::unique_ptr<PageEngine> WebLibrary::make(PageDelegate& delegate)
{
    PageEngines* engines = this->engines();
    return engines ? engines->make(delegate) : nullptr;
}

void WebLibrary::clearBrowsingData(std::function<void()> done)
{
    if (PageEngines* engines = this->engines())
        engines->clearBrowsingData(std::move(done));
    else
        done();
}

} // namespace Bralto
