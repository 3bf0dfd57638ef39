#include "Views/Console/TerminalPanelView.h"

#include "Views/Console/ConsoleHead.h"
#include "Views/Console/PaneView.h"
#include "Views/Kit/Shape.h"

#include <QPainter>
#include <QSet>

namespace Bralto {

TerminalPanelView::TerminalPanelView(const ViewServices& services, TerminalPanel& panel,
                                     QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_panel(panel)
    , m_head(new ConsoleHead(services.theme, panel, this))
{
    setAccessibleName(tr("Terminal"));
    connect(&panel, &TerminalPanel::groupsChanged, this, &TerminalPanelView::followGroups);
    connect(&panel, &TerminalPanel::activeGroupChanged, this, &TerminalPanelView::refresh);
    connect(&panel, &TerminalPanel::isVisibleChanged, this, &TerminalPanelView::refresh);
    connect(&panel, &TerminalPanel::focusRequested, this, &TerminalPanelView::focusPane);
    followGroups();
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
        at.value()->hide();
        at.value()->deleteLater();
        at = m_views.erase(at);
    }
}

void TerminalPanelView::refresh()
{
    dropClosed();
    const TerminalGroup* group = m_panel.activeGroup();
    QSet<QString> shown;
    if (group) {
        for (const std::unique_ptr<ConsolePane>& pane : group->panes()) {
            // What is made stays on show while the console slides away; nothing is made for it.
            shown.insert(pane->id());
            if (!m_views.contains(pane->id()) && m_panel.isVisible() && m_services.makePane)
                m_views.insert(pane->id(), new PaneView(theme(), m_panel, *pane,
                                                        m_services.makePane(*pane), this));
        }
    }
    for (PaneView* view : std::as_const(m_views)) {
        view->setVisible(shown.contains(view->paneId()));
        view->setFocusedPane(group && group->focusedPane() &&
                             group->focusedPane()->id() == view->paneId());
    }
    place();
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

void TerminalPanelView::place()
{
    m_head->setGeometry(Measure::TraySide, 0, width() - 2 * Measure::TraySide, Measure::TrayHead);
    const TerminalGroup* group = m_panel.activeGroup();
    if (!group || group->panes().empty())
        return;
    const int count = int(group->panes().size());
    const QRect area(Measure::TrayPadding, Measure::TrayHead,
                     std::max(0, width() - 2 * Measure::TrayPadding),
                     std::max(0, height() - Measure::TrayHead - Measure::TrayPadding));
    const auto head = count == 1 && height() < Measure::LowConsole ? PaneView::Head::Hidden
                                                                   : PaneView::Head::Shown;
    for (int at = 0; at < count; ++at) {
        PaneView* view = m_views.value(group->panes()[std::size_t(at)]->id());
        if (!view)
            continue;
        // By shares of the whole, so that no rounding adds up.
        const int room = area.width() + Measure::PaneGap;
        const int left = room * at / count;
        const int right = room * (at + 1) / count - Measure::PaneGap;
        view->setHead(head);
        view->setGeometry(area.left() + left, area.top(), right - left, area.height());
    }
}

void TerminalPanelView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    Shape::fill(painter, rect(), Measure::TrayRadius, tokens().frame.well);
}

void TerminalPanelView::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

} // namespace Bralto
