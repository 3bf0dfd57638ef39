#include "Workspace/SessionStore.h"
#include "Tests/Support/MemoryDefaultsStore.h"
#include "Workspace/SharedMigration.h"

#include <gtest/gtest.h>

using namespace Bralto;

namespace {

using SessionStore::Session;

const QString Chat = "3f2504e0-4f89-41d3-9a0c-0305e82c3301";

struct SessionStoreTest : testing::Test {
    MemoryDefaultsStore shared;
};

/// A shared domain that is new, and what stood in the home application's own.
struct SharedMigrationTest : testing::Test {
    void migrate() { SharedMigration::migrateIfNeeded(shared, legacy); }

    MemoryDefaultsStore shared;
    MemoryDefaultsStore legacy;
};

} // namespace

// --- sessions

TEST_F(SessionStoreTest, WhatWasSavedIsLoadedForThatFolderOnly)
{
    const Session session{
        {"file:/p/a", "web:http://one.test/"}, "file:/p/a", "web:http://one.test/"};

    SessionStore::save(shared, session, "/p/");

    EXPECT_EQ(SessionStore::load(shared, "/p"), session);
    EXPECT_EQ(SessionStore::load(shared, "/q"), Session{});
    EXPECT_TRUE(shared.contains("session:/p"));
    EXPECT_EQ(shared.string("session:/p.split"), "web:http://one.test/");
}

TEST_F(SessionStoreTest, WhatIsAbsentLeavesNoKeyBehind)
{
    SessionStore::save(shared, {{"file:/p/a"}, "file:/p/a", "file:/p/a"}, "/p");
    SessionStore::save(shared, {}, "/p");

    EXPECT_EQ(shared.value("session:/p").toMap().keys(), QStringList({"tabs"}));
    EXPECT_FALSE(shared.contains("session:/p.split"));
}

TEST_F(SessionStoreTest, DamagedValuesAreLeftOutOneByOne)
{
    shared.set("session:/p",
               QVariantMap{{"tabs", QVariantList{7LL, "file:/p/a", true}}, {"active", 1LL}});
    shared.set("session:/p.split", 2.5);
    EXPECT_EQ(SessionStore::load(shared, "/p"), (Session{{"file:/p/a"}, {}, {}}));

    shared.set("session:/p", "no dictionary");
    EXPECT_EQ(SessionStore::load(shared, "/p"), Session{});
    shared.set("session:/p", QVariantMap{{"tabs", "no array"}});
    EXPECT_EQ(SessionStore::load(shared, "/p"), Session{});
}

TEST_F(SessionStoreTest, ConversationsAreTakenOnceInLowerCase)
{
    const QStringList tokens = {"chat:" + Chat.toUpper(), "file:/p/a", "chat:no id",
                                "chat:" + Chat,           "chat:",     "xchat:" + Chat};

    EXPECT_EQ(SessionStore::chatSessions(tokens), QStringList(Chat));
}

// --- migration

TEST_F(SharedMigrationTest, ANewUserGetsTheAgentsCommandAndIsKnownAsNew)
{
    migrate();

    EXPECT_EQ(shared.string("claudeCommand"), "claude");
    EXPECT_EQ(shared.boolean("firstRun.newUser"), true);
    EXPECT_EQ(shared.boolean("firstRun.checked"), true);
    EXPECT_EQ(shared.boolean("migrated.v1"), true);
}

TEST_F(SharedMigrationTest, AnyTraceInEitherDomainTellsAnExistingUser)
{
    for (const QString trace : {"migrated.v1", "spaces", "spaceApps", "recentFolders",
                                "projectLastUsed", "signingIdentity", "claudeCommand"}) {
        for (const bool inShared : {true, false}) {
            SCOPED_TRACE(trace.toStdString());
            MemoryDefaultsStore one;
            MemoryDefaultsStore other;
            (inShared ? one : other).set(trace, "x");

            SharedMigration::migrateIfNeeded(one, other);

            EXPECT_FALSE(one.contains("firstRun.newUser"));
            EXPECT_EQ(one.boolean("firstRun.checked"), true);
        }
    }
}

TEST_F(SharedMigrationTest, SomeoneWhoWasCheckedOnceIsNotNewAgain)
{
    shared.set("firstRun.checked", true);

    migrate();

    EXPECT_FALSE(shared.contains("claudeCommand"));
    EXPECT_FALSE(shared.contains("firstRun.newUser"));
}

TEST_F(SharedMigrationTest, SettingsComeAlongWithTheirTypesUnlessThereAlready)
{
    legacy.set("spaces", QVariantMap{{"/p", QByteArray("{}")}});
    legacy.set("recentFolders", QVariantList{"/p"});
    legacy.set("claudeCommand", "claude --old");
    legacy.set("showHiddenFiles", true);
    legacy.set("autosave", false);
    legacy.set("other", "stays");
    shared.set("claudeCommand", "claude --new");

    migrate();

    EXPECT_EQ(shared.value("spaces"), legacy.value("spaces"));
    EXPECT_EQ(shared.strings("recentFolders"), QStringList("/p"));
    EXPECT_EQ(shared.string("claudeCommand"), "claude --new");
    EXPECT_EQ(shared.boolean("showHiddenFiles"), true);
    EXPECT_EQ(shared.boolean("autosave"), false);
    EXPECT_FALSE(shared.contains("other"));
}

TEST_F(SharedMigrationTest, TheOneOldProjectBecomesASessionAndIsLaunchedLater)
{
    legacy.set("session.root", "/p/");
    legacy.set("session.tabs", QVariantList{"file:/p/a", "chat:" + Chat});
    legacy.set("session.files", QVariantList{"/ignored"});
    legacy.set("session.activeTab", "file:/p/a");

    migrate();

    EXPECT_EQ(SessionStore::load(shared, "/p"),
              (Session{{"file:/p/a", "chat:" + Chat}, "file:/p/a", {}}));
    EXPECT_EQ(shared.string("migrated.pendingLaunch"), "/p/");
}

TEST_F(SharedMigrationTest, AnOlderSessionNamesFilesOnly)
{
    legacy.set("session.root", "/p");
    legacy.set("session.files", QVariantList{"/p/a", "/p/b"});
    legacy.set("session.active", "/p/b");

    migrate();

    EXPECT_EQ(SessionStore::load(shared, "/p"),
              (Session{{"file:/p/a", "file:/p/b"}, "file:/p/b", {}}));
}

TEST_F(SharedMigrationTest, ASessionThatIsThereWinsOverTheOldOne)
{
    const Session newer{{"file:/p/new"}, {}, {}};
    SessionStore::save(shared, newer, "/p");
    legacy.set("session.root", "/p");
    legacy.set("session.files", QVariantList{"/p/old"});

    migrate();

    EXPECT_EQ(SessionStore::load(shared, "/p"), newer);
    EXPECT_EQ(shared.string("migrated.pendingLaunch"), "/p");
}

TEST_F(SharedMigrationTest, HappensOnce)
{
    migrate();
    legacy.set("autosave", false);
    legacy.set("session.root", "/p");
    const int writes = shared.writes();

    migrate();

    EXPECT_EQ(shared.writes(), writes);
}
