#pragma once

#include "Terminals/PaneMenu.h"

#include <QMenu>

#include <memory>

namespace Bralto {

class Theme;

/// The actions of a pane as a menu. Each is run when the menu has gone.
[[nodiscard]] std::unique_ptr<QMenu>
makePaneMenu(Theme& theme, const std::vector<PaneMenu::Action>& actions, QWidget* parent);

} // namespace Bralto
