#include "Workspace/FileOperations.h"
#include "Workspace/FolderPresence.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct FileOperationsTest : testing::Test {
    [[nodiscard]] QString path(const QString& name) const { return folder.filePath(name); }

    QString write(const QString& name, const QByteArray& bytes = "text") const
    {
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path(name)).path()));
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return path(name);
    }

    static QByteArray read(const QString& name)
    {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        return file.readAll();
    }

    const QTemporaryDir folder;
};

struct FolderPresenceTest : FileOperationsTest {
    void makeProject() const { ASSERT_TRUE(QDir().mkpath(path("above/project"))); }
    void removeAbove() const { ASSERT_TRUE(QDir(path("above")).removeRecursively()); }
};

} // namespace

// --- creating

TEST_F(FileOperationsTest, ANewFileNeverTakesThePlaceOfAnother)
{
    EXPECT_FALSE(FileOperations::createFile(path("new")));
    EXPECT_EQ(read(path("new")), "");

    write("old", "kept");
    ASSERT_TRUE(QFile::link(path("nowhere"), path("link")));
    EXPECT_TRUE(FileOperations::createFile(path("old")));
    EXPECT_TRUE(FileOperations::createFile(path("link")));
    EXPECT_TRUE(FileOperations::createFile(path("gone/new")));
    EXPECT_EQ(read(path("old")), "kept");
    EXPECT_FALSE(QFileInfo::exists(path("nowhere")));
}

TEST_F(FileOperationsTest, AFolderComesWithAllAboveIt)
{
    EXPECT_FALSE(FileOperations::createFolder(path("a/b/c")));
    EXPECT_TRUE(QFileInfo(path("a/b/c")).isDir());
    EXPECT_FALSE(FileOperations::createFolder(path("a/b/c")));

    write("file");
    EXPECT_EQ(FileOperations::createFolder(path("file/sub")), "Not a directory");
}

// --- renaming

TEST_F(FileOperationsTest, ARenameNeverTakesThePlaceOfSomethingElse)
{
    write("a", "A");
    write("b", "B");
    ASSERT_TRUE(QDir().mkdir(path("empty")));
    ASSERT_TRUE(QFile::link(path("nowhere"), path("link")));

    for (const QString taken : {"b", "empty", "link"})
        EXPECT_EQ(FileOperations::rename(path("a"), path(taken)), "File exists");
    EXPECT_EQ(read(path("b")), "B");

    EXPECT_FALSE(FileOperations::rename(path("a"), path("c")));
    EXPECT_EQ(read(path("c")), "A");
    EXPECT_FALSE(QFileInfo::exists(path("a")));
    EXPECT_EQ(FileOperations::rename(path("a"), path("d")), "No such file or directory");
}

TEST_F(FileOperationsTest, AFolderIsRenamedWithAllThatItContains)
{
    write("src/deep/a");

    EXPECT_FALSE(FileOperations::rename(path("src"), path("Quellen “x”")));

    EXPECT_EQ(read(path("Quellen “x”/deep/a")), "text");
}

// --- duplicating

TEST_F(FileOperationsTest, ACopyKeepsTheLastExtensionAndCountsFromTwo)
{
    EXPECT_EQ(FileOperations::copyName("a.tar.gz", 1), "a.tar copy.gz");
    EXPECT_EQ(FileOperations::copyName("a.tar.gz", 2), "a.tar copy 2.gz");
    EXPECT_EQ(FileOperations::copyName("a.tar.gz", 3), "a.tar copy 3.gz");
    EXPECT_EQ(FileOperations::copyName("LICENSE", 1), "LICENSE copy");
    EXPECT_EQ(FileOperations::copyName(".gitignore", 2), ".gitignore copy 2");
}

TEST_F(FileOperationsTest, ACopyTakesTheFirstFreeName)
{
    write("a.txt", "A");
    write("a copy.txt", "first");
    ASSERT_TRUE(QFile::link(path("nowhere"), path("a copy 2.txt")));

    EXPECT_FALSE(FileOperations::duplicate(path("a.txt")));

    EXPECT_EQ(read(path("a copy 3.txt")), "A");
    EXPECT_EQ(read(path("a copy.txt")), "first");
}

TEST_F(FileOperationsTest, AFolderIsCopiedWithItsLinksAsTheyAre)
{
    write("src/deep/a", "A");
    ASSERT_TRUE(QFile::link("../src", path("src/loop")));

    EXPECT_FALSE(FileOperations::duplicate(path("src")));

    EXPECT_EQ(read(path("src copy/deep/a")), "A");
    EXPECT_TRUE(QFileInfo(path("src copy/loop")).isSymLink());
}

TEST_F(FileOperationsTest, ACopyThatFailsLeavesNothingBehind)
{
    EXPECT_EQ(FileOperations::duplicate(path("gone")), "No such file or directory");
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

// --- presence

TEST_F(FolderPresenceTest, TellsWhenTheFolderGoesAndComesBack)
{
    makeProject();
    const FolderPresence presence(path("above/project"));
    QSignalSpy changes(&presence, &FolderPresence::missingChanged);
    EXPECT_FALSE(presence.isMissing());

    removeAbove();
    ASSERT_TRUE(changes.wait());
    EXPECT_TRUE(presence.isMissing());

    makeProject();
    ASSERT_TRUE(changes.wait());
    EXPECT_FALSE(presence.isMissing());

    removeAbove();
    ASSERT_TRUE(changes.wait());
    EXPECT_EQ(changes.count(), 3);
    EXPECT_TRUE(presence.isMissing());
}

TEST_F(FolderPresenceTest, AMovedFolderIsMissing)
{
    makeProject();
    const FolderPresence presence(path("above/project"));
    QSignalSpy changes(&presence, &FolderPresence::missingChanged);

    ASSERT_TRUE(QDir().rename(path("above/project"), path("above/elsewhere")));

    ASSERT_TRUE(changes.wait());
    EXPECT_TRUE(presence.isMissing());
}

TEST_F(FolderPresenceTest, ALookTellsAtOnceAndOnlyOnce)
{
    makeProject();
    FolderPresence presence(path("above/project"));
    QSignalSpy changes(&presence, &FolderPresence::missingChanged);
    removeAbove();

    presence.check();
    presence.check();
    QCoreApplication::processEvents();

    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(presence.isMissing());
}

TEST_F(FolderPresenceTest, AFileInItsPlaceIsNoFolder)
{
    makeProject();
    FolderPresence presence(path("above/project"));
    removeAbove();
    write("above/project");

    presence.check();

    EXPECT_TRUE(presence.isMissing());
}
