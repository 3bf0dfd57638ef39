#include "Platform/XkbKeyboardLayout.h"

#include <QSocketNotifier>

#include <array>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>
#define explicit explicit_ // the name of a field
#include <xcb/xkb.h>
#undef explicit

namespace Bralto {

namespace {

struct Unref {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    void operator()(void* reply) const { std::free(reply); }
};

/// The rows of a US keyboard by the scan codes of their first keys.
struct BaseRow {
    quint32 first;
    std::u32string_view characters;
};
constexpr std::array BaseRows{BaseRow{10, U"1234567890-="},
                              BaseRow{24, U"qwertyuiop[]"},
                              BaseRow{38, U"asdfghjkl;'`"},
                              BaseRow{51, U"\\zxcvbnm,./"},
                              BaseRow{65, U" "},
                              BaseRow{94, U"<"}};

char32_t baseCharacter(quint32 scanCode)
{
    for (const BaseRow& row : BaseRows) {
        if (scanCode >= row.first && scanCode - row.first < row.characters.size())
            return row.characters[scanCode - row.first];
    }
    return 0;
}

char32_t characterOf(xkb_keysym_t symbol)
{
    return char32_t(xkb_keysym_to_utf32(symbol));
}

constexpr quint16 WatchedEvents = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY |
                                  XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
constexpr quint16 WatchedMapParts =
    XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP |
    XCB_XKB_MAP_PART_EXPLICIT_COMPONENTS | XCB_XKB_MAP_PART_KEY_ACTIONS |
    XCB_XKB_MAP_PART_VIRTUAL_MODS | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
constexpr quint16 WatchedStateParts =
    XCB_XKB_STATE_PART_MODIFIER_BASE | XCB_XKB_STATE_PART_MODIFIER_LATCH |
    XCB_XKB_STATE_PART_MODIFIER_LOCK | XCB_XKB_STATE_PART_GROUP_BASE |
    XCB_XKB_STATE_PART_GROUP_LATCH | XCB_XKB_STATE_PART_GROUP_LOCK;

/// What all events of the extension begin with.
struct AnyXkbEvent {
    std::uint8_t responseType;
    std::uint8_t xkbType;
};

} // namespace

struct XkbKeyboardLayout::Keymap {
    std::unique_ptr<xkb_context, Unref> context{xkb_context_new(XKB_CONTEXT_NO_FLAGS)};
    std::unique_ptr<xkb_keymap, Unref> map;
    std::unique_ptr<xkb_state, Unref> state;

    void take(xkb_keymap* newMap, xkb_state* newState)
    {
        state.reset(newState);
        map.reset(newMap);
    }
    /// The keymap of the environment. It may fail, then keys have no characters.
    void takeNames()
    {
        if (!context)
            return;
        xkb_keymap* names =
            xkb_keymap_new_from_names(context.get(), nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS);
        take(names, names ? xkb_state_new(names) : nullptr);
    }
    [[nodiscard]] char32_t character(xkb_keycode_t key, xkb_level_index_t level) const
    {
        const xkb_layout_index_t layout = xkb_state_key_get_layout(state.get(), key);
        const xkb_keysym_t* symbols = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(map.get(), key, layout, level, &symbols);
        return count == 1 ? characterOf(symbols[0]) : 0;
    }
};

/// A connection of our own to the server, which tells when the keyboard changes.
class XkbKeyboardLayout::Server {
public:
    /// Null if the server can't be reached or knows no such keyboards.
    static std::unique_ptr<Server> connect(const QByteArray& display, Keymap& keymap)
    {
        std::unique_ptr<Server> server(new Server(display, keymap));
        return server->watch() && server->load() ? std::move(server) : nullptr;
    }

    /// Takes in what the server has told until now.
    void drain()
    {
        while (const std::unique_ptr<xcb_generic_event_t, Unref> event{
            xcb_poll_for_event(m_connection.get())})
            handle(*event);
        if (xcb_connection_has_error(m_connection.get()))
            m_notifier.reset();
        else if (m_isStale)
            load();
    }

private:
    Server(const QByteArray& display, Keymap& keymap)
        : m_keymap(keymap)
        , m_connection(xcb_connect(display.isEmpty() ? nullptr : display.constData(), nullptr))
    {
    }

