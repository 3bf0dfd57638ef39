#include "Platform/ProcProcessInspector.h"
#include "Tests/Support/Eventually.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <thread>

namespace Bralto {
namespace {

/// A shell that does what it is told, a line at a time, as the parent of other processes.
class InspectedShell : public testing::Test {
protected:
    QTemporaryDir folder;
    ProcProcessInspector inspector;
    QProcess shell;

    void SetUp() override
    {
        shell.setWorkingDirectory(folder.path());
        shell.start("/bin/sh", QStringList());
        ASSERT_TRUE(shell.waitForStarted());
    }
    void TearDown() override
    {
        // What the shell started would outlive it.
        killBelow(pid());
        shell.kill();
        shell.waitForFinished();
    }

    void killBelow(pid_t parent)
    {
        for (const pid_t child : inspector.childPids(parent)) {
            killBelow(child);
            ::kill(child, SIGKILL);
        }
    }
    pid_t pid() const { return pid_t(shell.processId()); }

    /// Runs the line and returns what it prints, up to the line that it ends with.
    QByteArray run(const QByteArray& line)
    {
        shell.write(line + "\necho done\n");
        QByteArray output;
        while (!output.endsWith("done\n") && shell.waitForReadyRead(30'000))
            output += shell.readAllStandardOutput();
        return output.chopped(qMin(qsizetype(5), output.size()));
    }
    /// A copy of a program that sleeps, under that name.
    QByteArray sleeperNamed(const QString& name)
    {
        const QString path = folder.filePath(name);
        EXPECT_TRUE(QFile::copy("/bin/sleep", path)) << qPrintable(name);
        return "'" + QFile::encodeName(path) + "' 600 &";
    }
    /// The names, once the new processes have become what they were started for.
    bool hasNames(QStringList names)
    {
        names.sort();
        return eventually([&] {
            QStringList found = inspector.childNames(pid());
            found.sort();
            return found == names;
        });
    }
};

TEST_F(InspectedShell, AProcessWithoutChildrenHasNone)
{
    run("true");

    EXPECT_TRUE(inspector.childPids(pid()).empty());
    EXPECT_TRUE(inspector.childNames(pid()).empty());
}

TEST_F(InspectedShell, DirectChildrenAreListedAndTheirChildrenAreNot)
{
    const QList<QByteArray> said =
        run("sleep 600 & echo $!; sh -c 'sleep 601 & echo started; wait' & echo $!").split('\n');
    ASSERT_GE(said.size(), 2);

    EXPECT_TRUE(hasNames({"sleep", "sh"}));

    const std::vector<pid_t> children = inspector.childPids(pid());
    EXPECT_EQ(children.size(), 2U);
    EXPECT_NE(std::find(children.begin(), children.end(), said[0].toInt()), children.end());
}

TEST_F(InspectedShell, NamesMayHoldAnything)
{
    // The kernel keeps 15 bytes of a name.
    const QStringList names{"a) Z 1 (b",          "two words", "line\nfeed",
                            "\u00e4\u00f6\u00fc", "(((",       ")"};
    for (const QString& name : names)
        run(sleeperNamed(name));

    EXPECT_TRUE(hasNames(names));
}

TEST_F(InspectedShell, AnEndedProcessThatNobodyWaitedForIsGone)
{
    // The shell becomes a program that never waits for its children.
    shell.write("sleep 0.01 & exec sleep 600\n");
    ASSERT_TRUE(shell.waitForBytesWritten());
    ASSERT_TRUE(eventually([this] {
        const QString path = QString("/proc/%1/comm").arg(pid());
        QFile comm(path);
        return comm.open(QIODevice::ReadOnly) && comm.readAll() == "sleep\n";
    }));

    EXPECT_TRUE(eventually([this] { return inspector.childPids(pid()).empty(); }));
    EXPECT_TRUE(inspector.childNames(pid()).empty());
}

TEST_F(InspectedShell, ListsNoMoreThanItHasRoomFor)
{
    run("i=0; while [ $i -lt 300 ]; do sleep 600 & i=$((i+1)); done");

    const std::vector<pid_t> children = inspector.childPids(pid());

    EXPECT_EQ(children.size(), ProcProcessInspector::MostChildren);
    EXPECT_TRUE(
        std::all_of(children.begin(), children.end(), [](pid_t child) { return child > 0; }));
    // The rest is left for the test's end.
    for (int round = 0; round < 2; ++round) {
        for (const pid_t child : inspector.childPids(pid()))
            inspector.end(child, ProcessInspector::Ending::Force);
        EXPECT_TRUE(eventually(
            [&] { return inspector.childPids(pid()).size() <= (round == 0 ? 44U : 0U); }));
    }
}

TEST_F(InspectedShell, TellsTheCurrentDirectory)
{
    ASSERT_TRUE(QDir(folder.path()).mkpath("deep er/\u00fcber"));

    run("cd 'deep er'/\u00fcber");

    EXPECT_EQ(inspector.currentDirectory(pid()),
              QFileInfo(folder.path()).canonicalFilePath() + "/deep er/\u00fcber");
}

TEST_F(InspectedShell, AFolderThatWasDeletedIsNone)
{
    run("mkdir gone; cd gone; rmdir ../gone");

    EXPECT_EQ(inspector.currentDirectory(pid()), std::nullopt);

    // Another one in its place, or one whose name says so, is not where the process is.
    run("mkdir '../gone (deleted)'");
    EXPECT_EQ(inspector.currentDirectory(pid()), std::nullopt);
}

TEST_F(InspectedShell, AFolderMayBeNamedLikeADeletedOne)
{
    run("mkdir 'not (deleted)'; cd 'not (deleted)'");

    EXPECT_TRUE(inspector.currentDirectory(pid()).value_or("").endsWith("/not (deleted)"));
}

TEST_F(InspectedShell, AsksAProcessToEndAndForcesOneThatIgnoresThat)
{
    run("sh -c 'trap \"\" TERM; echo ready >&2; while :; do sleep 600; done' 2>ready &"
        " while [ ! -s ready ]; do :; done");
    const std::vector<pid_t> stubborn = inspector.childPids(pid());
    ASSERT_EQ(stubborn.size(), 1U);
    run("sleep 600 &");

    for (const pid_t child : inspector.childPids(pid()))
        inspector.end(child, ProcessInspector::Ending::Ask);
    EXPECT_TRUE(eventually([&] { return inspector.childPids(pid()) == stubborn; }));
    const std::vector<pid_t> grandchildren = inspector.childPids(stubborn[0]);

    inspector.end(stubborn[0], ProcessInspector::Ending::Force);
    EXPECT_TRUE(eventually([&] { return inspector.childPids(pid()).empty(); }));
    for (const pid_t child : grandchildren)
        inspector.end(child, ProcessInspector::Ending::Force);
}

TEST(ProcProcessInspector, ChildrenOfEveryThreadAreChildren)
{
    pid_t child = 0;
    std::vector<pid_t> children;
    std::thread([&] {
        child = ::fork();
        if (child == 0) {
            ::pause();
            ::_exit(0);
        }
        children = ProcProcessInspector().childPids(::getpid());
    }).join();

    EXPECT_EQ(children, std::vector{child});
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
}

TEST(ProcProcessInspector, AProcessThatHasGoneIsNothing)
{
    const pid_t gone = ::fork();
    if (gone == 0)
        ::_exit(0);
    ::waitpid(gone, nullptr, 0);
    ProcProcessInspector inspector;

    EXPECT_TRUE(inspector.childPids(gone).empty());
    EXPECT_TRUE(inspector.childNames(gone).empty());
    EXPECT_EQ(inspector.currentDirectory(gone), std::nullopt);
    inspector.end(gone, ProcessInspector::Ending::Force);
}

TEST(ProcProcessInspector, IdsThatMeanGroupsOfProcessesAreNone)
{
    ProcProcessInspector inspector;

    for (const pid_t pid : {0, -1, -12345}) {
        SCOPED_TRACE(pid);
        EXPECT_TRUE(inspector.childPids(pid).empty());
        EXPECT_EQ(inspector.currentDirectory(pid), std::nullopt);
        // Would end this very test.
        inspector.end(pid, ProcessInspector::Ending::Force);
    }
}

TEST(ProcProcessInspector, LooksAtThisProcessAsWell)
{
    EXPECT_EQ(ProcProcessInspector().currentDirectory(::getpid()),
              QFileInfo(".").canonicalFilePath());
}

} // namespace
} // namespace Bralto
