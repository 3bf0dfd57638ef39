#pragma once

#include "Browser/PageEngine.h"
#include "Tests/Support/PageNotes.h"
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
