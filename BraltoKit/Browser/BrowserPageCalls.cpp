/// @file
/// How the tools call into a page, and what they tell when it doesn't answer.

#include "Browser/BrowserController.h"
#include "Browser/BrowserTab.h"
#include "Browser/ToolTexts.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QVariant>

namespace Bralto {

namespace {

using Seconds = std::chrono::seconds;
using Milliseconds = std::chrono::milliseconds;

QString plainText(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::String:
        return value.toString();
    case QJsonValue::Double:
        return value.toVariant().toString();
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Array:
        return QString::fromUtf8(QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact));
    case QJsonValue::Object:
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        break;
    }
    return {};
}

QString exceptionText(const PageScriptError& error)
{
    // A plain "Error" is mostly one of our own, whose message is a sentence.
    const bool isNamed = !error.name.isEmpty() && error.name != QLatin1String("Error");
    return QStringLiteral("Page script error: ") +
           (isNamed ? error.name + QStringLiteral(": ") : QString()) + error.message;
}

} // namespace

Task<PageScriptResult> BrowserController::callPage(Tab tab, PageScript script, Milliseconds timeout)
{
    co_await wake(tab);
    const Result<PageEngine*> page = pageOf(*tab);
    if (!page || tab->hasEnded())
        co_return Unexpected{PageScriptError{.kind = PageScriptError::Kind::Ended}};
    const Arrival<PageScriptResult> answer;
    (*page)->call(script, timeout, bringing(answer));
    co_return co_await answer;
}

BrowserController::Result<QString> BrowserController::textOf(BrowserTab& tab,
                                                             const PageScriptResult& result,
                                                             Milliseconds timeout) const
{
    if (result)
        return plainText(*result);
    return Unexpected{ControlError{message(tab, result.error(), timeout)}};
}

Task<BrowserController::Result<QString>> BrowserController::call(Tab tab, PageScript script)
{
    const PageScriptResult result = co_await callPage(tab, std::move(script), CallTimeout);
    co_return textOf(*tab, result, CallTimeout);
}

Task<PagePictureResult> BrowserController::drawPage(Tab tab, PageExtent extent)
{
    const Result<PageEngine*> page = pageOf(*tab);
    if (!page)
        co_return Unexpected{PagePictureError::NothingDrawn};
    const Arrival<PagePictureResult> picture;
    const auto bring = bringing(picture);
    // A page that stands still draws nothing, and doesn't say so.
    const quint64 deadline = m_scheduler.after(
        CallTimeout, &m_context, [bring] { bring(Unexpected{PagePictureError::NothingDrawn}); });
    (*page)->picture(extent, bring);
    PagePictureResult result = co_await picture;
    m_scheduler.cancel(deadline);
    co_return result;
}

Task<ToolOutput> BrowserController::act(QString tool, ToolArguments arguments, PageScript script)
{
    const Result<Tab> chosen = target(arguments);
    if (!chosen)
        co_return ToolOutput::error(chosen.error().message);
    const Tab& tab = *chosen;
    const auto acting = tab->markActing(tool);
    co_await wake(tab);

    const QString before = ToolTexts::address(*tab);
    const PageScriptResult result = co_await callPage(tab, std::move(script), CallTimeout);
    const bool hasLeft = !result && result.error().kind == PageScriptError::Kind::Navigated;
    if (!result && !hasLeft)
        co_return ToolOutput::error(message(*tab, result.error(), CallTimeout));

    co_await sleep(Milliseconds(250));
    co_await waitForLoad(tab, Settle::No, Seconds(10));
    QString text = hasLeft ? QStringLiteral("The page went elsewhere before it could answer.")
                           : plainText(*result);
    if (hasLeft || ToolTexts::address(*tab) != before)
        text += QStringLiteral("\nNow at ") + ToolTexts::summary(*tab);
    co_return ToolOutput::text(text);
}

QString BrowserController::message(BrowserTab& tab, const PageScriptError& error,
                                   Milliseconds timeout) const
{
    switch (error.kind) {
    case PageScriptError::Kind::Exception:
        return exceptionText(error);
    case PageScriptError::Kind::Unserialisable:
        return QStringLiteral(
            "The result can’t be sent back; return plain data (or JSON.stringify it).");
    case PageScriptError::Kind::Navigated:
        return QStringLiteral("The page went elsewhere before it could answer. Now at ") +
               ToolTexts::summary(tab) + QStringLiteral(". Take a new snapshot.");
    case PageScriptError::Kind::Asking:
        return QStringLiteral("The page asks “") +
               ToolTexts::cut(error.message, 300, QStringLiteral("…")) +
               QStringLiteral("” and stands still until the owner answers in the Bralto window. "
                              "Use wait, then take a new snapshot.");
    case PageScriptError::Kind::TimedOut:
        return QStringLiteral("The page didn’t answer in %1 seconds; a script of its own may be "
                              "running without end. Use navigate with reload: true, or open the "
                              "page in a new tab.")
            .arg(ToolTexts::wholeSeconds(timeout));
    case PageScriptError::Kind::Ended:
        break;
    }
    if (const Result<PageEngine*> page = pageOf(tab); !page)
        return page.error().message;
    return QStringLiteral("The page crashed. Use navigate with reload: true to load it again.");
}

} // namespace Bralto
