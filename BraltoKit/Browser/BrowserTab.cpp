#include "Browser/BrowserTab.h"

#include "Base/Uuid.h"

#include <QPointer>
#include <QRegularExpression>
#include <QUrlQuery>

#include <algorithm>
#include <utility>

namespace Bralto {

namespace {

constexpr auto SearchEndpoint = "https://www.google.com/search";

bool matches(const char* pattern, const QString& text)
{
    const QRegularExpression expression(QString::fromLatin1(pattern),
                                        QRegularExpression::UseUnicodePropertiesOption);
    return expression.match(text).hasMatch();
}

std::optional<QUrl> parsed(const QString& text)
{
    const QUrl url(text, QUrl::TolerantMode);
    return url.isValid() && !url.scheme().isEmpty() ? std::optional(url) : std::nullopt;
}

QUrl searchFor(const QString& text)
{
    QUrlQuery query;
    // A plus sign in a query means a blank.
    query.addQueryItem(QStringLiteral("q"), QString::fromLatin1(QUrl::toPercentEncoding(text)));
    QUrl url(QString::fromLatin1(SearchEndpoint));
    url.setQuery(query);
    return url;
}

} // namespace

BrowserTab::BrowserTab(const BrowserServices& services, const QUrl& url, Load load, QObject* parent)
    : QObject(parent)
    , m_services(services)
    , m_id(newUuid())
    , m_title(QStringLiteral("New Tab"))
{
    if (services.zoom)
        connect(services.zoom, &Zoom::changed, this, [this](Zoom::Area area) {
            if (area == Zoom::Area::Browser)
                applyZoom();
        });
    if (url.isEmpty()) {
        requestAddressFocus();
    } else if (load == Load::Now) {
        this->load(url);
    } else {
        setUrl(url);
    }
}

BrowserTab::BrowserTab(const QUrl& url, QObject* parent)
    : BrowserTab(BrowserServices{}, url, Load::Now, parent)
{
}

BrowserTab::~BrowserTab()
{
    // The engine may still report while it goes, to a tab that is whole.
    m_isClosed = true;
    m_page.reset();
}

// --- the address

std::optional<QUrl> BrowserTab::resolve(const QString& typed)
{
    const QString text = typed.trimmed();
    if (text.isEmpty())
        return std::nullopt;
    if (text.contains(QStringLiteral("://"))) {
        if (auto url = parsed(text))
            return url;
    }
    if (text.startsWith(QStringLiteral("localhost")) ||
        text.startsWith(QStringLiteral("127.0.0.1")) ||
        text.startsWith(QStringLiteral("0.0.0.0")) ||
        matches(R"(^\d{1,3}(\.\d{1,3}){3}(:\d+)?(/.*)?$)", text)) {
        if (auto url = parsed(QStringLiteral("http://") + text))
            return url;
    }
    if (!text.contains(u' ') && matches(R"(^[\w-]+(\.[\w-]+)+(:\d+)?(/.*)?$)", text)) {
        if (auto url = parsed(QStringLiteral("https://") + text))
            return url;
    }
    return searchFor(text);
}

void BrowserTab::setAddressText(const QString& text)
{
    if (text == m_addressText)
        return;
    m_addressText = text;
    emit addressTextChanged(text);
}

void BrowserTab::setEditingAddress(bool editing)
{
    m_isEditingAddress = editing;
    if (!editing)
        setAddressText(m_url.toString(QUrl::FullyEncoded));
}

void BrowserTab::requestAddressFocus()
{
    ++m_addressFocusRequest;
    emit addressFocusRequested();
}

void BrowserTab::submit()
{
    if (const auto url = resolve(m_addressText)) {
        m_isEditingAddress = false;
        load(*url);
    }
}

void BrowserTab::setUrl(const QUrl& url)
{
    if (!m_isEditingAddress)
        setAddressText(url.toString(QUrl::FullyEncoded));
    if (url == m_url)
        return;
    m_url = url;
    emit urlChanged(url);
}

// --- the page

PageEngine* BrowserTab::page()
{
    if (m_page || m_isClosed || !m_services.pages)
        return m_page.get();
    m_page = m_services.pages->make(*this);
    if (!m_page) {
        setStatus(QStringLiteral("Pages can’t be shown: the page engine could not be loaded."),
                  false, false);
        return nullptr;
    }
    applyZoom();
    emit pageMade();
    if (!m_url.isEmpty())
        m_page->load(m_url);
    return m_page.get();
}

void BrowserTab::load(const QUrl& url)
{
    setStatus({}, false, false);
    // The field shows where one is being led, whatever was typed before.
    setAddressText(url.toString(QUrl::FullyEncoded));
    setUrl(url);
    if (!m_page) {
        (void)page();
    } else if (m_responds) {
        m_page->load(url);
    } else {
        // A process that stands still would never get to it; the next one does.
        m_loadsAfterEnd = true;
        m_page->terminate();
    }
}

void BrowserTab::goBack()
{
    if (m_page)
        m_page->goBack();
}

void BrowserTab::goForward()
{
    if (m_page)
        m_page->goForward();
}

void BrowserTab::reload()
{
    if (m_url.isEmpty())
        return;
    if (m_errorMessage || !m_page || !m_responds) {
        load(m_url);
        return;
    }
    setStatus({}, false, false);
    m_page->reload();
}

void BrowserTab::stopLoading()
{
    if (m_page)
        m_page->stop();
}

void BrowserTab::visitAnyway()
{
    if (!m_page || !m_canVisitAnyway)
        return;
    setStatus({}, false, false);
    m_page->visitDespiteCertificate();
}

void BrowserTab::stopPage()
{
    if (m_page)
        m_page->terminate();
}

void BrowserTab::openInDefaultBrowser()
{
    if (m_services.desktop && !m_url.isEmpty())
        m_services.desktop->open(m_url);
}

void BrowserTab::answer(quint64 question, const PageAnswer& answer)
{
    const auto removed = std::erase_if(
        m_questions, [question](const PageQuestion& each) { return each.id == question; });
    if (removed == 0)
        return;
    emit questionsChanged();
    if (m_page)
        m_page->answer(question, answer);
}

void BrowserTab::leaveFullScreen()
{
    if (m_page)
        m_page->leaveFullScreen();
    pageWantsFullScreen(false);
}

void BrowserTab::close()
{
    m_isClosed = true;
    if (!m_page)
        return;
    emit pageGoing();
    m_page.reset();
}

void BrowserTab::applyZoom()
{
    if (m_page && m_services.zoom)
        m_page->setZoomFactor(m_services.zoom->level(Zoom::Area::Browser));
}

// --- being driven

QString BrowserTab::actingTool() const
{
    return m_acting.empty() ? QString() : m_acting.back().second;
}

std::shared_ptr<void> BrowserTab::markActing(const QString& tool)
{
    const int number = ++m_lastActing;
    m_acting.emplace_back(number, tool);
    emit actingToolChanged();
    const auto finish = [tab = QPointer<BrowserTab>(this), number](void*) {
        if (!tab)
            return;
        std::erase_if(tab->m_acting, [number](const auto& each) { return each.first == number; });
        emit tab->actingToolChanged();
    };
    return {static_cast<void*>(this), finish};
}

// --- what the engine tells

void BrowserTab::pageChanged()
{
    if (!m_page)
        return;
    // Between two pages the engine reports an empty title.
    if (const QString title = m_page->title(); !title.isEmpty() && title != m_title) {
        m_title = title;
        m_hasTitle = true;
        emit titleChanged(title);
    }
    if (const QUrl url = m_page->url(); !url.isEmpty())
        setUrl(url);
    const bool canGoBack = m_page->canGoBack();
    const bool canGoForward = m_page->canGoForward();
    if (canGoBack != m_canGoBack || canGoForward != m_canGoForward) {
        m_canGoBack = canGoBack;
        m_canGoForward = canGoForward;
        emit historyChanged();
    }
    if (const double progress = m_page->progress(); progress != m_progress) {
        m_progress = progress;
        emit progressChanged(progress);
    }
    if (const bool isLoading = m_page->isLoading(); isLoading != m_isLoading) {
        m_isLoading = isLoading;
        emit isLoadingChanged(isLoading);
    }
}

void BrowserTab::setStatus(const std::optional<QString>& error, bool canVisitAnyway, bool hasEnded)
{
    if (error == m_errorMessage && canVisitAnyway == m_canVisitAnyway && hasEnded == m_hasEnded)
        return;
    m_errorMessage = error;
    m_canVisitAnyway = canVisitAnyway;
    m_hasEnded = hasEnded;
    emit statusChanged();
}

void BrowserTab::pageCommitted()
{
    setStatus({}, false, false);
    pageResponds(true);
    pageWantsFullScreen(false);
    pageIconChanged({});
}

void BrowserTab::pageFailed(const PageLoadError& error)
{
    if (error.kind != PageLoadError::Kind::Cancelled)
        setStatus(error.text, error.kind == PageLoadError::Kind::Certificate, m_hasEnded);
}

void BrowserTab::pageLogged(const QString& level, const QString& text)
{
    m_console.append(level, text, m_services.clock->now());
}

void BrowserTab::pageWantsNewPage(const QUrl& url)
{
    load(url);
}

void BrowserTab::pageAsked(const PageQuestion& question)
{
    m_questions.push_back(question);
    emit questionsChanged();
}

void BrowserTab::pageWithdrew(quint64 question)
{
    const auto removed = std::erase_if(
        m_questions, [question](const PageQuestion& each) { return each.id == question; });
    if (removed != 0)
        emit questionsChanged();
}

void BrowserTab::pageWantsMenu(const PageContext& context, const QPoint& position)
{
    emit menuRequested(context, position);
}

void BrowserTab::pageHovered(const QUrl& link)
{
    if (link == m_hoveredLink)
        return;
    m_hoveredLink = link;
    emit hoveredLinkChanged(link);
}

void BrowserTab::pageWantsFullScreen(bool wants)
{
    if (wants == m_isFullScreen)
        return;
    m_isFullScreen = wants;
    emit fullScreenChanged(wants);
}

void BrowserTab::pageIconChanged(const QByteArray& png)
{
    if (png == m_icon)
        return;
    m_icon = png;
    emit iconChanged();
}

void BrowserTab::pageEnded()
{
    pageResponds(true);
    if (!std::exchange(m_loadsAfterEnd, false)) {
        setStatus(QStringLiteral("This page has stopped."), false, true);
        return;
    }
    // The engine is still telling of the end.
    QMetaObject::invokeMethod(
        this, [this] { load(m_url); }, Qt::QueuedConnection);
}

void BrowserTab::pageResponds(bool responds)
{
    if (responds == m_responds)
        return;
    m_responds = responds;
    emit statusChanged();
}

} // namespace Bralto
