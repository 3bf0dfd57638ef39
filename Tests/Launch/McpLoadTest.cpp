// Many agents and one window: the server's processes, the socket, the main thread and the tools.
#include "Browser/BrowserControl.h"
#include "Tests/Support/ControllerHarness.h"
#include "Tests/Support/Eventually.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

namespace Bralto {
namespace {

constexpr int Agents = 16;
constexpr int Calls = 10'000;

int entries(const char* folder)
{
    return int(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size());
}

/// The tab that this call names, and no other.
QByteArray tabName(int agent, int call)
{
    return "x" + QByteArray::number(agent) + '-' + QByteArray::number(call);
}

class AgentsOfAWindow : public ControllerHarness {
protected:
    QTemporaryDir home;
    QString project = home.filePath("shop");

    std::unique_ptr<BrowserControl> openWindow()
    {
        LaunchRole role;
        role.folder = project;
        auto control = std::make_unique<BrowserControl>(
            AppPaths(home.path()), role,
            [this](const QByteArray& request, const ControlServer::Answer& answer) {
                controller.respond(request, answer);
            });
        control->start();
        return control;
    }

    std::unique_ptr<QProcess> start(int agent)
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", home.path());
        environment.insert("BRALTO_PROJECT", project);
        process->setProcessEnvironment(environment);
        process->start(BRALTO_BIN "/CommandLineTool", {"--mcp"});
        for (int call = 0; call < Calls / Agents; ++call)
            process->write(R"({"id":)" + QByteArray::number(call) +
                           R"(,"method":"tools/call","params":{"name":"console",)"
                           R"("arguments":{"tab":")" +
                           tabName(agent, call) + "\"}}}\n");
        process->closeWriteChannel();
        return process;
    }

    static QByteArray answer(int agent, int call)
    {
        return R"({"jsonrpc":"2.0","id":)" + QByteArray::number(call) +
               R"(,"result":{"content":[{"type":"text","text":"No browser tab )" +
               tabName(agent, call) + R"(. Use tabs to see the open ones."}],"isError":true}})";
    }
};

TEST_F(AgentsOfAWindow, EachGetTheAnswersToTheirOwnCallsInOrderAndNothingIsLeft)
{
    const int descriptors = entries("/proc/self/fd");
    const int threads = entries("/proc/self/task");
    const auto window = openWindow();
    ASSERT_TRUE(window->isRunning());
    std::vector<std::unique_ptr<QProcess>> agents;
    for (int agent = 0; agent < Agents; ++agent)
        agents.push_back(start(agent));

    for (const auto& process : agents) {
        EXPECT_TRUE(eventually(
            [&] {
                QCoreApplication::processEvents(QEventLoop::AllEvents, 100);
                return process->state() == QProcess::NotRunning;
            },
            std::chrono::seconds(120)));
    }

    for (int agent = 0; agent < Agents; ++agent) {
        QList<QByteArray> lines = agents[std::size_t(agent)]->readAllStandardOutput().split('\n');
        EXPECT_EQ(lines.takeLast(), "");
        ASSERT_EQ(lines.size(), Calls / Agents);
        for (int call = 0; call < Calls / Agents; ++call)
            ASSERT_EQ(lines[call], answer(agent, call));
    }
    agents.clear();
    window->stop();
    EXPECT_TRUE(eventually([&] { return entries("/proc/self/fd") == descriptors; }));
    EXPECT_TRUE(eventually([&] { return entries("/proc/self/task") == threads; }));
}

} // namespace
} // namespace Bralto
