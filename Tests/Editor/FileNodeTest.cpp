#include "Editor/FileNode.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

/// A real folder, and the names that a listing of it gives.
struct FileNodeTest : testing::Test {
    void file(const QString& name) const
    {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }

    void directory(const QString& name) const { ASSERT_TRUE(QDir(folder.path()).mkpath(name)); }

    [[nodiscard]] QStringList names(bool showHidden = false) const
    {
        QStringList result;
        for (const auto& node : FileNode::contents(folder.path(), showHidden))
            result.append(node->name());
        return result;
    }

    const QTemporaryDir folder;
};

} // namespace

TEST_F(FileNodeTest, FoldersComeFirstAndNumbersCount)
{
    file("a");
    file("b10");
    file("B2");
    directory("z");
    directory("y20");
    directory("y3");

    EXPECT_EQ(names(), QStringList({"y3", "y20", "z", "a", "B2", "b10"}));
}

TEST_F(FileNodeTest, HiddenFilesShowOnRequestButSomeNever)
{
    file(".DS_Store");
    file(".gitignore");
    file("seen");
    directory(".git");
    directory(".build");
    directory(".swiftpm");
    directory(".github");

    EXPECT_EQ(names(), QStringList({"seen"}));
    EXPECT_EQ(names(true), QStringList({".github", ".gitignore", "seen"}));
}

TEST_F(FileNodeTest, AChildHandsDownWhetherHiddenFilesShow)
{
    directory("sub");
    file("sub/.hidden");

    const FileNode shown(folder.path(), true, true);
    const FileNode hidden(folder.path(), true, false);

    EXPECT_EQ(shown.children().at(0)->children().size(), 1U);
    EXPECT_TRUE(hidden.children().at(0)->children().empty());
}

TEST_F(FileNodeTest, APackageIsALeaf)
{
    directory("Tool.app/Contents");
    directory("plain");
    file("a.txt");

    const auto nodes = FileNode::contents(folder.path(), false);

    ASSERT_EQ(nodes.size(), 3U);
    EXPECT_EQ(nodes[0]->name(), "plain");
    EXPECT_EQ(nodes[0]->symbol(), "folder");
    EXPECT_EQ(nodes[2]->name(), "Tool.app");
    EXPECT_FALSE(nodes[2]->isDirectory());
    EXPECT_TRUE(nodes[2]->children().empty());
    EXPECT_EQ(nodes[2]->symbol(), "shippingbox");
}

TEST_F(FileNodeTest, AFolderIsListedWhenItIsFirstAskedForAndThenStays)
{
    directory("sub/deep");
    const FileNode root(folder.path(), true, false);
    EXPECT_FALSE(root.isListed());

    ASSERT_EQ(root.children().size(), 1U);
    file("late");

    EXPECT_TRUE(root.isListed());
    EXPECT_EQ(root.children().size(), 1U);
    EXPECT_FALSE(root.children().at(0)->isListed());
    EXPECT_EQ(root.children().at(0)->path(), folder.filePath("sub"));
}

TEST_F(FileNodeTest, AFolderThatCannotBeReadShowsAsEmpty)
{
    const FileNode gone(folder.filePath("gone"), true, false);
    EXPECT_TRUE(gone.children().empty());

    file("a.txt");
    const FileNode leaf(folder.filePath("a.txt"), false, false);
    EXPECT_TRUE(leaf.children().empty());
    EXPECT_FALSE(leaf.isListed());
}

TEST_F(FileNodeTest, ALinkIsWhatItLeadsToAndABrokenOneIsAFile)
{
    directory("sub");
    ASSERT_TRUE(QFile::link(folder.filePath("sub"), folder.filePath("to-folder")));
    ASSERT_TRUE(QFile::link(folder.filePath("nowhere"), folder.filePath("broken")));

    EXPECT_EQ(names(), QStringList({"sub", "to-folder", "broken"}));
}

TEST_F(FileNodeTest, NamesThatDifferInCaseAloneStandInAFixedOrder)
{
    file("readme");
    file("README");
    file("Readme");

    EXPECT_EQ(names(), QStringList({"README", "Readme", "readme"}));
}

TEST_F(FileNodeTest, TheIconIsToldByTheName)
{
    file("main.swift");
    file("notes.md");
    file("Old.app");

    const auto nodes = FileNode::contents(folder.path(), false);

    EXPECT_EQ(nodes.at(0)->symbol(), "swift");
    EXPECT_EQ(nodes.at(1)->symbol(), "text.document");
    EXPECT_EQ(nodes.at(2)->symbol(), "shippingbox");
}
