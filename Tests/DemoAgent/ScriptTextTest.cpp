#include "DemoAgent/Script/ScriptPlayer.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace DemoAgent;

namespace {

const QSet<QString> Verbs{"text", "line", "await"};

std::vector<ScriptStep> steps(const char* text)
{
    auto result = ScriptText::parse(text, Verbs);
    EXPECT_TRUE(std::holds_alternative<std::vector<ScriptStep>>(result));
    return std::get<std::vector<ScriptStep>>(std::move(result));
}

QString error(const char* text)
{
    const auto result = ScriptText::parse(text, Verbs);
    return std::holds_alternative<ScriptError>(result) ? std::get<ScriptError>(result).message
                                                       : QString();
}

} // namespace

TEST(ScriptText, AStepIsAVerbAndTheRestOfItsLine)
{
    const auto result = steps("# a remark\n\n  text  Hello there  \nawait user\n");

    ASSERT_EQ(result.size(), 2U);
    EXPECT_EQ(result.at(0).verb, "text");
    EXPECT_EQ(result.at(0).words, "Hello there");
    EXPECT_EQ(result.at(0).line, 3);
    EXPECT_EQ(result.at(1).words, "user");
}

TEST(ScriptText, ALineThatBeginsWithABraceIsSentAsItStands)
{
    const auto result = steps("  {\"type\": \"x\"}");

    ASSERT_EQ(result.size(), 1U);
    EXPECT_EQ(result.at(0).verb, "line");
    EXPECT_EQ(result.at(0).words, "{\"type\": \"x\"}");
}

TEST(ScriptText, BlocksNestAndHaveTwoBranches)
{
    const auto result =
        steps("repeat 2\nif allow\ntext yes\nelse\ntext no\ntext never\nend\nend\ntext last");

    ASSERT_EQ(result.size(), 2U);
    ASSERT_EQ(result.at(0).body.size(), 1U);
    const ScriptStep& branch = result.at(0).body.at(0);
    EXPECT_EQ(branch.verb, "if");
    EXPECT_EQ(branch.words, "allow");
    EXPECT_EQ(branch.body.size(), 1U);
    EXPECT_EQ(branch.otherwise.size(), 2U);
    EXPECT_EQ(result.at(1).words, "last");
}

TEST(ScriptText, AMistakeIsNamedWithItsLine)
{
    EXPECT_EQ(error("text a\nteckst b\ntext c"), "line 2: unknown step \"teckst\"");
    EXPECT_EQ(error("repeat 2\ntext a"), "line 2: an end is missing");
    EXPECT_EQ(error("text a\nend\ntext b"), "line 2: an end too many");
    EXPECT_EQ(error("else"), "line 1: an end too many");
    EXPECT_EQ(error("if allow\nelse\nelse\nend"), "line 3: an end is missing");
}

TEST(ScriptText, VariablesAreFilledInAndUnknownOnesStay)
{
    const QHash<QString, QString> values{{"a", "1"}, {"field:b", "2"}};

    EXPECT_EQ(ScriptText::filled("${a}${field:b} ${c} $a ${", values), "12 ${c} $a ${");
}

TEST(ScriptText, EscapesBecomeBytes)
{
    EXPECT_EQ(ScriptText::unescaped("a\\nb\\tc\\\\n"), "a\nb\tc\\n");
    EXPECT_EQ(ScriptText::unescaped("\\xff\\x00z"), QByteArray("\xff\0z", 3));
    EXPECT_EQ(ScriptText::unescaped(QString::fromUtf8("ü\\q\\")), QByteArray("ü\\q\\"));
}

TEST(ScriptText, TheReadyScriptsAreWithoutMistakes)
{
    const QFileInfoList scripts = QDir(BRALTO_FIXTURES "/Scripts").entryInfoList({"*.script"});

    EXPECT_GT(scripts.size(), 30);
    for (const QFileInfo& script : scripts) {
        const auto result = ScriptPlayer::load(script.filePath());
        const auto* error = std::get_if<ScriptError>(&result);
        EXPECT_FALSE(error) << (error ? error->message.toStdString() : "");
    }
}
