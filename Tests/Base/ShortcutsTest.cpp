#include "Base/Shortcuts.h"

#include <QKeySequence>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace Bralto {
namespace {

using Shortcuts::Command;
using Shortcuts::Keyboard;
using Shortcuts::Switched;

TEST(Shortcuts, EveryChordIsThePortableTextOfOneKeySequence)
{
    for (const Shortcuts::Entry& entry : Shortcuts::all()) {
        for (const char* keys : {entry.keys, entry.terminalKeys}) {
            SCOPED_TRACE(keys);
            const QKeySequence sequence =
                QKeySequence::fromString(QString(keys), QKeySequence::PortableText);

            EXPECT_EQ(sequence.count(), *keys ? 1 : 0);
            EXPECT_EQ(sequence.toString(QKeySequence::PortableText), keys);
        }
    }
}

TEST(Shortcuts, NoChordHasTwoCommandsWhereverTheKeyboardIs)
{
    for (const Keyboard keyboard : {Keyboard::Elsewhere, Keyboard::InTerminal}) {
        QStringList seen;
        for (const Shortcuts::Entry& entry : Shortcuts::all()) {
            const QString keys = Shortcuts::keys(entry.command, keyboard);
            EXPECT_FALSE(!keys.isEmpty() && seen.contains(keys)) << keys.toStdString();
            seen.append(keys);
        }
    }
}

TEST(Shortcuts, InATerminalNoCommandTakesAChordThatAShellUses)
{
    const QRegularExpression plain("^Ctrl\\+[A-Z\\\\\\]\\[@^_]$");
    for (const Shortcuts::Entry& entry : Shortcuts::all()) {
        SCOPED_TRACE(entry.title);
        EXPECT_FALSE(plain.match(entry.terminalKeys).hasMatch()) << entry.terminalKeys;
    }
}

TEST(Shortcuts, InATerminalAPlainChordGetsShift)
{
    EXPECT_EQ(Shortcuts::keys(Command::Close, Keyboard::Elsewhere), "Ctrl+W");
    EXPECT_EQ(Shortcuts::keys(Command::Close, Keyboard::InTerminal), "Ctrl+Shift+W");
    EXPECT_EQ(Shortcuts::keys(Command::New, Keyboard::InTerminal), "Ctrl+Shift+N");
    EXPECT_EQ(Shortcuts::keys(Command::Copy, Keyboard::InTerminal), "Ctrl+Shift+C");
    EXPECT_EQ(Shortcuts::keys(Command::Paste, Keyboard::InTerminal), "Ctrl+Shift+V");
    EXPECT_EQ(Shortcuts::keys(Command::Find, Keyboard::InTerminal), "Ctrl+Shift+F");
}

TEST(Shortcuts, ATerminalHasCommandsOfItsOwn)
{
    EXPECT_EQ(Shortcuts::title(Command::PreviousPrompt), "Previous Prompt");
    EXPECT_EQ(Shortcuts::title(Command::NextPrompt), "Next Prompt");
    EXPECT_EQ(Shortcuts::keys(Command::PreviousPrompt, Keyboard::InTerminal), "Ctrl+Shift+Up");
    EXPECT_EQ(Shortcuts::keys(Command::NextPrompt, Keyboard::InTerminal), "Ctrl+Shift+Down");
    EXPECT_EQ(Shortcuts::keys(Command::ScrollPageUp, Keyboard::InTerminal), "Shift+PgUp");
    EXPECT_EQ(Shortcuts::keys(Command::ScrollToTop, Keyboard::InTerminal), "Shift+Home");
    EXPECT_EQ(Shortcuts::keys(Command::PasteSelection, Keyboard::InTerminal), "Shift+Ins");
    for (const Command command : {Command::PreviousPrompt, Command::NextPrompt,
                                  Command::ScrollPageUp, Command::ScrollToTop})
        EXPECT_EQ(Shortcuts::keys(command, Keyboard::Elsewhere), "");
}

TEST(Shortcuts, WhatIsReachableElsewhereIsReachableInATerminal)
{
    for (const Shortcuts::Entry& entry : Shortcuts::all()) {
        SCOPED_TRACE(entry.title);
        EXPECT_TRUE(!*entry.keys || *entry.terminalKeys);
    }
}

TEST(Shortcuts, ChordsThatMeanNothingToAShellAreTheSameEverywhere)
{
    for (const Command command : {Command::NextTab, Command::PreviousTab, Command::ZoomIn,
                                  Command::ZoomOut, Command::ActualSize, Command::Save})
        EXPECT_EQ(Shortcuts::keys(command, Keyboard::Elsewhere),
                  Shortcuts::keys(command, Keyboard::InTerminal));
}

TEST(Shortcuts, ASwitchIsTitledAfterWhatItWillDo)
{
    EXPECT_EQ(Shortcuts::title(Command::ToggleSidebar, Switched::On), "Hide Sidebar");
    EXPECT_EQ(Shortcuts::title(Command::ToggleSidebar, Switched::Off), "Show Sidebar");
    EXPECT_EQ(Shortcuts::title(Command::ToggleTerminalSize, Switched::On), "Restore Terminal Size");
    EXPECT_EQ(Shortcuts::title(Command::ToggleTerminalSize, Switched::Off), "Full-Height Terminal");
    EXPECT_EQ(Shortcuts::title(Command::ToggleChatView, Switched::On), "Show as Terminal");
    EXPECT_EQ(Shortcuts::title(Command::ToggleSplit, Switched::On), "Close Split View");
    EXPECT_EQ(Shortcuts::title(Command::NewFile, Switched::On), "New File…");
}

TEST(Shortcuts, AHintEndsWithTheChordThatWorksWhereTheKeyboardIs)
{
    EXPECT_EQ(Shortcuts::hint("Edit Space", Command::EditSpace), "Edit Space (Ctrl+Alt+,)");
    EXPECT_EQ(Shortcuts::hint("Close Pane", Command::Close, Keyboard::InTerminal),
              "Close Pane (Ctrl+Shift+W)");
    EXPECT_EQ(Shortcuts::hint("Style Pane", Command::StylePane), "Style Pane");
}

} // namespace
} // namespace Bralto
