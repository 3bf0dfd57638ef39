#include "Chat/ChatDraft.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

using namespace Bralto;
using Kind = ChatKey::Kind;

namespace {

ChatCommand command(const char* name, ChatCommand::Action action, const char* hint = "")
{
    ChatCommand command;
    command.name = QString::fromLatin1(name);
    command.argumentHint = QString::fromLatin1(hint);
    command.action = action;
    return command;
}

ChatKey key(Kind kind, bool shift = false)
{
    return {kind, 0, shift};
}

ChatKey digit(int number)
{
    return {Kind::Digit, number, false};
}

} // namespace

class ChatDraftTest : public testing::Test {
protected:
    void SetUp() override
    {
        m_draft.setCommands({
            command("model", ChatNativeCommand::Model, "[model]"),
            command("effort", ChatNativeCommand::Effort, "[low|high]"),
            command("permissions", ChatNativeCommand::Permissions),
            command("usage", ChatNativeCommand::Usage),
            command("clear", ChatNativeCommand::Clear),
            command("review", ChatCommand::Prompt{}, "[optional path]"),
            command("fix", ChatCommand::Prompt{}, "<issue>"),
            command("doctor", ChatCommand::Terminal{}),
        });
    }

    void type(const QString& text) { m_draft.setText(text, text.size()); }

    void openPermission(const QString& id = "p1")
    {
        m_draft.setPermission(ChatPermission{id, "Bash", "ls", {}});
    }

    void openQuestion()
    {
        ChatQuestion question{"q1", {{std::nullopt, "Which?", {{"A", {}}, {"B", {}}}, false}}, {}};
        m_draft.setQuestion(question);
    }

    QStringList paletteNames() const
    {
        QStringList names;
        for (const ChatCommand& each : m_draft.paletteRows())
            names.append(each.name);
        return names;
    }

    ChatDraft m_draft;
    QSignalSpy m_sent{&m_draft, &ChatDraft::sendRequested};
    QSignalSpy m_answers{&m_draft, &ChatDraft::answerRequested};
    QSignalSpy m_responses{&m_draft, &ChatDraft::respondRequested};
    QSignalSpy m_interrupts{&m_draft, &ChatDraft::interruptRequested};
};

TEST_F(ChatDraftTest, ReturnSendsTheTrimmedTextAndClears)
{
    type("  hello \n");

    EXPECT_TRUE(m_draft.press(key(Kind::Return)));

    ASSERT_EQ(m_sent.count(), 1);
    EXPECT_EQ(m_sent[0][0].toString(), "hello");
    EXPECT_EQ(m_draft.text(), "");
    EXPECT_FALSE(m_draft.canSend());
}

TEST_F(ChatDraftTest, ReturnOnNothingIsTakenAndSendsNothing)
{
    type(" \n ");

    EXPECT_TRUE(m_draft.press(key(Kind::Return)));
    EXPECT_EQ(m_sent.count(), 0);
}

TEST_F(ChatDraftTest, ShiftReturnIsTheFieldsOwn)
{
    type("hello");
    openPermission();

    EXPECT_FALSE(m_draft.press(key(Kind::Return, true)));
    EXPECT_EQ(m_responses.count(), 0);
}

TEST_F(ChatDraftTest, AnAttachmentAloneCanBeSent)
{
    QSignalSpy canSend(&m_draft, &ChatDraft::canSendChanged);
    m_draft.attach({ChatAttachment{"1", ChatAttachment::File{"/p/a"}}});
    EXPECT_TRUE(m_draft.canSend());
    EXPECT_EQ(canSend.count(), 1);

    m_draft.send();

    ASSERT_EQ(m_sent.count(), 1);
    EXPECT_EQ(m_sent[0][1].value<QList<ChatAttachment>>().size(), 1);
    EXPECT_TRUE(m_draft.attachments().isEmpty());
}

