#pragma once

#include "Browser/BrowserController.h"
#include "Platform/QtScheduler.h"
#include "Platform/SystemClock.h"
#include "Tests/Support/ChromiumPages.h"
#include "Tests/Support/FakeBrowserTabs.h"
#include "Tests/Support/QtPrinters.h"
#include "Tests/Support/SiteServer.h"
#include "Web/WebEngines.h"

#include <QEventLoop>
#include <QImage>

#include <gtest/gtest.h>

namespace Bralto {

/// Tools on real pages of the test site. The engine is our own, or, if `BRALTO_TEST_ENGINE` is
/// "chromium", the system's Chromium, so that the scripts are known to be right on a current one.
class PageTools : public testing::Test {
protected:
    static void TearDownTestSuite() { ChromiumDriver::end(); }

    static bool isChromium() { return qgetenv("BRALTO_TEST_ENGINE") == "chromium"; }
    static std::unique_ptr<PageEngines> makeEngines()
    {
        if (isChromium())
            return std::make_unique<ChromiumPages>();
        return std::make_unique<WebEngines>(PageProfile{});
    }

    /// Runs a tool to its end.
    ToolOutput run(const QString& tool, const QJsonObject& arguments = {})
    {
        QEventLoop loop;
        std::optional<ToolOutput> output;
        controller.run(tool, arguments, [&](ToolOutput told) {
            output = std::move(told);
            loop.quit();
        });
        if (!output)
            loop.exec();
        return *output;
    }
    static QString textOf(const ToolOutput& output)
    {
        const auto* text = std::get_if<ControlMessage::Text>(&output.content.back());
        return text ? text->text : QString();
    }
    /// What a tool says that must succeed.
    QString text(const QString& tool, const QJsonObject& arguments = {})
    {
        const ToolOutput output = run(tool, arguments);
        EXPECT_FALSE(output.isError) << tool.toStdString() << ": " << textOf(output).toStdString();
        return textOf(output);
    }
    /// What a tool says that must fail.
    QString error(const QString& tool, const QJsonObject& arguments = {})
    {
        const ToolOutput output = run(tool, arguments);
        EXPECT_TRUE(output.isError) << tool.toStdString() << ": " << textOf(output).toStdString();
        return textOf(output);
    }
    QString value(const QString& expression)
    {
        return text("evaluate", {{"expression", expression}});
    }

    /// Opens a page of the site in the tab, which is made at the first time.
    void open(const QString& path)
    {
        text("open", {{"url", site.url(path).toString()}, {"newTab", false}});
    }
    /// Opens a page that a test spells out.
    void show(const QString& html)
    {
        const QByteArray page =
            "<!doctype html><meta charset=utf-8><title>Page</title>" + html.toUtf8();
        site.page("/shown", page);
        open("/shown");
    }
    /// The lines of a snapshot, without the page's head.
    QString outline(const QJsonObject& arguments = {})
    {
        return text("snapshot", arguments).section("\n\n", 1);
    }
    /// The ref on the first line that has `words`.
    QString refOf(const QString& words, const QJsonObject& arguments = {})
    {
        for (const QString& line : outline(arguments).split('\n')) {
            if (line.contains(words))
                return line.section("[ref=", 1).section(']', 0, 0);
        }
        ADD_FAILURE() << "no line with " << words.toStdString();
        return {};
    }

    QImage picture(const QJsonObject& arguments = {})
    {
        const ToolOutput output = run("screenshot", arguments);
        const auto* image = std::get_if<ControlMessage::Image>(&output.content.front());
        return image ? QImage::fromData(image->bytes, "PNG") : QImage();
    }

    SiteServer site{QDir::cleanPath(QStringLiteral(BRALTO_FIXTURES "/../Site"))};
    QtScheduler scheduler;
    SystemClock clock;
    std::unique_ptr<PageEngines> engines = makeEngines();
    FakeBrowserTabs tabs{{.pages = engines.get(), .clock = &clock}};
    BrowserController controller{tabs, scheduler, clock};
};

} // namespace Bralto
