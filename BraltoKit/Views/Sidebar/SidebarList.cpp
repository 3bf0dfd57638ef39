#include "Views/Sidebar/SidebarList.h"

#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/SlimScrollBar.h"
#include "Views/Kit/ToolTip.h"
#include "Views/Sidebar/FileMenus.h"
#include "Views/Sidebar/SidebarDelegate.h"
#include "Views/Sidebar/SidebarModel.h"
#include "Workspace/Workspace.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QScrollBar>

namespace Bralto {

using Kind = SidebarRow::Kind;

SidebarList::SidebarList(const ViewServices& services, QWidget* parent)
    : QListView(parent)
    , m_theme(services.theme)
    , m_workspace(services.workspace)
    , m_desktop(services.desktop)
    , m_zoom(services.zoom)
    , m_model(new SidebarModel(services.workspace, this))
    , m_delegate(new SidebarDelegate(services.theme, *m_model, this))
{
    setModel(m_model);
    setItemDelegate(m_delegate);
    setAccessibleName(tr("Files"));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalScrollBar()->setSingleStep(Measure::TreeRow);
    setMouseTracking(true);
    viewport()->setAutoFillBackground(false);
    viewport()->setAttribute(Qt::WA_Hover);
    setAttribute(Qt::WA_NoSystemBackground);
    new SlimScrollBar(m_theme, Ground::Frame, *this);
    connect(&m_theme, &Theme::changed, viewport(), qOverload<>(&QWidget::update));
    connect(&m_workspace, &Workspace::sidebarSelectionChanged, this, &SidebarList::showSelected);
    connect(&m_zoom, &Zoom::changed, this, &SidebarList::applyZoom);
    applyZoom();
    showSelected();
}

void SidebarList::applyZoom()
{
    m_delegate->setZoom(m_zoom.level(Zoom::Area::Files));
    scheduleDelayedItemsLayout();
}

void SidebarList::showSelected()
{
    const QModelIndex selected = m_model->selected();
    if (!selected.isValid())
        return;
    const QSignalBlocker blocker(selectionModel());
    setCurrentIndex(selected);
    scrollTo(selected);
    viewport()->update();
}

void SidebarList::select(const QModelIndex& index)
{
    const SidebarRow* row = m_model->row(index);
    if (!row || !row->isAction())
        return;
    switch (row->kind) {
    case Kind::OpenTab:
        m_workspace.setSidebarSelection(SidebarItem{SidebarItem::Open{row->key}});
        break;
    case Kind::Folder:
        m_workspace.setSidebarSelection(SidebarItem{SidebarItem::Folder{row->key}});
        break;
    default:
        m_workspace.setSidebarSelection(SidebarItem{SidebarItem::File{row->key}});
        break;
    }
}

void SidebarList::open(const QModelIndex& index)
{
    const SidebarRow* found = m_model->row(index);
    if (!found)
        return;
    // A copy: what follows changes the rows.
    const SidebarRow row = *found;
    select(index);
    switch (row.kind) {
    case Kind::OpenTab:
        if (const std::optional<WorkspaceTab> tab = m_workspace.tab(row.key)) {
            m_workspace.activate(*tab);
            m_workspace.focus(*tab);
        }
        break;
    case Kind::Folder:
        m_workspace.toggleExpanded(row.key);
        break;
    case Kind::File:
        m_workspace.openFile(row.key);
        break;
    default:
        break;
    }
}

void SidebarList::closeTab(const QModelIndex& index)
{
    const SidebarRow* row = m_model->row(index);
    if (!row || row->kind != Kind::OpenTab)
        return;
    if (const std::optional<WorkspaceTab> tab = m_workspace.tab(row->key))
        m_workspace.close(*tab);
}

std::unique_ptr<QMenu> SidebarList::menuFor(const QModelIndex& index)
{
    auto menu = std::make_unique<PopupMenu>(m_theme, this);
    const SidebarRow* row = m_model->row(index);
    const FileNode* root = m_workspace.root();
    if (row && row->kind == Kind::OpenTab) {
        connect(menu->addAction(tr("Close")), &QAction::triggered, this,
                [this, at = QPersistentModelIndex(index)] { closeTab(at); });
    } else if (row && row->kind == Kind::Folder) {
        FileMenus::addFolderActions(*menu, m_workspace, m_desktop, row->key, FileMenus::IsRoot::No);
    } else if (row && row->kind == Kind::File) {
        FileMenus::addFileActions(*menu, m_workspace, m_desktop, row->key);
    } else if (root) {
        FileMenus::addFolderActions(*menu, m_workspace, m_desktop, root->path(),
                                    FileMenus::IsRoot::Yes);
    }
    return menu;
}

void SidebarList::mousePressEvent(QMouseEvent* event)
{
    m_delegate->setFocusShown(false);
    const QModelIndex index = indexAt(event->position().toPoint());
    m_pressed = index;
    m_pressedClose = false;
    const SidebarRow* row = m_model->row(index);
    if (!row || !row->isAction())
        return;
    if (event->button() == Qt::MiddleButton && row->kind == Kind::OpenTab) {
        closeTab(index);
        return;
    }
    if (event->button() == Qt::LeftButton)
        m_pressedClose =
            row->kind == Kind::OpenTab &&
            m_delegate->closeButton(visualRect(index)).contains(event->position().toPoint());
    if (!m_pressedClose)
        select(index);
}

void SidebarList::mouseReleaseEvent(QMouseEvent* event)
{
    const QPoint point = event->position().toPoint();
    const QModelIndex index = indexAt(point);
    if (event->button() != Qt::LeftButton || !index.isValid() || index != m_pressed)
        return;
    if (!m_pressedClose)
        open(index);
    else if (m_delegate->closeButton(visualRect(index)).contains(point))
        closeTab(index);
}

void SidebarList::mouseDoubleClickEvent(QMouseEvent* event)
{
    // Two quick clicks on a folder are two clicks.
    mousePressEvent(event);
}

bool SidebarList::walkTree(int key)
{
    const QModelIndex index = currentIndex();
    const SidebarRow* row = m_model->row(index);
    if (!row)
        return false;
    const bool isFolder = row->kind == Kind::Folder;
    if (key == Qt::Key_Right && isFolder) {
        if (!row->isExpanded)
            m_workspace.toggleExpanded(row->key);
        else
            setCurrentIndex(m_model->index(std::min(index.row() + 1, m_model->rowCount() - 1)));
        return true;
    }
    if (key == Qt::Key_Left && isFolder && row->isExpanded) {
        m_workspace.toggleExpanded(row->key);
        return true;
    }
    if (key == Qt::Key_Left && m_model->parentFolder(index).isValid()) {
        setCurrentIndex(m_model->parentFolder(index));
        return true;
    }
    return false;
}

void SidebarList::keyPressEvent(QKeyEvent* event)
{
    m_delegate->setFocusShown(true);
    viewport()->update();
    const SidebarRow* row = m_model->row(currentIndex());
    const bool isNode = row && (row->kind == Kind::File || row->kind == Kind::Folder);
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        open(currentIndex());
        return;
    case Qt::Key_Left:
    case Qt::Key_Right:
        if (walkTree(event->key()))
            return;
        break;
    case Qt::Key_F2:
        if (isNode)
            m_workspace.rename(QString(row->key));
        return;
    case Qt::Key_Delete:
        if (isNode)
            m_workspace.moveToTrash(QString(row->key));
        else
            closeTab(currentIndex());
        return;
    default:
        break;
    }
    QListView::keyPressEvent(event);
}

