#include "Web/WebEngines.h"

#include "Web/WebContents.h"
#include "Web/WebEnvironment.h"
#include "Web/WebPage.h"
#include "Web/WebProfile.h"

#include <QWebEngineCookieStore>

namespace Bralto {

WebEngines::WebEngines(PageProfile profile, WebLimits limits)
    : m_settings(std::move(profile))
    , m_limits(limits)
{
}

WebEngines::~WebEngines()
{
    for (const QPointer<QObject>& each : m_retired)
        delete each;
}

QWebEngineProfile& WebEngines::profile()
{
    if (!m_profile) {
        WebEnvironment::prepare(m_settings.isDark);
        WebAsking::registerScheme();
        m_profile = WebProfile::make(m_settings);
        m_profile->installUrlSchemeHandler(WebAsking::Scheme, &m_asking);
    }
    return *m_profile;
}

std::unique_ptr<PageEngine> WebEngines::make(PageDelegate& delegate)
{
    return std::make_unique<WebPage>(*this, delegate);
}

void WebEngines::clearBrowsingData(std::function<void()> done)
{
    QWebEngineProfile& profile = this->profile();
    profile.cookieStore()->deleteAllCookies();
    profile.clearAllVisitedLinks();
    profile.clearHttpCache();
    done();
}

void WebEngines::retire(WebContents& contents, QWidget& widget)
{
    std::erase_if(m_retired, [](const QPointer<QObject>& each) { return each.isNull(); });
    m_retired.emplace_back(&contents);
    m_retired.emplace_back(&widget);
    contents.retire();
}

} // namespace Bralto
