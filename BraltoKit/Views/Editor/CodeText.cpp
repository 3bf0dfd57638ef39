#include "Views/Editor/CodeText.h"

#include "Views/Kit/CodeLine.h"
#include "Views/Kit/Fonts.h"
#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/SlimScrollBar.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <cmath>

namespace Bralto {
namespace {

constexpr int RightMargin = 14;
constexpr int DigitsInGutter = 3;

bool isWordPart(QChar character)
{
    return character.isLetterOrNumber() || character == u'_';
}

} // namespace

CodeText::CodeText(Theme& theme, QWidget* parent)
    : QAbstractScrollArea(parent)
    , m_theme(theme)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Text"));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setCursor(Qt::IBeamCursor);
    viewport()->setAutoFillBackground(false);
    setAttribute(Qt::WA_NoSystemBackground);
    new SlimScrollBar(theme, Ground::Sheet, *this);
    connect(&theme, &Theme::changed, viewport(), qOverload<>(&QWidget::update));
}

double CodeText::columnWidth() const
{
    return CodeLine::columnWidth(Bralto::font(TextRole::Code, m_zoom));
}

int CodeText::rowHeight() const
{
    return lineHeight(TextRole::Code, m_zoom);
}

int CodeText::textLeft() const
{
    const auto digits = QString::number(m_rows.lineCount()).size();
    const double digit =
        QFontMetricsF(Bralto::font(TextRole::GutterNumber, m_zoom)).horizontalAdvance(u'0');
    const double more = std::max<double>(0, double(digits - DigitsInGutter)) * digit;
    return int(std::ceil(Measure::Gutter * m_zoom + more));
}

void CodeText::setText(const QString& text)
{
    m_rows = TextRows(text);
    layOut();
    const auto within = [this](TextRows::Place place) {
        place.line = std::clamp(place.line, 0, m_rows.lineCount() - 1);
        place.offset = std::min(place.offset, m_rows.line(place.line).size());
        return place;
    };
    m_cursor = within(m_cursor);
    m_anchor = within(m_anchor);
    viewport()->update();
}

void CodeText::setZoom(double zoom)
{
    if (m_zoom == zoom)
        return;
    m_zoom = zoom;
    layOut();
    viewport()->update();
}

void CodeText::setCursor(TextRows::Place place)
{
    if (place.line < 0 || place.line >= m_rows.lineCount())
        return;
    place.offset = std::clamp<qsizetype>(place.offset, 0, m_rows.line(place.line).size());
    moveTo(place, Anchor::Follows);
}

void CodeText::layOut()
{
    const double room = viewport()->width() - textLeft() - RightMargin;
    // The text that is at the top stays there.
    const int line = m_rows.lineOfRow(verticalScrollBar()->value() / rowHeight());
    const bool atTop = verticalScrollBar()->value() == 0;
    m_rows.wrap(std::max(1, int(room / columnWidth())));
    updateRange();
    if (!atTop)
        verticalScrollBar()->setValue(m_rows.firstRow(line) * rowHeight());
}

void CodeText::updateRange()
{
    const int height = Measure::TextTop + m_rows.rowCount() * rowHeight() + Measure::TextBottom;
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setSingleStep(rowHeight());
    verticalScrollBar()->setRange(0, std::max(0, height - viewport()->height()));
}

void CodeText::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    layOut();
}

void CodeText::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    const int scrolled = verticalScrollBar()->value() - Measure::TextTop;
    const int first = std::max(0, (event->rect().top() + scrolled) / rowHeight());
    const int last =
        std::min(m_rows.rowCount() - 1, (event->rect().bottom() + scrolled) / rowHeight());
    for (int at = first; at <= last; ++at) {
        const TextRows::Row row = m_rows.row(at);
        const QRectF band(0, at * rowHeight() - scrolled, viewport()->width(), rowHeight());
        paintGutter(painter, row, band);
        paintRow(painter, row, band);
    }
}

