#include "Views/Chat/ChatCard.h"

#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QPainter>
#include <QVBoxLayout>

namespace Bralto {

namespace {

constexpr QMargins Padding{14, 10, 12, 12};
constexpr int HeadHeight = 24;
constexpr int SymbolGap = 8;
constexpr int BodyGap = 8;

} // namespace

ChatCard::ChatCard(Theme& theme, const QString& symbol, QWidget* parent)
    : ThemedWidget(theme, parent)
    , m_symbol(symbol)
    , m_column(new QVBoxLayout(this))
{
    m_column->setContentsMargins(Padding.left(), Padding.top() + HeadHeight + BodyGap,
                                 Padding.right(), Padding.bottom());
    m_column->setSpacing(BodyGap);
}

void ChatCard::setTitle(const QString& title)
{
    m_title = title;
    setAccessibleName(title);
    update();
}

void ChatCard::setHint(const QString& hint)
{
    m_hint = hint;
    update();
}

void ChatCard::setSymbol(const QString& symbol)
{
    m_symbol = symbol;
    update();
}

void ChatCard::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    Shape::fill(painter, rect(), Measure::CardRadius, tokens().raised);
    Shape::edgeInside(painter, rect(), Measure::CardRadius, tokens().waitingEdge);

    QRectF head = QRectF(rect()).marginsRemoved(Padding);
    head.setHeight(HeadHeight);
    const QRectF symbol(head.left(), head.top() + (HeadHeight - Measure::RowIcon) / 2.0,
                        Measure::RowIcon, Measure::RowIcon);
    Icon::draw(painter, symbol, m_symbol, tokens().waiting);
    const double hintWidth =
        m_hint.isEmpty() ? 0 : TextLine::width(TextRole::Caption, m_hint) + Measure::Space3;
    TextLine::draw(painter, head.adjusted(Measure::RowIcon + SymbolGap, 0, -hintWidth, 0),
                   TextRole::CardTitle, tokens().label, m_title);
    TextLine::draw(painter, head, TextRole::Caption, tokens().ink3, m_hint, Qt::ElideRight,
                   Qt::AlignRight);
}

} // namespace Bralto
