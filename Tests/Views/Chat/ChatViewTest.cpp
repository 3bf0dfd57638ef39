#include "Views/Chat/ChatView.h"

#include "Chat/ChatDraft.h"
#include "Tests/Support/ChatHarness.h"
#include "Views/Chat/ChatComposer.h"
#include "Views/Chat/ChatMissingAgentCard.h"
#include "Views/Chat/ChatPermissionCard.h"
#include "Views/Chat/ChatQuestionCard.h"
#include "Views/Chat/ChatTranscriptView.h"
#include "Views/Chat/SendButton.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

using namespace Bralto;

/// A pane on a real conversation with a scripted agent.
class ChatViewTest : public ChatHarness {
protected:
    void SetUp() override
    {
        open();
        m_view = std::make_unique<ChatView>(chat(), m_theme, m_clock, m_files);
        m_view->resize(500, 600);
        m_view->show();
        m_view->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_view.get()));
        field().setFocus();
    }
    void TearDown() override { m_view.reset(); }

    [[nodiscard]] ComposerField& field() { return m_view->composer().field(); }
    [[nodiscard]] ChatDraft& draft() { return ChatDraft::of(chat()); }
    template <typename Widget>
    [[nodiscard]] Widget& part()
    {
        return *m_view->findChild<Widget*>();
    }

    void type(const QString& text) { QTest::keyClicks(&field(), text); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&field(), key, modifiers);
    }

    /// The agent works on a turn and asks for a tool.
    void askPermission(const QString& id = "p1")
    {
        chat().send("Hello");
        agent().sayLine(AgentLine::init());
        agent().sayLine(AgentLine::permission(id));
    }

    [[nodiscard]] QJsonValue lastReply() const
    {
        return agent().lastWritten("control_response")["response"]["response"];
    }

    Theme m_theme{Theme::System{true, true}};
    ChatFileIndex m_files;
    std::unique_ptr<ChatView> m_view;
};

TEST_F(ChatViewTest, ShowingThePaneStartsTheAgent)
{
    EXPECT_EQ(m_launcher.agents.size(), 1u);
    EXPECT_EQ(chat().state().kind, Kind::Idle);
}

TEST_F(ChatViewTest, ReturnSends)
{
    type("hello");
    press(Qt::Key_Return);

    EXPECT_EQ(agent().lastWritten("user")["message"]["content"][0]["text"].toString(), "hello");
    EXPECT_EQ(field().toPlainText(), "");
    EXPECT_EQ(chat().state().kind, Kind::Working);
}

TEST_F(ChatViewTest, ShiftReturnBreaksTheLine)
{
    type("one");
    press(Qt::Key_Return, Qt::ShiftModifier);
    type("two");

    EXPECT_EQ(field().toPlainText(), "one\ntwo");
    EXPECT_EQ(agent().count("user"), 0);
}

