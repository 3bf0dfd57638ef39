#include "Views/Chat/AttachmentChip.h"

#include "Views/Chat/ChatAttachments.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QPainter>

namespace Bralto {

namespace {

constexpr int Height = 24;
constexpr int Side = 8;
constexpr int Gap = 6;
constexpr int RemoveSide = 12;
constexpr int MostText = 180;

} // namespace

AttachmentChip::AttachmentChip(Theme& theme, const ChatAttachment& attachment, QWidget* parent)
    : Control(theme, Ground::Sheet, parent)
    , m_name(ChatAttachments::name(attachment))
    , m_symbol(std::holds_alternative<ChatAttachment::Image>(attachment.kind)
                   ? QStringLiteral("photo")
                   : QStringLiteral("doc.text"))
{
    setTip(tr("Remove “%1”").arg(m_name));
}

QSize AttachmentChip::sizeHint() const
{
    const double text = std::min<double>(TextLine::width(TextRole::Secondary, m_name), MostText);
    return {int(text) + 1 + 2 * Side + Measure::TabIcon + RemoveSide + 2 * Gap, Height};
}

void AttachmentChip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    Shape::fill(painter, rect(), Measure::ControlRadius, tokens().pressed);
    const double middle = height() / 2.0;
    const QRectF symbol(Side, middle - Measure::TabIcon / 2.0, Measure::TabIcon, Measure::TabIcon);
    Icon::draw(painter, symbol, m_symbol, tokens().ink2);
    const QRectF remove(width() - Side - RemoveSide, middle - RemoveSide / 2.0, RemoveSide,
                        RemoveSide);
    Icon::draw(painter, remove, QStringLiteral("xmark"), secondaryInk());
    TextLine::draw(
        painter,
        QRectF(symbol.right() + Gap, 0, remove.left() - symbol.right() - 2 * Gap, height()),
        TextRole::Secondary, tokens().label, m_name, Qt::ElideMiddle);
}

} // namespace Bralto
