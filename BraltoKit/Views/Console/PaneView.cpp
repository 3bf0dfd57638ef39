#include "Views/Console/PaneView.h"

#include "Terminals/TerminalPanel.h"
#include "Views/Console/PaneHead.h"
#include "Views/Window/Sheet.h"
#include "Views/Window/WindowFocus.h"

#include <QApplication>

namespace Bralto {

PaneView::PaneView(Theme& theme, TerminalPanel& panel, ConsolePane& pane, QWidget* content,
                   QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_panel(panel)
    , m_pane(pane)
    , m_paneId(pane.id())
    , m_sheet(new Sheet(theme, Sheet::On::Well, this))
    , m_body(new QWidget)
    , m_head(new PaneHead(theme, panel, pane, m_body))
    , m_content(content)
{
    content->setParent(m_body);
    content->show();
    m_sheet->setContent(m_body);
    setFocusProxy(content);
    WindowFocus::mark(*this, FocusArea::Terminal);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { markFocused(now); });
}

PaneView::~PaneView() = default;

void PaneView::markFocused(const QWidget* focus)
{
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

void PaneView::place()
{
    m_sheet->setSheetGeometry(rect());
    const int head = m_head->isHidden() ? 0 : Measure::PaneHead;
    m_head->setGeometry(0, 0, m_body->width(), Measure::PaneHead);
    m_content->setGeometry(m_body->rect().adjusted(0, head, 0, 0));
}

void PaneView::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

} // namespace Bralto
