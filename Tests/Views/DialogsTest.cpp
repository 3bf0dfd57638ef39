#include "Views/Dialogs/AlertDialog.h"
#include "Views/Dialogs/DialogsView.h"
#include "Views/Dialogs/OpenDialog.h"
#include "Views/Dialogs/PromptDialog.h"
#include "Views/Kit/Field.h"
#include "Views/Kit/FloatShadow.h"
#include "Views/Kit/TextButton.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

struct DialogsTest : testing::Test {
    /// Lets `act` happen once a card is open.
    template <typename Act>
    void whenOpen(Act act)
    {
        QTimer::singleShot(0, qApp, [act] { act(QApplication::activeModalWidget()); });
    }

    const Alert unsaved{.title = "Couldn’t save a.cpp",
                        .text = "The disk is full.",
                        .buttons = {"Keep Editing", "Discard Changes"},
                        .lastIsDestructive = true};
    const TextPrompt rename{
        .title = "Rename", .message = {}, .placeholder = {}, .initial = "a.cpp"};
    const TextPrompt newFile{
        .title = "New File", .message = "Name the file.", .placeholder = "Name", .initial = {}};
    Theme theme{{.dark = true, .reducedMotion = true}};
    DialogsView dialogs{theme};
};

} // namespace

TEST_F(DialogsTest, ReturnTakesTheFirstChoice)
{
    whenOpen([](QWidget* card) { QTest::keyClick(card, Qt::Key_Return); });
    EXPECT_EQ(dialogs.show(unsaved), 0);
}

TEST_F(DialogsTest, EscapeIsTheFirstChoice)
{
    whenOpen([](QWidget* card) { QTest::keyClick(card, Qt::Key_Escape); });
    EXPECT_EQ(dialogs.show(unsaved), 0);
}

TEST_F(DialogsTest, AButtonTellsWhichItIs)
{
    whenOpen([](QWidget* card) {
        auto* alert = dynamic_cast<AlertDialog*>(card);
        QTest::mouseClick(alert->buttons()[1], Qt::LeftButton);
    });
    EXPECT_EQ(dialogs.show(unsaved), 1);
}

TEST_F(DialogsTest, TheKeyboardReachesTheSecondChoice)
{
    whenOpen([](QWidget* card) {
        auto* alert = dynamic_cast<AlertDialog*>(card);
        alert->buttons()[1]->setFocus(Qt::TabFocusReason);
        QTest::keyClick(alert->buttons()[1], Qt::Key_Return);
    });
    EXPECT_EQ(dialogs.show(unsaved), 1);
}

TEST_F(DialogsTest, TheFirstChoiceStandsAtTheRight)
{
    AlertDialog card(theme, unsaved, nullptr);
    card.show();

    EXPECT_GT(card.buttons()[0]->x(), card.buttons()[1]->x());
    EXPECT_TRUE(card.buttons()[0]->isDefault());
    EXPECT_FALSE(card.buttons()[1]->isDefault());
}

TEST_F(DialogsTest, WhereNothingCanBeSeenThroughACardIsCutToItsPanel)
{
    AlertDialog floating(theme, unsaved, nullptr);
    floating.show();
    EXPECT_TRUE(floating.mask().isEmpty());

    Theme plain{{.dark = true, .reducedMotion = true, .composited = false}};
    AlertDialog cut(plain, unsaved, nullptr);
    cut.show();

    const QRect panel = cut.mask().boundingRect();
    const int margin = Float::ShadowMargin - 1;
    EXPECT_EQ(panel, cut.rect().adjusted(margin, margin, -margin, -margin));
    EXPECT_FALSE(cut.mask().contains(panel.topLeft())) << "the corners are round";
}

TEST_F(DialogsTest, WordsFromOutsideAreNeverMarkup)
{
    AlertDialog card(theme, {.title = "<b>bold</b>", .text = "<img src=x>"}, nullptr);

    for (const QLabel* label : card.findChildren<QLabel*>())
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
}

TEST_F(DialogsTest, AnEndlessTextIsCut)
{
    AlertDialog card(theme, {.title = "Title", .text = QString(200'000, 'x')}, nullptr);
    for (const QLabel* label : card.findChildren<QLabel*>())
        EXPECT_LE(label->text().size(), 900);
}

TEST_F(DialogsTest, ThePromptGivesTheTrimmedText)
{
    whenOpen([](QWidget* card) {
        auto* prompt = dynamic_cast<PromptDialog*>(card);
        EXPECT_EQ(prompt->confirm().text(), "Create");
        EXPECT_EQ(prompt->cancel().text(), "Cancel");
        prompt->field().setText("  notes.md ");
        QTest::keyClick(&prompt->field(), Qt::Key_Return);
    });
    EXPECT_EQ(dialogs.text(newFile), "notes.md");
}

TEST_F(DialogsTest, EscapeCancelsAPrompt)
{
    whenOpen([](QWidget* card) {
        auto* prompt = dynamic_cast<PromptDialog*>(card);
        prompt->field().setText("notes.md");
        QTest::keyClick(&prompt->field(), Qt::Key_Escape);
    });
    EXPECT_EQ(dialogs.text(newFile), std::nullopt);
}

TEST_F(DialogsTest, AnEmptyTextIsNone)
{
    whenOpen([](QWidget* card) {
        auto* prompt = dynamic_cast<PromptDialog*>(card);
        prompt->field().setText("   ");
        QTest::mouseClick(&prompt->confirm(), Qt::LeftButton);
    });
    EXPECT_EQ(dialogs.text(newFile), std::nullopt);
}

TEST_F(DialogsTest, ARenameSelectsTheNameWithoutItsExtension)
{
    PromptDialog prompt(theme, rename, nullptr);

    EXPECT_EQ(prompt.confirm().text(), "Rename");
    EXPECT_EQ(prompt.field().text(), "a.cpp");
    EXPECT_EQ(prompt.field().selectedText(), "a");
}

TEST_F(DialogsTest, WhatHasNoExtensionIsSelectedWhole)
{
    EXPECT_EQ(PromptDialog::lengthWithoutExtension("notes"), 5);
    EXPECT_EQ(PromptDialog::lengthWithoutExtension(".gitignore"), 10);
    EXPECT_EQ(PromptDialog::lengthWithoutExtension("a.tar.gz"), 5);
    EXPECT_EQ(PromptDialog::lengthWithoutExtension(""), 0);
}

TEST_F(DialogsTest, TheFieldHasTheKeyboardAtOnce)
{
    bool hadFocus = false;
    whenOpen([&hadFocus](QWidget* card) {
        auto* prompt = dynamic_cast<PromptDialog*>(card);
        hadFocus = card->focusWidget() == &prompt->field();
        prompt->reject();
    });
    EXPECT_EQ(dialogs.text(newFile), std::nullopt);
    EXPECT_TRUE(hadFocus);
}

TEST_F(DialogsTest, OpeningTakesAMarkedFolder)
{
    const QTemporaryDir home;
    QDir(home.path()).mkpath("tidal-api");
    OpenDialog dialog(theme, home.path(), nullptr);
    dialog.show();

    dialog.selectFile(home.path() + "/tidal-api");
    QMetaObject::invokeMethod(&dialog, "accept");

    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.path(), home.path() + "/tidal-api");
}
