#include "Launch/ProjectHandover.h"
#include "Launch/DesktopLibrary.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Bralto;

TEST(ProjectHandover, OneFolderIsAProject)
{
    const QTemporaryDir home;

    const auto request = ProjectHandover::request({}, {home.path() + "/"});

    ASSERT_TRUE(request);
    EXPECT_EQ(request->folder, home.path());
    EXPECT_TRUE(request->files.isEmpty());
}

TEST(ProjectHandover, AFileOpensTheProjectOfItsFolder)
{
    const QTemporaryDir home;
    QFile file(home.filePath("a.txt"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));

    const auto request = ProjectHandover::request({}, {file.fileName()});

    ASSERT_TRUE(request);
    EXPECT_EQ(request->folder, home.path());
    EXPECT_EQ(request->files, QStringList{file.fileName()});
}

TEST(ProjectHandover, NothingElseIsHandedOver)
{
    const QTemporaryDir home;
    LaunchRole project;
    project.folder = home.path();

    EXPECT_FALSE(ProjectHandover::request({}, {}));
    EXPECT_FALSE(ProjectHandover::request({}, {home.path() + "/missing"}));
    EXPECT_FALSE(ProjectHandover::request({}, {home.path(), home.path()}));
    EXPECT_FALSE(ProjectHandover::request({}, {"bralto://open?path=/"}));
    EXPECT_FALSE(ProjectHandover::request(project, {home.path()})) << "a project is one already";
}

TEST(DesktopLibrary, IsLookedForInTheHostsBundleFirst)
{
    LaunchRole role;
    role.hostBundlePath = "/opt/Bralto.app";

    const QStringList candidates =
        DesktopLibrary::candidates(role, "/home/ada/P.app/Contents/MacOS");

    EXPECT_EQ(candidates.first(), "/opt/Bralto.app/Contents/Frameworks/libBraltoDesktop.so");
    EXPECT_EQ(candidates.size(), 2);
}

TEST(DesktopLibrary, AMissingOneSaysWhy)
{
    const auto entry = DesktopLibrary::load({"/nonexistent/libBraltoDesktop.so"});

    ASSERT_FALSE(entry);
    EXPECT_TRUE(entry.error().contains("/nonexistent/libBraltoDesktop.so"));
}