TEST_F(ChatDraftTest, WithAnAttachmentACommandIsText)
{
    m_draft.attach({ChatAttachment{"1", ChatAttachment::File{"/p/a"}}});
    type("/clear");
    m_draft.closeLists();
    QSignalSpy cleared(&m_draft, &ChatDraft::newConversationRequested);

    m_draft.press(key(Kind::Return));

    EXPECT_EQ(cleared.count(), 0);
    EXPECT_EQ(m_sent.count(), 1);
}

TEST_F(ChatDraftTest, ARemovedAttachmentIsGone)
{
    m_draft.attach({ChatAttachment{"1", ChatAttachment::File{"/p/a"}}});
    m_draft.removeAttachment("2");
    EXPECT_EQ(m_draft.attachments().size(), 1);
    m_draft.removeAttachment("1");
    EXPECT_FALSE(m_draft.canSend());
}

TEST_F(ChatDraftTest, ThePaletteOffersOnlyWhatThePaneCanCarryOut)
{
    type("/");

    EXPECT_EQ(paletteNames(),
              QStringList({"model", "effort", "permissions", "clear", "review", "fix"}));
}

TEST_F(ChatDraftTest, ThePaletteWrapsAndCloses)
{
    type("/");
    EXPECT_TRUE(m_draft.press(key(Kind::Up)));
    EXPECT_EQ(m_draft.paletteIndex(), 5);
    EXPECT_TRUE(m_draft.press(key(Kind::Down)));
    EXPECT_EQ(m_draft.paletteIndex(), 0);

    EXPECT_TRUE(m_draft.press(key(Kind::Escape)));
    EXPECT_FALSE(m_draft.isPaletteOpen());
    type("/m");
    EXPECT_TRUE(m_draft.isPaletteOpen());
}

TEST_F(ChatDraftTest, ReturnInThePaletteSendsACommandWithoutArguments)
{
    type("/rev");

    m_draft.press(key(Kind::Return));

    ASSERT_EQ(m_sent.count(), 1);
    EXPECT_EQ(m_sent[0][0].toString(), "/review");
}

TEST_F(ChatDraftTest, ReturnInThePaletteWaitsForArgumentsThatAreNotOptional)
{
    QSignalSpy replaced(&m_draft, &ChatDraft::textReplaced);
    type("/fi");

    m_draft.press(key(Kind::Return));

    EXPECT_EQ(m_sent.count(), 0);
    EXPECT_EQ(m_draft.text(), "/fix ");
    EXPECT_EQ(m_draft.cursor(), 5);
    EXPECT_FALSE(m_draft.isPaletteOpen());
    EXPECT_EQ(replaced.count(), 1);
}

TEST_F(ChatDraftTest, TabAlwaysCompletesAndNeverSends)
{
    type("/cle");

    EXPECT_TRUE(m_draft.press(key(Kind::Tab)));

    EXPECT_EQ(m_draft.text(), "/clear ");
    EXPECT_EQ(m_sent.count(), 0);
    EXPECT_FALSE(m_draft.press(key(Kind::Tab)));
}

TEST_F(ChatDraftTest, NativeCommandsAreCarriedOutHere)
{
    QSignalSpy cleared(&m_draft, &ChatDraft::newConversationRequested);
    QSignalSpy model(&m_draft, &ChatDraft::modelRequested);
    QSignalSpy effort(&m_draft, &ChatDraft::effortRequested);
    QSignalSpy mode(&m_draft, &ChatDraft::permissionModeRequested);

    for (const char* line : {"/clear", "/MODEL opus", "/effort  high ", "/permissions plan",
                             "/permissions nonsense"}) {
        type(QString::fromLatin1(line));
        m_draft.closeLists();
        m_draft.press(key(Kind::Return));
        EXPECT_EQ(m_draft.text(), "") << line;
    }

    EXPECT_EQ(cleared.count(), 1);
    ASSERT_EQ(model.count(), 1);
    EXPECT_EQ(model[0][0].toString(), "opus");
    ASSERT_EQ(effort.count(), 1);
    EXPECT_EQ(effort[0][0].toString(), "high");
    ASSERT_EQ(mode.count(), 1);
    EXPECT_EQ(mode[0][0].toString(), "plan");
    EXPECT_EQ(m_sent.count(), 0);
}

