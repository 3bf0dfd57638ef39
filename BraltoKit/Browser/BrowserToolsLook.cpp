/// @file
/// Tools that watch a page: screenshot, wait, console.

#include "Browser/BrowserController.h"
#include "Browser/BrowserTab.h"
#include "Browser/PageScripts.h"
#include "Browser/ToolTexts.h"

#include <QStringList>

namespace Bralto {

namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr QSize OwnRoom(1280, 800); ///< Of a page that nobody shows.
constexpr int LeastRoom = 10;

bool hasRoom(const PageEngine& page)
{
    return page.size().width() >= LeastRoom && page.size().height() >= LeastRoom;
}

QString pictureMessage(PagePictureError error)
{
    switch (error) {
    case PagePictureError::NothingDrawn:
        break;
    case PagePictureError::Unreadable:
        return QStringLiteral("Couldn’t read the page’s PDF");
    case PagePictureError::Unencodable:
        return QStringLiteral("Couldn’t render the page");
    }
    return QStringLiteral("Couldn’t take a screenshot");
}

/// What `wait` waits for, as a client said it.
struct Condition {
    std::optional<QString> text;
    std::optional<QString> selector;
    bool isGone = false;

    explicit Condition(const ToolArguments& arguments)
        : text(arguments.string("text"))
        , selector(arguments.string("selector"))
        , isGone(arguments.isTrue("gone"))
    {
    }

    [[nodiscard]] QString description() const
    {
        QStringList parts;
        if (text)
            parts << QStringLiteral("text \"") + *text + u'"';
        if (selector)
            parts << QStringLiteral("selector ") + *selector;
        return parts.join(QStringLiteral(" and "));
    }

    [[nodiscard]] QString foundAfter(Milliseconds time) const
    {
        return (isGone ? QStringLiteral("Gone ") : QStringLiteral("Found ")) + description() +
               QStringLiteral(" after %1s").arg(double(time.count()) / 1000, 0, 'f', 1);
    }

    [[nodiscard]] PageScript script() const
    {
        const auto orNull = [](const std::optional<QString>& value) {
            return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
        };
        return PageScripts::call(QStringLiteral("condition"),
                                 {{QStringLiteral("text"), orNull(text)},
                                  {QStringLiteral("selector"), orNull(selector)},
                                  {QStringLiteral("gone"), isGone}});
    }
};

/// "warn" and "warning" are one level.
QString levelOf(const QString& name)
{
    const QString level = name.toLower();
    return level == QLatin1String("warning") ? QStringLiteral("warn") : level;
}

QString lineOf(const BrowserConsole::Entry& entry)
{
    return QStringLiteral("[%1] ").arg(
               entry.date.toLocalTime().toString(QStringLiteral("HH:mm:ss"))) +
           entry.level + QStringLiteral(": ") + entry.text;
}

} // namespace

Task<ToolOutput> BrowserController::screenshot(ToolArguments arguments)
{
    const Result<Tab> chosen = target(arguments);
    if (!chosen)
        co_return ToolOutput::error(chosen.error().message);
    const Tab& tab = *chosen;
    const auto acting = tab->markActing(QStringLiteral("screenshot"));
    co_await wake(tab);
    const Result<PageEngine*> page = pageOf(*tab);
    if (!page)
        co_return ToolOutput::error(page.error().message);
    if (!(*page)->isPlaced() && !hasRoom(**page))
        (*page)->resize(OwnRoom);
    if (!hasRoom(**page))
        co_return ToolOutput::error(QStringLiteral("The tab has no room on screen to draw."));

    const PageExtent extent =
        arguments.isTrue("fullPage") ? PageExtent::Whole : PageExtent::Visible;
    const PagePictureResult picture = co_await drawPage(tab, extent);
    if (!picture && !isOpen(*tab))
        co_return ToolOutput::error(QStringLiteral("That tab is gone."));
    if (!picture)
        co_return ToolOutput::error(pictureMessage(picture.error()));
    ToolOutput output =
        ToolOutput::text(QStringLiteral("Screenshot of ") + ToolTexts::summary(*tab));
    output.content.insert(output.content.begin(),
                          ControlMessage::Image{*picture, QStringLiteral("image/png")});
    co_return output;
}

Task<ToolOutput> BrowserController::wait(ToolArguments arguments)
{
    const Result<Tab> chosen = target(arguments);
    if (!chosen)
        co_return ToolOutput::error(chosen.error().message);
    const Tab& tab = *chosen;
    const auto acting = tab->markActing(QStringLiteral("wait"));
    const Milliseconds timeout = arguments.seconds("timeout", 10, 0.1, 30);
    const Condition condition(arguments);
    if (!condition.text && !condition.selector) {
        co_await waitForLoad(tab, Settle::Yes, timeout);
        const QString outcome =
            tab->isLoading()
                ? QStringLiteral("Still loading after %1s: ").arg(ToolTexts::wholeSeconds(timeout))
                : QStringLiteral("Loaded ");
        co_return ToolOutput::text(outcome + ToolTexts::summary(*tab));
    }

    const QDateTime start = m_clock.now();
    const auto elapsed = [this, start] { return Milliseconds(start.msecsTo(m_clock.now())); };
    while (elapsed() < timeout) {
        if (!isOpen(*tab))
            co_return ToolOutput::error(QStringLiteral("That tab is gone."));
        PageScript script = condition.script();
        const PageScriptResult met = co_await callPage(tab, std::move(script), timeout - elapsed());
        if (met && *met == QJsonValue(true))
            co_return ToolOutput::text(condition.foundAfter(elapsed()));
        co_await sleep(Milliseconds(200));
    }
    co_return ToolOutput::error(
        QStringLiteral("Timed out after %1s waiting for ").arg(ToolTexts::wholeSeconds(timeout)) +
        condition.description() +
        (condition.isGone ? QStringLiteral(" to go away on ") : QStringLiteral(" to appear on ")) +
        ToolTexts::summary(*tab));
}

Task<ToolOutput> BrowserController::console(ToolArguments arguments)
{
    const Result<Tab> chosen = target(arguments);
    if (!chosen)
        co_return ToolOutput::error(chosen.error().message);
    BrowserTab& tab = **chosen;
    const auto level = arguments.string("level");
    const auto limit = std::size_t(arguments.integer("limit", 50, 1, 300));

    std::vector<BrowserConsole::Entry> entries;
    for (const BrowserConsole::Entry& entry : tab.console().entries()) {
        if (!level || levelOf(entry.level) == levelOf(*level))
            entries.push_back(entry);
    }
    if (arguments.isTrue("clear"))
        tab.console().clear();
    if (entries.empty()) {
        const QString filter = level ? QStringLiteral(" at level ") + level->toLower() : QString();
        co_return ToolOutput::text(QStringLiteral("No console messages") + filter +
                                   QStringLiteral(" in ") + ToolTexts::summary(tab) + u'.');
    }
    const std::size_t left = entries.size() - std::min(entries.size(), limit);
    QStringList lines;
    if (left > 0)
        lines << QStringLiteral("(%1 earlier messages not shown)").arg(left);
    for (std::size_t index = left; index < entries.size(); ++index)
        lines << lineOf(entries[index]);
    co_return ToolOutput::text(lines.join(u'\n'));
}

} // namespace Bralto
