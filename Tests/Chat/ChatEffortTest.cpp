#include "Chat/ChatEffort.h"

#include <QHash>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

using Files = QHash<QString, QByteArray>;

std::optional<QString> effort(const QString& command, const Files& files = {})
{
    return ChatEffort::effort(command, "/project", "/home/user", [&files](const QString& path) {
        const auto found = files.constFind(path);
        return found == files.constEnd() ? std::nullopt : std::optional(*found);
    });
}

TEST(ChatEffort, IsWhatTheCommandSays)
{
    EXPECT_EQ(effort("claude --effort high --chrome"), "high");
    EXPECT_EQ(effort("claude --effort=max"), "max");
    EXPECT_EQ(effort("claude   --effort  low"), "low");
    EXPECT_EQ(effort("claude --effort low --effort=high"), "low");
}

TEST(ChatEffort, IsAbsentIfNothingSaysIt)
{
    EXPECT_EQ(effort("claude"), std::nullopt);
    EXPECT_EQ(effort("claude --effort"), std::nullopt);
    EXPECT_EQ(effort("claude --effortless high"), std::nullopt);
}

TEST(ChatEffort, TheCommandComesBeforeTheFiles)
{
    EXPECT_EQ(effort("claude --effort low",
                     {{"/project/.claude/settings.local.json", R"({"effortLevel":"max"})"}}),
              "low");
}

TEST(ChatEffort, AsksTheFilesFromNearToFar)
{
    Files files{{"/home/user/.claude/settings.json", R"({"effortLevel":"home"})"}};
    EXPECT_EQ(effort("claude", files), "home");

    files["/project/.claude/settings.json"] = R"({"effortLevel":"project"})";
    EXPECT_EQ(effort("claude", files), "project");

    files["/project/.claude/settings.local.json"] = R"({"effortLevel":"local"})";
    EXPECT_EQ(effort("claude", files), "local");
}

TEST(ChatEffort, PassesOverAFileThatSaysNothing)
{
    const QByteArray home = R"({"effortLevel":"home"})";
    for (const char* contents : {"", "garbage", "[]", "{}", R"({"effortLevel":3})", "\xff"}) {
        SCOPED_TRACE(contents);
        EXPECT_EQ(effort("claude", {{"/project/.claude/settings.json", contents},
                                    {"/home/user/.claude/settings.json", home}}),
                  "home");
    }
}

} // namespace
} // namespace Bralto
