#pragma once

#include "Browser/PageEngine.h"

#include <QPoint>
#include <QWebEngineView>

namespace Bralto {

/// The toolkit's view, which leaves menus to the program.
class WebView final : public QWebEngineView {
    Q_OBJECT

public:
    explicit WebView(QWidget* parent);

    /// Frames of the page that were drawn here so far.
    [[nodiscard]] quint64 frames() const { return m_frames; }

signals:
    void frameDrawn();
    void menuRequested(const Bralto::PageContext& context, const QPoint& position);
    /// A key or a button went down on the page.
    void pressed();
    void escapePressed();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    quint64 m_frames = 0;
};

} // namespace Bralto
