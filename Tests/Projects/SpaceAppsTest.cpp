#include "Projects/SpaceApps.h"
#include "Base/PropertyList.h"
#include "Base/SpaceIdentity.h"
#include "Projects/SpaceTheme.h"
#include "Tests/Support/FakeDesktop.h"
#include "Tests/Support/FakeDialogs.h"
#include "Tests/Support/FakeRunningApplications.h"
#include "Tests/Support/MemoryDefaultsStore.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

using WhileRunning = SpaceApps::WhileRunning;

class BundlesOfProjects : public testing::Test {
protected:
    QTemporaryDir home;
    AppPaths paths{home.path()};
    MemoryDefaultsStore shared;
    FakeDesktop desktop;
    FakeDialogs dialogs;
    FakeRunningApplications running;
    LaunchRole role = hostRole();
    SpaceApps apps{role, paths, shared, desktop, dialogs, running};

    LaunchRole hostRole() const
    {
        LaunchRole host;
        host.bundlePath = home.filePath("Bralto.app");
        host.hostBundlePath = host.bundlePath;
        host.hostExecutable = host.bundlePath + "/Contents/MacOS/Bralto";
        host.bundleIdentifier = "com.tolvane.bralto";
        host.shortVersion = "1.2";
        host.buildVersion = "34";
        write(host.hostExecutable, "#!/bin/sh\nexit 7\n");
        QFile::setPermissions(host.hostExecutable,
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return host;
    }

    static void write(const QString& path, const QByteArray& content)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    static QByteArray content(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("absent");
    }

    static void setDate(const QString& path, const QDateTime& date)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(date, QFileDevice::FileModificationTime));
    }

    void name(const QString& folder, const QString& displayName)
    {
        SpaceTheme theme;
        theme.name = displayName;
        SpaceStore::save(shared, theme, folder);
    }

    QString app(const QString& fileName) const { return paths.applications() + '/' + fileName; }

    QString installed(const QString& folder, WhileRunning whileRunning = WhileRunning::No)
    {
        const auto bundle = apps.install(folder, whileRunning);
        EXPECT_TRUE(bundle) << bundle.error().toStdString();
        return bundle ? *bundle : QString();
    }
};

TEST_F(BundlesOfProjects, ABundleIsNamedAfterTheDisplayName)
{
    EXPECT_EQ(apps.appPath("/p/shop"), app("shop.app"));

    name("/p/shop", "My Shop");

    EXPECT_EQ(apps.appPath("/p/shop/"), app("My Shop.app"));
}

TEST_F(BundlesOfProjects, SeparatorsInANameBecomeHyphens)
{
    name("/p/a", "One/Two:Three");

    EXPECT_EQ(apps.appPath("/p/a"), app("One-Two-Three.app"));
}

TEST_F(BundlesOfProjects, BlanksAndDotsAreTrimmedAndNothingLeftIsUntitled)
{
    name("/p/a", ".. hidden . ");
    name("/p/b", "...");
    name("/p/c", " . \n . ");

    EXPECT_EQ(apps.appPath("/p/a"), app("hidden.app"));
    EXPECT_EQ(apps.appPath("/p/b"), app("Untitled Space.app"));
    EXPECT_EQ(apps.appPath("/p/c"), app("Untitled Space.app"));
    EXPECT_EQ(apps.appPath("/"), app("Untitled Space.app"));
}

TEST_F(BundlesOfProjects, ANameIsCutToSixtyCharacters)
{
    name("/p/a", QString(70, 'x'));
    name("/p/b", QString("日").repeated(70));
    name("/p/c", QString("👩‍👩‍👧‍👦").repeated(70));

    EXPECT_EQ(apps.appPath("/p/a"), app(QString(60, 'x') + ".app"));
    EXPECT_EQ(apps.appPath("/p/b"), app(QString("日").repeated(60) + ".app"));
    // Sixty families are more than a file's name can hold.
    EXPECT_EQ(apps.appPath("/p/c"), app(QString("👩‍👩‍👧‍👦").repeated(9) + ".app"));
    installed("/p/c");
}

