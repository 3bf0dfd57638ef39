#include "Platform/ChildProcess.h"

#include "Tests/Support/Eventually.h"
#include "Tests/Support/ProcessTable.h"

#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QUuid>

#include <gtest/gtest.h>

#include <condition_variable>
#include <csignal>
#include <fcntl.h>
#include <mutex>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Bralto {
namespace {

using namespace std::chrono_literals;

/// Everything that a child's pipes delivered, and a wait for more of it.
class Delivery {
public:
    AgentPipes pipes()
    {
        AgentPipes pipes;
        pipes.output = [this](std::string_view bytes) {
            change([&] {
                m_outputSize += qsizetype(bytes.size());
                if (m_output.size() < 1 << 20)
                    m_output.append(bytes.data(), qsizetype(bytes.size()));
            });
        };
        pipes.errors = [this](std::string_view bytes) {
            change([&] { m_errors.append(bytes.data(), qsizetype(bytes.size())); });
        };
        pipes.outputEnded = [this] {
            change([this] {
                m_calls.append("outputEnded");
                m_outputEnded = true;
            });
        };
        pipes.ended = [this](int status) {
            change([this, status] {
                m_calls.append("ended");
                m_status = status;
            });
        };
        return pipes;
    }

    template <typename Holds>
    bool waitFor(Holds holds)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, 60s, [&] { return holds(*this); });
    }

    bool waitForEnd()
    {
        return waitFor([](const Delivery& seen) { return seen.m_outputEnded && seen.m_status; });
    }

    QByteArray m_output; ///< The first megabyte.
    qsizetype m_outputSize = 0;
    QByteArray m_errors;
    QByteArrayList m_calls;
    bool m_outputEnded = false;
    std::optional<int> m_status;

private:
    template <typename Change>
    void change(Change change)
    {
        const std::lock_guard lock(m_mutex);
        change();
        m_changed.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
};

class ChildProcess : public testing::Test {
protected:
    ~ChildProcess() override
    {
        m_process.reset();
        // The deliveries are this object's, so the reader, which collects the guardian last, must
        // have gone before it does.
        EXPECT_TRUE(eventually([] { return ProcessTable::childrenOf(getpid()).isEmpty(); }));
        EXPECT_TRUE(eventually([this] { return ours().isEmpty(); }));
    }

    /// The child's variable by which it and its descendants are found.
    [[nodiscard]] QByteArray mark() const { return "BRALTO_TEST_MARK=" + m_mark; }
    [[nodiscard]] QList<qint64> ours() const { return ProcessTable::withVariable(mark()); }

    AgentLaunch shell(const QString& script)
    {
        AgentLaunch launch;
        launch.program = "/bin/sh";
        launch.arguments = {"-c", script};
        launch.environment = QProcessEnvironment::systemEnvironment().toStringList();
        launch.environment.append(QString::fromLatin1(mark()));
        launch.folder = m_folder.path();
        return launch;
    }

    void start(const QString& script)
    {
        auto process = m_launcher.launch(shell(script), m_seen.pipes());
        ASSERT_TRUE(process) << qPrintable(process.error());
        m_process = *process;
    }

    QTemporaryDir m_folder;
    QByteArray m_mark = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    Delivery m_seen;
    ChildProcessLauncher m_launcher;
    std::shared_ptr<AgentProcess> m_process;
};

TEST_F(ChildProcess, EchoesItsInputAndEndsWithIt)
{
    start("exec cat");

    m_process->write("one\n");
    m_process->write("two\n");
    m_process->closeInput();

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_output, "one\ntwo\n");
    EXPECT_EQ(m_seen.m_status, 0);
    EXPECT_FALSE(m_process->isRunning());
}

TEST_F(ChildProcess, RunsInTheFolderWithTheEnvironmentThatItWasGiven)
{
    AgentLaunch launch = shell("pwd; echo $ONLY; echo ${HOME-none}");
    launch.environment = {"ONLY=this one", QString::fromLatin1(mark())};
    m_process = *m_launcher.launch(launch, m_seen.pipes());

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_output, m_folder.path().toUtf8() + "\nthis one\nnone\n");
}

