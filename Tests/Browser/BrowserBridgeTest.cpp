#include "Browser/BrowserBridge.h"

#include "Base/PaneEnvironment.h"
#include "Browser/BridgeTexts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace Bralto {
namespace {

class Bridge : public testing::Test {
protected:
    QTemporaryDir home;
    AppPaths paths{home.path()};

    BrowserBridge bridge(const QString& bundle = "/opt/Bralto.app") const
    {
        LaunchRole role;
        role.bundlePath = bundle;
        role.bundleIdentifier = "com.tolvane.bralto.space.1a2b3c4d5e6f";
        role.hostExecutable = "/opt/Bralto.app/Contents/MacOS/Bralto";
        return {paths, role};
    }
    static std::optional<QString> value(const QStringList& environment, const QString& name)
    {
        return PaneEnvironment::value(environment, name);
    }
    QString searchPath(const QStringList& environment) const
    {
        return *value(bridge().configure(environment, "/bin/bash"), "PATH");
    }

    static QByteArray contents(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
    }
    static void put(const QString& path, const QByteArray& text)
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    static struct stat status(const QString& path)
    {
        struct stat result = {};
        EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &result), 0) << qPrintable(path);
        return result;
    }
    static mode_t mode(const QString& path) { return status(path).st_mode & 07777; }
};

TEST_F(Bridge, LivesInTheSupportFolder)
{
    EXPECT_EQ(bridge().bin(), paths.support() + "/bin");
    EXPECT_EQ(bridge().zshDirectory(), paths.support() + "/zsh");
}

TEST_F(Bridge, InstallsProgramsAndStartUpFiles)
{
    bridge().install();

    EXPECT_EQ(QDir(paths.bin()).entryList(QDir::Files | QDir::Hidden),
              (QStringList{"bralto-browser", "open", "xdg-open"}));
    EXPECT_EQ(QDir(paths.zsh()).entryList(QDir::Files | QDir::Hidden, QDir::Name),
              (QStringList{".zlogin", ".zprofile", ".zshenv", ".zshrc"}));
    for (const QString& name : QStringList{"bralto-browser", "open", "xdg-open"})
        EXPECT_EQ(mode(paths.bin() + '/' + name), 0755) << qPrintable(name);
    EXPECT_EQ(mode(paths.zsh() + "/.zshrc") & 0111, 0);
    EXPECT_EQ(contents(paths.bin() + "/open"), BridgeTexts::openShim());
    EXPECT_EQ(contents(paths.bin() + "/xdg-open"), BridgeTexts::openShim());
    for (const BridgeTexts::File& file : BridgeTexts::zshSources())
        EXPECT_EQ(contents(paths.zsh() + '/' + file.name), file.text);
}

TEST_F(Bridge, InstallingAgainWritesNothing)
{
    bridge().install();
    const QString shim = paths.bin() + "/open";
    const QString source = paths.zsh() + "/.zshenv";
    const ino_t shimFile = status(shim).st_ino;
    const ino_t sourceFile = status(source).st_ino;

    bridge().install();

    EXPECT_EQ(status(shim).st_ino, shimFile);
    EXPECT_EQ(status(source).st_ino, sourceFile);
}

TEST_F(Bridge, WhatAnEarlierVersionWroteIsReplaced)
{
    put(paths.bin() + "/open", "#!/bin/sh\n");
    put(paths.zsh() + "/.zshrc", BridgeTexts::zshSources()[2].text + "more");

    bridge().install();

    EXPECT_EQ(contents(paths.bin() + "/open"), BridgeTexts::openShim());
    EXPECT_EQ(mode(paths.bin() + "/open"), 0755);
    EXPECT_EQ(contents(paths.zsh() + "/.zshrc"), BridgeTexts::zshSources()[2].text);
}

TEST_F(Bridge, AShimThatLostItsModeGetsItBackWithoutBeingWritten)
{
    bridge().install();
    const QString shim = paths.bin() + "/open";
    const ino_t file = status(shim).st_ino;
    ASSERT_EQ(::chmod(QFile::encodeName(shim).constData(), 0600), 0);

    bridge().install();

    EXPECT_EQ(mode(shim), 0755);
    EXPECT_EQ(status(shim).st_ino, file);
}

TEST_F(Bridge, WhatCantBeWrittenIsLeftOut)
{
    put(paths.bin(), "a file where a folder should be");
    ASSERT_TRUE(QDir().mkpath(paths.zsh() + "/.zshrc/folder"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(paths.zsh() + "/.zshenv").constData(), 0600), 0);

    const QStringList environment = bridge().configure({}, "/bin/zsh");

    EXPECT_EQ(value(environment, "ZDOTDIR"), paths.zsh());
    EXPECT_EQ(contents(paths.zsh() + "/.zlogin"), BridgeTexts::zshSources()[3].text);
}

TEST_F(Bridge, TheFirstPaneOfARunWritesTheFiles)
{
    const BrowserBridge run = bridge();
    EXPECT_FALSE(QFile::exists(paths.support()));

    static_cast<void>(run.configure({}, "/bin/bash"));
    EXPECT_TRUE(QFile::exists(paths.bin() + "/open"));

    // The panes after it pay for nothing.
    ASSERT_TRUE(QFile::remove(paths.bin() + "/open"));
    static_cast<void>(run.configure({}, "/bin/bash"));
    EXPECT_FALSE(QFile::exists(paths.bin() + "/open"));
}

