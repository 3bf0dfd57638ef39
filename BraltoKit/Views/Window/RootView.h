#pragma once

#include "Views/Kit/ThemedWidget.h"
#include "Views/ViewServices.h"

namespace Bralto {

class Animated;
class DetailView;
class ProjectsHome;
class Seam;
class SidebarView;
class WelcomeView;

/// What a window shows below its bar: the home screen, the welcome, or a project with its sidebar
/// and its detail area. Each is made when it is first needed.
class RootView final : public ThemedWidget {
    Q_OBJECT

public:
    RootView(const ViewServices& services, QWidget* parent = nullptr);

    [[nodiscard]] WindowLayout::Screen screen() const { return m_screen; }
    [[nodiscard]] SidebarView* sidebar() const { return m_sidebar; } ///< Null without a project.
    [[nodiscard]] DetailView* detail() const { return m_detail; }    ///< Null without a project.
    [[nodiscard]] ProjectsHome* home() const { return m_home; }
    [[nodiscard]] WelcomeView* welcome() const { return m_welcome; }
    /// The width of the sidebar when it shows.
    [[nodiscard]] double sidebarWidth() const { return m_width; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();
    void buildProject();
    void followSidebar();
    void place();

    ViewServices m_services;
    WindowLayout::Screen m_screen = WindowLayout::Screen::Home;
    double m_width;
    double m_widthAtStart = 0;
    ResizeHold m_hold;
    Animated* m_shown; ///< How far the sidebar is out: 0 to 1.
    SidebarView* m_sidebar = nullptr;
    DetailView* m_detail = nullptr;
    Seam* m_seam = nullptr;
    ProjectsHome* m_home = nullptr;
    WelcomeView* m_welcome = nullptr;
};

} // namespace Bralto
