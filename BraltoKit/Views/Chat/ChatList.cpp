#include "Views/Chat/ChatList.h"

#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace Bralto {

namespace {

constexpr int Padding = 4;
constexpr int Side = 10;
constexpr int Gap = 9;

} // namespace

ChatList::ChatList(Theme& theme, const QString& name, QWidget* parent)
    : ThemedWidget(theme, parent)
{
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ChatList::setRows(QList<Row> rows, qsizetype highlight, int rowHeight)
{
    m_rows = std::move(rows);
    m_highlight = highlight;
    m_rowHeight = rowHeight;
    const qsizetype last = std::max<qsizetype>(0, m_rows.size() - visible());
    m_first = std::clamp(m_first, std::max<qsizetype>(0, highlight - visible() + 1),
                         std::max<qsizetype>(0, highlight));
    m_first = std::min(m_first, last);
    updateGeometry();
    update();
}

QSize ChatList::sizeHint() const
{
    return {240, int(visible()) * m_rowHeight + 2 * Padding};
}

void ChatList::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF panel = QRectF(rect()).adjusted(1, 1, -1, -1);
    Float::drawPanel(painter, panel, Measure::CardRadius, tokens());
    for (qsizetype index = m_first; index < std::min(m_first + visible(), m_rows.size()); ++index) {
        const Row& row = m_rows.at(index);
        const QRectF area(Padding, Padding + double(index - m_first) * m_rowHeight,
                          width() - 2.0 * Padding, m_rowHeight);
        if (index == m_highlight)
            Shape::fill(painter, area, Measure::ControlRadius, tokens().selection);
        const QRectF symbol(area.left() + Side, area.center().y() - Measure::RowIcon / 2.0,
                            Measure::RowIcon, Measure::RowIcon);
        Icon::draw(painter, symbol, row.symbol, tokens().ink2);
        QRectF text = area.adjusted(Side + Measure::RowIcon + Gap, 0, -Side, 0);
        const double name = TextLine::width(TextRole::BodyMedium, row.name);
        TextLine::draw(painter, text, TextRole::BodyMedium, tokens().label, row.name,
                       Qt::ElideMiddle);
        text.setLeft(std::min(text.left() + name + Gap, text.right()));
        if (row.detailFollows) {
            TextLine::draw(painter, text, TextRole::Secondary, tokens().ink2, row.detail,
                           Qt::ElideMiddle);
            continue;
        }
        const double detail =
            std::min(TextLine::width(TextRole::Secondary, row.detail), text.width() * 0.7);
        TextLine::draw(painter, text.adjusted(0, 0, -detail - Gap, 0), TextRole::Body,
                       index == m_highlight ? tokens().ink2 : tokens().ink3, row.hint);
        text.setLeft(text.right() - detail);
        TextLine::draw(painter, text, TextRole::Secondary, tokens().ink2, row.detail,
                       Qt::ElideRight, Qt::AlignRight);
    }
}

void ChatList::mouseReleaseEvent(QMouseEvent* event)
{
    const qsizetype row = m_first + qsizetype(event->position().y() - Padding) / m_rowHeight;
    if (row >= 0 && row < m_rows.size())
        emit picked(row);
}

void ChatList::wheelEvent(QWheelEvent* event)
{
    const qsizetype step = event->angleDelta().y() > 0 ? -1 : 1;
    m_first =
        std::clamp<qsizetype>(m_first + step, 0, std::max<qsizetype>(0, m_rows.size() - visible()));
    event->accept();
    update();
}

} // namespace Bralto
