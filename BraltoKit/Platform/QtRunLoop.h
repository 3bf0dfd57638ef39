#pragma once

#include "Kovalt/Process/RunLoop.h"

#include <QObject>

#include <deque>
#include <mutex>

namespace Bralto {

/// Qt's event loop on the thread that makes this object, as the emulator's processes see it.
/// However much is posted, timers, paints and the window system's events get their turn: a round
/// takes a few milliseconds and at least one task. Tasks also run in a nested event loop. What
/// still waits when this object ends never runs. It may be ended by one of its tasks.
class QtRunLoop final : public QObject, public Kovalt::RunLoop {
public:
    QtRunLoop() = default;
    ~QtRunLoop() override;

    void post(Task task) override;

protected:
    bool event(QEvent* event) override;

private:
    void runTasks();
    [[nodiscard]] Task takeTask();
    void wake();

    std::mutex m_lock; ///< Guards all that follow.
    std::deque<Task> m_tasks;
    bool m_isAwake = false; ///< An event is on its way.
    bool m_isEnding = false;
};

} // namespace Bralto
