#pragma once

/// @file
/// The menus as values. What an entry says, whether it can be chosen and what it does follow from
/// the workspace at the moment of asking; an entry whose feature is not there is not in the list.

#include "Base/Shortcuts.h"
#include "Base/Zoom.h"
#include "Workspace/Workspace.h"

#include <functional>
#include <optional>
#include <vector>

namespace Bralto {

/// One line of a menu. A separator has no `run`, a submenu has `items`.
struct MenuItem {
    std::optional<Shortcuts::Command> command; ///< Absent for a separator and for a recent folder.
    QString title;                             ///< UTF-8, as shown.
    bool isEnabled = true;
    std::optional<bool> isChecked; ///< Present for a toggle.
    std::function<void()> run;
    std::vector<MenuItem> items;

    [[nodiscard]] bool isSeparator() const { return !run && items.empty() && title.isEmpty(); }
};

struct Menu {
    QString title;
    std::vector<MenuItem> items;
};

/// Yields the menu table.
class BraltoCommands {
public:
    struct Services {
        Workspace& workspace;
        Zoom& zoom;
        /// The area that a zoom acts on now.
        std::function<Zoom::Area()> zoomArea;
        /// Opens the home application; empty in the home application itself.
        std::function<void()> openHome;
        std::function<void(const QString& path)> reveal;
        std::function<void()> quit;
        /// Asks, then forgets what pages kept on this computer; empty where there are no pages.
        std::function<void()> clearBrowsingData = {};
    };

    explicit BraltoCommands(Services services);

    /// All menus in their order, as things stand now.
    [[nodiscard]] std::vector<Menu> menus() const;

private:
    [[nodiscard]] Menu fileMenu() const;
    [[nodiscard]] Menu viewMenu() const;
    [[nodiscard]] Menu terminalMenu() const;
    [[nodiscard]] Menu goMenu() const;
    [[nodiscard]] MenuItem recentMenu() const;
    void closeFocused() const;
    void switchTab(bool forward) const;

    Services m_services;
};

} // namespace Bralto
