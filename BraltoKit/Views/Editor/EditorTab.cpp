#include "Views/Editor/EditorTab.h"

#include "Base/Shortcuts.h"
#include "Editor/FileKind.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QContextMenuEvent>
#include <QPainter>

#include <cmath>

namespace Bralto {
namespace {

constexpr int Left = 9;
constexpr int Right = 5;
constexpr int Gap = 7;
constexpr int ActingLine = 2; ///< Below a page that a tool acts on.

} // namespace

EditorTab::EditorTab(const ViewServices& services, const WorkspaceTab& tab, QWidget* parent)
    : Control(services.theme, Ground::Sheet, parent)
    , m_services(services)
    , m_tab(tab)
    , m_close(new IconButton(services.theme, Ground::Sheet, QStringLiteral("xmark"), this))
{
    m_close->setExtent(Measure::TabClose, Measure::CaptionIcon);
    m_close->setQuiet(true);
    // The keyboard closes a focused tab with Delete, and the active one with its shortcut.
    m_close->setFocusPolicy(Qt::NoFocus);
    connect(m_close, &IconButton::clicked, this, &EditorTab::close);
    connect(this, &EditorTab::clicked, this, &EditorTab::activate);
    followContent();
    refresh();
}

void EditorTab::followContent()
{
    const auto change = [this] {
        refresh();
        emit widthChanged();
    };
    if (const EditorDocument* document = m_tab.document()) {
        connect(document, &EditorDocument::textChanged, this, &EditorTab::refresh);
        connect(document, &EditorDocument::savedTextChanged, this, &EditorTab::refresh);
        connect(document, &EditorDocument::pathChanged, this, change);
    } else if (const BrowserTab* page = m_tab.browser()) {
        connect(page, &BrowserTab::titleChanged, this, change);
        connect(page, &BrowserTab::urlChanged, this, change);
        connect(page, &BrowserTab::iconChanged, this, &EditorTab::followIcon);
        connect(page, &BrowserTab::actingToolChanged, this, qOverload<>(&QWidget::update));
        followIcon();
    }
}

void EditorTab::followIcon()
{
    m_icon = QPixmap();
    m_icon.loadFromData(m_tab.browser()->icon(), "PNG");
    update();
}

bool EditorTab::isActive() const
{
    return m_services.workspace.activeTabId() == m_tab.id();
}

bool EditorTab::hasUnsavedText() const
{
    const EditorDocument* document = m_tab.document();
    return document && document->hasUnsavedText();
}

QString EditorTab::symbol() const
{
    if (m_services.workspace.splitTabId() == m_tab.id())
        return QStringLiteral("rectangle.split.2x1");
    if (const EditorDocument* document = m_tab.document())
        return FileKinds::symbol(FileKinds::of(document->path(), false));
    return QStringLiteral("globe");
}

QSize EditorTab::sizeHint() const
{
    const double words = TextLine::width(TextRole::Tab, text());
    return {int(std::ceil(words)) + Left + Right + Measure::TabIcon + Measure::TabClose + 2 * Gap,
            Measure::Tab};
}

void EditorTab::refresh()
{
    setText(m_tab.title());
    const EditorDocument* document = m_tab.document();
    setAccessibleName(text());
    setToolTip(document ? document->path() : m_tab.browser()->url().toDisplayString());
    if (hasUnsavedText())
        m_close->setTip(tr("Unsaved changes"));
    else
        m_close->setTip(tr("Close"), Shortcuts::keys(Shortcuts::Command::Close));
    showClose();
    update();
}

void EditorTab::showClose()
{
    m_close->setVisible(underMouse() || !hasUnsavedText());
    m_close->setSymbol(QStringLiteral("xmark"));
}

void EditorTab::activate()
{
    m_services.workspace.activate(m_tab);
    m_services.workspace.focus(m_tab);
}

void EditorTab::close()
{
    m_services.workspace.close(m_tab);
}

std::unique_ptr<QMenu> EditorTab::makeMenu()
{
    auto menu = std::make_unique<PopupMenu>(theme(), this);
    Workspace& workspace = m_services.workspace;
    Desktop& desktop = m_services.desktop;
    // Closing a tab takes its menu with it, so the work begins when the menu has gone.
    const auto add = [&menu, &workspace](const QString& title, auto work) {
        QAction* action = menu->addAction(title);
        connect(action, &QAction::triggered, &workspace, work, Qt::QueuedConnection);
        return action;
    };
    add(tr("Close"), [&workspace, tab = m_tab] { workspace.close(tab); });
    add(tr("Close Others"), [&workspace, tab = m_tab] {
        workspace.closeOthers(tab);
    })->setEnabled(workspace.tabs().size() > 1);
    menu->addSeparator();
    if (workspace.splitTabId() == m_tab.id())
        add(tr("Close Split View"), [&workspace] { workspace.toggleSplit(); });
    else
        add(tr("Open in Split View"), [&workspace, tab = m_tab] {
            workspace.openInSplit(tab);
        })->setEnabled(workspace.tabs().size() > 1 || workspace.canShowPages());
    menu->addSeparator();
    if (const EditorDocument* document = m_tab.document())
        add(tr("Reveal in Finder"), [&desktop, path = document->path()] { desktop.reveal(path); });
    else
        add(tr("Open in Default Browser"),
            [&desktop, url = m_tab.browser()->url()] { desktop.open(url); });
    return menu;
}

void EditorTab::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::MiddleButton)
        Control::mousePressEvent(event);
}

