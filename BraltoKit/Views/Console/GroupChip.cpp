#include "Views/Console/GroupChip.h"

#include "Terminals/ConsoleDrop.h"
#include "Terminals/TerminalPanel.h"
#include "Views/Chat/StatusMark.h"
#include "Views/Console/ConsoleCarrier.h"
#include "Views/Console/NameField.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Bralto {
namespace {

constexpr int Padding = 10;
constexpr int Gap = 7;
constexpr int Dot = 8;
constexpr int Halo = 14;
constexpr double HaloOpacity = 0.24;
constexpr double RingLine = 1.8;
constexpr double Quarter = 0.25;
constexpr double GhostOpacity = 0.4;
constexpr int Close = 16;
constexpr int CloseRight = 3;
/// A narrower chip has no room for its close button.
constexpr int LeastForClose = 60;

GroupChip::State stateOf(const TerminalGroup& group)
{
    auto state = GroupChip::State::Quiet;
    for (const std::unique_ptr<ConsolePane>& pane : group.panes()) {
        if (!pane->chat())
            continue;
        const ChatState::Kind kind = pane->chat()->state().kind;
        if (kind == ChatState::Kind::Waiting)
            return GroupChip::State::Waiting;
        if (kind == ChatState::Kind::Working || kind == ChatState::Kind::Starting)
            state = GroupChip::State::Working;
    }
    return state;
}

} // namespace

GroupChip::GroupChip(Theme& theme, TerminalPanel& panel, ConsoleDrag& drag, TerminalGroup& group,
                     QWidget* parent)
    : Control(theme, Ground::Frame, parent)
    , m_panel(panel)
    , m_drag(drag)
    , m_group(group)
    , m_groupId(group.id())
    , m_close(new IconButton(theme, Ground::Frame, QStringLiteral("xmark"), this))
{
    setAcceptDrops(true);
    m_close->setExtent(Close, Measure::CaptionIcon);
    m_close->setQuiet(true);
    m_close->setTip(tr("Close"));
    // The keyboard closes a focused chip with Delete.
    m_close->setFocusPolicy(Qt::NoFocus);
    m_close->hide();
    connect(m_close, &IconButton::clicked, this, &GroupChip::close, Qt::QueuedConnection);
    connect(&group, &TerminalGroup::titleChanged, this, [this] {
        refresh();
        emit widthChanged();
    });
    connect(&group, &TerminalGroup::panesChanged, this, &GroupChip::followPanes);
    connect(&group, &TerminalGroup::focusedPaneChanged, this, qOverload<>(&QWidget::update));
    connect(&panel, &TerminalPanel::activeGroupChanged, this, &GroupChip::refresh);
    connect(&drag, &ConsoleDrag::itemChanged, this, qOverload<>(&QWidget::update));
    connect(&drag, &ConsoleDrag::targetChanged, this, qOverload<>(&QWidget::update));
    connect(&SpinnerClock::shared(), &SpinnerClock::ticked, this, [this] {
        if (m_state == State::Working)
            update();
    });
    connect(this, &GroupChip::clicked, this, [this] { m_panel.activateGroup(&m_group); });
    followPanes();
}

GroupChip::~GroupChip()
{
    SpinnerClock::shared().hold(this, false);
}

void GroupChip::followPanes()
{
    for (const std::unique_ptr<ConsolePane>& pane : m_group.panes()) {
        connect(pane.get(), &ConsolePane::contentChanged, this, &GroupChip::followPanes,
                Qt::UniqueConnection);
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

QString GroupChip::symbol() const
{
    const bool hasChat =
        std::ranges::any_of(m_group.panes(), [](const auto& pane) { return pane->chat(); });
    return hasChat ? QStringLiteral("bubble.left.and.text.bubble.right")
                   : QStringLiteral("terminal");
}

void GroupChip::refresh()
{
    State next = stateOf(m_group);
    // The panes on show tell for themselves that they work.
    if (next == State::Working && isActive())
        next = State::Quiet;
    setState(next);
    setText(m_group.title());
    switch (m_state) {
    case State::Quiet:
        setAccessibleName(text());
        break;
    case State::Working:
        setAccessibleName(tr("%1, working").arg(text()));
        break;
    case State::Waiting:
        setAccessibleName(tr("%1, waiting").arg(text()));
        break;
    }
    setToolTip(text());
    update();
}

void GroupChip::setState(State state)
{
    m_state = state;
    SpinnerClock::shared().hold(this, state == State::Working && !theme().reducedMotion());
}

QSize GroupChip::sizeHint() const
{
    const double words = TextLine::width(TextRole::SecondaryMedium, text());
    return {int(std::ceil(words)) + 2 * Padding + Measure::TabIcon + Gap, Measure::Chip};
}

QRect GroupChip::nameRect() const
{
    const int x = Padding + Measure::TabIcon + Gap;
    return {x, 0, std::max(0, width() - Padding + 1 - x), height()};
}

void GroupChip::place()
{
    m_close->setVisible(underMouse() && !m_field && width() >= LeastForClose);
    m_close->move(width() - CloseRight - Close, (height() - Close) / 2);
    if (m_field)
        m_field->setGeometry(nameRect());
}

void GroupChip::close()
{
    m_panel.close(&m_group);
}

NameField* GroupChip::nameField() const
{
    return m_field;
}

void GroupChip::rename()
{
    if (m_field)
        return;
    m_close->hide();
    m_field =
        new NameField(theme(), m_group.title(),
                      isActive() ? tokens().frame.label : tokens().frame.ink2, nameRect(), this);
    connect(m_field, &NameField::named, this, [this](const std::optional<QString>& name) {
        // Who leaves the name as it stood has given none.
        if (name != m_group.title())
            m_group.setName(name);
        returnFocus();
    });
    connect(m_field, &NameField::cancelled, this, &GroupChip::returnFocus);
    update();
}

void GroupChip::returnFocus()
{
    if (isActive())
        m_panel.focus(m_group.focusedPane());
    update();
}

std::unique_ptr<QMenu> GroupChip::makeMenu()
{
    auto menu = std::make_unique<PopupMenu>(theme(), this);
    connect(menu->addAction(tr("Rename…")), &QAction::triggered, this, &GroupChip::rename,
            Qt::QueuedConnection);
    menu->addSeparator();
    connect(menu->addAction(tr("Close")), &QAction::triggered, this, &GroupChip::close,
            Qt::QueuedConnection);
    return menu;
}

void GroupChip::contextMenuEvent(QContextMenuEvent* event)
{
    PopupMenu::popUp(makeMenu(), event->globalPos());
}

void GroupChip::enterEvent(QEnterEvent* event)
{
    Control::enterEvent(event);
    place();
}

void GroupChip::leaveEvent(QEvent* event)
{
    Control::leaveEvent(event);
    place();
}

void GroupChip::resizeEvent(QResizeEvent* event)
{
    Control::resizeEvent(event);
    place();
}

void GroupChip::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        m_press = event->position().toPoint();
    if (event->button() != Qt::MiddleButton)
        Control::mousePressEvent(event);
}

void GroupChip::mouseMoveEvent(QMouseEvent* event)
{
    Control::mouseMoveEvent(event);
    if (!m_press || !(event->buttons() & Qt::LeftButton))
        return;
    const QPoint way = event->position().toPoint() - *m_press;
    if (way.manhattanLength() < QApplication::startDragDistance())
        return;
    setDown(false);
    emit dragRequested(*std::exchange(m_press, std::nullopt));
}

void GroupChip::mouseReleaseEvent(QMouseEvent* event)
{
    m_press.reset();
    if (event->button() == Qt::MiddleButton && rect().contains(event->position().toPoint()))
        close();
    else
        Control::mouseReleaseEvent(event);
}

void GroupChip::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_press.reset();
    if (event->button() == Qt::LeftButton)
        rename();
}

