#include "Web/WebRequests.h"

#include "Web/WebContents.h"

#include <QTimer>
#include <QWebEngineClientCertificateSelection>
#include <QWebEngineFileSystemAccessRequest>
#include <QWebEngineNewWindowRequest>
#include <QWebEngineQuotaRequest>
#include <QWebEngineRegisterProtocolHandlerRequest>

#include <chrono>

namespace Bralto {

namespace {

/// How long a window without an address may wait for one.
constexpr std::chrono::seconds AddressLimit{10};

bool isAddress(const QUrl& url)
{
    return !url.isEmpty() && url.scheme() != QStringLiteral("about");
}

/// A window that a page opened without an address, until it leads it somewhere. Loads nothing.
class BlankWindow final : public QWebEnginePage {
public:
    BlankWindow(QWebEngineProfile* profile, QObject* parent, std::function<void(const QUrl&)> lead)
        : QWebEnginePage(profile, parent)
        , m_lead(std::move(lead))
    {
        QTimer::singleShot(AddressLimit, this, &QObject::deleteLater);
    }

protected:
    bool acceptNavigationRequest(const QUrl& url, NavigationType /*type*/,
                                 bool isMainFrame) override
    {
        if (!isMainFrame || !isAddress(url))
            return true;
        if (const auto lead = std::exchange(m_lead, nullptr))
            lead(url);
        deleteLater();
        return false;
    }

private:
    std::function<void(const QUrl&)> m_lead;
};

/// What a page wants to do, for the end of "wants to …". Empty: never allowed.
QString wish(QWebEnginePage::Feature feature)
{
    switch (feature) {
    case QWebEnginePage::Geolocation:
        return QStringLiteral("know your location");
    case QWebEnginePage::MediaAudioCapture:
        return QStringLiteral("use your microphone");
    case QWebEnginePage::MediaVideoCapture:
        return QStringLiteral("use your camera");
    case QWebEnginePage::MediaAudioVideoCapture:
        return QStringLiteral("use your camera and microphone");
    case QWebEnginePage::MouseLock:
        return QStringLiteral("hide the pointer");
    default:
        // Nothing here shows its notifications, and the screen is nobody's.
        return {};
    }
}

} // namespace

WebRequests::WebRequests(QWebEnginePage& page, WebQuestions& questions, PageDelegate& delegate,
                         QObject* parent)
    : QObject(parent)
    , m_page(page)
    , m_questions(questions)
    , m_delegate(delegate)
{
    connect(&page, &QWebEnginePage::newWindowRequested, this, &WebRequests::openWindow);
    connect(&page, &QWebEnginePage::featurePermissionRequested, this, &WebRequests::askPermission);
    connect(&page, &QWebEnginePage::featurePermissionRequestCanceled, this,
            &WebRequests::forgetPermission);
    refuseTheRest();
}

// --- windows

void WebRequests::openWindow(QWebEngineNewWindowRequest& request)
{
    if (isAddress(request.requestedUrl()))
        tellSoon(request.requestedUrl());
    else
        awaitAddress(request);
}

void WebRequests::awaitAddress(QWebEngineNewWindowRequest& request)
{
    auto* window =
        new BlankWindow(m_page.profile(), &m_page, [self = QPointer(this)](const QUrl& url) {
            if (self)
                self->tellSoon(url);
        });
    request.openIn(window);
}

void WebRequests::tellSoon(const QUrl& url)
{
    // The page that asks is still on the stack, and this load will replace it.
    QMetaObject::invokeMethod(
        this, [this, url] { m_delegate.pageWantsNewPage(url); }, Qt::QueuedConnection);
}

// --- permissions

void WebRequests::askPermission(const QUrl& origin, QWebEnginePage::Feature feature)
{
    const QString text = wish(feature);
    if (text.isEmpty()) {
        m_page.setFeaturePermission(origin, feature, QWebEnginePage::PermissionDeniedByUser);
        return;
    }
    const auto answered = [this, origin, feature](const PageAnswer& answer) {
        m_permissions.erase({origin, int(feature)});
        m_page.setFeaturePermission(origin, feature,
                                    answer.isAccepted ? QWebEnginePage::PermissionGrantedByUser
                                                      : QWebEnginePage::PermissionDeniedByUser);
    };
    const QPointer<WebRequests> self(this);
    const quint64 id = m_questions.ask(
        {0, PageQuestion::Kind::Permission, WebContents::originText(origin), text}, answered);
    if (self)
        m_permissions[{origin, int(feature)}] = id;
}

void WebRequests::forgetPermission(const QUrl& origin, QWebEnginePage::Feature feature)
{
    const auto found = m_permissions.find({origin, int(feature)});
    if (found == m_permissions.end())
        return;
    const quint64 id = found->second;
    m_permissions.erase(found);
    m_questions.withdraw(id);
}

void WebRequests::refuseTheRest()
{
    connect(&m_page, &QWebEnginePage::fileSystemAccessRequested, this,
            [](QWebEngineFileSystemAccessRequest request) { request.reject(); });
    connect(&m_page, &QWebEnginePage::quotaRequested, this,
            [](QWebEngineQuotaRequest request) { request.reject(); });
    connect(&m_page, &QWebEnginePage::registerProtocolHandlerRequested, this,
            [](QWebEngineRegisterProtocolHandlerRequest request) { request.reject(); });
    connect(&m_page, &QWebEnginePage::selectClientCertificate, this,
            [](QWebEngineClientCertificateSelection selection) { selection.selectNone(); });
}

} // namespace Bralto
