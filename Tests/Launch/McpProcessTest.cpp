// The program as an agent starts it, and the socket of a window beside it.
#include "Base/AppPaths.h"
#include "Browser/ControlServer.h"
#include "Browser/ControlSocket.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <mutex>

namespace Bralto {
namespace {

constexpr char NotRunning[] = "Bralto isn’t running for this project. Open this project in Bralto "
                              "first: these tools control the browser inside its window.";

class McpProcess : public testing::Test {
protected:
    QTemporaryDir home;
    AppPaths paths{home.path()};
    QString project = home.filePath("shop");
    QProcess process;
    std::mutex mutex;
    QList<QByteArray> requests;
    std::unique_ptr<ControlServer> window;

    void openWindow()
    {
        ASSERT_EQ(ControlSocket::prepareDirectory(paths.control()), std::nullopt);
        window = std::make_unique<ControlServer>(
            ControlSocket::path(paths.control(), project),
            [this](const QByteArray& request, const ControlServer::Answer& answer) {
                const std::lock_guard lock(mutex);
                requests.append(request);
                answer(ControlMessage::encodeResponse({ControlMessage::Text{"done"}}, false));
            });
        ASSERT_EQ(window->start(), std::nullopt);
    }

    void start(const QString& cwd, const QString& projectOfPane = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", home.path());
        environment.remove("BRALTO_PROJECT");
        if (!projectOfPane.isEmpty())
            environment.insert("BRALTO_PROJECT", projectOfPane);
        process.setProcessEnvironment(environment);
        QDir().mkpath(cwd);
        process.setWorkingDirectory(cwd);
        process.start(BRALTO_BIN "/CommandLineTool", {"--mcp"});
        ASSERT_TRUE(process.waitForStarted());
    }

    QByteArray readLine()
    {
        while (!process.canReadLine() && process.waitForReadyRead(30'000)) {
        }
        return process.readLine().chopped(1);
    }

    QByteArray ask(const QByteArray& line)
    {
        process.write(line + '\n');
        return readLine();
    }

    int end()
    {
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_EQ(process.readAllStandardError(), "");
        return process.exitCode();
    }
};

TEST_F(McpProcess, EndsWithItsInput)
{
    start(home.path());

    EXPECT_EQ(end(), 0);
    EXPECT_EQ(process.readAllStandardOutput(), "");
}

TEST_F(McpProcess, HoldsTheConversationThatARealAgentBegins)
{
    openWindow();
    start(project);

    EXPECT_EQ(ask(R"({"jsonrpc":"2.0","id":"server-discover-probe-1","method":"server/discover",)"
                  R"("params":{"_meta":{"protocolVersion":"2026-07-28"}}})"),
              R"({"jsonrpc":"2.0","id":"server-discover-probe-1",)"
              R"("error":{"code":-32601,"message":"Method not found: server/discover"}})");
    EXPECT_TRUE(ask(R"({"method":"initialize","params":{"protocolVersion":"2025-11-25",)"
                    R"("capabilities":{}},"jsonrpc":"2.0","id":0})")
                    .startsWith(R"({"jsonrpc":"2.0","id":0,"result":{"protocolVersion":)"
                                R"("2025-11-25","capabilities")"));
    process.write("{\"method\":\"notifications/initialized\",\"jsonrpc\":\"2.0\"}\n \t\r\n\n");
    const auto list =
        QJsonDocument::fromJson(ask(R"({"method":"tools/list","jsonrpc":"2.0","id":1})"));
    EXPECT_EQ(list[u"result"][u"tools"].toArray().size(), 13);
    EXPECT_EQ(ask(R"({"method":"tools/call","params":{"name":"open","arguments":{"url":"a"},)"
                  R"("_meta":{"claudecode/toolUseId":"t","progressToken":2}},"id":2})"),
              R"({"jsonrpc":"2.0","id":2,"result":)"
              R"({"content":[{"type":"text","text":"done"}],"isError":false}})");

    EXPECT_EQ(end(), 0);
    EXPECT_EQ(requests, QList<QByteArray>{R"({"tool":"open","arguments":{"url":"a"}})"});
}

TEST_F(McpProcess, AnswersWhatCameInOneGoInOrder)
{
    openWindow();
    start(project);
    QByteArray lines;
    for (int id = 0; id < 200; ++id)
        lines += R"({"method":"tools/call","params":{"name":"tabs"},"id":)" +
                 QByteArray::number(id) + "}\r\n";
    process.write(lines + R"({"id":"last","method":"ping"})");

    for (int id = 0; id < 200; ++id)
        ASSERT_TRUE(
            readLine().startsWith(R"({"jsonrpc":"2.0","id":)" + QByteArray::number(id) + ","));

    EXPECT_EQ(end(), 0);
    EXPECT_EQ(process.readAllStandardOutput(), ""); // The last line had no end.
    EXPECT_EQ(requests.size(), 200);
}

TEST_F(McpProcess, FindsTheWindowFromASubfolderOfTheProject)
{
    openWindow();
    start(project + "/src/deep");

    EXPECT_TRUE(ask(R"({"id":1,"method":"tools/call","params":{"name":"tabs"}})").contains("done"));
    EXPECT_EQ(end(), 0);
}

TEST_F(McpProcess, FindsTheWindowOfItsPaneFromAnywhere)
{
    openWindow();
    start(home.filePath("elsewhere"), project);

    EXPECT_TRUE(ask(R"({"id":1,"method":"tools/call","params":{"name":"tabs"}})").contains("done"));
    EXPECT_EQ(end(), 0);
}

TEST_F(McpProcess, FindsTheWindowThatIsOpenedLater)
{
    const QByteArray call = R"({"id":1,"method":"tools/call","params":{"name":"tabs"}})";
    const QByteArray failed =
        QByteArray(R"({"jsonrpc":"2.0","id":1,"result":{"content":[{"type":"text","text":")") +
        NotRunning;
    start(project);
    EXPECT_EQ(ask(call), failed + R"("}],"isError":true}})");

    openWindow();
    EXPECT_TRUE(ask(call).contains("done"));

    window->stop();
    EXPECT_EQ(ask(call), failed + R"("}],"isError":true}})");

    { // A window that crashed.
        const auto stale = ControlSocket::makeListener(window->path());
        ASSERT_TRUE(stale);
    }
    EXPECT_EQ(ask(call), failed + " (Connection refused)\"}],\"isError\":true}}");
    EXPECT_EQ(end(), 0);
}

