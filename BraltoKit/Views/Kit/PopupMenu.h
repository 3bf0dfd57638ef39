#pragma once

#include <QMenu>

namespace Bralto {

class Theme;

/// A menu in the program's look: rounded, with ticks, and shortcuts in the third ink.
class PopupMenu final : public QMenu {
    Q_OBJECT

public:
    explicit PopupMenu(Theme& theme, QWidget* parent = nullptr);

    /// Gives a menu that somebody else made the same look, and its submenus whenever they show.
    static void dress(QMenu& menu, Theme& theme);

    /// The symbol before an entry's title.
    static void setSymbol(QAction& action, const QString& symbol);
    /// Marks an entry after which something is lost.
    static void setDestructive(QAction& action);
};

} // namespace Bralto
