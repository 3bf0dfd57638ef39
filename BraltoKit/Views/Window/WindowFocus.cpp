#include "Views/Window/WindowFocus.h"

#include <QApplication>
#include <QLineEdit>
#include <QVariant>

namespace Bralto {
namespace {

constexpr char AreaProperty[] = "bralto.focusArea";
constexpr char TabProperty[] = "bralto.tabId";
constexpr char TerminalProperty[] = "bralto.isTerminal";

} // namespace

void WindowFocus::mark(QWidget& widget, FocusArea area)
{
    widget.setProperty(AreaProperty, int(area));
}

void WindowFocus::markTab(QWidget& widget, const QString& tabId)
{
    mark(widget, FocusArea::Content);
    widget.setProperty(TabProperty, tabId);
}

void WindowFocus::markTerminal(QWidget& widget)
{
    widget.setProperty(TerminalProperty, true);
}

Shortcuts::Keyboard WindowFocus::keyboardOf(const QWidget& widget)
{
    return widget.property(TerminalProperty).toBool() ? Shortcuts::Keyboard::InTerminal
                                                      : Shortcuts::Keyboard::Elsewhere;
}

FocusArea WindowFocus::areaOf(const QWidget* widget)
{
    if (!widget)
        return FocusArea::None;
    for (const QWidget* at = widget; at; at = at->parentWidget()) {
        const QVariant area = at->property(AreaProperty);
        if (area.isValid())
            return FocusArea(area.toInt());
    }
    return qobject_cast<const QLineEdit*>(widget) ? FocusArea::Content : FocusArea::None;
}

FocusArea WindowFocus::current() const
{
    return areaOf(QApplication::focusWidget());
}

QString WindowFocus::focusedTabId() const
{
    for (const QWidget* at = QApplication::focusWidget(); at; at = at->parentWidget()) {
        const QVariant id = at->property(TabProperty);
        if (id.isValid())
            return id.toString();
    }
    return {};
}

} // namespace Bralto
