#pragma once

#include "Kovalt/WindowCommand.h"

#include <optional>
#include <string>

namespace KovaltTool {

struct Extent {
    int width = 0;
    int height = 0;
    bool operator==(const Extent&) const = default;
};

/// The window that a terminal without one keeps up: its state, place and size on a screen of
/// 240 by 75 cells of 8 by 16 pixels, or what it needs when it opens. It has no frame, so the text
/// area is all of it.
class PretendWindow {
public:
    static constexpr Extent Cell{8, 16};
    static constexpr Extent UsualScreen{1920, 1200};

    /// `cols` by `rows` at the screen's corner.
    PretendWindow(int cols, int rows);

    [[nodiscard]] int cols() const { return m_size.width / Cell.width; }
    [[nodiscard]] int rows() const { return m_size.height / Cell.height; }

    /// Does what a program asks. The parameters of the answer's CSI ... t if it asked for one.
    std::optional<std::string> handle(const Kovalt::WindowManipulationCommand& command);

private:
    struct Place {
        int x = 0;
        int y = 0;
        Extent size;
    };

    void resizeToCells(int cols, int rows);
    void resizeToPixels(int height, int width);
    void maximize(bool horizontally, bool vertically);
    void restore(std::optional<Place>& former);
    void setFullScreen(bool on);
    [[nodiscard]] std::optional<std::string>
    report(Kovalt::WindowManipulationCommand::Kind kind) const;

    int m_x = 0;
    int m_y = 0;
    Extent m_size;
    Extent m_screen;
    bool m_isIconified = false;
    std::optional<Place> m_normal;           ///< Before it was maximized.
    std::optional<Place> m_beforeFullScreen; ///< While it fills the screen.
};

} // namespace KovaltTool
