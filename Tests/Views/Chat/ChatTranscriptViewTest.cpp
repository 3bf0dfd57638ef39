#include "Views/Chat/ChatTranscriptView.h"

#include "Tests/Support/FixedClock.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPaintEvent>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

ChatMessage message(const QString& id, ChatRole role, QList<ChatBlock> blocks)
{
    ChatMessage message;
    message.id = id;
    message.role = role;
    message.blocks = std::move(blocks);
    return message;
}

ChatMessage reply(const QString& id, const QString& text)
{
    return message(id, ChatRole::Assistant, {ChatTextBlock{id + "-0", text}});
}

ChatToolCall bash(const QString& id, const QString& result)
{
    ChatToolCall call;
    call.id = id;
    call.name = "Bash";
    call.summary = "ls";
    call.status = ChatToolStatus::Done;
    call.resultText = result;
    return call;
}

} // namespace

class ChatTranscriptViewTest : public testing::Test {
protected:
    void SetUp() override
    {
        m_view.resize(500, 400);
        m_view.setTranscript(&m_transcript);
        m_view.show();
        m_view.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_view));
    }

    void add(ChatMessage message)
    {
        m_view.transcriptChanged(m_transcript.append(std::move(message)));
        m_view.flush();
    }

    /// The text of one message changes, as it does while it streams.
    void grow(std::size_t index, const QString& text)
    {
        std::get<ChatTextBlock>(m_transcript.messages[index].blocks[0]).text += text;
        ChatTranscriptChange change;
        change.touch(index);
        m_view.transcriptChanged(change);
        m_view.flush();
    }

    void fill(int count)
    {
        for (int i = 0; i < count; ++i)
            add(reply(QString("m%1").arg(i), QString("Paragraph %1\n\nand another.").arg(i)));
    }

    [[nodiscard]] QScrollBar& bar() { return *m_view.verticalScrollBar(); }
    [[nodiscard]] bool isAtBottom() { return bar().value() == bar().maximum(); }

    /// What the user's wheel does.
    void scrollTo(int value) { bar().setValue(value); }
    /// The wheel has come to rest.
    void rest() { QTest::qWait(200); }

    /// The middle of the row with this index, in the viewport.
    [[nodiscard]] QPoint middleOf(std::size_t row)
    {
        const ChatRow& shown = m_view.rows().all()[row];
        return {250, int(shown.top + 4 + shown.height / 2) - bar().value()};
    }

    void click(const QPoint& point)
    {
        QTest::mouseClick(m_view.viewport(), Qt::LeftButton, {}, point);
    }

    Theme m_theme{Theme::System{true, true}};
    FixedClock m_clock;
    ChatTranscript m_transcript;
    ChatTranscriptView m_view{m_theme, m_clock};
};

TEST_F(ChatTranscriptViewTest, NewMessagesKeepTheListAtItsEnd)
{
    fill(30);

    EXPECT_GT(bar().maximum(), 0);
    EXPECT_TRUE(isAtBottom());
    grow(29, "\n\nmore\n\nand more");
    EXPECT_TRUE(isAtBottom());
}

TEST_F(ChatTranscriptViewTest, TheUsersScrollingEndsFollowing)
{
    fill(30);
    scrollTo(bar().maximum() / 2);
    rest();
    const int before = bar().value();

    add(reply("new", "more"));

    EXPECT_FALSE(m_view.isFollowing());
    EXPECT_EQ(bar().value(), before);
}

TEST_F(ChatTranscriptViewTest, ComingBackToTheEndFollowsAgain)
{
    fill(30);
    scrollTo(0);
    rest();
    ASSERT_FALSE(m_view.isFollowing());

    scrollTo(bar().maximum());
    rest();
    add(reply("new", "more\n\nand more\n\nand more"));

    EXPECT_TRUE(m_view.isFollowing());
    EXPECT_TRUE(isAtBottom());
}