TEST_F(ChildProcess, IsTheLeaderOfASessionAndAGroupOfItsOwn)
{
    start("cut -d ' ' -f 1,5,6 /proc/$$/stat; cat");

    ASSERT_TRUE(m_seen.waitFor([](const Delivery& seen) { return seen.m_output.contains('\n'); }));
    const QByteArray id = QByteArray::number(m_process->processId());
    EXPECT_EQ(m_seen.m_output, id + ' ' + id + ' ' + id + '\n');
}

TEST_F(ChildProcess, HasStandardSignalsAndNoDescriptorButTheStreams)
{
    std::signal(SIGUSR1, SIG_IGN);
    start("ls /proc/self/fd | tr '\\n' ' '; grep -E 'SigBlk|SigIgn' /proc/self/status");

    ASSERT_TRUE(m_seen.waitForEnd());
    std::signal(SIGUSR1, SIG_DFL);
    // "3" is the listing's own.
    EXPECT_EQ(m_seen.m_output, "0 1 2 3 SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
}

TEST_F(ChildProcess, ReportsItsExitCodeAfterItsLastWords)
{
    start("echo no such thing >&2; exit 127");

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_status, 127);
    EXPECT_EQ(m_seen.m_errors, "no such thing\n");
    EXPECT_EQ(m_seen.m_calls, (QByteArrayList{"ended", "outputEnded"}));
}

TEST_F(ChildProcess, ReportsDeathBySignalAsAShellDoes)
{
    start("kill -SEGV $$");

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_status, 128 + SIGSEGV);
}

TEST_F(ChildProcess, TellsTheSystemsReasonIfTheProgramIsMissing)
{
    AgentLaunch launch = shell("");
    launch.program = "/no/such/program";

    const auto process = m_launcher.launch(launch, m_seen.pipes());

    ASSERT_FALSE(process);
    EXPECT_EQ(process.error(), "No such file or directory");
}

TEST_F(ChildProcess, TellsTheSystemsReasonIfTheProgramMayNotRun)
{
    QFile file(m_folder.filePath("no-program"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    AgentLaunch launch = shell("");
    launch.program = file.fileName();

    const auto process = m_launcher.launch(launch, m_seen.pipes());

    ASSERT_FALSE(process);
    EXPECT_EQ(process.error(), "Permission denied");
}

TEST_F(ChildProcess, TellsTheSystemsReasonIfTheFolderIsMissing)
{
    AgentLaunch launch = shell("true");
    launch.folder = "/no/such/folder";

    const auto process = m_launcher.launch(launch, m_seen.pipes());

    ASSERT_FALSE(process);
    EXPECT_EQ(process.error(), "No such file or directory");
}

TEST_F(ChildProcess, RefusesAnArgumentThatNoProgramCanGet)
{
    AgentLaunch launch = shell(QString("true") + QChar(0) + "false");

    EXPECT_FALSE(m_launcher.launch(launch, m_seen.pipes()));
}

TEST_F(ChildProcess, WritesAHundredMegabytesInOrderToASlowReader)
{
    // A reader in small pieces that starts late; the checksum stands for the order.
    start("read first; echo ready; dd bs=8191 iflag=fullblock 2>/dev/null | cksum");
    const QByteArray piece = QByteArray(999'999, 'x') + '\n';
    for (int index = 0; index < 100; ++index)
        m_process->write(index == 50 ? QByteArray(1'000'000, 'y') : piece);
    EXPECT_TRUE(m_process->isRunning());

    m_process->closeInput();

    ASSERT_TRUE(m_seen.waitForEnd());
    // What the same bytes without their first line give.
    QTemporaryDir folder;
    QFile same(folder.filePath("same"));
    ASSERT_TRUE(same.open(QIODevice::WriteOnly));
    for (int index = 1; index < 100; ++index)
        same.write(index == 50 ? QByteArray(1'000'000, 'y') : piece);
    same.close();
    Delivery expected;
    const auto check =
        m_launcher.launch(shell("cksum < '" + same.fileName() + "'"), expected.pipes());
    ASSERT_TRUE(check);
    ASSERT_TRUE(expected.waitForEnd());
    EXPECT_EQ(m_seen.m_output, "ready\n" + expected.m_output);
}

TEST_F(ChildProcess, DeliversAHundredMegabytes)
{
    start("head -c 100000000 /dev/zero");

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_outputSize, 100'000'000);
}

TEST_F(ChildProcess, DeliversBytesThatAreNoText)
{
    start("printf '\\377\\000\\376\\n'; printf '\\200' >&2");

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_output, QByteArray("\xff\0\xfe\n", 4));
    EXPECT_EQ(m_seen.m_errors, "\x80");
}

TEST_F(ChildProcess, SurvivesAWriteToAChildThatClosedItsInput)
{
    start("exec 0<&-; echo closed; while :; do sleep 0.01; done");
    ASSERT_TRUE(m_seen.waitFor([](const Delivery& seen) { return !seen.m_output.isEmpty(); }));

    for (int index = 0; index < 100; ++index)
        m_process->write(QByteArray(100'000, 'x'));

    EXPECT_TRUE(m_process->isRunning());
}

TEST_F(ChildProcess, SurvivesAWriteToAChildThatIsGone)
{
    start("exit 3");
    ASSERT_TRUE(m_seen.waitForEnd());

    m_process->write("anyone?\n");
    m_process->interrupt();
    m_process->terminate();
    m_process->kill();

    EXPECT_FALSE(m_process->isRunning());
}

TEST_F(ChildProcess, PassesSignalsOn)
{
    start("trap 'echo int' INT; trap 'echo term; exit 5' TERM; echo ready; "
          "while :; do sleep 0.01; done");
    ASSERT_TRUE(m_seen.waitFor([](const Delivery& seen) { return seen.m_output == "ready\n"; }));

    m_process->interrupt();
    ASSERT_TRUE(m_seen.waitFor([](const Delivery& seen) { return seen.m_output.contains("int"); }));
    m_process->terminate();

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_output, "ready\nint\nterm\n");
    EXPECT_EQ(m_seen.m_status, 5);
}

TEST_F(ChildProcess, KillsTheWholeGroup)
{
    start("trap '' TERM; sleep 1000 & sleep 1000 & echo ready; wait");
    ASSERT_TRUE(m_seen.waitFor([](const Delivery& seen) { return seen.m_output == "ready\n"; }));

    m_process->kill();

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_status, 128 + SIGKILL);
    EXPECT_TRUE(eventually([this] { return ours().isEmpty(); }));
}

TEST_F(ChildProcess, TakesEverythingAlongWhenItEnds)
{
    // The sleeper has a session of its own, holds the output and has lost its parent.
    start("setsid sh -c 'setsid sleep 1000 & sleep 1000' & sleep 0.1; echo done");

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_output, "done\n");
    EXPECT_TRUE(eventually([this] { return ours().isEmpty(); }));
}

