#include "Views/Terminal/TerminalAccessible.h"

#include "Kovalt/Selection/SelectionService.h"
#include "Views/Terminal/TerminalView.h"

#include <QAccessible>

#include <algorithm>

namespace Bralto {
namespace {

QAccessibleInterface* make(const QString& /*className*/, QObject* object)
{
    auto* const view = qobject_cast<TerminalView*>(object);
    return view ? new TerminalAccessible(*view) : nullptr;
}

} // namespace

ScreenText ScreenText::of(const Kovalt::Terminal& terminal)
{
    ScreenText result;
    for (int row = 0; row < terminal.rows(); ++row) {
        const Kovalt::BufferLine* const line = terminal.getLine(row);
        const int length = line ? line->getTrimmedLength() : 0;
        for (int column = 0; column < length;) {
            const Kovalt::CharData cell = (*line)[column];
            const QString text = QString::fromStdString(terminal.graphemes().textFor(cell.code));
            result.text += text;
            result.cells.insert(result.cells.end(), std::size_t(text.size()), {column, row});
            column += std::max<int>(1, cell.width);
        }
        result.text += u'\n';
        result.cells.push_back({length, row});
    }
    return result;
}

int ScreenText::offsetOf(Kovalt::Position cell) const
{
    const auto found = std::ranges::lower_bound(cells, cell);
    if (found == cells.end())
        return std::max(0, int(cells.size()) - 1);
    return found->row > cell.row ? int(found - cells.begin()) - 1 : int(found - cells.begin());
}

TerminalAccessible::TerminalAccessible(TerminalView& view)
    : QAccessibleWidget(&view, QAccessible::Terminal)
{
}

void TerminalAccessible::install()
{
    [[maybe_unused]] static const bool once = [] {
        QAccessible::installFactory(make);
        return true;
    }();
}

void TerminalAccessible::noteFrame(TerminalView& view)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent changed(&view, QAccessible::VisibleDataChanged);
    QAccessible::updateAccessibility(&changed);
    const auto* const interface = QAccessible::queryAccessibleInterface(&view);
    const auto* const self = dynamic_cast<const TerminalAccessible*>(interface);
    if (!self)
        return;
    QAccessibleTextCursorEvent moved(&view, self->cursorPosition());
    QAccessible::updateAccessibility(&moved);
}

TerminalView& TerminalAccessible::view() const
{
    return *static_cast<TerminalView*>(widget());
}

ScreenText TerminalAccessible::screen() const
{
    return ScreenText::of(view().session().terminal());
}

void* TerminalAccessible::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TextInterface)
        return static_cast<QAccessibleTextInterface*>(this);
    return QAccessibleWidget::interface_cast(type);
}

QString TerminalAccessible::text(QAccessible::Text kind) const
{
    if (kind == QAccessible::Value)
        return screen().text;
    if (kind == QAccessible::Name)
        return view().session().title();
    return QAccessibleWidget::text(kind);
}

void TerminalAccessible::selection(int index, int* start, int* end) const
{
    *start = 0;
    *end = 0;
    const auto selected = view().session().selection().selection();
    if (index != 0 || !selected)
        return;
    const Kovalt::Buffer& buffer = view().session().terminal().buffer();
    const ScreenText shown = screen();
    const auto offset = [&](const Kovalt::TextPosition& place) {
        const std::int64_t row = place.row - buffer.linesTop - buffer.yDisp;
        if (row < 0)
            return 0;
        return shown.offsetOf({place.col, int(std::min<std::int64_t>(row, buffer.rows()))});
    };
    *start = offset(selected->range.begin);
    *end = offset(selected->range.end);
}

int TerminalAccessible::selectionCount() const
{
    return view().session().selection().selection() ? 1 : 0;
}

void TerminalAccessible::addSelection(int start, int end)
{
    const ScreenText shown = screen();
    if (start < 0 || end <= start || std::size_t(end) > shown.cells.size())
        return;
    const int top = view().session().terminal().getTopVisibleRow();
    const auto point = [&](int offset, Kovalt::CellSide side) {
        Kovalt::Position cell = shown.cells[std::size_t(offset)];
        cell.row += top;
        return Kovalt::SelectionPoint{cell, side};
    };
    Kovalt::SelectionService& service = view().session().selection();
    service.start(Kovalt::SelectionMode::Character, point(start, Kovalt::CellSide::Left));
    service.extend(point(end - 1, Kovalt::CellSide::Right));
    view().contentsMoved();
}

void TerminalAccessible::removeSelection(int index)
{
    if (index != 0)
        return;
    view().session().selection().clear();
    view().contentsMoved();
}

void TerminalAccessible::setSelection(int index, int start, int end)
{
    if (index == 0)
        addSelection(start, end);
}

int TerminalAccessible::cursorPosition() const
{
    const Kovalt::Buffer& buffer = view().session().terminal().buffer();
    return screen().offsetOf({buffer.standingColumn(), buffer.y + buffer.yBase - buffer.yDisp});
}

void TerminalAccessible::setCursorPosition(int /*position*/)
{
    // The cursor is the program's.
}

QString TerminalAccessible::text(int start, int end) const
{
    const QString all = screen().text;
    const qsizetype first = std::clamp<qsizetype>(start, 0, all.size());
    const qsizetype last = end < 0 ? all.size() : std::clamp<qsizetype>(end, first, all.size());
    return all.mid(first, last - first);
}

int TerminalAccessible::characterCount() const
{
    return int(screen().text.size());
}

QRect TerminalAccessible::characterRect(int offset) const
{
    const ScreenText shown = screen();
    if (offset < 0 || std::size_t(offset) >= shown.cells.size())
        return {};
    const Kovalt::Position cell = shown.cells[std::size_t(offset)];
    const QRect area = view().geometryOfCells().rect(cell.col, cell.row).toAlignedRect();
    return {view().mapToGlobal(area.topLeft()), area.size()};
}

int TerminalAccessible::offsetAtPoint(const QPoint& point) const
{
    return screen().offsetOf(view().geometryOfCells().cellAt(view().mapFromGlobal(point)));
}

void TerminalAccessible::scrollToSubstring(int /*start*/, int /*end*/)
{
    // Only what is in view is told.
}

QString TerminalAccessible::attributes(int offset, int* start, int* end) const
{
    *start = offset;
    *end = offset;
    return {};
}

} // namespace Bralto
