#include "Browser/ControlSocket.h"

#include "Base/SpaceIdentity.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <thread>

namespace Bralto {
namespace {

using ControlMessage::LineLimit;
using ControlSocket::LineBuffer;

mode_t mode(const QString& path)
{
    struct stat info {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &info), 0);
    return info.st_mode & 07777;
}

struct Pair {
    FileDescriptor near;
    FileDescriptor far;

    Pair()
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
        near = FileDescriptor(ends[0]);
        far = FileDescriptor(ends[1]);
    }
};

class ControlSocketPath : public testing::Test {
protected:
    QTemporaryDir folder;
};

TEST_F(ControlSocketPath, IsTheDigestOfTheProjectsFolder)
{
    // The first 12 digits of the SHA-256 of "/home/user/web shop".
    EXPECT_EQ(ControlSocket::digest("/home/user/web shop"), "2d6707b4d180");
    EXPECT_EQ(ControlSocket::digest("/home/user/./x/../web shop/"), "2d6707b4d180");
    EXPECT_EQ(ControlSocket::path("/c", "/home/user/web shop"), "/c/2d6707b4d180.sock");
    EXPECT_EQ(SpaceIdentity::bundleIdentifier("/home/user/web shop"),
              "com.tolvane.bralto.space.2d6707b4d180");
}

TEST_F(ControlSocketPath, DoesNotGrowWithTheProjects)
{
    const QString home = "/home/" + QString(54, u'h');
    ASSERT_EQ(home.size(), 60);
    const QString directory = home + "/Library/Application Support/Bralto/control";

    EXPECT_EQ(ControlSocket::path(directory, "/p/" + QString(4000, u'x')).size(),
              directory.size() + 18);
}

TEST_F(ControlSocketPath, HasAtMost103Bytes)
{
    const QString longest = "/" + QString(102, u'x');
    const auto address = ControlSocket::address(longest);
    ASSERT_TRUE(address);
    EXPECT_EQ(address->name.sun_family, AF_UNIX);
    EXPECT_STREQ(address->name.sun_path, longest.toUtf8().constData());
    EXPECT_EQ(ControlSocket::Address::Size, 106u);

    for (const QString& path : {longest + "x", "/" + QString(52, u'é')}) {
        SCOPED_TRACE(path.toStdString());
        const auto refused = ControlSocket::address(path);
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error().message, "Socket path is too long: " + path);
    }
}

TEST_F(ControlSocketPath, LiesInAFolderForThisUserAlone)
{
    const QString inner = folder.filePath("Library/Application Support/control");

    EXPECT_EQ(ControlSocket::prepareDirectory(inner), std::nullopt);
    EXPECT_EQ(mode(inner), 0700u);
    EXPECT_EQ(mode(folder.filePath("Library")), 0700u);

    ASSERT_EQ(::chmod(QFile::encodeName(inner).constData(), 0755), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(folder.filePath("Library")).constData(), 0755), 0);
    EXPECT_EQ(ControlSocket::prepareDirectory(inner), std::nullopt);
    EXPECT_EQ(mode(inner), 0700u);
    EXPECT_EQ(mode(folder.filePath("Library")), 0755u); // Not ours to change.
}

TEST_F(ControlSocketPath, IsNotPreparedBehindAFile)
{
    QFile blocker(folder.filePath("Library"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));

    const QString inner = folder.filePath("Library/control");
    EXPECT_EQ(ControlSocket::prepareDirectory(inner)->message,
              "Couldn’t make " + inner + ": Not a directory");
    EXPECT_EQ(ControlSocket::prepareDirectory(blocker.fileName())->message,
              "Couldn’t make " + blocker.fileName() + ": Not a directory");
}

class ControlListener : public ControlSocketPath {
protected:
    QString path = folder.filePath("a.sock");
};

TEST_F(ControlListener, IsForThisUserAloneAndNeverBlocks)
{
    const auto listener = ControlSocket::makeListener(path);

    ASSERT_TRUE(listener);
    EXPECT_EQ(mode(path), 0600u);
    EXPECT_TRUE(::fcntl(listener->get(), F_GETFL) & O_NONBLOCK);
    EXPECT_TRUE(::fcntl(listener->get(), F_GETFD) & FD_CLOEXEC);
    EXPECT_EQ(::accept(listener->get(), nullptr, nullptr), -1);
    EXPECT_EQ(errno, EAGAIN);
}

