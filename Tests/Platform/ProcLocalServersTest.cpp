#include "Platform/ProcLocalServers.h"
#include "Platform/TcpTable.h"
#include "Tests/Support/Eventually.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

using namespace Bralto;

namespace {

/// A process in a folder that listens on both kinds of addresses on one port.
class ServerProcess {
public:
    explicit ServerProcess(const QString& folder)
    {
        const int four = listenOn(AF_INET, 0);
        sockaddr_in address{};
        socklen_t length = sizeof address;
        ::getsockname(four, reinterpret_cast<sockaddr*>(&address), &length);
        port = ntohs(address.sin_port);
        const int six = listenOn(AF_INET6, port);
        const QByteArray path = QFile::encodeName(folder);
        child = ::fork();
        if (child == 0) {
            if (::chdir(path.constData()) == 0)
                ::pause();
            ::_exit(1);
        }
        ::close(four);
        ::close(six);
    }
    ~ServerProcess()
    {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }

    int port = 0;

private:
    static int listenOn(int family, int port)
    {
        const int descriptor = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (family == AF_INET) {
            sockaddr_in address{};
            address.sin_family = AF_INET;
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            address.sin_port = htons(std::uint16_t(port));
            ::bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address);
        } else {
            sockaddr_in6 address{};
            address.sin6_family = AF_INET6;
            address.sin6_addr = in6addr_loopback;
            address.sin6_port = htons(std::uint16_t(port));
            ::bind(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address);
        }
        ::listen(descriptor, 1);
        return descriptor;
    }

    pid_t child = -1;
};

class ProcLocalServersTest : public testing::Test {
protected:
    QString project(const QString& name)
    {
        const QString path = QDir(home.path()).canonicalPath() + '/' + name;
        QDir().mkpath(path);
        return path;
    }
    bool finds(const QStringList& projects, const std::vector<LocalServer>& wanted)
    {
        return eventually([&] { return ProcLocalServers::search(projects) == wanted; });
    }

    QTemporaryDir home;
};

} // namespace

TEST(TcpTable, TellsWhoListensOnWhichPort)
{
    const QByteArray table =
        "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  "
        "timeout inode\n"
        "   0: 0100007F:0BB8 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1000      "
        "  0 4711 1 0000000000000000 100 0 0 10 0\n"
        "   1: 0100007F:0BB9 0100007F:1234 01 00000000:00000000 00:00000000 00000000  1000      "
        "  0 4712 1 0000000000000000 100 0 0 10 0\n"
        "   2: 00000000000000000000000001000000:1F90 00000000000000000000000000000000:0000 0A "
        "00000000:00000000 00:00000000 00000000     0        0 4713 1 0000000000000000 100 0 0";

    EXPECT_EQ(TcpTable::listeners(table),
              (std::vector<TcpTable::Listener>{{4711, 3000}, {4713, 8080}}));
}

TEST(TcpTable, PassesOverWhatItCannotRead)
{
    EXPECT_TRUE(TcpTable::listeners("").empty());
    EXPECT_TRUE(TcpTable::listeners("\n\n 0: x\n").empty());
    EXPECT_TRUE(TcpTable::listeners("0: 0100007F 0 0A 0 0 0 0 0 1\n").empty());
    EXPECT_TRUE(TcpTable::listeners("0: 0100007F:FFFFF 0 0A 0 0 0 0 0 1\n").empty());
    EXPECT_TRUE(TcpTable::listeners("0: 0100007F:0BB8 0 0A 0 0 0 0 0 one\n").empty());
}

TEST_F(ProcLocalServersTest, AServerBelongsToTheProjectThatItWorksIn)
{
    const QString app = project("app");
    const ServerProcess server(project("app/web"));

    EXPECT_TRUE(finds({project("other"), app}, {{server.port, app}}))
        << "told once, though it listens twice";
}

TEST_F(ProcLocalServersTest, ALongerNameIsAnotherProject)
{
    const ServerProcess server(project("app2"));
    const QString app = project("app");
    const QString longer = project("app2");

    EXPECT_TRUE(finds({app, longer}, {{server.port, longer}}));
    EXPECT_TRUE(ProcLocalServers::search({app}).empty());
}

TEST_F(ProcLocalServersTest, OfTwoProjectsInEachOtherTheFirstHasIt)
{
    const ServerProcess server(project("outer/inner"));
    const QString outer = project("outer");
    const QString inner = project("outer/inner");

    EXPECT_TRUE(finds({inner, outer}, {{server.port, inner}}));
    EXPECT_TRUE(finds({outer, inner}, {{server.port, outer}}));
}

TEST_F(ProcLocalServersTest, LooksInEveryFolderOfTheProjectsFolderAndInTheProject)
{
    const QString listed = project("projects/listed");
    const QString elsewhere = project("elsewhere");
    const ServerProcess first(listed);
    const ServerProcess second(elsewhere);
    ProcLocalServers servers([&] {
        return ProcLocalServers::Places{project("projects"), elsewhere};
    });

    std::vector<LocalServer> found;
    EXPECT_TRUE(eventually([&] {
        servers.scan([&](const std::vector<LocalServer>& result) { found = result; });
        QCoreApplication::processEvents();
        return found.size() == 2;
    }));
    for (const LocalServer& server : found)
        EXPECT_EQ(server.project, server.port == first.port ? listed : elsewhere);
}
