/// @file
/// The tool that runs an agent's own script: evaluate.

#include "Browser/BrowserController.h"
#include "Browser/BrowserTab.h"
#include "Browser/PageScripts.h"
#include "Browser/ToolTexts.h"

#include <algorithm>

namespace Bralto {

namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr Milliseconds Timeout(60000); ///< Of both attempts.
constexpr Milliseconds Least(1000);
constexpr qsizetype LargestResult = 50000;

bool isSyntaxError(const PageScriptResult& result)
{
    const QLatin1String name("SyntaxError");
    return !result && result.error().kind == PageScriptError::Kind::Exception &&
           (result.error().name == name || result.error().message.contains(name));
}

} // namespace

Task<ToolOutput> BrowserController::evaluate(ToolArguments arguments)
{
    const auto expression = arguments.string("expression");
    if (!expression)
        co_return ToolOutput::error(
            QStringLiteral("Pass an expression (or a function body that returns something)."));
    const Result<Tab> chosen = target(arguments);
    if (!chosen)
        co_return ToolOutput::error(chosen.error().message);
    const Tab& tab = *chosen;
    const auto acting = tab->markActing(QStringLiteral("evaluate"));

    const QDateTime start = m_clock.now();
    PageScript script =
        PageScripts::evaluate(QStringLiteral("return (\n") + *expression + QStringLiteral("\n);"));
    PageScriptResult result = co_await callPage(tab, std::move(script), Timeout);
    if (isSyntaxError(result)) {
        const Milliseconds spent(start.msecsTo(m_clock.now()));
        script = PageScripts::evaluate(*expression);
        result = co_await callPage(tab, std::move(script), std::max(Timeout - spent, Least));
    }
    const Result<QString> value = textOf(*tab, result, Timeout);
    if (!value)
        co_return ToolOutput::error(value.error().message);
    co_return ToolOutput::text(
        ToolTexts::cut(*value, LargestResult, QStringLiteral("… (cut at 50000 characters)")));
}

} // namespace Bralto
