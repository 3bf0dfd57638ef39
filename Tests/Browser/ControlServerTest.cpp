#include "Browser/ControlServer.h"

#include "Browser/ControlSocket.h"
#include "Tests/Support/Eventually.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <condition_variable>
#include <ctime>
#include <mutex>
#include <thread>
#include <vector>

namespace Bralto {
namespace {

using namespace std::chrono_literals;
using ControlSocket::LineBuffer;

int entries(const char* folder)
{
    return int(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size());
}

int openDescriptors()
{
    return entries("/proc/self/fd");
}

int threads()
{
    return entries("/proc/self/task");
}

bool isClosedOnExec(const QString& descriptor)
{
    QFile info("/proc/self/fdinfo/" + descriptor);
    EXPECT_TRUE(info.open(QIODevice::ReadOnly));
    const QByteArray flags = info.readAll().split('\n')[1];
    return (flags.mid(6).trimmed().toInt(nullptr, 8) & O_CLOEXEC) != 0;
}

/// Keeps requests until the test answers them.
class Desk {
public:
    void take(QByteArray request, ControlServer::Answer answer)
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.emplace_back(std::move(request), std::move(answer));
        m_arrived.notify_all();
    }

    void waitFor(std::size_t count)
    {
        std::unique_lock lock(m_mutex);
        EXPECT_TRUE(m_arrived.wait_for(lock, 30s, [&] { return m_waiting.size() >= count; }));
    }

    std::pair<QByteArray, ControlServer::Answer> next()
    {
        waitFor(1);
        const std::lock_guard lock(m_mutex);
        auto first = std::move(m_waiting.front());
        m_waiting.erase(m_waiting.begin());
        return first;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::vector<std::pair<QByteArray, ControlServer::Answer>> m_waiting;
};

/// A connection as a client has it.
class Client {
public:
    explicit Client(const QString& path, std::chrono::seconds patience = 30s)
    {
        auto connection = ControlSocket::connect(path, patience);
        if (connection)
            m_connection = std::move(*connection);
    }

    [[nodiscard]] bool isConnected() const { return m_connection.isOpen(); }
    bool send(const QByteArray& bytes)
    {
        return ControlSocket::writeAll(m_connection.get(), bytes);
    }
    std::optional<QByteArray> read()
    {
        return ControlSocket::readLine(m_connection.get(), m_buffer);
    }
    std::optional<QByteArray> ask(const QByteArray& line)
    {
        send(line + '\n');
        return read();
    }
    void hangUp() { m_connection.reset(); }

private:
    FileDescriptor m_connection;
    LineBuffer m_buffer;
};

class RunningControlServer : public testing::Test {
protected:
    QTemporaryDir folder;
    QString path = folder.filePath("a.sock");

    /// Answers each request with itself.
    static void echo(const QByteArray& request, const ControlServer::Answer& answer)
    {
        answer("re: " + request);
    }

    ControlServer server{path, echo};

