#include "Views/Console/PaneHead.h"

#include "Base/Shortcuts.h"
#include "Terminals/TerminalPanel.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/TextLine.h"

#include <QPainter>

namespace Bralto {
namespace {

constexpr int Left = 11;
constexpr int Right = 5;
constexpr int Gap = 8;

} // namespace

PaneHead::PaneHead(Theme& theme, TerminalPanel& panel, ConsolePane& pane, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_panel(panel)
    , m_pane(pane)
    , m_close(new IconButton(theme, Ground::Sheet, QStringLiteral("xmark"), this))
{
    m_close->setExtent(Measure::IconButton, Measure::TabIcon);
    m_close->setQuiet(true);
    m_close->setTip(tr("Close Pane"), Shortcuts::keys(Shortcuts::Command::Close));
    connect(
        m_close, &IconButton::clicked, this, [this] { m_panel.close(&m_pane); },
        Qt::QueuedConnection);
    connect(&pane, &ConsolePane::labelChanged, this, qOverload<>(&QWidget::update));
}

void PaneHead::setFocusedPane(bool focused)
{
    if (m_isFocused == focused)
        return;
    m_isFocused = focused;
    update();
}

void PaneHead::mousePressEvent(QMouseEvent* /*event*/)
{
    m_panel.focus(&m_pane);
}

void PaneHead::resizeEvent(QResizeEvent* /*event*/)
{
    m_close->move(width() - Right - Measure::IconButton, (height() - Measure::IconButton) / 2);
}

void PaneHead::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    Icon::draw(
        painter,
        QRectF(Left, (height() - Measure::TabIcon) / 2.0, Measure::TabIcon, Measure::TabIcon),
        QStringLiteral("bubble.left.and.text.bubble.right"),
        m_isFocused ? tokens().accentInk : tokens().ink2);
    const double x = Left + Measure::TabIcon + Gap;
    const double right = width() - Right - Measure::IconButton - Gap;
    TextLine::draw(painter, QRectF(x, 0, right - x, height()), TextRole::SecondaryMedium,
                   m_isFocused ? tokens().label : tokens().ink2, m_pane.label());
}

} // namespace Bralto
