#include "Views/Console/GroupChip.h"

#include "Terminals/TerminalPanel.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QContextMenuEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Bralto {
namespace {

constexpr int Padding = 10;
constexpr int Gap = 7;
constexpr int Dot = 8;
constexpr int Halo = 14;

bool waits(const ConsolePane& pane)
{
    return pane.chat() && pane.chat()->state().kind == ChatState::Kind::Waiting;
}

} // namespace

GroupChip::GroupChip(Theme& theme, TerminalPanel& panel, TerminalGroup& group, QWidget* parent)
    : Control(theme, Ground::Frame, parent)
    , m_panel(panel)
    , m_group(group)
    , m_groupId(group.id())
{
    connect(&group, &TerminalGroup::titleChanged, this, [this] {
        refresh();
        emit widthChanged();
    });
    connect(&group, &TerminalGroup::panesChanged, this, &GroupChip::followPanes);
    connect(&panel, &TerminalPanel::activeGroupChanged, this, qOverload<>(&QWidget::update));
    connect(this, &GroupChip::clicked, this, [this] {
        m_panel.activateGroup(&m_group);
        if (const ConsolePane* pane = m_group.focusedPane())
            m_panel.focus(pane);
    });
    followPanes();
}

void GroupChip::followPanes()
{
    for (const std::unique_ptr<ConsolePane>& pane : m_group.panes()) {
        if (const ClaudeChat* chat = pane->chat())
            connect(chat, &ClaudeChat::stateChanged, this, &GroupChip::refresh,
                    Qt::UniqueConnection);
    }
    refresh();
    emit widthChanged();
}

bool GroupChip::isActive() const
{
    return m_panel.activeGroup() == &m_group;
}

void GroupChip::refresh()
{
    m_isWaiting =
        std::ranges::any_of(m_group.panes(), [](const auto& pane) { return waits(*pane); });
    setText(m_group.title());
    setAccessibleName(m_isWaiting ? tr("%1, waiting").arg(text()) : text());
    setToolTip(text());
    update();
}

QSize GroupChip::sizeHint() const
{
    const double words = TextLine::width(TextRole::SecondaryMedium, text());
    return {int(std::ceil(words)) + 2 * Padding + Measure::TabIcon + Gap, Measure::Chip};
}

void GroupChip::close()
{
    m_panel.close(&m_group);
}

std::unique_ptr<QMenu> GroupChip::makeMenu()
{
    auto menu = std::make_unique<PopupMenu>(theme(), this);
    QAction* action = menu->addAction(tr("Close"));
    connect(action, &QAction::triggered, this, &GroupChip::close, Qt::QueuedConnection);
    return menu;
}

void GroupChip::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::MiddleButton)
        Control::mousePressEvent(event);
}

void GroupChip::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton && rect().contains(event->position().toPoint()))
        close();
    else
        Control::mouseReleaseEvent(event);
}

void GroupChip::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete)
        close();
    else
        Control::keyPressEvent(event);
}

void GroupChip::contextMenuEvent(QContextMenuEvent* event)
{
    makeMenu()->exec(event->globalPos());
}

void GroupChip::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const Tokens::Frame& frame = tokens().frame;
    if (isActive())
        Shape::fill(painter, rect(), Measure::ControlRadius, frame.pressed);
    else if (hoverAmount() > 0)
        Shape::fill(painter, rect(), Measure::ControlRadius,
                    Ink::faded(frame.hover, double(frame.hover.alphaF()) * hoverAmount()));
    const QColor ink = isActive() ? frame.label : frame.ink2;
    const double middle = height() / 2.0;
    const QRectF icon(Padding, middle - Measure::TabIcon / 2.0, Measure::TabIcon, Measure::TabIcon);
    if (m_isWaiting) {
        Shape::disc(painter, icon.center(), Halo, Ink::faded(frame.waitingDot, 0.24));
        Shape::disc(painter, icon.center(), Dot, frame.waitingDot);
    } else {
        Icon::draw(painter, icon, QStringLiteral("bubble.left.and.text.bubble.right"), ink);
    }
    const double x = icon.right() + Gap;
    TextLine::draw(painter, QRectF(x, 0, width() - x - Padding + 1, height()),
                   TextRole::SecondaryMedium, ink, text());
}

} // namespace Bralto
