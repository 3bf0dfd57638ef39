#include "Views/Sidebar/TitleRow.h"

#include "Base/Shortcuts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"
#include "Views/Sidebar/FileMenus.h"
#include "Workspace/Workspace.h"

#include <QPainter>

namespace Bralto {
namespace {

constexpr int Gap = 6;

} // namespace

TitleRow::TitleRow(Theme& theme, Workspace& workspace, Desktop& desktop, QWidget* parent)
    : Control(theme, Ground::Frame, parent)
    , m_workspace(workspace)
    , m_desktop(desktop)
    , m_newFile(new IconButton(theme, Ground::Frame, QStringLiteral("doc.badge.plus"), this))
    , m_newFolder(new IconButton(theme, Ground::Frame, QStringLiteral("folder.badge.plus"), this))
{
    setFixedHeight(Measure::TitleRow);
    m_newFile->setTip(tr("New File"), Shortcuts::keys(Shortcuts::Command::New));
    m_newFolder->setTip(tr("New Folder"), Shortcuts::keys(Shortcuts::Command::NewFolder));
    m_newFile->hide();
    m_newFolder->hide();
    // The keyboard reaches both through the menu of the files.
    m_newFile->setFocusPolicy(Qt::NoFocus);
    m_newFolder->setFocusPolicy(Qt::NoFocus);
    connect(m_newFile, &IconButton::clicked, &workspace,
            [&workspace] { workspace.createFile(workspace.selectedFolder()); });
    connect(m_newFolder, &IconButton::clicked, &workspace,
            [&workspace] { workspace.createFolder(workspace.selectedFolder()); });
    connect(this, &TitleRow::clicked, this, &TitleRow::openMenu);
    connect(&workspace, &Workspace::rootChanged, this, &TitleRow::refresh);
    connect(&workspace, &Workspace::spaceChanged, this, &TitleRow::refresh);
    refresh();
}

void TitleRow::refresh()
{
    const FileNode* root = m_workspace.root();
    setText(root ? m_workspace.space().displayName(root->path()) : QString());
    setAccessibleName(text());
    setToolTip(root ? root->path() : QString());
    update();
}

std::unique_ptr<QMenu> TitleRow::makeMenu()
{
    auto menu = std::make_unique<PopupMenu>(theme(), this);
    FileMenus::addProjectActions(*menu, m_workspace, m_desktop);
    return menu;
}

void TitleRow::openMenu()
{
    makeMenu()->exec(mapToGlobal(QPoint(0, height() + Measure::Space1)));
}

void TitleRow::contextMenuEvent(QContextMenuEvent* /*event*/)
{
    openMenu();
}

void TitleRow::enterEvent(QEnterEvent* event)
{
    m_newFile->show();
    m_newFolder->show();
    Control::enterEvent(event);
}

void TitleRow::leaveEvent(QEvent* event)
{
    m_newFile->hide();
    m_newFolder->hide();
    Control::leaveEvent(event);
}

void TitleRow::resizeEvent(QResizeEvent* event)
{
    const int top = (height() - Measure::IconButton) / 2;
    const int right = width() - Measure::Space1;
    m_newFolder->move(right - Measure::IconButton, top);
    m_newFile->move(right - 2 * Measure::IconButton, top);
    Control::resizeEvent(event);
}

void TitleRow::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const Tokens::Frame& frame = tokens().frame;
    if (isDown())
        Shape::fill(painter, rect(), Measure::ControlRadius, frame.pressed);
    else if (hoverAmount() > 0)
        Shape::fill(painter, rect(), Measure::ControlRadius,
                    Ink::faded(frame.hover, double(frame.hover.alphaF()) * hoverAmount()));

    const int buttons = m_newFile->isHidden() ? 0 : 2 * Measure::IconButton;
    const double room =
        width() - Measure::RowLeft - Measure::RowRight - buttons - Gap - Measure::CaptionIcon;
    const double words = std::min(room, TextLine::width(TextRole::BodyStrong, text()) + 1);
    TextLine::draw(painter, QRectF(Measure::RowLeft, 0, words, height()), TextRole::BodyStrong,
                   frame.label, text());
    Icon::draw(painter,
               QRectF(Measure::RowLeft + words + Gap, (height() - Measure::CaptionIcon) / 2.0,
                      Measure::CaptionIcon, Measure::CaptionIcon),
               QStringLiteral("chevron.down"), frame.ink2);
}

} // namespace Bralto
