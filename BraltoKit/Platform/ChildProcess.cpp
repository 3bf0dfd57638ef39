#include "Platform/ChildProcess.h"

#include "Platform/ChildStreams.h"
#include "Platform/ProcessGuardian.h"

#include <QFile>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

namespace Bralto {

namespace {

using Kovalt::FileDescriptor;
using ProcessGuardian::Order;
using ProcessGuardian::Report;

/// A null-ended array of C strings and the memory behind it.
class CStrings {
public:
    void append(QByteArray text) { m_texts.push_back(std::move(text)); }

    [[nodiscard]] bool holdsNull() const
    {
        return std::any_of(m_texts.begin(), m_texts.end(),
                           [](const QByteArray& text) { return text.contains('\0'); });
    }

    [[nodiscard]] char* const* data()
    {
        m_pointers.clear();
        for (QByteArray& text : m_texts)
            m_pointers.push_back(text.data());
        m_pointers.push_back(nullptr);
        return m_pointers.data();
    }

private:
    std::vector<QByteArray> m_texts;
    std::vector<char*> m_pointers;
};

struct Pair {
    FileDescriptor ours, theirs;
};

/// A pipe; `ours` is the end that the program keeps.
enum class Direction { ToChild, FromChild };
bool open(Pair& pair, Direction direction)
{
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return false;
    const bool toChild = direction == Direction::ToChild;
    pair.ours = FileDescriptor(ends[toChild ? 1 : 0]);
    pair.theirs = FileDescriptor(ends[toChild ? 0 : 1]);
    // Only our end: the child's is another open file and stays as children expect it.
    return fcntl(pair.ours.get(), F_SETFL, O_NONBLOCK) == 0;
}

bool openControl(Pair& pair)
{
    std::array<int, 2> ends{-1, -1};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return false;
    pair.ours = FileDescriptor(ends[0]);
    pair.theirs = FileDescriptor(ends[1]);
    return true;
}

QString systemText(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

/// The guardian's first message: the child's process id, or why there is none.
Report firstReport(int control)
{
    Report report;
    ssize_t length = 0;
    do {
        length = recv(control, &report, sizeof report, 0);
    } while (length < 0 && errno == EINTR);
    if (length != ssize_t(sizeof report))
        return {Report::Kind::Failed, ECHILD};
    return report;
}

/// The handle of one child. What works for the child lives in `ChildStreams`, which may outlive
/// the handle by a moment.
class ChildProcess final : public AgentProcess {
public:
    ChildProcess(qint64 id, std::shared_ptr<ChildStreams> streams)
        : m_id(id)
        , m_streams(std::move(streams))
    {
    }
    ~ChildProcess() override { m_streams->abandon(); }

    [[nodiscard]] bool isRunning() const override { return m_streams->isRunning(); }
    [[nodiscard]] qint64 processId() const override { return m_id; }

    void write(QByteArray bytes) override { m_streams->write(std::move(bytes)); }
    void closeInput() override { m_streams->closeInput(); }

    void interrupt() override { order(Order::Interrupt); }
    void terminate() override { order(Order::Terminate); }
    void kill() override { order(Order::Kill); }

private:
    // The guardian gives the signals: it alone knows that the process id still means the child.
    void order(Order order)
    {
        (void)send(m_streams->control(), &order, 1, MSG_NOSIGNAL | MSG_DONTWAIT);
    }

    qint64 m_id;
    std::shared_ptr<ChildStreams> m_streams;
};

} // namespace

Expected<std::shared_ptr<AgentProcess>, QString>
ChildProcessLauncher::launch(const AgentLaunch& launch, AgentPipes pipes)
{
    CStrings arguments;
    arguments.append(QFile::encodeName(launch.program));
    for (const QString& argument : launch.arguments)
        arguments.append(argument.toUtf8());
    CStrings environment;
    for (const QString& variable : launch.environment)
        environment.append(variable.toUtf8());
    const QByteArray folder = QFile::encodeName(launch.folder);
    if (arguments.holdsNull() || environment.holdsNull() || folder.contains('\0'))
        return Unexpected{systemText(EINVAL)};

    Pair input, output, errors, control;
    if (!open(input, Direction::ToChild) || !open(output, Direction::FromChild) ||
        !open(errors, Direction::FromChild) || !openControl(control))
        return Unexpected{systemText(errno)};
    FileDescriptor wake = ChildStreams::makeWake();
    if (!wake.isOpen())
        return Unexpected{systemText(errno)};

    ProcessGuardian::Plan plan;
    plan.arguments = arguments.data();
    plan.environment = environment.data();
    plan.program = plan.arguments[0];
    plan.folder = folder.constData();
    plan.input = input.theirs.get();
    plan.output = output.theirs.get();
    plan.errors = errors.theirs.get();
    plan.control = control.theirs.get();
    const pid_t guardian = ProcessGuardian::start(plan);
    if (guardian < 0)
        return Unexpected{systemText(errno)};
    for (Pair* pair : {&input, &output, &errors, &control})
        pair->theirs.reset();

    const Report report = firstReport(control.ours.get());
    if (report.kind != Report::Kind::Started) {
        while (waitpid(guardian, nullptr, 0) < 0 && errno == EINTR) {
        }
        return Unexpected{systemText(report.value)};
    }
    auto streams = std::make_shared<ChildStreams>(
        ChildStreams::Ends{std::move(input.ours), std::move(output.ours), std::move(errors.ours),
                           std::move(control.ours), std::move(wake)},
        guardian, std::move(pipes));
    if (!ChildStreams::start(streams))
        return Unexpected{systemText(EAGAIN)};
    return std::shared_ptr<AgentProcess>(
        std::make_shared<ChildProcess>(report.value, std::move(streams)));
}

} // namespace Bralto
