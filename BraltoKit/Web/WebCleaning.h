#pragma once

#include "Web/DevToolsLink.h"
#include "Web/WebTurns.h"

#include <QTimer>
#include <QWebEngineProfile>

#include <memory>

namespace Bralto {

/// Removes what pages have left in a profile, pages that are open included. The toolkit offers this
/// for cookies, cache and visited links; the rest goes by the engine's developer protocol.
class WebCleaning final : public QObject {
    Q_OBJECT

public:
    /// `done` is called once, in a later turn, after `limit` at the latest.
    WebCleaning(QWebEngineProfile& profile, WebTurns& turns, std::chrono::milliseconds limit,
                std::function<void()> done);
    ~WebCleaning() override; ///< Before its profile; it calls `done` if that is due.

    [[nodiscard]] bool isOver() const { return m_isOver; }

private:
    void begin(const WebTurns::Turn& turn);
    void finish();

    WebTurns& m_turns;
    std::function<void()> m_done;
    QWebEnginePage m_page; ///< Blank; the way to the engine.
    WebTurns::Turn m_turn;
    std::unique_ptr<DevToolsLink> m_link;
    QTimer m_limit;
    bool m_isOver = false;
};

} // namespace Bralto
