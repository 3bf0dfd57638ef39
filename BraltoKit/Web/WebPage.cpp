#include "Web/WebPage.h"

#include "Web/WebContents.h"
#include "Web/WebEngines.h"

#include <QBuffer>
#include <QIcon>
#include <QWebEngineFullScreenRequest>
#include <QWebEngineScriptCollection>

#include <initializer_list>

namespace Bralto {

namespace {

constexpr int LargestIcon = 32;
constexpr int SmallestIcon = 16;

QWebEngineScript scriptFor(const WebBridge::Keys& keys)
{
    QWebEngineScript script;
    script.setName(QStringLiteral("bralto"));
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::MainWorld);
    script.setRunsOnSubFrames(true);
    script.setSourceCode(WebBridge::documentScript(keys));
    return script;
}

} // namespace

WebPage::WebPage(WebEngines& engines, PageDelegate& delegate)
    : m_engines(engines)
    , m_delegate(delegate)
    , m_questions(delegate)
    , m_contents(*new WebContents(&engines.profile(), m_questions))
    , m_navigation(m_contents, engines.certificates(), engines.limits().answer, this)
    , m_console(delegate, this)
    , m_calls(m_contents, m_keys, this)
    , m_pictures(m_contents, m_place, m_calls, engines.turns(), this)
    , m_heartbeat(m_contents, engines.limits().patience, this)
    , m_requests(m_contents, m_questions, delegate, this)
    , m_logins(m_contents, m_questions, this)
{
    engines.asking().add(m_keys.ask, m_questions);
    m_contents.scripts().insert(scriptFor(m_keys));
    setDark(engines.isDark());
    m_place.view().setPage(&m_contents);
    connectNavigation();
    connectContents();
    connectView();
}

WebPage::~WebPage()
{
    m_isEnding = true;
    delete m_inspector;
    if (const auto found = std::exchange(m_found, nullptr))
        found(0, 0);
    m_calls.endAll({PageScriptError::Kind::Ended});
    m_questions.withdrawAll();
    // The parts go one by one, and none may tell the others.
    for (QObject* part : std::initializer_list<QObject*>{&m_contents, &m_navigation, &m_calls,
                                                         &m_questions, &m_heartbeat, &m_logins})
        part->disconnect(this);
    m_engines.retire(m_contents, m_place.widget());
}

// --- the parts

void WebPage::connectNavigation()
{
    connect(&m_navigation, &WebNavigation::changed, this, [this] {
        m_heartbeat.setWanted(m_navigation.isLoading() || !m_calls.isIdle());
        m_delegate.pageChanged();
    });
    connect(&m_navigation, &WebNavigation::began, &m_logins, &WebLogins::withdraw);
    connect(&m_logins, &WebLogins::reloadRequested, &m_navigation, &WebNavigation::reload);
    connect(&m_navigation, &WebNavigation::replaced, this, &WebPage::forgetDocument);
    connect(&m_navigation, &WebNavigation::committed, this, [this] {
        m_hasDocument = true;
        layPaper();
        m_isFullScreen = false;
        const QPointer<WebPage> self(this);
        m_delegate.pageCommitted();
        if (self)
            m_delegate.pageHovered({});
        if (self)
            m_delegate.pageChanged();
    });
    connect(&m_navigation, &WebNavigation::failed, this,
            [this](const PageLoadError& error) { m_delegate.pageFailed(error); });
    connect(&m_calls, &WebCalls::begun, this, [this] {
        m_place.hold();
        m_heartbeat.setWanted(true);
    });
    connect(&m_calls, &WebCalls::idle, this, [this] {
        m_place.release();
        m_heartbeat.setWanted(m_navigation.isLoading());
    });
    connect(&m_heartbeat, &WebHeartbeat::respondsChanged, this,
            [this](bool responds) { m_delegate.pageResponds(responds); });
    connect(&m_questions, &WebQuestions::changed, this, &WebPage::followQuestions);
}

void WebPage::connectContents()
{
    connect(&m_contents, &WebContents::consoleMessage, this, &WebPage::read);
    connect(&m_contents, &QWebEnginePage::linkHovered, this,
            [this](const QString& link) { m_delegate.pageHovered(QUrl(link)); });
    connect(&m_contents, &QWebEnginePage::fullScreenRequested, this,
            [this](QWebEngineFullScreenRequest request) {
                m_isFullScreen = request.toggleOn();
                request.accept();
                m_delegate.pageWantsFullScreen(m_isFullScreen);
            });
    connect(&m_contents, &QWebEnginePage::iconChanged, this, &WebPage::showIcon);
    connect(&m_contents, &QWebEnginePage::renderProcessTerminated, this, &WebPage::endWithProcess);
    connect(&m_contents, &QWebEnginePage::loadFinished, this,
            [this] { m_contents.setZoomFactor(m_zoom); });
}

void WebPage::connectView()
{
    connect(&m_place.view(), &WebView::menuRequested, this,
            [this](const PageContext& context, const QPoint& position) {
                m_delegate.pageWantsMenu(context, position);
            });
    connect(&m_place.view(), &WebView::escapePressed, this, &WebPage::leaveFullScreen);
    connect(&m_place.view(), &WebView::pressed, &m_heartbeat, &WebHeartbeat::check);
}

void WebPage::read(int level, const QString& text, int line, const QString& source)
{
    using Kind = WebBridge::Message::Kind;
    const auto message = WebBridge::read(m_keys.bridge, text);
    if (!message) {
        m_console.addNative(level, text, line, source);
        return;
    }
    if (message->kind == Kind::Hello) {
        m_navigation.meet(QUrl(message->text));
    } else if (message->kind == Kind::Muted) {
        m_console.expectMuted();
    } else if (message->kind == Kind::Log) {
        m_console.add(message->level, message->text);
    } else {
        // What a script logged comes before what it gave.
        const QPointer<WebPage> self(this);
        m_console.flush();
        if (self)
            m_calls.read(*message);
    }
}

void WebPage::forgetDocument()
{
    const QPointer<WebPage> self(this);
    m_calls.endAll({PageScriptError::Kind::Navigated});
    if (self)
        m_questions.withdrawDocuments();
    if (!self)
        return;
    m_heartbeat.restart();
    m_contents.setZoomFactor(m_zoom);
}

void WebPage::endWithProcess()
{
    const QPointer<WebPage> self(this);
    m_calls.endAll({PageScriptError::Kind::Ended});
    if (self)
        m_questions.withdrawAll();
    if (self)
        m_heartbeat.restart();
    if (self)
        m_navigation.endWithProcess();
    if (self)
        m_delegate.pageEnded();
}

void WebPage::showIcon(const QIcon& icon)
{
    QByteArray png;
    if (!icon.isNull()) {
        QImage image = icon.pixmap(LargestIcon).toImage();
        if (image.width() < SmallestIcon || image.height() < SmallestIcon)
            image = image.scaled(SmallestIcon, SmallestIcon, Qt::KeepAspectRatioByExpanding,
                                 Qt::SmoothTransformation);
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
    }
    m_delegate.pageIconChanged(png);
}

void WebPage::followQuestions()
{
    const PageQuestion* blocking = m_questions.blocking();
    m_heartbeat.setPaused(blocking != nullptr);
    if (blocking)
        m_calls.endAll({PageScriptError::Kind::Asking, {}, blocking->text});
}

} // namespace Bralto
