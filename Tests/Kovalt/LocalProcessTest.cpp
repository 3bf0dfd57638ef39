#include "Kovalt/Process/LocalProcess.h"

#include "Kovalt/Process/ProcessEnvironment.h"
#include "Tests/Support/ProcessHarness.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

using namespace Kovalt;
using Lines = std::vector<std::string>;

namespace {

/// There is no such process any longer, not even a zombie.
bool isGone(pid_t pid)
{
    return ::kill(pid, 0) != 0 && errno == ESRCH;
}

class TemporaryFolder {
public:
    TemporaryFolder() { m_path = ::mkdtemp(m_template.data()); }
    ~TemporaryFolder() { std::filesystem::remove_all(m_path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    [[nodiscard]] const std::string& path() const { return m_path; }

private:
    std::string m_template = std::filesystem::temp_directory_path() / "kovalt-XXXXXX";
    std::string m_path;
};

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

TEST(LocalProcess, AChildThatExitsAtOnceStillDeliversItsLastBytes)
{
    for (int round = 0; round < 20; ++round) {
        ProcessHarness harness;
        std::string before;
        harness.terminated = [&] { before = harness.output; };

        harness.process->startProcess({.executable = "/bin/echo", .arguments = {"last words"}});

        ASSERT_TRUE(harness.process->isRunning());
        ASSERT_TRUE(harness.runUntilTerminated());
        EXPECT_EQ(before, "last words\r\n");
        EXPECT_EQ(harness.statuses, std::vector<std::optional<int>>{0});
        EXPECT_FALSE(harness.process->isRunning());
    }
}

TEST(LocalProcess, TheRawWaitStatusIsReported)
{
    ProcessHarness harness;
    harness.start("exit 3");
    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(harness.statuses.back(), 3 << 8);

    harness.statuses.clear();
    harness.start("kill -KILL $$");
    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(harness.statuses.back(), SIGKILL);
}

TEST(LocalProcess, AMissingProgramReportsStatus32512)
{
    ProcessHarness harness;

    harness.process->startProcess({.executable = "/nowhere/at-all"});

    EXPECT_TRUE(harness.process->isRunning());
    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(harness.statuses, std::vector<std::optional<int>>{32512});
}

TEST(LocalProcess, AStartThatFailsSaysNothingAndAnotherMayFollow)
{
    ProcessHarness harness;
    harness.start("echo one");
    ASSERT_TRUE(harness.runUntilTerminated());
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const int next = ::dup(STDIN_FILENO);
    ::close(next);
    // No descriptor is left for a terminal.
    const rlimit none = {static_cast<rlim_t>(next), before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);

    harness.start("echo two");

    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_FALSE(harness.process->isRunning());
    EXPECT_EQ(harness.process->childfd(), -1);
    EXPECT_EQ(harness.statuses.size(), 1U);
    harness.start("echo three");
    ASSERT_TRUE(harness.runUntil([&] { return harness.statuses.size() == 2; }));
    EXPECT_EQ(harness.output, "one\r\nthree\r\n");
}

TEST(LocalProcess, SendingBeforeTheStartDoesNothing)
{
    ProcessHarness harness;
    harness.process->setDebugIO(true);

    harness.send("text");
    harness.process->terminate();
    harness.process->updateWindowSize();

    EXPECT_EQ(harness.lines(), Lines{});
    EXPECT_FALSE(harness.process->isRunning());
    EXPECT_EQ(harness.process->childfd(), -1);
    EXPECT_EQ(harness.process->shellPid(), 0);
}

TEST(LocalProcess, WhatIsSentArrivesInOrderWithoutBlocking)
{
    ProcessHarness harness;
    std::string text;
    while (text.size() < 1000000)
        text += std::to_string(text.size()) + ' ';
    harness.start("stty raw -echo; echo ready; exec head -c " + std::to_string(text.size()));
    ASSERT_TRUE(harness.runUntilOutput("ready\n"));
    harness.output.clear();

    const std::string_view all = text;
    for (std::size_t at = 0; at < all.size(); at += 4099)
        harness.send(all.substr(at, 4099));

    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_TRUE(harness.output == text);
}

TEST(LocalProcess, WhenWhatWaitedIsWrittenIsTold)
{
    constexpr std::size_t Size = 1000000;
    ProcessHarness harness;
    const auto gate =
        std::filesystem::temp_directory_path() / ("kovalt-gate-" + std::to_string(getpid()));
    ASSERT_EQ(mkfifo(gate.c_str(), 0600), 0);
    harness.start("stty raw -echo; printf ready; read -r go < " + gate.string() +
                  "; head -c 1000000 | wc -c");
    ASSERT_TRUE(harness.runUntilOutput("ready"));
    EXPECT_FALSE(harness.process->isSendWaiting());

    harness.send(std::string(Size, 'x'));

    EXPECT_TRUE(harness.process->isSendWaiting());
    EXPECT_EQ(harness.sendsCompleted, 0);
    std::ofstream(gate) << "go\n";
    ASSERT_TRUE(harness.runUntil([&] { return harness.sendsCompleted > 0; }));
    EXPECT_FALSE(harness.process->isSendWaiting());
    EXPECT_TRUE(harness.runUntilOutput("1000000"));
    std::filesystem::remove(gate);
}

TEST(LocalProcess, AReplyInAFloodGoesOutAtOnce)
{
    ProcessHarness harness;
    std::size_t bytes = 0;
    harness.received = [&](std::span<const std::uint8_t> slice) {
        if (bytes == 0)
            harness.send("reply\n");
        bytes += slice.size();
    };

    harness.start("yes & read -r line; kill -9 $!; exit 7");

    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(harness.statuses.back(), 7 << 8);
}

TEST(LocalProcess, AReplyGoesOutWhileReadingIsSuspended)
{
    ProcessHarness harness;
    TemporaryFolder folder;
    harness.start("yes & read -r line; echo $line > " + folder.path() + "/reply; kill -9 $!");
    ASSERT_TRUE(ProcessHarness::waitUntil([&] { return harness.process->isReadSuspended(); }));

    harness.send("through\n");

    EXPECT_TRUE(ProcessHarness::waitUntil(
        [&] { return contentOf(folder.path() + "/reply") == "through\n"; }));
    EXPECT_TRUE(harness.process->isReadSuspended());
}

TEST(LocalProcess, AFloodNeitherGrowsNorLosesNorReordersAByte)
{
    ProcessHarness harness;
    constexpr std::size_t Last = 11500000; // About 100 MB with their line ends.
    std::size_t total = 0;
    std::size_t number = 0;
    std::size_t expected = 1;
    std::size_t largestBacklog = 0;
    bool inOrder = true;
    harness.received = [&](std::span<const std::uint8_t> slice) {
        inOrder = inOrder && slice.size() <= 131072;
        total += slice.size();
        largestBacklog = std::max(largestBacklog, harness.process->pendingBytes());
        for (const auto code : slice) {
            if (code == '\n') {
                inOrder = inOrder && number == expected++;
                number = 0;
            } else if (code != '\r') {
                number = number * 10 + code - '0';
            }
        }
    };

    harness.start("exec seq 1 " + std::to_string(Last));

    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_TRUE(inOrder);
    EXPECT_EQ(expected, Last + 1);
    EXPECT_GT(total, 100000000U);
    EXPECT_LT(largestBacklog, PendingData::HighWaterBytes + 131072);
}

TEST(LocalProcess, ReadingStopsAtTheHighMarkAndGoesOnAtTheLowOne)
{
    ProcessHarness harness;
    constexpr std::size_t Size = 12000000;
    harness.start("exec head -c " + std::to_string(Size) + " /dev/zero");

    // The loop does not run: nobody takes anything.
    ASSERT_TRUE(ProcessHarness::waitUntil([&] { return harness.process->isReadSuspended(); }));
    const auto pending = harness.process->pendingBytes();
    EXPECT_GE(pending, PendingData::HighWaterBytes);
    EXPECT_LT(pending, PendingData::HighWaterBytes + 131072);

    bool suspendedAboveLowMark = true;
    std::size_t total = 0;
    bool resumed = false;
    harness.received = [&](std::span<const std::uint8_t> slice) {
        total += slice.size();
        resumed = resumed || !harness.process->isReadSuspended();
        if (!resumed && harness.process->pendingBytes() <= PendingData::LowWaterBytes)
            suspendedAboveLowMark = false;
    };
    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_TRUE(suspendedAboveLowMark);
    EXPECT_EQ(total, Size);
}

TEST(LocalProcess, TheLoopHasATurnWithinASliceAndAChunk)
{
    ProcessHarness harness;
    int chunksSinceTurn = 0;
    int mostChunks = 0;
    std::size_t total = 0;
    const std::function<void()> turn = [&] {
        chunksSinceTurn = 0;
        harness.loop.post(turn);
    };
    harness.loop.post(turn);
    harness.received = [&](std::span<const std::uint8_t> slice) {
        // Each piece uses a slice up.
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(4);
        while (std::chrono::steady_clock::now() < end) {
        }
        mostChunks = std::max(mostChunks, ++chunksSinceTurn);
        total += slice.size();
    };

    harness.start("exec head -c 3000000 /dev/zero");

    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(total, 3000000U);
    EXPECT_EQ(mostChunks, 1);
}

TEST(LocalProcess, ASynchronousReadWaitsForEachPiece)
{
    ProcessHarness harness(Delivery::Synchronous);
    std::size_t total = 0;
    harness.received = [&](std::span<const std::uint8_t> slice) {
        EXPECT_EQ(harness.process->pendingBytes(), 0U);
        EXPECT_FALSE(harness.process->isReadSuspended());
        total += slice.size();
    };

    harness.start("exec head -c 20000000 /dev/zero");

    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(total, 20000000U);
}

TEST(LocalProcess, ASynchronousReadIsLetGoWhenTheProcessIsDestroyed)
{
    ProcessHarness harness(Delivery::Synchronous);
    harness.start("exec yes");
    const auto pid = harness.process->shellPid();

    harness.process.reset();

    EXPECT_TRUE(ProcessHarness::waitUntil([pid] { return isGone(pid); }));
}

TEST(LocalProcess, TheEndOfTheTerminalIsNotTheEndOfTheProcess)
{
    ProcessHarness harness;
    harness.start("exec sleep 1000 <&- >&- 2>&-");
    const auto pid = harness.process->shellPid();

    ASSERT_TRUE(harness.runUntil([&] { return !harness.process->isRunning(); }));
    EXPECT_EQ(harness.process->childfd(), -1);
    EXPECT_TRUE(harness.statuses.empty());

    ::kill(pid, SIGKILL);
    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(harness.statuses.back(), SIGKILL);
}

TEST(LocalProcess, TheEndIsReportedThoughAnotherProcessKeepsTheTerminal)
{
    ProcessHarness harness;
    harness.start("trap '' HUP; sleep 1000 & echo pid=$!.");

    ASSERT_TRUE(harness.runUntilTerminated());

    const auto start = harness.output.find("pid=");
    ASSERT_NE(start, std::string::npos);
    const auto sleeper = std::stoi(harness.output.substr(start + 4));
    EXPECT_EQ(::kill(sleeper, SIGKILL), 0);
}

TEST(LocalProcess, AFinishedChildIsNoZombie)
{
    ProcessHarness harness;
    harness.start("exit 0");
    const auto pid = harness.process->shellPid();

    ASSERT_TRUE(harness.runUntilTerminated());

    EXPECT_TRUE(isGone(pid));
}

TEST(LocalProcess, TerminatingReportsNothingAndLeavesNoZombie)
{
    ProcessHarness harness;
    harness.start("trap 'exit 0' TERM; echo ready; while :; do sleep 1; done");
    const auto pid = harness.process->shellPid();
    ASSERT_TRUE(harness.runUntilOutput("ready"));

    harness.process->terminate();

    EXPECT_FALSE(harness.process->isRunning());
    EXPECT_EQ(harness.process->childfd(), -1);
    EXPECT_TRUE(ProcessHarness::waitUntil([pid] { return isGone(pid); }));
    harness.loop.runUntil([] { return false; }, std::chrono::milliseconds(20));
    EXPECT_TRUE(harness.statuses.empty());
}

TEST(LocalProcess, DestroyingHangsTheChildUp)
{
    ProcessHarness harness;
    harness.start("echo ready; exec sleep 1000");
    const auto pid = harness.process->shellPid();
    ASSERT_TRUE(harness.runUntilOutput("ready"));

    harness.process.reset();

    EXPECT_TRUE(ProcessHarness::waitUntil([pid] { return isGone(pid); }));
    EXPECT_TRUE(harness.statuses.empty());
}

TEST(LocalProcess, AHandlerMayDestroyTheProcess)
{
    ProcessHarness harness;
    bool destroyed = false;
    harness.received = [&](std::span<const std::uint8_t>) {
        EXPECT_FALSE(destroyed);
        harness.process.reset();
        destroyed = true;
    };

    harness.start("exec yes");

    EXPECT_TRUE(harness.runUntil([&] { return destroyed; }));
    harness.loop.runUntil([] { return false; }, std::chrono::milliseconds(20));
    EXPECT_TRUE(harness.statuses.empty());
}

TEST(LocalProcess, ASecondStartWaitsForTheFirstToEnd)
{
    ProcessHarness harness;
    harness.start("read -r line; echo first");
    const auto first = harness.process->shellPid();

    harness.start("echo second");
    EXPECT_EQ(harness.process->shellPid(), first);
    harness.send("\n");
    ASSERT_TRUE(harness.runUntilTerminated());
    harness.start("echo third");
    ASSERT_TRUE(harness.runUntil([&] { return harness.statuses.size() == 2; }));

    EXPECT_EQ(harness.output, "\r\nfirst\r\nthird\r\n");
}

TEST(LocalProcess, TheNextProgramMayBeStartedWhenTheEndIsReported)
{
    ProcessHarness harness;
    harness.terminated = [&] {
        if (harness.statuses.size() < 5)
            harness.start("echo again");
    };

    harness.start("echo once");

    ASSERT_TRUE(harness.runUntil([&] { return harness.statuses.size() == 5; }));
    EXPECT_EQ(harness.output, "once\r\nagain\r\nagain\r\nagain\r\nagain\r\n");
}

TEST(LocalProcess, TheTerminalHasTheDelegatesSize)
{
    ProcessHarness harness;
    harness.size = {33, 101, 808, 528};
    harness.start("stty size; read -r line; stty size");
    ASSERT_TRUE(harness.runUntilOutput("33 101\r\n"));

    harness.size = {12, 34, 0, 0};
    harness.process->updateWindowSize();
    harness.send("\n");

    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_NE(harness.output.find("12 34\r\n"), std::string::npos);
}

TEST(LocalProcess, TheProgramGetsItsNameArgumentsEnvironmentAndDirectory)
{
    ProcessHarness harness;

    harness.process->startProcess({.executable = "/bin/sh",
                                   .arguments = {"-c",
                                                 "tr '\\0' ' ' < /proc/$$/cmdline; echo; "
                                                 "echo $ONE $HOME.; pwd",
                                                 "a b"},
                                   .environment = Lines{"ONE=1", "PATH=/usr/bin:/bin"},
                                   .execName = "-sh",
                                   .currentDirectory = "/usr"});

    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_TRUE(harness.output.starts_with("-sh -c tr ")) << harness.output;
    EXPECT_TRUE(harness.output.ends_with("a b \r\n1 .\r\n/usr\r\n")) << harness.output;
}

TEST(LocalProcess, ADirectoryThatIsMissingIsIgnored)
{
    ProcessHarness harness;

    harness.process->startProcess(
        {.executable = "/bin/echo", .arguments = {"here"}, .currentDirectory = "/nowhere/at-all"});

    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(harness.output, "here\r\n");
}

TEST(LocalProcess, WithoutAnEnvironmentTheDefaultOneIsGiven)
{
    ProcessHarness harness;

    harness.start("echo $TERM $COLORTERM $LANG");

    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(harness.output, "xterm-256color truecolor en_US.UTF-8\r\n");
}

TEST(LocalProcess, NoDescriptorLeaksIntoTheProgram)
{
    ProcessHarness harness;
    const auto leaking = ::fcntl(STDERR_FILENO, F_DUPFD, 77);
    ProcessHarness other;
    other.start("exec sleep 1000");

    harness.start("for d in " + std::to_string(leaking) + " " +
                  std::to_string(other.process->childfd()) +
                  "; do [ -e /proc/$$/fd/$d ] && echo leak; done; echo done");

    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(harness.output, "done\r\n");
    EXPECT_NE(::fcntl(other.process->childfd(), F_GETFD) & FD_CLOEXEC, 0);
    ::close(leaking);
}

TEST(LocalProcess, TheProgramBeginsWithDefaultSignals)
{
    ::signal(SIGUSR1, SIG_IGN);
    sigset_t blocked;
    sigset_t before;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, &before);
    ProcessHarness harness;

    harness.process->startProcess(
        {.executable = "/bin/grep", .arguments = {"Sig[BI]", "/proc/self/status"}});

    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::signal(SIGUSR1, SIG_DFL);
    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(harness.output, "SigBlk:\t0000000000000000\r\nSigIgn:\t0000000000000000\r\n");
}

TEST(LocalProcess, TheDefaultEnvironmentNamesTheUserTwice)
{
    for (const auto* name : {"LOGNAME", "USER", "DISPLAY", "LC_TYPE", "HOME"})
        ::setenv(name, (std::string("my-") + name).c_str(), 1);

    EXPECT_EQ(getEnvironmentVariables(),
              (Lines{"TERM=xterm-256color", "COLORTERM=truecolor", "LANG=en_US.UTF-8",
                     "LOGNAME=my-LOGNAME", "USER=my-USER", "DISPLAY=my-DISPLAY",
                     "LC_TYPE=my-LC_TYPE", "USER=my-USER", "HOME=my-HOME"}));
    ::unsetenv("DISPLAY");
    ::unsetenv("LC_TYPE");
    EXPECT_EQ(getEnvironmentVariables("vt100", TrueColor::No),
              (Lines{"TERM=vt100", "LANG=en_US.UTF-8", "LOGNAME=my-LOGNAME", "USER=my-USER",
                     "USER=my-USER", "HOME=my-HOME"}));
}

TEST(LocalProcess, DebuggingPrintsWhatIsReadAndWritten)
{
    ProcessHarness harness;
    harness.process->setDebugIO(true);
    harness.start("stty -echo; echo ready; read -r line");
    ASSERT_TRUE(harness.runUntilOutput("ready\r\n"));

    harness.send("hi");
    harness.send("\n");

    ASSERT_TRUE(harness.runUntilTerminated());
    const auto lines = harness.lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(lines.front().starts_with("[READ] count=")) << lines.front();
    EXPECT_NE(std::find(lines.begin(), lines.end(), "[READ] count=0 received from host total=7"),
              lines.end());
    for (const auto* line :
         {"[SEND-1] Queuing data to client: [104, 105]", "[SEND-1] completed bytes=2",
          "[SEND-2] Queuing data to client: [10]", "[SEND-2] completed bytes=3"}) {
        EXPECT_NE(std::find(lines.begin(), lines.end(), line), lines.end()) << line;
    }
}

TEST(LocalProcess, HostLoggingWritesEachPieceToAFileOfItsOwn)
{
    ProcessHarness harness;
    TemporaryFolder folder;
    harness.process->setHostLogging(folder.path());
    harness.start("stty -echo; echo one; read -r line; echo two");
    ASSERT_TRUE(harness.runUntilOutput("one\r\n"));
    harness.send("\n");
    ASSERT_TRUE(harness.runUntilTerminated());

    std::string logged;
    int files = 0;
    while (std::filesystem::exists(folder.path() + "/log-" + std::to_string(files)))
        logged += contentOf(folder.path() + "/log-" + std::to_string(files++));
    EXPECT_GE(files, 2);
    EXPECT_EQ(logged, "one\r\ntwo\r\n");
}

TEST(LocalProcess, ALogThatCantBeWrittenIsPrintedAndNotCounted)
{
    ProcessHarness harness;
    TemporaryFolder folder;
    harness.process->setHostLogging(folder.path() + "/missing");
    harness.start("echo one");
    ASSERT_TRUE(harness.runUntilTerminated());
    ASSERT_FALSE(harness.lines().empty());
    EXPECT_EQ(harness.lines().front(), "Got error while logging data dump to " + folder.path() +
                                           "/missing/log-0: No such file or directory");

    harness.process->setHostLogging(folder.path());
    harness.statuses.clear();
    harness.start("echo two");
    ASSERT_TRUE(harness.runUntilTerminated());
    EXPECT_EQ(contentOf(folder.path() + "/log-0"), "two\r\n");
}
