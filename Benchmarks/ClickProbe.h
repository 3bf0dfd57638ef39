#pragma once

#include <QObject>
#include <QPoint>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

class QWidget;

namespace Bralto {

/// Clicks on a widget every few milliseconds, from a thread and a connection of its own, until it
/// ends, and tells how long each click waited until the interface thread got to it. Made on that
/// thread.
class ClickProbe final : public QObject {
public:
    static constexpr std::chrono::milliseconds Pace{5};

    /// The widget is on the screen, and nothing else clicks on it.
    explicit ClickProbe(QWidget& target);
    ~ClickProbe() override;

    /// Milliseconds, one for each click. A click that still waits counts with the time until now.
    struct Waits {
        std::vector<double> times;
        /// What the interface thread itself worked meanwhile. The rest of the time it had no core,
        /// or the display took it.
        std::vector<double> work;
    };
    [[nodiscard]] Waits finish();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using Clock = std::chrono::steady_clock;

    struct Click {
        Clock::time_point time;
        double work; ///< Of the interface thread until then.
    };

    void clickOn(std::uint32_t window, const QPoint& at);
    [[nodiscard]] Click now() const;
    void answer();

    clockid_t m_processor = CLOCK_MONOTONIC; ///< That of the interface thread.
    std::mutex m_lock;                       ///< Guards the next one.
    std::deque<Click> m_waiting;
    Waits m_waits;
    std::atomic<bool> m_isEnding = false;
    std::thread m_thread;
};

} // namespace Bralto
