#include "App/CommandMenu.h"

#include <QKeySequence>
#include <QWidget>

namespace Bralto {

namespace {

const MenuItem* find(const std::vector<MenuItem>& items, Shortcuts::Command command)
{
    for (const MenuItem& item : items) {
        if (item.command == command && item.run)
            return &item;
        if (const MenuItem* inside = find(item.items, command))
            return inside;
    }
    return nullptr;
}

/// A title may hold a "&" that is no mnemonic.
QString escaped(QString title)
{
    return title.replace(u'&', QLatin1String("&&"));
}

} // namespace

CommandMenu::CommandMenu(const BraltoCommands& commands, QWidget* window)
    : QObject(window)
    , m_commands(commands)
{
    connect(&m_menu, &QMenu::aboutToShow, this, &CommandMenu::fill);
    addShortcuts(window);
}

void CommandMenu::addShortcuts(QWidget* window)
{
    for (const Shortcuts::Entry& entry : Shortcuts::all()) {
        const QString keys = Shortcuts::keys(entry.command);
        if (keys.isEmpty())
            continue;
        const std::vector<Menu> menus = m_commands.menus();
        const bool isThere = std::any_of(menus.begin(), menus.end(), [&](const Menu& menu) {
            return find(menu.items, entry.command) != nullptr;
        });
        if (!isThere)
            continue;
        auto* action = new QAction(window);
        action->setShortcut(QKeySequence(keys, QKeySequence::PortableText));
        action->setShortcutContext(Qt::WindowShortcut);
        connect(action, &QAction::triggered, this,
                [this, command = entry.command] { run(command); });
        window->addAction(action);
    }
}

bool CommandMenu::run(Shortcuts::Command command) const
{
    for (const Menu& menu : m_commands.menus()) {
        const MenuItem* item = find(menu.items, command);
        if (!item)
            continue;
        if (item->isEnabled)
            item->run();
        return item->isEnabled;
    }
    return false;
}

void CommandMenu::fill()
{
    m_menu.clear();
    for (const Menu& menu : m_commands.menus())
        fillFrom(*m_menu.addMenu(menu.title), menu.items);
}

void CommandMenu::fillFrom(QMenu& menu, const std::vector<MenuItem>& items)
{
    for (const MenuItem& item : items) {
        if (item.isSeparator()) {
            menu.addSeparator();
        } else if (!item.run) {
            QMenu* submenu = menu.addMenu(escaped(item.title));
            submenu->setEnabled(item.isEnabled);
            fillFrom(*submenu, item.items);
        } else {
            QAction* action = menu.addAction(escaped(item.title));
            action->setEnabled(item.isEnabled);
            if (item.isChecked) {
                action->setCheckable(true);
                action->setChecked(*item.isChecked);
            }
            // Shown, not bound: the window's own actions hold the keys.
            if (item.command)
                action->setText(action->text() + u'\t' + Shortcuts::keys(*item.command));
            connect(action, &QAction::triggered, this, [run = item.run] { run(); });
        }
    }
}

} // namespace Bralto
