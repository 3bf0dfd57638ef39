#include "App/Compositing.h"

#include <QGuiApplication>

#include <cstdlib>

#include <xcb/xcb.h>

namespace Bralto::Compositing {

namespace {

/// A reply of the server, which is freed with it.
template <typename Reply>
struct Freed {
    void operator()(Reply* reply) const { std::free(reply); }
};
template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, Freed<Reply>>;

} // namespace

bool isActive()
{
    const auto* server = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!server || !server->connection())
        return true;
    xcb_connection_t* connection = server->connection();
    // The manager of a screen owns this selection; windows open on the first one.
    static constexpr std::string_view Name = "_NET_WM_CM_S0";
    const ReplyPointer<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, Name.size(), Name.data()), nullptr));
    if (!atom)
        return true;
    const ReplyPointer<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, atom->atom), nullptr));
    return !owner || owner->owner != XCB_NONE;
}

} // namespace Bralto::Compositing
