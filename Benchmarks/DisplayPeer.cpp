#include "Benchmarks/DisplayPeer.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace Bralto {
namespace {

template <typename Event>
void send(xcb_connection_t* connection, std::uint32_t window, std::uint32_t mask, Event& event)
{
    xcb_send_event(connection, 0, window, mask, reinterpret_cast<const char*>(&event));
}

} // namespace

void DisplayPeer::Closer::operator()(xcb_connection_t* connection) const
{
    xcb_disconnect(connection);
}

DisplayPeer::DisplayPeer(std::uint32_t window)
    : m_connection(xcb_connect(nullptr, nullptr))
    , m_window(window)
{
    if (xcb_connection_has_error(m_connection.get()) == 0)
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data->root;
}

void DisplayPeer::click(const QPoint& at)
{
    xcb_button_press_event_t event{};
    event.detail = XCB_BUTTON_INDEX_1;
    event.root = m_root;
    event.event = m_window;
    event.event_x = event.root_x = std::int16_t(at.x());
    event.event_y = event.root_y = std::int16_t(at.y());
    event.same_screen = 1;
    event.response_type = XCB_BUTTON_PRESS;
    send(m_connection.get(), m_window, XCB_EVENT_MASK_NO_EVENT, event);
    event.response_type = XCB_BUTTON_RELEASE;
    event.state = XCB_BUTTON_MASK_1;
    send(m_connection.get(), m_window, XCB_EVENT_MASK_NO_EVENT, event);
    xcb_flush(m_connection.get());
}

void DisplayPeer::type(std::uint8_t key)
{
    xcb_key_press_event_t event{};
    event.detail = key;
    event.root = m_root;
    event.event = m_window;
    event.same_screen = 1;
    event.response_type = XCB_KEY_PRESS;
    send(m_connection.get(), m_window, XCB_EVENT_MASK_NO_EVENT, event);
    event.response_type = XCB_KEY_RELEASE;
    send(m_connection.get(), m_window, XCB_EVENT_MASK_NO_EVENT, event);
    xcb_flush(m_connection.get());
}

void DisplayPeer::focus()
{
    xcb_set_input_focus(m_connection.get(), XCB_INPUT_FOCUS_PARENT, m_window, XCB_CURRENT_TIME);
    xcb_flush(m_connection.get());
}

std::vector<std::uint8_t> DisplayPeer::pixels(const QRect& area)
{
    const auto cookie =
        xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_window,
                      std::int16_t(area.x()), std::int16_t(area.y()), std::uint16_t(area.width()),
                      std::uint16_t(area.height()), ~std::uint32_t{0});
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(m_connection.get(), cookie, nullptr), &std::free);
    if (!reply)
        return {};
    const std::uint8_t* const data = xcb_get_image_data(reply.get());
    return {data, data + xcb_get_image_data_length(reply.get())};
}

} // namespace Bralto
