#pragma once

#include "Base/Expected.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <string_view>

namespace Bralto {

/// How to start a child: the program, what it gets, where it stands.
struct AgentLaunch {
    QString program;         ///< An absolute path.
    QStringList arguments;   ///< Without the program's own name.
    QStringList environment; ///< "NAME=value", the whole environment.
    QString folder;          ///< Current directory.
};

/// What a child's pipes deliver. Called on threads of the process object, in order and never two
/// at once; the bytes are valid during the call only. A call may still be under way when the
/// process object is destroyed, so the functions own what they touch.
struct AgentPipes {
    std::function<void(std::string_view bytes)> output;
    std::function<void()> outputEnded; ///< Once, after the last `output`.
    std::function<void(std::string_view bytes)> errors;
    /// Once, when the child has exited: its exit code, or 128 and the signal that ended it. Comes
    /// before `outputEnded` and after the last `errors`, unless the child closed its output first
    /// and runs on.
    std::function<void(int status)> ended;
};

/// A running child with three pipes, in a process group of its own that ends with this process,
/// however this process ends. Used from the main thread. Destroying it kills what still runs.
class AgentProcess {
public:
    virtual ~AgentProcess() = default;

    [[nodiscard]] virtual bool isRunning() const = 0;
    [[nodiscard]] virtual qint64 processId() const = 0;

    /// Queues bytes for the child's standard input: in order, never blocking the caller. A write
    /// that fails is dropped; the child's end shows on its output.
    virtual void write(QByteArray bytes) = 0;
    /// Closes standard input once everything queued has been written.
    virtual void closeInput() = 0;

    virtual void interrupt() = 0; ///< SIGINT
    virtual void terminate() = 0; ///< SIGTERM
    virtual void kill() = 0;      ///< SIGKILL, to the whole group
};

/// Starts children.
class AgentLauncher {
public:
    virtual ~AgentLauncher() = default;

    /// The running child, or the system's own words why there is none.
    virtual Expected<std::shared_ptr<AgentProcess>, QString> launch(const AgentLaunch& launch,
                                                                    AgentPipes pipes) = 0;
};

} // namespace Bralto
