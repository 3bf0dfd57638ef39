#pragma once

#include "Base/Clock.h"
#include "Base/Json.h"
#include "Base/MainThreadDoor.h"
#include "Chat/AgentProcess.h"
#include "Chat/ChatErrorLog.h"
#include "Chat/ChatEvent.h"
#include "Chat/ChatLineReader.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace Bralto {

/// The road from one process's pipes to the main thread:
///
///     bytes ─> lines ─> JSON ─> events ─┐            on the process's thread
///                                       ├─ one hop ─> `arrived`, `take`
///     exit status, end of output ───────┘            on the main thread
///
/// At most one hop is under way. What comes meanwhile joins it, up to `PendingReads` reads; then
/// the reading thread waits, the pipe fills, and the agent waits too.
class AgentOutput {
public:
    static constexpr int PendingReads = 4;

    /// What has come since the last `take`.
    struct Batch {
        std::vector<ChatEvent> events;
        bool hasEnded = false; ///< The output is at its end; nothing follows.
    };

    /// `clock` lives as long as `door` is open.
    AgentOutput(std::shared_ptr<MainThreadDoor> door, const Clock& clock, QString home);

    /// What is called on the main thread when there is something to take. Before the launch.
    void onArrival(std::function<void()> arrived) { m_arrived = std::move(arrived); }

    /// The pipes that feed `output`, for one process.
    [[nodiscard]] static AgentPipes pipes(const std::shared_ptr<AgentOutput>& output);

    /// Main thread.
    [[nodiscard]] Batch take();

    /// From here on events are dropped and the reading thread never waits. The exit still arrives.
    /// Main thread.
    void mute();

    /// The exit status, once the process has exited. Any thread.
    [[nodiscard]] std::optional<int> exitStatus() const;
    /// Whether a line of the agent's protocol has come. Any thread.
    [[nodiscard]] bool hasSpoken() const { return m_hasSpoken; }
    /// The end of what the agent wrote to its standard error. Any thread.
    [[nodiscard]] QString errorTail() const { return m_errors.tail(); }

private:
    void read(std::string_view bytes);
    void end();
    void exit(int status);
    void decode(const QByteArray& line, std::vector<ChatEvent>& events);
    void append(std::vector<ChatEvent> events);
    void hop();

    std::shared_ptr<MainThreadDoor> m_door;
    const Clock& m_clock; ///< Touched only while the door is open.
    QString m_home;
    std::function<void()> m_arrived;

    // The reading thread's.
    ChatLineReader m_lines;
    JsonReader m_json;

    ChatErrorLog m_errors;
    std::atomic<bool> m_hasSpoken = false;

    mutable std::mutex m_mutex;
    std::condition_variable m_taken;
    Batch m_batch;
    int m_reads = 0; ///< Reads in `m_batch`.
    bool m_isHopping = false;
    bool m_isMuted = false;
    std::optional<int> m_exitStatus;
};

} // namespace Bralto
