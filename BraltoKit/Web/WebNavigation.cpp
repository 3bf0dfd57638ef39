#include "Web/WebNavigation.h"

#include "Web/LoadErrors.h"

#include <QPointer>
#include <QWebEngineHistory>
#include <QWebEnginePage>

namespace Bralto {

namespace {

/// A bar that moves at once says that the click was heard.
constexpr double FirstProgress = 0.1;
/// Its document comes some milliseconds after the failure.
constexpr std::chrono::seconds ErrorPageLimit{1};

} // namespace

WebNavigation::WebNavigation(QWebEnginePage& page, WebCertificates& certificates,
                             std::chrono::milliseconds answerLimit, QObject* parent)
    : QObject(parent)
    , m_page(page)
    , m_certificates(certificates)
{
    m_answerTimer.setSingleShot(true);
    m_answerTimer.setInterval(answerLimit);
    connect(&m_answerTimer, &QTimer::timeout, this, [this] {
        const QUrl url = this->url();
        // Its own report of the stop comes too late to be told.
        m_isLoading = false;
        m_page.triggerAction(QWebEnginePage::Stop);
        m_wanted = url;
        fail(LoadErrors::timedOut(url));
    });
    m_errorTimer.setSingleShot(true);
    connect(&m_errorTimer, &QTimer::timeout, this, &WebNavigation::tellError);
    connect(&page, &QWebEnginePage::loadingChanged, this, &WebNavigation::follow);
    connect(&page, &QWebEnginePage::loadProgress, this, [this](int percent) {
        if (!m_isLoading || percent >= 100)
            return;
        m_progress = std::max(m_progress, percent / 100.0);
        emit changed();
    });
    connect(&page, &QWebEnginePage::titleChanged, this, &WebNavigation::setTitle);
    connect(&page, &QWebEnginePage::urlChanged, this, [this](const QUrl& url) {
        m_url = url;
        emit changed();
    });
    connect(&page, &QWebEnginePage::certificateError, this, &WebNavigation::decide);
}

QUrl WebNavigation::url() const
{
    return m_wanted.isEmpty() ? m_url : m_wanted;
}

bool WebNavigation::canGoBack() const
{
    return m_page.history()->canGoBack();
}

bool WebNavigation::canGoForward() const
{
    return m_page.history()->canGoForward();
}

// --- what is asked for

void WebNavigation::begin(const QUrl& url)
{
    m_hasEnded = false;
    m_wanted = url;
    m_isLoading = true;
    m_isCommitted = false;
    m_progress = FirstProgress;
    m_refused.reset();
    m_error.reset();
    m_errorTimer.stop();
    m_isErrorThere = false;
    m_awaitsWord = false;
    m_answerTimer.start();
    emit began();
}

void WebNavigation::load(const QUrl& url)
{
    begin(url);
    if (LoadErrors::isForPages(url)) {
        m_page.load(url);
    } else {
        m_error = LoadErrors::forScheme(url);
        m_errorTimer.start(0);
    }
    emit changed();
}

void WebNavigation::goBack()
{
    if (canGoBack())
        // The engine's own step passes over a page that the user never touched, which is where an
        // agent wants to go.
        m_page.history()->goToItem(m_page.history()->backItem());
}

void WebNavigation::goForward()
{
    if (canGoForward())
        m_page.history()->goToItem(m_page.history()->forwardItem());
}

void WebNavigation::reload()
{
    const QUrl url = this->url();
    if (m_hasEnded || !m_wanted.isEmpty()) {
        load(url);
        return;
    }
    begin({});
    m_page.triggerAction(QWebEnginePage::Reload);
    emit changed();
}

void WebNavigation::stop()
{
    if (m_isLoading)
        m_page.triggerAction(QWebEnginePage::Stop);
}

void WebNavigation::visitDespiteCertificate()
{
    if (!m_refused)
        return;
    m_certificates.take(*m_refused);
    load(url());
}

// --- what the page tells

void WebNavigation::follow(const QWebEngineLoadingInfo& info)
{
    if (info.status() != QWebEngineLoadingInfo::LoadStartedStatus) {
        finish(info);
        return;
    }
    if (m_isLoading)
        return;
    // A link, a script, or a step through the history: the old address stays till the page comes.
    begin({});
    emit changed();
}

void WebNavigation::meet(const QUrl& url)
{
    // A small document may have been there before its word came.
    if (std::exchange(m_awaitsWord, false) && url == m_url)
        return;
    const QPointer<WebNavigation> self(this);
    emit replaced();
    if (!self)
        return;
    if (url.scheme() != QStringLiteral("chrome-error")) {
        commit(url);
        return;
    }
    // The engine's own, in place of a page that failed.
    m_isErrorThere = true;
    if (m_error)
        tellError();
}

void WebNavigation::commit(const QUrl& url)
{
    m_answerTimer.stop();
    m_isCommitted = true;
    m_wanted.clear();
    m_url = url;
    m_title.clear();
    emit committed();
}

void WebNavigation::finish(const QWebEngineLoadingInfo& info)
{
    using Info = QWebEngineLoadingInfo;
    // Told of already, when it took too long.
    if (!m_isLoading)
        return;
    const QPointer<WebNavigation> self(this);
    // What a server sends with an error is a page, if it sends one.
    const bool isError = info.errorDomain() == Info::HttpStatusCodeDomain;
    if (info.status() == Info::LoadSucceededStatus ||
        (info.status() == Info::LoadFailedStatus && isError && !info.isErrorPage())) {
        // A document without scripts, such as an empty one, does not tell that it has come.
        if (!m_isCommitted) {
            emit replaced();
            if (self)
                commit(info.url());
            if (self)
                m_awaitsWord = true;
        }
        if (self)
            succeed();
        return;
    }
    if (info.status() == Info::LoadStoppedStatus) {
        const bool isThere = m_isCommitted;
        m_wanted.clear();
        m_url = m_page.url();
        end(isThere ? 1 : 0);
        return;
    }
    m_answerTimer.stop();
    m_wanted = info.url();
    m_error = isError ? LoadErrors::forStatus(info.errorCode(), info.url())
                      : LoadErrors::forNetwork(info.errorCode(), info.url());
    // What can't be taken anyway is a plain failure.
    if (m_error->kind == PageLoadError::Kind::Certificate && !m_refused)
        m_error->kind = PageLoadError::Kind::Failed;
    // A call that comes now must find the document that stays.
    if (m_isErrorThere || !info.isErrorPage())
        tellError();
    else
        m_errorTimer.start(ErrorPageLimit);
}

void WebNavigation::tellError()
{
    m_errorTimer.stop();
    if (const auto error = std::exchange(m_error, std::nullopt))
        fail(*error);
}

void WebNavigation::succeed()
{
    const QPointer<WebNavigation> self(this);
    m_wanted.clear();
    end(1);
    if (self)
        setTitle(m_page.title());
}

void WebNavigation::end(double progress)
{
    m_answerTimer.stop();
    m_isLoading = false;
    m_progress = progress;
    emit changed();
}

void WebNavigation::fail(const PageLoadError& error)
{
    const QPointer<WebNavigation> self(this);
    end(0);
    if (self)
        emit failed(error);
}

void WebNavigation::endWithProcess()
{
    const QUrl url = this->url();
    m_hasEnded = true;
    m_wanted = url;
    end(0);
}

// --- titles

bool WebNavigation::isAddress(const QString& title, const QUrl& url)
{
    const auto plain = [](QString text) {
        for (const char* scheme : {"https://", "http://", "file://"})
            if (text.startsWith(QLatin1String(scheme)))
                text.remove(0, qsizetype(qstrlen(scheme)));
        if (text.startsWith(QStringLiteral("www.")))
            text.remove(0, 4);
        if (text.endsWith(u'/'))
            text.chop(1);
        return text;
    };
    const QString wanted = plain(title);
    return wanted == plain(url.toString(QUrl::FullyEncoded)) || wanted == plain(url.toString()) ||
           wanted == plain(QUrl::fromPercentEncoding(url.toEncoded()));
}

void WebNavigation::setTitle(const QString& title)
{
    const QPointer<WebNavigation> self(this);
    if (title == m_title || isAddress(title, m_url) || isAddress(title, m_page.url()) ||
        (!m_wanted.isEmpty() && isAddress(title, m_wanted)))
        return;
    // Until the page is there, it is still the old one's.
    if (m_isLoading && !m_isCommitted)
        return;
    m_title = title;
    emit changed();
}

// --- certificates

void WebNavigation::decide(QWebEngineCertificateError error)
{
    const auto entry = WebCertificates::entryFor(error);
    if (error.isOverridable() && m_certificates.isTaken(entry)) {
        error.acceptCertificate();
        return;
    }
    // What a page fetches in addition is refused as well, but it can't be the user's choice.
    if (error.isOverridable() && m_isLoading && !m_isCommitted)
        m_refused = entry;
    error.rejectCertificate();
}

} // namespace Bralto
