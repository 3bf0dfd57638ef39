#include "Tests/Support/TerminalInputHarness.h"
#include "Views/Terminal/TerminalChords.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct TerminalInputTest : testing::Test, TerminalInputHarness {
    void compose(const QString& preedit, const QString& commit = {})
    {
        QInputMethodEvent event(preedit, {{QInputMethodEvent::Cursor, 1, 1, {}}});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(view.get(), &event);
    }
    int top() const { return buffer().yDisp; }
};

TerminalKeyPress chord(int key, Qt::KeyboardModifiers modifiers,
                       const KeyboardLayout::Symbols& symbols = {})
{
    TerminalKeyPress press;
    press.key = key;
    press.modifiers = modifiers;
    press.symbols = symbols;
    return press;
}

constexpr auto Ctrl = Qt::ControlModifier;
constexpr auto Shift = Qt::ShiftModifier;

} // namespace

TEST_F(TerminalInputTest, TypedTextAndChordsReachTheProgram)
{
    QTest::keyClicks(view.get(), "ls");
    key(Qt::Key_Return);
    EXPECT_EQ(sent(), "ls\r");

    for (const auto letter : {Qt::Key_A, Qt::Key_C, Qt::Key_W, Qt::Key_K, Qt::Key_R, Qt::Key_V})
        key(letter, Ctrl);
    EXPECT_EQ(sent(), "\x01\x03\x17\x0b\x12\x16");

    key(Qt::Key_Escape);
    key(Qt::Key_Tab);
    key(Qt::Key_Backtab, Shift);
    key(Qt::Key_F, Qt::AltModifier);
    EXPECT_EQ(sent(), "\x1b\t\x1b[Z\x1b"
                      "f");
}

TEST_F(TerminalInputTest, TheProgramsModesChangeWhatKeysSend)
{
    write("\033[?1h");
    key(Qt::Key_Up);
    EXPECT_EQ(sent(), "\x1bOA");

    write("\033[>1u");
    key(Qt::Key_Return, Shift);
    EXPECT_EQ(sent(), "\x1b[13;2u");
}

TEST_F(TerminalInputTest, AReleaseIsToldOnlyAfterItsPress)
{
    write("\033[>11u");
    key(Qt::Key_A);
    EXPECT_EQ(sent(), "\x1b[97u\x1b[97;1:3u");

    QTest::keyRelease(view.get(), Qt::Key_A);
    EXPECT_EQ(sent(), "");
}

TEST_F(TerminalInputTest, TypingGoesBackToTheEndAndDropsTheSelection)
{
    writeLines(50);
    input().selectAll();
    input().scrollToTop();
    ASSERT_EQ(top(), 0);

    key(Qt::Key_A);

    EXPECT_EQ(top(), buffer().yBase);
    EXPECT_EQ(selectedText(), "");
}

TEST_F(TerminalInputTest, AModifierAloneMovesNothing)
{
    writeLines(50);
    input().scrollToTop();
    write("\033[>8u");

    key(Qt::Key_Shift);

    EXPECT_EQ(top(), 0);
}

TEST_F(TerminalInputTest, TheHistoryIsScrolledByItsChords)
{
    writeLines(50);
    const int end = buffer().yBase;

    key(Qt::Key_PageUp, Shift);
    EXPECT_EQ(top(), end - 10);
    key(Qt::Key_Home, Shift);
    EXPECT_EQ(top(), 0);
    key(Qt::Key_PageDown, Shift);
    EXPECT_EQ(top(), 10);
    key(Qt::Key_End, Shift);
    EXPECT_EQ(top(), end);
    EXPECT_EQ(sent(), "");
}

TEST_F(TerminalInputTest, WithoutAHistoryTheProgramGetsThem)
{
    write("\033[?1049h");

    key(Qt::Key_PageUp, Shift);
    key(Qt::Key_Up, Ctrl | Shift);

    EXPECT_EQ(sent(), "\x1b[5;2~\x1b[1;6A");
}

TEST_F(TerminalInputTest, PromptsAreJumpedTo)
{
    for (const char* const name : {"one", "two", "three"}) {
        write(std::string("\033]133;A\033\\") + name + "\033]133;B\033\\\r\n\033]133;C\033\\");
        writeLines(20);
    }

    key(Qt::Key_Up, Ctrl | Shift);
    EXPECT_EQ(top(), 42);
    key(Qt::Key_Up, Ctrl | Shift);
    key(Qt::Key_Up, Ctrl | Shift);
    EXPECT_EQ(top(), 0);
    key(Qt::Key_Down, Ctrl | Shift);
    EXPECT_EQ(top(), 21);
    key(Qt::Key_Down, Ctrl | Shift);
    key(Qt::Key_Down, Ctrl | Shift);
    EXPECT_EQ(top(), buffer().yBase);
}

TEST_F(TerminalInputTest, WhatAnInputMethodCommitsIsTyped)
{
    compose("に");
    EXPECT_EQ(sent(), "");
    key(Qt::Key_Return);
    EXPECT_EQ(sent(), "") << "while it composes, keys are its own";

    compose("", "日本");
    EXPECT_EQ(sent(), "日本");
    key(Qt::Key_Return);
    EXPECT_EQ(sent(), "\r");
}

