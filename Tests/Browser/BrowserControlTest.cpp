#include "Browser/BrowserControl.h"

#include "Browser/ControlSocket.h"
#include "Tests/Support/Eventually.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <future>

namespace Bralto {
namespace {

class BrowserControlTest : public testing::Test {
protected:
    QTemporaryDir home;
    AppPaths paths{home.path()};
    LaunchRole role;
    std::vector<QByteArray> requests;
    std::vector<ControlServer::Answer> held;
    bool holds = false;

    void SetUp() override { role.folder = "/home/user/shop"; }

    std::unique_ptr<BrowserControl> control()
    {
        return std::make_unique<BrowserControl>(
            paths, role, [this](const QByteArray& request, const ControlServer::Answer& answer) {
                EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
                requests.push_back(request);
                if (holds)
                    held.push_back(answer);
                else
                    answer("re: " + request);
            });
    }

    [[nodiscard]] QString socket() const
    {
        return ControlSocket::path(paths.control(), *role.folder);
    }

    /// What an agent's call gives, made on a thread of its own.
    [[nodiscard]] std::future<QString> call(const QByteArray& request) const
    {
        return std::async(std::launch::async, [path = socket(), request] {
            const auto answer = ControlSocket::call(path, request, std::chrono::seconds(30));
            return answer ? QString::fromUtf8(*answer) : answer.error().message;
        });
    }

    template <typename Condition>
    static bool spinUntil(Condition condition)
    {
        return eventually([&] {
            QCoreApplication::processEvents();
            return condition();
        });
    }

