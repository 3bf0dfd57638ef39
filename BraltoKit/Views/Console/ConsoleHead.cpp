#include "Views/Console/ConsoleHead.h"

#include "Base/Shortcuts.h"
#include "Terminals/TerminalPanel.h"
#include "Views/Console/GroupChip.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/WidthShares.h"

#include <algorithm>

namespace Bralto {
namespace {

using Shortcuts::Command;

constexpr int Left = 6;
constexpr int Right = 7;
constexpr int Gap = 2;
constexpr int LeastChip = 44;
constexpr int LargestChip = 260;

} // namespace

ConsoleHead::ConsoleHead(Theme& theme, TerminalPanel& panel, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_panel(panel)
    , m_new(new IconButton(theme, Ground::Frame, QStringLiteral("plus"), this))
    , m_maximize(new IconButton(theme, Ground::Frame,
                                QStringLiteral("arrow.up.left.and.arrow.down.right"), this))
    , m_hide(new IconButton(theme, Ground::Frame, QStringLiteral("chevron.down"), this))
{
    setFixedHeight(Measure::TrayHead);
    for (IconButton* button : {m_new, m_maximize, m_hide})
        button->setExtent(Measure::BarButton, Measure::RowIcon);
    m_new->setTip(tr("New Claude Chat"), Shortcuts::keys(Command::New));
    m_hide->setTip(tr("Hide Terminal"), Shortcuts::keys(Command::ToggleTerminal));
    connect(m_new, &IconButton::clicked, this,
            [this] { m_panel.addGroup(PaneKind::Chat, std::nullopt); });
    m_maximize->setCheckable(true);
    connect(m_maximize, &IconButton::clicked, this, [this] {
        m_panel.toggleMaximized();
        refresh();
    });
    connect(m_hide, &IconButton::clicked, &panel, &TerminalPanel::hide);
    connect(&panel, &TerminalPanel::groupsChanged, this, &ConsoleHead::rebuild);
    connect(&panel, &TerminalPanel::isMaximizedChanged, this, &ConsoleHead::refresh);
    rebuild();
    refresh();
}

void ConsoleHead::rebuild()
{
    std::vector<GroupChip*> next;
    for (const std::unique_ptr<TerminalGroup>& group : m_panel.groups()) {
        const auto known = std::ranges::find(m_chips, group->id(), &GroupChip::groupId);
        if (known != m_chips.end()) {
            next.push_back(*known);
            m_chips.erase(known);
            continue;
        }
        auto* made = new GroupChip(theme(), m_panel, *group, this);
        connect(made, &GroupChip::widthChanged, this, &ConsoleHead::place);
        made->show();
        next.push_back(made);
    }
    for (GroupChip* gone : m_chips) {
        gone->hide();
        gone->deleteLater();
    }
    m_chips = std::move(next);
    place();
}

void ConsoleHead::refresh()
{
    const bool isMaximized = m_panel.isMaximized();
    m_maximize->setChecked(isMaximized);
    m_maximize->setSymbol(isMaximized ? QStringLiteral("arrow.down.right.and.arrow.up.left")
                                      : QStringLiteral("arrow.up.left.and.arrow.down.right"));
    m_maximize->setTip(isMaximized ? tr("Restore Size") : tr("Full-Height Terminal"),
                       Shortcuts::keys(Command::ToggleTerminalSize));
}

void ConsoleHead::place()
{
    const int buttons = 3 * Measure::BarButton + 2 * Gap + Measure::Space2;
    const int room = width() - Left - Right - buttons;
    std::vector<int> wanted;
    for (const GroupChip* chip : m_chips)
        wanted.push_back(std::min(chip->sizeHint().width(), LargestChip));
    const std::vector<int> widths = widthShares(wanted, room, Gap, LeastChip);

    int x = Left;
    for (std::size_t at = 0; at < m_chips.size(); ++at) {
        m_chips[at]->setGeometry(x, (height() - Measure::Chip) / 2, widths[at], Measure::Chip);
        // What does not fit even so stays reachable by cycling.
        m_chips[at]->setVisible(x + widths[at] <= Left + room);
        x += widths[at] + Gap;
    }
    const int top = (height() - Measure::BarButton) / 2;
    m_new->move(std::min(x + Gap, Left + room + Gap), top);
    m_hide->move(width() - Right - Measure::BarButton, top);
    m_maximize->move(width() - Right - 2 * Measure::BarButton - Gap, top);
}

void ConsoleHead::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

} // namespace Bralto