TEST_F(ControlListener, ReplacesWhatACrashLeft)
{
    { // A socket without its process.
        const auto crashed = ControlSocket::makeListener(path);
        ASSERT_TRUE(crashed);
    }
    ASSERT_TRUE(QFileInfo::exists(path));
    EXPECT_TRUE(ControlSocket::makeListener(path));
    EXPECT_EQ(ControlSocket::connect(path, std::chrono::seconds(1)).error().message,
              "Connection refused");

    QFile::remove(path);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_TRUE(ControlSocket::makeListener(path));
}

TEST_F(ControlListener, TakesOverFromAnOlderProcess)
{
    const auto older = ControlSocket::makeListener(path);
    const auto newer = ControlSocket::makeListener(path);
    ASSERT_TRUE(older);
    ASSERT_TRUE(newer);

    const auto client = ControlSocket::connect(path, std::chrono::seconds(1));

    ASSERT_TRUE(client);
    EXPECT_EQ(::accept(older->get(), nullptr, nullptr), -1);
    EXPECT_TRUE(FileDescriptor(::accept(newer->get(), nullptr, nullptr)).isOpen());
}

TEST_F(ControlListener, SaysWhyItCantListen)
{
    const QString missing = folder.filePath("no/a.sock");
    EXPECT_EQ(ControlSocket::makeListener(missing).error().message,
              "Couldn’t listen at " + missing + ": No such file or directory");

    QDir().mkpath(path); // A folder can't be unlinked.
    EXPECT_EQ(ControlSocket::makeListener(path).error().message,
              "Couldn’t listen at " + path + ": Address already in use");
    EXPECT_TRUE(QFileInfo(path).isDir());

    const QString tooLong = folder.filePath(QString(100, u'x'));
    EXPECT_EQ(ControlSocket::makeListener(tooLong).error().message,
              "Socket path is too long: " + tooLong);
}

class ControlLine : public testing::Test {
protected:
    Pair pair;
    LineBuffer buffer;

    void send(const QByteArray& bytes)
    {
        EXPECT_TRUE(ControlSocket::writeAll(pair.far.get(), bytes));
    }

    std::optional<QByteArray> read(qsizetype limit = LineLimit)
    {
        return ControlSocket::readLine(pair.near.get(), buffer, limit);
    }
};

TEST_F(ControlLine, EndsAtALineFeedHoweverTheBytesCome)
{
    send("one\n\ntwo\r\nthr");
    EXPECT_EQ(read(), "one");
    EXPECT_EQ(read(), "");
    EXPECT_EQ(read(), "two\r");
    send("ee\n");
    EXPECT_EQ(read(), "three");

    std::thread sender([this] {
        for (const char byte : std::string("byte by byte\n"))
            send(QByteArray(1, byte));
    });
    EXPECT_EQ(read(), "byte by byte");
    sender.join();
}

TEST_F(ControlLine, HoldsAnyBytes)
{
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte) {
        if (byte != '\n')
            all.append(char(byte));
    }
    send(all + '\n' + QByteArray(3, '\0') + '\n');

    EXPECT_EQ(read(), all);
    EXPECT_EQ(read(), QByteArray(3, '\0'));
}

TEST_F(ControlLine, IsDroppedWithoutItsLineFeedAtTheEnd)
{
    send("whole\nhalf");
    pair.far.reset();

    EXPECT_EQ(read(), "whole");
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(read(), std::nullopt);
}

TEST_F(ControlLine, FitsTheLimitWithItsLineFeed)
{
    send("123456789\n1234567890\n");

    EXPECT_EQ(read(10), "123456789");
    EXPECT_EQ(read(10), std::nullopt);
}

TEST_F(ControlLine, OverTheLimitIsRefusedBeforeItsEndCame)
{
    send("1234567890");

    EXPECT_EQ(read(10), std::nullopt);
}

TEST_F(ControlLine, MayBeLongAndLeavesNoMemoryBehind)
{
    const QByteArray large(20'000'000, 'x');
    std::thread sender([&] { send("a\n" + large + "\nb\nc\n"); });

    EXPECT_EQ(read(), "a");
    EXPECT_EQ(read(), large);
    EXPECT_EQ(read(), "b");
    EXPECT_EQ(read(), "c");
    EXPECT_LT(buffer.bytes.capacity(), 1'000'000);
    sender.join();
}

