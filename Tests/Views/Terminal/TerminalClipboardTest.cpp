#include "Views/Terminal/TerminalClipboard.h"
#include "Tests/Support/TerminalInputHarness.h"
#include "Views/Kit/TextButton.h"
#include "Views/Terminal/PasteCard.h"

#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct TerminalClipboardTest : testing::Test, TerminalInputHarness {
    static QClipboard& clipboard() { return *QGuiApplication::clipboard(); }
    void select(int fromCol, int fromRow, int toCol, int toRow)
    {
        using Kovalt::CellSide;
        session.selection().start(Kovalt::SelectionMode::Character,
                                  {{fromCol, fromRow}, CellSide::Left});
        session.selection().extend({{toCol, toRow}, CellSide::Left});
    }
    QString html() { return TerminalClipboard::html(session.terminal(), session.selection()); }
    PasteCard* card() const { return view->findChild<PasteCard*>(); }
    bool asks() const { return card() && card()->isVisible(); }
    void type(int typed) const { QTest::keyClick(card(), Qt::Key(typed)); }
};

} // namespace

TEST_F(TerminalClipboardTest, CopyKeepsTheSelection)
{
    write("hello world");
    EXPECT_FALSE(input().canCopy());
    select(0, 0, 5, 0);
    EXPECT_TRUE(input().canCopy());

    key(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);

    EXPECT_EQ(clipboard().text(), "hello");
    EXPECT_EQ(selectedText(), "hello");
    EXPECT_EQ(sent(), "");
}

TEST_F(TerminalClipboardTest, NothingSelectedLeavesTheClipboard)
{
    clipboard().setText("kept");

    input().copy();

    EXPECT_EQ(clipboard().text(), "kept");
}

TEST_F(TerminalClipboardTest, ACopyHasTheLooksOfItsCells)
{
    write("a\033[1;38;2;255;0;0mb<\033[0;4;48;2;0;0;255mc\033[0md");
    select(0, 0, 5, 0);

    const QString text = html();

    EXPECT_TRUE(text.contains("a<span style=\"color:#ff0000;font-weight:bold;\">b&lt;</span>"));
    EXPECT_TRUE(text.contains(
        "<span style=\"background-color:#0000ff;text-decoration:underline;\">c</span>d</pre>"));
    input().copy();
    EXPECT_EQ(clipboard().mimeData()->html(), text);
}

TEST_F(TerminalClipboardTest, RichTextHasTheLinesOfThePlainOne)
{
    write("one  \r\n" + std::string(45, 'x') + "\r\n宽z");
    select(0, 0, 3, 3);

    const QString text = html();
    const QString inside = text.mid(text.indexOf('>') + 1).chopped(6);

    EXPECT_EQ(inside.toStdString(), selectedText());
    EXPECT_EQ(inside, "one\n" + QString(45, 'x') + "\n宽z");
}

TEST_F(TerminalClipboardTest, WhatCantBeSeenIsNotCopiedAsRichText)
{
    write("a\033[8msecret\033[0mb");
    select(0, 0, 8, 0);

    EXPECT_FALSE(html().contains("secret"));
}

TEST_F(TerminalClipboardTest, AHugeSelectionIsCopiedAsPlainText)
{
    writeLines(TerminalClipboard::MostRichRows + 10);
    input().selectAll();

    input().copy();

    EXPECT_FALSE(clipboard().mimeData()->hasHtml());
    EXPECT_TRUE(clipboard().text().startsWith("1\n2\n"));
}

TEST_F(TerminalClipboardTest, OneLineIsPastedAtOnce)
{
    clipboard().setText("echo hi");

    key(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);

    EXPECT_EQ(sent(), "echo hi");
    EXPECT_FALSE(asks());
}

TEST_F(TerminalClipboardTest, LinesForAShellThatCantTellAreAskedFor)
{
    clipboard().setText("rm a\nrm b\n");

    input().paste();
    ASSERT_TRUE(asks());
    EXPECT_EQ(card()->accessibleName(), "Paste 2 lines and run them?");
    EXPECT_TRUE(card()->hasFocus());
    EXPECT_EQ(sent(), "");

    type(Qt::Key_Return);
    EXPECT_EQ(sent(), "rm a\rrm b\r");
    settle();
    EXPECT_FALSE(asks());
    EXPECT_TRUE(view->hasFocus());
}

TEST_F(TerminalClipboardTest, EscapePastesNothing)
{
    clipboard().setText("rm a\nrm b");
    input().paste();

    type(Qt::Key_Escape);

    EXPECT_EQ(sent(), "");
    settle();
    EXPECT_FALSE(asks());
    EXPECT_TRUE(view->hasFocus());
}

