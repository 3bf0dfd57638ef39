#pragma once

#include "Web/WebCalls.h"
#include "Web/WebConsole.h"
#include "Web/WebHeartbeat.h"
#include "Web/WebInspector.h"
#include "Web/WebLogins.h"
#include "Web/WebNavigation.h"
#include "Web/WebPictures.h"
#include "Web/WebPlace.h"
#include "Web/WebQuestions.h"
#include "Web/WebRequests.h"

#include <QPointer>

#include <memory>

namespace Bralto {

class WebContents;
class WebEngines;

/// One page of the toolkit's engine, made of its parts: each has a concern, and this joins them.
class WebPage final : public QObject, public PageEngine {
    Q_OBJECT

public:
    WebPage(WebEngines& engines, PageDelegate& delegate);
    ~WebPage() override;

    void load(const QUrl& url) override;
    void goBack() override { m_navigation.goBack(); }
    void goForward() override { m_navigation.goForward(); }
    void reload() override { m_navigation.reload(); }
    void stop() override { m_navigation.stop(); }
    void visitDespiteCertificate() override { m_navigation.visitDespiteCertificate(); }

    [[nodiscard]] QUrl url() const override { return m_navigation.url(); }
    [[nodiscard]] QString title() const override { return m_navigation.title(); }
    [[nodiscard]] bool canGoBack() const override { return m_navigation.canGoBack(); }
    [[nodiscard]] bool canGoForward() const override { return m_navigation.canGoForward(); }
    [[nodiscard]] bool isLoading() const override { return m_navigation.isLoading(); }
    [[nodiscard]] double progress() const override { return m_navigation.progress(); }

    void call(const PageScript& script, std::chrono::milliseconds timeout,
              std::function<void(PageScriptResult)> done) override;
    void picture(PageExtent extent, std::function<void(PagePictureResult)> done) override;

    void setZoomFactor(double factor) override;
    void setDark(bool dark) override;
    void find(const QString& text, FindDirection direction,
              std::function<void(int active, int count)> done) override;
    void perform(PageAction action) override;
    void leaveFullScreen() override;
    void answer(quint64 question, const PageAnswer& answer) override;
    void terminate() override;
    void inspect() override;

    [[nodiscard]] QWidget* widget() const override { return m_place.widget(); }
    [[nodiscard]] QSize size() const override;
    void resize(QSize size) override;
    [[nodiscard]] bool isPlaced() const override;

private:
    void connectNavigation();
    void connectContents();
    void connectView();
    void read(int level, const QString& text, int line, const QString& source);
    void forgetDocument();
    void followQuestions();
    void endWithProcess();
    void showIcon(const QIcon& icon);
    void layPaper();

    WebEngines& m_engines;
    PageDelegate& m_delegate;
    const WebBridge::Keys m_keys;
    WebQuestions m_questions;
    WebContents& m_contents; ///< Goes in a later turn than this object.
    WebPlace m_place;
    WebNavigation m_navigation;
    WebConsole m_console;
    WebCalls m_calls;
    WebPictures m_pictures;
    WebHeartbeat m_heartbeat;
    WebRequests m_requests;
    WebLogins m_logins;
    QPointer<WebInspector> m_inspector;
    std::function<void(int, int)> m_found; ///< Of the search that is under way.
    double m_zoom = 1;
    bool m_isDark = false;
    bool m_hasDocument = false;
    bool m_isFullScreen = false;
    bool m_isEnding = false;
};

} // namespace Bralto