void EditorTab::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton && rect().contains(event->position().toPoint()))
        close();
    else
        Control::mouseReleaseEvent(event);
}

void EditorTab::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Delete)
        close();
    else
        Control::keyPressEvent(event);
}

void EditorTab::contextMenuEvent(QContextMenuEvent* event)
{
    makeMenu()->exec(event->globalPos());
}

void EditorTab::enterEvent(QEnterEvent* event)
{
    Control::enterEvent(event);
    showClose();
}

void EditorTab::leaveEvent(QEvent* event)
{
    Control::leaveEvent(event);
    m_close->setVisible(!hasUnsavedText());
}

void EditorTab::resizeEvent(QResizeEvent* event)
{
    m_close->move(width() - Right - Measure::TabClose, (height() - Measure::TabClose) / 2);
    Control::resizeEvent(event);
}

void EditorTab::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (isActive())
        Shape::fill(painter, rect(), Measure::ControlRadius, tokens().pressed);
    else if (hoverAmount() > 0)
        Shape::fill(painter, rect(), Measure::ControlRadius,
                    Ink::faded(tokens().hover, double(tokens().hover.alphaF()) * hoverAmount()));

    const QColor ink = isActive() ? tokens().label : tokens().ink2;
    const double middle = height() / 2.0;
    const QRectF place(Left, middle - Measure::TabIcon / 2.0, Measure::TabIcon, Measure::TabIcon);
    const bool isSplit = m_services.workspace.splitTabId() == m_tab.id();
    if (m_icon.isNull() || isSplit) {
        Icon::draw(painter, place, symbol(), ink);
    } else {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(place, m_icon, QRectF(m_icon.rect()));
    }
    const double x = Left + Measure::TabIcon + Gap;
    const double right = width() - Right - Measure::TabClose - 2;
    TextLine::draw(painter, QRectF(x, 0, right - x, height()), TextRole::Tab, ink, text(),
                   Qt::ElideMiddle);
    if (const BrowserTab* page = m_tab.browser(); page && !page->actingTool().isEmpty())
        Shape::fill(painter, QRectF(Left, height() - ActingLine, width() - 2.0 * Left, ActingLine),
                    ActingLine / 2.0, tokens().accentInk);
    if (m_close->isHidden())
        Shape::disc(painter, QPointF(width() - Right - Measure::TabClose / 2.0, middle),
                    Measure::UnsavedDot, tokens().label);
}

} // namespace Bralto