TEST_F(BundlesOfProjects, TwoProjectsWithOneNameGetTwoBundles)
{
    EXPECT_EQ(installed("/p/shop"), app("shop.app"));
    EXPECT_EQ(installed("/q/shop"), app("shop 2.app"));
    EXPECT_EQ(installed("/r/shop"), app("shop 3.app"));

    EXPECT_EQ(installed("/p/shop"), app("shop.app"));
    EXPECT_EQ(installed("/q/shop"), app("shop 2.app"));
}

TEST_F(BundlesOfProjects, ABundleHoldsTheExecutableAndItsDescription)
{
    name("/p/shop", "My <Shop>");

    const QString bundle = installed("/p/./shop/");

    EXPECT_EQ(bundle, app("My <Shop>.app"));
    EXPECT_EQ(content(bundle + "/Contents/MacOS/Bralto"), content(role.hostExecutable));
    EXPECT_TRUE(QFileInfo(bundle + "/Contents/MacOS/Bralto").isExecutable());
    EXPECT_TRUE(QFileInfo(bundle + "/Contents/Resources").isDir());
    EXPECT_FALSE(QFile::exists(bundle + "/Contents/MacOS/.Bralto.new"));
    EXPECT_EQ(shared.dictionary("spaceApps"), (QVariantMap{{"/p/shop", bundle}}));
    const QByteArray xml = content(bundle + "/Contents/Info.plist");
    const auto description = PropertyList::decode(xml);
    ASSERT_TRUE(description);
    EXPECT_EQ(
        *description,
        (QVariantMap{
            {"CFBundleName", QString("My <Shop>")},
            {"CFBundleDisplayName", QString("My <Shop>")},
            {"CFBundleIdentifier", SpaceIdentity::bundleIdentifier("/p/shop")},
            {"CFBundleExecutable", QString("Bralto")},
            {"CFBundleIconFile", QString("AppIcon")},
            {"CFBundlePackageType", QString("APPL")},
            {"CFBundleShortVersionString", QString("1.2")},
            {"CFBundleVersion", QString("34")},
            {"LSMinimumSystemVersion", QString("26.0")},
            {"LSApplicationCategoryType", QString("public.app-category.developer-tools")},
            {"NSHighResolutionCapable", true},
            {"NSPrincipalClass", QString("NSApplication")},
            {"NSMicrophoneUsageDescription",
             QString("Bralto listens when you talk to Claude, so you can dictate and hold a spoken "
                     "conversation.")},
            {"NSSpeechRecognitionUsageDescription",
             QString("Bralto turns what you say into text for Claude. Recognition happens on this "
                     "Mac where possible.")},
            {"BraltoFolder", QString("/p/shop")},
            {"BraltoHost", role.hostBundlePath},
        }));
    EXPECT_LT(xml.indexOf("CFBundleName"), xml.indexOf("CFBundleDisplayName"));
    EXPECT_LT(xml.indexOf("CFBundleVersion"), xml.indexOf("LSMinimumSystemVersion"));
    EXPECT_LT(xml.indexOf("BraltoFolder"), xml.indexOf("BraltoHost"));
}

