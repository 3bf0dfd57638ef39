#include "Views/Console/PaneMenuView.h"

#include "Views/Kit/PopupMenu.h"
#include "Views/Kit/Theme.h"

namespace Bralto {

std::unique_ptr<QMenu> makePaneMenu(Theme& theme, const std::vector<PaneMenu::Action>& actions,
                                    QWidget* parent)
{
    auto menu = std::make_unique<PopupMenu>(theme, parent);
    for (const PaneMenu::Action& each : actions) {
        if (each.startsSection)
            menu->addSeparator();
        // A name may hold an ampersand that is no mnemonic.
        QString title = each.title;
        QAction* action = menu->addAction(title.replace(u'&', QLatin1String("&&")));
        PopupMenu::setSymbol(*action, each.symbol);
        if (each.isDestructive)
            PopupMenu::setDestructive(*action);
        action->setEnabled(each.isEnabled);
        // Closing a pane takes its menu with it, so the work begins when the menu has gone. The
        // theme is the window's and outlives both.
        QObject::connect(
            action, &QAction::triggered, &theme, [run = each.run] { run(); }, Qt::QueuedConnection);
    }
    return menu;
}

} // namespace Bralto
