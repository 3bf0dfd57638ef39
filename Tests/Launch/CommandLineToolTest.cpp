#include "Base/PropertyList.h"
#include "Base/SpaceIdentity.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

/// The program as a command in a shell, with a home of its own and no session bus.
class CommandInAProcess : public testing::Test {
protected:
    QTemporaryDir home;
    QProcess process;

    int run(const QStringList& arguments, const QString& program = BRALTO_BIN "/CommandLineTool")
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("HOME", home.path());
        environment.insert("LC_ALL", "C.UTF-8");
        environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(home.path());
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished());
        return process.exitCode();
    }

    QByteArray output() { return process.readAllStandardOutput(); }
    QByteArray errors() { return process.readAllStandardError(); }
};

TEST_F(CommandInAProcess, InstallingMakesABundleThatIsThatProjectsApplication)
{
    ASSERT_TRUE(QDir(home.path()).mkpath("projects/web shop"));

    EXPECT_EQ(run({"--install-space", "projects/web shop"}), 0);

    const QString bundle = home.filePath("Applications/Bralto/web shop.app");
    EXPECT_EQ(output(), QFile::encodeName(bundle) + '\n');
    EXPECT_EQ(errors(), "");
    QFile file(bundle + "/Contents/Info.plist");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto description = PropertyList::decode(file.readAll());
    ASSERT_TRUE(description);
    const QString folder = home.filePath("projects/web shop");
    EXPECT_EQ(description->value("BraltoFolder"), folder);
    EXPECT_EQ(description->value("CFBundleIdentifier"), SpaceIdentity::bundleIdentifier(folder));

    // The copy runs, and what was written down is found by the next process.
    EXPECT_EQ(run({"--install-space", folder}, bundle + "/Contents/MacOS/Bralto"), 0);
    EXPECT_EQ(output(), QFile::encodeName(bundle) + '\n');
}

TEST_F(CommandInAProcess, AnInstallThatFailsSaysWhyOnStandardError)
{
    QFile blocker(home.filePath("Applications"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));

    EXPECT_EQ(run({"--install-space", "/p/x"}), 1);

    EXPECT_EQ(output(), "");
    EXPECT_EQ(errors(), "Couldn’t install the folder app: Not a directory\n");
}

TEST_F(CommandInAProcess, ALinkThatNobodyTakesEndsWithOne)
{
    EXPECT_EQ(run({"--deliver", "com.tolvane.bralto", "https://a"}), 1);

    EXPECT_EQ(output(), "");
    EXPECT_EQ(errors(), "Couldn’t deliver the link: com.tolvane.bralto isn’t running.\n");
}

TEST_F(CommandInAProcess, AnOptionThatIsNotThereYetEndsWithTwo)
{
    EXPECT_EQ(run({"--render-icon", "/bad/path"}), 2);
    EXPECT_EQ(errors(), "Bralto: --render-icon is not available in this version.\n");
}

TEST_F(CommandInAProcess, AnythingElseStartsTheApplication)
{
    EXPECT_EQ(run({}), 77);
    EXPECT_EQ(run({"--unknown"}), 77);
    EXPECT_EQ(run({"--version"}), 0);
    EXPECT_EQ(output(), "Bralto 0.1.0\n");
}

} // namespace
} // namespace Bralto
