/// @file
/// Tools that read a page and act on its elements: snapshot, click, type, press, scroll.

#include "Browser/BrowserController.h"
#include "Browser/BrowserTab.h"
#include "Browser/PageScripts.h"
#include "Browser/ToolTexts.h"

namespace Bralto {

Task<ToolOutput> BrowserController::snapshot(ToolArguments arguments)
{
    const Result<Tab> chosen = target(arguments);
    if (!chosen)
        co_return ToolOutput::error(chosen.error().message);
    const Tab& tab = *chosen;
    const auto acting = tab->markActing(QStringLiteral("snapshot"));
    const int maxChars = arguments.integer("maxChars", 16000, 1000, 200000);
    PageScript script = PageScripts::callOnElement(QStringLiteral("outline"), arguments,
                                                   {{QStringLiteral("maxChars"), maxChars}});
    const Result<QString> outline = co_await call(tab, std::move(script));
    if (!outline)
        co_return ToolOutput::error(outline.error().message);
    co_return ToolOutput::text(QStringLiteral("Tab ") + ToolTexts::shortId(*tab) + u'\n' +
                               *outline);
}

Task<ToolOutput> BrowserController::click(ToolArguments arguments)
{
    PageScript script =
        PageScripts::callOnElement(QStringLiteral("click"), arguments,
                                   {{QStringLiteral("double"), arguments.isTrue("double")}});
    return act(QStringLiteral("click"), std::move(arguments), std::move(script));
}

Task<ToolOutput> BrowserController::type(ToolArguments arguments)
{
    const auto text = arguments.string("text");
    if (!text)
        co_return ToolOutput::error(QStringLiteral("Pass the text to type."));
    PageScript script = PageScripts::callOnElement(
        QStringLiteral("type"), arguments,
        {{QStringLiteral("text"), *text},
         {QStringLiteral("submit"), arguments.isTrue("submit")},
         {QStringLiteral("clear"), arguments.boolean("clear").value_or(true)}});
    co_return co_await act(QStringLiteral("type"), std::move(arguments), std::move(script));
}

Task<ToolOutput> BrowserController::press(ToolArguments arguments)
{
    const auto key = arguments.string("key");
    if (!key)
        co_return ToolOutput::error(
            QStringLiteral("Pass a key, like Enter, Escape, ArrowDown or Shift+Tab."));
    PageScript script = PageScripts::callOnElement(QStringLiteral("press"), arguments,
                                                   {{QStringLiteral("key"), *key}});
    co_return co_await act(QStringLiteral("press"), std::move(arguments), std::move(script));
}

Task<ToolOutput> BrowserController::scroll(ToolArguments arguments)
{
    const Result<Tab> chosen = target(arguments);
    if (!chosen)
        co_return ToolOutput::error(chosen.error().message);
    const Tab& tab = *chosen;
    const auto acting = tab->markActing(QStringLiteral("scroll"));
    PageScript script =
        PageScripts::callOnElement(QStringLiteral("scroll"), arguments,
                                   {{QStringLiteral("dx"), arguments.number("dx").value_or(0)},
                                    {QStringLiteral("dy"), arguments.number("dy").value_or(0)}});
    const Result<QString> scrolled = co_await call(tab, std::move(script));
    co_return scrolled ? ToolOutput::text(*scrolled) : ToolOutput::error(scrolled.error().message);
}

} // namespace Bralto
