// The road from the process's thread to the main thread, with real threads.

#include "Chat/AgentOutput.h"

#include "Tests/Support/Eventually.h"
#include "Tests/Support/FixedClock.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace Bralto {
namespace {

class AgentOutputTest : public testing::Test {
protected:
    AgentOutputTest()
    {
        m_output->onArrival([this] {
            ++m_hops;
            m_last = m_output->take();
            m_events += m_last.events.size();
            m_hasEnded |= m_last.hasEnded;
        });
    }

    static QByteArray line(const QString& text = "x")
    {
        return R"({"type":"assistant","message":{"id":"m","content":[{"type":"text","text":")" +
               text.toUtf8() + "\"}]}}\n";
    }
    static std::string_view view(const QByteArray& bytes)
    {
        return {bytes.constData(), std::size_t(bytes.size())};
    }

    std::unique_ptr<QObject> m_owner = std::make_unique<QObject>();
    FixedClock m_clock;
    std::shared_ptr<MainThreadDoor> m_door = std::make_shared<MainThreadDoor>(m_owner.get());
    std::shared_ptr<AgentOutput> m_output =
        std::make_shared<AgentOutput>(m_door, m_clock, "/home/user");
    AgentPipes m_pipes = AgentOutput::pipes(m_output);
    AgentOutput::Batch m_last;
    int m_hops = 0;
    std::size_t m_events = 0;
    bool m_hasEnded = false;
};

TEST_F(AgentOutputTest, SeveralReadsShareOneHop)
{
    m_pipes.output(view(line()));
    m_pipes.output(view(line() + line()));
    m_pipes.output(view(line()));
    QCoreApplication::sendPostedEvents();

    EXPECT_EQ(m_hops, 1);
    EXPECT_EQ(m_events, 4U);
    EXPECT_FALSE(m_hasEnded);
}

TEST_F(AgentOutputTest, AReadThatSaysNothingMakesNoHop)
{
    m_pipes.output("garbage\n{\"type\":\"unknown\"}\n\n{\"type\":");
    QCoreApplication::sendPostedEvents();

    EXPECT_EQ(m_hops, 0);
    EXPECT_TRUE(m_output->hasSpoken());
}

TEST_F(AgentOutputTest, GarbageIsNotTheAgentsWord)
{
    m_pipes.output("Welcome\n");

    EXPECT_FALSE(m_output->hasSpoken());
}

TEST_F(AgentOutputTest, TheEndBringsTheLastLineAlong)
{
    m_pipes.output(view(line().chopped(1)));
    m_pipes.ended(3);
    m_pipes.outputEnded();
    QCoreApplication::sendPostedEvents();

    EXPECT_EQ(m_events, 1U);
    EXPECT_TRUE(m_hasEnded);
    EXPECT_EQ(m_output->exitStatus(), 3);
}

TEST_F(AgentOutputTest, ALineWithoutATimeIsDatedByTheClock)
{
    m_pipes.output(view(line()));
    QCoreApplication::sendPostedEvents();

    EXPECT_EQ(std::get<ChatEvents::Assistant>(m_last.events.at(0)).date, m_clock.now());
}

TEST_F(AgentOutputTest, TheReaderWaitsWhileTheMainThreadIsBehind)
{
    std::atomic<int> read = 0;
    std::thread reader([&] {
        for (int index = 0; index < 100; ++index) {
            m_pipes.output(view(line()));
            ++read;
        }
    });
    EXPECT_TRUE(eventually([&] { return read == AgentOutput::PendingReads; }));
    std::this_thread::yield();
    EXPECT_EQ(read, AgentOutput::PendingReads);

    EXPECT_TRUE(eventually([&] {
        QCoreApplication::processEvents();
        return m_events == 100;
    }));

    reader.join();
    EXPECT_LE(m_hops, 100);
}

TEST_F(AgentOutputTest, AMutedReaderNeverWaitsAndItsEventsAreDropped)
{
    std::atomic<int> read = 0;
    std::thread reader([&] {
        for (int index = 0; index < 100; ++index) {
            m_pipes.output(view(line()));
            ++read;
        }
        m_pipes.ended(0);
    });
    EXPECT_TRUE(eventually([&] { return read == AgentOutput::PendingReads; }));

    m_output->mute();
    reader.join();
    QCoreApplication::sendPostedEvents();

    EXPECT_EQ(m_events, 0U);
    EXPECT_EQ(m_output->exitStatus(), 0);
    EXPECT_EQ(m_hops, 1) << "the exit is told all the same";
}

TEST_F(AgentOutputTest, NothingArrivesAnyMoreWhenItsOwnerHasGone)
{
    m_pipes.output(view(line()));
    m_door->close();
    m_owner.reset();
    m_output->mute();
    std::thread([&] {
        for (int index = 0; index < 10; ++index)
            m_pipes.output(view(line()));
        m_pipes.ended(0);
        m_pipes.outputEnded();
    }).join();
    QCoreApplication::sendPostedEvents();

    EXPECT_EQ(m_hops, 0);
}

TEST_F(AgentOutputTest, AnEnormousLineLeavesTheMainThreadFree)
{
    const QByteArray text(64 << 20, 'x');
    std::thread reader([&] {
        const QByteArray whole = line(QString::fromLatin1(text));
        for (qsizetype at = 0; at < whole.size(); at += 65536) {
            const QByteArray piece = whole.mid(at, 65536);
            m_pipes.output(view(piece));
        }
    });
    std::chrono::steady_clock::duration longest{0};

    EXPECT_TRUE(eventually([&] {
        const auto before = std::chrono::steady_clock::now();
        QCoreApplication::processEvents();
        longest = std::max(longest, std::chrono::steady_clock::now() - before);
        return m_events == 1;
    }));

    reader.join();
    EXPECT_LT(longest, std::chrono::milliseconds(100));
    const auto& event = std::get<ChatEvents::Assistant>(m_last.events.at(0));
    EXPECT_EQ(std::get<ChatTextBlock>(event.blocks.at(0)).text.size(), text.size());
}

} // namespace
} // namespace Bralto
