#pragma once

#include "Browser/PageEngine.h"
#include "Browser/PageProfile.h"
#include "Web/WebAsking.h"
#include "Web/WebCertificates.h"
#include "Web/WebTurns.h"

#include <QPointer>
#include <QWebEngineProfile>

#include <memory>
#include <vector>

namespace Bralto {

class WebCleaning;
class WebContents;

/// How long things may take; shorter in a test.
struct WebLimits {
    std::chrono::milliseconds answer = std::chrono::seconds(60); ///< Of a server to a load.
    /// With a page that stands still.
    std::chrono::milliseconds patience = std::chrono::seconds(5);
    std::chrono::milliseconds cleaning = std::chrono::seconds(10);
};

/// The pages of one project, made by the toolkit's engine.
class WebEngines final : public PageEngines {
public:
    explicit WebEngines(PageProfile profile, WebLimits limits = {});
    ~WebEngines() override;

    [[nodiscard]] std::unique_ptr<PageEngine> make(PageDelegate& delegate) override;
    void clearBrowsingData(std::function<void()> done) override;

    // For the pages
    [[nodiscard]] QWebEngineProfile& profile(); ///< Made, with all of the engine, at the first use.
    [[nodiscard]] WebCertificates& certificates() { return m_certificates; }
    [[nodiscard]] WebAsking& asking() { return m_asking; }
    [[nodiscard]] WebTurns& turns() { return m_turns; }
    [[nodiscard]] const WebLimits& limits() const { return m_limits; }
    [[nodiscard]] bool isDark() const { return m_settings.isDark; }
    /// Lets go of a page whose engine is gone, as soon as nothing of it is on the stack.
    void retire(WebContents& contents, QWidget* widget);

private:
    const PageProfile m_settings;
    const WebLimits m_limits;
    WebCertificates m_certificates;
    WebAsking m_asking;
    WebTurns m_turns;
    std::unique_ptr<QWebEngineProfile> m_profile;
    std::vector<std::unique_ptr<WebCleaning>> m_cleanings;
    std::vector<QPointer<QObject>> m_retired; ///< All must go before the profile.
};

} // namespace Bralto
