#include "Kovalt/ProfileInterval.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

using namespace Kovalt;

namespace {

/// What another process, started with this value, says of itself; the value may be null.
void expectEnabled(const char* value, bool enabled)
{
    EXPECT_EXIT(
        {
            if (value)
                setenv("KOVALT_PROFILE", value, 1);
            else
                unsetenv("KOVALT_PROFILE");
            const bool before = ProfileInterval::isEnabled();
            setenv("KOVALT_PROFILE", enabled ? "0" : "1", 1);
            std::_Exit(before == enabled && ProfileInterval::isEnabled() == enabled ? 0 : 1);
        },
        testing::ExitedWithCode(0), "")
        << (value ? value : "unset");
}

std::string notesOfThisProgram()
{
    std::string notes;
    std::FILE* const answer = popen("readelf --notes --wide /proc/$PPID/exe", "r");
    std::array<char, 4096> part{};
    while (answer) {
        const std::size_t length = std::fread(part.data(), 1, part.size(), answer);
        if (length == 0)
            break;
        notes.append(part.data(), length);
    }
    if (answer)
        pclose(answer);
    return notes;
}

} // namespace

TEST(ProfileInterval, IsSeenOnlyIfTheProcessWasStartedWithExactlyOne)
{
    testing::FLAGS_gtest_death_test_style = "fast";

    expectEnabled("1", true);
    expectEnabled("0", false);
    expectEnabled("", false);
    expectEnabled("11", false);
    expectEnabled("yes", false);
    expectEnabled(nullptr, false);
}

TEST(ProfileInterval, ItsProbesStandInTheProgram)
{
    const ProfileInterval interval("Test", "Test.Interval");

    const std::string notes = notesOfThisProgram();

    EXPECT_NE(notes.find("Provider: kovalt"), std::string::npos);
    EXPECT_NE(notes.find("Name: interval_begin"), std::string::npos);
    EXPECT_NE(notes.find("Name: interval_end"), std::string::npos);
}
