#include "Views/Kit/PopupMenu.h"

#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/FloatWindow.h"
#include "Views/Kit/Fonts.h"
#include "Views/Kit/Icon.h"
#include "Views/Kit/Shape.h"
#include "Views/Kit/TextLine.h"
#include "Views/Kit/Theme.h"

#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>

#include <algorithm>

namespace Bralto {
namespace {

constexpr int Padding = 8;
constexpr int Gap = 9;
constexpr int TickColumn = Measure::RowIcon + Gap;
constexpr int LineHeight = 9;
constexpr int ShortcutGap = 28;
constexpr char SymbolProperty[] = "bralto.symbol";
constexpr char DestructiveProperty[] = "bralto.destructive";

/// Whether one of the menu's entries has a symbol, for which all of them leave room.
bool hasSymbols(const QMenu* menu)
{
    if (!menu)
        return false;
    const QList<QAction*> actions = menu->actions();
    return std::ranges::any_of(
        actions, [](const QAction* each) { return each->property(SymbolProperty).isValid(); });
}

/// Draws menus with the tokens of one window.
class MenuStyle final : public QProxyStyle {
public:
    explicit MenuStyle(Theme& theme)
        : m_theme(theme)
    {
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        switch (metric) {
        case PM_MenuPanelWidth:
            return 1;
        case PM_MenuHMargin:
        case PM_MenuVMargin:
            return Measure::MenuPadding;
        case PM_SubMenuOverlap:
            return -2;
        case PM_MenuDesktopFrameWidth:
            return 0;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override
    {
        switch (hint) {
        case SH_Menu_MouseTracking:
        case SH_Menu_SupportsSections:
        case SH_Menu_SloppySubMenus:
        case SH_Menu_Scrollable:
            return 1;
        default:
            return QProxyStyle::styleHint(hint, option, widget, result);
        }
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override
    {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (type != CT_MenuItem || !item)
            return QProxyStyle::sizeFromContents(type, option, size, widget);
        if (item->menuItemType == QStyleOptionMenuItem::Separator)
            return {1, LineHeight}; // what has no width gets no room
        int width = int(TextLine::width(TextRole::Body, words(*item)) + 1) + 2 * Padding;
        if (item->menuHasCheckableItems)
            width += TickColumn;
        if (hasSymbols(qobject_cast<const QMenu*>(widget)))
            width += TickColumn;
        width += item->text.contains(u'\t') ? ShortcutGap : Measure::Space4;
        if (item->menuItemType == QStyleOptionMenuItem::SubMenu)
            width += Measure::RowIcon;
        return {width, Measure::MenuRow};
    }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override
    {
        if (element == PE_PanelMenu) {
            Float::drawPanel(*painter, QRectF(option->rect).adjusted(1, 1, -1, -1),
                             Measure::CardRadius, m_theme.tokens());
        } else if (element != PE_FrameMenu) {
            QProxyStyle::drawPrimitive(element, option, painter, widget);
        }
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override
    {
        if (element == CE_MenuEmptyArea)
            return;
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (element == CE_MenuItem && item)
            drawItem(*painter, *item, qobject_cast<const QMenu*>(widget));
        else
            QProxyStyle::drawControl(element, option, painter, widget);
    }

private:
    /// The title without its shortcut and without the marks of mnemonics.
    static QString words(const QStyleOptionMenuItem& item)
    {
        QString title = item.text.section(u'\t', 0, 0);
        title.replace(QStringLiteral("&&"), QStringLiteral("\x1f"));
        title.remove(u'&');
        return title.replace(u'\x1f', u'&');
    }

    void drawItem(QPainter& painter, const QStyleOptionMenuItem& item, const QMenu* menu) const
    {
        const Tokens& tokens = m_theme.tokens();
        const QRectF row = item.rect;
        if (item.menuItemType == QStyleOptionMenuItem::Separator) {
            const double line = Shape::hairline(painter);
            painter.fillRect(
                QRectF(row.left() + Padding, row.top() + 4, row.width() - 2.0 * Padding, line),
                tokens.separator);
            return;
        }
        const bool enabled = item.state & State_Enabled;
        const bool selected = enabled && (item.state & State_Selected);
        if (selected)
            Shape::fill(painter, row, Measure::ControlRadius, tokens.selection);

        const QAction* action = menu ? menu->actionAt(item.rect.center()) : nullptr;
        const bool destructive = action && action->property(DestructiveProperty).toBool();
        const QColor ink = !enabled ? tokens.ink4 : destructive ? tokens.failed : tokens.label;
        QRectF content = row.adjusted(Padding, 0, -Padding, 0);
        if (item.menuHasCheckableItems) {
            const QRectF tick(content.left(), row.center().y() - Measure::RowIcon / 2.0,
                              Measure::RowIcon, Measure::RowIcon);
            if (item.checked)
                Icon::draw(painter, tick, QStringLiteral("checkmark"),
                           selected ? tokens.label : tokens.accentInk);
            content.setLeft(content.left() + TickColumn);
        }
        if (hasSymbols(menu)) {
            const QRectF symbol(content.left(), row.center().y() - Measure::RowIcon / 2.0,
                                Measure::RowIcon, Measure::RowIcon);
            const QString name = action ? action->property(SymbolProperty).toString() : QString();
            if (!name.isEmpty())
                Icon::draw(painter, symbol, name,
                           enabled && !destructive && !selected ? tokens.ink2 : ink);
            content.setLeft(content.left() + TickColumn);
        }
        if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
            const QRectF arrow(content.right() - Measure::CaptionIcon,
                               row.center().y() - Measure::CaptionIcon / 2.0, Measure::CaptionIcon,
                               Measure::CaptionIcon);
            Icon::draw(painter, arrow, QStringLiteral("chevron.right"), tokens.ink3);
        }
        TextLine::draw(painter, content, TextRole::Body, ink, words(item));
        if (item.text.contains(u'\t'))
            TextLine::draw(painter, content, TextRole::Secondary,
                           selected  ? tokens.ink2
                           : enabled ? tokens.ink3
                                     : tokens.ink4,
                           item.text.section(u'\t', 1), Qt::ElideNone, Qt::AlignRight);
    }

    Theme& m_theme;
};

/// The style of a theme's menus, which lives as long as the theme.
QStyle* styleOf(Theme& theme)
{
    const QString name = QStringLiteral("bralto.menuStyle");
    auto* style = theme.findChild<QStyle*>(name, Qt::FindDirectChildrenOnly);
    if (!style) {
        style = new MenuStyle(theme);
        style->setObjectName(name);
        style->setParent(&theme);
    }
    return style;
}

void dressAll(QMenu& menu, Theme& theme)
{
    menu.setFont(font(TextRole::Body));
    menu.setStyle(styleOf(theme));
    menu.setWindowFlag(Qt::FramelessWindowHint);
    menu.setWindowFlag(Qt::NoDropShadowWindowHint);
    Float::makeWindow(menu, theme, 1, Measure::CardRadius);
    const QList<QAction*> actions = menu.actions();
    for (const QAction* action : actions) {
        if (QMenu* submenu = action->menu())
            PopupMenu::dress(*submenu, theme);
    }
}

} // namespace

PopupMenu::PopupMenu(Theme& theme, QWidget* parent)
    : QMenu(parent)
{
    dressAll(*this, theme);
}

void PopupMenu::dress(QMenu& menu, Theme& theme)
{
    dressAll(menu, theme);
    // Entries may be made when the menu is about to show, and their submenus with them.
    QObject::disconnect(&menu, &QMenu::aboutToShow, &theme, nullptr);
    QObject::connect(&menu, &QMenu::aboutToShow, &theme,
                     [&menu, &theme] { dressAll(menu, theme); });
}

void PopupMenu::popUp(std::unique_ptr<QMenu> menu, const QPoint& globalPosition)
{
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu.release()->popup(globalPosition);
}

void PopupMenu::setSymbol(QAction& action, const QString& symbol)
{
    action.setProperty(SymbolProperty, symbol);
}

void PopupMenu::setDestructive(QAction& action)
{
    action.setProperty(DestructiveProperty, true);
}

} // namespace Bralto
