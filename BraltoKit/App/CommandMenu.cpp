#include "App/CommandMenu.h"

#include "Views/Window/WindowFocus.h"

#include <QApplication>
#include <QKeySequence>
#include <QWidget>

#include <algorithm>

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
    , m_window(window)
{
    connect(&m_menu, &QMenu::aboutToShow, this, &CommandMenu::fill);
    connect(qApp, &QApplication::focusChanged, this,
            [this](const QWidget*, const QWidget* now) { followKeyboard(now); });
    addShortcuts();
    followKeyboard(QApplication::focusWidget());
}

void CommandMenu::addShortcuts()
{
    const std::vector<Menu> menus = m_commands.menus();
    for (const Shortcuts::Entry& entry : Shortcuts::all()) {
        if (!*entry.keys && !*entry.terminalKeys)
            continue;
        const bool isThere = std::any_of(menus.begin(), menus.end(), [&](const Menu& menu) {
            return find(menu.items, entry.command) != nullptr;
        });
        if (!isThere)
            continue;
        auto* action = new QAction(m_window);
        action->setShortcutContext(Qt::WindowShortcut);
        connect(action, &QAction::triggered, this,
                [this, command = entry.command] { run(command); });
        m_window->addAction(action);
        m_bound.push_back({entry.command, action});
    }
    bindKeys();
}

void CommandMenu::bindKeys()
{
    for (const Bound& bound : m_bound) {
        const QString keys = Shortcuts::keys(bound.command, m_keyboard);
        bound.action->setShortcut(QKeySequence(keys, QKeySequence::PortableText));
    }
}

void CommandMenu::followKeyboard(const QWidget* focused)
{
    // A window that is not active, and a menu or a question above it, leave the chords as they are.
    if (!focused || focused->window() != m_window->window())
        return;
    const Shortcuts::Keyboard keyboard = WindowFocus::keyboardOf(*focused);
    if (keyboard == m_keyboard)
        return;
    m_keyboard = keyboard;
    bindKeys();
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
                action->setText(action->text() + u'\t' +
                                Shortcuts::keys(*item.command, m_keyboard));
            connect(action, &QAction::triggered, this, [run = item.run] { run(); });
        }
    }
}

} // namespace Bralto
