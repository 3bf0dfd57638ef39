#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QObject>

#include <chrono>
#include <functional>

namespace Bralto {

/// Says when a view takes its next picture: the first change at once, so that an echo is seen
/// without delay, and in a flood one frame in an interval, which grows with what a frame costs so
/// that painting takes a quarter of the time at most. Without changes there is no timer.
class FramePacer final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds Shortest{16};
    static constexpr std::chrono::milliseconds Longest{48};

    /// How long a timer waits with a frame that comes `interval` after the one of `since` ago. A
    /// timer has whole milliseconds and is never early, so none of them may be a started one: else
    /// a scroll that never stops has less than sixty frames a second.
    [[nodiscard]] static std::chrono::milliseconds wait(std::chrono::milliseconds interval,
                                                        std::chrono::nanoseconds since);

    FramePacer(std::function<void()> frame, QObject* parent);

    /// Something changed. The frame may be taken before this returns.
    void request();
    /// A frame that is due later is not taken.
    void cancel() { m_timer.stop(); }
    [[nodiscard]] bool isWaiting() const { return m_timer.isActive(); }

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void take();

    std::function<void()> m_frame;
    QBasicTimer m_timer;
    QElapsedTimer m_sinceLast; ///< Since the last one began; invalid before the first.
    std::chrono::milliseconds m_interval = Shortest;
};

} // namespace Bralto
