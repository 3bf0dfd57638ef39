#include "Views/Window/WindowBar.h"

#include "Base/Shortcuts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/SpaceIcon.h"
#include "Views/Kit/TextLine.h"
#include "Workspace/Workspace.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>

#include <cmath>

namespace Bralto {
namespace {

using Shortcuts::Command;

constexpr int IconGap = 8;

/// The project's icon and name; without a project the program's mark and name.
class ProjectTitle final : public ThemedWidget {
public:
    ProjectTitle(Theme& theme, Workspace& workspace, QWidget* parent)
        : ThemedWidget(theme, parent)
        , m_workspace(workspace)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        setMinimumWidth(Measure::ProjectIcon);
        setFixedHeight(Measure::BarButton);
    }

    [[nodiscard]] QString name() const
    {
        const FileNode* root = m_workspace.root();
        return root ? m_workspace.space().displayName(root->path()) : QStringLiteral("Bralto");
    }

    [[nodiscard]] QSize sizeHint() const override
    {
        const double words = TextLine::width(TextRole::BodyStrong, name());
        return {Measure::ProjectIcon + IconGap + int(std::ceil(words)) + 1, Measure::BarButton};
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        const QRectF icon(0, (height() - Measure::ProjectIcon) / 2.0, Measure::ProjectIcon,
                          Measure::ProjectIcon);
        if (m_workspace.root())
            SpaceIcon::draw(painter, icon, m_workspace.space(), name());
        else
            Icon::draw(painter, icon, QString::fromLatin1(Icon::Mark), tokens().frame.label);
        TextLine::draw(painter, QRectF(rect()).adjusted(Measure::ProjectIcon + IconGap, 0, 0, 0),
                       TextRole::BodyStrong, tokens().frame.label, name());
    }

private:
    Workspace& m_workspace;
};

/// The line between the program's buttons and the window's.
class BarLine final : public ThemedWidget {
public:
    BarLine(Theme& theme, QWidget* parent)
        : ThemedWidget(theme, parent)
    {
        setFixedSize(2 * 6 + 1, Measure::BarLine);
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(QRectF(6, 0, Shape::hairline(painter), height()),
                         tokens().frame.separator);
    }
};

int symbolSize(WindowButton button)
{
    return button == WindowButton::Maximize ? Measure::TabIcon : Measure::RowIcon;
}

QString symbolOf(WindowButton button, bool maximized)
{
    switch (button) {
    case WindowButton::Minimize:
        return QStringLiteral("minus");
    case WindowButton::Maximize:
        return maximized ? QStringLiteral("square.on.square") : QStringLiteral("square");
    case WindowButton::Close:
        return QStringLiteral("xmark");
    }
    return {};
}

QString nameOf(WindowButton button, bool maximized)
{
    switch (button) {
    case WindowButton::Minimize:
        return WindowBar::tr("Minimize");
    case WindowButton::Maximize:
        return maximized ? WindowBar::tr("Restore Window") : WindowBar::tr("Maximize");
    case WindowButton::Close:
        return WindowBar::tr("Close Window");
    }
    return {};
}

void toggleMaximized(QWidget& window)
{
    if (window.isMaximized())
        window.showNormal();
    else
        window.showMaximized();
}

void press(WindowButton button, QWidget& window)
{
    switch (button) {
    case WindowButton::Minimize:
        window.showMinimized();
        break;
    case WindowButton::Maximize:
        toggleMaximized(window);
        break;
    case WindowButton::Close:
        window.close();
        break;
    }
}

} // namespace

WindowBar::WindowBar(Theme& theme, Workspace& workspace, const WindowButtonLayout& layout,
                     OwnButtons ownButtons, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_workspace(workspace)
    , m_layout(layout)
    , m_ownButtons(ownButtons)
{
    setFixedHeight(Measure::Bar);
    build();
    connect(&workspace, &Workspace::rootChanged, this, &WindowBar::refresh);
    connect(&workspace, &Workspace::spaceChanged, this, &WindowBar::refresh);
    connect(&workspace, &Workspace::tabsChanged, this, &WindowBar::refresh);
    connect(&workspace, &Workspace::activeTabChanged, this, &WindowBar::refresh);
    connect(&workspace, &Workspace::splitTabChanged, this, &WindowBar::refresh);
    connect(&workspace, &Workspace::isSidebarVisibleChanged, this, &WindowBar::refresh);
    connect(&workspace, &Workspace::terminalChanged, this, &WindowBar::connectPanel);
    window()->installEventFilter(this);
    connectPanel();
}

void WindowBar::build()
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Measure::FrameInset, 0, Measure::FrameInset, 0);
    row->setSpacing(Measure::BarGap);
    const auto button = [this](const QString& symbol) {
        auto* made = new IconButton(theme(), Ground::Frame, symbol, this);
        made->setExtent(Measure::BarButton, Measure::BarIcon);
        return made;
    };

    addWindowButtons(*row, m_layout.left);
    m_sidebar = button(QStringLiteral("sidebar.left"));
    connect(m_sidebar, &IconButton::clicked, &m_workspace, &Workspace::toggleSidebar);
    row->addWidget(m_sidebar);
    row->addSpacing(Measure::Space1 + Measure::BarGap);
    m_project = new ProjectTitle(theme(), m_workspace, this);
    row->addWidget(m_project, 0);
    row->addStretch(1);

    m_split = button(QStringLiteral("rectangle.split.2x1"));
    m_split->setCheckable(true);
    connect(m_split, &IconButton::clicked, this, [this] {
        m_workspace.toggleSplit();
        refresh();
    });
    row->addWidget(m_split);
    m_terminal = button(QStringLiteral("rectangle.bottomthird.inset.filled"));
    m_terminal->setCheckable(true);
    connect(m_terminal, &IconButton::clicked, this, &WindowBar::togglePanel);
    row->addWidget(m_terminal);
    m_ellipsis = button(QStringLiteral("ellipsis"));
    m_ellipsis->setTip(tr("Menu"), QStringLiteral("F10"));
    m_ellipsis->hide();
    connect(m_ellipsis, &IconButton::clicked, this, &WindowBar::openMenu);
    row->addWidget(m_ellipsis);
    m_line = new BarLine(theme(), this);
    row->addWidget(m_line);
    addWindowButtons(*row, m_layout.right);
}

