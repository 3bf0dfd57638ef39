#include "Base/Paths.h"
#include "Base/AppPaths.h"
#include "Base/ShellQuote.h"
#include "Base/SpaceIdentity.h"

#include <QDir>
#include <QProcess>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

TEST(Paths, StandardisingRemovesDotsAndTrailingSlashes)
{
    EXPECT_EQ(Paths::standardised("/a/./b/../c/"), "/a/c");
    EXPECT_EQ(Paths::standardised("//a//b"), "/a/b");
    EXPECT_EQ(Paths::standardised("/.."), "/");
    EXPECT_EQ(Paths::standardised("/../../a/../../b"), "/b");
    EXPECT_EQ(Paths::standardised("/"), "/");
}

TEST(Paths, ARelativePathIsTakenFromTheCurrentFolder)
{
    EXPECT_EQ(Paths::standardised("a/b"), QDir::currentPath() + "/a/b");
    EXPECT_EQ(Paths::standardised(":/resource"), QDir::currentPath() + "/:/resource");
}

TEST(Paths, AnEmptyPathStaysEmpty)
{
    EXPECT_EQ(Paths::standardised(""), "");
}

TEST(Paths, OnlyWhatLiesUnderAFolderIsBelowIt)
{
    EXPECT_TRUE(Paths::isBelow("/a/src/x", "/a/src"));
    EXPECT_FALSE(Paths::isBelow("/a/src", "/a/src"));
    EXPECT_FALSE(Paths::isBelow("/a/src2", "/a/src"));
    EXPECT_FALSE(Paths::isBelow("/a/src2/x", "/a/src"));
    EXPECT_TRUE(Paths::isBelow("/a", "/"));
    EXPECT_FALSE(Paths::isBelow("/", "/"));
    EXPECT_FALSE(Paths::isBelow("/a", ""));
}

TEST(Paths, APathIsItsParentAndItsLastComponent)
{
    EXPECT_EQ(Paths::lastComponent("/a/b.txt"), "b.txt");
    EXPECT_EQ(Paths::lastComponent("/"), "");
    EXPECT_EQ(Paths::parent("/a/b.txt"), "/a");
    EXPECT_EQ(Paths::parent("/a"), "/");
    EXPECT_EQ(Paths::parent("/"), "/");
}

TEST(Paths, HomeIsAbbreviatedOnlyAsAWholeFolder)
{
    EXPECT_EQ(Paths::abbreviatingHome("/home/ann", "/home/ann"), "~");
    EXPECT_EQ(Paths::abbreviatingHome("/home/ann/x", "/home/ann"), "~/x");
    EXPECT_EQ(Paths::abbreviatingHome("/home/anna/x", "/home/ann"), "/home/anna/x");
    EXPECT_EQ(Paths::abbreviatingHome("/x", "/"), "~/x");
    EXPECT_EQ(Paths::abbreviatingHome("/x", ""), "/x");
}

TEST(AppPaths, EveryPlaceLiesInTheOneHome)
{
    const AppPaths paths("/home/ann/");

    EXPECT_EQ(paths.home(), "/home/ann");
    EXPECT_EQ(paths.support(), "/home/ann/Library/Application Support/Bralto");
    EXPECT_EQ(paths.preferences(), "/home/ann/Library/Application Support/Bralto/Preferences");
    EXPECT_EQ(paths.terminals(), "/home/ann/Library/Application Support/Bralto/Terminals");
    EXPECT_EQ(paths.applications(), "/home/ann/Applications/Bralto");
    EXPECT_EQ(paths.projects(), "/home/ann/Documents/Claude Projects");
    EXPECT_EQ(paths.claudeProjects(), "/home/ann/.claude/projects");
    EXPECT_EQ(paths.claudeSettings(), "/home/ann/.claude/settings.json");
}

TEST(AppPaths, TheHomeVariableMovesThePathsOfThisProcess)
{
    const QByteArray before = qgetenv("HOME");
    qputenv("HOME", "/elsewhere");

    const QString home = AppPaths::current().home();
    qputenv("HOME", before);

    EXPECT_EQ(home, "/elsewhere");
}

TEST(ShellQuote, AShellReadsBackEveryWordAsItWas)
{
    const QStringList words{"",  "plain", "it's", "''", "a b", "$HOME `id` \\ \"", "line\nbreak",
                            "é✓"};
    QProcess shell;

    shell.start("/bin/sh", {"-c", "printf '%s\\0' " + ShellQuote::joined(words)});
    ASSERT_TRUE(shell.waitForFinished());

    QStringList read = QString::fromUtf8(shell.readAllStandardOutput()).split(QChar(0));
    read.removeLast();
    EXPECT_EQ(read, words);
}

TEST(ShellQuote, AQuoteInAValueIsClosedEscapedAndOpenedAgain)
{
    EXPECT_EQ(ShellQuote::quoted("it's"), "'it'\\''s'");
    EXPECT_EQ(ShellQuote::quoted(""), "''");
    EXPECT_EQ(ShellQuote::joined({}), "");
}

TEST(SpaceIdentity, TheIdentifierIsThePrefixAndTwelveDigitsOfTheDigest)
{
    // printf /tmp/project | sha256sum
    EXPECT_EQ(SpaceIdentity::bundleIdentifier("/tmp/project"),
              "com.tolvane.bralto.space.f630ad93b344");
}

TEST(SpaceIdentity, OneFolderHasOneIdentifierHoweverItIsSpelled)
{
    EXPECT_EQ(SpaceIdentity::bundleIdentifier("/tmp/x/../project/"),
              SpaceIdentity::bundleIdentifier("/tmp/project"));
    EXPECT_NE(SpaceIdentity::bundleIdentifier("/tmp/Project"),
              SpaceIdentity::bundleIdentifier("/tmp/project"));
}

} // namespace
} // namespace Bralto
