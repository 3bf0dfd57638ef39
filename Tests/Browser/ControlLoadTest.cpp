// Many agents at once.
#include "Browser/ControlServer.h"
#include "Browser/ControlSocket.h"
#include "Tests/Support/Eventually.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace Bralto {
namespace {

using namespace std::chrono_literals;

constexpr int Agents = 16;
constexpr int Calls = 10'000;

int entries(const char* folder)
{
    return int(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size());
}

/// Answers each request on a thread of its own, as the main thread does: now the oldest one, now
/// the newest.
class Worker {
public:
    ~Worker()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_isDone = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }

    void take(QByteArray request, ControlServer::Answer answer)
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.emplace_back(std::move(request), std::move(answer));
        m_changed.notify_all();
    }

private:
    void run()
    {
        std::unique_lock lock(m_mutex);
        for (bool takesNewest = false;; takesNewest = !takesNewest) {
            m_changed.wait(lock, [this] { return m_isDone || !m_waiting.empty(); });
            if (m_waiting.empty())
                return;
            if (takesNewest)
                std::swap(m_waiting.front(), m_waiting.back());
            const auto [request, answer] = std::move(m_waiting.front());
            m_waiting.pop_front();
            lock.unlock();
            answer("re: " + request);
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::pair<QByteArray, ControlServer::Answer>> m_waiting;
    bool m_isDone = false;
    std::thread m_thread{[this] { run(); }};
};

class ManyAgents : public testing::Test {
protected:
    QTemporaryDir folder;
    QString path = folder.filePath("a.sock");
    Worker worker;
    ControlServer server{path, [this](QByteArray request, ControlServer::Answer answer) {
                             worker.take(std::move(request), std::move(answer));
                         }};

    void SetUp() override { ASSERT_EQ(server.start(), std::nullopt); }

    static QByteArray request(int agent, int call)
    {
        // Of all lengths, some longer than a read and than a socket's buffer.
        const int padding = call % 97 == 0 ? 300'000 : call % 500;
        return QByteArray::number(agent) + ':' + QByteArray::number(call) + ':' +
               QByteArray(padding, 'x');
    }

    /// Runs `agent(number)` on a thread for each; what is left of them afterwards is nothing.
    template <typename Agent>
    void run(Agent agent)
    {
        const int descriptors = entries("/proc/self/fd");
        const int threads = entries("/proc/self/task");
        std::vector<std::thread> running;
        for (int number = 0; number < Agents; ++number)
            running.emplace_back([agent, number] { agent(number); });
        for (std::thread& thread : running)
            thread.join();
        EXPECT_TRUE(eventually([this] { return server.clientCount() == 0; }));
        EXPECT_TRUE(eventually([&] { return entries("/proc/self/fd") == descriptors; }));
        EXPECT_TRUE(eventually([&] { return entries("/proc/self/task") == threads; }));
    }
};

TEST_F(ManyAgents, EachGetTheAnswersToTheirOwnCallsOverOneConnection)
{
    run([this](int agent) {
        const auto connection = ControlSocket::connect(path, 60s);
        ASSERT_TRUE(connection);
        ControlSocket::LineBuffer buffer;
        for (int call = 0; call < Calls / Agents; ++call) {
            const QByteArray asked = request(agent, call);
            ASSERT_TRUE(ControlSocket::writeAll(connection->get(), asked + '\n'));
            ASSERT_EQ(ControlSocket::readLine(connection->get(), buffer), "re: " + asked);
        }
    });
}

TEST_F(ManyAgents, EachGetTheAnswersToTheirOwnCallsInOrderIfTheyAskAheadOfThem)
{
    run([this](int agent) {
        const auto connection = ControlSocket::connect(path, 60s);
        ASSERT_TRUE(connection);
        std::thread asking([&] {
            for (int call = 0; call < Calls / Agents; ++call)
                ASSERT_TRUE(
                    ControlSocket::writeAll(connection->get(), request(agent, call) + '\n'));
        });
        ControlSocket::LineBuffer buffer;
        for (int call = 0; call < Calls / Agents; ++call)
            EXPECT_EQ(ControlSocket::readLine(connection->get(), buffer),
                      "re: " + request(agent, call));
        asking.join();
    });
}

TEST_F(ManyAgents, EachGetTheAnswersToTheirOwnCallsOverAConnectionACall)
{
    run([this](int agent) {
        for (int call = 0; call < Calls / Agents; ++call) {
            const QByteArray asked = request(agent, call);
            const auto answer = ControlSocket::call(path, asked, 60s);
            ASSERT_TRUE(answer) << qPrintable(answer.error().message);
            ASSERT_EQ(*answer, "re: " + asked);
        }
    });
}

} // namespace
} // namespace Bralto
