#include "Views/Console/TerminalPanelView.h"

#include "Terminals/TerminalPanel.h"
#include "Views/Console/ConsoleCarrier.h"
#include "Views/Console/ConsoleHead.h"
#include "Views/Console/FadingPicture.h"
#include "Views/Console/GroupChip.h"
#include "Views/Console/PaneDropArea.h"
#include "Views/Console/PaneView.h"
#include "Views/Kit/Glide.h"
#include "Views/Kit/Shape.h"

#include <QApplication>
#include <QPainter>
#include <QSet>

#include <algorithm>
#include <chrono>
#include <utility>

namespace Bralto {
namespace {

/// No way of panes takes longer.
constexpr std::chrono::seconds LongestMotion{1};

} // namespace

TerminalPanelView::TerminalPanelView(const ViewServices& services, TerminalPanel& panel,
                                     QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_panel(panel)
    , m_drag(services.motion, [] { return QGuiApplication::mouseButtons() != Qt::NoButton; })
    , m_head(new ConsoleHead(services.theme, panel, m_drag, this))
    , m_glide(new Glide(services.theme, this))
{
    setAccessibleName(tr("Terminal"));
    connect(&panel, &TerminalPanel::groupsChanged, this, &TerminalPanelView::followGroups);
    connect(&panel, &TerminalPanel::activeGroupChanged, this, &TerminalPanelView::refresh);
    connect(&panel, &TerminalPanel::isVisibleChanged, this, &TerminalPanelView::refresh);
    connect(&panel, &TerminalPanel::isParkedChanged, this, &TerminalPanelView::refresh);
    connect(&panel, &TerminalPanel::focusRequested, this, &TerminalPanelView::focusPane);
    connect(m_head, &ConsoleHead::groupDragRequested, this,
            [this](GroupChip* chip, const QPoint& grip) { dragGroup(*chip, grip); });
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { followKeyboard(now); });
    connect(m_glide, &Glide::started, this, [this] {
        m_motion = m_services.motion.begin(QStringLiteral("move panes"), LongestMotion);
    });
    connect(m_glide, &Glide::settled, this, &TerminalPanelView::settle);
    followGroups();
}

TerminalPanelView::~TerminalPanelView()
{
    // The keyboard leaves what is deleted here.
    disconnect(qApp, nullptr, this, nullptr);
    m_services.motion.end(m_motion);
    // What follows the drag goes before it.
    qDeleteAll(std::exchange(m_views, {}));
    delete m_head;
}

void TerminalPanelView::followGroups()
{
    for (const std::unique_ptr<TerminalGroup>& group : m_panel.groups()) {
        connect(group.get(), &TerminalGroup::panesChanged, this, &TerminalPanelView::refresh,
                Qt::UniqueConnection);
        connect(group.get(), &TerminalGroup::focusedPaneChanged, this, &TerminalPanelView::refresh,
                Qt::UniqueConnection);
    }
    refresh();
}

void TerminalPanelView::dropClosed()
{
    QSet<QString> alive;
    for (const std::unique_ptr<TerminalGroup>& group : m_panel.groups()) {
        for (const std::unique_ptr<ConsolePane>& pane : group->panes())
            alive.insert(pane->id());
    }
    for (auto at = m_views.begin(); at != m_views.end();) {
        if (alive.contains(at.key())) {
            ++at;
            continue;
        }
        leaveBehind(*at.value());
        at.value()->hide();
        at.value()->deleteLater();
        at = m_views.erase(at);
    }
}

/// The picture of a pane that goes stays until its neighbours have taken its place.
void TerminalPanelView::leaveBehind(PaneView& gone)
{
    const TerminalGroup* group = m_panel.activeGroup();
    const bool isSeen = isVisible() && !gone.isHidden() && group && group->id() == m_placedGroup &&
                        !theme().reducedMotion();
    if (!isSeen)
        return;
    auto* picture = new FadingPicture(theme(), gone.grab(), this);
    picture->setGeometry(gone.geometry());
    picture->start(FadingPicture::Layer::Below);
}

void TerminalPanelView::makeMissing()
{
    const TerminalGroup* group = m_panel.activeGroup();
    // What is made stays on show while the console slides away; nothing is made for it.
    if (!group || !m_panel.isVisible() || !m_services.makePane)
        return;
    for (const std::unique_ptr<ConsolePane>& pane : group->panes()) {
        if (m_views.contains(pane->id()))
            continue;
        auto* view = new PaneView(m_services, m_panel, m_drag, *pane, this);
        view->hide();
        connect(view, &PaneView::dragRequested, this,
                [this, view](const QPoint& grip) { dragPane(*view, grip); });
        m_views.insert(pane->id(), view);
    }
}

void TerminalPanelView::refresh()
{
    dropClosed();
    makeMissing();
    const TerminalGroup* group = m_panel.activeGroup();
    const bool sameGroup = group && group->id() == m_placedGroup;
    place(sameGroup && isVisible() ? Step::Animated : Step::AtOnce);
    for (PaneView* view : std::as_const(m_views)) {
        const ConsolePane* pane = m_panel.pane(view->paneId());
        view->setVisible(pane && group && m_panel.groupOf(pane) == group && !m_panel.isParked());
        view->setFocusedPane(group && group->focusedPane() == pane);
    }
    m_placedGroup = group ? group->id() : QString();
}

PaneView* TerminalPanelView::paneView(const QString& paneId) const
{
    PaneView* view = m_views.value(paneId);
    return view && !view->isHidden() ? view : nullptr;
}

void TerminalPanelView::focusPane(const ConsolePane* pane)
{
    if (PaneView* view = pane ? paneView(pane->id()) : nullptr)
        view->setFocus(Qt::OtherFocusReason);
}

void TerminalPanelView::followKeyboard(const QWidget* focus)
{
    const bool inTerminal = std::ranges::any_of(m_views, [this, focus](const PaneView* view) {
        const ConsolePane* pane = m_panel.pane(view->paneId());
        return pane && pane->terminal() && focus &&
               (view->content() == focus || view->content()->isAncestorOf(focus));
    });
    m_head->setKeyboard(inTerminal ? Shortcuts::Keyboard::InTerminal
                                   : Shortcuts::Keyboard::Elsewhere);
}

QRect TerminalPanelView::area() const
{
    return {Measure::TrayPadding, Measure::TrayHead,
            std::max(0, width() - 2 * Measure::TrayPadding),
            std::max(0, height() - Measure::TrayHead - Measure::TrayPadding)};
}

void TerminalPanelView::place(Step step)
{
    m_head->setGeometry(Measure::TraySide, 0, width() - 2 * Measure::TraySide, Measure::TrayHead);
    const TerminalGroup* group = m_panel.activeGroup();
    if (!group || group->panes().empty())
        return;
    const int count = int(group->panes().size());
    const QRect room = area();
    const auto head = count == 1 && height() < Measure::LowConsole ? PaneView::Head::Hidden
                                                                   : PaneView::Head::Shown;
    std::vector<Glide::Way> ways;
    for (int at = 0; at < count; ++at) {
        PaneView* view = m_views.value(group->panes()[std::size_t(at)]->id());
        if (!view)
            continue;
        // By shares of the whole, so that no rounding adds up.
        const int whole = room.width() + Measure::PaneGap;
        const int left = room.left() + whole * at / count;
        const int right = room.left() + whole * (at + 1) / count - Measure::PaneGap;
        Glide::Way way{.widget = view, .goal = {left, room.top(), right - left, room.height()}};
        if (view->isHidden() && step == Step::Animated) {
            // It grows from its left edge, and what is in it is laid out at once.
            way.start = QRect(left, room.top(), 0, room.height());
            if (!theme().reducedMotion())
                view->setLeastWidth(way.goal.width());
        }
        view->setHead(head);
        ways.push_back(way);
    }
    if (step == Step::Animated)
        m_glide->moveTo(std::move(ways), m_drag.item() ? Motions::Drag : Motions::Panel);
    else
        m_glide->jumpTo(ways);
}

/// All panes are where they belong: terminals take their size.
void TerminalPanelView::settle()
{
    for (PaneView* view : std::as_const(m_views))
        view->setLeastWidth(0);
    m_services.motion.end(std::exchange(m_motion, 0));
}

void TerminalPanelView::dragPane(PaneView& view, const QPoint& grip)
{
    startDrag({ConsoleDrag::Kind::Pane, view.paneId()}, view, Measure::PaneRadius, grip);
}

void TerminalPanelView::dragGroup(GroupChip& chip, const QPoint& grip)
{
    startDrag({ConsoleDrag::Kind::Group, chip.groupId()}, chip, Measure::ControlRadius, grip);
}

void TerminalPanelView::startDrag(const ConsoleDrag::Item& item, QWidget& dragged, int radius,
                                  QPoint grip)
{
    const QPixmap picture = ConsoleCarrier::picture(dragged, radius, theme(), grip);
    // The drag runs an event loop in which the dragged view may go, whose own event this is.
    QMetaObject::invokeMethod(
        this,
        [this, item, picture, grip] {
            if (QGuiApplication::mouseButtons() != Qt::NoButton)
                ConsoleCarrier::run(*window(), m_drag, item, picture, grip);
        },
        Qt::QueuedConnection);
}

void TerminalPanelView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    Shape::fill(painter, rect(), Measure::TrayRadius, tokens().frame.well);
}

void TerminalPanelView::resizeEvent(QResizeEvent* /*event*/)
{
    place(Step::AtOnce);
}

} // namespace Bralto
