#include "Tests/Journeys/DesktopSession.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Bralto::Journeys;

namespace {

QJsonObject sharedDefaults(const DesktopSession& desktop)
{
    return QJsonDocument::fromJson(
               DesktopSession::read(desktop.preferences("com.tolvane.bralto.shared")))
        .object();
}

} // namespace

TEST(WindowJourney, AFolderOpensInAProcessOutOfItsOwnBundle)
{
    DesktopSession desktop;
    ASSERT_TRUE(desktop.isReady());
    desktop.useDemoAgent();

    ASSERT_TRUE(desktop.openProject());

    const QString running =
        QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(desktop.programId()));
    EXPECT_EQ(running, desktop.home() + "/Applications/Bralto/tidal api.app/Contents/MacOS/Bralto");
    EXPECT_EQ(sharedDefaults(desktop)["recentFolders"].toArray().first().toString(),
              desktop.project());
    desktop.picture("project");
}

TEST(WindowJourney, TheHomeScreenOpensWithoutAProject)
{
    DesktopSession desktop;
    ASSERT_TRUE(desktop.isReady());
    desktop.useDemoAgent();

    EXPECT_TRUE(desktop.openHome());
    desktop.picture("home");
}

TEST(WindowJourney, TabsComeBackAfterARestart)
{
    DesktopSession desktop;
    ASSERT_TRUE(desktop.isReady());
    desktop.useDemoAgent();
    ASSERT_TRUE(desktop.openProject());
    const QString key = "session:" + desktop.project();

    // "New File…" asks for a name and opens what it made.
    desktop.press("ctrl+n");
    ASSERT_TRUE(desktop.awaitDialog());
    desktop.type("tide.md");
    desktop.press("Return");
    ASSERT_TRUE(
        DesktopSession::waitFor([&] { return QFile::exists(desktop.project() + "/tide.md"); }));
    ASSERT_TRUE(DesktopSession::waitFor(
        [&] { return sharedDefaults(desktop)[key].toObject()["tabs"].toArray().size() == 1; }));
    desktop.picture("new-file");
    ASSERT_TRUE(desktop.quit());

    ASSERT_TRUE(desktop.openProject());
    desktop.picture("tabs-restored");
    desktop.press("ctrl+w");

    EXPECT_TRUE(DesktopSession::waitFor(
        [&] { return sharedDefaults(desktop)[key].toObject()["tabs"].toArray().isEmpty(); }));
}

TEST(WindowJourney, AFolderThatVanishesLeavesTheWindowStanding)
{
    DesktopSession desktop;
    ASSERT_TRUE(desktop.isReady());
    desktop.useDemoAgent();
    ASSERT_TRUE(desktop.openProject());

    ASSERT_TRUE(QDir(desktop.project()).removeRecursively());
    desktop.press("ctrl+alt+j");
    desktop.type("hello");
    desktop.press("Return");
    desktop.picture("vanished");

    EXPECT_TRUE(desktop.isRunning());
    EXPECT_TRUE(desktop.quit());
}