    void SetUp() override { ASSERT_EQ(server.start(), std::nullopt); }
};

TEST_F(RunningControlServer, AnswersRequestsOfOneConnectionInOrder)
{
    Client client(path);

    client.send("one\ntwo\nthree\n");

    EXPECT_EQ(client.read(), "re: one");
    EXPECT_EQ(client.read(), "re: two");
    EXPECT_EQ(client.read(), "re: three");
}

TEST_F(RunningControlServer, GivesBlankLinesNoAnswer)
{
    Client client(path);

    client.send("\n\none\n\n\ntwo\n");

    EXPECT_EQ(client.read(), "re: one");
    EXPECT_EQ(client.read(), "re: two");
}

TEST_F(RunningControlServer, HandsAnyBytesThrough)
{
    Client client(path);
    QByteArray bytes;
    for (int byte = 0; byte < 256; ++byte) {
        if (byte != '\n')
            bytes.append(char(byte));
    }

    EXPECT_EQ(client.ask(bytes), "re: " + bytes);
}

TEST_F(RunningControlServer, ServesOthersWhileOneSendsHalfALineAndStops)
{
    Client stuck(path);
    stuck.send("half");
    Client other(path);

    EXPECT_EQ(other.ask("x"), "re: x");

    EXPECT_EQ(stuck.ask(" a line"), "re: half a line");
}

TEST_F(RunningControlServer, HangsUpOnALineWithoutAnEnd)
{
    Client client(path);
    const QByteArray piece(1 << 20, 'x');
    qsizetype sent = 0;
    while (sent <= 2 * ControlMessage::LineLimit && client.send(piece))
        sent += piece.size();

    EXPECT_LT(sent, ControlMessage::LineLimit + 16 * piece.size());
    EXPECT_EQ(client.read(), std::nullopt);
    EXPECT_EQ(Client(path).ask("x"), "re: x");
}

TEST_F(RunningControlServer, ForgetsAClientThatGoes)
{
    {
        Client client(path);
        EXPECT_EQ(client.ask("x"), "re: x");
        EXPECT_EQ(server.clientCount(), 1u);
    }
    EXPECT_TRUE(eventually([this] { return server.clientCount() == 0; }));
}

TEST_F(RunningControlServer, ClosesWhatItAcceptsWhenAProgramIsStarted)
{
    Client client(path);
    EXPECT_EQ(client.ask("x"), "re: x");

    int sockets = 0;
    for (const QString& name : QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System)) {
        if (!QFile::symLinkTarget("/proc/self/fd/" + name).contains("socket:") || name.toInt() < 3)
            continue;
        ++sockets;
        EXPECT_TRUE(isClosedOnExec(name)) << qPrintable(name);
    }
    EXPECT_EQ(sockets, 3); // The listener, and both ends of the connection.
}

TEST_F(RunningControlServer, TakesItsSocketAwayWhenItStops)
{
    Client client(path);
    EXPECT_EQ(client.ask("x"), "re: x");

    server.stop();

    EXPECT_FALSE(server.isRunning());
    EXPECT_FALSE(QFileInfo::exists(path));
    EXPECT_EQ(client.ask("y"), std::nullopt);
    EXPECT_FALSE(Client(path).isConnected());
    server.stop(); // For the second time.
}

TEST_F(RunningControlServer, CanBeStartedAgain)
{
    EXPECT_EQ(server.start(), std::nullopt); // It is running.
    server.stop();

    EXPECT_EQ(server.start(), std::nullopt);
    EXPECT_EQ(Client(path).ask("x"), "re: x");
}

TEST_F(RunningControlServer, LeavesTheSocketOfANewerProcessAlone)
{
    Client old(path);
    EXPECT_EQ(old.ask("x"), "re: x");
    ControlServer newer(
        path, [](const QByteArray&, const ControlServer::Answer& answer) { answer("newer"); });

    EXPECT_EQ(newer.start(), std::nullopt);
    EXPECT_EQ(Client(path).ask("x"), "newer");
    EXPECT_EQ(old.ask("x"), "re: x"); // Alive, and out of reach for new clients.
    server.stop();

    EXPECT_EQ(Client(path).ask("x"), "newer");
}

TEST_F(RunningControlServer, RefusesOtherUsers)
{
    if (::getuid() != 0)
        GTEST_SKIP() << "Only root can become another user.";
    ::chmod(QFile::encodeName(folder.path()).constData(), 0755);
    ::chmod(QFile::encodeName(path).constData(), 0666);
    const QByteArray name = path.toUtf8();

    // Only system calls between fork and exit: other threads were not copied.
    const pid_t child = ::fork();
    if (child == 0) {
        sockaddr_un place{AF_UNIX, {}};
        std::memcpy(place.sun_path, name.constData(), std::size_t(name.size()));
        char byte = 0;
        const int peer = ::socket(AF_UNIX, SOCK_STREAM, 0);
        if (::setuid(65534) != 0 ||
            ::connect(peer, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0)
            ::_exit(2);
        ::send(peer, "x\n", 2, MSG_NOSIGNAL);
        ::_exit(::read(peer, &byte, 1) > 0 ? 1 : 0); // 0: closed without an answer.
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);

    EXPECT_EQ(status, 0);
    EXPECT_EQ(Client(path).ask("x"), "re: x");
}

TEST_F(RunningControlServer, SurvivesAThousandConnections)
{
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 10'000);
    ::setrlimit(RLIMIT_NOFILE, &limit);
    if (limit.rlim_cur < 4000)
        GTEST_SKIP() << "Both ends live in this process, which may not open as many.";
    const int before = openDescriptors();

    std::vector<std::unique_ptr<Client>> clients;
    for (int number = 0; number < 1000; ++number)
        clients.push_back(std::make_unique<Client>(path));
    for (int number = 0; number < 1000; number += 37) {
        const QByteArray text = QByteArray::number(number);
        EXPECT_EQ(clients[std::size_t(number)]->ask(text), "re: " + text);
    }
    clients.clear();

    EXPECT_TRUE(eventually([this] { return server.clientCount() == 0; }));
    // A client of an earlier test may still have been closing then.
    EXPECT_TRUE(eventually([&] { return openDescriptors() <= before; }));
    EXPECT_EQ(Client(path).ask("x"), "re: x");
}

TEST_F(RunningControlServer, KeepsDescriptorsForTheRestOfTheProgram)
{
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    rlimit low = before;
    low.rlim_cur = rlim_t(openDescriptors()) + 128 + 40;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);

    std::vector<std::unique_ptr<Client>> clients;
    int refused = 0;
    for (int number = 0; number < 60; ++number) {
        auto client = std::make_unique<Client>(path);
        if (client->ask("x") == "re: x")
            clients.push_back(std::move(client));
        else
            ++refused;
    }
    EXPECT_GT(refused, 0);
    EXPECT_GE(int(clients.size()), 15);

    clients.clear();
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_TRUE(eventually([this] { return Client(path).ask("x") == "re: x"; }));
}

TEST_F(RunningControlServer, WaitsAtRestWhenTheProgramHasNoDescriptorLeft)
{
    Client served(path);
    EXPECT_EQ(served.ask("x"), "re: x");
    rlimit before{};
    ::getrlimit(RLIMIT_NOFILE, &before);
    // One for the connection that is made now, none for the server's end of it.
    const int next = ::dup(0);
    ::close(next);
    rlimit none = before;
    none.rlim_cur = rlim_t(next) + 1;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);

