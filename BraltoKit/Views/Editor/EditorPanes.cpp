#include "Views/Editor/EditorPanes.h"

#include "Views/Browser/BrowserScreen.h"
#include "Views/Editor/EditorScreen.h"
#include "Views/Editor/FolderOverview.h"
#include "Views/Editor/TabBar.h"
#include "Views/Window/Seam.h"
#include "Views/Window/Sheet.h"
#include "Views/Window/WindowFocus.h"

#include <algorithm>
#include <cmath>

namespace Bralto {

EditorPanes::EditorPanes(const ViewServices& services, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_first(new Sheet(services.theme, Sheet::On::Frame, this))
    , m_firstContent(new QWidget)
    , m_tabBar(new TabBar(services, m_firstContent))
    , m_overview(new FolderOverview(services, m_firstContent))
    , m_second(new Sheet(services.theme, Sheet::On::Frame, this))
    , m_secondContent(new QWidget)
    , m_seam(new Seam(services.theme, Seam::Direction::Sideways, tr("Resize split view"), this))
    , m_hold(services.motion)
{
    m_first->setContent(m_firstContent);
    m_second->setContent(m_secondContent);
    Workspace& workspace = services.workspace;
    connect(&workspace, &Workspace::tabsChanged, this, &EditorPanes::refresh);
    connect(&workspace, &Workspace::activeTabChanged, this, &EditorPanes::refresh);
    connect(&workspace, &Workspace::splitTabChanged, this, &EditorPanes::refresh);
    connect(&workspace, &Workspace::splitFractionChanged, this, &EditorPanes::place);
    connect(&workspace, &Workspace::focusRequested, this, &EditorPanes::focusTab);
    connect(m_seam, &Seam::dragStarted, this, [this] {
        m_fractionAtStart = m_services.workspace.splitFraction();
        m_hold.begin(QStringLiteral("drag split seam"));
    });
    connect(m_seam, &Seam::dragEnded, this, [this] { m_hold.end(); });
    connect(m_seam, &Seam::dragged, this, [this](double way) {
        const auto share = WindowLayout::draggedShare(
            m_fractionAtStart, way, width(), Workspace::SmallestSplit, Workspace::LargestSplit);
        if (share)
            m_services.workspace.setSplitFraction(*share);
    });
    connect(m_seam, &Seam::doubleClicked, this,
            [this] { m_services.workspace.setSplitFraction(0.5); });
    refresh();
}

QWidget* EditorPanes::makeScreen(const WorkspaceTab& tab)
{
    QWidget* screen = nullptr;
    if (tab.document())
        screen = new EditorScreen(m_services, tab, m_firstContent);
    else
        screen = new BrowserScreen(m_services, tab, m_firstContent);
    WindowFocus::markTab(*screen, tab.id());
    return screen;
}

QWidget* EditorPanes::ensureScreen(const QString& tabId)
{
    if (QWidget* known = m_screens.value(tabId))
        return known;
    const std::optional<WorkspaceTab> tab = m_services.workspace.tab(tabId);
    if (!tab)
        return nullptr;
    QWidget* made = makeScreen(*tab);
    m_screens.insert(tabId, made);
    return made;
}

QWidget* EditorPanes::screenOf(const QString& tabId) const
{
    QWidget* screen = m_screens.value(tabId);
    return screen && !screen->isHidden() ? screen : nullptr;
}

void EditorPanes::dropClosed()
{
    for (auto at = m_screens.begin(); at != m_screens.end();) {
        if (m_services.workspace.tab(at.key())) {
            ++at;
            continue;
        }
        at.value()->hide();
        // It may be the very view whose shortcut closed it.
        at.value()->deleteLater();
        at = m_screens.erase(at);
    }
}

void EditorPanes::refresh()
{
    // Asked before anything is hidden, which takes the keyboard away.
    const bool hadFocus = isAncestorOf(window()->focusWidget());
    dropClosed();
    const Workspace& workspace = m_services.workspace;
    QWidget* active = ensureScreen(workspace.activeTabId());
    QWidget* split = ensureScreen(workspace.splitTabId());
    for (QWidget* screen : std::as_const(m_screens)) {
        if (screen != active && screen != split)
            screen->hide();
    }
    if (active) {
        active->setParent(m_firstContent);
        active->show();
    }
    if (split) {
        split->setParent(m_secondContent);
        split->show();
    }
    m_tabBar->setVisible(!workspace.tabs().empty());
    m_overview->setVisible(!active);
    m_second->setVisible(split != nullptr);
    m_seam->setVisible(split != nullptr);
    place();
    if (hadFocus && WindowFocus::areaOf(window()->focusWidget()) != FocusArea::Content)
        takeFocus();
}

void EditorPanes::place()
{
    const Workspace& workspace = m_services.workspace;
    QRect first = rect();
    if (!workspace.splitTabId().isEmpty()) {
        const int room = width() - Measure::FrameInset;
        first.setWidth(std::max(0, int(std::lround(room * workspace.splitFraction()))));
        const int left = first.right() + 1 + Measure::FrameInset;
        m_second->setSheetGeometry({left, 0, std::max(0, width() - left), height()});
        m_seam->setGeometry(first.right() + 1, 0, Measure::FrameInset, height());
        m_seam->raise();
    }
    m_first->setSheetGeometry(first);

    const QRect content = m_firstContent->rect();
    const int bar = m_tabBar->isHidden() ? 0 : Measure::TabBar;
    m_tabBar->setGeometry(0, 0, content.width(), Measure::TabBar);
    const QRect below = content.adjusted(0, bar, 0, 0);
    m_overview->setGeometry(below);
    if (QWidget* active = m_screens.value(workspace.activeTabId()))
        active->setGeometry(below);
    if (QWidget* split = m_screens.value(workspace.splitTabId()))
        split->setGeometry(m_secondContent->rect());
}

void EditorPanes::takeFocus()
{
    if (QWidget* active = screenOf(m_services.workspace.activeTabId()))
        active->setFocus(Qt::OtherFocusReason);
    else
        window()->setFocus(Qt::OtherFocusReason);
}

void EditorPanes::focusTab(const QString& tabId)
{
    if (QWidget* screen = screenOf(tabId))
        screen->setFocus(Qt::OtherFocusReason);
}

void EditorPanes::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

} // namespace Bralto
