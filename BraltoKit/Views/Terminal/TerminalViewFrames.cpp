// How a terminal's view follows its session: frames, and what is shown of them.

#include "Views/Kit/Ink.h"
#include "Views/Kit/Shape.h"
#include "Views/Terminal/TerminalAccessible.h"
#include "Views/Terminal/TerminalScrollBar.h"
#include "Views/Terminal/TerminalView.h"

#include <QPaintEvent>
#include <QPainter>
#include <QRegion>
#include <QWindow>

#include <algorithm>

namespace Bralto {
namespace {

constexpr double BellInk = 0.7;

CursorLook::Shape shapeOf(Kovalt::CursorStyle style)
{
    using enum Kovalt::CursorStyle;
    switch (style) {
    case BlinkBlock:
    case SteadyBlock:
        break;
    case BlinkUnderline:
    case SteadyUnderline:
        return CursorLook::Shape::Underline;
    case BlinkBar:
    case SteadyBar:
        return CursorLook::Shape::Bar;
    }
    return CursorLook::Shape::Block;
}

} // namespace

bool TerminalView::isOnScreen() const
{
    if (!isVisible())
        return false;
    const QWindow* const handle = window()->windowHandle();
    return handle && handle->isExposed();
}

void TerminalView::contentsMoved()
{
    // The next paint event reads what was not read now.
    m_isStale = true;
    if (!isOnScreen() || m_session.terminal().isSynchronizedOutputActive())
        return;
    m_pacer.request();
}

void TerminalView::takeFrame()
{
    m_isStale = false;
    const Kovalt::Terminal& terminal = m_session.terminal();
    m_session.selection().sync();
    if (m_session.search().count() > 0)
        m_session.search().sync();
    readPalette();
    readCursor();

    TerminalRows::Source source{.terminal = terminal,
                                .selection = &m_session.selection(),
                                .search = &m_session.search(),
                                .link = m_link ? &*m_link : nullptr,
                                .cursorRow = m_cursorCell.row,
                                .cursor = m_cursor,
                                .preedit = std::nullopt};
    if (!m_preedit.isEmpty())
        source.preedit = PreeditLook{m_cursorCell.col, m_preedit, m_preeditCursor};
    showRows(m_rows.refresh(m_painter, source));

    const Kovalt::Buffer& buffer = terminal.buffer();
    m_scrollBar->setRange(std::max(0, buffer.yBase), terminal.rows(), buffer.yDisp);
    TerminalAccessible::noteFrame(*this);
}

void TerminalView::readPalette()
{
    const Kovalt::Terminal& terminal = m_session.terminal();
    const bool isReversed = terminal.modes().reverseColors;
    const TerminalPalette palette(terminal.colors(), isReversed);
    const TerminalInks inks = m_look.inksFor(terminal.colors(), isReversed);
    if (palette == m_painter.palette() && inks == m_painter.inks())
        return;
    m_painter.setPalette(palette);
    m_painter.setInks(inks);
    m_rows.forget();
    update();
}

void TerminalView::readCursor()
{
    const Kovalt::Terminal& terminal = m_session.terminal();
    const Kovalt::Buffer& buffer = terminal.buffer();
    const Kovalt::Position before = m_cursorCell;
    m_cursorCell = {buffer.standingColumn(), buffer.y + buffer.yBase - buffer.yDisp};
    m_cursor = std::nullopt;
    if (const auto cell = terminal.getCharData(m_cursorCell.col, m_cursorCell.row)) {
        CursorLook look{m_cursorCell.col, std::max<int>(1, cell->width),
                        hasFocus() ? shapeOf(terminal.cursorStyle()) : CursorLook::Shape::Outline};
        if (cell->width == 0 && look.column > 0) {
            --look.column; // On the right half of a wide character.
            look.columns = 2;
        }
        if (!terminal.modes().cursorHidden && m_blink.isShown())
            m_cursor = look;
    }
    if (m_cursorCell != before && hasFocus())
        updateMicroFocus(Qt::ImCursorRectangle);
}

void TerminalView::showRows(const std::vector<int>& rows)
{
    if (int(rows.size()) == m_geometry.rows) {
        update(rectOfCells());
        return;
    }
    for (std::size_t i = 0; i < rows.size();) {
        std::size_t end = i + 1;
        while (end < rows.size() && rows[end] == rows[end - 1] + 1)
            ++end;
        QRectF area = m_geometry.rect(0, rows[i], m_geometry.cols);
        area.setHeight(double(end - i) * m_geometry.cell.height());
        update(area.toAlignedRect());
        i = end;
    }
}

QRect TerminalView::rectOfCells() const
{
    return QRectF(m_geometry.origin, QSizeF(m_geometry.cols * m_geometry.cell.width(),
                                            m_geometry.rows * m_geometry.cell.height()))
        .toAlignedRect();
}

void TerminalView::paintEvent(QPaintEvent* event)
{
    followRatio();
    // While a program holds its output back the picture stays, unless there is none.
    if (m_rows.isEmpty() || (m_isStale && !m_session.terminal().isSynchronizedOutputActive()))
        takeFrame();
    QPainter painter(this);
    paintPadding(painter, event->region());

    // The picture is shown pixel by pixel: no unit, however many pixels it has, may blur it.
    painter.save();
    const QTransform toDevice = painter.deviceTransform();
    const QPoint at = toDevice.map(m_geometry.origin).toPoint();
    painter.setWorldTransform(toDevice.inverted(), true);
    m_rows.draw(painter, at);
    painter.restore();

    if (m_bell.strength() > 0) {
        Shape::ring(painter, QRectF(rect()), 0, Measure::FocusRing,
                    Ink::faded(m_look.accent, BellInk * m_bell.strength()));
    }
}

void TerminalView::paintPadding(QPainter& painter, const QRegion& region) const
{
    // At a fraction of a pixel the outermost pixels belong to both.
    const QRegion padding = region.subtracted(rectOfCells().adjusted(1, 1, -1, -1));
    for (const QRect& part : padding)
        painter.fillRect(part, ground());
}

void TerminalView::showEvent(QShowEvent* event)
{
    ThemedWidget::showEvent(event);
    followRatio();
    followBlinking();
}

void TerminalView::hideEvent(QHideEvent* event)
{
    ThemedWidget::hideEvent(event);
    m_pacer.cancel();
    m_blink.setBlinking(false);
    // A hidden view holds no pixels; the next paint event makes them anew.
    m_rows.release();
    m_isStale = true;
}

} // namespace Bralto
