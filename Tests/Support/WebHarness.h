#pragma once

#include "Browser/PageEngine.h"
#include "Tests/Support/SiteServer.h"
#include "Web/WebEngines.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QImage>
#include <QJsonArray>
#include <QMouseEvent>
#include <QPoint>
#include <QRegularExpression>
#include <QTimer>
#include <QWidget>

#include <gtest/gtest.h>

#include <optional>

namespace Bralto {

/// Runs the event loop until `holds` is true; false if it never was.
inline bool spinUntil(const std::function<bool()>& holds, int seconds = 10)
{
    QEventLoop loop;
    QTimer ticks;
    const QDeadlineTimer deadline(seconds * 1000);
    QObject::connect(&ticks, &QTimer::timeout, &loop, [&] {
        if (holds() || deadline.hasExpired())
            loop.quit();
    });
    ticks.start(2);
    if (!holds())
        loop.exec();
    return holds();
}

/// Keeps what a page tells.
class PageNotes final : public PageDelegate {
public:
    struct Menu {
        PageContext context;
        QPoint position;
    };

    void pageChanged() override { ++changes; }
    void pageCommitted() override { ++commits; }
    void pageFailed(const PageLoadError& error) override { failures.push_back(error); }
    void pageLogged(const QString& level, const QString& text) override
    {
        log.push_back(level + QStringLiteral(": ") + text);
    }
    void pageWantsNewPage(const QUrl& url) override { newPages.push_back(url); }
    void pageAsked(const PageQuestion& question) override
    {
        questions.push_back(question);
        if (asked)
            asked(question);
    }
    void pageWithdrew(quint64 question) override { withdrawn.push_back(question); }
    void pageWantsMenu(const PageContext& context, const QPoint& position) override
    {
        menu = Menu{context, position};
    }
    void pageHovered(const QUrl& link) override { hovered = link; }
    void pageWantsFullScreen(bool wants) override { fullScreen.push_back(wants); }
    void pageIconChanged(const QByteArray& png) override { icon = png; }
    void pageEnded() override { ++ends; }
    void pageResponds(bool responds) override { responses.push_back(responds); }

    int changes = 0;
    int commits = 0;
    int ends = 0;
    std::vector<PageLoadError> failures;
    std::vector<QString> log;
    std::vector<QUrl> newPages;
    std::vector<PageQuestion> questions;
    std::vector<quint64> withdrawn;
    std::optional<Menu> menu;
    QUrl hovered;
    std::vector<bool> fullScreen;
    QByteArray icon;
    std::vector<bool> responses;
    std::function<void(const PageQuestion&)> asked;
};

/// Real pages, a server for them, and what a test does with them.
class WebTest : public testing::Test {
protected:
    explicit WebTest(WebLimits limits = {})
        : engines({}, limits)
        , page(engines.make(notes))
    {
    }

    bool load(const QUrl& url)
    {
        page->load(url);
        return spinUntil([this] { return !page->isLoading(); });
    }
    bool show(const QByteArray& html, const QString& path = QStringLiteral("/"))
    {
        site.page(path, html);
        return load(site.url(path));
    }

    PageScriptResult call(const QString& body, const QJsonObject& arguments = {}, int seconds = 20)
    {
        std::optional<PageScriptResult> result;
        page->call({body, arguments}, std::chrono::seconds(seconds),
                   [&result](const PageScriptResult& value) { result.emplace(value); });
        spinUntil([&result] { return result.has_value(); }, 40);
        return result.value_or(PageScriptResult(Unexpected{
            PageScriptError{PageScriptError::Kind::Ended, {}, QStringLiteral("never")}}));
    }
    /// The value of a call, which the test expects to have one.
    QJsonValue value(const QString& body, const QJsonObject& arguments = {})
    {
        const PageScriptResult result = call(body, arguments);
        if (!result) {
            ADD_FAILURE() << qPrintable(body) << " gave no value: " << int(result.error().kind)
                          << ' ' << qPrintable(result.error().name + u' ' + result.error().message);
            return {};
        }
        return *result;
    }
    PageScriptError error(const QString& body, const QJsonObject& arguments = {}, int seconds = 20)
    {
        const PageScriptResult result = call(body, arguments, seconds);
        if (result) {
            ADD_FAILURE() << qPrintable(body) << " gave a value";
            return {};
        }
        return result.error();
    }
    /// Presses and releases the left button on the page, which is on a shown window.
    void click(QPoint at, Qt::MouseButton button = Qt::LeftButton)
    {
        // The page draws before it takes clicks.
        value(QStringLiteral(
            "await new Promise(r => requestAnimationFrame(() => requestAnimationFrame(r)))"));
        QWidget* target = page->widget()->focusProxy();
        target = target && target->focusProxy() ? target->focusProxy() : target;
        ASSERT_NE(target, nullptr);
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, at, target->mapToGlobal(at), button,
                              type == QEvent::MouseButtonPress ? button : Qt::NoButton,
                              Qt::NoModifier);
            QCoreApplication::sendEvent(target, &event);
        }
    }
    QImage picture(PageExtent extent)
    {
        std::optional<PagePictureResult> result;
        page->picture(extent,
                      [&result](const PagePictureResult& picture) { result.emplace(picture); });
        if (!spinUntil([&result] { return result.has_value(); }) || !*result)
            return {};
        return QImage::fromData(**result, "PNG");
    }

    SiteServer site;
    PageNotes notes;
    WebEngines engines;
    std::unique_ptr<PageEngine> page;
};

} // namespace Bralto
