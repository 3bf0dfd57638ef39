#include "Web/WebTurns.h"

namespace Bralto {

void WebTurns::await(QObject* context, std::function<void(Turn)> begin)
{
    m_waiting.push_back({context, std::move(begin)});
    next();
}

void WebTurns::forget(const QObject* context)
{
    std::erase_if(m_waiting, [context](const Waiting& each) { return each.context == context; });
}

void WebTurns::next()
{
    while (!m_isTaken && !m_waiting.empty()) {
        const Waiting first = std::move(m_waiting.front());
        m_waiting.pop_front();
        if (!first.context)
            continue;
        m_isTaken = true;
        first.begin(Turn(this, [self = std::weak_ptr(m_self)](void*) {
            if (const auto turns = self.lock()) {
                (*turns)->m_isTaken = false;
                (*turns)->next();
            }
        }));
    }
}

} // namespace Bralto