TEST_F(ChildProcess, ReportsTheEndOfItsOutputAlsoIfItRunsOn)
{
    start("echo last; exec 1>&-; sleep 1000");

    ASSERT_TRUE(m_seen.waitFor([](const Delivery& seen) { return seen.m_outputEnded; }));
    EXPECT_EQ(m_seen.m_status, std::nullopt);
    EXPECT_TRUE(m_process->isRunning());

    m_process->kill();

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_calls, (QByteArrayList{"outputEnded", "ended"}));
}

TEST_F(ChildProcess, IsGoneSoonAfterItsHandleAlsoIfItIgnoresThePoliteSignal)
{
    start("trap '' TERM HUP INT; echo ready; while :; do sleep 0.01; done");
    ASSERT_TRUE(m_seen.waitFor([](const Delivery& seen) { return seen.m_output == "ready\n"; }));
    ASSERT_FALSE(ours().isEmpty());

    const auto before = std::chrono::steady_clock::now();
    m_process.reset();

    EXPECT_LT(std::chrono::steady_clock::now() - before, 500ms);
    EXPECT_TRUE(eventually([this] { return ours().isEmpty(); }));
}

TEST_F(ChildProcess, LetsGoOfAChildThatNeverReads)
{
    start("echo ready; sleep 1000");
    ASSERT_TRUE(m_seen.waitFor([](const Delivery& seen) { return seen.m_output == "ready\n"; }));
    m_process->write(QByteArray(10'000'000, 'x'));

    const auto before = std::chrono::steady_clock::now();
    m_process.reset();

    EXPECT_LT(std::chrono::steady_clock::now() - before, 500ms);
}

TEST_F(ChildProcess, EndsWithItsGuardian)
{
    start("echo ready; sleep 1000");
    ASSERT_TRUE(m_seen.waitFor([](const Delivery& seen) { return seen.m_output == "ready\n"; }));
    const QList<qint64> children = ProcessTable::childrenOf(getpid());
    ASSERT_EQ(children.size(), 1);

    ::kill(pid_t(children.first()), SIGKILL);

    ASSERT_TRUE(m_seen.waitForEnd());
    EXPECT_EQ(m_seen.m_status, 128 + SIGKILL);
    EXPECT_FALSE(m_process->isRunning());
    for (const qint64 process : ours()) // Nobody is left to clean up but this test.
        ::kill(pid_t(process), SIGKILL);
}

