#pragma once

#include "Base/KeyboardLayout.h"

#include <QByteArray>

#include <memory>
#include <optional>

namespace Bralto {

/// The keyboard of an X server and its changes, or the one that the environment names.
class XkbKeyboardLayout final : public KeyboardLayout {
public:
    /// Follows the keyboard of that display. Without one, or where it can't be asked, the layout
    /// is the one that XKB_DEFAULT_LAYOUT and its companions name, and no lock is known.
    explicit XkbKeyboardLayout(const std::optional<QByteArray>& display);
    ~XkbKeyboardLayout() override;

    [[nodiscard]] Symbols symbols(quint32 scanCode, quint32 symbol) const override;
    [[nodiscard]] Locks locks() const override;
    /// Whether the keyboard of a server is followed.
    [[nodiscard]] bool followsServer() const;

private:
    class Server;
    struct Keymap;

    std::unique_ptr<Keymap> m_keymap; ///< Filled when it is asked for the first time.
    std::unique_ptr<Server> m_server; ///< Null without a display.
};

} // namespace Bralto
