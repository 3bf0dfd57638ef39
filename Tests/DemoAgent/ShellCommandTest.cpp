#include "DemoAgent/Behaviours/ShellCommand.h"

#include "DemoAgent/Task.h"

#include <QEventLoop>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace DemoAgent;
using namespace std::chrono_literals;

namespace {

struct ShellCommandTest : testing::Test {
    ShellCommand::Outcome run(const QString& command, std::chrono::milliseconds limit = 30s,
                              const QString& place = {})
    {
        ShellCommand shell(command, place.isEmpty() ? folder.path() : place, limit);
        ShellCommand::Outcome outcome;
        QEventLoop loop;
        Task<> wait = keep(shell, outcome, loop);
        wait.start();
        loop.exec();
        return outcome;
    }

    static Task<> keep(ShellCommand& shell, ShellCommand::Outcome& outcome, QEventLoop& loop)
    {
        outcome = co_await shell.outcome();
        loop.quit();
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(ShellCommandTest, BothStreamsAndTheExitCodeAreKept)
{
    const auto outcome = run("echo out; echo err >&2; exit 7");

    EXPECT_EQ(outcome.output, "out\n");
    EXPECT_EQ(outcome.errors, "err\n");
    EXPECT_EQ(outcome.exitCode, 7);
    EXPECT_FALSE(outcome.timedOut);
}

TEST_F(ShellCommandTest, AfterTheLimitTheCommandIsEndedAndWhatItSaidIsKept)
{
    const auto outcome = run("echo begun; exec sleep 600", 500ms);

    EXPECT_TRUE(outcome.timedOut);
    EXPECT_EQ(outcome.exitCode, -1);
    EXPECT_EQ(outcome.output, "begun\n");
    EXPECT_EQ(ShellCommand::runningGroup(), 0);
}

TEST_F(ShellCommandTest, ALongOutputIsCutAndReadToItsEnd)
{
    const auto outcome = run("head -c 1000000 /dev/zero | tr '\\0' x; echo done >&2");

    EXPECT_EQ(outcome.output.size(), 65536);
    EXPECT_EQ(outcome.errors, "done\n");
    EXPECT_EQ(outcome.exitCode, 0);
}

TEST_F(ShellCommandTest, ASignalThatEndedItIsAFailure)
{
    EXPECT_EQ(run("kill -9 $$").exitCode, -1);
}

TEST_F(ShellCommandTest, ItsStandardInputIsEmpty)
{
    EXPECT_EQ(run("cat; echo end").output, "end\n");
}

TEST_F(ShellCommandTest, AFolderThatIsMissingIsAFailure)
{
    const QString place = folder.filePath("nowhere");

    EXPECT_EQ(run("true", 30s, place).exitCode, -1);
}
