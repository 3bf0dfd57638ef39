#pragma once

#include "Views/ViewServices.h"

#include <QListView>
#include <QMenu>

#include <memory>

namespace Bralto {

class SidebarDelegate;
class SidebarModel;

/// The open tabs and the file tree, in one list that the pointer and the keyboard can walk: arrows
/// move and open folders, Return opens, F2 renames, Delete moves to the trash.
class SidebarList final : public QListView {
    Q_OBJECT

public:
    SidebarList(const ViewServices& services, QWidget* parent);

    [[nodiscard]] const SidebarModel& rows() const { return *m_model; }
    /// The context menu of a row, or of the project below the last one.
    [[nodiscard]] std::unique_ptr<QMenu> menuFor(const QModelIndex& index);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    bool viewportEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    void open(const QModelIndex& index);
    void select(const QModelIndex& index);
    void closeTab(const QModelIndex& index);
    bool walkTree(int key);
    void showSelected();
    void applyZoom();

    Theme& m_theme;
    Workspace& m_workspace;
    Desktop& m_desktop;
    Zoom& m_zoom;
    SidebarModel* m_model;
    SidebarDelegate* m_delegate;
    QPersistentModelIndex m_pressed;
    bool m_pressedClose = false;
};

} // namespace Bralto