    Client waiting(path, 1s);
    ASSERT_TRUE(waiting.isConnected());
    EXPECT_TRUE(waiting.send("late\n"));
    EXPECT_EQ(served.ask("y"), "re: y"); // Those who are there are served.
    const std::clock_t busy = std::clock();
    EXPECT_EQ(waiting.read(), std::nullopt); // After a second.
    EXPECT_LT(double(std::clock() - busy) / CLOCKS_PER_SEC, 0.3);

    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(waiting.read(), "re: late");
}

class SlowControlServer : public testing::Test {
protected:
    QTemporaryDir folder;
    QString path = folder.filePath("a.sock");
    std::shared_ptr<Desk> desk = std::make_shared<Desk>();
    std::optional<ControlServer> server;

    void SetUp() override
    {
        server.emplace(path, [desk = desk](QByteArray request, ControlServer::Answer answer) {
            desk->take(std::move(request), std::move(answer));
        });
        ASSERT_EQ(server->start(), std::nullopt);
    }

    void expectNobodyIsLeft()
    {
        EXPECT_TRUE(eventually([this] { return server->clientCount() == 0; }));
    }
};

TEST_F(SlowControlServer, BlocksOnlyTheClientThatWaits)
{
    Client first(path);
    Client second(path);
    first.send("slow\n");
    const auto slow = desk->next();
    second.send("fast\n");
    const auto fast = desk->next();

    fast.second("2");
    EXPECT_EQ(second.read(), "2");
    slow.second("1");
    EXPECT_EQ(first.read(), "1");
}

TEST_F(SlowControlServer, AsksForTheNextRequestOnlyOnceTheLastIsAnswered)
{
    Client client(path);
    client.send("one\ntwo\n");
    const auto one = desk->next();
    EXPECT_EQ(one.first, "one");

    std::thread([answer = one.second] { answer("1"); }).join();
    EXPECT_EQ(client.read(), "1");

    const auto two = desk->next();
    EXPECT_EQ(two.first, "two");
    two.second("2");
    EXPECT_EQ(client.read(), "2");
}

TEST_F(SlowControlServer, TakesTheFirstOfSeveralAnswers)
{
    Client client(path);
    client.send("x\ny\n");
    const auto asked = desk->next();

    asked.second("first");
    asked.second("second");
    desk->next().second("y");

    EXPECT_EQ(client.read(), "first");
    EXPECT_EQ(client.read(), "y");
}

TEST_F(SlowControlServer, RunsARequestToItsEndWhoseClientHasGone)
{
    Client client(path);
    client.send("x\nnever asked\n");
    auto asked = desk->next();
    client.hangUp();

    EXPECT_EQ(server->clientCount(), 1u);
    asked.second(QByteArray(1'000'000, 'x'));
    expectNobodyIsLeft();
}

TEST_F(SlowControlServer, HangsUpIfNobodyIsLeftToAnswer)
{
    Client client(path);
    client.send("x\n");

    desk->next(); // And forgotten.

    EXPECT_EQ(client.read(), std::nullopt);
    expectNobodyIsLeft();
}

TEST_F(SlowControlServer, StopsWhileARequestIsUnderWay)
{
    Client client(path);
    client.send("x\nnever asked\n");
    auto asked = desk->next();

    server->stop();

    EXPECT_EQ(client.read(), std::nullopt);
    EXPECT_EQ(server->clientCount(), 1u); // It still waits for its answer,
    asked.second("late");
    asked.second = nullptr;
    expectNobodyIsLeft(); // and then finds the socket shut.
}

TEST_F(SlowControlServer, MayBeDestroyedWhileARequestIsUnderWay)
{
    const int before = threads();
    Client client(path);
    client.send("x\n");
    auto asked = desk->next();

    server.reset();

    EXPECT_EQ(client.read(), std::nullopt);
    asked.second("late");
    asked.second = nullptr;
    EXPECT_TRUE(eventually([&] { return threads() == before - 1; }));
}

TEST(ControlServer, SaysWhyItDoesNotStart)
{
    ControlServer server("/no/such/folder/a.sock", [](const QByteArray&, auto) {});

    EXPECT_EQ(server.start()->message,
              "Couldn’t listen at /no/such/folder/a.sock: No such file or directory");
    EXPECT_FALSE(server.isRunning());
    EXPECT_EQ(server.clientCount(), 0u);
    server.stop();
}

} // namespace
} // namespace Bralto
