#pragma once

#include "Base/Clock.h"
#include "Base/Expected.h"
#include "Base/Scheduler.h"
#include "Base/Task.h"
#include "Browser/BrowserTabs.h"
#include "Browser/ControlError.h"
#include "Browser/PageEngine.h"
#include "Browser/ToolArguments.h"
#include "Browser/ToolOutput.h"

#include <QByteArray>
#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>

namespace Bralto {

/// Carries out the tools with which an agent looks at and drives the browser tabs of one window.
///
/// It chooses a tab, waits for loads and words the results; looking at a page and acting on it is
/// done by scripts that run in the page (Scripts/). Tools of several clients run side by side and
/// meet at their waits. Whatever goes wrong is told in the tool's output, in one sentence that says
/// what to do next. Main thread. A controller that goes takes its tools along: their callers hear
/// nothing more. It must not go from within one of them.
class BrowserController {
public:
    /// All outlive the controller.
    BrowserController(BrowserTabs& tabs, Scheduler& scheduler, const Clock& clock);

    /// Runs a tool. `done` is called once, possibly within this call.
    void run(const QString& tool, const QJsonObject& arguments,
             std::function<void(ToolOutput)> done);
    /// The same for a line of the control socket, answered with another, both without a line feed.
    void respond(const QByteArray& request, std::function<void(QByteArray)> done);

    /// The tab that the last tool acted on; empty before the first.
    [[nodiscard]] const QString& lastTargetId() const { return m_lastTargetId; }

private:
    using Tab = std::shared_ptr<BrowserTab>;
    using Milliseconds = std::chrono::milliseconds;
    template <typename Value>
    using Result = Expected<Value, ControlError>;
    using Tool = Task<ToolOutput> (BrowserController::*)(ToolArguments);

    static Tool toolNamed(const QString& name);
    Task<> carryOut(Tool tool, ToolArguments arguments, std::function<void(ToolOutput)> done);

    // The tools, by family: BrowserToolsTabs.cpp, …Page.cpp, …Evaluate.cpp, …Look.cpp
    Task<ToolOutput> listTabs(ToolArguments arguments);
    Task<ToolOutput> open(ToolArguments arguments);
    Task<ToolOutput> navigate(ToolArguments arguments);
    Task<ToolOutput> close(ToolArguments arguments);
    Task<ToolOutput> snapshot(ToolArguments arguments);
    Task<ToolOutput> click(ToolArguments arguments);
    Task<ToolOutput> type(ToolArguments arguments);
    Task<ToolOutput> press(ToolArguments arguments);
    Task<ToolOutput> scroll(ToolArguments arguments);
    Task<ToolOutput> evaluate(ToolArguments arguments);
    Task<ToolOutput> screenshot(ToolArguments arguments);
    Task<ToolOutput> wait(ToolArguments arguments);
    Task<ToolOutput> console(ToolArguments arguments);

    // Tabs
    /// The tab that the arguments name, else the one on the screen, else the last one used, else
    /// the last one.
    [[nodiscard]] Result<Tab> choose(const ToolArguments& arguments) const;
    /// `choose`, remembered as the last one used.
    Result<Tab> target(const ToolArguments& arguments);
    [[nodiscard]] bool isOpen(const BrowserTab& tab) const;
    /// The page for the next moment: valid until the coroutine waits again.
    [[nodiscard]] Result<PageEngine*> pageOf(BrowserTab& tab) const;

    // Waiting
    /// A callback for `arrival` that lets the coroutine go on in a turn of its own: who calls is in
    /// the middle of something, maybe of destroying a page.
    template <typename Value>
    [[nodiscard]] auto bringing(const Arrival<Value>& arrival)
    {
        return [this, context = QPointer<QObject>(&m_context), arrival](const Value& value) {
            if (context)
                m_scheduler.after({}, context, [arrival, value] { arrival.bring(value); });
        };
    }
    Task<> sleep(Milliseconds time);
    enum class Settle { No, Yes };
    /// With `Settle::Yes` a load that was just asked for gets the time to begin. Never fails: a
    /// page that doesn't finish is told by its summary.
    Task<> waitForLoad(Tab tab, Settle settle, Milliseconds timeout);
    /// Makes the page of a tab that has none yet, and waits for its first load.
    Task<> wake(Tab tab);

    // Pages
    /// Long before the ninety seconds after which an agent's side gives up.
    static constexpr std::chrono::seconds CallTimeout{30};
    Task<PageScriptResult> callPage(Tab tab, PageScript script, Milliseconds timeout);
    Task<PagePictureResult> drawPage(Tab tab, PageExtent extent);
    /// The script's result as text, or what to tell of its failure.
    Task<Result<QString>> call(Tab tab, PageScript script);
    [[nodiscard]] Result<QString> textOf(BrowserTab& tab, const PageScriptResult& result,
                                         Milliseconds timeout) const;
    /// Runs a script that may change the page, and tells where that led.
    Task<ToolOutput> act(QString tool, ToolArguments arguments, PageScript script);
    /// A sentence for what kept a script on the tab's page from answering within `timeout`.
    [[nodiscard]] QString message(BrowserTab& tab, const PageScriptError& error,
                                  Milliseconds timeout) const;

    BrowserTabs& m_tabs;
    Scheduler& m_scheduler;
    const Clock& m_clock;
    QString m_lastTargetId;
    QObject m_context;   ///< With it go the calls that are still to come.
    TaskScope m_running; ///< The last member: what runs uses all the others.
};

} // namespace Bralto
