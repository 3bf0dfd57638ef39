#include "Platform/MainBundle.h"
#include "Base/PropertyList.h"
#include "Base/SpaceIdentity.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

class RoleOfABundle : public testing::Test {
protected:
    QTemporaryDir place;

    /// Makes a bundle with the description `entries`; its executable.
    QString makeBundle(const QString& name, const PropertyList::Entries& entries) const
    {
        const QString contents = place.filePath(name) + "/Contents";
        EXPECT_TRUE(QDir().mkpath(contents + "/MacOS"));
        QFile file(contents + "/Info.plist");
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(PropertyList::encode(entries));
        return contents + "/MacOS/Bralto";
    }
};

TEST(MainBundle, OnlyAnExecutableInTheInnerLayoutHasABundle)
{
    EXPECT_EQ(MainBundle::path("/opt/Bralto.app/Contents/MacOS/Bralto"), "/opt/Bralto.app");
    EXPECT_EQ(MainBundle::path("/opt/My App.app/Contents/MacOS/x"), "/opt/My App.app");
    for (const char* executable :
         {"/usr/bin/bralto", "/opt/Bralto.app/Bralto", "/opt/Bralto.app/Contents/Bralto",
          "/opt/Bralto/Contents/MacOS/Bralto", "/opt/.app/Contents/MacOS/Bralto",
          "/opt/Bralto.app/Contents/MacOS/deeper/Bralto", "/Contents/MacOS/Bralto", "/Bralto", ""})
        EXPECT_EQ(MainBundle::path(executable), "") << executable;
}

TEST(MainBundle, TheExecutableOfThisProcessIsFound)
{
    EXPECT_EQ(MainBundle::executable(), QCoreApplication::applicationFilePath());
}

TEST(MainBundle, OutsideABundleAProcessActsAsTheHomeApplication)
{
    const LaunchRole role = MainBundle::role("/home/ann/build/bin/bralto");

    EXPECT_FALSE(role.isFolderApp());
    EXPECT_EQ(role.bundlePath, "");
    EXPECT_EQ(role.bundleIdentifier, "com.tolvane.bralto");
    EXPECT_EQ(role.hostBundlePath, "");
    EXPECT_EQ(role.hostExecutable, "/home/ann/build/bin/bralto");
    EXPECT_EQ(role.shortVersion, "0.1.0");
    EXPECT_EQ(role.buildVersion, "0.1.0");
}

TEST_F(RoleOfABundle, TheHomeApplicationIsItsOwnHost)
{
    const QString executable =
        makeBundle("Bralto.app", {{"CFBundleIdentifier", QString("com.tolvane.bralto")},
                                  {"CFBundleShortVersionString", QString("1.2")},
                                  {"CFBundleVersion", QString("34")}});

    const LaunchRole role = MainBundle::role(executable);

    EXPECT_FALSE(role.isFolderApp());
    EXPECT_EQ(role.bundlePath, place.filePath("Bralto.app"));
    EXPECT_EQ(role.hostBundlePath, role.bundlePath);
    EXPECT_EQ(role.hostExecutable, executable);
    EXPECT_EQ(role.shortVersion, "1.2");
    EXPECT_EQ(role.buildVersion, "34");
}

TEST_F(RoleOfABundle, ABundleWithAFolderIsThatProjectsApplication)
{
    makeBundle("Home.app", {{"CFBundleShortVersionString", QString("2.0")}});
    const QString identifier = SpaceIdentity::bundleIdentifier("/p/x");
    const QString executable = makeBundle("X.app", {{"CFBundleIdentifier", identifier},
                                                    {"CFBundleShortVersionString", QString("1.0")},
                                                    {"CFBundleVersion", QString("1.0")},
                                                    {"BraltoFolder", QString("/p/./x/")},
                                                    {"BraltoHost", place.filePath("Home.app")}});

    const LaunchRole role = MainBundle::role(executable);

    EXPECT_EQ(role.folder, "/p/x");
    EXPECT_EQ(role.bundlePath, place.filePath("X.app"));
    EXPECT_EQ(role.bundleIdentifier, identifier);
    EXPECT_EQ(role.hostBundlePath, place.filePath("Home.app"));
    EXPECT_EQ(role.hostExecutable, place.filePath("Home.app/Contents/MacOS/Bralto"));
    EXPECT_EQ(role.shortVersion, "2.0");
    EXPECT_EQ(role.buildVersion, "0.1.0");
}

TEST_F(RoleOfABundle, AHostThatIsGoneIsReplacedByTheBundleItself)
{
    const QString executable = makeBundle("X.app", {{"BraltoFolder", QString("/p/x")},
                                                    {"BraltoHost", place.filePath("Gone.app")},
                                                    {"CFBundleVersion", QString("7")}});

    const LaunchRole role = MainBundle::role(executable);

    EXPECT_EQ(role.hostBundlePath, place.filePath("X.app"));
    EXPECT_EQ(role.hostExecutable, executable);
    EXPECT_EQ(role.bundleIdentifier, SpaceIdentity::bundleIdentifier("/p/x"));
    EXPECT_EQ(role.buildVersion, "7");
}

TEST_F(RoleOfABundle, AnEmptyFolderOrOneThatIsNoTextIsNone)
{
    EXPECT_FALSE(MainBundle::role(makeBundle("A.app", {{"BraltoFolder", QString("")}})).folder);
    EXPECT_FALSE(MainBundle::role(makeBundle("B.app", {{"BraltoFolder", true}})).folder);
}

TEST_F(RoleOfABundle, ADamagedDescriptionIsThatOfTheHomeApplication)
{
    const QString executable = makeBundle("X.app", {});
    QFile file(place.filePath("X.app/Contents/Info.plist"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<plist><dict><key>BraltoFolder</key><string>/p");
    file.close();

    const LaunchRole role = MainBundle::role(executable);

    EXPECT_FALSE(role.isFolderApp());
    EXPECT_EQ(role.bundleIdentifier, "com.tolvane.bralto");
}

} // namespace
} // namespace Bralto
