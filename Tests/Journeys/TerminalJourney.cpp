#include "Tests/Journeys/DesktopSession.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Bralto::Journeys;

namespace {

/// What stands in for the agent: it writes down how it was started, one line a start, and stays.
constexpr auto Agent = "#!/bin/sh\n"
                       "printf '%s\\n' \"$*\" >> \"$HOME/starts\"\n"
                       "exec cat\n";

struct TerminalJourney : testing::Test {
    void SetUp() override
    {
        qputenv("SHELL", "/bin/zsh");
        ASSERT_TRUE(desktop.isReady()) << "no X server or window manager";
        write(desktop.home() + "/.zshrc", "PROMPT='ready %# '\n");
        const QString agent = desktop.home() + "/agent";
        write(agent, Agent);
        QFile::setPermissions(agent, QFile::permissions(agent) | QFile::ExeOwner);
        desktop.useAgent(agent);
        ASSERT_TRUE(desktop.openProject());
    }

    static void write(const QString& path, const QByteArray& bytes)
    {
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
    }
    [[nodiscard]] QString path(const QString& name) const { return desktop.project() + '/' + name; }
    /// Types a line into the shell that has the keyboard, again until it did what it should: a
    /// shell that is still starting may lose what is typed.
    bool runUntil(const QString& line, const std::function<bool()>& done)
    {
        for (int attempt = 0; attempt < 5; ++attempt) {
            desktop.type(line);
            desktop.press("Return");
            if (DesktopSession::waitFor(done, 5))
                return true;
        }
        return false;
    }
    bool runUntilThere(const QString& line, const QString& file)
    {
        return runUntil(line, [&] { return !DesktopSession::read(file).isEmpty(); });
    }
    [[nodiscard]] QStringList starts() const
    {
        return QString::fromUtf8(DesktopSession::read(desktop.home() + "/starts"))
            .split('\n', Qt::SkipEmptyParts);
    }
    [[nodiscard]] QJsonObject savedPanel() const
    {
        const QDir folder(desktop.home() + "/Library/Application Support/Bralto/Terminals");
        const QStringList files = folder.entryList({"*tidal*.json"});
        return files.isEmpty()
                   ? QJsonObject()
                   : QJsonDocument::fromJson(DesktopSession::read(folder.filePath(files[0])))
                         .object();
    }

    DesktopSession desktop;
};

} // namespace

TEST_F(TerminalJourney, AShellRunsInTheProjectWithTheProgramsOwnSurroundings)
{
    desktop.press("ctrl+bracketright");
    ASSERT_TRUE(runUntilThere("echo $PWD $TERM $TERM_PROGRAM $BRALTO_PROJECT > out", path("out")));
    desktop.picture("shell");

    EXPECT_EQ(DesktopSession::read(path("out")).trimmed(),
              (desktop.project() + " xterm-256color Bralto " + desktop.project()).toUtf8());
    ASSERT_TRUE(runUntilThere("whence -p xdg-open > opener", path("opener")));
    EXPECT_EQ(DesktopSession::read(path("opener")).trimmed(),
              (desktop.home() + "/Library/Application Support/Bralto/bin/xdg-open").toUtf8());
}

TEST_F(TerminalJourney, TheAgentStartsInTheUsersShellAndGoesOnAfterARestart)
{
    desktop.press("ctrl+j");
    ASSERT_TRUE(DesktopSession::waitFor([&] { return starts().size() == 1; }));
    desktop.picture("agent");
    const QRegularExpressionMatch first =
        QRegularExpression("^--mcp-config .*/mcp\\.json --session-id ([0-9a-f-]{36})$")
            .match(starts()[0]);
    ASSERT_TRUE(first.hasMatch()) << starts()[0].toStdString();
    const QString stored = desktop.home() + "/.claude/projects/p";
    QDir().mkpath(stored);
    write(stored + '/' + first.captured(1) + ".jsonl", "{}\n");

    ASSERT_TRUE(desktop.quit());
    ASSERT_TRUE(desktop.openProject());

    ASSERT_TRUE(DesktopSession::waitFor([&] { return starts().size() == 2; }));
    EXPECT_TRUE(starts()[1].endsWith("/mcp.json --resume " + first.captured(1)))
        << starts()[1].toStdString();
}

TEST_F(TerminalJourney, LayoutFolderAndTextComeBack)
{
    desktop.press("ctrl+bracketright");
    ASSERT_TRUE(runUntilThere("cd src; echo high water; echo x > there", path("src/there")));
    desktop.press("ctrl+shift+bracketright");
    ASSERT_TRUE(runUntilThere("echo x > beside", path("beside")));

    ASSERT_TRUE(desktop.quit());
    const QJsonObject saved = savedPanel();
    const QJsonArray panes = saved["groups"][0]["panes"].toArray();
    ASSERT_EQ(panes.size(), 2);
    EXPECT_EQ(panes[0]["directory"].toString(), path("src"));
    EXPECT_TRUE(panes[0]["scrollback"].toString().contains("\nhigh water"));
    EXPECT_EQ(saved["groups"][0]["focusedIndex"].toInt(), 1);

    ASSERT_TRUE(desktop.openProject());
    desktop.picture("restored");
    ASSERT_TRUE(runUntilThere("pwd > second", path("second")));
    desktop.press("ctrl+shift+Tab");
    ASSERT_TRUE(runUntilThere("pwd > first", path("src/first")));
    EXPECT_EQ(DesktopSession::read(path("src/first")).trimmed(), path("src").toUtf8());
}

TEST_F(TerminalJourney, TheShellGetsItsControlKeysAndTheProgramTheOnesWithShift)
{
    desktop.press("ctrl+bracketright");
    ASSERT_TRUE(runUntilThere("echo x > ready", path("ready")));

    // Ctrl+W deletes a word, Ctrl+U the line; neither closes anything.
    desktop.type("echo gone");
    desktop.press("ctrl+u");
    desktop.type("echo one two");
    desktop.press("ctrl+w");
    desktop.type("three > words");
    desktop.press("Return");
    ASSERT_TRUE(DesktopSession::waitFor(
        [&] { return DesktopSession::read(path("words")) == "one three\n"; }));

    desktop.press("ctrl+shift+w");
    ASSERT_TRUE(desktop.quit());
    EXPECT_TRUE(savedPanel()["groups"].toArray().isEmpty());
}

TEST_F(TerminalJourney, AShellThatEndsTakesItsPaneAlong)
{
    desktop.press("ctrl+bracketright");
    ASSERT_TRUE(runUntilThere("echo x > ready", path("ready")));
    desktop.press("ctrl+shift+bracketright");
    ASSERT_TRUE(runUntilThere("echo x > beside", path("beside")));

    desktop.type("exit");
    desktop.press("Return");
    ASSERT_TRUE(runUntilThere("echo x > left", path("left")));
    ASSERT_TRUE(desktop.quit());

    EXPECT_EQ(savedPanel()["groups"][0]["panes"].toArray().size(), 1);
}