TEST_F(ChatViewTest, TheFieldGrowsToEightLines)
{
    const int one = field().height();
    for (int i = 0; i < 4; ++i)
        press(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_GT(field().height(), one + 60);
    for (int i = 0; i < 20; ++i)
        press(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_LE(field().height(), 8 * 22 + 4);
    draft().clear();
    EXPECT_EQ(field().height(), one);
}

TEST_F(ChatViewTest, AnUnsentTextOutlivesTheView)
{
    type("draft");
    m_view = std::make_unique<ChatView>(chat(), m_theme, m_clock, m_files);

    EXPECT_EQ(field().toPlainText(), "draft");
}

TEST_F(ChatViewTest, DigitsAnswerAPermissionOnlyWhileTheFieldIsEmpty)
{
    askPermission();
    EXPECT_TRUE(part<ChatPermissionCard>().isVisible());
    type("x1");
    EXPECT_EQ(field().toPlainText(), "x1");
    EXPECT_EQ(agent().count("control_response"), 0);

    draft().clear();
    press(Qt::Key_1);

    EXPECT_EQ(lastReply()["behavior"].toString(), "allow");
    EXPECT_FALSE(part<ChatPermissionCard>().isVisible());
}

TEST_F(ChatViewTest, EscapeRefusesThenInterrupts)
{
    askPermission();

    press(Qt::Key_Escape);
    EXPECT_EQ(lastReply()["behavior"].toString(), "deny");
    EXPECT_EQ(agent().count("control_request", "interrupt"), 0);

    press(Qt::Key_Escape);
    EXPECT_EQ(agent().count("control_request", "interrupt"), 1);
}

TEST_F(ChatViewTest, ArrowsAndReturnRefuse)
{
    askPermission();

    press(Qt::Key_Down);
    press(Qt::Key_Return);

    EXPECT_EQ(lastReply()["behavior"].toString(), "deny");
}

TEST_F(ChatViewTest, AQuestionIsAnsweredByItsDigit)
{
    chat().send("Hello");
    agent().sayLine(AgentLine::init());
    agent().sayLine(AgentLine::question("q1"));
    ASSERT_TRUE(part<ChatQuestionCard>().isVisible());

    press(Qt::Key_1);

    EXPECT_EQ(lastReply()["updatedInput"]["answers"]["Which?"].toString(), "A");
    EXPECT_FALSE(part<ChatQuestionCard>().isVisible());
}

TEST_F(ChatViewTest, OwnWordsAnswerAQuestion)
{
    chat().send("Hello");
    agent().sayLine(AgentLine::init());
    agent().sayLine(AgentLine::question("q1"));

    press(Qt::Key_Down);
    press(Qt::Key_Return);
    auto* words = part<ChatQuestionCard>().findChild<QLineEdit*>();
    ASSERT_NE(words, nullptr);
    QTest::keyClicks(words, "mine");
    QTest::keyClick(words, Qt::Key_Return);

    EXPECT_EQ(lastReply()["updatedInput"]["answers"]["Which?"].toString(), "mine");
}

TEST_F(ChatViewTest, TheCardShowsTheWholeCommand)
{
    const ChatPermission permission{"p", "Bash", "ls", R"({"command":"ls\nrm -r x"})"};
    EXPECT_EQ(ChatPermissionCard::body(permission, {}),
              (ChatPermissionCard::Body{"ls\nrm -r x", false}));
    EXPECT_EQ(ChatPermissionCard::body({"p", "Edit", "~/a", R"({"command":"x"})"}, {}),
              (ChatPermissionCard::Body{"~/a", false}));
}

TEST_F(ChatViewTest, APlanIsTakenFromTheRequestOrFromTheTranscript)
{
    ChatTranscript transcript;
    ChatToolCall call;
    call.id = "c";
    call.name = "ExitPlanMode";
    call.inputJSON = R"({"plan":"from the call"})";
    ChatMessage message;
    message.id = "m";
    message.blocks = {call};
    transcript.append(message);

    EXPECT_EQ(
        ChatPermissionCard::body({"p", "ExitPlanMode", "", R"({"plan":"# Mine"})"}, transcript),
        (ChatPermissionCard::Body{"# Mine", true}));
    EXPECT_EQ(ChatPermissionCard::body({"p", "ExitPlanMode", "", "{}"}, transcript),
              (ChatPermissionCard::Body{"from the call", true}));
    EXPECT_EQ(ChatPermissionCard::body({"p", "ExitPlanMode", "", "no json"}, {}),
              (ChatPermissionCard::Body{"", true}));
}

TEST_F(ChatViewTest, TheSendButtonTurnsIntoStop)
{
    auto& button = part<SendButton>();
    EXPECT_EQ(button.face(), SendButton::Face::Off);
    type("hello");
    EXPECT_EQ(button.face(), SendButton::Face::Send);

    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(button.face(), SendButton::Face::Stop);
    QTest::mouseClick(&button, Qt::LeftButton);

    EXPECT_EQ(agent().count("control_request", "interrupt"), 1);
}

TEST_F(ChatViewTest, APastedPictureBecomesAChipAndLeavesTheTextAlone)
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    auto* data = new QMimeData;
    data->setImageData(image);
    QGuiApplication::clipboard()->setMimeData(data);
    type("look");

    press(Qt::Key_V, Qt::ControlModifier);

    ASSERT_TRUE(QTest::qWaitFor([this] { return draft().attachments().size() == 1; }));
    const auto& picture = std::get<ChatAttachment::Image>(draft().attachments()[0].kind);
    EXPECT_EQ(picture.mediaType, "image/png");
    EXPECT_EQ(QImage::fromData(picture.data).size(), QSize(8, 8));
    EXPECT_EQ(field().toPlainText(), "look");
}

TEST_F(ChatViewTest, PastedFilesAreAttachedInOrder)
{
    auto* data = new QMimeData;
    data->setUrls({QUrl::fromLocalFile("/p/b.txt"), QUrl::fromLocalFile("/p/a.txt")});
    QGuiApplication::clipboard()->setMimeData(data);

    press(Qt::Key_V, Qt::ControlModifier);

    ASSERT_TRUE(QTest::qWaitFor([this] { return draft().attachments().size() == 2; }));
    EXPECT_EQ(std::get<ChatAttachment::File>(draft().attachments()[0].kind).path, "/p/b.txt");
    EXPECT_EQ(std::get<ChatAttachment::File>(draft().attachments()[1].kind).path, "/p/a.txt");
}

TEST_F(ChatViewTest, PastedWordsStayPlainWords)
{
    auto* data = new QMimeData;
    data->setHtml("<b>bold</b>");
    data->setText("bold");
    QGuiApplication::clipboard()->setMimeData(data);

    press(Qt::Key_V, Qt::ControlModifier);

    EXPECT_EQ(field().toPlainText(), "bold");
    EXPECT_TRUE(draft().attachments().isEmpty());
}

TEST_F(ChatViewTest, ThePaletteCompletesByTab)
{
    type("/cl");
    ASSERT_TRUE(draft().isPaletteOpen());

    press(Qt::Key_Tab);

    EXPECT_EQ(field().toPlainText(), "/clear ");
    EXPECT_TRUE(field().hasFocus());
}

TEST_F(ChatViewTest, WithoutAnAgentTheCardOffersTheTwoWaysOn)
{
    EXPECT_FALSE(part<ChatMissingAgentCard>().isVisible());
    agent().exit(127);
    ASSERT_TRUE(part<ChatMissingAgentCard>().isVisible());
    QSignalSpy demo(m_view.get(), &ChatView::useDemoAgentRequested);
    QSignalSpy help(m_view.get(), &ChatView::installHelpRequested);

    for (QAbstractButton* button : part<ChatMissingAgentCard>().findChildren<QAbstractButton*>())
        QTest::mouseClick(button, Qt::LeftButton);

    EXPECT_EQ(demo.count(), 1);
    EXPECT_EQ(help.count(), 1);
}

TEST_F(ChatViewTest, AMissingAgentIsToldOnceByItsCard)
{
    type("Hello");
    press(Qt::Key_Return);
    agent().complain("zsh:1: command not found: claude\n");
    agent().exit(127);

    ASSERT_TRUE(part<ChatMissingAgentCard>().isVisible());
    EXPECT_EQ(chat().state().kind, ChatState::Kind::Failed);
    EXPECT_FALSE(m_view->transcriptView().workingRow());
}

TEST_F(ChatViewTest, TypingInTheTranscriptWritesInTheComposer)
{
    m_view->transcriptView().setFocus();
    QTest::keyClick(&m_view->transcriptView(), Qt::Key_H);

    EXPECT_EQ(field().toPlainText(), "h");
}

TEST_F(ChatViewTest, EveryControlHasAnAccessibleName)
{
    askPermission();
    for (const QWidget* widget : m_view->findChildren<QWidget*>()) {
        if (widget->focusPolicy() != Qt::NoFocus && widget->isVisible() &&
            !widget->objectName().startsWith("qt_")) {
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
        }
    }
}
