#include "Web/WebEngines.h"

#include "Web/WebCleaning.h"
#include "Web/WebContents.h"
#include "Web/WebEnvironment.h"
#include "Web/WebPage.h"
#include "Web/WebProfile.h"

namespace Bralto {

WebEngines::WebEngines(PageProfile profile, WebLimits limits)
    : m_settings(std::move(profile))
    , m_limits(limits)
{
}

WebEngines::~WebEngines()
{
    m_cleanings.clear();
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
    std::erase_if(m_cleanings, [](const auto& each) { return each->isOver(); });
    m_cleanings.push_back(
        std::make_unique<WebCleaning>(profile(), m_turns, m_limits.cleaning, std::move(done)));
}

void WebEngines::retire(WebContents& contents, QWidget* widget)
{
    std::erase_if(m_retired, [](const QPointer<QObject>& each) { return each.isNull(); });
    m_retired.emplace_back(&contents);
    if (widget)
        m_retired.emplace_back(widget);
    contents.retire();
}

} // namespace Bralto