TEST_F(ChatDraftTest, ANativeCommandWithoutItsArgumentWaitsForIt)
{
    type("/model");

    m_draft.press(key(Kind::Return));
    EXPECT_EQ(m_draft.text(), "/model ");
    m_draft.press(key(Kind::Return));
    EXPECT_EQ(m_draft.text(), "/model ");
    EXPECT_EQ(m_sent.count(), 0);
}

TEST_F(ChatDraftTest, AnUnknownCommandGoesToTheAgent)
{
    type("/foo bar");
    m_draft.press(key(Kind::Return));

    ASSERT_EQ(m_sent.count(), 1);
    EXPECT_EQ(m_sent[0][0].toString(), "/foo bar");
}

TEST_F(ChatDraftTest, AWordWithAnAtSignOpensTheList)
{
    QSignalSpy files(&m_draft, &ChatDraft::filesRequested);
    type("see @ro");
    EXPECT_EQ(files.count(), 1);
    EXPECT_FALSE(m_draft.isMentionOpen());

    m_draft.setFiles(std::make_shared<ChatFileList>(QStringList{"src/routes.cpp", "x/my_routes"}));
    EXPECT_TRUE(m_draft.isMentionOpen());
    m_draft.press(key(Kind::Up));
    EXPECT_EQ(m_draft.mentionIndex(), 1);
    m_draft.press(key(Kind::Down));

    EXPECT_TRUE(m_draft.press(key(Kind::Return)));
    EXPECT_EQ(m_draft.text(), "see @src/routes.cpp ");
    EXPECT_FALSE(m_draft.isMentionOpen());
    EXPECT_EQ(m_sent.count(), 0);
}

TEST_F(ChatDraftTest, AMentionReplacesTheWordUpToTheCursor)
{
    m_draft.setText("a @ro z", 5);

    m_draft.insertMention("src/routes.cpp");

    EXPECT_EQ(m_draft.text(), "a @src/routes.cpp  z");
    EXPECT_EQ(m_draft.cursor(), 18);
}

TEST_F(ChatDraftTest, AMentionWinsOverThePalette)
{
    m_draft.setFiles(std::make_shared<ChatFileList>(QStringList{"a"}));
    type("/");
    EXPECT_TRUE(m_draft.isPaletteOpen());
    type("@");
    EXPECT_TRUE(m_draft.isMentionOpen());
    EXPECT_FALSE(m_draft.isPaletteOpen());
}

TEST(ChatMentionRange, TheAtSignMustStartTheWord)
{
    EXPECT_EQ(ChatMentionRange::in("foo @bar", 8), (ChatMentionRange{4, 8}));
    EXPECT_EQ(ChatMentionRange::in("foo @bar", 6), (ChatMentionRange{4, 6}));
    EXPECT_EQ(ChatMentionRange::in("a\n@", 3), (ChatMentionRange{2, 3}));
    EXPECT_EQ(ChatMentionRange::in(QString::fromUtf8("@😀"), 3), (ChatMentionRange{0, 3}));
    EXPECT_FALSE(ChatMentionRange::in("foo@bar", 7).has_value());
    EXPECT_FALSE(ChatMentionRange::in("foo @bar", 4).has_value());
    EXPECT_FALSE(ChatMentionRange::in("", 0).has_value());
    EXPECT_FALSE(ChatMentionRange::in("@a", -1).has_value());
    EXPECT_FALSE(ChatMentionRange::in("@a", 3).has_value());
}

TEST_F(ChatDraftTest, AppendPartsByOneBlank)
{
    m_draft.append("  ");
    EXPECT_EQ(m_draft.text(), "");
    m_draft.append(" one ");
    EXPECT_EQ(m_draft.text(), "one");
    m_draft.append("two");
    EXPECT_EQ(m_draft.text(), "one two");
    type("line\n");
    m_draft.append("three");
    EXPECT_EQ(m_draft.text(), "line\nthree");
}

