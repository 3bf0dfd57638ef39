#include "Platform/ProgramChatHost.h"

#include "Base/PaneEnvironment.h"
#include "Tests/Support/MemoryDefaultsStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace Bralto {
namespace {

class ProgramChatHostTest : public testing::Test {
protected:
    ProgramChatHost host(const LaunchRole& role = {}, const QStringList& environment = {})
    {
        return ProgramChatHost({m_shared, m_standard},
                               {AppPaths(m_home.path()), role, environment, false});
    }

    void write(const QString& path, const QByteArray& contents)
    {
        const QString full = m_home.filePath(path);
        QDir().mkpath(QFileInfo(full).path());
        QFile file(full);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    QTemporaryDir m_home;
    MemoryDefaultsStore m_shared, m_standard;
};

TEST_F(ProgramChatHostTest, HasACommandOfItsOwnIfTheUserHasNone)
{
    EXPECT_EQ(host().baseCommand(), "claude --dangerously-skip-permissions --chrome");
}

TEST_F(ProgramChatHostTest, TakesTheUsersCommandFromTheSharedDefaultsFirst)
{
    m_standard.set("claudeCommand", QString("standard"));
    EXPECT_EQ(host().baseCommand(), "standard");

    m_shared.set("claudeCommand", QString("  shared --x \n"));
    EXPECT_EQ(host().baseCommand(), "shared --x");
}

TEST_F(ProgramChatHostTest, TakesBlanksForNoCommand)
{
    m_shared.set("claudeCommand", QString("  "));

    EXPECT_EQ(host().baseCommand(), "claude --dangerously-skip-permissions --chrome");
}

TEST_F(ProgramChatHostTest, TakesACommandForThisRunBeforeTheUsers)
{
    m_shared.set("claudeCommand", QString("shared"));
    const ProgramChatHost host({m_shared, m_standard},
                               {AppPaths(m_home.path()), {}, {}, false, QString("demo")});

    EXPECT_EQ(host.baseCommand(), "demo");
}

TEST_F(ProgramChatHostTest, FindsAStoredConversationInAnyProject)
{
    write(".claude/projects/-a/other.jsonl", "");
    write(".claude/projects/-b/one.jsonl", "");

    EXPECT_TRUE(host().hasTranscript("one"));
    EXPECT_EQ(host().transcriptPath("one"), m_home.filePath(".claude/projects/-b/one.jsonl"));
    EXPECT_FALSE(host().hasTranscript("two"));
}

TEST_F(ProgramChatHostTest, FindsNoConversationWithoutAFolderOrInAFolderOfItsName)
{
    EXPECT_FALSE(host().hasTranscript("one"));

    QDir().mkpath(m_home.filePath(".claude/projects/-a/one.jsonl"));
    EXPECT_FALSE(host().hasTranscript("one"));
}

TEST_F(ProgramChatHostTest, FindsNoConversationOutsideTheProjects)
{
    write(".claude/one.jsonl", "");
    QDir().mkpath(m_home.filePath(".claude/projects/-a"));

    EXPECT_FALSE(host().hasTranscript("../../one"));
    EXPECT_FALSE(host().hasTranscript(""));
}

TEST_F(ProgramChatHostTest, ReadsSmallRegularFilesOnly)
{
    write("settings.json", "{}");
    write("large.json", QByteArray(2 << 20, 'x'));
    ASSERT_EQ(mkfifo(QFile::encodeName(m_home.filePath("pipe")).constData(), 0600), 0);

    EXPECT_EQ(host().readFile(m_home.filePath("settings.json")), "{}");
    EXPECT_EQ(host().readFile(m_home.filePath("large.json")), std::nullopt);
    EXPECT_EQ(host().readFile(m_home.filePath("missing.json")), std::nullopt);
    EXPECT_EQ(host().readFile(m_home.path()), std::nullopt);
    EXPECT_EQ(host().readFile(m_home.filePath("pipe")), std::nullopt);
}

TEST_F(ProgramChatHostTest, NamesThePaneAndTheBundleInTheEnvironment)
{
    LaunchRole role;
    role.bundlePath = "/opt/Bralto.app";
    role.bundleIdentifier = "com.tolvane.bralto";

    const QStringList environment =
        host(role, {"HOME=/home/user", "CLAUDECODE=1"}).environment("pane", "/project", "/bin/zsh");

    EXPECT_EQ(PaneEnvironment::value(environment, "HOME"), "/home/user");
    EXPECT_EQ(PaneEnvironment::value(environment, "CLAUDECODE"), std::nullopt);
    EXPECT_EQ(PaneEnvironment::value(environment, "BRALTO_PANE"), "pane");
    EXPECT_EQ(PaneEnvironment::value(environment, "BRALTO_PROJECT"), "/project");
    EXPECT_EQ(PaneEnvironment::value(environment, "BRALTO_BUNDLE_ID"), "com.tolvane.bralto");
}

TEST_F(ProgramChatHostTest, GivesAnAgentTheProgramsFolderAndItsShellTheStartUpFiles)
{
    const AppPaths paths(m_home.path());
    const QStringList own{"HOME=/home/user", "PATH=/usr/bin:/bin"};

    const QStringList environment = host({}, own).environment("pane", "/project", "/bin/zsh");

    EXPECT_EQ(
        environment,
        (QStringList{"HOME=/home/user", "PATH=" + paths.bin() + ":/usr/bin:/bin",
                     "TERM=xterm-256color", "COLORTERM=truecolor", "TERM_PROGRAM=Bralto",
                     "LANG=en_US.UTF-8", "BRALTO_PANE=pane", "BRALTO_PROJECT=/project",
                     "BRALTO_BIN=" + paths.bin(), "BROWSER=" + paths.bin() + "/bralto-browser",
                     "BRALTO_USER_ZDOTDIR=/home/user", "ZDOTDIR=" + paths.zsh()}));
    EXPECT_TRUE(QFileInfo(paths.bin() + "/xdg-open").isExecutable());
    EXPECT_TRUE(QFileInfo(paths.zsh() + "/.zshenv").isFile());
}

TEST_F(ProgramChatHostTest, NamesNoBundleOutsideOne)
{
    LaunchRole role;
    role.bundleIdentifier = "com.tolvane.bralto";

    const QStringList environment = host(role).environment("pane", "/project", "/bin/zsh");

    EXPECT_EQ(PaneEnvironment::value(environment, "BRALTO_BUNDLE_ID"), std::nullopt);
}

TEST_F(ProgramChatHostTest, TellsAnAgentOfTheBrowserToolsWhereItCanStartTheirServer)
{
    EXPECT_EQ(host().mcpConfigFlags(), QStringList());

    write("Bralto.app/Contents/MacOS/Bralto", "#!");
    LaunchRole role;
    role.bundlePath = m_home.filePath("Bralto.app");
    role.hostExecutable = m_home.filePath("Bralto.app/Contents/MacOS/Bralto");
    EXPECT_EQ(host(role).mcpConfigFlags(), QStringList()); // It can't be run.

    QFile::setPermissions(role.hostExecutable, QFile::ReadOwner | QFile::ExeOwner);
    const QString config = AppPaths(m_home.path()).mcpConfig();
    EXPECT_EQ(host(role).mcpConfigFlags(), (QStringList{"--mcp-config", config}));
    EXPECT_TRUE(host(role).readFile(config)->contains(role.hostExecutable.toUtf8()));
}

TEST_F(ProgramChatHostTest, StartsTheAgentInAShellThatIsThere)
{
    const QString expected = QFile::exists("/bin/zsh") ? "/bin/zsh" : "/bin/bash";

    EXPECT_EQ(host({}, {"SHELL=/bin/bash"}).shell(), expected);
    EXPECT_TRUE(QFileInfo(host({}, {"SHELL=/no/such/shell"}).shell()).isExecutable());
}

} // namespace
} // namespace Bralto