TEST_F(ChatTranscriptViewTest, TheWayBackScrollsToTheEnd)
{
    fill(30);
    scrollTo(0);
    rest();
    QSignalSpy following(&m_view, &ChatTranscriptView::followingChanged);

    m_view.scrollToBottom();

    EXPECT_TRUE(isAtBottom());
    EXPECT_TRUE(following.last()[0].toBool());
}

TEST_F(ChatTranscriptViewTest, WhatIsLookedAtStaysWhileTextAboveGrows)
{
    fill(40);
    scrollTo(bar().maximum() / 2);
    rest();
    const std::size_t row = m_view.rows().rowAt(bar().value() + 100.0);
    const double place = m_view.rows().all()[row].top - bar().value();

    grow(0, QString("\n\nmore").repeated(50));

    EXPECT_DOUBLE_EQ(m_view.rows().all()[row].top - bar().value(), place);
}

TEST_F(ChatTranscriptViewTest, OnlyRowsNearTheViewAreLaidOut)
{
    fill(400);

    int laidOut = 0;
    for (const ChatRow& row : m_view.rows().all())
        laidOut += row.layout.has_value() ? 1 : 0;
    EXPECT_GT(laidOut, 3);
    EXPECT_LT(laidOut, 60);
}

TEST_F(ChatTranscriptViewTest, ChangesAddUpToOneFrame)
{
    fill(1);
    for (int i = 0; i < 100; ++i) {
        std::get<ChatTextBlock>(m_transcript.messages[0].blocks[0]).text += " word";
        ChatTranscriptChange change;
        change.touch(0);
        m_view.transcriptChanged(change);
    }
    const QString shown = std::get<ChatTextBlock>(m_view.rows().all()[0].blocks[0]).text;
    EXPECT_FALSE(shown.contains("word"));

    m_view.flush();

    EXPECT_EQ(std::get<ChatTextBlock>(m_view.rows().all()[0].blocks[0]).text.count("word"), 100);
}

TEST_F(ChatTranscriptViewTest, BlocksThatDidNotChangeKeepTheirLayout)
{
    add(reply("m", "first paragraph\n\nsecond"));
    const auto before = m_view.rows().all()[0].layout->parts[0].scene;

    grow(0, " grows");

    EXPECT_EQ(m_view.rows().all()[0].layout->parts[0].scene, before);
    EXPECT_EQ(m_view.rows().all()[0].layout->parts.size(), 2u);
}

TEST_F(ChatTranscriptViewTest, AClickOpensAToolRowAndAnotherClosesIt)
{
    add(message("m", ChatRole::Assistant, {bash("call", "one\ntwo")}));
    const double folded = m_view.rows().all()[0].height;

    click(middleOf(0));
    EXPECT_GT(m_view.rows().all()[0].height, folded + 40);
    const ChatRow& open = m_view.rows().all()[0];
    click({250, int(open.top) + 4 + 15});
    EXPECT_DOUBLE_EQ(m_view.rows().all()[0].height, folded);
}

TEST_F(ChatTranscriptViewTest, ToolRowsAreReachedAndOpenedByKey)
{
    add(message("m", ChatRole::Assistant, {bash("call", "one")}));
    const double folded = m_view.rows().all()[0].height;
    m_view.setFocus();

    QTest::keyClick(&m_view, Qt::Key_Tab);
    QTest::keyClick(&m_view, Qt::Key_Return);

    EXPECT_GT(m_view.rows().all()[0].height, folded);
}

TEST_F(ChatTranscriptViewTest, ADraggedSelectionIsCopied)
{
    add(reply("a", "Hello there"));
    add(reply("b", "General text"));
    const QPoint start(18, middleOf(0).y());
    const QPoint end(480, middleOf(1).y());

    QTest::mousePress(m_view.viewport(), Qt::LeftButton, {}, start);
    QTest::mouseMove(m_view.viewport(), end);
    QTest::mouseRelease(m_view.viewport(), Qt::LeftButton, {}, end);
    QTest::keyClick(&m_view, Qt::Key_C, Qt::ControlModifier);

    EXPECT_EQ(m_view.selectedText(), "Hello there\n\nGeneral text");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "Hello there\n\nGeneral text");
}

