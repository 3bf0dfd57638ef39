#pragma once

#include "App/BraltoCommands.h"

#include <QAction>
#include <QMenu>
#include <QObject>

#include <vector>

namespace Bralto {

/// The menus made real: one menu for the button in the bar, filled anew each time it opens, and
/// one action for each shortcut, which looks at the table when its keys are pressed. The menus and
/// the keys can't disagree, since both ask the same values at the moment they are used.
///
/// While a terminal has the keyboard, the commands have the chords that leave the plain ones to its
/// process, and the menus show those.
class CommandMenu final : public QObject {
    Q_OBJECT

public:
    /// Shortcuts work in `window` and its children. `commands` outlives this object.
    CommandMenu(const BraltoCommands& commands, QWidget* window);

    [[nodiscard]] QMenu* menu() { return &m_menu; }

    /// Runs the command if it can be chosen now; whether it could.
    bool run(Shortcuts::Command command) const;

private:
    struct Bound {
        Shortcuts::Command command;
        QAction* action;
    };

    void addShortcuts();
    void bindKeys();
    void followKeyboard(const QWidget* focused);
    void fill();
    void fillFrom(QMenu& menu, const std::vector<MenuItem>& items);

    const BraltoCommands& m_commands;
    QWidget* m_window;
    Shortcuts::Keyboard m_keyboard = Shortcuts::Keyboard::Elsewhere;
    std::vector<Bound> m_bound;
    QMenu m_menu;
};

} // namespace Bralto
