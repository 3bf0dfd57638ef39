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
        restore();
        break;
    case MaximizeWindow:
        enlarge(true, true);
        break;
    case MaximizeWindowVertically:
        enlarge(false, true);
        break;
    case MaximizeWindowHorizontally:
        enlarge(true, false);
        break;
    case UndoFullScreen:
        setFullScreen(false);
        break;
    case SwitchToFullScreen:
        setFullScreen(true);
        break;
    case ToggleFullScreen:
        setFullScreen(!m_isFullScreen);
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
        return numbers(5, Screen.height, Screen.width);
    case ReportCellSizeInPixels:
        return numbers(6, Cell.height, Cell.width);
    case ReportTextAreaCharacters:
        return numbers(8, rows(), cols());
    case ReportScreenSizeCharacters:
        return numbers(9, Screen.height / Cell.height, Screen.width / Cell.width);
    default:
        return std::nullopt; // Titles, which the terminal knows, and what shows nowhere.
    }
}

void PretendWindow::resizeToCells(int cols, int rows)
{
    resizeToPixels(rows * Cell.height, cols * Cell.width);
}

/// 0 leaves a side as it is. A window is no larger than its screen, and holds whole cells.
void PretendWindow::resizeToPixels(int height, int width)
{
    if (height > 0)
        m_size.height = std::clamp(height, Cell.height, Screen.height) / Cell.height * Cell.height;
    if (width > 0)
        m_size.width = std::clamp(width, 2 * Cell.width, Screen.width) / Cell.width * Cell.width;
}

void PretendWindow::enlarge(bool horizontally, bool vertically)
{
    if (!m_normal)
        m_normal = Place{m_x, m_y, m_size};
    if (horizontally) {
        m_x = 0;
        m_size.width = Screen.width;
    }
    if (vertically) {
        m_y = 0;
        m_size.height = Screen.height;
    }
}

void PretendWindow::restore()
{
    if (!m_normal)
        return;
    m_x = m_normal->x;
    m_y = m_normal->y;
    m_size = m_normal->size;
    m_normal.reset();
}

void PretendWindow::setFullScreen(bool on)
{
    if (m_isFullScreen == on)
        return;
    m_isFullScreen = on;
    if (on)
        enlarge(true, true);
    else
        restore();
}

} // namespace KovaltTool