TEST_F(ChatTranscriptViewTest, ADoubleClickSelectsAWord)
{
    add(reply("a", "Hello"));

    QTest::mouseDClick(m_view.viewport(), Qt::LeftButton, {}, {24, middleOf(0).y()});

    EXPECT_EQ(m_view.selectedText(), "Hello");
}

TEST_F(ChatTranscriptViewTest, SelectAllTakesRowsOutOfViewToo)
{
    fill(60);
    QTest::keyClick(&m_view, Qt::Key_A, Qt::ControlModifier);

    const QString text = m_view.selectedText();
    EXPECT_TRUE(text.startsWith("Paragraph 0\n\nand another."));
    EXPECT_TRUE(text.endsWith("Paragraph 59\n\nand another."));
}

TEST_F(ChatTranscriptViewTest, LinksAskToBeOpened)
{
    add(reply("a", "[page](https://example.org/x)"));
    QSignalSpy opened(&m_view, &ChatTranscriptView::openUrlRequested);

    click({24, middleOf(0).y()});

    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened[0][0].toUrl(), QUrl("https://example.org/x"));
}

TEST_F(ChatTranscriptViewTest, InlineCodeThatNamesAFileOpensIt)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("main.c"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    m_view.setFolder(folder.path());
    add(reply("a", "`main.c:12`"));
    QSignalSpy opened(&m_view, &ChatTranscriptView::openFileRequested);

    click({24, middleOf(0).y()});

    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened[0][0].toString(), folder.filePath("main.c"));
}

TEST_F(ChatTranscriptViewTest, AnotherTranscriptStartsAtItsEnd)
{
    fill(30);
    scrollTo(0);
    rest();
    ChatTranscript other;
    for (int i = 0; i < 30; ++i)
        other.append(reply(QString("o%1").arg(i), "text"));

    m_view.setTranscript(&other);

    EXPECT_TRUE(m_view.isFollowing());
    EXPECT_TRUE(isAtBottom());
    m_view.setTranscript(nullptr);
    EXPECT_EQ(m_view.rows().size(), 0u);
}

TEST_F(ChatTranscriptViewTest, HistoryPutInFrontKeepsTheEndInView)
{
    fill(30);
    ChatTranscript history;
    for (int i = 0; i < 30; ++i)
        history.append(reply(QString("h%1").arg(i), "earlier"));

    m_view.transcriptChanged(m_transcript.prepend(history));
    m_view.flush();

    EXPECT_EQ(m_view.rows().size(), 60u);
    EXPECT_TRUE(isAtBottom());
}

TEST_F(ChatTranscriptViewTest, TheWorkingRowComesAndGoes)
{
    fill(1);
    m_view.setWorkingRow(ChatWorkingRow{ChatWorkingRow::Kind::Busy, "Thinking…"});
    m_view.flush();
    EXPECT_EQ(m_view.rows().size(), 2u);

    add(reply("n", "words"));
    EXPECT_EQ(m_view.rows().all().back().kind, ChatRow::Kind::Working);
    m_view.setWorkingRow(std::nullopt);
    m_view.flush();
    EXPECT_EQ(m_view.rows().size(), 2u);
}

TEST_F(ChatTranscriptViewTest, AKeyThatTypesBelongsToTheComposer)
{
    int typed = 0;
    QObject::connect(&m_view, &ChatTranscriptView::typed, [&typed] { ++typed; });

    QTest::keyClick(&m_view, Qt::Key_H);

    EXPECT_EQ(typed, 1);
}

// What is painted

namespace {

/// Adds up what a widget paints, as a share of its area.
class PaintedShare final : public QObject {
public:
    explicit PaintedShare(QWidget& widget)
        : m_widget(widget)
    {
        widget.installEventFilter(this);
    }

