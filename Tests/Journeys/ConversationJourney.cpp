#include "Tests/Journeys/DesktopSession.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

using namespace Bralto::Journeys;

namespace {

/// The lines of the only stored conversation.
QList<QJsonObject> conversation(const DesktopSession& desktop)
{
    QList<QJsonObject> lines;
    const QStringList files = desktop.conversations();
    if (files.size() != 1)
        return lines;
    for (const QByteArray& line : DesktopSession::read(files.first()).split('\n')) {
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        if (!object.isEmpty())
            lines.append(object);
    }
    return lines;
}

/// Whether a stored line of `type` holds `text` anywhere.
bool holds(const DesktopSession& desktop, const QString& type, const QString& text)
{
    for (const QJsonObject& line : conversation(desktop)) {
        if (line["type"].toString() == type && QJsonDocument(line).toJson().contains(text.toUtf8()))
            return true;
    }
    return false;
}

struct ConversationJourney : testing::Test {
    void SetUp() override
    {
        ASSERT_TRUE(desktop.isReady()) << "no X server or window manager";
        desktop.useDemoAgent();
        ASSERT_TRUE(desktop.openProject());
    }

    DesktopSession desktop;
};

} // namespace

TEST_F(ConversationJourney, ATurnIsAnsweredAndAWriteIsAllowedByAKey)
{
    desktop.press("ctrl+alt+j");
    desktop.type("hello");
    desktop.press("Return");
    ASSERT_TRUE(DesktopSession::waitFor([&] { return holds(desktop, "assistant", "tidal api"); }));
    desktop.picture("greeting");

    desktop.type("write notes.txt high water at noon");
    desktop.press("Return");
    const QString notes = desktop.project() + "/notes.txt";
    ASSERT_TRUE(DesktopSession::waitFor([&] { return holds(desktop, "assistant", "notes.txt"); }));
    EXPECT_FALSE(QFile::exists(notes)) << "written before it was allowed";
    desktop.picture("permission");
    // The card may come a moment after the line was stored. Until then Return does nothing.
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        desktop.press("Return");
        return QFile::exists(notes);
    }));
    EXPECT_TRUE(DesktopSession::waitFor(
        [&] { return DesktopSession::read(notes).contains("high water at noon"); }));
    desktop.picture("written");
}

TEST_F(ConversationJourney, EscInterruptsAndTheNextTurnGoesOn)
{
    desktop.press("ctrl+alt+j");
    desktop.type("count 5000");
    desktop.press("Return");
    ASSERT_TRUE(DesktopSession::waitFor([&] { return holds(desktop, "user", "count 5000"); }));
    desktop.picture("counting");

    ASSERT_TRUE(DesktopSession::waitFor([&] {
        desktop.press("Escape");
        return holds(desktop, "user", "[Request interrupted by user");
    }));
    desktop.type("hello again");
    desktop.press("Return");

    EXPECT_TRUE(DesktopSession::waitFor([&] { return holds(desktop, "user", "hello again"); }));
    desktop.picture("after-interrupt");
}

TEST_F(ConversationJourney, AQuestionIsAnsweredWithKeys)
{
    desktop.press("ctrl+alt+j");
    desktop.type("ask me");
    desktop.press("Return");
    ASSERT_TRUE(
        DesktopSession::waitFor([&] { return holds(desktop, "assistant", "AskUserQuestion"); }));
    desktop.picture("question");

    // The first question has one choice, the second several: a digit picks, Return on the last row
    // goes on.
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        desktop.press("1");
        desktop.press("Up");
        desktop.press("Return");
        return holds(desktop, "user", "tool_result");
    }));
    desktop.picture("answered");
}

TEST_F(ConversationJourney, ClosingAndOpeningAgainBringsTheConversationBack)
{
    desktop.press("ctrl+alt+j");
    desktop.type("hello");
    desktop.press("Return");
    ASSERT_TRUE(DesktopSession::waitFor([&] { return holds(desktop, "assistant", "tidal api"); }));

    ASSERT_TRUE(desktop.quit());
    ASSERT_TRUE(desktop.openProject());
    desktop.picture("restored");
    desktop.type("still there?");
    desktop.press("Return");

    // The same file goes on: the new process resumed the conversation.
    EXPECT_TRUE(DesktopSession::waitFor([&] { return holds(desktop, "user", "still there?"); }));
    EXPECT_TRUE(holds(desktop, "user", "hello"));
    EXPECT_EQ(desktop.conversations().size(), 1);
}

TEST_F(ConversationJourney, NothingOfTheAgentOutlivesAKilledProgram)
{
    desktop.press("ctrl+alt+j");
    desktop.type("run sleep 4321");
    desktop.press("Return");
    const auto sleeping = [] {
        QProcess search;
        search.start("pgrep", {"-f", "^sleep 4321"});
        search.waitForFinished(5000);
        return !search.readAllStandardOutput().trimmed().isEmpty();
    };
    ASSERT_TRUE(DesktopSession::waitFor([&] {
        desktop.press("Return");
        return sleeping();
    }));

    desktop.killProgram();

    EXPECT_TRUE(DesktopSession::waitFor([&] { return !sleeping(); }));
}
