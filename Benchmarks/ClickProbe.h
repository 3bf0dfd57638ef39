#pragma once

#include <QObject>
#include <QPoint>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

class QWidget;

namespace Bralto {

/// Clicks on a widget every few milliseconds, from a thread and a connection of its own, until it
/// ends, and tells how long each click waited until the interface thread got to it.
class ClickProbe final : public QObject {
public:
    static constexpr std::chrono::milliseconds Pace{5};

    /// The widget is on the screen, and nothing else clicks on it.
    explicit ClickProbe(QWidget& target);
    ~ClickProbe() override;

    /// Milliseconds, one for each click. A click that still waits counts with the time until now.
    [[nodiscard]] std::vector<double> finish();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    using Clock = std::chrono::steady_clock;

    void clickOn(std::uint32_t window, const QPoint& at);
    [[nodiscard]] static double since(Clock::time_point time);

    std::mutex m_lock; ///< Guards the next one.
    std::deque<Clock::time_point> m_waiting;
    std::vector<double> m_times;
    std::atomic<bool> m_isEnding = false;
    std::thread m_thread;
};

} // namespace Bralto
