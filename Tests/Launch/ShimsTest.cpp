#include "Browser/BrowserBridge.h"
#include "Platform/ApplicationService.h"
#include "Platform/SessionApplications.h"
#include "Tests/Support/PrivateBus.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

constexpr char Space[] = "com.tolvane.bralto.space.1a2b3c4d5e6f";

/// The installed shims, and openers of the desktop behind them that write down their arguments.
class InstalledShims : public testing::Test {
protected:
    QTemporaryDir place;
    AppPaths paths{place.filePath("it's home")};
    QString real = place.filePath("real");
    QProcessEnvironment environment;
    QByteArray errors;

    void SetUp() override
    {
        LaunchRole role;
        role.hostExecutable = place.filePath("Bralto's $tool");
        ASSERT_TRUE(QFile::link(BRALTO_BIN "/CommandLineTool", role.hostExecutable));
        BrowserBridge(paths, role).install();
        addOpener(real, "xdg-open");
        addOpener(real, "open");
        environment.insert("HOME", paths.home());
        environment.insert("LC_ALL", "C.UTF-8");
        environment.insert("PATH", paths.bin() + ':' + real);
        environment.insert("BROWSER", paths.bin() + "/bralto-browser");
        environment.insert("BRALTO_BUNDLE_ID", Space);
        environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
        environment.insert("LOG", place.filePath("log"));
        environment.insert("LSAN_OPTIONS", "detect_leaks=0");
    }

    static void addProgram(const QString& path, const QByteArray& text)
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        ASSERT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    static void addOpener(const QString& folder, const QString& name)
    {
        addProgram(folder + '/' + name, "#!/bin/sh\n"
                                        "{ printf '%s' \"${0##*/}\"\n"
                                        "  for argument do printf ' <%s>' \"$argument\"; done\n"
                                        "  printf '\\n'; } >> \"$LOG\"\n"
                                        "case $1 in *fails*) exit 3 ;; esac\n");
    }