    bool watch()
    {
        xcb_connection_t* connection = m_connection.get();
        if (xcb_connection_has_error(connection) ||
            !xkb_x11_setup_xkb_extension(
                connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &m_firstEvent, nullptr))
            return false;
        m_device = xkb_x11_get_core_keyboard_device_id(connection);
        if (m_device < 0)
            return false;
        xcb_xkb_select_events_details_t details{};
        details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
        details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
        details.affectState = WatchedStateParts;
        details.stateDetails = WatchedStateParts;
        xcb_xkb_select_events_aux(connection, xcb_xkb_device_spec_t(m_device), WatchedEvents, 0, 0,
                                  WatchedMapParts, WatchedMapParts, &details);
        xcb_flush(connection);
        m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection),
                                                       QSocketNotifier::Read);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                         [this] { drain(); });
        return true;
    }

    bool load()
    {
        m_isStale = false;
        if (!m_keymap.context)
            return false;
        xkb_keymap* map = xkb_x11_keymap_new_from_device(m_keymap.context.get(), m_connection.get(),
                                                         m_device, XKB_KEYMAP_COMPILE_NO_FLAGS);
        xkb_state* state =
            map ? xkb_x11_state_new_from_device(map, m_connection.get(), m_device) : nullptr;
        if (!state) {
            xkb_keymap_unref(map);
            return false;
        }
        m_keymap.take(map, state);
        return true;
    }

    void handle(const xcb_generic_event_t& event)
    {
        if ((event.response_type & 0x7F) != m_firstEvent)
            return;
        AnyXkbEvent any{};
        std::memcpy(&any, &event, sizeof any);
        if (any.xkbType != XCB_XKB_STATE_NOTIFY) {
            m_isStale = true;
            return;
        }
        xcb_xkb_state_notify_event_t changed{};
        static_assert(sizeof changed <= sizeof event);
        std::memcpy(&changed, &event, sizeof changed);
        xkb_state_update_mask(m_keymap.state.get(), changed.baseMods, changed.latchedMods,
                              changed.lockedMods, xkb_layout_index_t(changed.baseGroup),
                              xkb_layout_index_t(changed.latchedGroup), changed.lockedGroup);
    }

    Keymap& m_keymap;
    std::unique_ptr<xcb_connection_t, Unref> m_connection;
    std::unique_ptr<QSocketNotifier> m_notifier; ///< Before the connection goes.
    std::uint8_t m_firstEvent = 0;
    std::int32_t m_device = -1;
    bool m_isStale = false;
};

XkbKeyboardLayout::XkbKeyboardLayout(const std::optional<QByteArray>& display)
    : m_keymap(std::make_unique<Keymap>())
{
    if (display)
        m_server = Server::connect(*display, *m_keymap);
}

XkbKeyboardLayout::~XkbKeyboardLayout() = default;

bool XkbKeyboardLayout::followsServer() const
{
    return m_server != nullptr;
}

KeyboardLayout::Symbols XkbKeyboardLayout::symbols(quint32 scanCode, quint32 symbol) const
{
    // The notice of a change may wait behind the event that is being handled.
    if (m_server)
        m_server->drain();
    else if (!m_keymap->state)
        m_keymap->takeNames();
    Symbols symbols;
    symbols.base = baseCharacter(scanCode);
    symbols.typed = characterOf(symbol);
    if (m_keymap->state && scanCode != 0) {
        symbols.plain = m_keymap->character(scanCode, 0);
        symbols.shifted = m_keymap->character(scanCode, 1);
    }
    return symbols;
}

KeyboardLayout::Locks XkbKeyboardLayout::locks() const
{
    if (!m_server)
        return {};
    m_server->drain();
    const auto isOn = [this](const char* modifier) {
        return xkb_state_mod_name_is_active(m_keymap->state.get(), modifier,
                                            XKB_STATE_MODS_LOCKED) > 0;
    };
    return {isOn(XKB_MOD_NAME_CAPS), isOn(XKB_MOD_NAME_NUM)};
}

} // namespace Bralto
