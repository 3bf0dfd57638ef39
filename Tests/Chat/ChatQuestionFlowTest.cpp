#include "Chat/ChatQuestionFlow.h"

#include <gtest/gtest.h>

using namespace Bralto;
using Flow = ChatQuestionFlow;
using Kind = ChatKey::Kind;

namespace {

ChatQuestion::Item item(const char* question, const QStringList& labels, bool multi = false)
{
    ChatQuestion::Item item;
    item.question = QString::fromLatin1(question);
    for (const QString& label : labels)
        item.options.append({label, std::nullopt});
    item.multiSelect = multi;
    return item;
}

Flow flow(QList<ChatQuestion::Item> items)
{
    return Flow(ChatQuestion{"q", std::move(items), std::nullopt});
}

ChatKey key(Kind kind, int digit = 0)
{
    return {kind, digit, false};
}

} // namespace

TEST(ChatQuestionFlow, ReturnOnAnOptionOfOneSingleItemFinishesAtOnce)
{
    Flow walk = flow({item("Which?", {"A", "B"})});
    ASSERT_EQ(walk.handle(key(Kind::Down)), Flow::Outcome::Taken);

    EXPECT_EQ(walk.handle(key(Kind::Return)), Flow::Outcome::Finished);

    EXPECT_TRUE(walk.isAnswered());
    EXPECT_EQ(walk.answers(), (QMap<QString, QString>{{"Which?", "B"}}));
    EXPECT_EQ(walk.handle(key(Kind::Return)), Flow::Outcome::NotTaken);
}

TEST(ChatQuestionFlow, ReturnTogglesInAMultiSelectItemAndSubmitMovesOn)
{
    Flow walk = flow({item("Which?", {"A", "B"}, true), item("Then?", {"C"})});

    EXPECT_EQ(walk.handle(key(Kind::Digit, 2)), Flow::Outcome::Taken);
    EXPECT_EQ(walk.handle(key(Kind::Digit, 1)), Flow::Outcome::Taken);
    EXPECT_TRUE(walk.isPicked("A"));
    EXPECT_EQ(walk.handle(key(Kind::Return)), Flow::Outcome::Taken);
    EXPECT_FALSE(walk.isPicked("A"));
    walk.handle(key(Kind::Return));
    walk.handle(key(Kind::Up));
    EXPECT_EQ(walk.highlightedRow()->kind, Flow::Row::Kind::Submit);

    EXPECT_EQ(walk.handle(key(Kind::Return)), Flow::Outcome::Taken);
    EXPECT_EQ(walk.step(), 1);
    EXPECT_EQ(walk.answers().value("Which?"), "A, B");
    EXPECT_EQ(walk.pickedCount(), 0);
}

TEST(ChatQuestionFlow, WithNothingPickedTheAnswerIsOmitted)
{
    Flow walk = flow({item("Which?", {"A"}, true)});

    EXPECT_EQ(walk.advance(), Flow::Outcome::Finished);
    EXPECT_TRUE(walk.answers().isEmpty());
}

TEST(ChatQuestionFlow, OwnWordsAndPickedOptionsJoin)
{
    Flow walk = flow({item("Which?", {"A", "B"}, true)});
    walk.choose("B");
    walk.setOther("  and mine ");
    EXPECT_TRUE(walk.canAdvance());

    walk.advance();

    EXPECT_EQ(walk.answers().value("Which?"), "B, and mine");
}

TEST(ChatQuestionFlow, ReturnOnOtherOpensTheFieldThenMovesOn)
{
    Flow walk = flow({item("Which?", {"A"})});
    walk.handle(key(Kind::Down));
    EXPECT_EQ(walk.highlightedRow()->kind, Flow::Row::Kind::Other);

    EXPECT_EQ(walk.handle(key(Kind::Return)), Flow::Outcome::Taken);
    EXPECT_TRUE(walk.showsOther());
    walk.setOther("mine");
    EXPECT_EQ(walk.handle(key(Kind::Return)), Flow::Outcome::Finished);
    EXPECT_EQ(walk.answers().value("Which?"), "mine");
}

TEST(ChatQuestionFlow, EscapeClosesTheFieldAndIsNotTakenElse)
{
    Flow walk = flow({item("Which?", {"A"})});
    EXPECT_EQ(walk.handle(key(Kind::Escape)), Flow::Outcome::NotTaken);
    walk.openOther();

    EXPECT_EQ(walk.handle(key(Kind::Escape)), Flow::Outcome::Taken);
    EXPECT_FALSE(walk.showsOther());
}

TEST(ChatQuestionFlow, TheHighlightWrapsOverAllRows)
{
    Flow walk = flow({item("Which?", {"A", "B"}, true)});
    EXPECT_EQ(walk.rows().size(), 4u);

    walk.handle(key(Kind::Up));
    EXPECT_EQ(walk.highlightedRow()->kind, Flow::Row::Kind::Submit);
    walk.handle(key(Kind::Down));
    EXPECT_EQ(walk.highlightedRow(), (Flow::Row{Flow::Row::Kind::Option, 0}));
}

TEST(ChatQuestionFlow, ADigitBeyondTheOptionsIsNotTaken)
{
    Flow walk = flow({item("Which?", {"A", "B"})});

    EXPECT_EQ(walk.handle(key(Kind::Digit, 3)), Flow::Outcome::NotTaken);
    EXPECT_EQ(walk.handle(key(Kind::Tab)), Flow::Outcome::NotTaken);
    EXPECT_EQ(walk.handle(key(Kind::Digit, 2)), Flow::Outcome::Finished);
    EXPECT_EQ(walk.answers().value("Which?"), "B");
}

TEST(ChatQuestionFlow, AQuestionWithoutItemsTakesNothing)
{
    Flow walk = flow({});

    EXPECT_EQ(walk.item(), nullptr);
    EXPECT_TRUE(walk.rows().empty());
    EXPECT_FALSE(walk.highlightedRow().has_value());
    for (const Kind kind : {Kind::Up, Kind::Down, Kind::Return, Kind::Escape, Kind::Digit})
        EXPECT_EQ(walk.handle(key(kind, 1)), Flow::Outcome::NotTaken);
    EXPECT_EQ(walk.advance(), Flow::Outcome::NotTaken);
}

TEST(ChatQuestionFlow, AnItemWithoutOptionsStillTakesOwnWords)
{
    Flow walk = flow({item("Why?", {})});
    EXPECT_EQ(walk.highlightedRow()->kind, Flow::Row::Kind::Other);
    walk.openOther();
    walk.setOther("because");

    EXPECT_EQ(walk.handle(key(Kind::Return)), Flow::Outcome::Finished);
    EXPECT_EQ(walk.answers().value("Why?"), "because");
}
