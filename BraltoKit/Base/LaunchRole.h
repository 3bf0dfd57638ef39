#pragma once

#include <QString>

#include <optional>

namespace Bralto {

/// Which of its parts this process plays, decided once from the bundle that it runs in.
struct LaunchRole {
    /// The project's folder, standardised; absent in the home application.
    std::optional<QString> folder;
    QString bundlePath;       ///< The running bundle, empty outside one (a development build).
    QString bundleIdentifier; ///< "com.tolvane.bralto" outside a bundle.
    QString hostBundlePath;   ///< The home application's bundle, empty outside one.
    QString hostExecutable;   ///< The home application's executable.
    QString shortVersion;     ///< The host's "CFBundleShortVersionString", or "0.1.0".
    QString buildVersion;     ///< The host's "CFBundleVersion", or the same default.

    [[nodiscard]] bool isFolderApp() const { return folder.has_value(); }

    bool operator==(const LaunchRole&) const = default;
};

} // namespace Bralto
