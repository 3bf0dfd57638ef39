#pragma once

#include "DemoAgent/Arguments.h"

#include <QString>

#include <optional>

namespace DemoAgent {

/// What the app can change while the agent runs.
struct Settings {
    QString model;
    QString effort;
    QString permissionMode;
    bool mayBypass = false;

    [[nodiscard]] static Settings fromArguments(const Arguments& arguments);
};

/// How a tool stands to the permission mode.
enum class Permission {
    Never,      ///< only looks
    Edit,       ///< changes files: free under acceptEdits
    Command,    ///< runs a program
    Interactive ///< is itself a question to the user
};

namespace PermissionModes {

/// The mode that a name means ("manual" is "default"); absent for an unknown one.
[[nodiscard]] std::optional<QString> known(const QString& name);
[[nodiscard]] bool asks(const QString& mode, Permission permission);

} // namespace PermissionModes

} // namespace DemoAgent