void SidebarList::contextMenuEvent(QContextMenuEvent* event)
{
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKey ? currentIndex() : indexAt(event->pos());
    select(index);
    const std::unique_ptr<QMenu> menu = menuFor(index);
    menu->exec(byKey ? viewport()->mapToGlobal(visualRect(index).bottomLeft())
                     : event->globalPos());
}

void SidebarList::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QListView::currentChanged(current, previous);
    if (hasFocus())
        select(current);
}

void SidebarList::focusInEvent(QFocusEvent* event)
{
    QListView::focusInEvent(event);
    m_delegate->setFocusShown(event->reason() == Qt::TabFocusReason ||
                              event->reason() == Qt::BacktabFocusReason);
    if (!currentIndex().isValid() && event->reason() != Qt::MouseFocusReason &&
        m_model->rowCount() > 1)
        setCurrentIndex(m_model->index(1));
}

bool SidebarList::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const QModelIndex index = indexAt(help->pos());
        const SidebarRow* row = m_model->row(index);
        if (!row)
            return true;
        const QRect area = visualRect(index);
        const bool onClose =
            row->kind == Kind::OpenTab && m_delegate->closeButton(area).contains(help->pos());
        const QString text = onClose ? tr("Close") : index.data(Qt::ToolTipRole).toString();
        if (!text.isEmpty())
            ToolTip::show(*viewport(), help->globalPos(), text, area);
        return true;
    }
    return QListView::viewportEvent(event);
}

} // namespace Bralto
