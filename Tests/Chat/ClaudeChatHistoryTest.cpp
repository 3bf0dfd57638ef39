#include "Tests/Support/ChatHarness.h"
#include "Tests/Support/Eventually.h"

#include <QFile>
#include <QTemporaryDir>
#include <QThreadPool>

namespace Bralto {
namespace {

class ClaudeChatHistory : public ChatHarness {
protected:
    void store(const QString& sessionId, const QByteArray& lines)
    {
        const QString path = m_folder.filePath(sessionId + ".jsonl");
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(lines);
        m_host.transcriptFiles.insert(sessionId, path);
    }

    static QByteArray userLine(const QString& id, const QString& text)
    {
        return AgentLine::compact({{"type", "user"},
                                   {"uuid", id},
                                   {"message", QJsonObject{{"role", "user"}, {"content", text}}}}) +
               '\n';
    }

    bool waitForHistory()
    {
        return eventually([this] {
            QCoreApplication::processEvents();
            return !chat().isLoadingHistory();
        });
    }

    QTemporaryDir m_folder;
};

TEST_F(ClaudeChatHistory, LoadsAStoredConversationAndItsTitle)
{
    store("s1", userLine("u1", "Fix the build") + AgentLine::assistant("m1", "Done.") + '\n');

    open("s1");
    EXPECT_TRUE(chat().isLoadingHistory());
    ASSERT_TRUE(waitForHistory());

    ASSERT_EQ(chat().transcript().messages.size(), 2U);
    EXPECT_EQ(chat().transcript().messages[0].id, "u1");
    EXPECT_EQ(chat().title(), "Fix the build");
}

TEST_F(ClaudeChatHistory, AConversationWithoutAFileIsEmpty)
{
    open("s1");
    ASSERT_TRUE(waitForHistory());

    EXPECT_TRUE(chat().transcript().messages.empty());
    EXPECT_EQ(chat().title(), "Claude");
}

TEST_F(ClaudeChatHistory, StandsInFrontOfWhatWasSaidMeanwhile)
{
    store("s1", userLine("u1", "Before"));
    open("s1").send("Meanwhile");
    ASSERT_TRUE(waitForHistory());

    ASSERT_EQ(chat().transcript().messages.size(), 2U);
    EXPECT_EQ(chat().transcript().messages[0].id, "u1");
    EXPECT_EQ(chat().title(), "Meanwhile") << "a title that is there stays";
}

TEST_F(ClaudeChatHistory, IsDroppedIfTheConversationChangedMeanwhile)
{
    store("s1", userLine("u1", "Old"));
    store("s2", userLine("u2", "New"));
    open("s1").switchSession("s2");
    ASSERT_TRUE(waitForHistory());
    QCoreApplication::processEvents();

    ASSERT_EQ(chat().transcript().messages.size(), 1U);
    EXPECT_EQ(chat().transcript().messages[0].id, "u2");
    EXPECT_EQ(chat().title(), "New");
}

TEST_F(ClaudeChatHistory, ANewConversationDoesNotWaitForAnOldFile)
{
    store("s1", userLine("u1", "Old"));
    open("s1").switchSession(std::nullopt);

    EXPECT_FALSE(chat().isLoadingHistory());
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
    EXPECT_TRUE(chat().transcript().messages.empty());
}

TEST_F(ClaudeChatHistory, TheConversationMayGoWhileItsFileIsRead)
{
    store("s1", userLine("u1", "Old").repeated(10000));
    open("s1");

    m_chat.reset();
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
}

} // namespace
} // namespace Bralto