TEST_F(ChildProcess, ItsGuardianHoldsNoCopyOfTheHeap)
{
    constexpr std::size_t Blocks = 60'000;
    const auto* before = static_cast<char*>(sbrk(0));
    std::vector<std::unique_ptr<char[]>> heap;
    for (std::size_t index = 0; index < Blocks; ++index)
        heap.push_back(std::make_unique<char[]>(1000));
    if (static_cast<char*>(sbrk(0)) - before < 32 << 20)
        GTEST_SKIP() << "this build's allocator has its memory elsewhere";

    start("echo ready; sleep 1000");
    ASSERT_TRUE(m_seen.waitFor([](const Delivery& seen) { return seen.m_output == "ready\n"; }));
    for (const auto& block : heap)
        std::fill_n(block.get(), 1000, 'x'); // What both had in common is now twice in memory.

    const QList<qint64> children = ProcessTable::childrenOf(getpid());
    ASSERT_EQ(children.size(), 1);
    const QByteArray memory =
        ProcessTable::contents(QString("/proc/%1/smaps_rollup").arg(children.first()));
    const QByteArray line = memory.mid(memory.indexOf("Private_Dirty:") + 14);
    ASSERT_TRUE(memory.contains("Private_Dirty:"));
    EXPECT_LT(line.left(line.indexOf("kB")).trimmed().toInt(), 8 << 10);
}

TEST_F(ChildProcess, TwoHundredLaunchesLeaveNothing)
{
    const qsizetype before = ProcessTable::openDescriptors();

    for (int index = 0; index < 200; ++index) {
        SCOPED_TRACE(index);
        Delivery seen;
        auto process =
            m_launcher.launch(shell("setsid sleep 1000 & echo $$; read line"), seen.pipes());
        ASSERT_TRUE(process) << qPrintable(process.error());
        ASSERT_TRUE(seen.waitFor([](const Delivery& all) { return !all.m_output.isEmpty(); }));
        std::shared_ptr<AgentProcess> child = *process;
        if (index % 2)
            child->closeInput();
        else
            child->kill();
        ASSERT_TRUE(seen.waitForEnd());
    }

    EXPECT_TRUE(eventually([] { return ProcessTable::childrenOf(getpid()).isEmpty(); }));
    EXPECT_TRUE(eventually([this] { return ours().isEmpty(); }));
    EXPECT_TRUE(eventually([before] { return ProcessTable::openDescriptors() == before; }));
}

/// The program dies of SIGKILL while its child runs; what the child started must not survive.
TEST_F(ChildProcess, NothingSurvivesTheProgramsSuddenDeath)
{
    const QByteArray script =
        "trap '' TERM HUP; setsid sh -c 'setsid sleep 1000 & trap \"\" TERM HUP; sleep 1000; :' & "
        "sleep 1000 & echo ready; while :; do sleep 0.01; done";
    std::array<int, 2> output{-1, -1};
    ASSERT_EQ(pipe2(output.data(), O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], 1);
    const QByteArray variable = mark();
    const std::array<const char*, 3> environment{variable.constData(), "PATH=/usr/bin:/bin",
                                                 nullptr};
    const std::array<const char*, 5> arguments{"agent-host", "/bin/sh", "-c", script.constData(),
                                               nullptr};
    pid_t host = 0;
    ASSERT_EQ(posix_spawn(&host, BRALTO_BIN "/agent-host", &actions, nullptr,
                          const_cast<char**>(arguments.data()),
                          const_cast<char**>(environment.data())),
              0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(output[1]);
    std::array<char, 16> text{};
    ASSERT_EQ(read(output[0], text.data(), text.size()), 6) << "the agent says that it is ready";
    ASSERT_TRUE(eventually([this] { return ours().size() >= 6; }));

    ::kill(host, SIGKILL);
    waitpid(host, nullptr, 0);

    EXPECT_TRUE(eventually([this] { return ours().isEmpty(); }, 10s));
    ::close(output[0]);
}

} // namespace
} // namespace Bralto