void GroupChip::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete)
        close();
    else if (event->key() == Qt::Key_F2)
        rename();
    else
        Control::keyPressEvent(event);
}

void GroupChip::dragEnterEvent(QDragEnterEvent* event)
{
    ChipDropDelegate(m_drag, m_panel, m_groupId).dropEntered(ConsoleCarrier::info(*event, *this));
    ConsoleCarrier::update(*event, *this, ChipDropDelegate(m_drag, m_panel, m_groupId));
}

void GroupChip::dragMoveEvent(QDragMoveEvent* event)
{
    ConsoleCarrier::update(*event, *this, ChipDropDelegate(m_drag, m_panel, m_groupId));
}

void GroupChip::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    ChipDropDelegate(m_drag, m_panel, m_groupId).dropExited();
}

void GroupChip::dropEvent(QDropEvent* event)
{
    ConsoleCarrier::drop(*event, *this, ChipDropDelegate(m_drag, m_panel, m_groupId));
}

void GroupChip::paintGround(QPainter& painter) const
{
    const Tokens::Frame& frame = tokens().frame;
    const ConsoleDrag::Target whole{ConsoleDrag::Target::Place::Chip, m_groupId, std::nullopt};
    if (isActive())
        Shape::fill(painter, rect(), Measure::ControlRadius, frame.pressed);
    else if (hoverAmount() > 0)
        Shape::fill(painter, rect(), Measure::ControlRadius,
                    Ink::faded(frame.hover, double(frame.hover.alphaF()) * hoverAmount()));
    if (m_drag.target() == whole) {
        Shape::fill(painter, rect(), Measure::ControlRadius, frame.hover);
        Shape::ring(painter, rect(), Measure::ControlRadius, Measure::FocusRing, frame.label);
    }
}

void GroupChip::paintState(QPainter& painter, const QRectF& icon, const QColor& ink) const
{
    const Tokens::Frame& frame = tokens().frame;
    switch (m_state) {
    case State::Quiet:
        Icon::draw(painter, icon, symbol(), ink);
        break;
    case State::Working:
        StatusMark::drawRing(painter, icon.adjusted(1, 1, -1, -1), RingLine, Quarter,
                             SpinnerClock::shared().turn(), frame.label, frame.barTrack);
        break;
    case State::Waiting:
        Shape::disc(painter, icon.center(), Halo, Ink::faded(frame.waitingDot, HaloOpacity));
        Shape::disc(painter, icon.center(), Dot, frame.waitingDot);
        break;
    }
}

void GroupChip::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const auto& item = m_drag.item();
    if (item && item->kind == ConsoleDrag::Kind::Group && item->id == m_groupId)
        painter.setOpacity(GhostOpacity);
    paintGround(painter);
    const QColor ink = isActive() ? tokens().frame.label : tokens().frame.ink2;
    const QRectF icon(Padding, (height() - Measure::TabIcon) / 2.0, Measure::TabIcon,
                      Measure::TabIcon);
    paintState(painter, icon, ink);
    // The button covers the last letter rather than making the chip wider or its text shorter.
    if (!m_close->isHidden())
        painter.setClipRect(QRect(0, 0, m_close->x(), height()));
    if (!m_field)
        TextLine::draw(painter, nameRect(), TextRole::SecondaryMedium, ink, text());
}

} // namespace Bralto
