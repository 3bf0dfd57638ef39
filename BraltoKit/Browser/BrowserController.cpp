#include "Browser/BrowserController.h"

#include "Browser/BrowserTab.h"
#include "Browser/ControlMessage.h"

#include <QHash>

#include <algorithm>

namespace Bralto {

BrowserController::BrowserController(BrowserTabs& tabs, Scheduler& scheduler, const Clock& clock)
    : m_tabs(tabs)
    , m_scheduler(scheduler)
    , m_clock(clock)
{
}

BrowserController::Tool BrowserController::toolNamed(const QString& name)
{
    static const QHash<QString, Tool> tools{
        {QStringLiteral("tabs"), &BrowserController::listTabs},
        {QStringLiteral("open"), &BrowserController::open},
        {QStringLiteral("navigate"), &BrowserController::navigate},
        {QStringLiteral("snapshot"), &BrowserController::snapshot},
        {QStringLiteral("click"), &BrowserController::click},
        {QStringLiteral("type"), &BrowserController::type},
        {QStringLiteral("press"), &BrowserController::press},
        {QStringLiteral("scroll"), &BrowserController::scroll},
        {QStringLiteral("screenshot"), &BrowserController::screenshot},
        {QStringLiteral("evaluate"), &BrowserController::evaluate},
        {QStringLiteral("wait"), &BrowserController::wait},
        {QStringLiteral("console"), &BrowserController::console},
        {QStringLiteral("close"), &BrowserController::close},
    };
    return tools.value(name, nullptr);
}

void BrowserController::run(const QString& tool, const QJsonObject& arguments,
                            std::function<void(ToolOutput)> done)
{
    if (const Tool found = toolNamed(tool))
        m_running.start(carryOut(found, ToolArguments(arguments), std::move(done)));
    else
        done(ToolOutput::error(QStringLiteral("Unknown tool ") + tool));
}

Task<> BrowserController::carryOut(Tool tool, ToolArguments arguments,
                                   std::function<void(ToolOutput)> done)
{
    ToolOutput output = co_await (this->*tool)(std::move(arguments));
    done(std::move(output));
}

void BrowserController::respond(const QByteArray& request, std::function<void(QByteArray)> done)
{
    const auto answer = [done = std::move(done)](const ToolOutput& output) {
        done(ControlMessage::encodeResponse(output.content, output.isError));
    };
    if (const auto asked = ControlMessage::decodeRequest(request))
        run(asked->tool, asked->arguments, answer);
    else
        answer(ToolOutput::error(QLatin1String(ControlMessage::Malformed)));
}

// --- the tab

BrowserController::Result<BrowserController::Tab>
BrowserController::choose(const ToolArguments& arguments) const
{
    const std::vector<Tab> browsers = m_tabs.browsers();
    if (const auto wanted = arguments.string("tab")) {
        const auto named = std::ranges::find_if(browsers, [&wanted](const Tab& tab) {
            return tab->id().startsWith(*wanted, Qt::CaseInsensitive);
        });
        if (named != browsers.end())
            return *named;
        return Unexpected{ControlError{QStringLiteral("No browser tab ") + *wanted +
                                       QStringLiteral(". Use tabs to see the open ones.")}};
    }
    if (Tab visible = m_tabs.visibleBrowser())
        return visible;
    const auto last = std::ranges::find(browsers, m_lastTargetId, &BrowserTab::id);
    if (last != browsers.end())
        return *last;
    if (!browsers.empty())
        return browsers.back();
    return Unexpected{ControlError{
        QStringLiteral("No browser tab is open in this project. Use open to load a page.")}};
}

BrowserController::Result<BrowserController::Tab>
BrowserController::target(const ToolArguments& arguments)
{
    Result<Tab> chosen = choose(arguments);
    if (chosen)
        m_lastTargetId = (*chosen)->id();
    return chosen;
}

bool BrowserController::isOpen(const BrowserTab& tab) const
{
    const std::vector<Tab> browsers = m_tabs.browsers();
    return std::ranges::find(browsers, tab.id(), &BrowserTab::id) != browsers.end();
}

BrowserController::Result<PageEngine*> BrowserController::pageOf(BrowserTab& tab) const
{
    if (!isOpen(tab))
        return Unexpected{ControlError{QStringLiteral("That tab is gone.")}};
    if (PageEngine* page = tab.page())
        return page;
    return Unexpected{ControlError{QStringLiteral(
        "Pages can’t be shown here: the page engine is missing. Use another browser.")}};
}

// --- waiting

Task<> BrowserController::sleep(Milliseconds time)
{
    const Arrival<bool> woken;
    m_scheduler.after(time, &m_context, [woken] { woken.bring(true); });
    co_await woken;
}

Task<> BrowserController::waitForLoad(Tab tab, Settle settle, Milliseconds timeout)
{
    if (settle == Settle::Yes) {
        const Milliseconds settling(150);
        co_await sleep(settling);
        timeout -= settling;
    }
    const auto isOver = [&tab] {
        const PageEngine* page = tab->pageIfMade();
        return !page || !page->isLoading() || tab->hasEnded();
    };
    if (isOver() || timeout.count() <= 0)
        co_return;

    const Arrival<bool> over;
    const auto finish = [bring = bringing(over)] { bring(true); };
    const auto look = [isOver, finish] {
        if (isOver())
            finish();
    };
    const QObject context;
    QObject::connect(tab.get(), &BrowserTab::isLoadingChanged, &context, look);
    QObject::connect(tab.get(), &BrowserTab::statusChanged, &context, look);
    QObject::connect(tab.get(), &BrowserTab::pageGoing, &context, finish);
    const quint64 deadline = m_scheduler.after(timeout, &m_context, finish);
    co_await over;
    m_scheduler.cancel(deadline);
}

Task<> BrowserController::wake(Tab tab)
{
    if (tab->pageIfMade() || !pageOf(*tab))
        co_return;
    co_await waitForLoad(tab, Settle::Yes, std::chrono::seconds(15));
}

} // namespace Bralto
