#include "App/ZoomKeys.h"

#include <QKeyEvent>
#include <QWidget>

namespace Bralto {

ZoomKeys::ZoomKeys(QObject* application, std::function<bool()> hasProject)
    : QObject(application)
    , m_hasProject(std::move(hasProject))
{
    application->installEventFilter(this);
}

std::optional<ZoomKeys::Direction> ZoomKeys::direction(const QKeyEvent& event)
{
    constexpr Qt::KeyboardModifiers Looked =
        Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if ((event.modifiers() & Looked) != Qt::ControlModifier)
        return std::nullopt;
    if (event.key() == Qt::Key_Plus)
        return Direction::In;
    if (event.key() == Qt::Key_Minus && event.modifiers().testFlag(Qt::KeypadModifier))
        return Direction::Out;
    return std::nullopt;
}

bool ZoomKeys::eventFilter(QObject* watched, QEvent* event)
{
    // The shortcut is looked for first; taking it there keeps the menu from seeing the press.
    if ((event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress) ||
        !watched->isWidgetType())
        return QObject::eventFilter(watched, event);
    const auto found = direction(*static_cast<QKeyEvent*>(event));
    if (!found || !m_hasProject())
        return QObject::eventFilter(watched, event);
    if (event->type() == QEvent::KeyPress)
        emit zoomRequested(*found);
    event->accept();
    return true;
}

} // namespace Bralto
