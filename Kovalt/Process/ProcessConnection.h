#pragma once

#include "Kovalt/Process/OutgoingData.h"
#include "Kovalt/Process/PendingData.h"
#include "Kovalt/Process/ProcessLog.h"
#include "Kovalt/Process/PseudoTerminalHelpers.h"
#include "Kovalt/Process/RunLoop.h"
#include "Kovalt/Process/WakeSignal.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace Kovalt {

/// How the output of a process comes to the thread of its terminal.
enum class Delivery : std::uint8_t {
    /// In slices of a few milliseconds; reading stops while too much waits. For a loop that must
    /// stay free for other work.
    Sliced,
    /// Piece by piece; each read waits until the piece before it was taken.
    Synchronous,
};

/// One child on its pseudo-terminal and the thread that serves it: it reads, writes what could not
/// be written at once, and learns of the child's end. Everything public is for the loop's thread.
/// It lives until its thread ends, which is when the child is gone and its terminal closed.
class ProcessConnection : public std::enable_shared_from_this<ProcessConnection> {
public:
    /// Is told on the loop's thread.
    class Owner {
    public:
        virtual ~Owner() = default;
        virtual void connectionReceived(std::span<const std::uint8_t> bytes) = 0;
        /// What waited to be written is written.
        virtual void connectionSent() = 0;
        /// Nothing more can be read or written.
        virtual void connectionEnded() = 0;
        /// The raw wait status; none if somebody else took it. What the child wrote came before.
        virtual void connectionExited(std::optional<int> status) = 0;
    };

    /// `loop` and `owner` must live until `disown`.
    /// Null if no thread can be had; the child is gone then.
    static std::shared_ptr<ProcessConnection> start(PseudoTerminalHelpers::ForkedChild child,
                                                    Delivery delivery, RunLoop& loop, Owner& owner,
                                                    std::shared_ptr<ProcessLog> log);
    ~ProcessConnection();
    ProcessConnection(const ProcessConnection&) = delete;
    ProcessConnection& operator=(const ProcessConnection&) = delete;

    /// The master; -1 once nothing can be read or written.
    [[nodiscard]] int descriptor() const { return m_descriptor; }
    void send(std::span<const std::uint8_t> bytes);
    [[nodiscard]] bool isSendWaiting() const { return m_outgoing.isWaiting(); }
    /// To a child that has not been waited for.
    void signal(int number) const;
    /// Ends reading, writing and reports. What has been read already is still delivered. The child
    /// is waited for when it ends.
    void close();
    /// Closes, and the owner is told nothing any more.
    void disown();
    /// All that has been read already.
    void deliverPending();
    [[nodiscard]] const PendingData& pending() const { return m_pending; }

private:
    ProcessConnection(PseudoTerminalHelpers::ForkedChild child, Delivery delivery, RunLoop& loop,
                      Owner& owner, std::shared_ptr<ProcessLog> log);

    // On the connection's own thread.
    void serve();
    struct Events {
        int master = 0;
        bool lookedForInput = false;
        bool childExited = false;
    };
    [[nodiscard]] Events wait();
    void readAvailable();
    void receive(PendingData::Chunk chunk);
    void receiveSynchronously(PendingData::Chunk chunk);
    void writeWaiting();
    void reportEnd();
    void watchExitFromThread();
    void reportExitWhenRead();
    bool post(RunLoop::Task task);

    // On the loop's thread.
    void drain();
    void deliver(std::span<const std::uint8_t> bytes);
    void reportExitIfDelivered();

    std::optional<int> reap();

    const pid_t m_pid;
    const Delivery m_delivery;
    const std::shared_ptr<ProcessLog> m_log;
    WakeSignal m_wake;
    PendingData m_pending;
    OutgoingData m_outgoing;
    /// Closed by the thread after `close`, or else by the loop when it told both the terminal's end
    /// and the child's; and so never while in use.
    FileDescriptor m_master;
    FileDescriptor m_childWatch; ///< Readable when the child has ended.

    std::mutex m_loopLock; ///< Held around each post, so that none follows `close`.
    RunLoop* m_loop;
    std::atomic<bool> m_closed = false;
    std::atomic<bool> m_exitSeenByThread = false;
    std::atomic<bool> m_reaped = false;

    std::mutex m_gateLock; ///< Guards the next one: the piece of a synchronous read was taken.
    bool m_taken = false;
    std::condition_variable m_gate;

    // Of the connection's own thread.
    std::vector<std::uint8_t> m_readBuffer;
    bool m_ended = false;
    bool m_exitSeen = false;
    bool m_exitReported = false;
    std::uint64_t m_received = 0;
    std::uint64_t m_receivedAtExit = 0;

    // Of the loop's thread.
    Owner* m_owner;
    int m_descriptor;
    bool m_endTold = false;
    std::uint64_t m_delivered = 0;
    std::optional<std::uint64_t> m_exitPosition;
};

} // namespace Kovalt
