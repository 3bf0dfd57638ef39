#include "Workspace/SharedMigration.h"

#include "Base/Paths.h"
#include "Workspace/SessionStore.h"

#include <algorithm>

namespace Bralto::SharedMigration {

namespace {

constexpr auto FirstRunChecked = "firstRun.checked";
constexpr auto Migrated = "migrated.v1";
constexpr auto ClaudeCommand = "claudeCommand";

/// Whether either domain shows that the program ran here before.
bool isExistingUser(const DefaultsStore& shared, const DefaultsStore& legacy)
{
    static const QStringList traces = {Migrated,        "spaces",          "spaceApps",
                                       "recentFolders", "projectLastUsed", "signingIdentity",
                                       ClaudeCommand};
    return std::any_of(traces.begin(), traces.end(), [&](const QString& key) {
        return shared.contains(key) || legacy.contains(key);
    });
}

void adoptNewUserDefaults(DefaultsStore& shared, const DefaultsStore& legacy)
{
    if (shared.contains(FirstRunChecked))
        return;
    // Looked for before the mark is set, which is no trace of a user.
    const bool isNew = !isExistingUser(shared, legacy);
    shared.set(FirstRunChecked, true);
    if (!isNew)
        return;
    shared.set(ClaudeCommand, QStringLiteral("claude"));
    shared.set("firstRun.newUser", true);
}

std::optional<QString> fileToken(const std::optional<QString>& path)
{
    if (!path)
        return std::nullopt;
    return QLatin1String(SessionStore::FilePrefix) + *path;
}

/// The tabs of the one project that the program had in those days.
SessionStore::Session legacySession(const DefaultsStore& legacy)
{
    SessionStore::Session session;
    if (const auto tabs = legacy.strings("session.tabs")) {
        session.tabs = *tabs;
    } else {
        for (const QString& path : legacy.strings("session.files").value_or(QStringList()))
            session.tabs.append(*fileToken(path));
    }
    session.active = legacy.string("session.activeTab");
    if (!session.active)
        session.active = fileToken(legacy.string("session.active"));
    return session;
}

void adoptLegacyProject(DefaultsStore& shared, const DefaultsStore& legacy)
{
    const auto root = legacy.string("session.root");
    if (!root)
        return;
    if (!shared.contains(SessionStore::key(*root)))
        SessionStore::save(shared, legacySession(legacy), *root);
    shared.set("migrated.pendingLaunch", *root);
}

} // namespace

void migrateIfNeeded(DefaultsStore& shared, const DefaultsStore& legacy)
{
    adoptNewUserDefaults(shared, legacy);
    if (shared.contains(Migrated))
        return;
    for (const auto* key :
         {"spaces", "recentFolders", ClaudeCommand, "showHiddenFiles", "autosave"}) {
        if (!shared.contains(key) && legacy.contains(key))
            shared.set(key, legacy.value(key));
    }
    adoptLegacyProject(shared, legacy);
    shared.set(Migrated, true);
}

} // namespace Bralto::SharedMigration
