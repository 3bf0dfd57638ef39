#include "Views/Console/ConsoleCarrier.h"

#include "Views/Kit/FloatShadow.h"

#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QWidget>

#include <algorithm>

namespace Bralto::ConsoleCarrier {
namespace {

constexpr double Opacity = 0.9;
constexpr int WidestPicture = 260;
constexpr int HighestPicture = 180;

} // namespace

QPixmap picture(QWidget& widget, int radius, const Theme& theme, QPoint& grip)
{
    const Tokens& tokens = theme.tokens();
    // Where nothing can be see-through, all around the card would be white.
    const double margin = theme.isComposited() ? Float::ShadowMargin : 0;
    const QPixmap whole = widget.grab();
    const double ratio = whole.devicePixelRatio();
    const QSizeF size = whole.deviceIndependentSize();
    const double scale =
        std::min({1.0, WidestPicture / size.width(), HighestPicture / size.height()});
    const QRectF card(QPointF(margin, margin), size * scale);

    QPixmap result((card.size() + QSizeF(2 * margin, 2 * margin)).toSize() * ratio);
    result.setDevicePixelRatio(ratio);
    result.fill(theme.isComposited() ? QColor(Qt::transparent) : tokens.frame.stops[1]);
    QPainter painter(&result);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (theme.isComposited()) {
        painter.setOpacity(Opacity);
        Float::drawShadow(painter, card, radius, tokens);
    }
    QPainterPath shape;
    shape.addRoundedRect(card, radius, radius);
    painter.setClipPath(shape);
    painter.fillRect(card, tokens.frame.stops[1]);
    painter.drawPixmap(card, whole, QRectF(whole.rect()));
    painter.end();

    grip = (QPointF(grip) * scale + card.topLeft()).toPoint();
    return result;
}

void run(QWidget& window, ConsoleDrag& drag, const ConsoleDrag::Item& item, const QPixmap& picture,
         const QPoint& grip)
{
    const QPointer<ConsoleDrag> followed(&drag);
    // Belongs to the window: what is dragged may lose its view on the way.
    auto* carrier = new QDrag(&window);
    auto* data = new QMimeData;
    data->setData(ConsoleDrag::type(item.kind), item.id.toUtf8());
    carrier->setMimeData(data);
    carrier->setPixmap(picture);
    carrier->setHotSpot(grip);
    drag.start(item);
    carrier->exec(Qt::MoveAction);
    if (followed)
        followed->finish();
}

ConsoleDropInfo info(const QDropEvent& event, const QWidget& target)
{
    return {.formats = event.mimeData()->formats(),
            .x = event.position().x(),
            .width = double(target.width())};
}

void propose(QDropEvent& event, DropProposal proposal)
{
    if (proposal == DropProposal::Forbidden) {
        event.ignore();
        return;
    }
    event.setDropAction(Qt::MoveAction);
    event.accept();
}

} // namespace Bralto::ConsoleCarrier
