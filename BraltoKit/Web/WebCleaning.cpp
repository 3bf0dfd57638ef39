#include "Web/WebCleaning.h"

#include <QWebEngineCookieStore>

namespace Bralto {

namespace {

constexpr auto Kinds =
    "appcache,cache_storage,file_systems,indexeddb,local_storage,service_workers,"
    "shader_cache,websql";

} // namespace

WebCleaning::WebCleaning(QWebEngineProfile& profile, WebTurns& turns,
                         std::chrono::milliseconds limit, std::function<void()> done)
    : m_turns(turns)
    , m_done(std::move(done))
    , m_page(&profile)
{
    profile.cookieStore()->deleteAllCookies();
    profile.clearAllVisitedLinks();
    profile.clearHttpCache();
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, &WebCleaning::finish);
    m_limit.start(limit);
    connect(&m_page, &QWebEnginePage::loadFinished, this,
            [this] { m_turns.await(this, [this](const WebTurns::Turn& turn) { begin(turn); }); });
    m_page.load(QUrl(QStringLiteral("about:blank")));
}

WebCleaning::~WebCleaning()
{
    m_turns.forget(this);
    finish();
}

void WebCleaning::begin(const WebTurns::Turn& turn)
{
    if (m_isOver)
        return;
    m_turn = turn;
    m_link = std::make_unique<DevToolsLink>(m_page);
    m_link->send(QStringLiteral("Storage.clearDataForOrigin"),
                 {{QStringLiteral("origin"), QStringLiteral("*")},
                  {QStringLiteral("storageTypes"), QString::fromLatin1(Kinds)}},
                 [this](const std::optional<QJsonObject>&) { finish(); });
}

void WebCleaning::finish()
{
    m_limit.stop();
    m_isOver = true;
    m_link.reset();
    m_turn.reset();
    if (const auto done = std::exchange(m_done, nullptr))
        done();
}

} // namespace Bralto
