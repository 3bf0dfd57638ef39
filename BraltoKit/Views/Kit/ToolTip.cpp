#include "Views/Kit/ToolTip.h"

#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/FloatWindow.h"
#include "Views/Kit/TextLine.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

#include <cmath>

namespace Bralto {
namespace {

constexpr int Padding = 10;
constexpr int Gap = 8;
constexpr int BelowPointer = 20;
constexpr int WidestTip = 520;

} // namespace

ToolTip::ToolTip(Theme& theme, QWidget& window)
    : ThemedWidget(theme, &window)
    , m_window(window)
{
    setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
    Float::makeWindow(*this, theme, 1, Measure::ControlRadius);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_ShowWithoutActivating);
    qApp->installEventFilter(this);
}

ToolTip::Parts ToolTip::parts(const QString& tip)
{
    const qsizetype open = tip.lastIndexOf(QStringLiteral(" ("));
    if (!tip.endsWith(u')') || open <= 0)
        return {tip, {}};
    return {tip.left(open), tip.mid(open + 2, tip.size() - open - 3)};
}

void ToolTip::show(QWidget& owner, const QPoint& position, const QString& text, const QRect& area)
{
    const auto tips = owner.window()->findChildren<ToolTip*>(Qt::FindDirectChildrenOnly);
    if (!tips.isEmpty())
        tips.first()->present(owner, position, text, area);
}

void ToolTip::present(QWidget& owner, const QPoint& position, const QString& text,
                      const QRect& area)
{
    m_parts = parts(text);
    m_owner = &owner;
    m_area = area;
    double width = TextLine::width(TextRole::Secondary, m_parts.words) + 2 * Padding;
    if (!m_parts.shortcut.isEmpty())
        width += Gap + TextLine::width(TextRole::Secondary, m_parts.shortcut);
    // One unit on every side is for the edge.
    resize(std::min(int(std::ceil(width)), WidestTip) + 2, Measure::ToolTip + 2);

    QPoint corner = position + QPoint(-this->width() / 2, BelowPointer);
    if (const QScreen* screen = owner.screen()) {
        const QRect room = screen->availableGeometry();
        corner.setX(std::clamp(corner.x(), room.left(),
                               std::max(room.left(), room.right() - this->width())));
        if (corner.y() + height() > room.bottom())
            corner.setY(position.y() - height() - Gap);
    }
    move(corner);
    QWidget::show();
    update();
}

bool ToolTip::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ToolTip: {
        auto* widget = qobject_cast<QWidget*>(watched);
        if (!widget || widget->toolTip().isEmpty() || widget->window() != &m_window)
            break;
        present(*widget, static_cast<QHelpEvent*>(event)->globalPos(), widget->toolTip(),
                widget->rect());
        return true;
    }
    case QEvent::MouseMove:
        if (isVisible() && m_owner && watched == m_owner &&
            !m_area.contains(static_cast<QMouseEvent*>(event)->pos()))
            hide();
        break;
    case QEvent::Leave:
        if (watched == m_owner)
            hide();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::KeyPress:
    case QEvent::Wheel:
    case QEvent::WindowDeactivate:
    case QEvent::Hide:
        if (isVisible() && watched != this)
            hide();
        break;
    default:
        break;
    }
    return ThemedWidget::eventFilter(watched, event);
}

void ToolTip::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRectF panel = QRectF(rect()).adjusted(1, 1, -1, -1);
    Float::drawPanel(painter, panel, Measure::ControlRadius, tokens());
    QRectF content = panel.adjusted(Padding, 0, -Padding, 0);
    if (!m_parts.shortcut.isEmpty()) {
        TextLine::draw(painter, content, TextRole::Secondary, tokens().ink3, m_parts.shortcut,
                       Qt::ElideNone, Qt::AlignRight);
        content.setRight(content.right() - TextLine::width(TextRole::Secondary, m_parts.shortcut) -
                         Gap);
    }
    TextLine::draw(painter, content, TextRole::Secondary, tokens().label, m_parts.words);
}

} // namespace Bralto