    /// The exit status of a shim; this process answers the bus meanwhile.
    int run(const QString& shim, const QStringList& arguments)
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(shim.contains('/') ? shim : paths.bin() + '/' + shim, arguments);
        EXPECT_TRUE(QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; },
                                    60'000));
        errors = process.readAllStandardError();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    /// What the desktop's openers were called with since the last look, a call a line.
    QStringList opened()
    {
        QFile file(place.filePath("log"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QString text = QString::fromUtf8(file.readAll());
        file.remove();
        return text.split('\n', Qt::SkipEmptyParts);
    }
};

/// With a window of the project that takes links.
class ShimsOfARunningProject : public InstalledShims {
protected:
    PrivateBus bus;
    QStringList delivered;
    std::optional<ApplicationService> service;
    std::optional<SessionApplications> applications;

    void SetUp() override
    {
        InstalledShims::SetUp();
        environment.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
        const QDBusConnection connection = bus.connect();
        service.emplace(connection, Space);
        QObject::connect(&*service, &ApplicationService::openRequested, &*service,
                         [this](const QStringList& addresses) { delivered += addresses; });
        applications.emplace(connection, place.filePath("run"));
        ASSERT_TRUE(applications->claim(Space));
    }
    QStringList takeDelivered() { return std::exchange(delivered, {}); }
};

TEST_F(ShimsOfARunningProject, AWebLinkGoesToTheProjectsWindow)
{
    for (const QString& shim : QStringList{"open", "xdg-open", "bralto-browser"}) {
        SCOPED_TRACE(qPrintable(shim));
        EXPECT_EQ(run(shim, {"https://example.org/a b?c=$d&e='f'"}), 0);
        EXPECT_EQ(takeDelivered(), QStringList{"https://example.org/a b?c=$d&e='f'"});
        EXPECT_EQ(opened(), QStringList());
    }
}

TEST_F(ShimsOfARunningProject, LettersOfTheSchemeMayBeCapitals)
{
    EXPECT_EQ(run("open", {"HTTP://X"}), 0);
    EXPECT_EQ(run("xdg-open", {"hTTpS://y"}), 0);

    EXPECT_EQ(takeDelivered(), (QStringList{"HTTP://X", "hTTpS://y"}));
}

TEST_F(ShimsOfARunningProject, SeveralLinksAllGoToTheWindow)
{
    EXPECT_EQ(run("open", {"https://a", "https://b"}), 0);

    EXPECT_EQ(takeDelivered(), (QStringList{"https://a", "https://b"}));
    EXPECT_EQ(opened(), QStringList());
}

TEST_F(ShimsOfARunningProject, FlagsThatDontChangeWhereALinkGoesAreDropped)
{
    EXPECT_EQ(run("open", {"-u", "-g", "-j", "-F", "-n", "-W", "--background", "--hide", "--fresh",
                           "--new", "--wait-apps", "https://a", "-g"}),
              0);

    EXPECT_EQ(takeDelivered(), QStringList{"https://a"});
    EXPECT_EQ(opened(), QStringList());
}

TEST_F(ShimsOfARunningProject, AnythingElseGoesToTheRealProgramWithAllItsArguments)
{
    EXPECT_EQ(run("open", {"-a", "Safari", "https://x"}), 0);
    EXPECT_EQ(run("open", {"."}), 0);
    EXPECT_EQ(run("xdg-open", {"file with blanks.pdf"}), 0);
    EXPECT_EQ(run("open", {"https://x", "file.pdf"}), 0);
    EXPECT_EQ(run("open", {"-g", "*"}), 0);
    EXPECT_EQ(run("xdg-open", {"ftp://x"}), 0);
    EXPECT_EQ(run("xdg-open", {"--help"}), 0);
    EXPECT_EQ(run("open", {"httpx://x", ""}), 0);

    EXPECT_EQ(opened(),
              (QStringList{"open <-a> <Safari> <https://x>", "open <.>",
                           "xdg-open <file with blanks.pdf>", "open <https://x> <file.pdf>",
                           "open <-g> <*>", "xdg-open <ftp://x>", "xdg-open <--help>",
                           "open <httpx://x> <>"}));
    EXPECT_EQ(takeDelivered(), QStringList());
}

TEST_F(ShimsOfARunningProject, WithoutALinkNothingIsDropped)
{
    EXPECT_EQ(run("open", {}), 0);
    EXPECT_EQ(run("open", {"-g", "-n"}), 0);

    EXPECT_EQ(opened(), (QStringList{"open", "open <-g> <-n>"}));
}

TEST_F(ShimsOfARunningProject, TheBrowserSplitsLinksFromTheRestAndTellsAFailure)
{
    EXPECT_EQ(run("bralto-browser", {"https://a", "fails.txt", "https://b", "good.txt"}), 3);

    EXPECT_EQ(takeDelivered(), (QStringList{"https://a", "https://b"}));
    EXPECT_EQ(opened(), (QStringList{"xdg-open <fails.txt>", "xdg-open <good.txt>"}));
}

TEST_F(ShimsOfARunningProject, AShellFindsTheShimByItsName)
{
    environment.insert("PATH", paths.bin() + ':' + real + ":/usr/bin:/bin");

    EXPECT_EQ(run("/bin/sh", {"-c", "open https://a && xdg-open https://b && $BROWSER https://c"}),
              127);
    EXPECT_EQ(run("/bin/sh", {"-c", "\"$BROWSER\" https://c"}), 0);

    EXPECT_EQ(takeDelivered(), (QStringList{"https://a", "https://b", "https://c"}));
}

TEST_F(ShimsOfARunningProject, AnotherProjectsWindowGetsNothing)
{
    environment.insert("BRALTO_BUNDLE_ID", "com.tolvane.bralto.space.000000000000");

    EXPECT_EQ(run("open", {"https://a"}), 0);

    EXPECT_EQ(takeDelivered(), QStringList());
    EXPECT_EQ(opened(), QStringList{"xdg-open <https://a>"});
}

TEST_F(InstalledShims, ALinkThatCantBeDeliveredGoesToTheRealProgramInSilence)
{
    EXPECT_EQ(run("open", {"https://a", "https://b"}), 0);

    EXPECT_EQ(opened(), (QStringList{"xdg-open <https://a>", "xdg-open <https://b>"}));
    EXPECT_EQ(errors, "");
}

TEST_F(InstalledShims, AProgramThatWasUninstalledDeliversNothing)
{
    ASSERT_TRUE(QFile::remove(place.filePath("Bralto's $tool")));

    EXPECT_EQ(run("xdg-open", {"https://a"}), 0);

    EXPECT_EQ(opened(), QStringList{"xdg-open <https://a>"});
    EXPECT_EQ(errors, "");
}

TEST_F(InstalledShims, TheRealProgramsFailureIsTheShims)
{
    EXPECT_EQ(run("xdg-open", {"fails.txt"}), 3);
    EXPECT_EQ(run("open", {"https://fails"}), 3);
    EXPECT_EQ(run("bralto-browser", {"https://fails", "https://a"}), 3);
}

TEST_F(InstalledShims, OutsideAPaneTheyAreTheRealPrograms)
{
    for (const QString& identifier : QStringList{"", "absent"}) {
        SCOPED_TRACE(qPrintable(identifier));
        environment.insert("BRALTO_BUNDLE_ID", identifier);
        if (identifier == "absent")
            environment.remove("BRALTO_BUNDLE_ID");

        EXPECT_EQ(run("open", {"-g", "https://a"}), 0);
        EXPECT_EQ(run("xdg-open", {"https://a"}), 0);
        EXPECT_EQ(run("bralto-browser", {"https://a"}), 0);

        EXPECT_EQ(opened(), (QStringList{"open <-g> <https://a>", "xdg-open <https://a>",
                                         "xdg-open <https://a>"}));
    }
}

TEST_F(InstalledShims, AProgramThatTheUserNamesIsTheRealOne)
{
    addOpener(place.filePath("other"), "mine");
    environment.insert("BRALTO_OPEN", place.filePath("other/mine"));

    EXPECT_EQ(run("open", {"."}), 0);
    EXPECT_EQ(run("bralto-browser", {"https://a"}), 0);

    EXPECT_EQ(opened(), (QStringList{"mine <.>", "mine <https://a>"}));
}

TEST_F(InstalledShims, OneOpenerStandsInForTheOther)
{
    ASSERT_TRUE(QFile::remove(real + "/open"));
    EXPECT_EQ(run("open", {"."}), 0);
    EXPECT_EQ(opened(), QStringList{"xdg-open <.>"});

    ASSERT_TRUE(QFile::remove(real + "/xdg-open"));
    addOpener(real, "open");
    EXPECT_EQ(run("xdg-open", {"."}), 0);
    EXPECT_EQ(run("bralto-browser", {"https://a"}), 0);
    EXPECT_EQ(opened(), (QStringList{"open <.>", "open <https://a>"}));
}

TEST_F(InstalledShims, WithoutAnOpenerTheySaySoAsAShellDoes)
{
    environment.insert("PATH", paths.bin());
    for (const QString& shim : QStringList{"open", "xdg-open", "bralto-browser"}) {
        SCOPED_TRACE(qPrintable(shim));
        EXPECT_EQ(run(shim, {"file.pdf"}), 127);
        EXPECT_EQ(errors, shim.toUtf8() + ": no program that opens files and links was found\n");
    }
}

TEST_F(InstalledShims, NoShimEverFindsItself)
{
    const QString link = place.filePath("link");
    ASSERT_TRUE(QFile::link(paths.bin(), link));
    const QString bin = paths.bin();

    for (const QString& path :
         QStringList{bin + ':' + bin + ':' + real, link + ':' + bin + "/.:" + real,
                     real + ":" + bin + ':' + real + ':' + bin + '/', "/nowhere::" + bin}) {
        SCOPED_TRACE(qPrintable(path));
        environment.insert("PATH", path);
        const bool hasReal = !path.endsWith(bin) && !path.endsWith('/');
        EXPECT_EQ(run("open", {"."}), hasReal ? 0 : 127);
        EXPECT_EQ(opened(), hasReal ? QStringList{"open <.>"} : QStringList());
    }
}

TEST_F(InstalledShims, TwoFoldersOfShimsDontCallEachOtherForever)
{
    const AppPaths others(place.filePath("other home"));
    BrowserBridge(others, LaunchRole()).install();
    const QString mixed = paths.bin() + ':' + others.bin() + ':' + paths.bin() + ':' + others.bin();

    environment.insert("PATH", mixed + ':' + real);
    EXPECT_EQ(run("open", {"."}), 0);
    EXPECT_EQ(opened(), QStringList{"open <.>"});

    environment.insert("PATH", mixed);
    EXPECT_EQ(run("open", {"."}), 127);
}

TEST_F(InstalledShims, AnOpenerThatAsksForTheBrowserDoesntComeBack)
{
    // What xdg-open does where it knows no desktop.
    addProgram(real + "/xdg-open", "#!/bin/sh\n"
                                   "echo \"${BROWSER-none} $1\" >> \"$LOG\"\n"
                                   "[ -z \"$BROWSER\" ] || exec $BROWSER \"$1\"\n");

    EXPECT_EQ(run("xdg-open", {"https://a"}), 0);
    EXPECT_EQ(opened(), QStringList{"none https://a"});

    environment.insert("BROWSER", "/bin/true");
    EXPECT_EQ(run("xdg-open", {"https://a"}), 0);
    EXPECT_EQ(opened(), QStringList{"/bin/true https://a"});
}

TEST_F(InstalledShims, OnlyAFileThatCanBeRunIsAnOpener)
{
    const QString decoys = place.filePath("decoys");
    ASSERT_TRUE(QDir().mkpath(decoys + "/open"));
    QFile file(decoys + "/xdg-open");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    environment.insert("PATH", paths.bin() + ':' + decoys + ':' + real);

    EXPECT_EQ(run("open", {"."}), 0);
    EXPECT_EQ(run("xdg-open", {"."}), 0);

    EXPECT_EQ(opened(), (QStringList{"open <.>", "xdg-open <.>"}));
}

} // namespace
} // namespace Bralto