    static QString result(std::future<QString>& answer)
    {
        EXPECT_TRUE(spinUntil(
            [&] { return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
        return answer.get();
    }
};

TEST_F(BrowserControlTest, AnswersOnTheMainThread)
{
    const auto running = control();
    running->start();
    ASSERT_TRUE(running->isRunning());

    auto answer = call("x");

    EXPECT_EQ(result(answer), "re: x");
    EXPECT_EQ(QFileInfo(paths.control()).permissions() &
                  (QFile::ReadGroup | QFile::ReadOther | QFile::ExeGroup | QFile::ExeOther),
              QFile::Permissions());
}

TEST_F(BrowserControlTest, IsForProjectsOnly)
{
    role.folder.reset();
    const auto off = control();

    off->start();

    EXPECT_FALSE(off->isRunning());
    EXPECT_FALSE(QFileInfo::exists(paths.support()));
}

TEST_F(BrowserControlTest, StartsOnce)
{
    const auto running = control();
    running->start();
    running->start();

    auto answer = call("x");
    EXPECT_EQ(result(answer), "re: x");
}

TEST_F(BrowserControlTest, TakesItsSocketAwayAtTheEnd)
{
    auto running = control();
    running->start();
    EXPECT_TRUE(QFileInfo::exists(socket()));

    running->stop();
    EXPECT_FALSE(running->isRunning());
    EXPECT_FALSE(QFileInfo::exists(socket()));

    running->start();
    EXPECT_TRUE(QFileInfo::exists(socket()));
    running.reset();
    EXPECT_FALSE(QFileInfo::exists(socket()));
}

TEST_F(BrowserControlTest, IsSilentOnceItHasStopped)
{
    const auto running = control();
    running->start();
    const auto client = ControlSocket::connect(socket(), std::chrono::seconds(30));
    ASSERT_TRUE(client);
    ASSERT_TRUE(ControlSocket::writeAll(client->get(), "x\n"));
    // It may be on its way to the main thread by now, which has not run since.

    running->stop();
    QCoreApplication::processEvents();

    ControlSocket::LineBuffer buffer;
    EXPECT_EQ(ControlSocket::readLine(client->get(), buffer), std::nullopt);
    EXPECT_TRUE(requests.empty());
}

TEST_F(BrowserControlTest, StopsWhileAToolIsAtWork)
{
    holds = true;
    const auto running = control();
    running->start();
    auto answer = call("slow");
    ASSERT_TRUE(spinUntil([this] { return !held.empty(); }));

    running->stop();

    EXPECT_EQ(result(answer), "Bralto didn’t answer in time");
    held.front()("late");
}

TEST_F(BrowserControlTest, TellsTheLogWhyItIsOff)
{
    static QString log;
    log.clear();
    const auto before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { log += text; });
    paths = AppPaths(home.filePath(QString(100, u'h')));
    const auto off = control();
    off->start();
    qInstallMessageHandler(before);

    EXPECT_FALSE(off->isRunning());
    EXPECT_EQ(log, "Bralto: browser control is off: Socket path is too long: " + socket());
}

class McpConfig : public testing::Test {
protected:
    QTemporaryDir home;
    AppPaths paths{home.path()};
    LaunchRole role;

    QString program(const QString& path)
    {
        const QString full = home.filePath(path);
        QDir().mkpath(QFileInfo(full).path());
        QFile file(full);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        return full;
    }

    void SetUp() override
    {
        role.hostExecutable = program("host/Bralto.app/Contents/MacOS/Bralto");
        role.hostBundlePath = home.filePath("host/Bralto.app");
        role.bundlePath = home.filePath("shop.app");
    }

    [[nodiscard]] QByteArray contents() const
    {
        QFile file(paths.mcpConfig());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

TEST_F(McpConfig, NamesTheProgramAsItsServer)
{
    EXPECT_EQ(BrowserControl::mcpConfigFlags(paths, role),
              (QStringList{"--mcp-config",
                           home.filePath("Library/Application Support/Bralto/mcp.json")}));

    EXPECT_EQ(contents(), "{\n"
                          "  \"mcpServers\": {\n"
                          "    \"bralto\": {\n"
                          "      \"args\": [\n"
                          "        \"--mcp\"\n"
                          "      ],\n"
                          "      \"command\": \"" +
                              role.hostExecutable.toUtf8() +
                              "\",\n"
                              "      \"type\": \"stdio\"\n"
                              "    }\n"
                              "  }\n"
                              "}\n");
}

TEST_F(McpConfig, TakesTheBundlesOwnProgramIfTheHostsIsGone)
{
    QFile::remove(role.hostExecutable);
    EXPECT_EQ(BrowserControl::executable(role), std::nullopt);
    EXPECT_EQ(BrowserControl::mcpConfigFlags(paths, role), QStringList());
    EXPECT_FALSE(QFileInfo::exists(paths.mcpConfig()));

    const QString own = program("shop.app/Contents/MacOS/Bralto");
    EXPECT_EQ(BrowserControl::executable(role), own);

    QFile::setPermissions(own, QFile::ReadOwner);
    EXPECT_EQ(BrowserControl::executable(role), std::nullopt);
}

TEST_F(McpConfig, IsNotThereOutsideABundle)
{
    role.bundlePath.clear();
    EXPECT_EQ(BrowserControl::mcpConfigFlags(paths, role), QStringList());
    role.bundlePath = home.filePath("build");
    EXPECT_EQ(BrowserControl::mcpConfigFlags(paths, role), QStringList());
}

TEST_F(McpConfig, IsWrittenOnlyWhenItChanges)
{
    static_cast<void>(BrowserControl::mcpConfigFlags(paths, role));
    const QDateTime past = QDateTime::currentDateTime().addDays(-1);
    const auto age = [&] {
        QFile file(paths.mcpConfig());
        return file.open(QIODevice::ReadWrite) &&
               file.setFileTime(past, QFileDevice::FileModificationTime);
    };
    ASSERT_TRUE(age());

    static_cast<void>(BrowserControl::mcpConfigFlags(paths, role));
    EXPECT_LT(QFileInfo(paths.mcpConfig()).lastModified(), past.addSecs(60));

    role.hostExecutable = program("new \"host\"/Bralto.app/Contents/MacOS/Bralto");
    static_cast<void>(BrowserControl::mcpConfigFlags(paths, role));
    EXPECT_TRUE(contents().contains("/new \\\"host\\\"/Bralto.app/"));
}

TEST_F(McpConfig, ThatCantBeWrittenIsNamedAllTheSame)
{
    QFile blocker(home.filePath("Library"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));

    EXPECT_EQ(BrowserControl::mcpConfigFlags(paths, role),
              (QStringList{"--mcp-config", paths.mcpConfig()}));
}

} // namespace
} // namespace Bralto
