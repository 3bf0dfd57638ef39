#include "PretendWindow.h"

#include <algorithm>

namespace KovaltTool {
namespace {

std::string numbers(int kind, int first, int second)
{
    return std::to_string(kind) + ';' + std::to_string(first) + ';' + std::to_string(second);
}

} // namespace

PretendWindow::PretendWindow(int cols, int rows)
    : m_size{cols * Cell.width, rows * Cell.height}
    , m_screen{std::max(m_size.width, UsualScreen.width),
               std::max(m_size.height, UsualScreen.height)}
{
}

std::optional<std::string> PretendWindow::handle(const Kovalt::WindowManipulationCommand& command)
{
    using enum Kovalt::WindowManipulationCommand::Kind;
    switch (command.kind) {
    case DeiconifyWindow:
        m_isIconified = false;
        break;
    case IconifyWindow:
        m_isIconified = true;
        break;
    case MoveWindowTo:
        m_x = command.first;
        m_y = command.second;
        break;
    case ResizeWindowTo:
        resizeToPixels(command.first, command.second);
        break;
    case ResizeTo:
        resizeToCells(command.first, command.second);
        break;
    case RestoreMaximizedWindow:
        restore(m_normal);
        break;
    case MaximizeWindow:
        maximize(true, true);
        break;
    case MaximizeWindowVertically:
        maximize(false, true);
        break;
    case MaximizeWindowHorizontally:
        maximize(true, false);
        break;
    case UndoFullScreen:
        setFullScreen(false);
        break;
    case SwitchToFullScreen:
        setFullScreen(true);
        break;
    case ToggleFullScreen:
        setFullScreen(!m_beforeFullScreen);
        break;
    default:
        return report(command.kind);
    }
    return std::nullopt;
}

std::optional<std::string> PretendWindow::report(Kovalt::WindowManipulationCommand::Kind kind) const
{
    using enum Kovalt::WindowManipulationCommand::Kind;
    switch (kind) {
    case ReportTerminalState:
        return m_isIconified ? "2" : "1";
    case ReportTerminalPosition:
    case ReportTextAreaPosition:
        return numbers(3, m_x, m_y);
    case ReportTextAreaPixelDimension:
    case ReportTerminalWindowPixelDimension:
        return numbers(4, m_size.height, m_size.width);
    case ReportSizeOfScreenInPixels:
        return numbers(5, m_screen.height, m_screen.width);
    case ReportCellSizeInPixels:
        return numbers(6, Cell.height, Cell.width);
    case ReportTextAreaCharacters:
        return numbers(8, rows(), cols());
    case ReportScreenSizeCharacters:
        return numbers(9, m_screen.height / Cell.height, m_screen.width / Cell.width);
    default:
        return std::nullopt; // Titles, which the terminal knows, and what shows nowhere.
    }
}

void PretendWindow::resizeToCells(int cols, int rows)
{
    resizeToPixels(rows * Cell.height, cols * Cell.width);
}

/// 0 leaves a side as it is. A window is no larger than its screen, and holds whole cells. With a
/// size of its own it neither fills the screen any more nor is there anything to go back to.
void PretendWindow::resizeToPixels(int height, int width)
{
    m_normal.reset();
    m_beforeFullScreen.reset();
    if (height > 0)
        m_size.height =
            std::clamp(height, Cell.height, m_screen.height) / Cell.height * Cell.height;
    if (width > 0)
        m_size.width = std::clamp(width, 2 * Cell.width, m_screen.width) / Cell.width * Cell.width;
}

void PretendWindow::maximize(bool horizontally, bool vertically)
{
    if (!m_normal)
        m_normal = Place{m_x, m_y, m_size};
    if (horizontally) {
        m_x = 0;
        m_size.width = m_screen.width;
    }
    if (vertically) {
        m_y = 0;
        m_size.height = m_screen.height;
    }
}

void PretendWindow::restore(std::optional<Place>& former)
{
    if (!former)
        return;
    m_x = former->x;
    m_y = former->y;
    m_size = former->size;
    former.reset();
}

void PretendWindow::setFullScreen(bool on)
{
    if (!on)
        return restore(m_beforeFullScreen);
    if (!m_beforeFullScreen)
        m_beforeFullScreen = Place{m_x, m_y, m_size};
    m_x = 0;
    m_y = 0;
    m_size = m_screen;
}

} // namespace KovaltTool
