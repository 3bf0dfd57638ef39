#include "Web/WebProfile.h"

#include <QDir>
#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QWebEngineDownloadRequest>
#include <QWebEngineSettings>

namespace Bralto::WebProfile {

namespace {

void restrict(QWebEngineSettings& settings)
{
    using Settings = QWebEngineSettings;
    // A file's page is its own: no other files, nothing from the net.
    settings.setAttribute(Settings::LocalContentCanAccessFileUrls, false);
    settings.setAttribute(Settings::LocalContentCanAccessRemoteUrls, false);
    settings.setAttribute(Settings::PluginsEnabled, false);
    settings.setAttribute(Settings::PdfViewerEnabled, false);
    // The clipboard only on a click, and never to read it.
    settings.setAttribute(Settings::JavascriptCanAccessClipboard, false);
    settings.setAttribute(Settings::JavascriptCanPaste, false);
    settings.setAttribute(Settings::ScreenCaptureEnabled, false);
    settings.setAttribute(Settings::WebRTCPublicInterfacesOnly, true);
    settings.setAttribute(Settings::AllowRunningInsecureContent, false);
    settings.setAttribute(Settings::AllowGeolocationOnInsecureOrigins, false);
    settings.setAttribute(Settings::AllowWindowActivationFromJavaScript, false);
    settings.setAttribute(Settings::HyperlinkAuditingEnabled, false);
    // An agent's steps leave the keyboard where it is.
    settings.setAttribute(Settings::FocusOnNavigationEnabled, false);
    // A window that a page asks for is a load in its own tab, which a tool's click may ask for too.
    settings.setAttribute(Settings::JavascriptCanOpenWindows, true);
    settings.setAttribute(Settings::FullScreenSupportEnabled, true);
    // The program has a page of its own for what went wrong, but the engine's gives it a place in
    // the history, from which one goes back to where one was.
    settings.setAttribute(Settings::ErrorPageEnabled, true);
    settings.setUnknownUrlSchemePolicy(Settings::AllowUnknownUrlSchemesFromUserInteraction);
}

void makePrivateFolder(const QString& path)
{
    QDir().mkpath(path);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QString languages()
{
    QStringList result = QLocale::system().uiLanguages();
    // The language of a system without one is no language.
    result.removeAll(QStringLiteral("C"));
    return result.isEmpty() ? QStringLiteral("en-US,en") : result.join(u',');
}

} // namespace

QString userAgent(const QString& engines, const QString& applicationName)
{
    static const QRegularExpression toolkit(QStringLiteral("QtWebEngine/\\S+\\s*"));
    QString result = engines;
    result.remove(toolkit);
    if (!applicationName.isEmpty())
        result += u' ' + applicationName;
    return result;
}

std::unique_ptr<QWebEngineProfile> make(const PageProfile& profile)
{
    // Without a name nothing is kept.
    auto result = profile.storage.isEmpty()
                      ? std::make_unique<QWebEngineProfile>()
                      : std::make_unique<QWebEngineProfile>(QStringLiteral("pages"));
    if (!profile.storage.isEmpty()) {
        makePrivateFolder(profile.storage);
        makePrivateFolder(profile.cache);
        result->setPersistentStoragePath(profile.storage);
        result->setCachePath(profile.cache);
    }
    result->setHttpUserAgent(userAgent(result->httpUserAgent(), profile.applicationName));
    result->setHttpAcceptLanguage(languages());
    restrict(*result->settings());
    QObject::connect(result.get(), &QWebEngineProfile::downloadRequested, result.get(),
                     [](QWebEngineDownloadRequest* download) { download->cancel(); });
    return result;
}

} // namespace Bralto::WebProfile
