#include "Terminals/ConsoleDrag.h"

#include "Terminals/TerminalPanel.h"

#include <utility>

namespace Bralto {

ConsoleDrag::ConsoleDrag(Motion& motion, std::function<bool()> isButtonPressed, QObject* parent)
    : QObject(parent)
    , m_hold(motion)
    , m_isButtonPressed(std::move(isButtonPressed))
{
    m_watch.setInterval(TickPeriod);
    connect(&m_watch, &QTimer::timeout, this, &ConsoleDrag::tick);
}

QString ConsoleDrag::type(Kind kind)
{
    return kind == Kind::Pane ? QStringLiteral("com.tolvane.bralto.console-pane")
                              : QStringLiteral("com.tolvane.bralto.console-group");
}

QStringList ConsoleDrag::types()
{
    return {type(Kind::Pane), type(Kind::Group)};
}

ConsoleDrag::Edge ConsoleDrag::edge(double x, double width)
{
    return x < width * 0.5 ? Edge::Leading : Edge::Trailing;
}

void ConsoleDrag::start(const Item& item)
{
    m_hold.begin(QStringLiteral("drag console pane"));
    m_releasedTicks = 0;
    m_watch.start();
    setTarget(std::nullopt);
    if (m_item == item)
        return;
    m_item = item;
    emit itemChanged();
}

void ConsoleDrag::point(const Target& target)
{
    if (m_item)
        setTarget(target);
}

void ConsoleDrag::leave(const Target& target)
{
    if (m_target == target)
        setTarget(std::nullopt);
}

void ConsoleDrag::finish()
{
    m_watch.stop();
    setTarget(std::nullopt);
    if (std::exchange(m_item, std::nullopt))
        emit itemChanged();
    m_hold.end();
}

void ConsoleDrag::tick()
{
    m_releasedTicks = m_isButtonPressed() ? 0 : m_releasedTicks + 1;
    if (m_releasedTicks >= ReleasedTicks)
        finish();
}

void ConsoleDrag::setTarget(const std::optional<Target>& target)
{
    if (m_target == target)
        return;
    m_target = target;
    emit targetChanged();
}

bool ConsoleDrag::carries(Kind kind, const QStringList& formats) const
{
    return m_item && m_item->kind == kind && formats.contains(type(kind));
}

ConsolePane* ConsoleDrag::draggedPane(const TerminalPanel& panel, const QStringList& formats) const
{
    return carries(Kind::Pane, formats) ? panel.pane(m_item->id) : nullptr;
}

TerminalGroup* ConsoleDrag::draggedGroup(const TerminalPanel& panel,
                                         const QStringList& formats) const
{
    return carries(Kind::Group, formats) ? panel.group(m_item->id) : nullptr;
}

} // namespace Bralto