void WindowBar::addWindowButtons(QHBoxLayout& row, const QList<WindowButton>& buttons)
{
    if (m_ownButtons == OwnButtons::No)
        return;
    for (const WindowButton kind : buttons) {
        auto* button = new IconButton(theme(), Ground::Frame, symbolOf(kind, false), this);
        button->setExtent(Measure::BarButton, symbolSize(kind));
        button->setTip(nameOf(kind, false));
        connect(button, &IconButton::clicked, this, [this, kind] { press(kind, *window()); });
        row.addWidget(button);
        m_windowButtons.append({kind, button});
    }
}

void WindowBar::setMenu(QMenu* menu)
{
    m_menu = menu;
    if (menu)
        PopupMenu::dress(*menu, theme());
    refresh();
}

void WindowBar::openMenu()
{
    if (!m_menu)
        return;
    const QSize size = m_menu->sizeHint();
    const QPoint corner = m_ellipsis->mapToGlobal(
        QPoint(m_ellipsis->width() - size.width(), m_ellipsis->height() + Measure::Space1));
    m_menu->popup(corner);
}

void WindowBar::togglePanel()
{
    TerminalPanel& panel = m_workspace.terminal();
    if (panel.isVisible())
        panel.hide();
    else
        panel.show();
    // The button switches itself; what counts is what became of the panel.
    refresh();
}

void WindowBar::connectPanel()
{
    TerminalPanel& panel = m_workspace.terminal();
    connect(&panel, &TerminalPanel::isVisibleChanged, this, &WindowBar::refresh,
            Qt::UniqueConnection);
    refresh();
}

void WindowBar::refresh()
{
    const bool hasProject = m_workspace.root() != nullptr;
    m_sidebar->setVisible(hasProject);
    m_sidebar->setTip(m_workspace.isSidebarVisible() ? tr("Hide Sidebar") : tr("Show Sidebar"),
                      Shortcuts::keys(Command::ToggleSidebar));

    const bool isSplit = !m_workspace.splitTabId().isEmpty();
    m_split->setVisible(hasProject);
    m_split->setEnabled(isSplit || m_workspace.tabs().size() > 1 || m_workspace.canShowPages());
    m_split->setSymbol(isSplit ? QStringLiteral("rectangle.split.2x1.fill")
                               : QStringLiteral("rectangle.split.2x1"));
    m_split->setChecked(isSplit);
    m_split->setTip(isSplit ? tr("Close Split View") : tr("Split View"),
                    Shortcuts::keys(Command::ToggleSplit));

    const bool isOpen = m_workspace.terminal().isVisible();
    m_terminal->setVisible(hasProject);
    m_terminal->setChecked(isOpen);
    m_terminal->setTip(isOpen ? tr("Hide Terminal") : tr("Show Terminal"),
                       Shortcuts::keys(Command::ToggleTerminal));

    m_ellipsis->setVisible(m_menu != nullptr);
    m_line->setVisible(m_ownButtons == OwnButtons::Yes && !m_layout.right.isEmpty() &&
                       (hasProject || m_menu));
    m_project->updateGeometry();
    m_project->update();
    setAccessibleName(window()->windowTitle());
    fitButtons();
}

void WindowBar::fitButtons()
{
    const WindowButtonLayout fitting = m_layout.fitting(width());
    const bool maximized = window()->isMaximized();
    for (const auto& [kind, button] : std::as_const(m_windowButtons)) {
        button->setVisible(fitting.left.contains(kind) || fitting.right.contains(kind));
        button->setSymbol(symbolOf(kind, maximized));
        button->setTip(nameOf(kind, maximized));
    }
}

void WindowBar::resizeEvent(QResizeEvent* event)
{
    fitButtons();
    ThemedWidget::resizeEvent(event);
}

bool WindowBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == window() && event->type() == QEvent::WindowStateChange)
        fitButtons();
    return ThemedWidget::eventFilter(watched, event);
}

void WindowBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        m_press = event->position().toPoint();
}

void WindowBar::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_press || !(event->buttons() & Qt::LeftButton))
        return;
    const QPoint way = event->position().toPoint() - *m_press;
    if (way.manhattanLength() < QApplication::startDragDistance())
        return;
    m_press.reset();
    if (QWindow* handle = window()->windowHandle())
        handle->startSystemMove();
}

void WindowBar::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_press.reset();
    if (event->button() == Qt::LeftButton && m_ownButtons == OwnButtons::Yes)
        toggleMaximized(*window());
}

} // namespace Bralto
