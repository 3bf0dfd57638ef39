#pragma once

#include "Base/Clock.h"
#include "Base/DefaultsStore.h"
#include "Base/Desktop.h"
#include "Base/KeyboardLayout.h"
#include "Base/Motion.h"
#include "Base/Zoom.h"
#include "Browser/LocalServers.h"
#include "Terminals/PaneMenu.h"
#include "Views/Kit/Theme.h"
#include "Views/Window/WindowLayout.h"
#include "Workspace/Workspace.h"

#include <functional>

class QWidget;

namespace Bralto {

class ConsolePane;

/// What the views of one window are made with. Everything outlives them.
struct ViewServices {
    Workspace& workspace;
    Theme& theme;
    Desktop& desktop;
    Defaults defaults;
    const Clock& clock;
    Motion& motion;
    Zoom& zoom;
    WindowLayout::Role role = WindowLayout::Role::HomeApplication;
    /// Makes what fills a pane of the console. It takes the keyboard by `setFocus`. The theme is
    /// that of the pane, and outlives what is made.
    std::function<QWidget*(ConsolePane&, Theme&)> makePane;
    /// Null if nothing is known of the keyboard: then terminals tell no alternate keys.
    const KeyboardLayout* keyboard = nullptr;
    /// Null: a blank tab lists no servers.
    LocalServers* servers = nullptr;
    /// What the menu of a pane does with what `makePane` made; nothing without it.
    std::function<PaneMenu::Hooks(QWidget&)> paneHooks = {};
};

} // namespace Bralto
