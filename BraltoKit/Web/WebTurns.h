#pragma once

#include <QObject>
#include <QPointer>

#include <deque>
#include <functional>
#include <memory>

namespace Bralto {

/// Whose turn it is to hold a `DevToolsLink`: never more than one page of the process. A turn lasts
/// as long as what `begin` gets lives.
class WebTurns {
public:
    using Turn = std::shared_ptr<void>;

    /// `begin` is called once, at once or later, unless `context` goes or is forgotten.
    void await(QObject* context, std::function<void(Turn)> begin);
    void forget(const QObject* context);

private:
    void next();

    struct Waiting {
        QPointer<QObject> context;
        std::function<void(Turn)> begin;
    };
    std::deque<Waiting> m_waiting;
    bool m_isTaken = false;
    /// Whether this object is still there, for a turn that ends after it.
    std::shared_ptr<WebTurns*> m_self = std::make_shared<WebTurns*>(this);
};

} // namespace Bralto