TEST_F(McpProcess, AnswersWhatIsNoMessage)
{
    start(project);
    const QByteArray parseError =
        R"({"jsonrpc":"2.0","id":null,"error":{"code":-32700,"message":"Parse error"}})";

    EXPECT_EQ(ask("GET / HTTP/1.1\r"), parseError);
    EXPECT_EQ(ask(QByteArray("\0\xff\x01", 3)), parseError);
    EXPECT_EQ(ask(QByteArray(1'000'000, '[')), parseError);
    EXPECT_EQ(ask("[{\"id\":1,\"method\":\"ping\"},{\"method\":\"x\"}]"),
              R"([{"jsonrpc":"2.0","id":1,"result":{}}])");
    EXPECT_EQ(ask("7"),
              R"({"jsonrpc":"2.0","id":null,"error":{"code":-32600,"message":"Invalid request"}})");
    EXPECT_EQ(end(), 0);
}

TEST_F(McpProcess, TakesALongCall)
{
    openWindow();
    start(project);
    const QByteArray text(3'000'000, 'x');

    EXPECT_TRUE(
        ask(R"({"id":1,"method":"tools/call","params":{"name":"type","arguments":{"text":")" +
            text + R"("}}})")
            .contains("done"));

    EXPECT_EQ(end(), 0);
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests[0], R"({"tool":"type","arguments":{"text":")" + text + R"("}})");
}

TEST_F(McpProcess, EndsAtALineWithoutAnEnd)
{
    start(project);
    for (int mebibyte = 0; mebibyte < 129 && process.state() == QProcess::Running; ++mebibyte) {
        process.write(QByteArray(1 << 20, 'x'));
        process.waitForBytesWritten();
    }

    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(process.readAllStandardOutput(), "");
    EXPECT_EQ(process.readAllStandardError(), "");
}

TEST_F(McpProcess, LeavesTheWindowAloneWhenItDiesInTheMiddleOfACall)
{
    openWindow();
    start(project);
    process.write(R"({"id":1,"method":"tools/call","params":{"name":"type","arguments":{"text":")" +
                  QByteArray(30'000'000, 'x') + "\"}}}\n");
    ASSERT_TRUE(process.waitForBytesWritten());
    process.kill();
    ASSERT_TRUE(process.waitForFinished());

    start(project);
    EXPECT_TRUE(ask(R"({"id":1,"method":"tools/call","params":{"name":"tabs"}})").contains("done"));
    EXPECT_EQ(end(), 0);
}

TEST_F(McpProcess, OutlivesAnAgentThatReadsNoMore)
{
    openWindow();
    start(project);
    process.closeReadChannel(QProcess::StandardOutput);
    process.write(R"({"id":1,"method":"tools/call","params":{"name":"tabs"}})"
                  "\n"
                  R"({"id":2,"method":"tools/call","params":{"name":"tabs"}})"
                  "\n");

    EXPECT_EQ(end(), 0);
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(requests.size(), 2);
}

} // namespace
} // namespace Bralto
