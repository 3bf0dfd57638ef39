#include "Views/Console/PaneHead.h"

#include "Base/Shortcuts.h"
#include "Terminals/TerminalPanel.h"
#include "Views/Console/NameField.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/IconButton.h"
#include "Views/Kit/TextLine.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace Bralto {
namespace {

constexpr int Left = 11;
constexpr int Right = 5;
constexpr int Gap = 8;
/// In a narrower head its menu is behind the right button only, in one narrower still closing too.
constexpr int LeastForMenu = 128;
constexpr int LeastForClose = 72;

} // namespace

PaneHead::PaneHead(Theme& look, TerminalPanel& panel, ConsolePane& pane, QWidget* parent)
    : ThemedWidget(look, parent)
    , m_panel(panel)
    , m_pane(pane)
    , m_menu(new IconButton(look, Ground::Sheet, QStringLiteral("ellipsis"), this))
    , m_close(new IconButton(look, Ground::Sheet, QStringLiteral("xmark"), this))
{
    m_menu->setExtent(Measure::IconButton, Measure::RowIcon);
    m_menu->setQuiet(true);
    m_menu->setTip(tr("Pane Actions"));
    m_close->setExtent(Measure::IconButton, Measure::TabIcon);
    m_close->setQuiet(true);
    connect(m_menu, &IconButton::clicked, this, [this] {
        emit menuRequested(m_menu->mapToGlobal(QPoint(0, m_menu->height() + Measure::Space1)));
    });
    connect(
        m_close, &IconButton::clicked, this, [this] { m_panel.close(&m_pane); },
        Qt::QueuedConnection);
    connect(&pane, &ConsolePane::labelChanged, this, &PaneHead::refresh);
    connect(&pane, &ConsolePane::contentChanged, this, &PaneHead::refresh);
    connect(&pane, &ConsolePane::isSwappingChanged, this, &PaneHead::refresh);
    refresh();
}

QString PaneHead::symbol(const ConsolePane& pane)
{
    return pane.chat() ? QStringLiteral("bubble.left.and.text.bubble.right")
                       : QStringLiteral("terminal");
}

void PaneHead::refresh()
{
    const auto keyboard =
        m_pane.terminal() ? Shortcuts::Keyboard::InTerminal : Shortcuts::Keyboard::Elsewhere;
    m_close->setTip(tr("Close Pane"), Shortcuts::keys(Shortcuts::Command::Close, keyboard));
    setAccessibleName(m_pane.label());
    setToolTip(m_pane.label());
    update();
}

void PaneHead::setFocusedPane(bool focused)
{
    if (m_isFocused == focused)
        return;
    m_isFocused = focused;
    update();
}

QRect PaneHead::nameRect() const
{
    const int x = Left + Measure::TabIcon + Gap;
    int right = width() - Right;
    if (!m_close->isHidden())
        right = m_close->x() - Gap;
    if (!m_menu->isHidden())
        right = m_menu->x() - Gap;
    return {x, 0, std::max(0, right - x), height()};
}

NameField* PaneHead::nameField() const
{
    return m_field;
}

void PaneHead::rename()
{
    if (m_field)
        return;
    m_field = new NameField(theme(), m_pane.label(), tokens().label,
                            nameRect().adjusted(0, 4, 0, -4), this);
    connect(m_field, &NameField::named, this, [this](const std::optional<QString>& name) {
        // Who leaves the name as it stood has given none.
        if (name != m_pane.label())
            m_pane.setName(name);
        m_panel.focus(&m_pane);
    });
    connect(m_field, &NameField::cancelled, this, [this] { m_panel.focus(&m_pane); });
    connect(m_field, &QObject::destroyed, this, qOverload<>(&QWidget::update));
    update();
}

void PaneHead::mousePressEvent(QMouseEvent* event)
{
    m_panel.focus(&m_pane);
    if (event->button() == Qt::LeftButton)
        m_press = event->position().toPoint();
}

void PaneHead::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_press || !(event->buttons() & Qt::LeftButton))
        return;
    const QPoint way = event->position().toPoint() - *m_press;
    if (way.manhattanLength() >= QApplication::startDragDistance())
        emit dragRequested(*std::exchange(m_press, std::nullopt));
}

void PaneHead::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    m_press.reset();
}

void PaneHead::mouseDoubleClickEvent(QMouseEvent* event)
{
    m_press.reset();
    if (event->button() == Qt::LeftButton)
        rename();
}

void PaneHead::place()
{
    const int top = (height() - Measure::IconButton) / 2;
    m_close->setVisible(width() >= LeastForClose);
    m_menu->setVisible(width() >= LeastForMenu);
    m_close->move(width() - Right - Measure::IconButton, top);
    m_menu->move(m_close->x() - Measure::IconButton - 2, top);
    if (m_field)
        m_field->setGeometry(nameRect().adjusted(0, 4, 0, -4));
}

void PaneHead::resizeEvent(QResizeEvent* /*event*/)
{
    place();
}

void PaneHead::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    Icon::draw(
        painter,
        QRectF(Left, (height() - Measure::TabIcon) / 2.0, Measure::TabIcon, Measure::TabIcon),
        symbol(m_pane), m_isFocused ? tokens().accentInk : tokens().ink2);
    if (!m_field)
        TextLine::draw(painter, nameRect(), TextRole::SecondaryMedium,
                       m_isFocused ? tokens().label : tokens().ink2, m_pane.label());
}

} // namespace Bralto