void CodeText::paintGutter(QPainter& painter, const TextRows::Row& row, const QRectF& band) const
{
    const Tokens& tokens = m_theme.tokens();
    const bool isCurrent = row.line == m_cursor.line;
    if (isCurrent)
        painter.fillRect(band, tokens.hover);
    if (row.rowInLine > 0)
        return;
    painter.setFont(Bralto::font(TextRole::GutterNumber, m_zoom));
    painter.setPen(isCurrent ? tokens.label : tokens.ink3);
    painter.drawText(QRectF(0, band.top(), textLeft() - Measure::GutterRight, band.height()),
                     Qt::AlignRight | Qt::AlignVCenter, QString::number(row.line + 1));
}

void CodeText::paintSelection(QPainter& painter, const TextRows::Row& row,
                              const std::vector<RowPiece>& pieces, const QRectF& band) const
{
    const TextRows::Place start = std::min(m_cursor, m_anchor);
    const TextRows::Place end = std::max(m_cursor, m_anchor);
    const TextRows::Place rowStart{row.line, row.offset};
    const TextRows::Place rowEnd{row.line, row.offset + row.text.size()};
    if (start == end || end <= rowStart || rowEnd < start)
        return;
    const double column = columnWidth();
    const double from =
        start <= rowStart ? 0 : columnAt(pieces, start.offset - row.offset) * column;
    // A selected line break shows as half a column.
    const double to = end > rowEnd ? (columnAt(pieces, row.text.size()) + 0.5) * column
                                   : columnAt(pieces, end.offset - row.offset) * column;
    painter.fillRect(QRectF(textLeft() + from, band.top(), to - from, band.height()),
                     m_theme.tokens().selection);
}

void CodeText::paintRow(QPainter& painter, const TextRows::Row& row, const QRectF& band) const
{
    const std::vector<RowPiece> pieces = rowPieces(row.text);
    paintSelection(painter, row, pieces, band);
    const QFont face = Bralto::font(TextRole::Code, m_zoom);
    painter.setPen(m_theme.tokens().label);
    const QFontMetricsF metrics(face);
    const double baseline = band.top() + (band.height() + metrics.ascent() - metrics.descent()) / 2;
    for (const RowPiece& piece : pieces) {
        const QPointF origin(textLeft() + piece.column * columnWidth(), baseline);
        if (!piece.isVisible)
            continue;
        if (piece.isSimple) {
            CodeLine::draw(painter, origin, piece.text, face);
        } else {
            painter.setFont(face);
            painter.drawText(origin, piece.text.toString());
        }
    }

    const qsizetype caret = m_cursor.offset - row.offset;
    const bool isHere = row.line == m_cursor.line && hasFocus() &&
                        m_rows.rowOf(m_cursor) == m_rows.firstRow(row.line) + row.rowInLine;
    if (isHere)
        painter.fillRect(QRectF(textLeft() + columnAt(pieces, caret) * columnWidth(),
                                band.top() + 1, Measure::Caret, band.height() - 2),
                         m_theme.tokens().accentInk);
}

TextRows::Place CodeText::placeAt(const QPoint& point) const
{
    const int y = point.y() + verticalScrollBar()->value() - Measure::TextTop;
    const int row = int(std::floor(double(y) / rowHeight()));
    return m_rows.placeAt(row, qRound((point.x() - textLeft()) / columnWidth()));
}

void CodeText::moveTo(TextRows::Place place, Anchor anchor)
{
    const bool moved = place != m_cursor;
    m_cursor = place;
    if (anchor == Anchor::Follows)
        m_anchor = place;
    m_wantedColumn = -1;
    reveal(place);
    viewport()->update();
    if (moved)
        emit cursorChanged(place);
}

void CodeText::moveByRows(int rows, Anchor anchor)
{
    const int column = m_wantedColumn >= 0 ? m_wantedColumn : m_rows.columnOf(m_cursor);
    moveTo(m_rows.placeAt(m_rows.rowOf(m_cursor) + rows, column), anchor);
    m_wantedColumn = column;
}

void CodeText::reveal(TextRows::Place place)
{
    const int top = Measure::TextTop + m_rows.rowOf(place) * rowHeight();
    QScrollBar* bar = verticalScrollBar();
    if (top < bar->value())
        bar->setValue(top - Measure::TextTop);
    else if (top + rowHeight() > bar->value() + viewport()->height())
        bar->setValue(top + rowHeight() - viewport()->height());
}

