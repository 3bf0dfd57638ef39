#include "Platform/SessionApplications.h"
#include "Tests/Support/PrivateBus.h"

#include <QDir>
#include <QTest>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

constexpr char Home[] = "com.tolvane.bralto";
constexpr char Space[] = "com.tolvane.bralto.space.1a2b3c4d5e6f";

TEST(SessionApplications, AnElementThatBeginsWithADigitIsMadeLegal)
{
    EXPECT_EQ(SessionApplications::busName(Home), "com.tolvane.bralto");
    EXPECT_EQ(SessionApplications::busName(Space), "com.tolvane.bralto.space._1a2b3c4d5e6f");
    EXPECT_EQ(SessionApplications::busName("com.tolvane.bralto.space.a12b3c4d5e6f"),
              "com.tolvane.bralto.space.a12b3c4d5e6f");
}

TEST(SessionApplications, AnApplicationsObjectIsNamedAfterIt)
{
    EXPECT_EQ(SessionApplications::objectPath(Home), "/com/tolvane/bralto");
    EXPECT_EQ(SessionApplications::objectPath("com.example.my-app.1x"), "/com/example/my_app/_1x");
}

TEST(SessionApplications, LocksLieInTheFolderOfTheSessionOrElseInTheSupportFolder)
{
    const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
    const AppPaths paths("/home/ann");

    qputenv("XDG_RUNTIME_DIR", "/run/user/1000");
    EXPECT_EQ(SessionApplications::defaultRuntimeFolder(paths), "/run/user/1000/bralto");
    qunsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(SessionApplications::defaultRuntimeFolder(paths), paths.support() + "/Running");

    if (!before.isNull())
        qputenv("XDG_RUNTIME_DIR", before);
}

class ApplicationsOnABus : public testing::Test {
protected:
    PrivateBus bus;
    QTemporaryDir runtime;

    std::unique_ptr<SessionApplications> process() const
    {
        return std::make_unique<SessionApplications>(bus.connect(), runtime.path());
    }
};

TEST_F(ApplicationsOnABus, AnApplicationRunsOnceItsIdentifierIsClaimed)
{
    const auto project = process();
    const auto home = process();
    EXPECT_FALSE(home->isRunning(Space));

    EXPECT_TRUE(project->claim(Space));

    EXPECT_TRUE(home->isRunning(Space));
    EXPECT_TRUE(project->isRunning(Space));
    EXPECT_FALSE(home->isRunning(Home));
}

TEST_F(ApplicationsOnABus, OnlyOneProcessCanClaimAnIdentifier)
{
    const auto first = process();
    const auto second = process();

    EXPECT_TRUE(first->claim(Space));
    EXPECT_TRUE(first->claim(Space));
    EXPECT_FALSE(second->claim(Space));
    EXPECT_TRUE(second->claim(Home));
}

TEST_F(ApplicationsOnABus, NothingIsOpenedByAnApplicationThatDoesntRunOrHasNoName)
{
    const auto home = process();

    for (const QString& identifier :
         QStringList{Space, "", "word", "a b.c", "..", "com.x\n.y", "com.x\n", ":1.1",
                     QString("a.").repeated(200) + 'a'})
        EXPECT_FALSE(home->open(identifier, {"https://a"})) << qPrintable(identifier);
}

TEST_F(ApplicationsOnABus, AnApplicationThatKnowsNoAddressesOpensNone)
{
    const auto project = process();
    ASSERT_TRUE(project->claim(Space));

    EXPECT_FALSE(process()->open(Space, {"https://a"}));
}

TEST_F(ApplicationsOnABus, AProcessThatEndsRunsNoMore)
{
    const QString name = "ending process";
    QDBusConnection connection = QDBusConnection::connectToBus(bus.address(), name);
    EXPECT_TRUE(SessionApplications(connection, runtime.path()).claim(Space));
    const auto home = process();
    EXPECT_TRUE(home->isRunning(Space));

    connection = QDBusConnection(QString());
    QDBusConnection::disconnectFromBus(name);

    EXPECT_TRUE(QTest::qWaitFor([&] { return !home->isRunning(Space); }));
    EXPECT_TRUE(home->claim(Space));
}

TEST_F(ApplicationsOnABus, NobodyRunsOnABusThatWentAway)
{
    const auto home = process();
    EXPECT_TRUE(home->claim(Home));

    bus.stop();

    EXPECT_FALSE(home->isRunning(Home));
}

class ApplicationsWithoutABus : public testing::Test {
protected:
    QTemporaryDir place;
    QString runtime = place.filePath("run/bralto");

    std::unique_ptr<SessionApplications> process() const
    {
        return std::make_unique<SessionApplications>(QDBusConnection(QString()), runtime);
    }
};

TEST_F(ApplicationsWithoutABus, ALockedFileTellsWhoRuns)
{
    auto project = process();
    const auto home = process();
    EXPECT_FALSE(home->isRunning(Space));

    EXPECT_TRUE(project->claim(Space));
    EXPECT_TRUE(home->isRunning(Space));
    EXPECT_FALSE(home->claim(Space));

    project.reset();
    EXPECT_FALSE(home->isRunning(Space));
    EXPECT_TRUE(home->claim(Space));
}

TEST_F(ApplicationsWithoutABus, AskingMakesNoFile)
{
    EXPECT_FALSE(process()->isRunning(Space));

    EXPECT_FALSE(QDir(runtime).exists());
}

TEST_F(ApplicationsWithoutABus, NothingCanBeHandedOver)
{
    const auto project = process();
    ASSERT_TRUE(project->claim(Space));

    EXPECT_FALSE(process()->open(Space, {"https://a"}));
}

TEST_F(ApplicationsWithoutABus, WithNoPlaceForTheLockNothingIsClaimed)
{
    QFile blocker(place.filePath("run"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));

    EXPECT_FALSE(process()->claim(Space));
}

} // namespace
} // namespace Bralto
