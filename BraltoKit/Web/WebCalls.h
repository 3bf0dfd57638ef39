#pragma once

#include "Browser/PageEngine.h"
#include "Web/WebBridge.h"

#include <QObject>

#include <map>

class QWebEnginePage;

namespace Bralto {

/// The script calls of one page that are under way.
class WebCalls final : public QObject {
    Q_OBJECT

public:
    using Done = std::function<void(PageScriptResult)>;

    WebCalls(QWebEnginePage& page, const WebBridge::Keys& keys, QObject* parent);
    ~WebCalls() override; ///< Ends them all.

    void call(const PageScript& script, std::chrono::milliseconds timeout, Done done);
    /// `done` gets a value once what the page shows now was drawn.
    void awaitFrame(std::chrono::milliseconds timeout, Done done);

    /// A call that ends in a later turn without having run.
    void refuse(const PageScriptError& error, Done done);

    void read(const WebBridge::Message& message); ///< One with an id.
    void endAll(const PageScriptError& error);
    [[nodiscard]] bool isIdle() const { return m_calls.empty(); }

signals:
    void begun(); ///< The first call.
    void idle();  ///< The last one has ended.

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    struct Call {
        Done done;
        int timer = 0;
    };
    quint64 add(std::chrono::milliseconds timeout, Done done);
    void check(quint64 id, const PageScript& script);
    /// Runs `text`, which gives whether the document has a door; without one it gets one first.
    void run(quint64 id, const QString& text, bool isSecondTry = false);
    void endSoon(quint64 id, const PageScriptError& error);
    void end(quint64 id, const PageScriptResult& result);

    QWebEnginePage& m_page;
    const WebBridge::Keys m_keys;
    quint64 m_lastId = 0;
    std::map<quint64, Call> m_calls;
};

} // namespace Bralto