void CodeText::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        moveTo(placeAt(event->position().toPoint()),
               event->modifiers() & Qt::ShiftModifier ? Anchor::Stays : Anchor::Follows);
}

void CodeText::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() & Qt::LeftButton)
        moveTo(placeAt(event->position().toPoint()), Anchor::Stays);
}

void CodeText::mouseDoubleClickEvent(QMouseEvent* event)
{
    const TextRows::Place place = placeAt(event->position().toPoint());
    const QStringView line = m_rows.line(place.line);
    qsizetype start = place.offset;
    qsizetype end = place.offset;
    while (start > 0 && isWordPart(line[start - 1]))
        --start;
    while (end < line.size() && isWordPart(line[end]))
        ++end;
    m_anchor = {place.line, start};
    moveTo({place.line, end}, Anchor::Stays);
}

bool CodeText::moveByKey(QKeyEvent& event)
{
    const Anchor anchor = event.modifiers() & Qt::ShiftModifier ? Anchor::Stays : Anchor::Follows;
    const bool far = event.modifiers() & Qt::ControlModifier;
    const int page = std::max(1, viewport()->height() / rowHeight() - 1);
    const QStringView line = m_rows.line(m_cursor.line);
    switch (event.key()) {
    case Qt::Key_Up:
        moveByRows(-1, anchor);
        return true;
    case Qt::Key_Down:
        moveByRows(1, anchor);
        return true;
    case Qt::Key_PageUp:
        moveByRows(-page, anchor);
        return true;
    case Qt::Key_PageDown:
        moveByRows(page, anchor);
        return true;
    case Qt::Key_Home:
        moveTo(far ? TextRows::Place{} : TextRows::Place{m_cursor.line, 0}, anchor);
        return true;
    case Qt::Key_End:
        moveTo(far ? m_rows.end() : TextRows::Place{m_cursor.line, line.size()}, anchor);
        return true;
    case Qt::Key_Left:
        if (m_cursor.offset > 0)
            moveTo({m_cursor.line, m_cursor.offset - 1}, anchor);
        else if (m_cursor.line > 0)
            moveTo({m_cursor.line - 1, m_rows.line(m_cursor.line - 1).size()}, anchor);
        return true;
    case Qt::Key_Right:
        if (m_cursor.offset < line.size())
            moveTo({m_cursor.line, m_cursor.offset + 1}, anchor);
        else if (m_cursor.line + 1 < m_rows.lineCount())
            moveTo({m_cursor.line + 1, 0}, anchor);
        return true;
    default:
        return false;
    }
}

void CodeText::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy))
        copy();
    else if (event->matches(QKeySequence::SelectAll))
        selectAll();
    else if (!moveByKey(*event))
        QAbstractScrollArea::keyPressEvent(event);
}

void CodeText::contextMenuEvent(QContextMenuEvent* event)
{
    PopupMenu menu(m_theme, this);
    QAction* copyAction =
        menu.addAction(tr("Copy\t%1").arg(QKeySequence(QKeySequence::Copy).toString()));
    copyAction->setEnabled(m_cursor != m_anchor);
    connect(copyAction, &QAction::triggered, this, &CodeText::copy);
    QAction* allAction =
        menu.addAction(tr("Select All\t%1").arg(QKeySequence(QKeySequence::SelectAll).toString()));
    connect(allAction, &QAction::triggered, this, &CodeText::selectAll);
    menu.exec(event->globalPos());
}

QString CodeText::selectedText() const
{
    return m_rows.between(m_anchor, m_cursor);
}

void CodeText::selectAll()
{
    m_anchor = {};
    m_cursor = m_rows.end();
    viewport()->update();
    emit cursorChanged(m_cursor);
}

void CodeText::copy() const
{
    if (m_cursor != m_anchor)
        QGuiApplication::clipboard()->setText(selectedText());
}

void CodeText::focusInEvent(QFocusEvent* event)
{
    viewport()->update();
    QAbstractScrollArea::focusInEvent(event);
}

void CodeText::focusOutEvent(QFocusEvent* event)
{
    viewport()->update();
    QAbstractScrollArea::focusOutEvent(event);
}

} // namespace Bralto