TEST_F(Bridge, APaneIsToldWhereTheProgramsAre)
{
    const QStringList environment = bridge().configure({"BROWSER=firefox"}, "/bin/bash");

    EXPECT_EQ(value(environment, "BRALTO_BIN"), paths.bin());
    EXPECT_EQ(value(environment, "BROWSER"), paths.bin() + "/bralto-browser");
    EXPECT_EQ(value(environment, "BRALTO_BUNDLE_ID"), "com.tolvane.bralto.space.1a2b3c4d5e6f");
    EXPECT_EQ(value(environment, "BRALTO_OPEN"), std::nullopt);
}

TEST_F(Bridge, OnlyABundleHasAnIdentifierToDeliverTo)
{
    for (const QString& bundle :
         QStringList{"", "/opt/bralto", "/opt/app", "/opt/Bralto.application"}) {
        SCOPED_TRACE(qPrintable(bundle));
        EXPECT_EQ(bridge(bundle).bundleIdentifier(), std::nullopt);
        EXPECT_EQ(value(bridge(bundle).configure({}, "/bin/bash"), "BRALTO_BUNDLE_ID"),
                  std::nullopt);
    }
}

TEST_F(Bridge, TheSearchPathBeginsWithTheFolder)
{
    EXPECT_EQ(searchPath({"PATH=/usr/bin:/bin"}), paths.bin() + ":/usr/bin:/bin");
    EXPECT_EQ(searchPath({}), paths.bin() + ":/usr/bin:/bin:/usr/sbin:/sbin");
    EXPECT_EQ(searchPath({"PATH="}), paths.bin());
}

TEST_F(Bridge, AFolderThatIsInTheSearchPathAlreadyMovesToTheFront)
{
    const QString bin = paths.bin();

    EXPECT_EQ(searchPath({"PATH=/a:" + bin + ":/b:" + bin}), bin + ":/a:/b");
    EXPECT_EQ(searchPath({"PATH=" + bin}), bin);
    // What only looks like it, and what stands for the current folder, stays.
    EXPECT_EQ(searchPath({"PATH=" + bin + "/x::/a"}), bin + ":" + bin + "/x::/a");
}

TEST_F(Bridge, ZshReadsTheProgramsStartUpFilesAndFindsTheUsers)
{
    const QStringList environment =
        bridge().configure({"HOME=/home/ann", "ZDOTDIR=/home/ann/.config/zsh"}, "/usr/bin/zsh");

    EXPECT_EQ(value(environment, "ZDOTDIR"), paths.zsh());
    EXPECT_EQ(value(environment, "BRALTO_USER_ZDOTDIR"), "/home/ann/.config/zsh");
}

TEST_F(Bridge, WithoutAFolderOfTheirOwnTheUsersStartUpFilesAreInTheHomeFolder)
{
    const QStringList none{"HOME=/home/ann"};
    const QStringList empty{"HOME=/home/ann", "ZDOTDIR="};
    // A pane that was started from a pane whose shell never came to its end.
    const QStringList ours{"HOME=/home/ann", "ZDOTDIR=" + paths.zsh(),
                           "BRALTO_USER_ZDOTDIR=/elsewhere"};

    for (const QStringList& own : {none, empty, ours}) {
        SCOPED_TRACE(qPrintable(own.join(' ')));
        const QStringList environment = bridge().configure(own, "/bin/zsh");
        EXPECT_EQ(value(environment, "BRALTO_USER_ZDOTDIR"), "/home/ann");
        EXPECT_EQ(value(environment, "ZDOTDIR"), paths.zsh());
    }
    EXPECT_EQ(value(bridge().configure({}, "/bin/zsh"), "BRALTO_USER_ZDOTDIR"), home.path());
}

TEST_F(Bridge, OtherShellsReadTheirOwnStartUpFiles)
{
    for (const QString& shell :
         QStringList{"/bin/bash", "/bin/sh", "/usr/bin/fish", "/opt/zsh/bin/bash"}) {
        SCOPED_TRACE(qPrintable(shell));
        const QStringList environment = bridge().configure({"ZDOTDIR=/mine"}, shell);
        EXPECT_EQ(value(environment, "ZDOTDIR"), "/mine");
        EXPECT_EQ(value(environment, "BRALTO_USER_ZDOTDIR"), std::nullopt);
    }
}

TEST_F(Bridge, EachVariableStandsInTheEnvironmentOnce)
{
    const BrowserBridge run = bridge();
    const QStringList once = run.configure({"HOME=/home/ann", "PATH=/bin"}, "/bin/zsh");

    EXPECT_EQ(run.configure(once, "/bin/zsh"), once);
    QStringList names;
    for (const QString& variable : once)
        names.append(variable.section('=', 0, 0));
    EXPECT_EQ(names.removeDuplicates(), 0);
}

TEST(BridgeTexts, TheExecutablesPathIsOneWordOfTheShim)
{
    EXPECT_TRUE(BridgeTexts::browserShim("/it's $HOME/Bralto")
                    .contains("\nbralto='/it'\\''s $HOME/Bralto'\n"));
}

TEST(BridgeTexts, EachStartUpFileSaysWhoPutItThere)
{
    QStringList names;
    for (const BridgeTexts::File& file : BridgeTexts::zshSources()) {
        names.append(file.name);
        EXPECT_TRUE(file.text.startsWith("# Installed by Bralto: runs your own " +
                                         file.name.toUtf8() + ", see BrowserBridge.\n"));
    }
    EXPECT_EQ(names, (QStringList{".zshenv", ".zprofile", ".zshrc", ".zlogin"}));
}

} // namespace
} // namespace Bralto
