#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/Window/WindowButtons.h"

#include <QMenu>
#include <QPointer>

class QHBoxLayout;

namespace Bralto {

class IconButton;
class Workspace;

/// The bar at the top of a window: what switches its areas, whose window it is, and the window's
/// own buttons. It can be dragged, and a double click maximises.
class WindowBar final : public ThemedWidget {
    Q_OBJECT

public:
    enum class OwnButtons { No, Yes };

    /// Follows `workspace`, which outlives the bar.
    WindowBar(Theme& theme, Workspace& workspace, const WindowButtonLayout& layout,
              OwnButtons ownButtons, QWidget* parent);

    /// What the ellipsis button opens; without one the button is not there.
    void setMenu(QMenu* menu);
    /// Opens that menu.
    void openMenu();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void build();
    void refresh();
    void fitButtons();
    void togglePanel();
    void connectPanel();
    void addWindowButtons(QHBoxLayout& row, const QList<WindowButton>& buttons);

    Workspace& m_workspace;
    WindowButtonLayout m_layout;
    OwnButtons m_ownButtons;
    QPointer<QMenu> m_menu;
    IconButton* m_sidebar = nullptr;
    QWidget* m_project = nullptr;
    IconButton* m_split = nullptr;
    IconButton* m_terminal = nullptr;
    IconButton* m_ellipsis = nullptr;
    QWidget* m_line = nullptr;
    QList<std::pair<WindowButton, IconButton*>> m_windowButtons;
    std::optional<QPoint> m_press;
};

} // namespace Bralto