TEST_F(ControlLine, ManyInOneReadAreTakenInOrder)
{
    QByteArray lines;
    for (int number = 0; number < 5000; ++number)
        lines += QByteArray::number(number) + '\n';
    send(lines);

    for (int number = 0; number < 5000; ++number)
        ASSERT_EQ(read(), QByteArray::number(number));
}

TEST_F(ControlLine, IsWaitedForOnAStreamThatDoesNotBlock)
{
    ::fcntl(pair.near.get(), F_SETFL, O_NONBLOCK);
    ::fcntl(pair.far.get(), F_SETFL, O_NONBLOCK);
    const QByteArray large(1'000'000, 'x');
    std::thread sender([&] { send(large + '\n'); });

    EXPECT_EQ(read(), large);
    sender.join();
}

TEST_F(ControlLine, CantBeWrittenToAPeerThatHasGone)
{
    pair.near.reset();

    EXPECT_FALSE(ControlSocket::writeAll(pair.far.get(), "x\n")); // And no signal came.
}

class ControlCall : public ControlSocketPath {
protected:
    /// Answers one connection as `serve` does.
    template <typename Serve>
    Expected<QByteArray, ControlError> call(Serve serve, std::chrono::seconds timeout)
    {
        const QString path = folder.filePath("a.sock");
        auto listener = ControlSocket::makeListener(path);
        ::fcntl(listener->get(), F_SETFL, 0);
        std::thread server([&] {
            const FileDescriptor peer(::accept(listener->get(), nullptr, nullptr));
            serve(peer.get());
        });
        auto answer = ControlSocket::call(path, "ask", timeout);
        server.join();
        return answer;
    }
};

TEST_F(ControlCall, SendsALineAndReturnsOne)
{
    const auto answer = call(
        [](int peer) {
            LineBuffer buffer;
            EXPECT_EQ(ControlSocket::readLine(peer, buffer), "ask");
            EXPECT_TRUE(ControlSocket::writeAll(peer, "answer\nmore\n"));
        },
        std::chrono::seconds(5));

    ASSERT_TRUE(answer);
    EXPECT_EQ(*answer, "answer");
}

TEST_F(ControlCall, FailsIfTheAnswerHasNoEnd)
{
    const auto answer = call(
        [](int peer) {
            LineBuffer buffer;
            EXPECT_EQ(ControlSocket::readLine(peer, buffer), "ask");
            EXPECT_TRUE(ControlSocket::writeAll(peer, "half"));
        },
        std::chrono::seconds(5));

    EXPECT_EQ(answer.error().message, "Bralto didn’t answer in time");
}

TEST_F(ControlCall, FailsAfterTheTimeOut)
{
    const auto answer = call(
        [](int peer) {
            LineBuffer buffer;
            EXPECT_EQ(ControlSocket::readLine(peer, buffer), "ask");
            EXPECT_EQ(ControlSocket::readLine(peer, buffer), std::nullopt); // Until it gives up.
        },
        std::chrono::seconds(1));

    EXPECT_EQ(answer.error().message, "Bralto didn’t answer in time");
}

TEST_F(ControlCall, FailsIfNobodyListens)
{
    EXPECT_EQ(ControlSocket::call(folder.filePath("no.sock"), "ask", std::chrono::seconds(1))
                  .error()
                  .message,
              "No such file or directory");
    const QString tooLong = folder.filePath(QString(100, u'x'));
    EXPECT_EQ(ControlSocket::call(tooLong, "ask", std::chrono::seconds(1)).error().message,
              "Socket path is too long: " + tooLong);
}

TEST_F(ControlCall, FailsIfTheOtherEndHangsUpBeforeItHasRead)
{
    const QString path = folder.filePath("a.sock");
    const auto listener = ControlSocket::makeListener(path);
    ::fcntl(listener->get(), F_SETFL, 0);
    std::thread server([&] { FileDescriptor(::accept(listener->get(), nullptr, nullptr)); });

    // More than the socket buffers, so that the writer is still at it.
    const auto answer =
        ControlSocket::call(path, QByteArray(10'000'000, 'x'), std::chrono::seconds(5));

    EXPECT_EQ(answer.error().message, "Bralto closed the connection");
    server.join();
}

} // namespace
} // namespace Bralto
