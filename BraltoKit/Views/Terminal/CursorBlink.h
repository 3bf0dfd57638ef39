#pragma once

#include <QBasicTimer>
#include <QObject>

namespace Bralto {

/// Whether a blinking cursor can be seen at the moment. It rests, visible, when nobody has typed
/// for a while, and then costs nothing.
class CursorBlink final : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// A change makes it visible, and tells nobody: who asks for it shows it.
    void setBlinking(bool blinks);
    /// Visible from now on, for the first half of a blink.
    void restart();
    [[nodiscard]] bool isShown() const { return m_isShown; }
    [[nodiscard]] bool isTicking() const { return m_timer.isActive(); }

signals:
    void changed();

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void begin();
    void setShown(bool shown);

    QBasicTimer m_timer;
    bool m_blinks = false;
    bool m_isShown = true;
    int m_halves = 0; ///< Since the last restart.
};

} // namespace Bralto
