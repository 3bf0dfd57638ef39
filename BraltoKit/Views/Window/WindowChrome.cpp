#include "Views/Window/WindowChrome.h"

#include "Views/Kit/Animated.h"
#include "Views/Kit/ToolTip.h"
#include "Views/Window/DropFrame.h"
#include "Views/Window/SpaceBackdrop.h"
#include "Views/Window/WindowEdges.h"
#include "Workspace/Workspace.h"

#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>

namespace Bralto {
namespace {

WindowBar::OwnButtons ownButtons(WindowChrome::Frame frame)
{
    return frame == WindowChrome::Frame::Own ? WindowBar::OwnButtons::Yes
                                             : WindowBar::OwnButtons::No;
}

} // namespace

WindowChrome::Frame WindowChrome::wantedFrame()
{
    return qEnvironmentVariable("BRALTO_SYSTEM_FRAME") == QLatin1String("1") ? Frame::WindowManager
                                                                             : Frame::Own;
}

WindowChrome::WindowChrome(Theme& theme, Workspace& workspace, const WindowButtonLayout& buttons,
                           Frame frame, QWidget* parent)
    : QWidget(parent)
    , m_theme(theme)
    , m_workspace(workspace)
    , m_backdrop(new SpaceBackdrop(*this))
    , m_fade(new Animated(theme, Motions::Frame, 1, this))
    , m_bar(new WindowBar(theme, workspace, buttons, ownButtons(frame), this))
    , m_dropFrame(new DropFrame(theme, this))
{
    setObjectName(QStringLiteral("main"));
    setMinimumSize(Measure::LeastWidth, Measure::LeastHeight);
    resize(Measure::DefaultWidth, Measure::DefaultHeight);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAcceptDrops(true);
    if (frame == Frame::Own) {
        setWindowFlag(Qt::FramelessWindowHint);
        new WindowEdges(*this);
    }
    new ToolTip(theme, *this);
    // Until something asks for the keyboard it is the window's, and not its first button's.
    setFocus();

    connect(&theme, &Theme::changed, this, &WindowChrome::fadeFrame);
    connect(m_fade, &Animated::valueChanged, this, qOverload<>(&QWidget::update));
    connect(m_fade, &Animated::settled, this, [this] { m_oldFrame = {}; });
    connect(&workspace, &Workspace::spaceChanged, this, &WindowChrome::followSpace);
    connect(&workspace, &Workspace::spaceChanged, this, &WindowChrome::followProject);
    connect(&workspace, &Workspace::rootChanged, this, &WindowChrome::followProject);
    followSpace();
    followProject();
}

WindowChrome::~WindowChrome() = default;

void WindowChrome::setContent(QWidget* content)
{
    m_content = content;
    content->setParent(this);
    content->lower();
    content->show();
    place();
}

bool WindowChrome::isDropTargeted() const
{
    return !m_dropFrame->isHidden();
}

void WindowChrome::followSpace()
{
    m_theme.setSpace(m_workspace.space());
}

void WindowChrome::followProject()
{
    const FileNode* root = m_workspace.root();
    setWindowTitle(root ? m_workspace.space().displayName(root->path()) : QStringLiteral("Bralto"));
}

void WindowChrome::fadeFrame()
{
    if (isVisible() && !m_theme.reducedMotion() && m_oldFrame.isNull()) {
        // The backdrop still holds the picture of the tokens before.
        m_fade->jumpTo(0);
        m_oldFrame = m_backdrop->lastPicture();
        m_fade->moveTo(1);
    }
    update();
}

void WindowChrome::place()
{
    m_bar->setGeometry(0, 0, width(), Measure::Bar);
    if (m_content)
        m_content->setGeometry(0, Measure::Bar, width(), height() - Measure::Bar);
    m_dropFrame->setGeometry(rect());
}

void WindowChrome::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const QRect area = event->rect();
    SpaceBackdrop::paintBehind(painter, *this, area, m_theme.tokens().frame);
    if (!m_oldFrame.isNull() && m_fade->isMoving()) {
        painter.setOpacity(1 - m_fade->value());
        painter.drawPixmap(0, 0, m_oldFrame);
    }
}

void WindowChrome::resizeEvent(QResizeEvent* /*event*/)
{
    m_oldFrame = {};
    place();
}

void WindowChrome::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::NoModifier)
        m_bar->openMenu();
    else
        QWidget::keyPressEvent(event);
}

void WindowChrome::dragEnterEvent(QDragEnterEvent* event)
{
    if (DropFrame::files(*event->mimeData()).isEmpty())
        return;
    event->acceptProposedAction();
    m_dropFrame->raise();
    m_dropFrame->show();
}

void WindowChrome::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    m_dropFrame->hide();
}

void WindowChrome::dropEvent(QDropEvent* event)
{
    m_dropFrame->hide();
    event->acceptProposedAction();
    const QStringList files = DropFrame::files(*event->mimeData());
    for (const QString& path : files)
        m_workspace.open(path);
}

} // namespace Bralto
