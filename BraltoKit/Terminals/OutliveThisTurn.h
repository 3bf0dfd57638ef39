#pragma once

#include <QMetaObject>
#include <QObject>

#include <memory>
#include <utility>

namespace Bralto {

/// Keeps `object` until the turn of the event loop is over: who asked for its end may be one of its
/// own. `owner` destroys it earlier if it goes first, since a queued call dies with its context.
template <typename Object>
void outliveThisTurn(QObject* owner, std::unique_ptr<Object> object)
{
    const std::shared_ptr<Object> shared = std::move(object);
    QMetaObject::invokeMethod(
        owner, [shared] {}, Qt::QueuedConnection);
}

} // namespace Bralto
