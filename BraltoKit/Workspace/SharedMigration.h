#pragma once

#include "Base/DefaultsStore.h"

/// How the settings of the time before the shared domain came into it.
namespace Bralto::SharedMigration {

/// Moves what the legacy domain holds into the shared one, once in the life of the shared domain,
/// and tells a new user from an old one. Runs before anything else reads the shared domain.
void migrateIfNeeded(DefaultsStore& shared, const DefaultsStore& legacy);

} // namespace Bralto::SharedMigration
