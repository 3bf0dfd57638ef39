#pragma once

#include <cstdint>

namespace Kovalt {

/// What a program asks of the window that the terminal is in, or wants to know of it.
struct WindowManipulationCommand {
    enum class Kind : std::uint8_t {
        DeiconifyWindow,
        IconifyWindow,
        MoveWindowTo,   ///< x, y in pixels.
        ResizeWindowTo, ///< Height, width in pixels; 0 stays as it is.
        BringToFront,
        SendToBack,
        RefreshWindow,
        ResizeTo, ///< Columns, rows.
        RestoreMaximizedWindow,
        MaximizeWindow,
        MaximizeWindowVertically,
        MaximizeWindowHorizontally,
        UndoFullScreen,
        SwitchToFullScreen,
        ToggleFullScreen,
        ReportTerminalState,
        ReportTerminalPosition,
        ReportTextAreaPosition,
        ReportTextAreaPixelDimension,
        ReportTerminalWindowPixelDimension,
        ReportSizeOfScreenInPixels,
        ReportCellSizeInPixels,
        ReportTextAreaCharacters,
        ReportScreenSizeCharacters,
        ReportIconLabel,
        ReportWindowTitle
    };

    Kind kind = Kind::RefreshWindow;
    int first = 0;
    int second = 0;

    bool operator==(const WindowManipulationCommand&) const = default;
};

} // namespace Kovalt
