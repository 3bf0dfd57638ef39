#pragma once

#include "Terminals/ConsoleDrag.h"
#include "Terminals/ConsoleDrop.h"

#include "Views/Kit/Theme.h"

#include <QPixmap>

class QDropEvent;
class QWidget;

/// A drag of a pane or a tab as the window system sees it.
namespace Bralto::ConsoleCarrier {

/// The picture of what is dragged: rounded, somewhat see-through and with a shadow where windows
/// can be, at most so wide as a tab and a half. `grip` is the place of the pointer in the widget,
/// and becomes that in the picture.
[[nodiscard]] QPixmap picture(QWidget& widget, int radius, const Theme& theme, QPoint& grip);

/// Drags `item` until the user lets go of it. Runs an event loop, so the caller may be gone
/// afterwards; `drag` may go meanwhile, `window` may not.
void run(QWidget& window, ConsoleDrag& drag, const ConsoleDrag::Item& item, const QPixmap& picture,
         const QPoint& grip);

/// What a drop event over `target` tells a delegate.
[[nodiscard]] ConsoleDropInfo info(const QDropEvent& event, const QWidget& target);
/// Answers the system: what is dragged may be dropped here, or not.
void propose(QDropEvent& event, DropProposal proposal);

/// A drag has come or moved over `target`, whose delegate it is.
template <typename Delegate>
void update(QDropEvent& event, const QWidget& target, Delegate delegate)
{
    propose(event, delegate.dropUpdated(info(event, target)));
}

/// Something was let go of over `target`.
template <typename Delegate>
void drop(QDropEvent& event, const QWidget& target, Delegate delegate)
{
    const ConsoleDropInfo told = info(event, target);
    propose(event, DropProposal::Move);
    delegate.performDrop(told);
}

} // namespace Bralto::ConsoleCarrier
