#pragma once

#include "Kovalt/Color.h"
#include "Kovalt/ProgressReport.h"
#include "Kovalt/TerminalOptions.h"
#include "Kovalt/WindowCommand.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Kovalt {

class Buffer;
class Terminal;

/// Whom a terminal tells what happened and asks what it can't know. Called on the thread that
/// drives the terminal, mostly while it is fed. Views end with the call. None of these may throw,
/// feed the terminal or destroy it; `resize` may be called from `windowCommand`.
class TerminalDelegate {
public:
    virtual ~TerminalDelegate() = default;

    virtual void showCursor(Terminal& /*source*/) {}
    virtual void hideCursor(Terminal& /*source*/) {}
    virtual void setTerminalTitle(Terminal& /*source*/, const std::string& /*title*/) {}
    virtual void setTerminalIconTitle(Terminal& /*source*/, const std::string& /*title*/) {}
    /// The bytes of the answer; none if the terminal shall answer what it can by itself.
    virtual std::optional<std::string> windowCommand(Terminal& /*source*/,
                                                     const WindowManipulationCommand& /*command*/)
    {
        return std::nullopt;
    }
    /// The program has changed the number of columns.
    virtual void sizeChanged(Terminal& /*source*/) {}
    /// Bytes for the program: answers, mouse and focus events.
    virtual void send(Terminal& source, std::span<const std::uint8_t> data) = 0;
    virtual void scrolled(Terminal& /*source*/, int /*yDisp*/) {}
    virtual void linefeed(Terminal& /*source*/) {}
    virtual void bufferActivated(Terminal& /*source*/) {}
    virtual void synchronizedOutputChanged(Terminal& /*source*/, bool /*active*/) {}
    virtual void bell(Terminal& /*source*/) {}
    virtual void selectionChanged(Terminal& /*source*/) {}
    /// Whether the program may read the clipboard and files, and set the directory.
    [[nodiscard]] virtual bool isProcessTrusted(Terminal& /*source*/) { return true; }
    /// Width and height.
    [[nodiscard]] virtual std::optional<std::pair<int, int>> cellSizeInPixels(Terminal& /*source*/)
    {
        return std::nullopt;
    }
    virtual void mouseModeChanged(Terminal& source) = 0;
    virtual void cursorStyleChanged(Terminal& /*source*/, CursorStyle /*newStyle*/) {}
    virtual void hostCurrentDirectoryUpdated(Terminal& /*source*/) {}
    virtual void hostCurrentDocumentUpdated(Terminal& /*source*/) {}
    /// A palette entry; none means all of them.
    virtual void colorChanged(Terminal& /*source*/, std::optional<int> /*index*/) {}
    virtual void setForegroundColor(Terminal& /*source*/, Color /*color*/) {}
    virtual void setBackgroundColor(Terminal& /*source*/, Color /*color*/) {}
    /// None means the colour of the text under it.
    virtual void setCursorColor(Terminal& /*source*/, std::optional<Color> /*color*/) {}
    /// Foreground and background as they are shown; none if the terminal's own are.
    [[nodiscard]] virtual std::optional<std::pair<Color, Color>> getColors(Terminal& /*source*/)
    {
        return std::nullopt;
    }
    virtual void iTermContent(Terminal& /*source*/, std::string_view /*content*/) {}
    virtual void clipboardCopy(Terminal& /*source*/, std::span<const std::uint8_t> /*content*/) {}
    [[nodiscard]] virtual std::optional<std::vector<std::uint8_t>>
    clipboardRead(Terminal& /*source*/)
    {
        return std::nullopt;
    }
    virtual void notify(Terminal& /*source*/, std::string_view /*title*/, std::string_view /*body*/)
    {
    }
    virtual void progressReport(Terminal& /*source*/, const ProgressReport& /*report*/) {}
    /// A picture of 4 bytes a pixel: red, green, blue, alpha.
    virtual void createImageFromBitmap(Terminal& /*source*/,
                                       std::span<const std::uint8_t> /*bytes*/, int /*width*/,
                                       int /*height*/)
    {
    }
    /// A picture in a file format; the sizes are as the program wrote them.
    virtual void createImage(Terminal& /*source*/, std::span<const std::uint8_t> /*data*/,
                             std::string_view /*width*/, std::string_view /*height*/,
                             bool /*preserveAspectRatio*/)
    {
    }
};

/// What marks text on the screen and moves along when rows move in place.
class TerminalSelection {
public:
    /// The rows `top` to `bottom` of a buffer's ring have moved by `lines`, upwards if it is
    /// negative; what passed their edge is lost.
    virtual void adjustForInPlaceScroll(const Buffer& buffer, int top, int bottom, int lines) = 0;

protected:
    ~TerminalSelection() = default;
};

} // namespace Kovalt
