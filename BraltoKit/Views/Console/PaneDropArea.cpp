#include "Views/Console/PaneDropArea.h"

#include "Terminals/ConsoleDrop.h"
#include "Terminals/TerminalPanel.h"
#include "Views/Console/ConsoleCarrier.h"
#include "Views/Kit/Ink.h"
#include "Views/Kit/Shape.h"

#include <QDropEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace Bralto {
namespace {

using Edge = ConsoleDrag::Edge;
using Target = ConsoleDrag::Target;

constexpr double VeilOpacity = 0.6;

} // namespace

PaneDropArea::PaneDropArea(Theme& theme, TerminalPanel& panel, ConsoleDrag& drag, QString paneId,
                           QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_panel(panel)
    , m_drag(drag)
    , m_paneId(std::move(paneId))
    , m_side(theme, Motions::Drag, 0, this)
    , m_light(theme, Motions::Drag, 0, this)
{
    setAcceptDrops(true);
    connect(&drag, &ConsoleDrag::itemChanged, this, &PaneDropArea::followItem);
    connect(&drag, &ConsoleDrag::targetChanged, this, &PaneDropArea::followTarget);
    connect(&m_side, &Animated::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&m_light, &Animated::valueChanged, this, qOverload<>(&QWidget::update));
    followItem();
}

bool PaneDropArea::isDragged() const
{
    const auto& item = m_drag.item();
    return item && item->kind == ConsoleDrag::Kind::Pane && item->id == m_paneId;
}

std::optional<Edge> PaneDropArea::litEdge() const
{
    const auto& target = m_drag.target();
    if (!target || target->place != Target::Place::Pane || target->id != m_paneId)
        return std::nullopt;
    return target->edge;
}

void PaneDropArea::followItem()
{
    if (!m_drag.item())
        m_light.jumpTo(0);
    setVisible(m_drag.item().has_value());
    raise();
}

void PaneDropArea::followTarget()
{
    const auto lit = litEdge();
    if (!lit) {
        m_light.moveTo(0);
        return;
    }
    const double side = *lit == Edge::Leading ? 0 : 1;
    // From the dark it lights up where it is; from the other half it comes over.
    if (m_light.goal() == 0)
        m_side.jumpTo(side);
    else
        m_side.moveTo(side);
    m_light.moveTo(1);
}

void PaneDropArea::dragEnterEvent(QDragEnterEvent* event)
{
    ConsoleCarrier::update(*event, *this, PaneDropDelegate(m_drag, m_panel, m_paneId));
}

void PaneDropArea::dragMoveEvent(QDragMoveEvent* event)
{
    ConsoleCarrier::update(*event, *this, PaneDropDelegate(m_drag, m_panel, m_paneId));
}

void PaneDropArea::dragLeaveEvent(QDragLeaveEvent* /*event*/)
{
    PaneDropDelegate(m_drag, m_panel, m_paneId).dropExited();
}

void PaneDropArea::dropEvent(QDropEvent* event)
{
    ConsoleCarrier::drop(*event, *this, PaneDropDelegate(m_drag, m_panel, m_paneId));
}

void PaneDropArea::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (isDragged())
        Shape::fill(painter, rect(), Measure::PaneRadius, Ink::faded(tokens().sheet, VeilOpacity));
    const double light = std::clamp(m_light.value(), 0.0, 1.0);
    if (light == 0)
        return;
    const double half = width() / 2.0;
    const QRectF lit(std::clamp(m_side.value(), 0.0, 1.0) * half, 0, half, height());
    const auto dimmed = [light](const QColor& ink) {
        return Ink::faded(ink, double(ink.alphaF()) * light);
    };
    Shape::fill(painter, lit, Measure::PaneRadius, dimmed(tokens().selection));
    Shape::ring(painter, lit, Measure::PaneRadius, Measure::FocusRing, dimmed(tokens().accentInk));
}

} // namespace Bralto
