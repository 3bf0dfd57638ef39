#pragma once

#include "Web/WebView.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>

namespace Bralto {

/// Where a page is drawn. Its widget stands still, and the view inside moves: while the widget is
/// hidden and somebody drives the page, the view lies in a window that is never on the screen, so
/// that the page's timers and frames run. Otherwise a hidden page rests.
class WebPlace final : public QObject {
    Q_OBJECT

public:
    WebPlace();
    ~WebPlace() override; ///< The widget goes in a later turn.

    [[nodiscard]] QWidget* widget() const { return m_container; }
    [[nodiscard]] WebView& view() const { return *m_view; }

    /// The page runs until `release`, and some seconds longer. Calls are counted.
    void hold();
    void release();
    /// The page has been drawn, on the screen or beside it, for so short a time that its first
    /// frame may not be there yet.
    [[nodiscard]] bool isWaking() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void settle();
    void putInto(QWidget& place);

    QPointer<QWidget> m_container;
    QPointer<QWidget> m_beside; ///< The window that is never on the screen.
    WebView* m_view;
    int m_holds = 0;
    QElapsedTimer m_awake; ///< Since the view was last shown after it was hidden.
    QTimer m_linger;       ///< Runs on after the last hold.
};

} // namespace Bralto
