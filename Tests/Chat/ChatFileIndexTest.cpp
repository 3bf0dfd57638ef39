#include "Chat/ChatFileIndex.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Bralto;

class ChatFileIndexTest : public testing::Test {
protected:
    void add(const QString& path)
    {
        const QString whole = m_folder.filePath(path);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(whole).path()));
        QFile file(whole);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

    QTemporaryDir m_folder;
};

TEST_F(ChatFileIndexTest, ListsFilesButNothingHiddenOrSkipped)
{
    for (const char* path :
         {"b.txt", "src/a.cpp", "node_modules/x/y.js", ".git/config", ".hidden", "build/out",
          "src/__pycache__/a.pyc", "Tool.app/Contents/x", "src/.DS_Store"})
        add(QString::fromLatin1(path));
    ASSERT_TRUE(QFile::link(m_folder.path(), m_folder.filePath("loop")));

    EXPECT_EQ(ChatFileWalk::list(m_folder.path()), QStringList({"Tool.app", "b.txt", "src/a.cpp"}));
}

TEST_F(ChatFileIndexTest, AWalkStopsAtItsLimit)
{
    for (int i = 0; i < 12; ++i)
        add(QStringLiteral("d%1/f").arg(i));

    EXPECT_EQ(ChatFileWalk::list(m_folder.path(), 5).size(), 5);
    EXPECT_EQ(ChatFileWalk::MostPaths, 20000);
}

TEST_F(ChatFileIndexTest, AMissingFolderHasNoFiles)
{
    EXPECT_TRUE(ChatFileWalk::list(m_folder.filePath("gone")).isEmpty());
}

TEST_F(ChatFileIndexTest, UsersOfOneFolderShareOneWalk)
{
    add("a.txt");
    ChatFileIndex index;
    QSignalSpy listed(&index, &ChatFileIndex::listed);

    EXPECT_EQ(index.files(m_folder.path()), nullptr);
    EXPECT_EQ(index.files(m_folder.path()), nullptr);
    ASSERT_TRUE(listed.wait());

    const auto list = index.files(m_folder.path());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->paths(), QStringList({"a.txt"}));
    EXPECT_EQ(index.files(m_folder.path()), list);
    EXPECT_EQ(listed.count(), 1);
}

TEST_F(ChatFileIndexTest, AStaleListServesUntilTheNextWalkHasEnded)
{
    add("a.txt");
    ChatFileIndex index;
    QSignalSpy listed(&index, &ChatFileIndex::listed);
    (void)index.files(m_folder.path());
    ASSERT_TRUE(listed.wait());
    add("b.txt");

    index.invalidate(m_folder.path());
    EXPECT_EQ(index.files(m_folder.path())->paths().size(), 1);
    ASSERT_TRUE(listed.wait());
    EXPECT_EQ(index.files(m_folder.path())->paths().size(), 2);
}

TEST_F(ChatFileIndexTest, AnIndexMayGoWhileItWalks)
{
    add("a.txt");
    auto index = std::make_unique<ChatFileIndex>();
    (void)index->files(m_folder.path());
    index.reset();
}

TEST(ChatFileList, TheBetterMatchComesFirst)
{
    const ChatFileList list(
        {"routes/x.md", "src/my_routes.cpp", "src/Routes.cpp", "r/o/u/t/e/s", "other.txt"});

    EXPECT_EQ(list.matches("ROUTES", 8),
              QStringList({"src/Routes.cpp", "src/my_routes.cpp", "routes/x.md", "r/o/u/t/e/s"}));
    EXPECT_EQ(list.matches("routes", 1), QStringList({"src/Routes.cpp"}));
}

TEST(ChatFileList, EqualScoresStandInOrderOfPath)
{
    const ChatFileList list({"b/x1", "a/x2", "c/x0"});

    EXPECT_EQ(list.matches("x", 8), QStringList({"a/x2", "b/x1", "c/x0"}));
}

TEST(ChatFileList, AnEmptyQueryGivesTheFirst)
{
    const ChatFileList list({"b", "a", "c"});

    EXPECT_EQ(list.matches("", 2), QStringList({"b", "a"}));
    EXPECT_EQ(list.matches("", 8).size(), 3);
    EXPECT_TRUE(ChatFileList().matches("x", 8).isEmpty());
}
