/// @file
/// Tools for the tabs themselves: tabs, open, navigate, close.

#include "Browser/BrowserController.h"
#include "Browser/BrowserTab.h"
#include "Browser/ToolTexts.h"

#include <QStringList>

namespace Bralto {

namespace {

/// Of a load that a tool asked for.
std::chrono::milliseconds loadTimeout(const ToolArguments& arguments)
{
    return arguments.seconds("timeout", 15, 0, 30);
}

} // namespace

Task<ToolOutput> BrowserController::listTabs(ToolArguments)
{
    const std::vector<Tab> browsers = m_tabs.browsers();
    if (browsers.empty())
        co_return ToolOutput::text(
            QStringLiteral("No browser tabs open. Use open to load a page."));
    const Result<Tab> usual = choose({});
    QStringList lines;
    for (const Tab& tab : browsers) {
        QStringList flags;
        if (tab->id() == m_tabs.activeTabId())
            flags << QStringLiteral("active");
        if (tab->id() == m_tabs.splitTabId())
            flags << QStringLiteral("split");
        if (tab->isLoading())
            flags << QStringLiteral("loading");
        if (usual && *usual == tab)
            flags << QStringLiteral("default target");
        QString line = ToolTexts::shortId(*tab) + QStringLiteral("  ") + tab->title() +
                       QStringLiteral(" — ") + ToolTexts::address(*tab);
        if (!flags.isEmpty())
            line += QStringLiteral(" [") + flags.join(QStringLiteral(", ")) + u']';
        lines << line;
    }
    co_return ToolOutput::text(lines.join(u'\n'));
}

Task<ToolOutput> BrowserController::open(ToolArguments arguments)
{
    const auto wanted = arguments.string("url");
    if (!wanted)
        co_return ToolOutput::error(QStringLiteral("Pass a url."));
    const Result<QUrl> url = ToolTexts::url(*wanted);
    if (!url)
        co_return ToolOutput::error(url.error().message);

    Tab tab;
    if (!arguments.boolean("newTab").value_or(true)) {
        if (const Result<Tab> present = choose(arguments)) {
            tab = *present;
            tab->load(*url);
        }
    }
    if (!tab)
        tab = m_tabs.openBrowser(*url);
    if (!tab)
        co_return ToolOutput::error(QStringLiteral("Couldn’t open a tab"));
    m_lastTargetId = tab->id();
    const auto acting = tab->markActing(QStringLiteral("open"));
    co_await waitForLoad(tab, Settle::Yes, loadTimeout(arguments));
    co_return ToolOutput::text(QStringLiteral("Opened ") + ToolTexts::summary(*tab));
}

Task<ToolOutput> BrowserController::navigate(ToolArguments arguments)
{
    const Result<Tab> chosen = target(arguments);
    if (!chosen)
        co_return ToolOutput::error(chosen.error().message);
    const Tab& tab = *chosen;
    const auto acting = tab->markActing(QStringLiteral("navigate"));
    if (const auto wanted = arguments.string("url")) {
        const Result<QUrl> url = ToolTexts::url(*wanted);
        if (!url)
            co_return ToolOutput::error(url.error().message);
        tab->load(*url);
    } else if (arguments.isTrue("back")) {
        if (!tab->canGoBack())
            co_return ToolOutput::error(QStringLiteral("Nothing to go back to in this tab."));
        tab->goBack();
    } else if (arguments.isTrue("forward")) {
        if (!tab->canGoForward())
            co_return ToolOutput::error(QStringLiteral("Nothing to go forward to in this tab."));
        tab->goForward();
    } else if (arguments.isTrue("reload")) {
        tab->reload();
    } else {
        co_return ToolOutput::error(
            QStringLiteral("Pass a url, or back, forward or reload: true."));
    }
    co_await waitForLoad(tab, Settle::Yes, loadTimeout(arguments));
    co_return ToolOutput::text(QStringLiteral("Now at ") + ToolTexts::summary(*tab));
}

Task<ToolOutput> BrowserController::close(ToolArguments arguments)
{
    const Result<Tab> chosen = target(arguments);
    if (!chosen)
        co_return ToolOutput::error(chosen.error().message);
    const QString summary = ToolTexts::summary(**chosen);
    if (!m_tabs.closeBrowser((*chosen)->id()))
        co_return ToolOutput::error(QStringLiteral("That tab is gone."));
    co_return ToolOutput::text(QStringLiteral("Closed ") + summary);
}

} // namespace Bralto
