#pragma once

#include <QMenu>

#include <memory>

namespace Bralto {

class Theme;

/// A menu in the program's look: rounded, with ticks, and shortcuts in the third ink.
class PopupMenu final : public QMenu {
    Q_OBJECT

public:
    explicit PopupMenu(Theme& theme, QWidget* parent = nullptr);

    /// Gives a menu that somebody else made the same look, and its submenus whenever they show.
    static void dress(QMenu& menu, Theme& theme);

    /// Shows a menu with its corner there. It ends when it is closed, or with its parent.
    static void popUp(std::unique_ptr<QMenu> menu, const QPoint& globalPosition);

    /// The symbol before an entry's title.
    static void setSymbol(QAction& action, const QString& symbol);
    /// Marks an entry after which something is lost.
    static void setDestructive(QAction& action);
};

} // namespace Bralto
