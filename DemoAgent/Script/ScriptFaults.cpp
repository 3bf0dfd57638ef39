#include "DemoAgent/ProcessSignals.h"
#include "DemoAgent/Script/ScriptContext.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <utility>

namespace DemoAgent {

namespace {

constexpr qsizetype Megabyte = 1024 * 1024;

void writeErrors(const QByteArray& bytes)
{
    const char* from = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0) {
        const ssize_t written = ::write(STDERR_FILENO, from, static_cast<size_t>(left));
        if (written <= 0)
            return;
        from += written;
        left -= written;
    }
}

Task<> raw(ScriptContext& context, const ScriptStep& step)
{
    context.conversation.out.sendBytes(ScriptText::unescaped(context.text(step)));
    co_return;
}

Task<> base64(ScriptContext& context, const ScriptStep& step)
{
    context.conversation.out.sendBytes(QByteArray::fromBase64(step.words.toLatin1()));
    co_return;
}

// A line that is right in all but its length.
Task<> bigLine(ScriptContext& context, const ScriptStep& step)
{
    LineWriter& out = context.conversation.out;
    out.sendBytes(R"({"type":"assistant","message":{"id":")" +
                  makeId(QLatin1StringView("msg_")).toLatin1() +
                  R"(","role":"assistant","content":[{"type":"text","text":")");
    const QByteArray megabyte(Megabyte, 'x');
    for (int count = 0; count < step.words.toInt(); ++count)
        out.sendBytes(megabyte);
    out.sendBytes("\"}]}}\n");
    co_return;
}

Task<> cut(ScriptContext& context, const ScriptStep& step)
{
    const QString pause = step.words.section(u' ', 1, 1);
    context.conversation.out.cutInto(
        step.words.section(u' ', 0, 0).toInt(),
        std::chrono::milliseconds(pause.isEmpty() ? 1 : pause.toInt()));
    co_return;
}

Task<> errorText(ScriptContext& context, const ScriptStep& step)
{
    writeErrors(ScriptText::unescaped(context.text(step)) + '\n');
    co_return;
}

Task<> errorFlood(ScriptContext&, const ScriptStep& step)
{
    const QByteArray line = QByteArray(127, 'e') + '\n';
    const QByteArray megabyte = line.repeated(Megabyte / line.size());
    for (int count = 0; count < step.words.toInt(); ++count)
        writeErrors(megabyte);
    co_return;
}

Task<> exitNow(ScriptContext&, const ScriptStep& step)
{
    ::_exit(step.words.toInt());
    co_return;
}

int signalOf(const QString& name)
{
    static constexpr std::array<std::pair<const char*, int>, 7> Names{{{"SIGTERM", SIGTERM},
                                                                       {"SIGINT", SIGINT},
                                                                       {"SIGKILL", SIGKILL},
                                                                       {"SIGSEGV", SIGSEGV},
                                                                       {"SIGABRT", SIGABRT},
                                                                       {"SIGSTOP", SIGSTOP},
                                                                       {"SIGHUP", SIGHUP}}};
    for (const auto& [known, number] : Names) {
        if (name == QLatin1StringView(known))
            return number;
    }
    return name.toInt();
}

// The default action, whatever a sanitizer or this program has installed.
Task<> killItself(ScriptContext&, const ScriptStep& step)
{
    const int number = signalOf(step.words);
    ::signal(number, SIG_DFL);
    ::kill(::getpid(), number);
    co_return;
}

Task<> ignoreSignal(ScriptContext&, const ScriptStep& step)
{
    if (signalOf(step.words) == SIGTERM)
        ProcessSignals::ignoreTermination();
    else if (signalOf(step.words) == SIGINT)
        ProcessSignals::ignoreInterrupt();
    co_return;
}

Task<> closeInput(ScriptContext& context, const ScriptStep&)
{
    context.host.stopReading();
    ::close(STDIN_FILENO);
    co_return;
}

Task<> stopReading(ScriptContext& context, const ScriptStep&)
{
    context.host.stopReading();
    co_return;
}

Task<> closeOutput(ScriptContext& context, const ScriptStep&)
{
    context.conversation.out.close();
    co_return;
}

// A child that outlives its parent, and keeps its pipes open unless it is quiet.
Task<> spawn(ScriptContext& context, const ScriptStep& step)
{
    const QByteArray seconds = step.words.section(u' ', 0, 0).toLatin1();
    const bool ownSession = step.words.contains(u"setsid");
    const bool isQuiet = step.words.contains(u"quiet");
    // Closed by the exec: when it ends, the child is what it shall be.
    std::array<int, 2> ready{};
    if (::pipe2(ready.data(), O_CLOEXEC) != 0)
        co_return;
    const pid_t child = ::fork();
    if (child == 0) {
        if (ownSession)
            ::setsid();
        const int nothing = ::open("/dev/null", O_RDWR);
        ::dup2(nothing, STDIN_FILENO);
        if (isQuiet) {
            ::dup2(nothing, STDOUT_FILENO);
            ::dup2(nothing, STDERR_FILENO);
        }
        ::execlp("sleep", "sleep", seconds.constData(), nullptr);
        ::_exit(127);
    }
    ::close(ready[1]);
    char byte = 0;
    [[maybe_unused]] const ssize_t end = ::read(ready[0], &byte, 1);
    ::close(ready[0]);
    context.recorder.note({{"from", "spawn"}, {"pid", static_cast<qint64>(child)}});
    context.values.insert("pid", QString::number(child));
    co_return;
}

Task<> record(ScriptContext& context, const ScriptStep& step)
{
    context.recorder.open(context.folder + u'/' + step.words);
    co_return;
}

} // namespace

const ScriptVerbs& faultVerbs()
{
    static const ScriptVerbs verbs{
        {"raw", raw},
        {"base64", base64},
        {"big-line", bigLine},
        {"cut", cut},
        {"stderr", errorText},
        {"stderr-flood", errorFlood},
        {"exit", exitNow},
        {"kill", killItself},
        {"ignore", ignoreSignal},
        {"close-stdin", closeInput},
        {"close-stdout", closeOutput},
        {"stop-reading", stopReading},
        {"spawn", spawn},
        {"record", record},
    };
    return verbs;
}

} // namespace DemoAgent
