#pragma once

#include "App/BraltoCommands.h"

#include <QAction>
#include <QHash>
#include <QMenu>
#include <QObject>

namespace Bralto {

/// The menus made real: one menu for the button in the bar, filled anew each time it opens, and
/// one action for each shortcut, which looks at the table when its keys are pressed. The menus and
/// the keys can't disagree, since both ask the same values at the moment they are used.
class CommandMenu final : public QObject {
    Q_OBJECT

public:
    /// Shortcuts work in `window` and its children. `commands` outlives this object.
    CommandMenu(const BraltoCommands& commands, QWidget* window);

    [[nodiscard]] QMenu* menu() { return &m_menu; }

    /// Runs the command if it can be chosen now; whether it could.
    bool run(Shortcuts::Command command) const;

private:
    void addShortcuts(QWidget* window);
    void fill();
    void fillFrom(QMenu& menu, const std::vector<MenuItem>& items);

    const BraltoCommands& m_commands;
    QMenu m_menu;
};

} // namespace Bralto
