#include "Views/Kit/SpaceTile.h"

#include "Views/Kit/SpaceIcon.h"

#include <QPainter>

namespace Bralto {

SpaceTile::SpaceTile(Theme& theme, const SpaceTheme& space, const QString& name, int side,
                     QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_space(space)
    , m_name(name)
{
    setFixedSize(side, side);
}

void SpaceTile::setSpace(const SpaceTheme& space, const QString& name)
{
    m_space = space;
    m_name = name;
    update();
}

void SpaceTile::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    SpaceIcon::draw(painter, rect(), m_space, m_name);
}

} // namespace Bralto
