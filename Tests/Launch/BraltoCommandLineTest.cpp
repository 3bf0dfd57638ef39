#include "Launch/BraltoCommandLine.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

class CommandLine : public testing::Test {
protected:
    int served = 0;
    QStringList installed;
    QString failure;
    QStringList delivered;
    bool isRunning = true;
    QString out;
    QString err;

    std::optional<int> handle(const QStringList& arguments)
    {
        QTextStream outStream(&out);
        QTextStream errStream(&err);
        const BraltoCommandLine::Actions actions{
            [this] { ++served; },
            [this](const QString& folder) -> Expected<QString, QString> {
                installed.append(folder);
                if (!failure.isEmpty())
                    return Unexpected{failure};
                return "/apps/" + folder.mid(1) + ".app";
            },
            "1.2",
            [this](const QString& bundleIdentifier, const QString& address) {
                delivered.append(bundleIdentifier + ' ' + address);
                return isRunning;
            },
        };
        return BraltoCommandLine::handle(arguments, actions, {outStream, errStream});
    }
};

TEST_F(CommandLine, WithoutArgumentsTheApplicationStarts)
{
    EXPECT_EQ(handle({}), std::nullopt);
    EXPECT_EQ(handle({"bralto"}), std::nullopt);
    EXPECT_EQ(out + err, "");
}

TEST_F(CommandLine, AnUnknownArgumentStartsTheApplication)
{
    EXPECT_EQ(handle({"bralto", "--unknown"}), std::nullopt);
    EXPECT_EQ(handle({"bralto", "/p/a.txt", "bralto://open?path=/p"}), std::nullopt);
    EXPECT_EQ(handle({"bralto", "-BraltoDemo", "YES"}), std::nullopt);
    EXPECT_EQ(out + err, "");
}

TEST_F(CommandLine, TheServerWinsOverEverything)
{
    EXPECT_EQ(handle({"bralto", "--mcp", "--install-space", "/x"}), 0);
    EXPECT_EQ(handle({"bralto", "--install-space", "/x", "--help", "--mcp"}), 0);

    EXPECT_EQ(served, 2);
    EXPECT_EQ(installed, QStringList());
    EXPECT_EQ(out + err, "");
}

TEST_F(CommandLine, TheProgramsOwnPathIsNoOption)
{
    EXPECT_EQ(handle({"--mcp"}), std::nullopt);
    EXPECT_EQ(handle({"--install-space", "/x"}), std::nullopt);
    EXPECT_EQ(handle({"--help"}), std::nullopt);
}

TEST_F(CommandLine, InstallingPrintsTheBundle)
{
    EXPECT_EQ(handle({"bralto", "--install-space", "/x"}), 0);

    EXPECT_EQ(installed, QStringList{"/x"});
    EXPECT_EQ(out, "/apps/x.app\n");
    EXPECT_EQ(err, "");
}

TEST_F(CommandLine, AnInstallThatFailsEndsWithOne)
{
    failure = "Permission denied";

    EXPECT_EQ(handle({"bralto", "--install-space", "/x"}), 1);

    EXPECT_EQ(out, "");
    EXPECT_EQ(err, "Couldn’t install the folder app: Permission denied\n");
}

TEST_F(CommandLine, InstallingWithoutAFolderStartsTheApplication)
{
    EXPECT_EQ(handle({"bralto", "--install-space"}), std::nullopt);
    EXPECT_EQ(installed, QStringList());
}

TEST_F(CommandLine, OnlyTheFirstOccurrenceOfAnOptionCounts)
{
    EXPECT_EQ(handle({"bralto", "--install-space", "/x", "--install-space", "/y"}), 0);
    EXPECT_EQ(installed, QStringList{"/x"});

    EXPECT_EQ(handle({"bralto", "--install-space", "--install-space"}), 0);
    EXPECT_EQ(installed.last(), "--install-space");
}

TEST_F(CommandLine, WhateverStandsBehindTheOptionIsTheFolder)
{
    EXPECT_EQ(handle({"bralto", "--install-space", "--help"}), 0);

    EXPECT_EQ(installed, QStringList{"--help"});
}

TEST_F(CommandLine, InstallingWinsOverRenderingWhereverItStands)
{
    EXPECT_EQ(handle({"bralto", "--render-icon", "/i", "--install-space", "/x"}), 0);

    EXPECT_EQ(installed, QStringList{"/x"});
}

TEST_F(CommandLine, RenderingAnIconIsNotThereYet)
{
    EXPECT_EQ(handle({"bralto", "--render-icon", "/tmp/x.icns"}), 2);
    EXPECT_EQ(err, "Bralto: --render-icon is not available in this version.\n");

    EXPECT_EQ(handle({"bralto", "--render-icon"}), std::nullopt);
}

TEST_F(CommandLine, AnInstallWithoutAFolderLetsTheIconHaveItsTurn)
{
    EXPECT_EQ(handle({"bralto", "--render-icon", "/i", "--install-space"}), 2);
    EXPECT_EQ(installed, QStringList());
}

TEST_F(CommandLine, DeliveringHandsALinkToARunningApplication)
{
    EXPECT_EQ(handle({"bralto", "--deliver", "com.example", "https://a"}), 0);

    EXPECT_EQ(delivered, QStringList{"com.example https://a"});
    EXPECT_EQ(out + err, "");
}

TEST_F(CommandLine, ADeliveryThatNobodyTakesEndsWithOne)
{
    isRunning = false;

    EXPECT_EQ(handle({"bralto", "--deliver", "com.example", "https://a"}), 1);

    EXPECT_EQ(out, "");
    EXPECT_EQ(err, "Couldn’t deliver the link: com.example isn’t running.\n");
}

TEST_F(CommandLine, DeliveringWithoutAnAddressStartsTheApplication)
{
    EXPECT_EQ(handle({"bralto", "--deliver", "com.example"}), std::nullopt);
    EXPECT_EQ(handle({"bralto", "--deliver"}), std::nullopt);
    EXPECT_EQ(delivered, QStringList());
}

TEST_F(CommandLine, HelpNamesEveryOptionAndWhatIsMissing)
{
    EXPECT_EQ(handle({"bralto", "--help"}), 0);

    for (const char* option :
         {"--install-space", "--deliver", "--mcp", "--render-icon", "--help", "--version"})
        EXPECT_TRUE(out.contains(option)) << option;
    EXPECT_EQ(out.simplified().count("not available in this version"), 1);
    EXPECT_EQ(err, "");
}

TEST_F(CommandLine, TheVersionIsOneLine)
{
    EXPECT_EQ(handle({"bralto", "--version"}), 0);

    EXPECT_EQ(out, "Bralto 1.2\n");
}

} // namespace
} // namespace Bralto
