#pragma once

#include "Chat/AgentProcess.h"
#include "Kovalt/Process/FileDescriptor.h"

#include <QByteArray>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

namespace Bralto {

/// The program's ends of a child's pipes and the two threads that serve them. The threads share
/// ownership with the handle, so that the handle can go at any time without waiting for them.
class ChildStreams {
public:
    struct Ends {
        Kovalt::FileDescriptor input;   ///< To the child, non-blocking.
        Kovalt::FileDescriptor output;  ///< From the child, non-blocking.
        Kovalt::FileDescriptor errors;  ///< From the child, non-blocking.
        Kovalt::FileDescriptor control; ///< The socket of the guardian.
        Kovalt::FileDescriptor wake;    ///< From `makeWake`.
    };

    ChildStreams(Ends ends, pid_t guardian, AgentPipes pipes);

    /// What ends both threads; empty with `errno` set if the system has none.
    [[nodiscard]] static Kovalt::FileDescriptor makeWake();

    /// Starts the threads of `streams`, once. Without them the child is let go, and this is false.
    [[nodiscard]] static bool start(const std::shared_ptr<ChildStreams>& streams);

    [[nodiscard]] bool isRunning() const { return m_running; }
    [[nodiscard]] int control() const { return m_ends.control.get(); }

    void write(QByteArray bytes);
    void closeInput();

    /// Lets the child go: the guardian ends it, the threads end, no new call of the pipes begins.
    /// Never waits.
    void abandon();

private:
    void runReader();
    void runWriter();

    void waitForInput();
    void readPipe(Kovalt::FileDescriptor& pipe,
                  const std::function<void(std::string_view)>& deliver);
    void readReport();
    void reportEnds();
    void collectGuardian();
    /// Writes all of `bytes`; false if nobody will read any more.
    bool writeAll(const QByteArray& bytes);

    Ends m_ends;
    pid_t m_guardian;
    AgentPipes m_pipes;
    std::atomic<bool> m_running = true;
    std::atomic<bool> m_abandoned = false;

    // The writer's queue.
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<QByteArray> m_queue;
    bool m_inputClosing = false;

    // The reader's alone.
    QByteArray m_buffer;
    std::optional<int> m_exitStatus;
    bool m_guardianGone = false;
    bool m_outputReported = false;
    bool m_exitReported = false;
    /// When waiting for the rest of an end stops.
    std::optional<std::chrono::steady_clock::time_point> m_deadline;
};

} // namespace Bralto
