#include "Platform/ProcessLimits.h"

#include <QTemporaryFile>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

TEST(ProcessLimits, TheTargetIsTheSmallerOfTheTwoLimits)
{
    EXPECT_EQ(ProcessLimits::raised({1024, 4096}, 100'000), 4096U);
    EXPECT_EQ(ProcessLimits::raised({1024, 1'000'000}, 100'000), 100'000U);
    EXPECT_EQ(ProcessLimits::raised({1024, RLIM_INFINITY}, 100'000), 100'000U);
}

TEST(ProcessLimits, ALimitThatCantBeReadIsTenThousandTwoHundredAndForty)
{
    EXPECT_EQ(ProcessLimits::raised({1024, RLIM_INFINITY}, std::nullopt), 10240U);
}

TEST(ProcessLimits, ALimitThatIsEnoughIsLeftAlone)
{
    EXPECT_EQ(ProcessLimits::raised({4096, 4096}, 100'000), std::nullopt);
    EXPECT_EQ(ProcessLimits::raised({200'000, 1'000'000}, 100'000), std::nullopt);
    EXPECT_EQ(ProcessLimits::raised({RLIM_INFINITY, RLIM_INFINITY}, 100'000), std::nullopt);
}

TEST(ProcessLimits, TheSystemsOwnLimitIsANumberInAFile)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    const QByteArray path = file.fileName().toLocal8Bit();

    file.write("1048576\n");
    file.flush();
    EXPECT_EQ(ProcessLimits::perProcess(path.constData()), 1048576U);

    file.resize(0);
    file.seek(0);
    file.write("many\n");
    file.flush();
    EXPECT_EQ(ProcessLimits::perProcess(path.constData()), std::nullopt);
    EXPECT_EQ(ProcessLimits::perProcess("/nowhere"), std::nullopt);
    EXPECT_TRUE(ProcessLimits::perProcess());
}

TEST(ProcessLimits, RaisingLiftsTheLimitOfThisProcess)
{
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    rlimit low = before;
    low.rlim_cur = 256;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);

    ProcessLimits::raiseOpenFileLimit();

    rlimit after{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &after), 0);
    EXPECT_EQ(after.rlim_cur, ProcessLimits::raised(low, ProcessLimits::perProcess()));
    ::setrlimit(RLIMIT_NOFILE, &before);
}

} // namespace
} // namespace Bralto
