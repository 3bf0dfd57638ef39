#include "Views/Console/FontPicker.h"

#include "Views/Console/PaneFonts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QKeyEvent>
#include <QPainter>

namespace Bralto {
namespace {

constexpr int Padding = 10;
constexpr int LeastWidth = 120;

} // namespace

FontPicker::FontPicker(Theme& theme, QWidget* parent)
    : Control(theme, Ground::Sheet, parent)
{
    setFixedHeight(Measure::Button);
    connect(this, &FontPicker::clicked, this, &FontPicker::open);
    setFamily(std::nullopt);
}

QString FontPicker::title(const std::optional<QString>& family)
{
    return family.value_or(QStringLiteral("SF Mono"));
}

void FontPicker::setFamily(const std::optional<QString>& family)
{
    m_family = family;
    setText(title(family));
    setAccessibleName(tr("Font: %1").arg(text()));
    update();
}

QSize FontPicker::sizeHint() const
{
    return {LeastWidth, Measure::Button};
}

std::unique_ptr<QMenu> FontPicker::makeMenu()
{
    auto menu = std::make_unique<PopupMenu>(theme(), this);
    const auto add = [this, &menu](const std::optional<QString>& family) {
        QAction* action = menu->addAction(title(family).replace(u'&', QLatin1String("&&")));
        action->setCheckable(true);
        action->setChecked(family == m_family);
        if (action->isChecked())
            menu->setActiveAction(action);
        connect(action, &QAction::triggered, this, [this, family] { emit picked(family); });
    };
    add(std::nullopt);
    menu->addSeparator();
    for (const QString& family : PaneFonts::installed())
        add(family);
    return menu;
}

void FontPicker::open()
{
    QMenu* menu = makeMenu().release();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setMinimumWidth(width());
    menu->popup(mapToGlobal(QPoint(0, height() + Measure::Space1)));
}

void FontPicker::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Down)
        open();
    else
        Control::keyPressEvent(event);
}

void FontPicker::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    Shape::fill(painter, rect(), Measure::ControlRadius, tokens().field);
    if (isDown() || hoverAmount() > 0.5)
        Shape::fill(painter, rect(), Measure::ControlRadius, hoverFill());
    Shape::edgeInside(painter, rect(), Measure::ControlRadius, tokens().separator);
    const QRectF arrow(width() - Padding - Measure::TabIcon, (height() - Measure::TabIcon) / 2.0,
                       Measure::TabIcon, Measure::TabIcon);
    Icon::draw(painter, arrow, QStringLiteral("chevron.down"), tokens().ink2);
    TextLine::draw(painter, QRectF(Padding, 0, arrow.left() - 2.0 * Padding, height()),
                   TextRole::Body, tokens().label, text());
}

} // namespace Bralto
