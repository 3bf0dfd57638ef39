#include "Views/Console/ConsoleHead.h"

#include "Terminals/ConsoleDrop.h"
#include "Terminals/TerminalPanel.h"
#include "Views/Console/ConsoleCarrier.h"
#include "Views/Console/GroupChip.h"
#include "Views/Kit/Glide.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/WidthShares.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QPainter>

#include <algorithm>

namespace Bralto {
namespace {

using Shortcuts::Command;
using Target = ConsoleDrag::Target;

constexpr int Left = 6;
constexpr int Right = 7;
constexpr int Gap = 2;
constexpr int LeastChip = 44;
constexpr int LargestChip = 260;
/// The way to other panes beside the plus, which has the same menu.
constexpr int MoreWidth = 20;
/// In a narrower head the plus stands alone.
constexpr int LeastForMore = 480;
constexpr double RingOpacity = 0.7;

} // namespace

ConsoleHead::ConsoleHead(Theme& theme, TerminalPanel& panel, ConsoleDrag& drag, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_panel(panel)
    , m_drag(drag)
    , m_glide(new Glide(theme, this))
    , m_new(new IconButton(theme, Ground::Frame, QStringLiteral("plus"), this))
    , m_more(new IconButton(theme, Ground::Frame, QStringLiteral("chevron.down"), this))
    , m_maximize(new IconButton(theme, Ground::Frame,
                                QStringLiteral("arrow.up.left.and.arrow.down.right"), this))
    , m_hide(new IconButton(theme, Ground::Frame, QStringLiteral("chevron.down"), this))
{
    setFixedHeight(Measure::TrayHead);
    setAcceptDrops(true);
    for (IconButton* button : {m_new, m_maximize, m_hide})
        button->setExtent(Measure::BarButton, Measure::RowIcon);
    m_more->setExtent(MoreWidth, Measure::CaptionIcon);
    connect(m_new, &IconButton::clicked, this, [this] { m_panel.newTab(std::nullopt); });
    connect(m_more, &IconButton::clicked, this,
            [this] { popUpNewMenu(m_more->mapToGlobal(QPoint(0, m_more->height()))); });
    m_maximize->setCheckable(true);
    connect(m_maximize, &IconButton::clicked, this, [this] {
        m_panel.toggleMaximized();
        refresh();
    });
    connect(m_hide, &IconButton::clicked, &panel, &TerminalPanel::hide);
    connect(&panel, &TerminalPanel::groupsChanged, this, &ConsoleHead::rebuild);
    connect(&panel, &TerminalPanel::isMaximizedChanged, this, &ConsoleHead::refresh);
    connect(&drag, &ConsoleDrag::targetChanged, this, qOverload<>(&QWidget::update));
    rebuild();
    refresh();
}

GroupChip* ConsoleHead::makeChip(TerminalGroup& group)
{
    auto* made = new GroupChip(theme(), m_panel, m_drag, group, this);
    connect(made, &GroupChip::widthChanged, this, [this] { place(Step::AtOnce); });
    connect(made, &GroupChip::dragRequested, this,
            [this, made](const QPoint& grip) { emit groupDragRequested(made, grip); });
    made->show();
    return made;
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
        next.push_back(makeChip(*group));
    }
    for (GroupChip* gone : m_chips) {
        gone->hide();
        gone->deleteLater();
    }
    m_chips = std::move(next);
    place(Step::Animated);
}

void ConsoleHead::setKeyboard(Shortcuts::Keyboard keyboard)
{
    if (m_keyboard == keyboard)
        return;
    m_keyboard = keyboard;
    refresh();
}

void ConsoleHead::refresh()
{
    const auto keys = [this](Command command) { return Shortcuts::keys(command, m_keyboard); };
    const bool isMaximized = m_panel.isMaximized();
    m_maximize->setChecked(isMaximized);
    m_maximize->setSymbol(isMaximized ? QStringLiteral("arrow.down.right.and.arrow.up.left")
                                      : QStringLiteral("arrow.up.left.and.arrow.down.right"));
    m_maximize->setTip(isMaximized ? tr("Restore Size") : tr("Full-Height Terminal"),
                       keys(Command::ToggleTerminalSize));
    m_hide->setTip(tr("Hide Terminal"), keys(Command::ToggleTerminal));
    m_new->setTip(tr("New Terminal Tab"), keys(Command::New));
    m_more->setTip(tr("New Claude Beside: Terminal (%1) or Chat (%2)")
                       .arg(keys(Command::NewClaudeBeside), keys(Command::NewClaudeChat)));
}

std::unique_ptr<QMenu> ConsoleHead::makeNewMenu()
{
    auto menu = std::make_unique<PopupMenu>(theme(), this);
    const auto add = [this, &menu](Command command, const QString& symbol, Command chord,
                                   auto work) {
        const QString keys = Shortcuts::keys(chord, m_keyboard);
        QString title = Shortcuts::title(command);
        if (!keys.isEmpty())
            title += u'\t' + keys;
        QAction* action = menu->addAction(title);
        PopupMenu::setSymbol(*action, symbol);
        connect(action, &QAction::triggered, &m_panel, work, Qt::QueuedConnection);
    };
    TerminalPanel& panel = m_panel;
    add(Command::NewClaudeBeside, QStringLiteral("sparkles"), Command::NewClaudeBeside,
        [&panel] { panel.addPane(PaneKind::Claude); });
    add(Command::NewClaudeChat, QStringLiteral("bubble.left.and.text.bubble.right"),
        Command::NewClaudeChat, [&panel] { panel.addPane(PaneKind::Chat); });
    add(Command::NewShellBeside, QStringLiteral("terminal"), Command::NewShellBeside,
        [&panel] { panel.addPane(PaneKind::Shell); });
    menu->addSeparator();
    // The chord of the command that makes whatever belongs where the keyboard is.
    add(Command::NewTerminalTab, QStringLiteral("rectangle.badge.plus"), Command::New,
        [&panel] { panel.newTab(std::nullopt); });
    return menu;
}

void ConsoleHead::popUpNewMenu(const QPoint& globalPosition)
{
    PopupMenu::popUp(makeNewMenu(), globalPosition);
}

void ConsoleHead::contextMenuEvent(QContextMenuEvent* event)
{
    popUpNewMenu(event->globalPos());
}

void ConsoleHead::place(Step step)
{
    const bool hasMore = width() >= LeastForMore;
    m_more->setVisible(hasMore);
    const int opening = Measure::BarButton + (hasMore ? MoreWidth : 0);
    const int buttons = opening + 2 * Measure::BarButton + 2 * Gap + Measure::Space2;
    const int room = width() - Left - Right - buttons;
    std::vector<int> wanted;
    for (const GroupChip* chip : m_chips)
        wanted.push_back(std::min(chip->sizeHint().width(), LargestChip));
    const std::vector<int> widths = widthShares(wanted, room, Gap, LeastChip);

    const int top = (height() - Measure::BarButton) / 2;
    std::vector<Glide::Way> journey;
    int x = Left;
    for (std::size_t at = 0; at < m_chips.size(); ++at) {
        const QRect goal(x, (height() - Measure::Chip) / 2, widths[at], Measure::Chip);
        // One that has just been made grows in its place.
        const bool isNew = m_chips[at]->geometry().top() != goal.top();
        journey.push_back(
            {.widget = m_chips[at],
             .goal = goal,
             .start = isNew ? std::optional(QRect(goal.topLeft(), QSize(0, goal.height())))
                            : std::nullopt});
        // What does not fit even so stays reachable by cycling.
        m_chips[at]->setVisible(x + widths[at] <= Left + room);
        x += widths[at] + Gap;
    }
    const int plus = std::min(x + Gap, Left + room + Gap);
    journey.push_back({.widget = m_new, .goal = QRect(QPoint(plus, top), m_new->size())});
    journey.push_back({.widget = m_more,
                       .goal = QRect(QPoint(plus + Measure::BarButton, (height() - MoreWidth) / 2),
                                     m_more->size())});
    if (step == Step::Animated && isVisible())
        m_glide->moveTo(std::move(journey), Motions::Panel);
    else
        m_glide->jumpTo(journey);
    m_hide->move(width() - Right - Measure::BarButton, top);
    m_maximize->move(width() - Right - 2 * Measure::BarButton - Gap, top);
}

void ConsoleHead::resizeEvent(QResizeEvent* /*event*/)
{
    place(Step::AtOnce);
}

std::optional<QRect> ConsoleHead::dropLine() const
{
    const auto& target = m_drag.target();
    if (!target || target->place != Target::Place::Chip || !target->edge)
        return std::nullopt;
    const auto chip = std::ranges::find(m_chips, target->id, &GroupChip::groupId);
    if (chip == m_chips.end())
        return std::nullopt;
    const QRect beside = (*chip)->geometry();
    const int x =
        *target->edge == ConsoleDrag::Edge::Leading ? beside.left() - Gap : beside.right() + 1;
    return QRect(x, beside.top(), Gap, beside.height());
}

void ConsoleHead::paintEvent(QPaintEvent* /*event*/)
{
    const auto line = dropLine();
    const bool takesTab = m_drag.target() && m_drag.target()->place == Target::Place::NewTab;
    if (!line && !takesTab)
        return;
    QPainter painter(this);
    const Tokens::Frame& frame = tokens().frame;
    if (line)
        Shape::fill(painter, *line, Gap / 2.0, frame.label);
    if (takesTab) {
        const QRectF area = QRectF(rect()).adjusted(2, 3, -2, -3);
        Shape::fill(painter, area, Measure::PaneRadius, frame.hover);
        Shape::ring(painter, area, Measure::PaneRadius, Measure::FocusRing,
                    Ink::faded(frame.label, RingOpacity));
    }
}

void ConsoleHead::dragEnterEvent(QDragEnterEvent* event)
{
    ConsoleCarrier::update(*event, *this, HeaderDropDelegate(m_drag, m_panel));
}

void ConsoleHead::dragMoveEvent(QDragMoveEvent* event)
{
    ConsoleCarrier::update(*event, *this, HeaderDropDelegate(m_drag, m_panel));
}

void ConsoleHead::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    HeaderDropDelegate(m_drag, m_panel).dropExited();
}

void ConsoleHead::dropEvent(QDropEvent* event)
{
    ConsoleCarrier::drop(*event, *this, HeaderDropDelegate(m_drag, m_panel));
}

} // namespace Bralto
