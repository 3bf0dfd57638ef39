#pragma once

#include <string>
#include <string_view>

namespace Kovalt {

/// What this library was built from.
struct KovaltBuildInfo {
    std::string_view tag = "v1.20.0";
    std::string_view branch;             ///< Empty for a release.
    std::string_view commit = "unknown"; ///< "unknown" outside a checkout.
    bool hasUncommittedChanges = false;
    std::string_view version = "1.20.0";
};

/// How the terminal names itself to a program: "Kovalt 1.20.0-branch+commit:", without the parts
/// that are empty or unknown. Printable ASCII, at most 256 bytes, the last of them ":".
[[nodiscard]] std::string xtVersionIdentity(std::string_view tag, std::string_view branch,
                                            std::string_view commit);

} // namespace Kovalt
