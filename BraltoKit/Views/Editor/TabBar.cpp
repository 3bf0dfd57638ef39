#include "Views/Editor/TabBar.h"

#include "Base/Shortcuts.h"
#include "Views/Editor/EditorTab.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/WidthShares.h"

#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <numeric>

namespace Bralto {
namespace {

constexpr int Padding = 6;
constexpr int Gap = 2;

} // namespace

TabBar::TabBar(const ViewServices& services, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_strip(new QWidget(this))
{
    setFixedHeight(Measure::TabBar);
    setAccessibleName(tr("Tabs"));
    Workspace& workspace = services.workspace;
    if (workspace.canShowPages()) {
        m_newTab = new IconButton(theme(), Ground::Sheet, QStringLiteral("plus"), this);
        m_newTab->setTip(tr("New Browser Tab"), Shortcuts::keys(Shortcuts::Command::New));
        connect(m_newTab, &IconButton::clicked, &workspace,
                [&workspace] { workspace.insertPage({}); });
    }
    connect(&workspace, &Workspace::tabsChanged, this, &TabBar::rebuild);
    connect(&workspace, &Workspace::activeTabChanged, this, &TabBar::refresh);
    connect(&workspace, &Workspace::splitTabChanged, this, &TabBar::refresh);
    rebuild();
}

void TabBar::rebuild()
{
    const std::vector<WorkspaceTab>& wanted = m_services.workspace.tabs();
    std::vector<EditorTab*> next;
    for (const WorkspaceTab& tab : wanted) {
        const auto known = std::ranges::find(m_tabs, tab.id(), &EditorTab::tabId);
        if (known != m_tabs.end()) {
            next.push_back(*known);
            m_tabs.erase(known);
            continue;
        }
        auto* made = new EditorTab(m_services, tab, m_strip);
        connect(made, &EditorTab::widthChanged, this, &TabBar::place);
        made->show();
        next.push_back(made);
    }
    for (EditorTab* gone : m_tabs) {
        // The close button of this very tab may be what was pressed.
        gone->hide();
        gone->deleteLater();
    }
    m_tabs = std::move(next);
    refresh();
}

void TabBar::refresh()
{
    for (EditorTab* tab : m_tabs)
        tab->refresh();
    place();
    revealActive();
}

void TabBar::place()
{
    const int button = m_newTab ? Measure::IconButton + Gap + 2 : 0;
    const int room = width() - 2 * Padding - button;
    std::vector<int> wanted;
    for (const EditorTab* tab : m_tabs)
        wanted.push_back(std::min(tab->sizeHint().width(), Measure::LargestTab));
    const std::vector<int> widths = widthShares(wanted, room, Gap, Measure::SmallestTab);

    const int whole = std::accumulate(widths.begin(), widths.end(), 0) +
                      Gap * std::max(0, int(widths.size()) - 1);
    m_overflow = std::max(0, whole - room);
    m_scroll = std::clamp(m_scroll, 0, m_overflow);
    m_strip->setGeometry(Padding, 0, std::min(whole, std::max(0, room)), height());
    int x = -m_scroll;
    for (std::size_t at = 0; at < m_tabs.size(); ++at) {
        m_tabs[at]->setGeometry(x, (height() - Measure::Tab) / 2, widths[at], Measure::Tab);
        x += widths[at] + Gap;
    }
    if (m_newTab)
        m_newTab->move(Padding + m_strip->width() + Gap + 2, (height() - Measure::IconButton) / 2);
}

void TabBar::revealActive()
{
    const auto active =
        std::ranges::find(m_tabs, m_services.workspace.activeTabId(), &EditorTab::tabId);
    if (active == m_tabs.end() || m_overflow == 0)
        return;
    const QRect area = (*active)->geometry();
    if (area.left() < 0)
        m_scroll += area.left();
    else if (area.right() >= m_strip->width())
        m_scroll += area.right() + 1 - m_strip->width();
    place();
}

void TabBar::resizeEvent(QResizeEvent* /*event*/)
{
    place();
    revealActive();
}

void TabBar::wheelEvent(QWheelEvent* event)
{
    const QPoint turned = event->pixelDelta().isNull() ? event->angleDelta() : event->pixelDelta();
    const int way = std::abs(turned.x()) > std::abs(turned.y()) ? turned.x() : turned.y();
    m_scroll = std::clamp(m_scroll - way, 0, m_overflow);
    place();
}

void TabBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const double line = Shape::hairline(painter);
    painter.fillRect(QRectF(0, height() - line, width(), line), tokens().separator);
}

} // namespace Bralto
