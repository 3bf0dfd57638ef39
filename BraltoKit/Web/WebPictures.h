#pragma once

#include "Browser/PageEngine.h"
#include "Web/DevToolsLink.h"
#include "Web/WebCalls.h"
#include "Web/WebPlace.h"
#include "Web/WebTurns.h"

#include <QImage>
#include <QTimer>

#include <map>
#include <memory>

namespace Bralto {

/// Draws one page, wherever it lies. Scales and encodes off the main thread.
class WebPictures final : public QObject {
    Q_OBJECT

public:
    using Done = std::function<void(PagePictureResult)>;

    WebPictures(QWebEnginePage& page, WebPlace& place, WebCalls& calls, WebTurns& turns,
                QObject* parent);
    ~WebPictures() override; ///< Ends what is under way.

    /// While `isAsking`, a dialog is open: what was drawn last is all there is.
    void take(PageExtent extent, bool isAsking, Done done);
    /// The developer tools are about to be the user's.
    void giveUpLink();

private:
    struct Whole {
        quint64 id = 0;
        WebTurns::Turn turn;
        std::unique_ptr<DevToolsLink> link;
        QTimer limit;
    };
    void takeVisible(quint64 id);
    void awaitDrawing(quint64 id, std::chrono::milliseconds limit);
    void grab(quint64 id);
    void takeWhole(quint64 id);
    void measure();
    void capture(const QSizeF& size);
    void finishWhole(const QByteArray& base64);
    void fallBack();
    void encode(quint64 id, const QImage& image, QSize size);
    void end(quint64 id, const PagePictureResult& result);

    QWebEnginePage& m_page;
    WebPlace& m_place;
    WebCalls& m_calls;
    WebTurns& m_turns;
    std::map<quint64, Done> m_pictures;
    quint64 m_lastId = 0;
    std::unique_ptr<Whole> m_whole;
};

} // namespace Bralto