    [[nodiscard]] double take() { return std::exchange(m_share, 0.0); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            for (const QRect& part : static_cast<QPaintEvent*>(event)->region())
                m_share += double(part.width()) * part.height() /
                           (double(m_widget.width()) * m_widget.height());
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QWidget& m_widget;
    double m_share = 0;
};

} // namespace

class ChatTranscriptPaintTest : public ChatTranscriptViewTest {
protected:
    void SetUp() override
    {
        ChatTranscriptViewTest::SetUp();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_view));
        QCoreApplication::processEvents();
    }

    /// What is on the screen must be what the view looks like when it is painted as a whole.
    void expectScreenIsRight(const char* after)
    {
        QCoreApplication::processEvents();
        const QImage screen = m_view.screen()
                                  ->grabWindow(m_view.winId())
                                  .toImage()
                                  .convertToFormat(QImage::Format_RGB32);
        const QImage whole = m_view.grab().toImage().convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(screen.size(), whole.size());
        for (int y = 0; y < whole.height(); ++y) {
            for (int x = 0; x < whole.width(); ++x)
                ASSERT_EQ(screen.pixel(x, y), whole.pixel(x, y))
                    << "at " << x << ", " << y << " after " << after;
        }
    }
};

TEST_F(ChatTranscriptPaintTest, AWordPaintsTheBlockThatItStandsInAlone)
{
    fill(30);
    for (int i = 0; i < 40; ++i)
        grow(29, "\n\nA paragraph that stays as it is.");
    QCoreApplication::processEvents();
    PaintedShare painted(*m_view.viewport());

    grow(29, " word");
    QCoreApplication::processEvents();

    const double share = painted.take();
    EXPECT_GT(share, 0);
    EXPECT_LT(share, 0.15);
}

TEST_F(ChatTranscriptPaintTest, TextThatMovesUpIsNotPaintedAgain)
{
    fill(30);
    QCoreApplication::processEvents();
    PaintedShare painted(*m_view.viewport());

    grow(29, "\n\nA paragraph more.");
    QCoreApplication::processEvents();

    EXPECT_LT(painted.take(), 0.3);
}

TEST_F(ChatTranscriptPaintTest, ReadingFurtherUpATextThatGrowsBelowPaintsNothing)
{
    fill(30);
    scrollTo(0);
    rest();
    QCoreApplication::processEvents();
    PaintedShare painted(*m_view.viewport());

    grow(29, " word");
    QCoreApplication::processEvents();

    EXPECT_EQ(painted.take(), 0);
}

TEST_F(ChatTranscriptPaintTest, TheScreenIsRightWhateverChanges)
{
    fill(12);
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("filling"));
    for (const char* piece : {" word", " and more words until the line is full and breaks into two",
                              "\n\n", "next", "\n- item", "\n- item\n", "\n```cpp\nint a;",
                              "\nint b;\n```\n", "\n| a | b |\n", "|-|-|\n| 1 | 2 |\n", "\nend"}) {
        grow(11, piece);
        ASSERT_NO_FATAL_FAILURE(expectScreenIsRight(piece));
    }
    m_view.setWorkingRow(ChatWorkingRow{ChatWorkingRow::Kind::Busy, "Thinking…"});
    m_view.flush();
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("the working row came"));
    grow(11, "\n\nabove it");
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("text above the working row"));
    add(message("call", ChatRole::Assistant, {bash("t", "out\nput")}));
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("a call"));
    m_view.toggle("t");
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("the call was opened"));
    m_view.setWorkingRow(std::nullopt);
    m_view.flush();
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("the working row went"));

    scrollTo(bar().maximum() - 37);
    rest();
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("scrolling up"));
    grow(3, "\n\nfar above");
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("text out of view grew"));
    grow(11, "\n\nin view or below");
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("text in view grew"));
    m_view.scrollToBottom();
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("going back to the end"));
    m_view.resize(460, 380);
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("another size"));
    ChatTranscript history;
    history.append(reply("h", "earlier"));
    m_view.transcriptChanged(m_transcript.prepend(history));
    m_view.flush();
    ASSERT_NO_FATAL_FAILURE(expectScreenIsRight("history came"));
}
