#include "Views/Console/PaneView.h"

#include "Terminals/TerminalPanel.h"
#include "Views/Console/FadingPicture.h"
#include "Views/Console/PaneDropArea.h"
#include "Views/Console/PaneHead.h"
#include "Views/Console/PaneMenuView.h"
#include "Views/Console/PaneStyleEditor.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/PaneColors.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Window/Sheet.h"
#include "Views/Window/WindowFocus.h"

#include <QApplication>
#include <QContextMenuEvent>

#include <algorithm>
#include <utility>

namespace Bralto {
namespace {

/// What a pane makes of the tokens of its window. A terminal in the plain look has a ground of its
/// own, and the head goes with it.
Theme::Dress dressOf(const ConsolePane& pane)
{
    return [&theme = PaneTheme::named(pane.style().theme),
            isTerminal = pane.terminal() != nullptr](const Tokens& window) {
        Tokens tokens = paneTokens(theme, window);
        if (isTerminal)
            tokens.sheet = tokens.terminal;
        return tokens;
    };
}

} // namespace

PaneView::PaneView(const ViewServices& services, TerminalPanel& panel, ConsoleDrag& drag,
                   ConsolePane& pane, QWidget* parent)
    : ThemedWidget(services.theme, parent)
    , m_services(services)
    , m_panel(panel)
    , m_pane(pane)
    , m_paneId(pane.id())
    , m_look(services.theme, dressOf(pane))
    , m_sheet(new Sheet(m_look, Sheet::On::Well, this))
    , m_body(new QWidget)
    , m_head(new PaneHead(m_look, panel, pane, m_body))
    , m_dropArea(new PaneDropArea(m_look, panel, drag, pane.id(), this))
{
    m_sheet->setContent(m_body);
    setContent(services.makePane(pane, m_look));
    WindowFocus::mark(*this, FocusArea::Terminal);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { markFocused(now); });
    connect(m_head, &PaneHead::menuRequested, this, &PaneView::showMenu);
    connect(m_head, &PaneHead::dragRequested, this,
            [this](const QPoint& grip) { emit dragRequested(m_head->mapTo(this, grip)); });
    connect(&pane, &ConsolePane::styleChanged, this, &PaneView::dress);
    connect(&pane, &ConsolePane::contentChanged, this, &PaneView::swapContent);
    // A menu that opened the editor has to be gone before the editor comes.
    connect(&pane, &ConsolePane::isEditingStyleChanged, this, &PaneView::followEditing,
            Qt::QueuedConnection);
    if (pane.isEditingStyle())
        QMetaObject::invokeMethod(
            this, [this] { followEditing(true); }, Qt::QueuedConnection);
}

PaneView::~PaneView()
{
    // These hear of `m_look` until they are gone, and it goes before a widget's children do.
    delete m_editor;
    delete m_dropArea;
    delete m_sheet;
}

PaneStyleEditor* PaneView::styleEditor() const
{
    return m_editor;
}

void PaneView::dress()
{
    m_look.setDress(dressOf(m_pane));
}

void PaneView::setContent(QWidget* content)
{
    m_content = content;
    content->setParent(m_body);
    content->show();
    setFocusProxy(content);
}

void PaneView::swapContent()
{
    auto* fading = new FadingPicture(theme(), m_content->grab(), m_body);
    QWidget* old = m_content;
    const bool hadFocus = old->hasFocus() || old->isAncestorOf(QApplication::focusWidget());
    dress();
    setContent(m_services.makePane(m_pane, m_look));
    place();
    fading->setGeometry(m_content->geometry());
    fading->start(FadingPicture::Layer::Above);
    if (hadFocus)
        m_content->setFocus(Qt::OtherFocusReason);
    old->hide();
    old->deleteLater();
}

void PaneView::markFocused(const QWidget* focus)
{
    // While a tab's panes are hidden one by one, the keyboard passes from one to the next.
    if (m_panel.groupOf(&m_pane) != m_panel.activeGroup())
        return;
    if (focus && (focus == m_content || m_content->isAncestorOf(focus)))
        m_panel.markFocused(&m_pane);
}

void PaneView::setHead(Head head)
{
    m_head->setVisible(head == Head::Shown);
    place();
}

void PaneView::setFocusedPane(bool focused)
{
    m_head->setFocusedPane(focused);
}

void PaneView::setLeastWidth(int width)
{
    m_leastWidth = width;
    place();
}

std::unique_ptr<QMenu> PaneView::makeMenu()
{
    const PaneMenu::Hooks hooks =
        m_services.paneHooks ? m_services.paneHooks(*m_content) : PaneMenu::Hooks();
    return makePaneMenu(
        theme(), PaneMenu::actions(m_pane, m_panel, m_services.defaults.shared, hooks), this);
}

void PaneView::showMenu(const QPoint& globalPosition)
{
    // The pane may end while its menu is open, and takes it along.
    std::unique_ptr<QMenu> menu = makeMenu();
    IconButton& button = m_head->menuButton();
    button.setDown(true);
    connect(menu.get(), &QMenu::aboutToHide, &button, [&button] { button.setDown(false); });
    PopupMenu::popUp(std::move(menu), globalPosition);
}

void PaneView::contextMenuEvent(QContextMenuEvent* event)
{
    showMenu(event->globalPos());
}

void PaneView::followEditing(bool editing)
{
    if (editing != m_pane.isEditingStyle())
        return;
    if (!editing) {
        if (m_editor)
            m_editor->close();
        return;
    }
    if (!isVisible()) {
        m_pane.setEditingStyle(false);
        return;
    }
    if (m_editor)
        return;
    m_editor = new PaneStyleEditor(theme(), m_services.defaults.shared, m_pane, this);
    const QWidget& anchor = m_head->isVisible() ? *m_head : *m_content;
    const QPoint corner(anchor.width() - Measure::Space1,
                        m_head->isVisible() ? m_head->height() : Measure::Space1);
    m_editor->open(anchor.mapToGlobal(corner));
}

void PaneView::place()
{
    m_sheet->setSheetGeometry(QRect(0, 0, std::max(width(), m_leastWidth), height()));
    // The text of a terminal begins right at its top, which then is that of the sheet.
    const int bare = m_pane.terminal() ? Measure::Space2 : 0;
    const int head = m_head->isHidden() ? bare : Measure::PaneHead;
    m_head->setGeometry(0, 0, m_body->width(), Measure::PaneHead);
    m_content->setGeometry(m_body->rect().adjusted(0, head, 0, 0));
    m_dropArea->setGeometry(rect());
}

void PaneView::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

void PaneView::hideEvent(QHideEvent* event)
{
    if (m_pane.isEditingStyle() && !event->spontaneous())
        m_pane.setEditingStyle(false);
    ThemedWidget::hideEvent(event);
}

} // namespace Bralto
