#include "Terminals/PanelSnapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

const QString Session = "3f2504e0-4f89-41d3-9a0c-0305e82c3301";

PanelSnapshot everything()
{
    PaneSnapshot chat;
    chat.claudeSessionId = Session;
    chat.directory = "/p/“x”";
    chat.name = "Review";
    chat.style = PaneStyle{"default", "Fira Code", 15.5};
    PaneSnapshot shell;
    shell.kind = PaneKind::Shell;
    shell.directory = "/p";
    shell.scrollback = "one\ntwo";
    PaneSnapshot claude;
    claude.kind = PaneKind::Claude;
    claude.directory = "/p";
    return {true, 0.3, 1, {{{shell}, 0, std::nullopt}, {{chat, claude}, 1, "Two"}}};
}

/// A snapshot of one pane, with a member replaced or, for an undefined value, left out.
QByteArray with(const QString& level, const QString& key, const QJsonValue& value)
{
    QJsonObject pane{{"kind", "chat"}, {"directory", "/p"}};
    QJsonObject group{{"focusedIndex", 0}};
    QJsonObject panel{{"isVisible", true}, {"editorFraction", 0.5}, {"activeGroupIndex", 0}};
    const auto put = [&](QJsonObject& object, const QString& name) {
        if (level == name)
            object.insert(key, value);
    };
    put(pane, "pane");
    group.insert("panes", QJsonArray{pane});
    put(group, "group");
    panel.insert("groups", QJsonArray{group});
    put(panel, "panel");
    return QJsonDocument(panel).toJson();
}

} // namespace

TEST(PanelSnapshot, WhatWasEncodedIsDecodedUnchanged)
{
    EXPECT_EQ(PanelSnapshot::decode(everything().encode()), everything());
    EXPECT_EQ(PanelSnapshot::decode(PanelSnapshot{}.encode()), PanelSnapshot{});
}

TEST(PanelSnapshot, HasTheKeysOfTheFileAndLeavesOutWhatThereIsNot)
{
    const QJsonObject panel = QJsonDocument::fromJson(everything().encode()).object();

    EXPECT_EQ(panel.keys(),
              QStringList({"activeGroupIndex", "editorFraction", "groups", "isVisible"}));
    const QJsonObject group = panel["groups"][1].toObject();
    EXPECT_EQ(group.keys(), QStringList({"focusedIndex", "name", "panes"}));
    const QJsonObject chat = group["panes"][0].toObject();
    EXPECT_EQ(chat.keys(), QStringList({"claudeSessionID", "directory", "kind", "name", "style"}));
    EXPECT_EQ(chat["claudeSessionID"].toString(), Session.toUpper());
    EXPECT_EQ(chat["kind"].toString(), "chat");
    EXPECT_EQ(panel["groups"][0]["panes"][0].toObject().keys(),
              QStringList({"directory", "kind", "scrollback"}));
}

TEST(PanelSnapshot, APanelWithoutGroupsIsWrittenInFull)
{
    const QByteArray json = PanelSnapshot{}.encode();

    EXPECT_TRUE(json.contains("\"isVisible\":false")) << json.toStdString();
    EXPECT_TRUE(json.contains("\"groups\":[]")) << json.toStdString();
    EXPECT_FALSE(json.contains('\n'));
}

TEST(PanelSnapshot, AKeyThatIsMissingOrOfAnotherTypeCostsTheWhole)
{
    struct Case {
        const char* name;
        QByteArray json;
    };
    const Case cases[] = {
        {"nothing", ""},
        {"no object", "[]"},
        {"cut off", everything().encode().chopped(1)},
        {"no visibility", with("panel", "isVisible", QJsonValue::Undefined)},
        {"visibility as a number", with("panel", "isVisible", 1)},
        {"no fraction", with("panel", "editorFraction", QJsonValue::Undefined)},
        {"no active group", with("panel", "activeGroupIndex", QJsonValue::Undefined)},
        {"half an index", with("panel", "activeGroupIndex", 0.5)},
        {"an index as text", with("panel", "activeGroupIndex", "0")},
        {"groups as an object", with("panel", "groups", QJsonObject())},
        {"a group as text", with("panel", "groups", QJsonArray{"x"})},
        {"no panes", with("group", "panes", QJsonValue::Undefined)},
        {"no focused pane", with("group", "focusedIndex", QJsonValue::Undefined)},
        {"a group's name as a number", with("group", "name", 7)},
        {"no kind", with("pane", "kind", QJsonValue::Undefined)},
        {"an unknown kind", with("pane", "kind", "whiteboard")},
        {"no directory", with("pane", "directory", QJsonValue::Undefined)},
        {"a session that is no UUID", with("pane", "claudeSessionID", "x")},
        {"a session in braces", with("pane", "claudeSessionID", "{" + Session + "}")},
        {"a style as text", with("pane", "style", "default")},
        {"scrollback as an array", with("pane", "scrollback", QJsonArray())},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        EXPECT_FALSE(PanelSnapshot::decode(each.json));
    }
}

TEST(PanelSnapshot, ANewKeyOrANullInPlaceOfAnOptionalOneIsNoFailure)
{
    EXPECT_TRUE(PanelSnapshot::decode(with("panel", "later", "x")));
    EXPECT_TRUE(PanelSnapshot::decode(with("pane", "later", 1)));
    EXPECT_TRUE(PanelSnapshot::decode(with("pane", "name", QJsonValue::Null)));
    EXPECT_TRUE(PanelSnapshot::decode(with("pane", "claudeSessionID", QJsonValue::Null)));
}

TEST(PanelSnapshot, ASessionIsReadInEitherCase)
{
    for (const QString& spelled : {Session, Session.toUpper()}) {
        const auto panel = PanelSnapshot::decode(with("pane", "claudeSessionID", spelled));
        ASSERT_TRUE(panel);
        EXPECT_EQ(panel->groups.at(0).panes.at(0).claudeSessionId, Session);
    }
}

TEST(PanelSnapshot, AnIndexBeyondAnyGroupIsHeldWithinWhatANumberCanCarry)
{
    EXPECT_EQ(PanelSnapshot::decode(with("panel", "activeGroupIndex", 1e300))->activeGroupIndex,
              2147483647);
    EXPECT_EQ(PanelSnapshot::decode(with("panel", "activeGroupIndex", -1e300))->activeGroupIndex,
              -2147483647 - 1);
}

TEST(PanelSnapshot, DeepNestingIsRefusedAndNotFollowed)
{
    EXPECT_FALSE(PanelSnapshot::decode(QByteArray(100000, '[')));
    EXPECT_FALSE(PanelSnapshot::decode(QByteArray("{\"groups\":").repeated(50000)));
}