TEST_F(TerminalInputTest, AnInputMethodIsToldWhereTheCursorIs)
{
    write("\033[3;5H");

    const QRect cursor = view->inputMethodQuery(Qt::ImCursorRectangle).toRect();

    EXPECT_EQ(cursor, view->geometryOfCells().rect(4, 2).toAlignedRect());
    EXPECT_TRUE(view->inputMethodQuery(Qt::ImEnabled).toBool());
    EXPECT_EQ(view->inputMethodQuery(Qt::ImSurroundingText).toString(), "");
}

TEST_F(TerminalInputTest, FocusIsToldToAProgramThatAsks)
{
    write("\033[?1004h");
    sent();

    view->clearFocus();
    EXPECT_EQ(sent(), "\x1b[O");
    view->setFocus();
    EXPECT_EQ(sent(), "\x1b[I");
}

TEST_F(TerminalInputTest, AMenuIsAskedForUnlessTheProgramHasThePointer)
{
    const QSignalSpy asked(&input(), &TerminalInput::contextMenuRequested);
    const auto ask = [this](Qt::KeyboardModifiers held) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, {50, 50}, {150, 150}, held);
        QCoreApplication::sendEvent(view.get(), &event);
    };

    ask({});
    ASSERT_EQ(asked.count(), 1);
    EXPECT_EQ(asked[0][0].toPoint(), QPoint(150, 150));

    write("\033[?1000h");
    ask({});
    EXPECT_EQ(asked.count(), 1);
    ask(Qt::ShiftModifier);
    EXPECT_EQ(asked.count(), 2);
}

TEST_F(TerminalInputTest, DroppedFilesArePastedAsWordsForAShell)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile("/a b.txt"), QUrl::fromLocalFile("/it's")});
    QDragEnterEvent enter({50, 50}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(view.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(50, 50), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});

    QCoreApplication::sendEvent(view.get(), &drop);

    EXPECT_EQ(sent(), "'/a b.txt' '/it'\\''s' ");
    EXPECT_TRUE(drop.isAccepted());
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction) << "the files stay where they are";
}

TEST_F(TerminalInputTest, AShortcutOfTheWindowTakesOnlyTheChordsOfTerminals)
{
    QAction plain;
    QAction shifted;
    plain.setShortcut(QKeySequence("Ctrl+W"));
    shifted.setShortcut(QKeySequence("Ctrl+Shift+W"));
    view->addActions({&plain, &shifted});
    const QSignalSpy plainRun(&plain, &QAction::triggered);
    const QSignalSpy shiftedRun(&shifted, &QAction::triggered);

    key(Qt::Key_W, Ctrl);
    EXPECT_EQ(plainRun.count(), 0);
    EXPECT_EQ(sent(), "\x17");
    key(Qt::Key_W, Ctrl | Shift);
    EXPECT_EQ(shiftedRun.count(), 1);
    EXPECT_EQ(sent(), "");
}

TEST(TerminalChords, EveryChordOfTheTableIsKnown)
{
    for (const Shortcuts::Entry& entry : Shortcuts::all()) {
        const QKeySequence keys(QString(entry.terminalKeys), QKeySequence::PortableText);
        if (keys.isEmpty())
            continue;
        SCOPED_TRACE(entry.terminalKeys);
        EXPECT_EQ(TerminalChords::command(chord(keys[0].key(), keys[0].keyboardModifiers())),
                  entry.command);
    }
}

TEST(TerminalChords, NoPlainControlChordIsOne)
{
    for (int key = Qt::Key_A; key <= Qt::Key_Z; ++key) {
        EXPECT_FALSE(TerminalChords::command(chord(key, Ctrl)));
        EXPECT_FALSE(TerminalChords::command(chord(key, Qt::AltModifier)));
        EXPECT_FALSE(TerminalChords::command(chord(key, {})));
    }
    EXPECT_FALSE(TerminalChords::command(chord(Qt::Key_Backslash, Ctrl)));
    EXPECT_FALSE(TerminalChords::command(chord(Qt::Key_Space, Ctrl)));
    EXPECT_FALSE(TerminalChords::command(chord(Qt::Key_Underscore, Ctrl | Shift, {'-', '_', '-'})))
        << "not the zoom that is on the same key";
}

TEST(TerminalChords, ShiftMayBelongToTheSignOrToTheChord)
{
    using Shortcuts::Command;
    const KeyboardLayout::Symbols us{'\\', '|', '\\', '|'};
    const KeyboardLayout::Symbols german{'0', '=', '0', '='};

    EXPECT_EQ(TerminalChords::command(chord(Qt::Key_Bar, Ctrl | Shift, us)),
              Command::NewClaudeBeside);
    EXPECT_EQ(TerminalChords::command(chord(Qt::Key_Equal, Ctrl | Shift, german)), Command::ZoomIn);
    EXPECT_EQ(TerminalChords::command(chord(Qt::Key_Backtab, Ctrl | Shift)), Command::PreviousTab);
}

TEST(TerminalChords, WithoutLatinLettersThoseOfTheStandardLayoutCount)
{
    EXPECT_EQ(TerminalChords::command(chord(0x426, Ctrl | Shift, {U'ц', U'Ц', 'w', U'Ц'})),
              Shortcuts::Command::Close);
}