TEST_F(TerminalClipboardTest, ThePointerAnswersTheCardToo)
{
    clipboard().setText("a\nb");
    const auto press = [this](const QString& words) {
        for (TextButton* const button : card()->findChildren<TextButton*>()) {
            if (button->text() == words)
                QTest::mouseClick(button, Qt::LeftButton);
        }
        settle();
    };

    input().paste();
    press("Cancel");
    EXPECT_EQ(sent(), "");
    EXPECT_FALSE(asks());

    input().paste();
    press("Paste");
    EXPECT_EQ(sent(), "a\rb");
    EXPECT_FALSE(asks());
}

TEST_F(TerminalClipboardTest, AProgramThatCanTellIsNotAskedAbout)
{
    clipboard().setText("a\nb");

    write("\033[?2004h");
    input().paste();
    EXPECT_EQ(sent(), "\x1b[200~a\rb\x1b[201~");

    write("\033[?2004l\033[?1049h");
    input().paste();
    EXPECT_EQ(sent(), "a\rb");
    EXPECT_FALSE(asks());
}

TEST(PasteCard, ShowsTheFirstLinesAndHowManyFollow)
{
    EXPECT_EQ(PasteCard::lineCount("a"), 1);
    EXPECT_EQ(PasteCard::lineCount("a\r\nb\rc\n"), 3);
    EXPECT_EQ(PasteCard::lineCount("\n"), 1);
    EXPECT_EQ(PasteCard::preview("a\n\tb"), (QStringList{"a", " b"}));
    EXPECT_EQ(PasteCard::preview("1\n2\n3\n4\n5"), (QStringList{"1", "2", "3", "4", "5"}));
    EXPECT_EQ(PasteCard::preview("1\n2\n3\n4\n5\n6\n7"),
              (QStringList{"1", "2", "3", "4", "and 3 more lines"}));
}

TEST_F(TerminalClipboardTest, AHugePasteTakesTheInterfaceNoTimeToSpeakOf)
{
    write("\033[?2004h");
    clipboard().setText(QString(4 << 20, 'x'));

    input().paste();

    EXPECT_EQ(sent().size(), (4U << 20) + 12);
}

TEST_F(TerminalClipboardTest, APictureIsPastedIntoAnAgentAsAFile)
{
    TerminalSession agent({PaneKind::Claude, "/", "/", std::nullopt}, panes.sessionServices());
    FakePaneProcess& process = panes.process();
    TerminalView agentView(services, agent);
    process.sent.clear();
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(Qt::red);
    clipboard().setImage(picture);

    agentView.input().paste();

    ASSERT_TRUE(QTest::qWaitFor([&] { return !process.sent.empty(); }));
    const QString text = QString::fromStdString(process.sent);
    ASSERT_TRUE(text.endsWith(".png ")) << process.sent;
    EXPECT_EQ(QImage(text.trimmed()).pixelColor(1, 1), QColor(Qt::red));
    EXPECT_EQ(QImage(text.trimmed()).size(), picture.size());
}

TEST_F(TerminalClipboardTest, APictureIsNothingForAShellAndTextGoesFirst)
{
    QImage picture(3, 2, QImage::Format_RGB32);
    QMimeData data;
    data.setImageData(picture);
    EXPECT_FALSE(TerminalClipboard::content(data, PaneKind::Shell));
    EXPECT_TRUE(TerminalClipboard::content(data, PaneKind::Claude));

    data.setText("cells");
    EXPECT_EQ(TerminalClipboard::content(data, PaneKind::Claude),
              TerminalClipboard::Content(QString("cells")));
}

TEST_F(TerminalClipboardTest, CopiedFilesArePastedAsTheirPaths)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile("/tmp/a b")});
    data.setText("file:///tmp/a%20b");

    EXPECT_EQ(TerminalClipboard::content(data, PaneKind::Shell),
              TerminalClipboard::Content(QString("'/tmp/a b' ")));
}

TEST_F(TerminalClipboardTest, AProgramMayFillTheClipboard)
{
    write("\033]52;c;aGVsbG8=\033\\");

    EXPECT_EQ(clipboard().text(), "hello");
}

TEST_F(TerminalClipboardTest, TheMiddleButtonAndShiftInsertPasteWhatWasSelected)
{
    const bool supported = clipboard().supportsSelection();
    clipboard().setText("primary", supported ? QClipboard::Selection : QClipboard::Clipboard);

    QTest::mouseClick(view.get(), Qt::MiddleButton, {}, at(3, 3));
    EXPECT_EQ(sent(), "primary");
    key(Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(sent(), "primary");
}
