#include "Platform/LocalPaneProcess.h"

#include "Platform/QtRunLoop.h"
#include "Tests/Support/Eventually.h"

#include <QTest>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <string>
#include <string_view>

namespace Bralto {
namespace {

class PaneOnThisMachine : public testing::Test, public Kovalt::LocalProcessDelegate {
protected:
    QtRunLoop loop;
    std::string output;
    int ends = 0;
    winsize size{25, 80, 640, 400};
    std::optional<LocalPaneProcess> process{std::in_place, *this, loop};

    void start(const std::string& script)
    {
        process->start({.executable = "/bin/sh", .arguments = {"-c", script}});
    }
    void send(std::string_view text)
    {
        process->send({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }
    bool waitForOutput(std::string_view text)
    {
        return QTest::qWaitFor([&] { return output.find(text) != std::string::npos; }, 60'000);
    }
    bool waitForEnd()
    {
        return QTest::qWaitFor([&] { return ends > 0; }, 60'000);
    }

private:
    void processTerminated(Kovalt::LocalProcess&, std::optional<std::int32_t>) override { ++ends; }
    void dataReceived(std::span<const std::uint8_t> slice) override
    {
        output.append(slice.begin(), slice.end());
    }
    winsize getWindowSize() override { return size; }
};

TEST_F(PaneOnThisMachine, RunsAProgramAndTellsItsOutputAndItsEndOnce)
{
    EXPECT_EQ(process->pid(), 0);

    start("read word; echo \"<$word>\"");
    EXPECT_TRUE(process->isRunning());
    EXPECT_GT(process->pid(), 0);
    send("typed\n");

    EXPECT_TRUE(waitForEnd());
    EXPECT_NE(output.find("<typed>"), std::string::npos);
    EXPECT_EQ(ends, 1);
    EXPECT_FALSE(process->isRunning());
}

TEST_F(PaneOnThisMachine, TellsTheProgramItsNewWindowSize)
{
    start("trap 'stty size; exit' WINCH; echo ready; while :; do sleep 0.01; done");
    ASSERT_TRUE(waitForOutput("ready"));

    size = {50, 132, 0, 0};
    process->updateWindowSize();

    EXPECT_TRUE(waitForOutput("50 132"));
}

TEST_F(PaneOnThisMachine, AProgramThatIsNotThereEndsAtOnce)
{
    process->start({.executable = "/no/such/shell"});

    EXPECT_TRUE(waitForEnd());
}

TEST_F(PaneOnThisMachine, TerminatingAsksTheProgramToEndAndReportsNothing)
{
    start("echo ready; exec sleep 600");
    ASSERT_TRUE(waitForOutput("ready"));
    const pid_t pid = process->pid();

    process->terminate();

    EXPECT_FALSE(process->isRunning());
    EXPECT_TRUE(eventually([pid] { return ::kill(pid, 0) != 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(ends, 0);
}

TEST_F(PaneOnThisMachine, ItsEndHangsUpTheProgram)
{
    start("echo ready; exec sleep 600");
    ASSERT_TRUE(waitForOutput("ready"));
    const pid_t pid = process->pid();

    process.reset();

    EXPECT_TRUE(eventually([pid] { return ::kill(pid, 0) != 0; }));
}

} // namespace
} // namespace Bralto