TEST_F(BundlesOfProjects, AnUnchangedProjectRewritesNothing)
{
    const QString bundle = installed("/p/shop");
    const QDateTime before = QDateTime::fromSecsSinceEpoch(1'000'000'000);
    const QString plist = bundle + "/Contents/Info.plist";
    setDate(plist, before);
    const auto executableDate = QFileInfo(bundle + "/Contents/MacOS/Bralto").lastModified();
    const int writes = shared.writes();

    EXPECT_EQ(installed("/p/shop"), bundle);

    EXPECT_EQ(QFileInfo(plist).lastModified(), before);
    EXPECT_EQ(QFileInfo(bundle + "/Contents/MacOS/Bralto").lastModified(), executableDate);
    EXPECT_EQ(shared.writes(), writes);
}

TEST_F(BundlesOfProjects, AnotherNameMovesTheBundleWithAllThatItHolds)
{
    const QString before = installed("/p/shop");
    write(before + "/Contents/Resources/kept", "x");
    write(app("New Name.app") + "/in the way", "y");
    name("/p/shop", "New Name");

    const QString after = installed("/p/shop");

    EXPECT_EQ(after, app("New Name.app"));
    EXPECT_FALSE(QFile::exists(before));
    EXPECT_EQ(content(after + "/Contents/Resources/kept"), "x");
    EXPECT_FALSE(QFile::exists(after + "/in the way"));
    EXPECT_EQ(shared.dictionary("spaceApps"), (QVariantMap{{"/p/shop", after}}));
    EXPECT_TRUE(content(after + "/Contents/Info.plist").contains("New Name"));
}

TEST_F(BundlesOfProjects, ABundleThatRunsStaysInPlaceUntilItEndsOrSaysSo)
{
    const QString before = installed("/p/shop");
    running.identifiers.insert(SpaceIdentity::bundleIdentifier("/p/shop"));
    name("/p/shop", "New Name");

    EXPECT_EQ(installed("/p/shop"), before);
    EXPECT_TRUE(content(before + "/Contents/Info.plist").contains("New Name"));

    EXPECT_EQ(installed("/p/shop", WhileRunning::Yes), app("New Name.app"));
    EXPECT_FALSE(QFile::exists(before));

    name("/p/shop", "Third");
    running.identifiers.clear();
    EXPECT_EQ(installed("/p/shop"), app("Third.app"));
}

TEST_F(BundlesOfProjects, ABundleThatIsGoneIsMadeAnewEvenWhileItRuns)
{
    const QString before = installed("/p/shop");
    QDir(before).removeRecursively();
    running.identifiers.insert(SpaceIdentity::bundleIdentifier("/p/shop"));
    name("/p/shop", "New Name");

    EXPECT_EQ(installed("/p/shop"), app("New Name.app"));
    EXPECT_FALSE(QFile::exists(before));
}

TEST_F(BundlesOfProjects, AnEntryThatIsNoTextIsNoBundle)
{
    shared.set("spaceApps", QVariantMap{{"/p/shop", 1LL}, {"/q/x", true}});

    EXPECT_EQ(installed("/p/shop"), app("shop.app"));
}

TEST_F(BundlesOfProjects, ANewerHostIsCopiedAtTheNextInstall)
{
    const QString executable = installed("/p/shop") + "/Contents/MacOS/Bralto";
    write(role.hostExecutable, "#!/bin/sh\nexit 8\n");
    setDate(role.hostExecutable, QDateTime::currentDateTime().addSecs(60));

    installed("/p/shop");

    EXPECT_EQ(content(executable), "#!/bin/sh\nexit 8\n");
}

TEST_F(BundlesOfProjects, WithoutAHostExecutableTheBundleIsMadeAllTheSame)
{
    QFile::remove(role.hostExecutable);

    const QString bundle = installed("/p/shop");

    EXPECT_FALSE(QFile::exists(bundle + "/Contents/MacOS/Bralto"));
    EXPECT_TRUE(QFile::exists(bundle + "/Contents/Info.plist"));
}

TEST_F(BundlesOfProjects, APlaceThatCantBeMadeFailsInTheSystemsWords)
{
    write(home.filePath("Applications"), "a file");

    const auto bundle = apps.install("/p/shop", WhileRunning::No);

    ASSERT_FALSE(bundle);
    EXPECT_EQ(bundle.error(), "Not a directory");
    EXPECT_EQ(shared.keys(), QStringList());
}

TEST_F(BundlesOfProjects, ADescriptionThatCantBeWrittenFails)
{
    QDir().mkpath(app("shop.app") + "/Contents/Info.plist/in the way");

    const auto bundle = apps.install("/p/shop", WhileRunning::No);

    ASSERT_FALSE(bundle);
    EXPECT_FALSE(bundle.error().isEmpty());
}

TEST_F(BundlesOfProjects, ACopyIsMadeOnlyOfAnotherOrANewerFile)
{
    const QString source = home.filePath("source");
    const QString copy = home.filePath("copies/Bralto");
    QDir().mkpath(home.filePath("copies"));
    write(source, "one");
    const auto copied = [&] {
        const auto result = SpaceApps::copyIfNewer(source, copy);
        EXPECT_TRUE(result) << result.error().toStdString();
        return result && *result;
    };

    EXPECT_TRUE(copied());
    EXPECT_FALSE(copied());

    write(source, "longer");
    setDate(source, QDateTime::fromSecsSinceEpoch(1'000'000'000));
    EXPECT_TRUE(copied());
    EXPECT_EQ(content(copy), "longer");

    write(source, "LONGER");
    setDate(source, QDateTime::fromSecsSinceEpoch(1'000'000'000));
    EXPECT_FALSE(copied());

    setDate(source, QDateTime::currentDateTime().addDays(365));
    EXPECT_TRUE(copied());
    EXPECT_FALSE(copied());
    EXPECT_EQ(content(copy), "LONGER");
}

TEST_F(BundlesOfProjects, ALeftoverOfAnEarlierCopyIsNotInTheWay)
{
    write(home.filePath("source"), "one");
    write(home.filePath("copies/.Bralto.new"), "half a cop");

    EXPECT_TRUE(SpaceApps::copyIfNewer(home.filePath("source"), home.filePath("copies/Bralto")));

    EXPECT_EQ(content(home.filePath("copies/Bralto")), "one");
    EXPECT_EQ(QDir(home.filePath("copies")).entryList(QDir::Files | QDir::Hidden),
              QStringList{"Bralto"});
}

TEST_F(BundlesOfProjects, ARunningExecutableIsReplacedAndRunsOn)
{
    const QString source = home.filePath("source");
    const QString copy = home.filePath("copies/Bralto");
    QDir().mkpath(home.filePath("copies"));
    ASSERT_TRUE(QFile::copy("/bin/cat", source));
    ASSERT_TRUE(SpaceApps::copyIfNewer(source, copy));
    QProcess process;
    process.start(copy, {});
    ASSERT_TRUE(process.waitForStarted());

    ASSERT_TRUE(QFile::remove(source));
    ASSERT_TRUE(QFile::copy("/bin/echo", source));
    const auto replaced = SpaceApps::copyIfNewer(source, copy);

    ASSERT_TRUE(replaced) << replaced.error().toStdString();
    EXPECT_TRUE(*replaced);
    process.write("still here");
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.readAllStandardOutput(), "still here");
    EXPECT_EQ(content(copy), content("/bin/echo"));
}

TEST_F(BundlesOfProjects, ACopyOfNothingFailsInTheSystemsWords)
{
    const auto copied = SpaceApps::copyIfNewer(home.filePath("absent"), home.filePath("x"));

    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.error(), "No such file or directory");
}

TEST_F(BundlesOfProjects, LaunchingStartsTheBundlesExecutableWithTheFiles)
{
    EXPECT_TRUE(apps.launch("/p/shop", {"/p/shop/a.txt", "bralto://open?path=/p/shop"}));

    const QString executable = app("shop.app/Contents/MacOS/Bralto");
    EXPECT_EQ(desktop.started, (QList<FakeDesktop::Start>{
                                   {executable, {"/p/shop/a.txt", "bralto://open?path=/p/shop"}}}));
    EXPECT_TRUE(QFile::exists(executable));
    EXPECT_EQ(dialogs.alerts, QList<Alert>());
}

TEST_F(BundlesOfProjects, AnAppThatCantBeMadeIsTold)
{
    write(home.filePath("Applications"), "a file");
    name("/p/shop", "My Shop");

    EXPECT_FALSE(apps.launch("/p/shop", {}));

    EXPECT_EQ(dialogs.alerts,
              (QList<Alert>{{"Couldn’t create an app for “My Shop”", "Not a directory"}}));
    EXPECT_EQ(desktop.started, QList<FakeDesktop::Start>());
}

TEST_F(BundlesOfProjects, AnAppThatCantBeOpenedIsTold)
{
    desktop.startFailure = "Permission denied";

    EXPECT_FALSE(apps.launch("/p/shop", {}));

    EXPECT_EQ(dialogs.alerts, (QList<Alert>{{"Couldn’t open “shop”", "Permission denied"}}));
}

TEST_F(BundlesOfProjects, TheHomeApplicationIsStartedFromItsBundle)
{
    apps.openHome();

    EXPECT_EQ(desktop.started, (QList<FakeDesktop::Start>{{role.hostExecutable, {}}}));
}

} // namespace
} // namespace Bralto
