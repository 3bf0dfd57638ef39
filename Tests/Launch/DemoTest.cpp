#include "Launch/Demo.h"
#include "Tests/Support/MemoryDefaultsStore.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

class DemoMode : public testing::Test {
protected:
    MemoryDefaultsStore shared;
    LaunchRole role;

    bool isActive(const QString& environment, const QStringList& arguments = {"bralto"})
    {
        return Demo::isActive(environment, arguments, role, shared);
    }
};

TEST_F(DemoMode, IsOffUnlessSomethingAsksForIt)
{
    EXPECT_FALSE(isActive(""));
    EXPECT_FALSE(isActive("", {}));
    EXPECT_FALSE(isActive("0"));
}

TEST_F(DemoMode, OnlyFourTextsAreTruthyInAnyCase)
{
    for (const char* text : {"1", "yes", "true", "on", "YES", "True", "oN"})
        EXPECT_TRUE(Demo::isTruthy(QString(text))) << text;
    for (const char* text : {"", "0", "2", "y", "no", "false", "off", " 1", "true "})
        EXPECT_FALSE(Demo::isTruthy(QString(text))) << text;
}

TEST_F(DemoMode, AFlagAndANumberAreTruthyByTheirValue)
{
    EXPECT_TRUE(Demo::isTruthy(true));
    EXPECT_FALSE(Demo::isTruthy(false));
    EXPECT_TRUE(Demo::isTruthy(2LL));
    EXPECT_TRUE(Demo::isTruthy(0.5));
    EXPECT_FALSE(Demo::isTruthy(0LL));
    EXPECT_FALSE(Demo::isTruthy(QVariant()));
    EXPECT_FALSE(Demo::isTruthy(QByteArray("1")));
}

TEST_F(DemoMode, TheEnvironmentTurnsItOn)
{
    EXPECT_TRUE(isActive("1"));
    EXPECT_TRUE(isActive("Yes"));
}

TEST_F(DemoMode, ALaunchArgumentTurnsItOn)
{
    EXPECT_TRUE(isActive("", {"bralto", "-BraltoDemo", "YES"}));
    EXPECT_FALSE(isActive("", {"bralto", "-BraltoDemo", "NO"}));
    EXPECT_FALSE(isActive("", {"bralto", "-BraltoDemo"}));
    EXPECT_FALSE(isActive("", {"-BraltoDemo", "YES"}));
    EXPECT_FALSE(isActive("", {"bralto", "BraltoDemo", "YES"}));
}

TEST_F(DemoMode, ADemoFolderTurnsItOnForItsOwnProcess)
{
    shared.setStrings("demoFolders", {"/p/other", "/p/./demo/"});

    EXPECT_FALSE(isActive(""));
    role.folder = "/p/demo";
    EXPECT_TRUE(isActive(""));
    role.folder = "/p/demo2";
    EXPECT_FALSE(isActive(""));
}

TEST_F(DemoMode, AListThatHoldsSomethingElseIsNone)
{
    role.folder = "/p/demo";
    shared.set("demoFolders", QVariantList{QString("/p/demo"), 1LL});

    EXPECT_FALSE(isActive(""));
}

TEST_F(DemoMode, WhatOneSourceDeniesAnotherMayGrant)
{
    role.folder = "/p/demo";
    shared.setStrings("demoFolders", {"/p/demo"});

    EXPECT_TRUE(isActive("0", {"bralto", "-BraltoDemo", "NO"}));
    EXPECT_TRUE(isActive("no", {"bralto", "-BraltoDemo", "1"}));
}

} // namespace
} // namespace Bralto
