#include "Base/PaneEnvironment.h"

#include <gtest/gtest.h>

namespace Bralto {
namespace {

const PaneEnvironment::Identity SomePane{"pane-1", "/home/user/project"};

std::optional<QString> built(const QStringList& own, const QString& name)
{
    return PaneEnvironment::value(PaneEnvironment::build(own, SomePane), name);
}

TEST(PaneEnvironment, TellsWhichTerminalThisIsWhateverTheProgramWasStartedIn)
{
    const QStringList own{"TERM=linux", "COLORTERM=no", "TERM_PROGRAM=other"};

    EXPECT_EQ(built(own, "TERM"), "xterm-256color");
    EXPECT_EQ(built(own, "COLORTERM"), "truecolor");
    EXPECT_EQ(built(own, "TERM_PROGRAM"), "Bralto");
}

TEST(PaneEnvironment, KeepsTheLanguageAndHasOneIfThereIsNone)
{
    EXPECT_EQ(built({"LANG=de_DE.UTF-8"}, "LANG"), "de_DE.UTF-8");
    EXPECT_EQ(built({}, "LANG"), "en_US.UTF-8");
}

TEST(PaneEnvironment, LeavesOutWhatAnAgentOrAnEditorLeftBehind)
{
    const QStringList own{"CLAUDE=1",          "CLAUDECODE=1",           "CLAUDE_CODE_SSE=2",
                          "VSCODE_PID=3",      "ELECTRON_RUN=4",         "TERM_SESSION_ID=5",
                          "ITERM_PROFILE=6",   "TERM_PROGRAM_VERSION=7", "GIT_ASKPASS=8",
                          "GIT_ASKPASS_MORE=9"};

    for (const QString& variable : own) {
        SCOPED_TRACE(qPrintable(variable));
        EXPECT_FALSE(built(own, variable.section('=', 0, 0)).has_value());
    }
}

TEST(PaneEnvironment, KeepsNamesThatOnlyLookLikeTheRemovedOnes)
{
    const QStringList own{"MY_CLAUDE=1", "VSCODE=2", "GIT_EDITOR=3", "TERM_SESSION=4"};

    for (const QString& variable : own) {
        SCOPED_TRACE(qPrintable(variable));
        EXPECT_EQ(built(own, variable.section('=', 0, 0)), variable.section('=', 1));
    }
}

TEST(PaneEnvironment, NamesThePaneAndItsStandardisedProject)
{
    const QStringList environment =
        PaneEnvironment::build({"BRALTO_PANE=old"}, {"new", "/home/user/../user/p/"});

    EXPECT_EQ(PaneEnvironment::value(environment, PaneEnvironment::Pane), "new");
    EXPECT_EQ(PaneEnvironment::value(environment, PaneEnvironment::Project), "/home/user/p");
}

TEST(PaneEnvironment, TakesValuesWithEqualSignsAndEmptyOnesAsTheyAre)
{
    const QStringList own{"A=b=c", "EMPTY=", "AB=1"};

    EXPECT_EQ(built(own, "A"), "b=c");
    EXPECT_EQ(built(own, "EMPTY"), "");
    EXPECT_FALSE(built(own, "B").has_value());
}

TEST(PaneEnvironment, DropsWhatIsNoVariableAndHasEachNameOnce)
{
    const QStringList environment =
        PaneEnvironment::build({"=odd", "word", "X=1", "X=2"}, SomePane);

    EXPECT_EQ(environment.filter("odd").size(), 0);
    EXPECT_EQ(environment.filter("word").size(), 0);
    EXPECT_EQ(environment.count("X=1"), 1);
    EXPECT_EQ(environment.count("X=2"), 0);
}

TEST(PaneEnvironment, SettingReplacesInPlaceAndElseAppends)
{
    EXPECT_EQ(PaneEnvironment::setting({"A=1", "B=2"}, "A", "3"), (QStringList{"A=3", "B=2"}));
    EXPECT_EQ(PaneEnvironment::setting({"A=1"}, "TERM", "dumb"), (QStringList{"A=1", "TERM=dumb"}));
}

} // namespace
} // namespace Bralto
