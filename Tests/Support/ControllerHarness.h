#pragma once

#include "Browser/BrowserController.h"
#include "Tests/Support/FakeBrowserTabs.h"
#include "Tests/Support/FakePages.h"
#include "Tests/Support/FixedClock.h"
#include "Tests/Support/ManualScheduler.h"
#include "Tests/Support/QtPrinters.h"

#include <gtest/gtest.h>

namespace Bralto {

/// The tools on pages that the test holds in its hand, in a time that it lets pass.
class ControllerHarness : public testing::Test {
protected:
    /// What one run of a tool came to.
    struct Call {
        std::optional<ToolOutput> output;

        [[nodiscard]] bool isDone() const { return output.has_value(); }
        [[nodiscard]] bool isError() const { return output && output->isError; }
        [[nodiscard]] QString text() const
        {
            if (!output)
                return QStringLiteral("(still running)");
            const auto* last = std::get_if<ControlMessage::Text>(&output->content.back());
            return last ? last->text : QStringLiteral("(no text)");
        }
    };
    using CallPtr = std::shared_ptr<Call>;

    CallPtr start(const QString& tool, const QJsonObject& arguments = {})
    {
        auto call = std::make_shared<Call>();
        controller.run(tool, arguments, [call](ToolOutput output) {
            EXPECT_FALSE(call->isDone()) << "answered twice";
            call->output = std::move(output);
        });
        return call;
    }
    /// Of a tool that answers at once.
    QString text(const QString& tool, const QJsonObject& arguments = {})
    {
        return start(tool, arguments)->text();
    }
    /// The same for one that must fail.
    QString error(const QString& tool, const QJsonObject& arguments = {})
    {
        const CallPtr call = start(tool, arguments);
        EXPECT_TRUE(call->isError()) << call->text().toStdString();
        return call->text();
    }

    void pass(std::chrono::milliseconds time)
    {
        const std::chrono::milliseconds step(10);
        for (; time.count() > 0; time -= step) {
            clock.advance(step);
            scheduler.advance(step);
        }
    }
    /// The turn of the event loop in which a tool hears of what a page said.
    void turn() { scheduler.advance(std::chrono::milliseconds(0)); }
    /// The page's answer to the oldest script that waits.
    void reply(const QJsonValue& value) { reply(page(), value); }
    void reply(FakePage& asked, const QJsonValue& value)
    {
        asked.reply(value);
        turn();
    }
    void fail(const PageScriptError& error)
    {
        page().reply(Unexpected{error});
        turn();
    }

    /// A tab whose page has loaded.
    std::shared_ptr<BrowserTab> open(const QString& address, const QString& title)
    {
        auto tab = tabs.add(QUrl(address));
        page().finish(title);
        return tab;
    }
    [[nodiscard]] FakePage& page() { return *pages.alive.back(); }
    static QString idOf(const std::shared_ptr<BrowserTab>& tab)
    {
        return tab->id().left(8).toLower();
    }

    FakePages pages;
    FixedClock clock;
    ManualScheduler scheduler;
    FakeBrowserTabs tabs{{.pages = &pages, .clock = &clock}};
    BrowserController controller{tabs, scheduler, clock};
};

} // namespace Bralto
