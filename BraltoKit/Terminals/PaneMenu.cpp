#include "Terminals/PaneMenu.h"

#include "Base/Shortcuts.h"
#include "Terminals/TerminalPanel.h"

#include <QPointer>

namespace Bralto::PaneMenu {

namespace {

using Shortcuts::Command;
using Shortcuts::Switched;

/// The actions of one pane while they are put together.
class Builder {
public:
    Builder(ConsolePane& pane, TerminalPanel& panel, DefaultsStore& shared)
        : m_pane(&pane)
        , m_panel(&panel)
        , m_shared(shared)
    {
    }

    void addClipboard(const Hooks& hooks);
    void addSwap();
    void addTabs();
    void addStyle();
    void addClose();
    [[nodiscard]] std::vector<Action> take() { return std::move(m_actions); }

private:
    Action& add(const QString& title, const char* symbol, std::function<void()> run);
    /// Calls `work` with the pane and its panel, unless one of them has gone.
    template <typename Work>
    [[nodiscard]] std::function<void()> whileHere(Work work) const
    {
        return [pane = m_pane, panel = m_panel, work] {
            if (pane && panel)
                work(*pane, *panel);
        };
    }

    QPointer<ConsolePane> m_pane;
    QPointer<TerminalPanel> m_panel;
    DefaultsStore& m_shared;
    std::vector<Action> m_actions;
};

Action& Builder::add(const QString& title, const char* symbol, std::function<void()> run)
{
    m_actions.push_back(
        {.title = title, .symbol = QString::fromLatin1(symbol), .run = std::move(run)});
    return m_actions.back();
}

void Builder::addClipboard(const Hooks& hooks)
{
    if (!m_pane->terminal())
        return;
    add(Shortcuts::title(Command::Copy), "doc.on.doc", hooks.copy).isEnabled =
        hooks.copy && hooks.canCopy && hooks.canCopy();
    add(Shortcuts::title(Command::Paste), "doc.on.clipboard", hooks.paste).isEnabled =
        bool(hooks.paste);
}

void Builder::addSwap()
{
    if (!m_pane->isClaude())
        return;
    const bool isChat = m_pane->chat() != nullptr;
    Action& swap =
        add(Shortcuts::title(Command::ToggleChatView, isChat ? Switched::On : Switched::Off),
            isChat ? "terminal" : "bubble.left.and.text.bubble.right",
            whileHere([](ConsolePane& pane, TerminalPanel& panel) { panel.toggleView(&pane); }));
    swap.isEnabled = !m_pane->isSwapping() && !m_pane->claudeSessionId().isEmpty();
    swap.startsSection = m_actions.size() > 1;
}

void Builder::addTabs()
{
    add(Shortcuts::title(Command::NewTerminalTab), "rectangle.badge.plus",
        whileHere([](ConsolePane&, TerminalPanel& panel) { panel.newTab(std::nullopt); }))
        .startsSection = true;
    const TerminalGroup* group = m_panel->groupOf(m_pane);
    const bool isAloneAtTheEnd =
        group && group->panes().size() == 1 && m_panel->groups().back().get() == group;
    // A tab without a name of its own is called as its panes are.
    add(QStringLiteral("Move to ") + m_pane->label(), "square.on.square",
        whileHere([](ConsolePane& pane, TerminalPanel& panel) {
            panel.moveToNewGroup(&pane, std::nullopt);
        }))
        .isEnabled = !isAloneAtTheEnd;
}

void Builder::addStyle()
{
    add(Shortcuts::title(Command::StylePane), "paintpalette",
        whileHere([](ConsolePane& pane, TerminalPanel&) { pane.setEditingStyle(true); }))
        .startsSection = true;
    if (m_pane->style() == PaneStyle::newPaneDefault(m_shared))
        return;
    add(QStringLiteral("Reset Style"), "arrow.counterclockwise",
        whileHere([&shared = m_shared](ConsolePane& pane, TerminalPanel&) {
            pane.setStyle(PaneStyle::newPaneDefault(shared));
        }));
    add(QStringLiteral("Use Style for New Panes"), "square.on.square",
        whileHere([&shared = m_shared](ConsolePane& pane, TerminalPanel&) {
            PaneStyle::setNewPaneDefault(shared, pane.style());
        }));
}

void Builder::addClose()
{
    Action& close =
        add(QStringLiteral("Close Pane"), "xmark",
            whileHere([](ConsolePane& pane, TerminalPanel& panel) { panel.close(&pane); }));
    close.isDestructive = true;
    close.startsSection = true;
}

} // namespace

std::vector<Action> actions(ConsolePane& pane, TerminalPanel& panel, DefaultsStore& shared,
                            const Hooks& hooks)
{
    Builder builder(pane, panel, shared);
    builder.addClipboard(hooks);
    builder.addSwap();
    builder.addTabs();
    builder.addStyle();
    builder.addClose();
    return builder.take();
}

} // namespace Bralto::PaneMenu
