#include "Views/Window/RootView.h"

#include "Views/Editor/EditorPanes.h"
#include "Views/Home/ProjectsHome.h"
#include "Views/Home/WelcomeView.h"
#include "Views/Kit/Animated.h"
#include "Views/Sidebar/SidebarView.h"
#include "Views/Window/DetailView.h"
#include "Views/Window/Seam.h"

#include <cmath>

namespace Bralto {
namespace {

using WindowLayout::Screen;

constexpr char WidthKey[] = "sidebarWidth";
constexpr int SeamWidth = 6;

} // namespace

RootView::RootView(const ViewServices& services, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_width(WindowLayout::sidebarWidth(
          services.defaults.standard.number(QString::fromLatin1(WidthKey))))
    , m_hold(services.motion)
    , m_shown(new Animated(services.theme, Motions::Toggle,
                           services.workspace.isSidebarVisible() ? 1 : 0, this))
{
    connect(m_shown, &Animated::valueChanged, this, &RootView::place);
    connect(m_shown, &Animated::settled, this, &RootView::place);
    connect(&services.workspace, &Workspace::rootChanged, this, &RootView::refresh);
    connect(&services.workspace, &Workspace::isSidebarVisibleChanged, this,
            &RootView::followSidebar);
    refresh();
}

void RootView::refresh()
{
    m_screen = WindowLayout::screen(m_services.role, m_services.workspace.root() != nullptr);
    if (m_screen == Screen::Project && !m_detail)
        buildProject();
    if (m_screen == Screen::Home && !m_home)
        m_home = new ProjectsHome(m_services, this);
    if (m_screen == Screen::Welcome && !m_welcome)
        m_welcome = new WelcomeView(m_services, this);
    if (m_home)
        m_home->setVisible(m_screen == Screen::Home);
    if (m_welcome)
        m_welcome->setVisible(m_screen == Screen::Welcome);
    if (m_detail)
        m_detail->setVisible(m_screen == Screen::Project);
    place();
}

void RootView::buildProject()
{
    m_sidebar = new SidebarView(m_services, this);
    m_detail = new DetailView(m_services, this);
    m_seam = new Seam(theme(), Seam::Direction::Sideways, tr("Resize sidebar"), this);
    connect(m_seam, &Seam::dragStarted, this, [this] {
        m_widthAtStart = m_width;
        m_hold.begin(QStringLiteral("drag sidebar"));
    });
    connect(m_seam, &Seam::dragged, this, [this](double way) {
        m_width = WindowLayout::draggedSidebar(m_widthAtStart, way);
        place();
    });
    connect(m_seam, &Seam::doubleClicked, this, [this] {
        m_width = WindowLayout::DefaultSidebar;
        place();
    });
    connect(m_seam, &Seam::dragEnded, this, [this] {
        m_hold.end();
        m_services.defaults.standard.set(QString::fromLatin1(WidthKey), m_width);
    });
}

void RootView::followSidebar()
{
    const bool hasFocus = m_sidebar && m_sidebar->isAncestorOf(window()->focusWidget());
    if (hasFocus && !m_services.workspace.isSidebarVisible())
        m_detail->panes().takeFocus();
    m_shown->moveTo(m_services.workspace.isSidebarVisible() ? 1 : 0);
}

void RootView::place()
{
    if (m_home)
        m_home->setGeometry(rect());
    if (m_welcome)
        m_welcome->setGeometry(rect());
    if (!m_detail)
        return;
    const bool isProject = m_screen == Screen::Project;
    // The sidebar of a narrow window leaves the detail area at least half of it.
    const double whole = std::min(m_width, std::max(WindowLayout::SmallestSidebar, width() / 2.0));
    const double shown = m_shown->value();
    m_sidebar->setVisible(isProject && shown > 0.001);
    m_sidebar->setGeometry(int(std::lround((shown - 1) * whole)), 0, int(std::lround(whole)),
                           height());
    const int left = int(std::lround(Measure::FrameInset + shown * (whole - Measure::FrameInset)));
    m_detail->setGeometry(left, 0, width() - left - Measure::FrameInset,
                          height() - Measure::FrameInset);
    m_seam->setVisible(isProject && shown >= 0.999);
    m_seam->setGeometry(left - SeamWidth, 0, SeamWidth, height());
    m_seam->raise();
}

void RootView::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

} // namespace Bralto
