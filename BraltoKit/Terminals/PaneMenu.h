#pragma once

#include "Base/DefaultsStore.h"

#include <QString>

#include <functional>
#include <vector>

namespace Bralto {

class ConsolePane;
class TerminalPanel;

/// What can be done with a pane, for the menu of its head and the one of its terminal.
namespace PaneMenu {

/// How the text of a terminal pane reaches the clipboard and comes from it. Only its view knows.
struct Hooks {
    std::function<bool()> canCopy; ///< Whether something is selected.
    std::function<void()> copy;
    std::function<void()> paste;
};

struct Action {
    QString title;
    QString symbol;
    std::function<void()> run; ///< Does nothing once the pane has gone.
    bool isDestructive = false;
    bool startsSection = false;
    bool isEnabled = true;
};

/// The actions in the order of the menu. `shared` keeps what new panes look like and outlives what
/// is returned; without hooks nothing can be copied or pasted.
[[nodiscard]] std::vector<Action> actions(ConsolePane& pane, TerminalPanel& panel,
                                          DefaultsStore& shared, const Hooks& hooks);

} // namespace PaneMenu

} // namespace Bralto
