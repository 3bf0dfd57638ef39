#pragma once

#include <QString>

namespace Bralto::SpaceIdentity {

/// The home application's bundle identifier.
inline constexpr char HomeIdentifier[] = "com.tolvane.bralto";

/// What the identifiers of all per-project applications begin with.
inline constexpr char SpacePrefix[] = "com.tolvane.bralto.space.";

/// What stands for the project in `folder` where its path would be too long: the first 12
/// hexadecimal digits, in lower case, of the SHA-256 of the standardised path.
[[nodiscard]] QString digest(const QString& folder);

/// The identifier of the project in `folder`: the prefix and its digest. A moved folder is a new
/// application.
[[nodiscard]] QString bundleIdentifier(const QString& folder);

} // namespace Bralto::SpaceIdentity