TEST_F(ChatDraftTest, DigitsAnswerAPermissionOnlyWithAnEmptyField)
{
    openPermission();
    type("x");
    EXPECT_FALSE(m_draft.press(digit(1)));
    type("");
    EXPECT_FALSE(m_draft.press(digit(3)));

    EXPECT_TRUE(m_draft.press(digit(1)));
    EXPECT_TRUE(m_draft.press(digit(2)));

    ASSERT_EQ(m_responses.count(), 2);
    EXPECT_EQ(m_responses[0][0].toString(), "p1");
    EXPECT_TRUE(m_responses[0][1].toBool());
    EXPECT_FALSE(m_responses[1][1].toBool());
}

TEST_F(ChatDraftTest, ArrowsMoveBetweenAllowAndRefuseAndReturnChooses)
{
    openPermission();
    m_draft.press(key(Kind::Down));
    EXPECT_EQ(m_draft.permissionHighlight(), 1);
    m_draft.press(key(Kind::Return));
    m_draft.press(key(Kind::Up));
    m_draft.press(key(Kind::Return));

    ASSERT_EQ(m_responses.count(), 2);
    EXPECT_FALSE(m_responses[0][1].toBool());
    EXPECT_TRUE(m_responses[1][1].toBool());
}

TEST_F(ChatDraftTest, AnotherPermissionStartsAtAllow)
{
    openPermission("p1");
    m_draft.press(key(Kind::Down));
    openPermission("p2");

    EXPECT_EQ(m_draft.permissionHighlight(), 0);
}

TEST_F(ChatDraftTest, EscapeRefusesAPermissionBeforeItInterrupts)
{
    m_draft.setBusy(true);
    openPermission();

    EXPECT_TRUE(m_draft.press(key(Kind::Escape)));
    EXPECT_EQ(m_responses.count(), 1);
    EXPECT_EQ(m_interrupts.count(), 0);

    m_draft.setPermission(std::nullopt);
    EXPECT_TRUE(m_draft.press(key(Kind::Escape)));
    EXPECT_EQ(m_interrupts.count(), 1);
}

TEST_F(ChatDraftTest, EscapeInAnIdleConversationIsNotTaken)
{
    EXPECT_FALSE(m_draft.press(key(Kind::Escape)));
}

TEST_F(ChatDraftTest, AQuestionIsAnsweredByKeys)
{
    openQuestion();
    m_draft.press(key(Kind::Down));

    EXPECT_TRUE(m_draft.press(key(Kind::Return)));

    ASSERT_EQ(m_answers.count(), 1);
    EXPECT_EQ(m_answers[0][0].toString(), "q1");
    EXPECT_EQ((m_answers[0][1].value<QMap<QString, QString>>()),
              (QMap<QString, QString>{{"Which?", "B"}}));
}

TEST_F(ChatDraftTest, EscapeOnAQuestionInterrupts)
{
    m_draft.setBusy(true);
    openQuestion();

    EXPECT_TRUE(m_draft.press(key(Kind::Escape)));
    EXPECT_EQ(m_interrupts.count(), 1);
}

TEST_F(ChatDraftTest, APermissionComesBeforeAQuestion)
{
    openQuestion();
    openPermission();

    m_draft.press(digit(1));

    EXPECT_EQ(m_responses.count(), 1);
    EXPECT_EQ(m_answers.count(), 0);
}

TEST_F(ChatDraftTest, TheSameQuestionKeepsItsWalk)
{
    openQuestion();
    m_draft.press(key(Kind::Down));
    openQuestion();
    EXPECT_EQ(m_draft.questionFlow()->highlightedRow()->option, 1);

    m_draft.setQuestion(std::nullopt);
    EXPECT_FALSE(m_draft.questionFlow().has_value());
}

TEST_F(ChatDraftTest, OwnWordsCanBeGivenToAQuestion)
{
    openQuestion();
    m_draft.choose({ChatQuestionFlow::Row::Kind::Other, 0});
    m_draft.setOtherAnswer("mine");
    m_draft.choose({ChatQuestionFlow::Row::Kind::Other, 0});

    ASSERT_EQ(m_answers.count(), 1);
    EXPECT_EQ((m_answers[0][1].value<QMap<QString, QString>>().value("Which?")), "mine");
}
