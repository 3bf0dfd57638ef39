// The start-up files that keep the program's folder first, read by the shells themselves.
#include "Base/PaneEnvironment.h"
#include "Browser/BrowserBridge.h"
#include "Platform/LocalPaneProcess.h"
#include "Platform/QtRunLoop.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace Bralto {
namespace {

/// A home folder with a user's start-up files, and shells that are started as a pane starts them.
class ShellOfAPane : public testing::Test, public Kovalt::LocalProcessDelegate {
protected:
    QTemporaryDir place;
    QString home = place.filePath("a [b]* 'c'");
    AppPaths paths{home};
    QStringList own{"HOME=" + home, "PATH=/usr/local/bin:/usr/bin:/bin", "LC_ALL=C.UTF-8",
                    "USER=ann"};

    std::function<void(LocalPaneProcess&)> beforeTyping;

    void SetUp() override { ASSERT_TRUE(QDir().mkpath(home)); }

    void put(const QString& name, const QByteArray& text) const
    {
        const QString path = name.startsWith('/') ? name : home + '/' + name;
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    static QByteArray contents(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList environment(const QString& shell) const
    {
        return BrowserBridge(paths, LaunchRole())
            .configure(PaneEnvironment::build(own, {"pane", home}), shell);
    }

    /// What a pane's session prints for a line that its user types, a line each.
    QStringList typed(const QString& line, const QString& shell = "/bin/zsh",
                      const std::vector<std::string>& arguments = {"-l"})
    {
        const QString answer = place.filePath("answer");
        QFile::remove(answer);
        m_hasEnded = false;
        m_screen.clear();
        LocalPaneProcess process(*this, m_loop);
        Kovalt::ProcessStart start{.executable = shell.toStdString(),
                                   .arguments = arguments,
                                   .execName = '-' + QFileInfo(shell).fileName().toStdString(),
                                   .currentDirectory = home.toStdString()};
        start.environment.emplace();
        for (const QString& variable : environment(shell))
            start.environment->push_back(variable.toStdString());
        if (arguments.empty())
            start.execName.reset();
        process.start(start);
        if (beforeTyping)
            beforeTyping(process);
        const std::string input =
            "{ " + line.toStdString() + "; } > " + answer.toStdString() + "\nexit\n";
        send(process, input);
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_hasEnded; }, 30'000)) << m_screen;
        return lines(contents(answer));
    }
    static void send(LocalPaneProcess& process, std::string_view keys)
    {
        process.send({reinterpret_cast<const std::uint8_t*>(keys.data()), keys.size()});
    }
    /// What a shell prints that is no session.
    QStringList ran(const QString& shell, const QStringList& arguments) const
    {
        QProcess process;
        process.setEnvironment(environment(shell));
        process.setWorkingDirectory(home);
        process.start(shell, arguments);
        EXPECT_TRUE(process.waitForFinished(30'000));
        return lines(process.readAllStandardOutput());
    }

    static QStringList lines(const QByteArray& text)
    {
        return QString::fromUtf8(text).split('\n', Qt::SkipEmptyParts);
    }

private:
    void processTerminated(Kovalt::LocalProcess&, std::optional<std::int32_t>) override
    {
        m_hasEnded = true;
    }
    void dataReceived(std::span<const std::uint8_t> slice) override
    {
        m_screen.append(slice.begin(), slice.end());
    }
    winsize getWindowSize() override { return {25, 80, 0, 0}; }

    QtRunLoop m_loop;
    bool m_hasEnded = false;
    std::string m_screen;
};

class ZshOfAPane : public ShellOfAPane {
protected:
    /// What the checks below look at, a line each.
    const QString state =
        "print -rl -- $PATH ZDOTDIR=${ZDOTDIR-unset}"
        " left=${BRALTO_USER_ZDOTDIR-}${bralto_zdotdir-}${+functions[bralto_finish]}";

    /// The search path and the user's folder are as they should be, and nothing of ours is left.
    void expectFinished(const QStringList& found, const QString& searchPath,
                        const QString& userFolder = "unset") const
    {
        ASSERT_EQ(found.size(), 3) << qPrintable(found.join('|'));
        EXPECT_EQ(found[0], paths.bin() + ':' + searchPath);
        EXPECT_EQ(found[1], "ZDOTDIR=" + userFolder);
        EXPECT_EQ(found[2], "left=0");
    }
    /// Each of the user's files writes down its name.
    void putNotes(const QString& folder = QString())
    {
        for (const QByteArray name : {".zshenv", ".zprofile", ".zshrc", ".zlogin"}) {
            put(folder + QString::fromLatin1(name),
                "print -r -- " + name + " in ${ZDOTDIR-unset} >> ~/order\n");
        }
    }
    QStringList order() const
    {
        const QByteArray text = contents(home + "/order");
        QFile::remove(home + "/order");
        return lines(text);
    }
};

constexpr char OwnPath[] = "/usr/local/bin:/usr/bin:/bin";

TEST_F(ZshOfAPane, WithoutAnyFileOfTheUserTheFolderComesFirst)
{
    expectFinished(typed(state), OwnPath);
}

TEST_F(ZshOfAPane, ALoginSessionReadsEachOfTheUsersFilesOnceAndInOrder)
{
    putNotes();

    expectFinished(typed(state), OwnPath);

    EXPECT_EQ(order(), (QStringList{".zshenv in " + home, ".zprofile in " + home,
                                    ".zshrc in " + home, ".zlogin in " + home}));
}

TEST_F(ZshOfAPane, ASessionWithoutALoginReadsTwoFiles)
{
    putNotes();

    expectFinished(typed(state, "/bin/zsh", {}), OwnPath);

    EXPECT_EQ(order(), (QStringList{".zshenv in " + home, ".zshrc in " + home}));
}

TEST_F(ZshOfAPane, ACommandReadsTheFirstFileOnlyAndFinishesThere)
{
    putNotes();

    expectFinished(ran("/bin/zsh", {"-c", state}), OwnPath);

    EXPECT_EQ(order(), QStringList{".zshenv in " + home});
}

TEST_F(ZshOfAPane, ACommandOfALoginShellReadsAllButTheSessionsFile)
{
    putNotes();

    expectFinished(ran("/bin/zsh", {"-lc", state}), OwnPath);

    EXPECT_EQ(order(),
              (QStringList{".zshenv in " + home, ".zprofile in " + home, ".zlogin in " + home}));
}

TEST_F(ZshOfAPane, WhatTheUserPutsFirstInThePathComesSecond)
{
    put(".zshrc", "path=(~/mine $path)\nexport PATH=/more:$PATH\n");

    expectFinished(typed(state), "/more:" + home + "/mine:" + OwnPath);
}

TEST_F(ZshOfAPane, APathThatTheUserReplacesOrRepeatsGetsTheFolderOnce)
{
    put(".zprofile", "export PATH=/usr/bin:/bin\n");
    put(".zshrc", "path+=($BRALTO_BIN /end $BRALTO_BIN)\n");

    expectFinished(typed(state), "/usr/bin:/bin:/end");
}

TEST_F(ZshOfAPane, APathWithoutRepetitionsStaysOne)
{
    put(".zshenv", "typeset -U path PATH\n");
    put(".zlogin", "path=(/usr/bin /bin $path /usr/bin)\n");

    expectFinished(typed(state), "/usr/bin:/bin:/usr/local/bin");
}

TEST_F(ZshOfAPane, AFolderThatTheUserMovedToIsHonouredForTheLaterFilesAndTheSession)
{
    putNotes(".config/zsh/");
    put(".zshenv", "print -r -- first >> ~/order; export ZDOTDIR=$HOME/.config/zsh\n");

    expectFinished(typed(state), OwnPath, home + "/.config/zsh");

    const QString in = " in " + home + "/.config/zsh";
    EXPECT_EQ(order(), (QStringList{"first", ".zprofile" + in, ".zshrc" + in, ".zlogin" + in}));
}

TEST_F(ZshOfAPane, AFolderFromTheUsersOwnEnvironmentIsHonoured)
{
    own.append("ZDOTDIR=" + home + "/z");
    putNotes("z/");

    expectFinished(typed(state), OwnPath, home + "/z");

    EXPECT_EQ(order().size(), 4);
}

TEST_F(ZshOfAPane, AUserWhoUnsetsTheFolderIsAtHome)
{
    own.append("ZDOTDIR=" + home + "/z");
    putNotes();
    put("z/.zshenv", "unset ZDOTDIR\n");

    expectFinished(typed(state), OwnPath);

    EXPECT_EQ(order(),
              (QStringList{".zprofile in " + home, ".zshrc in " + home, ".zlogin in " + home}));
}

TEST_F(ZshOfAPane, HistoryIsKeptInTheUsersFolder)
{
    // What a system's own start-up file makes of the folder before the user's file is read.
    own.append("HISTFILE=" + paths.zsh() + "/.zsh_history");
    EXPECT_EQ(typed("print -r -- $HISTFILE"), QStringList{home + "/.zsh_history"});

    put(".zshenv", "ZDOTDIR=$HOME/z\n");
    EXPECT_EQ(typed("print -r -- $HISTFILE"), QStringList{home + "/z/.zsh_history"});
}

TEST_F(ZshOfAPane, HistoryStaysWhereTheUserPutIt)
{
    put(".zshrc", "HISTFILE=~/mine\n");

    EXPECT_EQ(typed("print -r -- $HISTFILE"), QStringList{home + "/mine"});
    EXPECT_FALSE(QFile::exists(paths.zsh() + "/.zsh_history"));
}

TEST_F(ZshOfAPane, AShellInsideOfItReadsTheUsersFilesWithoutTheChain)
{
    putNotes();
    put(".zshrc", "print -r -- .zshrc in ${ZDOTDIR-unset} >> ~/order; path=(/mine $path)\n");

    const QStringList found = typed("zsh -ic " + QString("'%1'").arg(state));

    ASSERT_EQ(found.size(), 3) << qPrintable(found.join('|'));
    EXPECT_EQ(found[0], "/mine:" + paths.bin() + ":/mine:" + OwnPath);
    EXPECT_EQ(found.mid(1), (QStringList{"ZDOTDIR=unset", "left=0"}));
    EXPECT_EQ(order().mid(4), (QStringList{".zshenv in unset", ".zshrc in unset"}));
}

TEST_F(ZshOfAPane, AShellThatAStartUpFileRunsIsTheUsersOwn)
{
    put(".zshenv", "print -r -- env in ${ZDOTDIR-unset} >> ~/order\n");
    put(".zshrc", "zsh -c 'print -r -- inner >> ~/order'\n");

    expectFinished(typed(state), OwnPath);

    EXPECT_EQ(order(), (QStringList{"env in " + home, "env in " + home, "inner"}));
}

TEST_F(ZshOfAPane, AFileThatFailsDoesntBreakTheChain)
{
    const std::pair<const char*, const char*> failures[] = {
        {"a syntax error", "if [[ ; then\n"},
        {"a missing command", "no_such_command\n"},
        {"an early return", "return 3\nprint unreachable\n"},
        {"an end at the first failure", "setopt err_return\nfalse\n"},
        {"an unset parameter", "setopt no_unset\nprint $no_such_parameter\n"},
        {"a parameter that must be set", "print ${no_such_parameter?is missing}\n"},
        {"a bad substitution", "print ${(Z)x}\n"},
        {"a failing last command", "false\n"},
        {"bytes that are no text", "\xff\xfe\x80\n"},
    };
    for (const char* file : {".zshenv", ".zprofile", ".zshrc", ".zlogin"}) {
        for (const auto& [name, text] : failures) {
            SCOPED_TRACE(std::string(file) + ": " + name);
            put(file, text);
            expectFinished(typed(state), OwnPath);
        }
        ASSERT_TRUE(QFile::remove(home + '/' + file));
    }
}

TEST_F(ZshOfAPane, AFileThatHangsCanBeInterruptedLikeAnyOther)
{
    beforeTyping = [this](LocalPaneProcess& process) {
        EXPECT_TRUE(QTest::qWaitFor([this] { return QFile::exists(home + "/started"); }, 30'000));
        send(process, "\x03");
    };
    for (const char* file : {".zshenv", ".zprofile", ".zshrc", ".zlogin"}) {
        SCOPED_TRACE(file);
        put(file, "sh -c 'echo > ~/started; exec sleep 600'\nprint > ~/over\n");

        expectFinished(typed(state), OwnPath);

        EXPECT_FALSE(QFile::exists(home + "/over"));
        ASSERT_TRUE(QFile::remove(home + '/' + file));
        ASSERT_TRUE(QFile::remove(home + "/started"));
    }
}

TEST_F(ZshOfAPane, TheUsersOptionsDontMatterToIt)
{
    for (const char* options :
         {"ksh_arrays", "no_unset", "sh_word_split glob_subst", "null_glob",
          "csh_null_glob no_nomatch", "no_rcs", "no_global_rcs", "extended_glob",
          "warn_create_global", "err_return", "all_export", "ignore_braces", "posix_builtins",
          "posix_identifiers", "sh_file_expansion", "ignore_close_braces", "verbose", "ksh_glob"}) {
        SCOPED_TRACE(options);
        put(".zshenv", "path=(/mine $path)\nsetopt " + QByteArray(options) + '\n');
        const QString print = "emulate -L zsh; " + state;

        expectFinished(typed(print), QString("/mine:") + OwnPath);
        expectFinished(ran("/bin/zsh", {"-c", print}), QString("/mine:") + OwnPath);
    }
}

TEST_F(ZshOfAPane, AliasesAndFunctionsOfTheUserAreNotItsOwn)
{
    put(".zshenv", "alias source=false unset=false export=false print=false\n"
                   "source() { return 1 }\nunset() { return 1 }\nunfunction() { return 1 }\n"
                   "export() { return 1 }\nemulate() { return 1 }\n");

    expectFinished(typed("builtin " + state), OwnPath);
}

TEST_F(ZshOfAPane, EmptyPlacesInThePathStay)
{
    put(".zshrc", "PATH=/a::/b:\n");

    expectFinished(typed(state), "/a::/b:");
}

TEST_F(ZshOfAPane, NothingInTheHomeFolderIsChanged)
{
    put(".zshrc", "true\n");

    typed(state);

    EXPECT_EQ(QDir(home).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              (QStringList{".zshrc", "Library"}));
    EXPECT_EQ(contents(home + "/.zshrc"), "true\n");
}

TEST_F(ZshOfAPane, FindsTheShimsByTheirNames)
{
    EXPECT_EQ(typed("whence -p xdg-open open bralto-browser; print -r -- $BROWSER"),
              (QStringList{paths.bin() + "/xdg-open", paths.bin() + "/open",
                           paths.bin() + "/bralto-browser", paths.bin() + "/bralto-browser"}));
}

TEST_F(ShellOfAPane, BashFindsTheShimsUnlessAProfileForgetsThem)
{
    const QString bash = "/bin/bash";
    EXPECT_EQ(typed("type -P xdg-open; echo \"$BROWSER\"; echo \"${ZDOTDIR-unset}\"", bash, {}),
              (QStringList{paths.bin() + "/xdg-open", paths.bin() + "/bralto-browser", "unset"}));

    // A login may set a path of its own; then the line that starts the agent puts ours back.
    put(".bash_profile", "PATH=/mine:/usr/bin:/bin\n");
    EXPECT_EQ(typed("PATH=\"$BRALTO_BIN:$PATH\" printenv PATH; echo \"$BROWSER\"", bash),
              (QStringList{paths.bin() + ":/mine:/usr/bin:/bin", paths.bin() + "/bralto-browser"}));
}

TEST_F(ShellOfAPane, FishFindsTheShims)
{
    const QString fish = "/usr/bin/fish";

    EXPECT_EQ(
        ran(fish, {"-l", "-c", "command -s xdg-open; echo $BROWSER; echo $PATH[1]"}),
        (QStringList{paths.bin() + "/xdg-open", paths.bin() + "/bralto-browser", paths.bin()}));
}

} // namespace
} // namespace Bralto
