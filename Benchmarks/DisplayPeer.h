#pragma once

#include <QPoint>
#include <QRect>

#include <cstdint>
#include <memory>
#include <vector>

struct xcb_connection_t;

namespace Bralto {

/// Another client of the X server that a window is shown on: it types and clicks as the server
/// itself would, and sees what really is on the screen. One thread at a time.
class DisplayPeer {
public:
    explicit DisplayPeer(std::uint32_t window);

    /// The left button, down and up. In device pixels of the window.
    void click(const QPoint& at);
    /// A key, down and up, by its number on the keyboard.
    void type(std::uint8_t key);
    /// Gives the window the keyboard, where no window manager does.
    void focus();
    /// What the server shows there; empty if it can't tell. Waits for the server.
    [[nodiscard]] std::vector<std::uint8_t> pixels(const QRect& area);

private:
    struct Closer {
        void operator()(xcb_connection_t* connection) const;
    };

    const std::unique_ptr<xcb_connection_t, Closer> m_connection;
    const std::uint32_t m_window;
    std::uint32_t m_root = 0;
};

} // namespace Bralto
